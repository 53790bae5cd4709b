#pragma once
// A display without a screen: the frame stays in memory and input is injected
// by a script or a test. Wake() and Inject() may be called from any thread.
#include "platform/Display.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <vector>

namespace mirodate {

class HeadlessDisplay : public Display {
public:
    HeadlessDisplay(int width, int height);

    int Width() const override { return width_; }
    int Height() const override { return height_; }
    void Present(const std::uint8_t* pixels, int stride) override;
    bool PollEvent(DisplayEvent& event) override;
    void WaitEvent(int timeoutMs) override;
    void Wake() override;
    void SetFullScreen(bool fullScreen) override { fullScreen_ = fullScreen; }
    bool IsFullScreen() const override { return fullScreen_; }
    bool IsHeadless() const override { return true; }
    void StartTextInput(int x, int y, int width, int height) override;
    void StopTextInput() override { textInputActive_ = false; }
    bool IsTextInputActive() const override { return textInputActive_; }
    // Nothing to show headless; the count lets tests see that it was asked for.
    void SetBusyCursor(bool busy) override { busyCursorShown_ += busy ? 1 : 0; }
    int BusyCursorShownCount() const { return busyCursorShown_; }
    // An in-process clipboard: what one window copies, another pastes.
    bool HasClipboardText() const override { return !clipboard_.empty(); }
    std::string GetClipboardText() const override { return clipboard_; }
    bool SetClipboardText(const std::string& utf8) override;

    // Queues an input event as if the user made it. A Resize event changes the
    // display size when it is taken, like a rotated screen.
    void Inject(const DisplayEvent& event);

    // The last presented frame, Width() x Height() words of 0x00RRGGBB; empty
    // before the first Present.
    const std::vector<std::uint32_t>& Frame() const { return frame_; }
    std::uint32_t PixelAt(int x, int y) const;
    int PresentCount() const { return presentCount_; }
    // Where the last StartTextInput asked the text to go.
    int TextInputX() const { return textInputX_; }
    int TextInputY() const { return textInputY_; }

private:
    int width_;
    int height_;
    bool fullScreen_ = false;
    bool textInputActive_ = false;
    int busyCursorShown_ = 0;
    int textInputX_ = 0;
    int textInputY_ = 0;
    std::string clipboard_;
    std::vector<std::uint32_t> frame_;
    int presentCount_ = 0;

    std::mutex mutex_;
    std::condition_variable wake_;
    std::deque<DisplayEvent> events_;
    bool woken_ = false;
};

} // namespace mirodate
