// Opens a real window titled "Mirodate Text Probe" with one text field at
// (40, 100), 400 x 50, and prints "ready N" once the first frame is on the
// screen (N: 1 when text input is on, which it must not be before the field
// has the focus). On Enter in the field it prints "text T" (the field's
// text), "input N", then selects all, copies, and prints "clipboard C" as
// the desktop's clipboard holds it, and ends. It gives up after a minute.
#include "platform/SdlDisplay.h"
#include "platform/TextUtil.h"
#include "ui/BaseWnd.h"
#include "ui/Dc.h"
#include "ui/TextFieldWnd.h"
#include "ui/WinApi.h"

#include <cstdio>

using namespace mirodate;

namespace {
constexpr DWORD kGiveUpMs = 60000;

class Page : public BaseWnd {
public:
    TextFieldWnd field;
    Display* display = nullptr;

    void OnPaint(HDC dc) override { dc->FillSolidRect(0, 0, 480, 640, RGB(40, 40, 40)); }
    void OnCommand(UINT, UINT code, HWND) override {
        if (code != EN_ENTER)
            return;
        std::printf("text %s\n", Utf16ToUtf8(field.GetText()).c_str());
        std::printf("input %d\n", display->IsTextInputActive() ? 1 : 0);
        field.SelectAll();
        field.Copy();
        std::printf("clipboard %s\n", display->GetClipboardText().c_str());
        std::fflush(stdout);
        PostQuitMessage(0);
    }
};
} // namespace

int main() {
    std::string error;
    auto display = SdlDisplay::Open("Mirodate Text Probe", 480, 640, error);
    if (!display) {
        std::fprintf(stderr, "probe: %s\n", error.c_str());
        return 1;
    }
    WindowManager windows(*display);
    Page page;
    page.display = display.get();
    page.Create(nullptr, "PROBE::PAGE", WS_POPUP | WS_VISIBLE, u"", 0, 0, 480, 640);
    page.field.Create(page.window, 1, 40, 100, 400, 50, false);
    windows.RunUntilIdle();
    std::printf("ready %d\n", display->IsTextInputActive() ? 1 : 0);
    std::fflush(stdout);
    const DWORD start = GetTickCount();
    windows.SetStopCheck([start] { return GetTickCount() - start > kGiveUpMs; });
    return windows.Run();
}
