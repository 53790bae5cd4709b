#pragma once
// The entry function: decides whether to hand the command to a running
// instance, to restart it, or to start, and runs the program.
#include "app/ProgramOptions.h"
#include "ui/WinTypes.h"

#include <atomic>
#include <memory>
#include <string>

namespace mirodate {

class MainWnd;
class SplashScreen;

class Application {
public:
    explicit Application(ProgramOptions options);
    ~Application();
    // Returns the process exit code: 0 on every path of the entry function.
    int Run();

    enum class HandOverResult {
        HandedOver,   // a running main window took the command
        OtherLoading, // another instance is still on its splash screen
        NoInstance,   // nobody answered: start
    };
    // Steps 5.1-5.3 of the start: find the running instance and hand over.
    static HandOverResult HandOver(const std::string& socketPath, const std::u16string& commandLine);
    // The WM_COPYDATA payload of a command text: UTF-16 LE with its
    // terminating zero, (length + 1) x 2 bytes.
    static std::string CommandPayload(const std::u16string& text);
    // The receiving side: cbData bytes into a zero-filled buffer, read up to
    // the first zero character.
    static std::u16string CommandFromPayload(const std::string& bytes);

private:
    int Start();
    void OnCommand(const std::u16string& text);
    // The splash screen's load step: opens the store, fills the current
    // month and creates the main window.
    void Load(SplashScreen& splash);
    // Hands a received command to the main window as WM_COPYDATA.
    void DeliverCommand(const std::string& bytes);

    ProgramOptions options_;
    std::string socketPath_;
    std::atomic<bool> loaded_{false};
    std::atomic<bool> quit_{false};
    std::unique_ptr<MainWnd> mainWnd_;
    std::atomic<HWND> mainHwnd_{nullptr}; // for the store's change reports, from its thread
};

} // namespace mirodate
