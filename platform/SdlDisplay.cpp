#include "platform/SdlDisplay.h"

#include "platform/Log.h"
#include "platform/VirtualKeys.h"

#include <SDL.h>

namespace mirodate {

namespace {
// The wheel notch of the window messages.
constexpr int kWheelDelta = 120;

std::uint32_t VirtualKeyFromSdl(SDL_Keycode key) {
    if (key >= SDLK_a && key <= SDLK_z)
        return static_cast<std::uint32_t>('A' + (key - SDLK_a));
    if (key >= SDLK_0 && key <= SDLK_9)
        return static_cast<std::uint32_t>('0' + (key - SDLK_0));
    if (key >= SDLK_F1 && key <= SDLK_F12)
        return VK_F1 + static_cast<std::uint32_t>(key - SDLK_F1);
    switch (key) {
    case SDLK_BACKSPACE:
        return VK_BACK;
    case SDLK_TAB:
        return VK_TAB;
    case SDLK_RETURN:
    case SDLK_KP_ENTER:
        return VK_RETURN;
    case SDLK_ESCAPE:
    case SDLK_AC_BACK:
        return VK_ESCAPE;
    case SDLK_SPACE:
        return VK_SPACE;
    case SDLK_PAGEUP:
        return VK_PRIOR;
    case SDLK_PAGEDOWN:
        return VK_NEXT;
    case SDLK_END:
        return VK_END;
    case SDLK_HOME:
        return VK_HOME;
    case SDLK_LEFT:
        return VK_LEFT;
    case SDLK_UP:
        return VK_UP;
    case SDLK_RIGHT:
        return VK_RIGHT;
    case SDLK_DOWN:
        return VK_DOWN;
    case SDLK_DELETE:
        return VK_DELETE;
    case SDLK_LSHIFT:
    case SDLK_RSHIFT:
        return VK_SHIFT;
    case SDLK_LCTRL:
    case SDLK_RCTRL:
        return VK_CONTROL;
    case SDLK_LALT:
    case SDLK_RALT:
        return VK_MENU;
    default:
        return 0;
    }
}

int ButtonFromSdl(std::uint8_t button) {
    switch (button) {
    case SDL_BUTTON_RIGHT:
        return 1;
    case SDL_BUTTON_MIDDLE:
        return 2;
    default:
        return 0;
    }
}
} // namespace

SdlDisplay::~SdlDisplay() {
    if (waitCursor_)
        SDL_SetCursor(SDL_GetDefaultCursor());
    waitCursor_.reset(); // before SDL goes away
    if (texture_)
        SDL_DestroyTexture(texture_);
    if (renderer_)
        SDL_DestroyRenderer(renderer_);
    if (window_)
        SDL_DestroyWindow(window_);
    SDL_QuitSubSystem(SDL_INIT_VIDEO | SDL_INIT_EVENTS);
}

std::unique_ptr<SdlDisplay> SdlDisplay::Open(const std::string& title, int width, int height,
                                             std::string& error) {
    // The program ends on its own close path; SDL must not take SIGINT/SIGTERM.
    SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
    // A finger on a touch screen also produces a mouse event; we read fingers
    // and real mice separately, so the synthetic copies are not wanted.
    SDL_SetHint(SDL_HINT_TOUCH_MOUSE_EVENTS, "0");
    // Compositions of any length come whole rather than cut at 32 bytes.
    SDL_SetHint(SDL_HINT_IME_SUPPORT_EXTENDED_TEXT, "1");
    if (SDL_InitSubSystem(SDL_INIT_VIDEO | SDL_INIT_EVENTS) != 0) {
        error = std::string("cannot open a window: ") + SDL_GetError();
        return nullptr;
    }
    std::unique_ptr<SdlDisplay> display(new SdlDisplay());
    display->window_ = SDL_CreateWindow(title.c_str(), SDL_WINDOWPOS_UNDEFINED, SDL_WINDOWPOS_UNDEFINED,
                                        width, height, SDL_WINDOW_RESIZABLE | SDL_WINDOW_ALLOW_HIGHDPI);
    if (!display->window_) {
        error = std::string("cannot create the window: ") + SDL_GetError();
        return nullptr;
    }
    // The frame is drawn in memory already; the software renderer only copies
    // it, without starting a GL driver for that.
    display->renderer_ = SDL_CreateRenderer(display->window_, -1, SDL_RENDERER_SOFTWARE);
    if (!display->renderer_)
        display->renderer_ = SDL_CreateRenderer(display->window_, -1, 0);
    if (!display->renderer_) {
        error = std::string("cannot create a renderer: ") + SDL_GetError();
        return nullptr;
    }
    SDL_GetWindowSize(display->window_, &display->width_, &display->height_);
    display->wakeEventType_ = SDL_RegisterEvents(1);
    display->pending_ = std::make_unique<SDL_Event>();
    // SDL starts with text input on; it is turned on while a text field has
    // the focus, so that a phone shows its keyboard only then.
    SDL_StopTextInput();
    return display;
}

void SdlDisplay::Present(const std::uint8_t* pixels, int stride) {
    if (!texture_ || textureWidth_ != width_ || textureHeight_ != height_) {
        if (texture_)
            SDL_DestroyTexture(texture_);
        texture_ = SDL_CreateTexture(renderer_, SDL_PIXELFORMAT_RGB888, SDL_TEXTUREACCESS_STREAMING, width_,
                                     height_);
        textureWidth_ = width_;
        textureHeight_ = height_;
        if (!texture_) {
            Log::Error("cannot create the screen texture: %s", SDL_GetError());
            return;
        }
    }
    SDL_UpdateTexture(texture_, nullptr, pixels, stride);
    SDL_RenderClear(renderer_);
    SDL_RenderCopy(renderer_, texture_, nullptr, nullptr);
    SDL_RenderPresent(renderer_);
}

bool SdlDisplay::Translate(const SDL_Event& sdl, DisplayEvent& event) {
    using T = DisplayEvent::Type;
    switch (sdl.type) {
    case SDL_QUIT:
        event.type = T::Quit;
        return true;
    case SDL_MOUSEBUTTONDOWN:
    case SDL_MOUSEBUTTONUP:
        if (sdl.button.which == SDL_TOUCH_MOUSEID)
            return false;
        event.type = sdl.type == SDL_MOUSEBUTTONDOWN ? T::PointerDown : T::PointerUp;
        event.x = sdl.button.x;
        event.y = sdl.button.y;
        event.button = ButtonFromSdl(sdl.button.button);
        if (event.button == 0)
            pointerDown_ = sdl.type == SDL_MOUSEBUTTONDOWN;
        return true;
    case SDL_MOUSEMOTION:
        // A finger cannot hover: moves count only while the pointer is down.
        if (sdl.motion.which == SDL_TOUCH_MOUSEID || !pointerDown_)
            return false;
        event.type = T::PointerMove;
        event.x = sdl.motion.x;
        event.y = sdl.motion.y;
        return true;
    case SDL_MOUSEWHEEL:
        if (sdl.wheel.which == SDL_TOUCH_MOUSEID)
            return false;
        event.type = T::Wheel;
        SDL_GetMouseState(&event.x, &event.y);
        event.wheelDelta = sdl.wheel.y * kWheelDelta;
        return true;
    case SDL_FINGERDOWN:
    case SDL_FINGERMOTION:
    case SDL_FINGERUP: {
        if (sdl.tfinger.touchId == SDL_MOUSE_TOUCHID)
            return false;
        const long long finger = static_cast<long long>(sdl.tfinger.fingerId);
        if (sdl.type == SDL_FINGERDOWN) {
            if (activeFinger_ != -1)
                return false; // a second finger does not move the pointer
            activeFinger_ = finger;
            event.type = T::PointerDown;
        } else if (finger != activeFinger_) {
            return false;
        } else if (sdl.type == SDL_FINGERUP) {
            activeFinger_ = -1;
            event.type = T::PointerUp;
        } else {
            event.type = T::PointerMove;
        }
        event.x = static_cast<int>(sdl.tfinger.x * static_cast<float>(width_));
        event.y = static_cast<int>(sdl.tfinger.y * static_cast<float>(height_));
        return true;
    }
    case SDL_KEYDOWN:
    case SDL_KEYUP:
        event.type = sdl.type == SDL_KEYDOWN ? T::KeyDown : T::KeyUp;
        event.key = VirtualKeyFromSdl(sdl.key.keysym.sym);
        return event.key != 0;
    case SDL_TEXTINPUT:
        event.type = T::Text;
        event.text = sdl.text.text;
        return true;
    case SDL_TEXTEDITING:
        event.type = T::Composition;
        event.text = sdl.edit.text;
        event.compositionCursor = sdl.edit.start;
        return true;
    case SDL_TEXTEDITING_EXT:
        // A composition too long for the fixed event; SDL hands over a copy.
        event.type = T::Composition;
        if (sdl.editExt.text) {
            event.text = sdl.editExt.text;
            SDL_free(sdl.editExt.text);
        }
        event.compositionCursor = sdl.editExt.start;
        return true;
    case SDL_WINDOWEVENT:
        if (sdl.window.event != SDL_WINDOWEVENT_SIZE_CHANGED)
            return false;
        if (sdl.window.data1 == width_ && sdl.window.data2 == height_)
            return false;
        width_ = sdl.window.data1;
        height_ = sdl.window.data2;
        event.type = T::Resize;
        event.width = width_;
        event.height = height_;
        return true;
    default:
        return false;
    }
}

bool SdlDisplay::PollEvent(DisplayEvent& event) {
    SDL_Event sdl;
    while (true) {
        if (pendingEvent_) {
            sdl = *pending_;
            pendingEvent_ = false;
        } else if (!SDL_PollEvent(&sdl)) {
            return false;
        }
        if (sdl.type == wakeEventType_)
            continue;
        event = DisplayEvent();
        if (Translate(sdl, event))
            return true;
    }
}

void SdlDisplay::WaitEvent(int timeoutMs) {
    if (pendingEvent_)
        return;
    const int got =
        timeoutMs < 0 ? SDL_WaitEvent(pending_.get()) : SDL_WaitEventTimeout(pending_.get(), timeoutMs);
    pendingEvent_ = got != 0;
}

void SdlDisplay::Wake() {
    SDL_Event event{};
    event.type = wakeEventType_;
    SDL_PushEvent(&event);
}

void SdlDisplay::StartTextInput(int x, int y, int width, int height) {
    SDL_Rect rect{x, y, width, height};
    SDL_SetTextInputRect(&rect);
    if (!SDL_IsTextInputActive())
        SDL_StartTextInput();
}

void SdlDisplay::StopTextInput() {
    if (SDL_IsTextInputActive())
        SDL_StopTextInput();
}

bool SdlDisplay::IsTextInputActive() const {
    return SDL_IsTextInputActive() == SDL_TRUE;
}

bool SdlDisplay::HasClipboardText() const {
    return SDL_HasClipboardText() == SDL_TRUE;
}

std::string SdlDisplay::GetClipboardText() const {
    char* text = SDL_GetClipboardText();
    if (!text)
        return {};
    std::string copy(text);
    SDL_free(text);
    return copy;
}

bool SdlDisplay::SetClipboardText(const std::string& utf8) {
    return SDL_SetClipboardText(utf8.c_str()) == 0;
}

void SdlDisplay::SetFullScreen(bool fullScreen) {
    if (fullScreen == fullScreen_)
        return;
    fullScreen_ = fullScreen;
    SDL_SetWindowFullscreen(window_, fullScreen ? SDL_WINDOW_FULLSCREEN_DESKTOP : 0);
}

} // namespace mirodate

namespace mirodate {

void SdlDisplay::CursorDeleter::operator()(SDL_Cursor* cursor) const {
    SDL_FreeCursor(cursor);
}

void SdlDisplay::SetBusyCursor(bool busy) {
    if (busy) {
        if (!waitCursor_)
            waitCursor_.reset(SDL_CreateSystemCursor(SDL_SYSTEM_CURSOR_WAIT));
        if (!waitCursor_ || SDL_GetCursor() == waitCursor_.get())
            return;
        cursorBeforeWait_ = SDL_GetCursor();
        SDL_SetCursor(waitCursor_.get());
        return;
    }
    if (!waitCursor_ || SDL_GetCursor() != waitCursor_.get())
        return;
    SDL_SetCursor(cursorBeforeWait_ ? cursorBeforeWait_ : SDL_GetDefaultCursor());
    cursorBeforeWait_ = nullptr;
}

} // namespace mirodate
