#include "ui/TextFieldWnd.h"

#include "lang/LanguageTable.h"
#include "platform/TextUtil.h"
#include "platform/VirtualKeys.h"
#include "ui/Clipboard.h"
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
    TextEditBuffer fresh(multiLine);
    fresh.SetLimit(buffer_.Limit());
    buffer_ = fresh;
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
    composition_.clear();
    compositionCursor_ = 0;
    buffer_.SetText(text);
    Relayout();
    EnsureCaretVisible();
    if (window)
        InvalidateRect(window, nullptr, false);
}

void TextFieldWnd::SetLimit(std::size_t units) {
    if (buffer_.SetLimit(units))
        Changed(false);
}

void TextFieldWnd::SetFont(const LOGFONT& logFont) {
    font_ = std::make_unique<Font>(logFont);
    Relayout();
    if (window)
        InvalidateRect(window, nullptr, false);
}

void TextFieldWnd::SetSelection(int anchor, int caret) {
    buffer_.SetSelection(anchor, caret);
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

int TextFieldWnd::ShownCaret() const {
    return buffer_.Caret() + compositionCursor_;
}

void TextFieldWnd::Relayout() {
    const RECT area = TextArea();
    const int wrap = buffer_.IsMultiLine() ? std::max(1, area.Width()) : 0;
    if (composition_.empty()) {
        layout_.SetText(buffer_.Text(), *font_, wrap);
    } else {
        std::u16string shown = buffer_.Text();
        shown.insert(static_cast<size_t>(buffer_.Caret()), composition_);
        layout_.SetText(shown, *font_, wrap);
    }
    if (scroller_) {
        scroller_->SetViewport(area);
        scroller_->Layout();
    }
}

int TextFieldWnd::PositionAt(int x, int y) const {
    const RECT area = TextArea();
    const int shown = layout_.HitTest(x - area.left + scrollX_, y - area.top + ScrollY());
    // Outside a composition the shown text is the buffer's.
    if (composition_.empty() || shown <= buffer_.Caret())
        return shown;
    return std::max(buffer_.Caret(), shown - static_cast<int>(composition_.size()));
}

void TextFieldWnd::EnsureCaretVisible() {
    if (!window)
        return;
    const RECT area = TextArea();
    const RECT caret = layout_.CaretRect(ShownCaret());
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
    const RECT caret = layout_.CaretRect(ShownCaret());
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

void TextFieldWnd::InsertTyped(const std::u16string& text) {
    bool cut = false;
    if (buffer_.Insert(text, &cut))
        Changed(cut);
    else if (cut)
        Notify(EN_MAXTEXT);
}

void TextFieldWnd::ReplaceSelection(const std::u16string& text) {
    InsertTyped(text);
}

// ---- editing commands ------------------------------------------------------

void TextFieldWnd::Copy() {
    if (buffer_.HasSelection())
        Clipboard::SetText(buffer_.SelectedText());
}

void TextFieldWnd::Cut() {
    if (!buffer_.HasSelection())
        return;
    Clipboard::SetText(buffer_.SelectedText());
    if (buffer_.DeleteSelection())
        Changed(false);
}

void TextFieldWnd::Paste() {
    if (!Clipboard::HasText())
        return;
    // Only what can fit is converted; a huge clipboard is not read whole.
    InsertTyped(Clipboard::GetText(buffer_.Limit() + 1));
}

void TextFieldWnd::SelectAll() {
    buffer_.SelectAll();
    Moved();
}

std::vector<ContextMenuItem> TextFieldWnd::MenuItems() const {
    const bool selection = buffer_.SelectionStart() != buffer_.SelectionEnd();
    std::vector<ContextMenuItem> items;
    auto add = [&](const char* key, UINT command, bool enabled) {
        ContextMenuItem item;
        item.text = Lang(key);
        item.command = command;
        item.enabled = enabled;
        items.push_back(std::move(item));
    };
    add("Cut", kCommandCut, selection);
    add("Copy", kCommandCopy, selection);
    add("Paste", kCommandPaste, Clipboard::HasText());
    // Select all asks for a selection too, as cut does.
    add("SelectAll", kCommandSelectAll, selection);
    if (!noInsert_) {
        add("InsertContact", kCommandInsertContact, insertEnabled_);
        add("InsertLocation", kCommandInsertLocation, insertEnabled_);
        add("InsertDate", kCommandInsertDate, insertEnabled_);
    }
    return items;
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
    const bool shift = ShiftDown(), control = ControlDown();
    const int caret = buffer_.Caret();
    auto move = [&](int index) {
        buffer_.MoveCaret(index, shift);
        Moved();
    };
    switch (key) {
    case VK_ESCAPE:
        // A field has nothing to cancel itself: Escape is the page's, which
        // closes or goes back, also while the caret is in one of its fields.
        if (HWND parent = GetParent(window))
            SendMessage(parent, WM_KEYDOWN, key, 0);
        return;
    case VK_LEFT:
        if (buffer_.HasSelection() && !shift)
            move(buffer_.SelectionStart());
        else
            move(control ? buffer_.PreviousWordStart(caret) : buffer_.PreviousPosition(caret));
        break;
    case VK_RIGHT:
        if (buffer_.HasSelection() && !shift)
            move(buffer_.SelectionEnd());
        else
            move(control ? buffer_.NextWordEnd(caret) : buffer_.NextPosition(caret));
        break;
    case VK_UP:
    case VK_DOWN: {
        if (!buffer_.IsMultiLine())
            break;
        const RECT at = layout_.CaretRect(caret);
        const int y = key == VK_UP ? at.top - 1 : at.bottom + 1;
        if (y < 0)
            move(0);
        else if (y >= layout_.Height())
            move(buffer_.Length());
        else
            move(layout_.HitTest(at.left, y));
        break;
    }
    case VK_HOME:
        move(control ? 0 : layout_.LineStart(caret));
        break;
    case VK_END:
        move(control ? buffer_.Length() : layout_.LineEnd(caret));
        break;
    case VK_DELETE:
        if (shift && buffer_.HasSelection())
            Cut();
        else if (buffer_.DeleteForward(control))
            Changed(false);
        break;
    case 'A':
        if (control)
            SelectAll();
        break;
    case 'C':
        if (control)
            Copy();
        break;
    case 'X':
        if (control)
            Cut();
        break;
    case 'V':
        if (control)
            Paste();
        break;
    default:
        break;
    }
}

void TextFieldWnd::OnChar(char16_t ch, UINT flags) {
    if (!(flags & static_cast<UINT>(kCharFromTextInput))) {
        // Characters that keys stand for.
        if (ch == u'\b') {
            if (buffer_.DeleteBackward(ControlDown()))
                Changed(false);
        } else if (ch == u'\r') {
            if (buffer_.IsMultiLine())
                InsertTyped(u"\n");
            if (window)
                Notify(EN_ENTER);
        }
        return;
    }
    // Committed text ends the composition it came from.
    if (!composition_.empty()) {
        composition_.clear();
        compositionCursor_ = 0;
        Relayout();
    }
    if (IsHighSurrogate(ch)) {
        pendingHighSurrogate_ = ch; // the low half follows in the next message
        return;
    }
    // CR LF from an input method is one line break, as in pasted text.
    const bool afterCr = lastTypedCr_;
    lastTypedCr_ = ch == u'\r';
    if (afterCr && ch == u'\n')
        return;
    std::u16string text;
    if (IsLowSurrogate(ch) && pendingHighSurrogate_)
        text.push_back(pendingHighSurrogate_);
    pendingHighSurrogate_ = 0;
    text.push_back(ch);
    // Control characters an input method sends are cleaned away, except a
    // line break in a multi-line field.
    InsertTyped(text);
}

void TextFieldWnd::OnComposition() {
    const std::u16string& composition = Wm().GetComposition();
    // The composition lives in the field only while it has the focus, and
    // only as much of it as the limit leaves room for.
    std::u16string clean = TextEditBuffer::Clean(composition, false);
    const std::size_t room =
        buffer_.Limit() - std::min(buffer_.Limit(), static_cast<std::size_t>(buffer_.Length()));
    if (clean.size() > room)
        clean.resize(room);
    if (buffer_.HasSelection() && !clean.empty() && buffer_.DeleteSelection())
        Changed(false);
    composition_ = clean;
    compositionCursor_ = std::min(Wm().GetCompositionCursor(), static_cast<int>(composition_.size()));
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
        if (buffer_.DeleteSelection())
            Changed(false);
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
    if (!composition_.empty()) {
        composition_.clear();
        compositionCursor_ = 0;
        Relayout();
    }
    pendingHighSurrogate_ = 0;
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
        buffer_.SelectWord(pressIndex_);
        wordStart_ = buffer_.SelectionStart();
        wordEnd_ = buffer_.SelectionEnd();
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
        buffer_.MoveCaret(pressIndex_, ShiftDown());
    }
    const int index = PositionAt(x, y);
    if (press_ == Press::Word) {
        if (!moved)
            return;
        // Dragging from a double-tapped word keeps the whole word selected.
        if (index < wordStart_)
            buffer_.SetSelection(wordEnd_, index);
        else
            buffer_.SetSelection(wordStart_, std::max(index, wordEnd_));
    } else {
        buffer_.MoveCaret(index, true);
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
        buffer_.MoveCaret(pressIndex_, ShiftDown());
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
    const int compositionStart = buffer_.Caret();
    const int compositionEnd = compositionStart + static_cast<int>(composition_.size());
    if (composition_.empty())
        layout_.SetMarks(buffer_.SelectionStart(), buffer_.SelectionEnd(), kSelectionText, kSelectionBack, 0,
                         0);
    else
        layout_.SetMarks(0, 0, kSelectionText, kSelectionBack, compositionStart, compositionEnd);
    const int originX = area.left - scrollX_, originY = area.top - ScrollY();
    layout_.Draw(*dc, originX, originY, enabled ? kText : kFrame);
    if (focused && !buffer_.HasSelection()) {
        const RECT caret = layout_.CaretRect(ShownCaret());
        dc->FillSolidRect(originX + caret.left, originY + caret.top, Scale(kCaretWidth), caret.Height(),
                          kCaret);
    }
    dc->ResetClip();
    dc->FrameRect(client, focused ? kFocusFrame : kFrame);
}

} // namespace mirodate
