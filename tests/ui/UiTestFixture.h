#pragma once
// A fresh headless window system for each test: 480x640 screen, a virtual
// clock at a fixed date, settings in a temporary file.
#include "platform/Clock.h"
#include "platform/HeadlessDisplay.h"
#include "platform/Settings.h"
#include "ui/WinApi.h"

#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace mirodate::test {

class UiTest : public ::testing::Test {
protected:
    void SetUp() override {
        setenv("TZ", "UTC", 1);
        setenv("LANG", "C", 1);
        char pattern[] = "/tmp/mirodate-ui-XXXXXX";
        dir_ = mkdtemp(pattern);
        Settings::UseFile(dir_ + "/settings.conf");
        SYSTEMTIME start;
        start.wYear = 2024;
        start.wMonth = 3;
        start.wDay = 15;
        start.wHour = 10;
        Clock::Install(std::make_unique<VirtualClock>(start, 1000));
        Open(480, 640);
    }
    void TearDown() override {
        windows_.reset();
        display_.reset();
        Clock::Install(std::make_unique<RealClock>());
        std::filesystem::remove_all(dir_);
    }
    void Open(int width, int height) {
        windows_.reset();
        display_ = std::make_unique<HeadlessDisplay>(width, height);
        windows_ = std::make_unique<WindowManager>(*display_);
    }
    void Tap(int x, int y) {
        Pointer(DisplayEvent::Type::PointerDown, x, y);
        Pointer(DisplayEvent::Type::PointerUp, x, y);
    }
    void Pointer(DisplayEvent::Type type, int x, int y) {
        DisplayEvent event;
        event.type = type;
        event.x = x;
        event.y = y;
        display_->Inject(event);
        windows_->RunUntilIdle();
    }
    // The frame's pixel as a COLORREF.
    COLORREF FramePixel(int x, int y) {
        windows_->ComposeIfNeeded();
        const std::uint32_t v = display_->PixelAt(x, y);
        return RGB((v >> 16) & 0xFF, (v >> 8) & 0xFF, v & 0xFF);
    }

    std::string dir_;
    std::unique_ptr<HeadlessDisplay> display_;
    std::unique_ptr<WindowManager> windows_;
};

} // namespace mirodate::test
