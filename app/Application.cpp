#include "app/Application.h"

#include "app/CmdLineArg.h"
#include "app/CommandRequest.h"
#include "app/MainWnd.h"
#include "app/SplashScreen.h"
#include "app/StoreCommands.h"
#include "data/Categories.h"
#include "data/PimStore.h"
#include "platform/Clock.h"
#include "platform/DefaultApps.h"
#include "platform/InstanceClient.h"
#include "platform/InstanceServer.h"
#include "platform/Log.h"
#include "platform/Settings.h"
#include "platform/TextUtil.h"
#include "store/VdirSource.h"
#include "ui/RegisteredMessages.h"
#include "ui/UiRunner.h"
#include "ui/WinApi.h"
#include "ui/WindowClasses.h"

#include <chrono>
#include <csignal>
#include <cstdio>
#include <thread>

namespace mirodate {

namespace {
std::atomic<bool> g_signalled{false};
void OnSignal(int) {
    g_signalled = true;
}

// After "/action=restart" closed the old instance, wait this long for it to
// give up the socket.
constexpr auto kRestartWait = std::chrono::seconds(5);

std::string DescribeRequest(const CommandRequest& request) {
    using K = CommandRequest::Kind;
    if (request.kind == K::FirstRun)
        return "install the calendar and tasks replacements";
    if (request.kind == K::Restore)
        return "restore the last view";
    if (request.mode == CommandRequest::kNoMode && !request.oidGiven)
        return "nothing (no mode given)";
    std::string text = request.mode == CommandRequest::kTasks ? "tasks" : "calendar";
    static const char* const kViews[] = {"", "Day", "Week", "Month", "Agenda"};
    if (request.view >= 1 && request.view <= 4)
        text += std::string(", ") + kViews[request.view] + " view";
    if (request.oidGiven && request.oid != 0)
        text += ", item " + std::to_string(request.oid);
    char date[64];
    if (request.hasDate)
        std::snprintf(date, sizeof date, ", date %04d-%02d-%02d", request.date.year, request.date.month,
                      request.date.day);
    else
        std::snprintf(date, sizeof date, ", today %+ld days", request.dayOffset);
    text += date;
    if (request.newItem)
        text += ", new item";
    if (request.noParam)
        text += ", as the user left it";
    return text;
}
} // namespace

Application::Application(ProgramOptions options) : options_(std::move(options)) {
    socketPath_ = options_.socketPath.empty() ? InstanceServer::DefaultSocketPath() : options_.socketPath;
}

Application::~Application() = default;

std::string Application::CommandPayload(const std::u16string& text) {
    return EncodeUtf16Le(text) + std::string(2, '\0');
}

std::u16string Application::CommandFromPayload(const std::string& bytes) {
    // cbData bytes in a zero-filled buffer: an odd last byte pairs with a zero.
    std::u16string text = DecodeUtf16Le(bytes + std::string(bytes.size() % 2, '\0'));
    return text.substr(0, text.find(u'\0'));
}

Application::HandOverResult Application::HandOver(const std::string& socketPath,
                                                  const std::u16string& commandLine) {
    InstanceClient client;
    if (!client.Connect(socketPath))
        return HandOverResult::NoInstance;
    if (client.FindWindow(kMainWndClass, kMainWndTitle)) {
        client.Broadcast(kMinimizedBroadcastName);
        const std::u16string text = commandLine.empty() ? u"reactivate" : commandLine;
        client.CopyData(0, CommandPayload(text));
        client.BringToFront(kMainWndClass, kMainWndTitle);
        return HandOverResult::HandedOver;
    }
    if (client.FindWindow(kSplashScreenClass, kSplashScreenTitle))
        return HandOverResult::OtherLoading;
    return HandOverResult::NoInstance;
}

int Application::Run() {
    Log::SetVerbose(options_.verbose);
    if (StoreCommands::Wanted(options_))
        return StoreCommands::Run(options_);
    const std::u16string& commandLine = options_.commandLine;

    // "-f": the desktop's previous calendar or tasks program takes the
    // request, with our defaults taken away while it runs. Nothing of ours
    // starts on that path.
    if (commandLine.rfind(u"-f", 0) == 0) {
        std::vector<std::string> arguments;
        for (size_t i = 1; i < options_.arguments.size(); ++i)
            arguments.push_back(options_.arguments[i]);
        DefaultApps::RunPreviousHandler(arguments);
        return 0;
    }

    std::u16string action;
    GetCmdLineArg(u"action", action, commandLine);
    if (action != u"restart") {
        switch (HandOver(socketPath_, commandLine)) {
        case HandOverResult::HandedOver:
        case HandOverResult::OtherLoading:
            return 0;
        case HandOverResult::NoInstance:
            break;
        }
    } else {
        InstanceClient client;
        if (client.Connect(socketPath_) && client.FindWindow(kMainWndClass, kMainWndTitle))
            client.Close(kMainWndClass, kMainWndTitle);
    }
    return Start();
}

void Application::OnCommand(const std::u16string& text) {
    if (text.rfind(MainWnd::kImportCommand, 0) == 0) {
        std::printf("mirodate: command \"%s\": import page\n", Utf16ToUtf8(text).c_str());
        std::fflush(stdout);
        return;
    }
    const CommandRequest request = CommandRequest::Parse(text);
    std::printf("mirodate: command \"%s\": %s\n", Utf16ToUtf8(text).c_str(),
                DescribeRequest(request).c_str());
    std::fflush(stdout);
}

namespace {
void ReportProgress(int progress, void* context) {
    static_cast<SplashScreen*>(context)->SetProgress(progress + SplashScreen::kInitialProgress);
}
} // namespace

void Application::Load(SplashScreen& splash) {
    const std::string root = options_.storeDir.empty() ? VdirSource::DefaultRoot() : options_.storeDir;
    VdirSource::Options sourceOptions;
    sourceOptions.createIfMissing = true;
    PimStore& store = PimStore::Instance();
    WindowManager* windows = &Wm();
    // Change reports arrive on the watcher's thread and go to the main window's queue.
    const bool opened =
        store.Open(std::make_unique<VdirSource>(root, sourceOptions),
                   [this, windows](const PimNotification& notification) {
                       if (HWND main = mainHwnd_.load())
                           windows->PostMessage(main, notification.message,
                                                static_cast<WPARAM>(notification.oid), notification.folder);
                   });
    if (!opened)
        Log::Warning("cannot read the store at %s; starting without items", root.c_str());
    Categories::LoadCategoryColors();
    store.SetFilters(Settings::GetExcludeFilter(), Settings::GetLastFilter(),
                     Settings::GetHideCompleteTasks(), Settings::GetShowContactsBirthdays(),
                     Settings::GetShowContactsAnniversaries());
    const SYSTEMTIME today = Clock::Current().GetLocalTime();
    store.FillMonth(today.wYear, today.wMonth, true, true, ReportProgress, &splash);

    mainWnd_ = std::make_unique<MainWnd>();
    mainWnd_->SetCommandObserver([this](const std::u16string& text) { OnCommand(text); });
    if (!mainWnd_->Create(splash.commandLine)) {
        std::fprintf(stderr, "mirodate: cannot create the main window\n");
        splash.Close();
        PostQuitMessage(1);
        return;
    }
    mainHwnd_ = mainWnd_->GetHwnd();
    loaded_ = true;
    splash.Close();
}

void Application::DeliverCommand(const std::string& bytes) {
    if (!mainWnd_ || !IsWindow(mainWnd_->GetHwnd()))
        return;
    COPYDATASTRUCT data;
    data.dwData = 0;
    data.cbData = static_cast<DWORD>(bytes.size());
    data.lpData = bytes.data();
    SendMessage(mainWnd_->GetHwnd(), WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&data));
}

int Application::Start() {
    UiRunnerOptions uiOptions;
    uiOptions.width = options_.width;
    uiOptions.height = options_.height;
    uiOptions.headless = options_.headless;
    uiOptions.virtualClock = options_.virtualClock;
    if (options_.nowGiven) {
        uiOptions.startTime.wYear = static_cast<WORD>(options_.nowYear);
        uiOptions.startTime.wMonth = static_cast<WORD>(options_.nowMonth);
        uiOptions.startTime.wDay = static_cast<WORD>(options_.nowDay);
        uiOptions.startTime.wHour = static_cast<WORD>(options_.nowHour);
        uiOptions.startTime.wMinute = static_cast<WORD>(options_.nowMinute);
        uiOptions.startTime.wDayOfWeek =
            static_cast<WORD>(DateTime(options_.nowYear, options_.nowMonth, options_.nowDay).GetDayOfWeek());
    }
    uiOptions.scriptPath = options_.scriptPath;
    uiOptions.screenshotPath = options_.screenshotPath;
    uiOptions.createMainWindow = [this]() -> std::unique_ptr<BaseWnd> {
        auto splash = std::make_unique<SplashScreen>(options_.commandLine,
                                                     [this](SplashScreen& screen) { Load(screen); });
        if (!splash->CreateCentered())
            return nullptr;
        return splash;
    };
    UiRunner ui(uiOptions);
    std::string uiError;
    int uiStatus = 0;
    if (!ui.Prepare(uiError, uiStatus)) {
        std::fprintf(stderr, "mirodate: %s\n", uiError.c_str());
        return uiStatus;
    }

    InstanceServer server;
    InstanceServer::Handler handler;
    handler.hasWindow = [this](const std::string& className, const std::string& title) {
        if (loaded_)
            return className == kMainWndClass && title == kMainWndTitle;
        return className == kSplashScreenClass && title == kSplashScreenTitle;
    };
    handler.broadcast = [](const std::string& name) { Log::Info("broadcast %s", name.c_str()); };
    // Requests arrive on the server thread; the UI thread handles them in order.
    handler.copyData = [this, &ui](std::uint32_t, const std::string& bytes) -> std::int32_t {
        if (bytes.empty() || !loaded_)
            return 0;
        ui.Post([this, bytes] { DeliverCommand(bytes); });
        return 1;
    };
    handler.bringToFront = [](const std::string&, const std::string&) {};
    handler.close = [this, &ui](const std::string& className, const std::string&) {
        if (className == kMainWndClass) {
            quit_ = true;
            ui.RequestClose();
        }
    };

    const auto deadline = std::chrono::steady_clock::now() + kRestartWait;
    while (!server.Start(socketPath_, handler)) {
        if (std::chrono::steady_clock::now() > deadline) {
            Log::Warning("another instance holds %s; running without the instance link", socketPath_.c_str());
            break;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }

    std::signal(SIGINT, OnSignal);
    std::signal(SIGTERM, OnSignal);
    const int status = ui.Run([this] { return quit_ || g_signalled; });
    // Shutdown: the main window, then the store (its reports stop), then the link.
    mainHwnd_ = nullptr;
    mainWnd_.reset();
    PimStore::Instance().Close();
    server.Stop();
    return status;
}

} // namespace mirodate
