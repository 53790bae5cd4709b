#include "ui/InputRouter.h"

#include "platform/TextUtil.h"
#include "ui/Messages.h"
#include "ui/WindowClasses.h"
#include "ui/WindowManager.h"
#include "ui/WindowTree.h"

#include <algorithm>
#include <cstdlib>

namespace mirodate {

namespace {
// Double clicks: the second press within this time and distance.
constexpr std::uint32_t kDoubleClickTime = 500;
constexpr int kDoubleClickDistance = 4;
// The key-up flags of a key message (previous state down, transition).
constexpr LPARAM kKeyUpFlags = static_cast<LPARAM>(0xC0000001u);
} // namespace

InputRouter::InputRouter(WindowManager& manager, WindowTree& tree, Display& display)
    : manager_(manager), tree_(tree), display_(display) {}

// ---- activation, focus and capture ----------------------------------------

HWND InputRouter::SetActiveWindow(HWND handle) {
    HWND top = tree_.TopLevelOf(handle);
    if (!top)
        return nullptr;
    const HWND previous = active_;
    manager_.BringWindowToTop(top);
    if (top == previous)
        return previous;
    active_ = top;
    if (previous && manager_.IsWindow(previous))
        manager_.SendMessage(previous, WM_ACTIVATE, MAKEWPARAM(WA_INACTIVE, 0),
                             reinterpret_cast<LPARAM>(top));
    if (active_ != top || !manager_.IsWindow(top))
        return previous;
    manager_.SendMessage(top, WM_ACTIVATE, MAKEWPARAM(WA_ACTIVE, 0), reinterpret_cast<LPARAM>(previous));
    if (active_ == top && manager_.IsWindow(top) && (!focus_ || tree_.TopLevelOf(focus_) != top))
        SetFocus(top);
    return previous;
}

void InputRouter::ActivateNextAfter(HWND leaving) {
    const std::vector<HWND>& topLevel = tree_.TopLevel();
    for (auto it = topLevel.rbegin(); it != topLevel.rend(); ++it) {
        if (*it == leaving)
            continue;
        if (manager_.IsWindowVisible(*it) && manager_.IsWindowEnabled(*it)) {
            SetActiveWindow(*it);
            return;
        }
    }
}

void InputRouter::Deactivate(HWND handle) {
    if (active_ != handle)
        return;
    active_ = nullptr;
    manager_.SendMessage(handle, WM_ACTIVATE, MAKEWPARAM(WA_INACTIVE, 0), 0);
    ActivateNextAfter(handle);
}

bool InputRouter::Forget(HWND handle) {
    if (capture_ == handle)
        capture_ = nullptr;
    if (focus_ == handle)
        focus_ = nullptr;
    if (lastDownWindow_ == handle)
        lastDownWindow_ = nullptr;
    const bool wasActive = active_ == handle;
    if (wasActive)
        active_ = nullptr;
    return wasActive;
}

void InputRouter::DropCapture(HWND handle) {
    if (capture_ == handle)
        capture_ = nullptr;
}

HWND InputRouter::SetFocus(HWND handle) {
    if (handle && !manager_.IsWindow(handle))
        return nullptr;
    const HWND previous = focus_;
    if (handle) {
        HWND top = tree_.TopLevelOf(handle);
        if (top != active_)
            SetActiveWindow(top);
        if (focus_ == handle)
            return previous;
    }
    if (handle == focus_)
        return previous;
    const HWND losing = focus_;
    focus_ = handle;
    if (losing && manager_.IsWindow(losing))
        manager_.SendMessage(losing, WM_KILLFOCUS, reinterpret_cast<WPARAM>(handle), 0);
    if (handle && focus_ == handle && manager_.IsWindow(handle))
        manager_.SendMessage(handle, WM_SETFOCUS, reinterpret_cast<WPARAM>(losing), 0);
    return previous;
}

HWND InputRouter::SetCapture(HWND handle) {
    const HWND previous = capture_;
    if (handle && !manager_.IsWindow(handle))
        return previous;
    capture_ = handle;
    if (previous && previous != handle && manager_.IsWindow(previous))
        manager_.SendMessage(previous, WM_CAPTURECHANGED, 0, reinterpret_cast<LPARAM>(handle));
    return previous;
}

bool InputRouter::ReleaseCapture() {
    const HWND previous = capture_;
    capture_ = nullptr;
    if (previous && manager_.IsWindow(previous))
        manager_.SendMessage(previous, WM_CAPTURECHANGED, 0, 0);
    return true;
}

// ---- input -----------------------------------------------------------------

bool InputRouter::TakeInput(MSG& msg, bool remove) {
    if (input_.empty()) {
        DisplayEvent event;
        while (input_.empty() && display_.PollEvent(event))
            TranslateDisplayEvent(event);
    }
    if (input_.empty())
        return false;
    msg = input_.front();
    if (remove)
        input_.pop_front();
    return true;
}

void InputRouter::QueueFor(HWND target, UINT message, WPARAM wParam, LPARAM lParam) {
    MSG msg;
    msg.hwnd = target;
    msg.message = message;
    msg.wParam = wParam;
    msg.lParam = lParam;
    msg.time = manager_.GetTickCount();
    input_.push_back(msg);
}

void InputRouter::QueuePointer(UINT message, int x, int y, WPARAM keys) {
    HWND target = capture_ ? capture_ : tree_.WindowFromPoint(x, y);
    if (!target)
        return;
    if (!capture_) {
        // Input to a disabled window (or one inside a disabled page) is dropped.
        for (HWND w = target; w; w = tree_.Get(w)->parent)
            if (!manager_.IsWindowEnabled(w))
                return;
    }
    if (message == WM_LBUTTONDOWN || message == WM_RBUTTONDOWN || message == WM_MBUTTONDOWN) {
        HWND top = tree_.TopLevelOf(target);
        if (top && top != active_) {
            SetActiveWindow(top);
            if (!manager_.IsWindow(target))
                return;
        }
        const WindowRecord* window = tree_.Get(target);
        const std::uint32_t now = manager_.GetTickCount();
        if (message == WM_LBUTTONDOWN && (window->classStyle & CS_DBLCLKS) && target == lastDownWindow_ &&
            now - lastDownTime_ <= kDoubleClickTime &&
            std::abs(x - lastDownPoint_.x) <= kDoubleClickDistance &&
            std::abs(y - lastDownPoint_.y) <= kDoubleClickDistance) {
            message = WM_LBUTTONDBLCLK;
            lastDownWindow_ = nullptr;
        } else if (message == WM_LBUTTONDOWN) {
            lastDownWindow_ = target;
            lastDownTime_ = now;
            lastDownPoint_ = POINT{x, y};
        }
    }
    POINT client{x, y};
    manager_.ScreenToClient(target, &client);
    MSG msg;
    msg.hwnd = target;
    msg.message = message;
    msg.wParam = keys;
    msg.lParam = MAKELPARAM(client.x, client.y);
    msg.time = manager_.GetTickCount();
    msg.pt = POINT{x, y};
    input_.push_back(msg);
}

void InputRouter::TranslateDisplayEvent(const DisplayEvent& event) {
    using T = DisplayEvent::Type;
    static constexpr UINT kDown[] = {WM_LBUTTONDOWN, WM_RBUTTONDOWN, WM_MBUTTONDOWN};
    static constexpr UINT kUp[] = {WM_LBUTTONUP, WM_RBUTTONUP, WM_MBUTTONUP};
    static constexpr WPARAM kBit[] = {MK_LBUTTON, MK_RBUTTON, MK_MBUTTON};
    const int button = std::clamp(event.button, 0, 2);
    switch (event.type) {
    case T::PointerDown:
        buttonKeys_ |= kBit[button];
        QueuePointer(kDown[button], event.x, event.y, buttonKeys_);
        break;
    case T::PointerMove:
        QueuePointer(WM_MOUSEMOVE, event.x, event.y, buttonKeys_);
        break;
    case T::PointerUp:
        buttonKeys_ &= ~kBit[button];
        QueuePointer(kUp[button], event.x, event.y, buttonKeys_);
        break;
    case T::Wheel:
        if (HWND target = KeyboardTarget())
            QueueFor(target, WM_MOUSEWHEEL, MAKEWPARAM(static_cast<int>(buttonKeys_), event.wheelDelta),
                     MAKELPARAM(event.x, event.y));
        break;
    case T::KeyDown:
    case T::KeyUp:
        if (event.key < keysDown_.size())
            keysDown_[event.key] = event.type == T::KeyDown;
        if (HWND target = KeyboardTarget())
            QueueFor(target, event.type == T::KeyDown ? WM_KEYDOWN : WM_KEYUP, event.key,
                     event.type == T::KeyDown ? 1 : kKeyUpFlags);
        break;
    case T::Text:
        if (HWND target = KeyboardTarget())
            for (char16_t unit : Utf8ToUtf16(event.text))
                QueueFor(target, WM_CHAR, unit, 1 | kCharFromTextInput);
        break;
    case T::Composition: {
        composition_ = Utf8ToUtf16(event.text);
        // The input method counts code points; ours are code units.
        int units = 0;
        for (int points = 0;
             units < static_cast<int>(composition_.size()) && points < event.compositionCursor; ++points)
            units += IsHighSurrogate(composition_[static_cast<size_t>(units)]) ? 2 : 1;
        compositionCursor_ = std::min(units, static_cast<int>(composition_.size()));
        if (HWND target = KeyboardTarget())
            QueueFor(target, WM_IME_COMPOSITION, 0, 0);
        break;
    }
    case T::Resize:
        manager_.OnScreenResize(event.width, event.height);
        break;
    case T::Quit:
        // Closing the program's window closes the main window, as the close
        // path of the instance link does.
        if (HWND main = manager_.FindWindow(kMainWndClass, nullptr))
            manager_.PostMessage(main, WM_CLOSE, 0, 0);
        else
            manager_.PostQuitMessage(0);
        break;
    }
}

} // namespace mirodate
