#include "ui/TextFieldWnd.h"

#include "platform/VirtualKeys.h"
#include "ui/Dc.h"
#include "ui/GestureTuning.h"
#include "ui/Scale.h"
#include "ui/TextFieldMenu.h"
#include "ui/WinApi.h"

#include <algorithm>
#include <cstdlib>

namespace mirodate {

namespace {
constexpr int kMargin = 3;      // between the frame and the text
constexpr int kFontHeight = 13; // character height of the default font
constexpr int kCaretWidth = 1;
constexpr int kDragStart = 4; // a press that moves further drags (selects or scrolls)
constexpr DWORD kDoubleTapTime = 500;
constexpr int kDoubleTapDistance = 8;
constexpr int kWheelLines = 3; // lines a wheel notch scrolls
constexpr int kWheelDelta = 120;
constexpr COLORREF kBackground = RGB(255, 255, 255);
constexpr COLORREF kDisabledBackground = RGB(0xE0, 0xE0, 0xE0);
constexpr COLORREF kFrame = RGB(0x80, 0x80, 0x80);
constexpr COLORREF kFocusFrame = RGB(0, 0x55, 0xCC);
constexpr COLORREF kText = RGB(0, 0, 0);
constexpr COLORREF kSelectionBack = RGB(0x33, 0x66, 0xCC);
constexpr COLORREF kSelectionText = RGB(255, 255, 255);
constexpr COLORREF kCaret = RGB(0, 0, 0);

// The whole text of a multi-line field is one row of its scroller.
class TextContent : public TouchListItem {
public:
    explicit TextContent(const TextFieldLayout& layout) : layout_(layout) {}
    void Draw(Dc&, const RECT&) override {}
    int Height() const override { return layout_.Height(); }

private:
    const TextFieldLayout& layout_;
};

bool ShiftDown() {
    return Wm().IsKeyDown(VK_SHIFT);
}
bool ControlDown() {
    return Wm().IsKeyDown(VK_CONTROL);
}
} // namespace

TextFieldWnd::TextFieldWnd() {
    LOGFONT logFont;
    DefaultFont(logFont);
    logFont.lfHeight = -(Scale(kFontHeight) + FontSizeDelta());
    font_ = std::make_unique<Font>(logFont);
}

TextFieldWnd::~TextFieldWnd() {
    // Past this point the window's messages reach only the base class.
    if (window && WindowManager::HasCurrent() && IsWindow(window) && GetFocus() == window)
        Wm().GetDisplay().StopTextInput();
}

void TextFieldWnd::OnDestroy() {
    // A field destroyed with its page takes the keyboard with it.
    if (GetFocus() == window)
        Wm().GetDisplay().StopTextInput();
    BaseWnd::OnDestroy();
}

HWND TextFieldWnd::Create(HWND parent, int id, int x, int y, int width, int height, bool multiLine) {
    editor_.Reset(multiLine);
    BaseWnd::Create(parent, kTextFieldClass, WS_CHILD | WS_VISIBLE | WS_TABSTOP, u"", x, y, width, height);
    if (!window)
        return nullptr;
    SetWindowLongPtr(window, GWL_ID, id);
    if (multiLine) {
        scroller_ = std::make_unique<TouchScroller>(window, *this, 1);
        scroller_->Add(std::make_unique<TextContent>(layout_));
    }
    Relayout();
    return window;
}

// ---- text and state --------------------------------------------------------

void TextFieldWnd::SetText(const std::u16string& text) {
    editor_.SetText(text);
    Relayout();
    EnsureCaretVisible();
    if (window)
        InvalidateRect(window, nullptr, false);
}

void TextFieldWnd::SetLimit(std::size_t units) {
    if (editor_.Buffer().SetLimit(units))
        Changed(false);
}

void TextFieldWnd::SetFont(const LOGFONT& logFont) {
    font_ = std::make_unique<Font>(logFont);
    Relayout();
    if (window)
        InvalidateRect(window, nullptr, false);
}

void TextFieldWnd::SetSelection(int anchor, int caret) {
    editor_.Buffer().SetSelection(anchor, caret);
    Moved();
}

int TextFieldWnd::ScrollY() const {
    return scroller_ ? scroller_->Position() : 0;
}

RECT TextFieldWnd::TextArea() const {
    RECT client{};
    if (window)
        GetClientRect(window, &client);
    const int margin = Scale(kMargin);
    return RECT{margin, margin, std::max(margin, client.right - margin),
                std::max(margin, client.bottom - margin)};
}

void TextFieldWnd::Relayout() {
    const TextEditBuffer& buffer = editor_.Buffer();
    const RECT area = TextArea();
    const int wrap = buffer.IsMultiLine() ? std::max(1, area.Width()) : 0;
    if (editor_.Composition().empty()) {
        layout_.SetText(buffer.Text(), *font_, wrap);
    } else {
        std::u16string shown = buffer.Text();
        shown.insert(static_cast<size_t>(buffer.Caret()), editor_.Composition());
        layout_.SetText(shown, *font_, wrap);
    }
    if (scroller_) {
        scroller_->SetViewport(area);
        scroller_->Layout();
    }
}

int TextFieldWnd::PositionAt(int x, int y) const {
    const RECT area = TextArea();
    return editor_.BufferPosition(layout_.HitTest(x - area.left + scrollX_, y - area.top + ScrollY()));
}

void TextFieldWnd::EnsureCaretVisible() {
    if (!window)
        return;
    const RECT area = TextArea();
    const RECT caret = layout_.CaretRect(editor_.ShownCaret());
    if (scroller_) {
        const int position = scroller_->Position();
        if (caret.top < position)
            scroller_->SetPosition(caret.top);
        else if (caret.bottom > position + area.Height())
            scroller_->SetPosition(caret.bottom - area.Height());
        return;
    }
    // One line: the caret stays inside, and no empty space is shown past
    // the end of a text that scrolled.
    const int width = area.Width() - Scale(kCaretWidth);
    if (caret.left < scrollX_)
        scrollX_ = caret.left;
    if (caret.left > scrollX_ + width)
        scrollX_ = caret.left - width;
    scrollX_ = std::clamp(scrollX_, 0, std::max(0, layout_.Width() - width));
}

void TextFieldWnd::UpdateTextInputRect() {
    if (!window || GetFocus() != window)
        return;
    const RECT area = TextArea();
    const RECT caret = layout_.CaretRect(editor_.ShownCaret());
    POINT origin{area.left + caret.left - scrollX_, area.top + caret.top - ScrollY()};
    ClientToScreen(window, &origin);
    Wm().GetDisplay().StartTextInput(origin.x, origin.y, Scale(kCaretWidth), caret.Height());
}

void TextFieldWnd::Notify(WORD code) {
    if (!window)
        return;
    const HWND parent = GetParent(window);
    if (parent)
        SendMessage(parent, WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(window), code),
                    reinterpret_cast<LPARAM>(window));
}

void TextFieldWnd::Changed(bool cut) {
    Relayout();
    EnsureCaretVisible();
    UpdateTextInputRect();
    if (!window)
        return;
    // Painted before the parent hears of it, so that a slow parent does not
    // hold the typed character back from the screen.
    InvalidateRect(window, nullptr, false);
    const HWND self = window;
    Notify(EN_CHANGE);
    if (cut && IsWindow(self))
        Notify(EN_MAXTEXT);
}

void TextFieldWnd::Moved() {
    EnsureCaretVisible();
    UpdateTextInputRect();
    if (window)
        InvalidateRect(window, nullptr, false);
}

void TextFieldWnd::Apply(const TextFieldEditor::Edit& edit) {
    if (edit.relayout)
        Relayout();
    if (edit.changed)
        Changed(edit.cut);
    else if (edit.cut)
        Notify(EN_MAXTEXT);
    else if (edit.moved)
        Moved();
    if (edit.enter && window)
        Notify(EN_ENTER);
}

void TextFieldWnd::ReplaceSelection(const std::u16string& text) {
    Apply(editor_.Insert(text));
}

// ---- editing commands ------------------------------------------------------

void TextFieldWnd::Copy() {
    editor_.Copy();
}

void TextFieldWnd::Cut() {
    Apply(editor_.Cut());
}

void TextFieldWnd::Paste() {
    Apply(editor_.Paste());
}

void TextFieldWnd::SelectAll() {
    Apply(editor_.SelectAll());
}

std::vector<ContextMenuItem> TextFieldWnd::MenuItems() const {
    return TextFieldMenu::Items(editor_.Buffer().HasSelection(), !noInsert_, insertEnabled_);
}

void TextFieldWnd::OpenMenu() {
    if (!window)
        return;
    // The menu owns itself: it is deleted when it closes, chosen or not.
    auto* menu = new TextFieldMenu(window, MenuItems());
    if (!menu->Open())
        delete menu;
}

void TextFieldWnd::OnCommand(UINT id, UINT, HWND) {
    if (window && GetFocus() != window)
        SetFocus(window);
    switch (id) {
    case kCommandCut:
        Cut();
        break;
    case kCommandCopy:
        Copy();
        break;
    case kCommandPaste:
        Paste();
        break;
    case kCommandSelectAll:
        SelectAll();
        break;
    case kCommandInsertContact:
    case kCommandInsertLocation:
    case kCommandInsertDate: {
        if (noInsert_ || !insertEnabled_)
            break;
        NMTEXTFIELDINSERT notice;
        notice.command = id;
        NotifyParent(NM_TEXTFIELD_INSERT, notice);
        break;
    }
    default:
        break;
    }
}

// ---- keys and text input ---------------------------------------------------

void TextFieldWnd::OnKeyDown(UINT key, UINT) {
    if (key == VK_ESCAPE) {
        // A field has nothing to cancel itself: Escape is the page's, which
        // closes or goes back, also while the caret is in one of its fields.
        if (HWND parent = GetParent(window))
            SendMessage(parent, WM_KEYDOWN, key, 0);
        return;
    }
    Apply(editor_.OnKey(key, ShiftDown(), ControlDown(), layout_));
}

void TextFieldWnd::OnChar(char16_t ch, UINT flags) {
    if (flags & static_cast<UINT>(kCharFromTextInput))
        Apply(editor_.OnTextChar(ch));
    else
        Apply(editor_.OnKeyChar(ch, ControlDown())); // characters that keys stand for
}

void TextFieldWnd::OnComposition() {
    // The composition lives in the field only while it has the focus, and
    // only as much of it as the limit leaves room for.
    std::u16string clean = editor_.FitComposition(Wm().GetComposition());
    if (editor_.Buffer().HasSelection() && !clean.empty() && editor_.Buffer().DeleteSelection())
        Changed(false);
    editor_.SetComposition(std::move(clean), Wm().GetCompositionCursor());
    Relayout();
    EnsureCaretVisible();
    UpdateTextInputRect();
    if (window)
        InvalidateRect(window, nullptr, false);
}

LRESULT TextFieldWnd::WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_IME_COMPOSITION:
        if (GetFocus() == hwnd)
            OnComposition();
        return 0;
    // The window dispatch leaves focus changes to the default; a field acts on them.
    case WM_SETFOCUS:
        return OnSetFocus(reinterpret_cast<HWND>(wParam));
    case WM_KILLFOCUS:
        return OnKillFocus(reinterpret_cast<HWND>(wParam));
    case WM_CUT:
        Cut();
        return 0;
    case WM_COPY:
        Copy();
        return 0;
    case WM_PASTE:
        Paste();
        return 0;
    case WM_CLEAR:
        Apply(editor_.DeleteSelection());
        return 0;
    default:
        return BaseWnd::WindowProc(hwnd, message, wParam, lParam);
    }
}

LRESULT TextFieldWnd::OnSetFocus(HWND) {
    UpdateTextInputRect();
    InvalidateRect(window, nullptr, false);
    return 0;
}

LRESULT TextFieldWnd::OnKillFocus(HWND) {
    Wm().GetDisplay().StopTextInput();
    if (editor_.LoseFocus())
        Relayout();
    InvalidateRect(window, nullptr, false);
    return 0;
}

// ---- pointer ---------------------------------------------------------------

LRESULT TextFieldWnd::OnPointerDown(int button, int x, int y, WPARAM) {
    if (!IsWindowEnabled(window))
        return 0;
    if (button == 1) {
        // A mouse's right button asks for the pop-up at once, as a long press does.
        if (GetFocus() != window)
            SetFocus(window);
        OpenMenu();
        return 0;
    }
    if (button != 0)
        return 0;
    if (GetFocus() != window)
        SetFocus(window);
    const DWORD now = GetTickCount();
    const bool doubleTap = hasTapped_ && now - lastTapTime_ <= kDoubleTapTime &&
                           std::abs(x - lastTapPoint_.x) <= Scale(kDoubleTapDistance) &&
                           std::abs(y - lastTapPoint_.y) <= Scale(kDoubleTapDistance);
    hasTapped_ = false;
    pressX_ = x;
    pressY_ = y;
    pressIndex_ = PositionAt(x, y);
    pressStoppedFling_ = scroller_ && (scroller_->IsFlinging() || scroller_->IsAnimating());
    if (scroller_)
        scroller_->OnPress(x, y);
    SetCapture(window);
    if (doubleTap) {
        editor_.SelectWordAt(pressIndex_);
        press_ = Press::Word;
        TakeOverFromScroller();
        Moved();
        return 0;
    }
    press_ = Press::Pending;
    SetTimer(window, kLongPressTimer, GestureTuning::Current().longTapDelay);
    return 0;
}

void TextFieldWnd::OnPointerMove(int x, int y, WPARAM) {
    if (press_ == Press::None || press_ == Press::LongPressed)
        return;
    if (press_ == Press::Scrolling) {
        scroller_->OnMove(x, y);
        return;
    }
    const int dx = x - pressX_, dy = y - pressY_;
    const bool moved = std::abs(dx) > Scale(kDragStart) || std::abs(dy) > Scale(kDragStart);
    if (press_ == Press::Pending) {
        if (!moved)
            return;
        KillTimer(window, kLongPressTimer);
        if (scroller_ && std::abs(dy) >= std::abs(dx)) {
            // Up and down moves the text of a multi-line field, as a list moves.
            press_ = Press::Scrolling;
            scroller_->OnMove(x, y);
            return;
        }
        press_ = Press::Selecting;
        TakeOverFromScroller();
        editor_.Buffer().MoveCaret(pressIndex_, ShiftDown());
    }
    const int index = PositionAt(x, y);
    if (press_ == Press::Word) {
        if (!moved)
            return;
        editor_.ExtendWordSelection(index);
    } else {
        editor_.Buffer().MoveCaret(index, true);
    }
    Moved();
}

LRESULT TextFieldWnd::OnPointerUp(int button, int x, int y, WPARAM) {
    if (button != 0 || press_ == Press::None)
        return 0;
    const Press press = press_;
    press_ = Press::None;
    KillTimer(window, kLongPressTimer);
    if (scroller_ && (press == Press::Pending || press == Press::Scrolling))
        scroller_->OnRelease(x, y);
    if (GetCapture() == window)
        ReleaseCapture();
    if (press == Press::Pending && !pressStoppedFling_) {
        editor_.Buffer().MoveCaret(pressIndex_, ShiftDown());
        hasTapped_ = true;
        lastTapTime_ = GetTickCount();
        lastTapPoint_ = POINT{x, y};
        Moved();
    }
    return 0;
}

void TextFieldWnd::TakeOverFromScroller() {
    if (!scroller_)
        return;
    // The scroller lets go of the pointer; the field keeps it for the press.
    handingOver_ = true;
    scroller_->EndDrag();
    handingOver_ = false;
    SetCapture(window);
}

void TextFieldWnd::EndPress() {
    press_ = Press::None;
    KillTimer(window, kLongPressTimer);
}

void TextFieldWnd::OnCaptureChanged(HWND newCapture) {
    if (newCapture == window || handingOver_)
        return;
    if (scroller_ && press_ != Press::Selecting && press_ != Press::Word)
        scroller_->OnCaptureLost();
    EndPress();
}

void TextFieldWnd::OnTimer(UINT_PTR id) {
    if (id == kLongPressTimer) {
        KillTimer(window, kLongPressTimer);
        if (press_ != Press::Pending)
            return;
        press_ = Press::LongPressed;
        if (scroller_)
            scroller_->EndDrag();
        if (GetCapture() == window)
            ReleaseCapture();
        OpenMenu();
        return;
    }
    if (scroller_)
        scroller_->OnTimer(id);
}

LRESULT TextFieldWnd::OnMouseWheel(UINT, short delta, int, int) {
    if (!scroller_)
        return 0;
    scroller_->SetPosition(scroller_->Position() - delta * kWheelLines * layout_.LineHeight() / kWheelDelta);
    return 0;
}

void TextFieldWnd::OnSize(UINT, UINT) {
    Relayout();
    EnsureCaretVisible();
    InvalidateRect(window, nullptr, false);
}

void TextFieldWnd::RefreshViewport() {
    if (window)
        InvalidateRect(window, nullptr, false);
}

// ---- painting --------------------------------------------------------------

void TextFieldWnd::OnPaint(HDC dc) {
    if (!dc)
        return;
    RECT client;
    GetClientRect(window, &client);
    const bool enabled = IsWindowEnabled(window);
    const bool focused = GetFocus() == window;
    dc->FillRect(client, enabled ? kBackground : kDisabledBackground);
    const RECT area = TextArea();
    dc->IntersectClip(area);
    const TextEditBuffer& buffer = editor_.Buffer();
    const std::u16string& composition = editor_.Composition();
    const int compositionStart = buffer.Caret();
    const int compositionEnd = compositionStart + static_cast<int>(composition.size());
    if (composition.empty())
        layout_.SetMarks(buffer.SelectionStart(), buffer.SelectionEnd(), kSelectionText, kSelectionBack, 0,
                         0);
    else
        layout_.SetMarks(0, 0, kSelectionText, kSelectionBack, compositionStart, compositionEnd);
    const int originX = area.left - scrollX_, originY = area.top - ScrollY();
    layout_.Draw(*dc, originX, originY, enabled ? kText : kFrame);
    if (focused && !buffer.HasSelection()) {
        const RECT caret = layout_.CaretRect(editor_.ShownCaret());
        dc->FillSolidRect(originX + caret.left, originY + caret.top, Scale(kCaretWidth), caret.Height(),
                          kCaret);
    }
    dc->ResetClip();
    dc->FrameRect(client, focused ? kFocusFrame : kFrame);
}

} // namespace mirodate
