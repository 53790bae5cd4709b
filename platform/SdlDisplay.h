#pragma once
// The real screen: one SDL window showing the composed frame. Mouse and touch
// both become pointer events (each physical pointer once), keys become
// virtual-key codes, typed text arrives as text events, and a resized or
// rotated window reports its new size.
#include "platform/Display.h"

#include <memory>
#include <string>

struct SDL_Window;
struct SDL_Renderer;
struct SDL_Texture;
struct SDL_Cursor;
union SDL_Event;

namespace mirodate {

class SdlDisplay : public Display {
public:
    ~SdlDisplay() override;
    // Opens the window; null with a message in `error` when there is no
    // video device to open it on.
    static std::unique_ptr<SdlDisplay> Open(const std::string& title, int width, int height,
                                            std::string& error);

    int Width() const override { return width_; }
    int Height() const override { return height_; }
    void Present(const std::uint8_t* pixels, int stride) override;
    bool PollEvent(DisplayEvent& event) override;
    void WaitEvent(int timeoutMs) override;
    void Wake() override;
    void SetFullScreen(bool fullScreen) override;
    bool IsFullScreen() const override { return fullScreen_; }
    bool IsHeadless() const override { return false; }
    void StartTextInput(int x, int y, int width, int height) override;
    void StopTextInput() override;
    bool IsTextInputActive() const override;
    bool HasClipboardText() const override;
    std::string GetClipboardText() const override;
    bool SetClipboardText(const std::string& utf8) override;
    void SetBusyCursor(bool busy) override;

private:
    SdlDisplay() = default;
    // Turns one SDL event into ours; false for events we do not pass on.
    bool Translate(const SDL_Event& sdl, DisplayEvent& event);

    SDL_Window* window_ = nullptr;
    SDL_Renderer* renderer_ = nullptr;
    SDL_Texture* texture_ = nullptr;
    int width_ = 0;
    int height_ = 0;
    int textureWidth_ = 0;
    int textureHeight_ = 0;
    bool fullScreen_ = false;
    bool pointerDown_ = false;
    long long activeFinger_ = -1; // the finger that acts as the pointer
    std::uint32_t wakeEventType_ = 0;
    bool pendingEvent_ = false; // an event taken by WaitEvent, not yet polled
    std::unique_ptr<SDL_Event> pending_;
    // The system wait cursor, made on first use, and the one it replaced.
    struct CursorDeleter {
        void operator()(SDL_Cursor* cursor) const;
    };
    std::unique_ptr<SDL_Cursor, CursorDeleter> waitCursor_;
    SDL_Cursor* cursorBeforeWait_ = nullptr;
};

} // namespace mirodate
