// Opens a real window titled "Mirodate Probe" with one child window at
// (100, 200), 80 x 80, and prints on stdout what the child's operations
// receive: "down BUTTON X Y" and "up BUTTON X Y" in client coordinates. It
// prints "ready" once the first frame is on the screen and ends after the
// first pointer-up, or after a minute with nothing happening.
#include "platform/SdlDisplay.h"
#include "ui/BaseWnd.h"
#include "ui/Dc.h"
#include "ui/WinApi.h"

#include <cstdio>

using namespace mirodate;

namespace {
constexpr DWORD kGiveUpMs = 60000;

class Target : public BaseWnd {
public:
    void OnPaint(HDC dc) override { dc->FillSolidRect(0, 0, 80, 80, RGB(255, 0, 0)); }
    LRESULT OnPointerDown(int button, int x, int y, WPARAM) override {
        std::printf("down %d %d %d\n", button, x, y);
        std::fflush(stdout);
        return 0;
    }
    LRESULT OnPointerUp(int button, int x, int y, WPARAM) override {
        std::printf("up %d %d %d\n", button, x, y);
        std::fflush(stdout);
        PostQuitMessage(0);
        return 0;
    }
};

class Background : public BaseWnd {
public:
    void OnPaint(HDC dc) override { dc->FillSolidRect(0, 0, 480, 640, RGB(40, 40, 40)); }
};
} // namespace

int main() {
    std::string error;
    auto display = SdlDisplay::Open("Mirodate Probe", 480, 640, error);
    if (!display) {
        std::fprintf(stderr, "probe: %s\n", error.c_str());
        return 1;
    }
    WindowManager windows(*display);
    Background background;
    background.Create(nullptr, "PROBE::BACKGROUND", WS_POPUP | WS_VISIBLE, u"", 0, 0, 480, 640);
    Target target;
    target.Create(background.window, "PROBE::TARGET", WS_CHILD | WS_VISIBLE, u"", 100, 200, 80, 80);
    windows.RunUntilIdle();
    std::printf("ready\n");
    std::fflush(stdout);
    const DWORD start = GetTickCount();
    windows.SetStopCheck([start] { return GetTickCount() - start > kGiveUpMs; });
    return windows.Run();
}
