#pragma once
// Where the composed frame goes and where input comes from. The window system
// draws one frame of the whole screen and hands it over in one block; the
// display turns the outside world (a real window, or a script in memory) into
// pointer, key, text and resize events in screen pixels. It also owns the
// two services that belong to the window system of the desktop: text input
// (the on-screen keyboard and input methods) and the clipboard.
#include <cstdint>
#include <string>

namespace mirodate {

struct DisplayEvent {
    enum class Type {
        PointerDown,
        PointerMove,
        PointerUp,
        Wheel,
        KeyDown,
        KeyUp,
        Text,
        Composition,
        Resize,
        Quit
    };
    Type type = Type::PointerMove;
    int x = 0; // pointer position in screen pixels
    int y = 0;
    int button = 0;            // 0 left (finger), 1 right, 2 middle
    int wheelDelta = 0;        // multiples of 120 per notch, positive away from the user
    std::uint32_t key = 0;     // virtual-key code (platform/VirtualKeys.h)
    std::string text;          // UTF-8 for Text; for Composition the text being composed (empty: none)
    int compositionCursor = 0; // Composition: the input method's caret, in code points into `text`
    int width = 0;             // new screen size for Resize
    int height = 0;
};

class Display {
public:
    virtual ~Display() = default;
    virtual int Width() const = 0;
    virtual int Height() const = 0;
    // Shows a frame of Width() x Height() pixels, 32 bits each (0x00RRGGBB in
    // native byte order, the high byte ignored), rows `stride` bytes apart.
    virtual void Present(const std::uint8_t* pixels, int stride) = 0;
    // Takes the next pending event; false when there is none.
    virtual bool PollEvent(DisplayEvent& event) = 0;
    // Blocks until an event is pending, Wake() is called or the timeout (in
    // real milliseconds, -1 for none) runs out.
    virtual void WaitEvent(int timeoutMs) = 0;
    // Ends a WaitEvent early; safe from any thread.
    virtual void Wake() = 0;
    // Full screen hides the desktop's panels, as the handheld hid its task bar.
    virtual void SetFullScreen(bool fullScreen) = 0;
    virtual bool IsFullScreen() const = 0;
    virtual bool IsHeadless() const = 0;

    // Typed text and input-method composition arrive only while text input
    // is on; on a phone turning it on brings up the on-screen keyboard. The
    // rectangle (screen pixels) is where the text goes, so that candidate
    // windows keep clear of it.
    virtual void StartTextInput(int x, int y, int width, int height) = 0;
    virtual void StopTextInput() = 0;
    virtual bool IsTextInputActive() const = 0;
    // The system's wait cursor while the program is busy; the previous
    // cursor comes back when `busy` is false.
    virtual void SetBusyCursor(bool busy) = 0;

    // The clipboard's text, UTF-8 as the desktop hands it over (not
    // necessarily valid: callers convert with replacement).
    virtual bool HasClipboardText() const = 0;
    virtual std::string GetClipboardText() const = 0;
    virtual bool SetClipboardText(const std::string& utf8) = 0;
};

} // namespace mirodate
