#pragma once
// Input routing: which top-level window is active, which window has the
// keyboard focus and which has captured the pointer, and the translation of
// the display's events into input messages for the right window (pointer
// input to the window under it or the capture, keys and text to the focus,
// double clicks, disabled windows skipped). Queued input waits here until the
// loop takes it, after posted messages.
#include "platform/Display.h"
#include "ui/WinTypes.h"

#include <array>
#include <cstdint>
#include <deque>
#include <string>

namespace mirodate {

class WindowManager;
class WindowTree;

class InputRouter {
public:
    InputRouter(WindowManager& manager, WindowTree& tree, Display& display);

    HWND Active() const { return active_; }
    HWND Focus() const { return focus_; }
    HWND Capture() const { return capture_; }

    HWND SetActiveWindow(HWND window);
    HWND SetFocus(HWND window);
    HWND SetCapture(HWND window);
    bool ReleaseCapture();
    // Activates the frontmost visible, enabled top-level window other than `leaving`.
    void ActivateNextAfter(HWND leaving);
    // A hidden top-level window stops being active, telling it so.
    void Deactivate(HWND window);
    // The window is going away: it loses capture, focus and activation, with
    // no messages; returns whether it was active.
    bool Forget(HWND window);
    // Its capture ends with no message (the window is being destroyed).
    void DropCapture(HWND window);

    // The first queued input message, translating the display's pending
    // events when none is queued.
    bool TakeInput(MSG& msg, bool remove);

    bool IsKeyDown(UINT key) const { return key < keysDown_.size() && keysDown_[key]; }
    const std::u16string& Composition() const { return composition_; }
    int CompositionCursor() const { return compositionCursor_; }

private:
    void TranslateDisplayEvent(const DisplayEvent& event);
    void QueuePointer(UINT message, int x, int y, WPARAM keys);
    // Keys, characters and composition go to the focus, else the active window.
    HWND KeyboardTarget() const { return focus_ ? focus_ : active_; }
    void QueueFor(HWND target, UINT message, WPARAM wParam, LPARAM lParam);

    WindowManager& manager_;
    WindowTree& tree_;
    Display& display_;
    HWND active_ = nullptr;
    HWND focus_ = nullptr;
    HWND capture_ = nullptr;

    std::deque<MSG> input_;
    std::array<bool, 256> keysDown_{};
    std::u16string composition_;
    int compositionCursor_ = 0;
    WPARAM buttonKeys_ = 0; // MK_ bits of the buttons held
    HWND lastDownWindow_ = nullptr;
    std::uint32_t lastDownTime_ = 0;
    POINT lastDownPoint_;
};

} // namespace mirodate
