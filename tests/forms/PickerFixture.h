#pragma once
// The pickers on the real window system, headless at 480x640 with the
// virtual clock at Friday 15 March 2024 10:00 and the English texts: taps,
// drags and keys go in as a finger and a keyboard would send them.
#include "lang/LanguageTable.h"
#include "platform/VirtualKeys.h"
#include "tests/ui/UiTestFixture.h"

#include <string>

namespace mirodate::test {

class PickerTest : public UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        LanguageTable::Instance().Load(std::string(MIRODATE_BINARY_DIR) + "/lang.en.txt");
    }
    void TearDown() override {
        unsetenv("LC_ALL"); // a test that changed the locale gives it back
        UiTest::TearDown();
    }
    void Key(std::uint32_t key) {
        InjectKey(key);
        windows_->RunUntilIdle();
    }
    // Input for a modal page's own loop: queued, handled once the test's
    // observer returns.
    void InjectKey(std::uint32_t key) {
        DisplayEvent event;
        event.type = DisplayEvent::Type::KeyDown;
        event.key = key;
        display_->Inject(event);
        event.type = DisplayEvent::Type::KeyUp;
        display_->Inject(event);
    }
    void InjectTap(const POINT& point) {
        DisplayEvent event;
        event.type = DisplayEvent::Type::PointerDown;
        event.x = point.x;
        event.y = point.y;
        display_->Inject(event);
        event.type = DisplayEvent::Type::PointerUp;
        display_->Inject(event);
    }
    void Wait(std::uint32_t milliseconds) { windows_->RunFor(milliseconds); }
    // A finger from one point to another in `steps` moves, `stepMs` apart,
    // lifted at the end.
    void Drag(int x1, int y1, int x2, int y2, int steps, std::uint32_t stepMs) {
        Pointer(DisplayEvent::Type::PointerDown, x1, y1);
        for (int step = 1; step <= steps; ++step) {
            Wait(stepMs);
            Pointer(DisplayEvent::Type::PointerMove, x1 + (x2 - x1) * step / steps,
                    y1 + (y2 - y1) * step / steps);
        }
        Pointer(DisplayEvent::Type::PointerUp, x2, y2);
    }
    // A point of a child window, given in its client coordinates, on the screen.
    static POINT OnScreen(HWND child, int x, int y) {
        RECT rect;
        GetWindowRect(child, &rect);
        return POINT{rect.left + x, rect.top + y};
    }
    static POINT CentreIn(HWND child, const RECT& rect) {
        return OnScreen(child, (rect.left + rect.right) / 2, (rect.top + rect.bottom) / 2);
    }
    static POINT CentreOf(HWND control) {
        RECT rect;
        GetWindowRect(control, &rect);
        return POINT{(rect.left + rect.right) / 2, (rect.top + rect.bottom) / 2};
    }
    void TapIn(HWND child, const RECT& rect) {
        const POINT p = CentreIn(child, rect);
        Tap(p.x, p.y);
    }
};

} // namespace mirodate::test
