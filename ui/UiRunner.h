#pragma once
// One run of the user interface: opens the display the options choose (a
// real window, or headless in memory), installs the virtual clock when asked,
// shows the main window and runs the message loop until the program quits,
// the script ends, or the start-up screenshot is written.
#include "platform/Display.h"
#include "platform/Types.h"
#include "ui/HeadlessScript.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace mirodate {

class WindowManager;
class BaseWnd;
class ScriptPlayer;

struct UiRunnerOptions {
    int width = 480;
    int height = 640;
    bool headless = false;
    bool virtualClock = false;
    // Where the clock starts (headless only); wYear 0 means the real time.
    SYSTEMTIME startTime{};
    std::string scriptPath;
    std::string screenshotPath;
    // Makes the first top-level window (its window already created); null
    // when that failed. Without one, a plain placeholder window is shown.
    std::function<std::unique_ptr<BaseWnd>()> createMainWindow;
};

class UiRunner {
public:
    explicit UiRunner(UiRunnerOptions options);
    ~UiRunner();

    // Reads the script and opens the display. On failure returns false with a
    // message and the exit status to end with (2 for a bad script line).
    bool Prepare(std::string& error, int& exitStatus);
    // Runs `task` on the UI thread; safe from any thread once prepared.
    void Post(std::function<void()> task);
    // Closes the main window from any thread, as a close request does.
    void RequestClose();
    // Runs until the end; `stop` is polled and ends the loop when it says so.
    int Run(std::function<bool()> stop);

    // Clock time a start-up screenshot waits for the first pages to settle.
    static constexpr std::uint32_t kStartupSettleMs = 300;

private:
    UiRunnerOptions options_;
    std::vector<ScriptAction> script_;
    std::unique_ptr<Display> display_;
    std::unique_ptr<WindowManager> windows_;
    std::unique_ptr<BaseWnd> mainWindow_;
    std::unique_ptr<ScriptPlayer> player_;
};

} // namespace mirodate
