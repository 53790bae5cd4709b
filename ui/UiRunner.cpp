#include "ui/UiRunner.h"

#include "platform/Clock.h"
#include "platform/HeadlessDisplay.h"
#include "platform/Log.h"
#include "platform/SdlDisplay.h"
#include "ui/PlaceholderMainWnd.h"
#include "ui/ScriptPlayer.h"
#include "ui/WinApi.h"
#include "ui/WindowClasses.h"

#include <cstdio>

namespace mirodate {

UiRunner::UiRunner(UiRunnerOptions options) : options_(std::move(options)) {}

UiRunner::~UiRunner() {
    player_.reset();
    mainWindow_.reset();
    windows_.reset();
    display_.reset();
}

bool UiRunner::Prepare(std::string& error, int& exitStatus) {
    if (!options_.scriptPath.empty() && !HeadlessScript::Load(options_.scriptPath, script_, error)) {
        exitStatus = 2;
        return false;
    }
    if (options_.startTime.wYear != 0) {
        // A fixed today: the clock starts at the given local time and moves
        // on in virtual time only.
        Clock::Install(std::make_unique<VirtualClock>(options_.startTime));
    } else if (options_.virtualClock) {
        Clock::Install(std::make_unique<VirtualClock>(RealClock().GetLocalTime()));
    }
    // A script drives input itself, so it always runs on the headless display.
    if (options_.headless || !options_.scriptPath.empty()) {
        display_ = std::make_unique<HeadlessDisplay>(options_.width, options_.height);
    } else {
        display_ = SdlDisplay::Open(kMainWndTitle, options_.width, options_.height, error);
        if (!display_) {
            error += " (use --headless to run without a display)";
            exitStatus = 1;
            return false;
        }
    }
    windows_ = std::make_unique<WindowManager>(*display_);
    return true;
}

void UiRunner::Post(std::function<void()> task) {
    if (windows_)
        windows_->PostTask(std::move(task));
}

void UiRunner::RequestClose() {
    Post([this] {
        if (HWND main = windows_->FindWindow(kMainWndClass, nullptr))
            windows_->PostMessage(main, WM_CLOSE, 0, 0);
        else
            windows_->PostQuitMessage(0);
    });
}

int UiRunner::Run(std::function<bool()> stop) {
    if (!windows_)
        return 1;
    windows_->SetStopCheck(std::move(stop));
    if (options_.createMainWindow) {
        mainWindow_ = options_.createMainWindow();
    } else if (auto placeholder = std::make_unique<PlaceholderMainWnd>(); placeholder->CreateFullScreen()) {
        mainWindow_ = std::move(placeholder);
    }
    if (!mainWindow_) {
        std::fprintf(stderr, "mirodate: cannot create the main window\n");
        return 1;
    }

    if (!script_.empty() || !options_.scriptPath.empty()) {
        player_ =
            std::make_unique<ScriptPlayer>(*windows_, static_cast<HeadlessDisplay&>(*display_), script_);
        player_->Attach();
        const int code = windows_->Run();
        int status = player_->ExitStatus() != 0 ? player_->ExitStatus() : code;
        if (status == 0 && !options_.screenshotPath.empty() &&
            !windows_->WriteScreenshot(options_.screenshotPath)) {
            std::fprintf(stderr, "mirodate: cannot write %s\n", options_.screenshotPath.c_str());
            status = 1;
        }
        return status;
    }
    if (!options_.screenshotPath.empty() || options_.headless) {
        // Start-up ends when the first pages have had their ready timers.
        windows_->RunFor(kStartupSettleMs);
        if (!options_.screenshotPath.empty() && !windows_->WriteScreenshot(options_.screenshotPath)) {
            std::fprintf(stderr, "mirodate: cannot write %s\n", options_.screenshotPath.c_str());
            return 1;
        }
        return 0;
    }
    return windows_->Run();
}

} // namespace mirodate
