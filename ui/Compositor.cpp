#include "ui/Compositor.h"

#include "ui/Dc.h"
#include "ui/WindowTree.h"

#include <algorithm>
#include <cairo.h>

namespace mirodate {

namespace {
RECT Intersect(const RECT& a, const RECT& b) {
    return RECT{std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
                std::min(a.bottom, b.bottom)};
}
RECT Union(const RECT& a, const RECT& b) {
    if (a.IsEmpty())
        return b;
    if (b.IsEmpty())
        return a;
    return RECT{std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right),
                std::max(a.bottom, b.bottom)};
}
} // namespace

Compositor::Compositor(WindowTree& tree, Display& display)
    : tree_(tree), display_(display), frame_(display.Width(), display.Height()) {}

Compositor::~Compositor() = default;

void Compositor::ResizeSurface(WindowRecord& window) {
    const int width = std::max(1, window.rect.Width()), height = std::max(1, window.rect.Height());
    if (window.surface.Width() == width && window.surface.Height() == height)
        return;
    Bitmap surface(width, height);
    if (window.surface) {
        Dc dc(surface);
        dc.BitBlt(0, 0, window.surface.Width(), window.surface.Height(), window.surface, 0, 0);
    }
    window.surface = std::move(surface);
}

void Compositor::Invalidate(WindowRecord& window, const RECT* rect, bool erase) {
    const RECT client = window.ClientRect();
    const RECT area = rect ? Intersect(*rect, client) : client;
    if (area.IsEmpty() && rect)
        return;
    window.update = window.invalid ? Union(window.update, area) : area;
    window.invalid = true;
    window.erase = window.erase || erase;
}

void Compositor::Validate(WindowRecord& window) {
    window.invalid = false;
    window.erase = false;
    window.update = RECT();
}

HDC Compositor::BeginPaint(WindowRecord& window, PAINTSTRUCT& paint, bool& erase) {
    ResizeSurface(window);
    auto dc = std::make_unique<Dc>(window.surface);
    paint.rcPaint = window.invalid ? window.update : window.ClientRect();
    dc->IntersectClip(paint.rcPaint);
    paint.hdc = dc.get();
    window.paintDcs.push_back(std::move(dc));
    erase = window.erase;
    Validate(window);
    MarkDirty();
    paint.fErase = 0;
    return paint.hdc;
}

void Compositor::EndPaint(WindowRecord& window, const PAINTSTRUCT& paint) {
    std::erase_if(window.paintDcs, [&](const std::unique_ptr<Dc>& dc) { return dc.get() == paint.hdc; });
    MarkDirty();
}

HDC Compositor::GetDC(WindowRecord& window) {
    ResizeSurface(window);
    windowDcs_.push_back(std::make_unique<Dc>(window.surface));
    MarkDirty();
    return windowDcs_.back().get();
}

void Compositor::ReleaseDC(HDC dc) {
    std::erase_if(windowDcs_, [&](const std::unique_ptr<Dc>& owned) { return owned.get() == dc; });
    MarkDirty();
}

void Compositor::ReleaseAllDcs() {
    windowDcs_.clear();
}

HWND Compositor::FindWindowToPaint(HWND handle) const {
    const WindowRecord* window = tree_.Get(handle);
    if (!window || !window->IsVisibleStyle())
        return nullptr;
    if (window->invalid)
        return handle;
    for (HWND child : window->children)
        if (HWND found = FindWindowToPaint(child))
            return found;
    return nullptr;
}

HWND Compositor::NextWindowToPaint() const {
    for (HWND window : tree_.TopLevel())
        if (HWND found = FindWindowToPaint(window))
            return found;
    return nullptr;
}

void Compositor::ResizeFrame(int width, int height) {
    frame_ = Bitmap(width, height);
    MarkDirty();
}

void Compositor::ComposeWindow(cairo_t* cr, const WindowRecord& window, const RECT& clip, int originX,
                               int originY) {
    const RECT screen{originX + window.rect.left, originY + window.rect.top, originX + window.rect.right,
                      originY + window.rect.bottom};
    const RECT visible = Intersect(screen, clip);
    if (visible.IsEmpty())
        return;
    if (window.surface) {
        cairo_save(cr);
        cairo_rectangle(cr, visible.left, visible.top, visible.Width(), visible.Height());
        cairo_clip(cr);
        cairo_set_source_surface(cr, window.surface.Surface(), screen.left, screen.top);
        cairo_paint(cr);
        cairo_restore(cr);
    }
    for (HWND child : window.children) {
        const WindowRecord* c = tree_.Get(child);
        if (c && c->IsVisibleStyle())
            ComposeWindow(cr, *c, visible, screen.left, screen.top);
    }
}

void Compositor::Compose() {
    if (!frame_)
        return;
    cairo_t* cr = cairo_create(frame_.Surface());
    cairo_set_operator(cr, CAIRO_OPERATOR_SOURCE);
    cairo_set_source_rgb(cr, 0, 0, 0);
    cairo_paint(cr);
    const RECT screen{0, 0, frame_.Width(), frame_.Height()};
    for (HWND handle : tree_.TopLevel()) {
        const WindowRecord* window = tree_.Get(handle);
        if (window && window->IsVisibleStyle())
            ComposeWindow(cr, *window, screen, 0, 0);
    }
    cairo_destroy(cr);
    cairo_surface_flush(frame_.Surface());
    display_.Present(cairo_image_surface_get_data(frame_.Surface()),
                     cairo_image_surface_get_stride(frame_.Surface()));
    frameDirty_ = false;
    ++framesComposed_;
}

void Compositor::ComposeIfNeeded() {
    if (frameDirty_)
        Compose();
}

} // namespace mirodate
