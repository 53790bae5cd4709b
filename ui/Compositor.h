#pragma once
// Composition: every window paints into a surface of its own (double
// buffering), kept with its invalid area; when the queue is idle the visible
// windows are composed back to front, children clipped to their parents, into
// one frame that goes to the display. Tracks whether anything changed since
// the last frame so that an idle loop presents nothing.
#include "platform/Display.h"
#include "ui/Bitmap.h"
#include "ui/WinTypes.h"

#include <memory>
#include <vector>

typedef struct _cairo cairo_t;

namespace mirodate {

class Dc;
class WindowTree;
struct WindowRecord;

class Compositor {
public:
    Compositor(WindowTree& tree, Display& display);
    ~Compositor();

    void MarkDirty() { frameDirty_ = true; }
    // Keeps the window's surface the size of the window, its content kept.
    static void ResizeSurface(WindowRecord& window);

    // Adds `rect` (null: the whole client area) to the invalid area.
    void Invalidate(WindowRecord& window, const RECT* rect, bool erase);
    static void Validate(WindowRecord& window);
    // A Dc on the window's surface clipped to the invalid area, which is
    // then valid; `erase` tells whether the background was asked to be erased.
    HDC BeginPaint(WindowRecord& window, PAINTSTRUCT& paint, bool& erase);
    void EndPaint(WindowRecord& window, const PAINTSTRUCT& paint);
    HDC GetDC(WindowRecord& window);
    void ReleaseDC(HDC dc);
    void ReleaseAllDcs();

    // The first visible window, front to back along the tree, with an invalid area.
    HWND NextWindowToPaint() const;

    const Bitmap& Frame() const { return frame_; }
    void ResizeFrame(int width, int height);
    void Compose();
    void ComposeIfNeeded();
    int FramesComposed() const { return framesComposed_; }

private:
    HWND FindWindowToPaint(HWND window) const;
    void ComposeWindow(cairo_t* cr, const WindowRecord& window, const RECT& clip, int originX, int originY);

    WindowTree& tree_;
    Display& display_;
    Bitmap frame_;
    bool frameDirty_ = true;
    int framesComposed_ = 0;
    std::vector<std::unique_ptr<Dc>> windowDcs_; // from GetDC, until ReleaseDC
};

} // namespace mirodate
