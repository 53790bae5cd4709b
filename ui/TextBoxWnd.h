#pragma once
// The read-only rich text box: mark-up (see MarkupParser) laid out with word
// wrap to the box's width (the first screenful at once, the rest on a timer
// or as a scroll reaches it), links in the link colour and underlined, pictures
// from the skin. Text taller than the box scrolls by finger like the touch
// lists (drag, fling, elastic ends). A tap on a link runs the link action
// through the box's LinkDispatcher, whose questions and messages the owner
// shows; horizontal swipes and taps beside the links go to the owner too.
#include "ui/BaseWnd.h"
#include "ui/Font.h"
#include "ui/LinkDispatcher.h"
#include "ui/MarkupDocument.h"
#include "ui/RichTextLayout.h"
#include "ui/TouchScroller.h"
#include "ui/TouchScrollerHost.h"

#include <functional>
#include <memory>
#include <string>

namespace mirodate {

constexpr const char* kTextBoxClass = "KESTRELIA:TEXTBOXWND";

struct TextBoxColors {
    COLORREF background = RGB(0xFF, 0xFF, 0xFF);
    COLORREF text = RGB(0, 0, 0);
    COLORREF link = RGB(0x00, 0x55, 0xCC);
    COLORREF linkPressed = RGB(0xC8, 0xDC, 0xF5); // behind a link under the finger
    COLORREF thumb = RGB(0xA0, 0xA0, 0xA0);

    // The detail view's background and notes colours of the current skin.
    static TextBoxColors FromSkin();
};

class TextBoxWnd : public BaseWnd, public TouchScrollerHost {
public:
    TextBoxWnd();
    ~TextBoxWnd() override;

    // Creates the child window; the font is the default font with the
    // user's font size delta.
    HWND Create(HWND parent, int x, int y, int width, int height);

    // Stores the mark-up with every line feed written as "<br>", lays it out
    // (back at the top) and repaints.
    void SetText(const std::u16string& markup);
    const std::u16string& GetText() const { return text_; }
    void SetColors(const TextBoxColors& colors);
    const TextBoxColors& Colors() const { return colors_; }
    // Another base font (lays the text out again).
    void SetFont(const LOGFONT& logFont);
    // Where img ids come from; by default MarkupPictures::Find.
    void SetPictureSource(RichTextLayout::PictureSource source);

    LinkDispatcher& Links() { return links_; }
    // A horizontal swipe over the box (true: to the left).
    std::function<void(bool left)> onSwipe;
    // A tap that hit no link, in client coordinates.
    std::function<void(int x, int y)> onTapOutsideLink;

    const MarkupDocument& Document() const { return layout_.Document(); }
    const RichTextLayout& Layout() const { return layout_; }
    TouchScroller& Scroller() { return *scroller_; }
    // Where link `index` of the document is drawn now (its first piece), in
    // client coordinates; empty when it has no place.
    RECT LinkRect(int index) const;
    // The link under a client point (with the finger's slop), or -1.
    int LinkAtPoint(int x, int y) const;

    void OnPaint(HDC dc) override;
    LRESULT OnPointerDown(int button, int x, int y, WPARAM keys) override;
    LRESULT OnPointerUp(int button, int x, int y, WPARAM keys) override;
    void OnPointerMove(int x, int y, WPARAM keys) override;
    LRESULT OnMouseWheel(UINT keys, short delta, int x, int y) override;
    void OnCaptureChanged(HWND newCapture) override;
    void OnKeyDown(UINT key, UINT flags) override;
    void OnTimer(UINT_PTR id) override;
    void OnSize(UINT sizeParam, UINT type) override;

    void RefreshViewport() override;
    void OnClickEmpty(int x, int y) override;
    void OnSwipeLeft() override;
    void OnSwipeRight() override;
    void OnLongTap(int index) override;
    void OnScrolled(int oldPosition, int newPosition) override;

private:
    class ContentItem;
    friend class ContentItem;

    // Lays the text out again if the width changed, measuring what is in
    // view (or the first screen, `fromTop`).
    void Relayout(bool fromTop = false);
    // Gives the scroller the text's height as far as it is known.
    void UpdateContentHeight();
    // Measures what the viewport shows; the rest is measured on the timer.
    void MeasureVisible();
    void DrawContent(Dc& dc, const RECT& rect);
    void DrawThumb(Dc& dc);
    void PressAt(int x, int y);
    void TapAt(int x, int y);
    int Padding() const;

    std::unique_ptr<TouchScroller> scroller_;
    ContentItem* content_ = nullptr; // owned by the scroller
    std::unique_ptr<Font> font_;
    std::u16string text_;
    RichTextLayout layout_;
    RichTextLayout::PictureSource pictures_;
    TextBoxColors colors_;
    LinkDispatcher links_;
    int layoutWidth_ = -1;
    int pressedLink_ = -1;
    bool ownRelease_ = false;
};

} // namespace mirodate
