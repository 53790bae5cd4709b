#pragma once
// Where the composed frame goes and where input comes from. The window system
// draws one frame of the whole screen and hands it over in one block; the
// display turns the outside world (a real window, or a script in memory) into
// pointer, key, text and resize events in screen pixels.
#include <cstdint>
#include <string>

namespace mirodate {

struct DisplayEvent {
    enum class Type { PointerDown, PointerMove, PointerUp, Wheel, KeyDown, KeyUp, Text, Resize, Quit };
    Type type = Type::PointerMove;
    int x = 0; // pointer position in screen pixels
    int y = 0;
    int button = 0;          // 0 left (finger), 1 right, 2 middle
    int wheelDelta = 0;      // multiples of 120 per notch, positive away from the user
    std::uint32_t key = 0;   // virtual-key code (platform/VirtualKeys.h)
    std::string text;        // UTF-8 for Text
    int width = 0;           // new screen size for Resize
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
};

} // namespace mirodate
