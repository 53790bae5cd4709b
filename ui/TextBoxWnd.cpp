#include "ui/TextBoxWnd.h"

#include "platform/VirtualKeys.h"
#include "skin/SkinStyles.h"
#include "ui/Dc.h"
#include "ui/GestureTuning.h"
#include "ui/MarkupParser.h"
#include "ui/MarkupPictures.h"
#include "ui/Scale.h"
#include "ui/TouchListItem.h"
#include "ui/WinApi.h"

#include <algorithm>

namespace mirodate {

namespace {
constexpr int kPadding = 4;       // between the box's edge and the text
constexpr int kLinkSlop = 6;      // a tap this close to a link still hits it
constexpr int kPressedRadius = 3; // corners of the pressed link's backdrop
constexpr int kThumbWidth = 2;
constexpr int kMinThumbHeight = 12;
// One wheel notch, one arrow key: this far.
constexpr int kLineStep = 20;
constexpr int kWheelNotch = 120;
// The rest of a long text is measured on this timer, a few blocks a tick,
// so that the box shows its first screen at once and stays responsive.
constexpr UINT_PTR kMeasureTimer = 0x7C10;
constexpr UINT kMeasureTick = 10;
constexpr int kBlocksPerTick = 1;

std::u16string LineFeedsAsBreaks(const std::u16string& markup) {
    std::u16string result;
    result.reserve(markup.size());
    for (char16_t ch : markup) {
        if (ch == u'\n')
            result += u"<br>";
        else
            result += ch;
    }
    return result;
}
} // namespace

TextBoxColors TextBoxColors::FromSkin() {
    const ItemDetailStyle& style = SkinStyles::Current().itemDetailView;
    TextBoxColors colors;
    colors.background = style.colorBg;
    colors.text = style.colorMemoText;
    return colors;
}

// The whole laid-out text as the scroller's one row: its top is the text's
// scroll position, and item coordinates are text coordinates.
class TextBoxWnd::ContentItem : public TouchListItem {
public:
    explicit ContentItem(TextBoxWnd& box) : box_(box) {}
    void Highlight(int x, int y) override {
        highlighted_ = true;
        box_.PressAt(x, y);
    }
    void RemoveHighlight() override {
        highlighted_ = false;
        box_.pressedLink_ = -1;
    }
    void Click(HWND, int x, int y) override { box_.TapAt(x, y); }
    void Draw(Dc& dc, const RECT& rect) override { box_.DrawContent(dc, rect); }
    int Height() const override { return height; }

    int height = 0;

private:
    TextBoxWnd& box_;
};

TextBoxWnd::TextBoxWnd() : pictures_(&MarkupPictures::Find), colors_(TextBoxColors::FromSkin()) {}

TextBoxWnd::~TextBoxWnd() {
    if (window && IsWindow(window))
        DestroyWindow(window);
    window = nullptr;
}

HWND TextBoxWnd::Create(HWND parent, int x, int y, int width, int height) {
    GestureTuning::Set();
    LOGFONT lf;
    DefaultFont(lf);
    lf.lfHeight -= FontSizeDelta();
    font_ = std::make_unique<Font>(lf);
    BaseWnd::Create(parent, kTextBoxClass, WS_CHILD | WS_VISIBLE, u"", x, y, width, height);
    if (!window)
        return nullptr;
    scroller_ = std::make_unique<TouchScroller>(window, *this, 1);
    auto item = std::make_unique<ContentItem>(*this);
    content_ = item.get();
    scroller_->Add(std::move(item));
    RECT client;
    GetClientRect(window, &client);
    scroller_->SetViewport(client);
    Relayout();
    return window;
}

int TextBoxWnd::Padding() const {
    return Scale(kPadding);
}

void TextBoxWnd::SetText(const std::u16string& markup) {
    text_ = LineFeedsAsBreaks(markup);
    layout_.SetDocument(MarkupParser::Parse(text_));
    layoutWidth_ = -1;
    pressedLink_ = -1;
    if (!scroller_)
        return; // Create lays it out
    // A new text starts at its top.
    scroller_->StopMotion();
    const bool scrolled = scroller_->Position() != 0;
    Relayout(true);
    if (scrolled)
        scroller_->SetPosition(0);
    else
        InvalidateRect(window, nullptr, false);
}

void TextBoxWnd::SetColors(const TextBoxColors& colors) {
    const bool relayout = colors.link != colors_.link;
    colors_ = colors;
    if (relayout) {
        layoutWidth_ = -1;
        Relayout();
    }
    if (window)
        InvalidateRect(window, nullptr, false);
}

void TextBoxWnd::SetFont(const LOGFONT& logFont) {
    font_ = std::make_unique<Font>(logFont);
    layoutWidth_ = -1;
    Relayout();
    if (window)
        InvalidateRect(window, nullptr, false);
}

void TextBoxWnd::SetPictureSource(RichTextLayout::PictureSource source) {
    pictures_ = std::move(source);
    layoutWidth_ = -1;
    Relayout();
}

// The measuring pass, for the current width: what the viewport shows now,
// the rest on the timer. The drawing pass is DrawContent.
void TextBoxWnd::Relayout(bool fromTop) {
    if (!window || !scroller_ || !font_)
        return;
    RECT client;
    GetClientRect(window, &client);
    const int width = std::max(1, client.Width() - 2 * Padding());
    if (width != layoutWidth_) {
        const int visibleBottom = (fromTop ? 0 : std::max(0, scroller_->Position())) + client.Height();
        layout_.Build(*font_, width, colors_.link, pictures_, visibleBottom);
        layoutWidth_ = width;
        if (!layout_.IsComplete())
            SetTimer(window, kMeasureTimer, kMeasureTick);
    }
    UpdateContentHeight();
}

void TextBoxWnd::UpdateContentHeight() {
    const int height = layout_.Height() + 2 * Padding();
    if (height == content_->height)
        return;
    content_->height = height;
    scroller_->Layout();
}

void TextBoxWnd::MeasureVisible() {
    if (layout_.IsComplete() || !scroller_)
        return;
    layout_.MeasureTo(std::max(0, scroller_->Position()) + scroller_->Viewport().Height());
}

// ---- painting --------------------------------------------------------------

void TextBoxWnd::OnPaint(HDC dc) {
    if (!dc || !scroller_)
        return;
    MeasureVisible();
    UpdateContentHeight();
    RECT client;
    GetClientRect(window, &client);
    dc->FillRect(client, colors_.background);
    const RECT& viewport = scroller_->Viewport();
    const int top = viewport.top + scroller_->ItemTop(0);
    content_->Draw(*dc, RECT{viewport.left, top, viewport.right, top + content_->Height()});
    DrawThumb(*dc);
}

void TextBoxWnd::DrawContent(Dc& dc, const RECT& rect) {
    const RECT& viewport = scroller_->Viewport();
    const int originX = rect.left + Padding(), originY = rect.top + Padding();
    if (pressedLink_ >= 0) {
        for (const RichTextLayout::LinkBox& box : layout_.LinkBoxes()) {
            if (box.link != pressedLink_)
                continue;
            RECT backdrop{originX + box.rect.left - Scale(1), originY + box.rect.top,
                          originX + box.rect.right + Scale(1), originY + box.rect.bottom};
            dc.RoundRect(backdrop, Scale(kPressedRadius), Scale(kPressedRadius), colors_.linkPressed,
                         std::nullopt);
        }
    }
    // Only the rows inside the viewport are drawn.
    layout_.Draw(dc, originX, originY, viewport.top - originY, viewport.bottom - originY, colors_.text);
}

void TextBoxWnd::DrawThumb(Dc& dc) {
    const RECT& viewport = scroller_->Viewport();
    const int total = scroller_->TotalHeight();
    const int visible = viewport.Height();
    if (total <= visible || visible <= 0)
        return;
    const int thumb =
        std::max(Scale(kMinThumbHeight), static_cast<int>(static_cast<long long>(visible) * visible / total));
    const int range = std::max(0, visible - thumb);
    const int position = std::clamp(scroller_->Position(), 0, scroller_->MaxPosition());
    const int top = viewport.top + static_cast<int>(static_cast<long long>(range) * position /
                                                    std::max(1, scroller_->MaxPosition()));
    dc.FillSolidRect(viewport.right - Scale(kThumbWidth) - Scale(1), top, Scale(kThumbWidth), thumb,
                     colors_.thumb);
}

// ---- links -----------------------------------------------------------------

RECT TextBoxWnd::LinkRect(int index) const {
    if (!scroller_)
        return RECT{};
    for (const RichTextLayout::LinkBox& box : layout_.LinkBoxes()) {
        if (box.link != index)
            continue;
        const int dx = scroller_->Viewport().left + Padding();
        const int dy = scroller_->Viewport().top + scroller_->ItemTop(0) + Padding();
        return RECT{box.rect.left + dx, box.rect.top + dy, box.rect.right + dx, box.rect.bottom + dy};
    }
    return RECT{};
}

int TextBoxWnd::LinkAtPoint(int x, int y) const {
    if (!scroller_)
        return -1;
    const int textX = x - scroller_->Viewport().left - Padding();
    const int textY = y - scroller_->Viewport().top - scroller_->ItemTop(0) - Padding();
    return layout_.LinkAt(textX, textY, Scale(kLinkSlop));
}

void TextBoxWnd::PressAt(int x, int y) {
    pressedLink_ = layout_.LinkAt(x - Padding(), y - Padding(), Scale(kLinkSlop));
}

void TextBoxWnd::TapAt(int x, int y) {
    pressedLink_ = -1;
    const int link = layout_.LinkAt(x - Padding(), y - Padding(), Scale(kLinkSlop));
    if (link < 0) {
        if (onTapOutsideLink)
            onTapOutsideLink(x + scroller_->Viewport().left,
                             y + scroller_->Viewport().top + scroller_->ItemTop(0));
        return;
    }
    // The action may show a page or even close the box's page: work on copies.
    const std::u16string target = Document().links[static_cast<std::size_t>(link)].target;
    const LinkDispatcher dispatcher = links_;
    dispatcher.Activate(target);
}

// ---- input -----------------------------------------------------------------

LRESULT TextBoxWnd::OnPointerDown(int button, int x, int y, WPARAM) {
    if (button != 0 || !scroller_ || !IsWindowEnabled(window))
        return 0;
    scroller_->OnPress(x, y);
    return 0;
}

void TextBoxWnd::OnPointerMove(int x, int y, WPARAM) {
    if (scroller_ && IsWindowEnabled(window))
        scroller_->OnMove(x, y);
}

LRESULT TextBoxWnd::OnPointerUp(int button, int x, int y, WPARAM) {
    if (button != 0 || !scroller_)
        return 0;
    const HWND self = window;
    ownRelease_ = true;
    scroller_->OnRelease(x, y);
    if (!IsWindow(self))
        return 0; // a link action closed the page
    ownRelease_ = false;
    return 0;
}

LRESULT TextBoxWnd::OnMouseWheel(UINT, short delta, int, int) {
    if (scroller_)
        scroller_->SetPosition(scroller_->Position() - delta * Scale(kLineStep) / kWheelNotch);
    return 0;
}

void TextBoxWnd::OnKeyDown(UINT key, UINT) {
    if (!scroller_)
        return;
    const int page = std::max(Scale(kLineStep), scroller_->Viewport().Height() - Scale(kLineStep));
    switch (key) {
    case VK_UP:
        scroller_->SetPosition(scroller_->Position() - Scale(kLineStep));
        break;
    case VK_DOWN:
        scroller_->SetPosition(scroller_->Position() + Scale(kLineStep));
        break;
    case VK_PRIOR:
        scroller_->SetPosition(scroller_->Position() - page);
        break;
    case VK_NEXT:
        scroller_->SetPosition(scroller_->Position() + page);
        break;
    case VK_HOME:
        scroller_->SetPosition(0);
        break;
    case VK_END:
        scroller_->SetPosition(scroller_->MaxPosition());
        break;
    default:
        break;
    }
}

void TextBoxWnd::OnCaptureChanged(HWND newCapture) {
    if (!scroller_ || newCapture == window || ownRelease_)
        return;
    scroller_->OnCaptureLost();
}

void TextBoxWnd::OnTimer(UINT_PTR id) {
    if (!scroller_)
        return;
    if (id != kMeasureTimer) {
        scroller_->OnTimer(id);
        return;
    }
    for (int i = 0; i < kBlocksPerTick && layout_.MeasureNext(); ++i) {
    }
    if (layout_.IsComplete())
        KillTimer(window, kMeasureTimer);
    // The scroll range grew: the thumb shows it.
    if (scroller_->Viewport().Height() < layout_.Height())
        InvalidateRect(window, nullptr, false);
}

void TextBoxWnd::OnSize(UINT, UINT) {
    if (!scroller_)
        return;
    RECT client;
    GetClientRect(window, &client);
    scroller_->SetViewport(client);
    Relayout();
    InvalidateRect(window, nullptr, false);
}

// ---- scroller's reports ----------------------------------------------------

void TextBoxWnd::RefreshViewport() {
    if (!window)
        return;
    // Not inside the scroll step itself: the scroller may still be settling
    // its drag state there, and a new height would clamp a rubber band.
    UpdateContentHeight();
    InvalidateRect(window, nullptr, false);
    UpdateWindow(window);
}

void TextBoxWnd::OnClickEmpty(int x, int y) {
    if (onTapOutsideLink)
        onTapOutsideLink(x, y);
}

void TextBoxWnd::OnSwipeLeft() {
    if (onSwipe)
        onSwipe(true);
}

void TextBoxWnd::OnSwipeRight() {
    if (onSwipe)
        onSwipe(false);
}

void TextBoxWnd::OnLongTap(int) {}
void TextBoxWnd::OnScrolled(int, int) {
    MeasureVisible();
}

} // namespace mirodate
