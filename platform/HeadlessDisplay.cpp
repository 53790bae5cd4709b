#include "platform/HeadlessDisplay.h"

#include <chrono>
#include <cstring>

namespace mirodate {

HeadlessDisplay::HeadlessDisplay(int width, int height) : width_(width), height_(height) {}

void HeadlessDisplay::Present(const std::uint8_t* pixels, int stride) {
    frame_.resize(static_cast<size_t>(width_) * static_cast<size_t>(height_));
    for (int y = 0; y < height_; ++y)
        std::memcpy(&frame_[static_cast<size_t>(y) * static_cast<size_t>(width_)],
                    pixels + static_cast<std::ptrdiff_t>(y) * stride, static_cast<size_t>(width_) * 4);
    ++presentCount_;
}

std::uint32_t HeadlessDisplay::PixelAt(int x, int y) const {
    if (x < 0 || y < 0 || x >= width_ || y >= height_ || frame_.empty())
        return 0;
    return frame_[static_cast<size_t>(y) * static_cast<size_t>(width_) + static_cast<size_t>(x)] & 0xFFFFFF;
}

void HeadlessDisplay::StartTextInput(int x, int y, int, int) {
    textInputActive_ = true;
    textInputX_ = x;
    textInputY_ = y;
}

bool HeadlessDisplay::SetClipboardText(const std::string& utf8) {
    clipboard_ = utf8;
    return true;
}

bool HeadlessDisplay::PollEvent(DisplayEvent& event) {
    std::lock_guard lock(mutex_);
    if (events_.empty())
        return false;
    event = std::move(events_.front());
    events_.pop_front();
    if (event.type == DisplayEvent::Type::Resize && event.width > 0 && event.height > 0) {
        width_ = event.width;
        height_ = event.height;
        frame_.clear();
    }
    return true;
}

void HeadlessDisplay::WaitEvent(int timeoutMs) {
    std::unique_lock lock(mutex_);
    auto ready = [this] { return woken_ || !events_.empty(); };
    if (timeoutMs < 0)
        wake_.wait(lock, ready);
    else
        wake_.wait_for(lock, std::chrono::milliseconds(timeoutMs), ready);
    woken_ = false;
}

void HeadlessDisplay::Wake() {
    {
        std::lock_guard lock(mutex_);
        woken_ = true;
    }
    wake_.notify_all();
}

void HeadlessDisplay::Inject(const DisplayEvent& event) {
    {
        std::lock_guard lock(mutex_);
        events_.push_back(event);
    }
    wake_.notify_all();
}

} // namespace mirodate
