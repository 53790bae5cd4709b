// "Sync" against a real CalDAV server: Radicale on 127.0.0.1 on a free port
// with its storage in the test's folder and no authentication, vdirsyncer
// configured against it, and the main window on the real window system
// (headless, virtual clock) with a real vdir store. The synchroniser that
// hangs is a script on PATH; the server that answers 500 is a small one of
// the test's own.
#include "app/MainWnd.h"
#include "app/MarkerWorker.h"
#include "data/PimStore.h"
#include "forms/AppointmentEditor.h"
#include "lang/LanguageTable.h"
#include "platform/ChildProcess.h"
#include "platform/TextUtil.h"
#include "store/VdirSource.h"
#include "tests/ui/UiTestFixture.h"
#include "ui/MessagePage.h"
#include "ui/RegisteredMessages.h"
#include "ui/ScreenBars.h"

#include <arpa/inet.h>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <netinet/in.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

namespace mirodate::test {
namespace {

using namespace std::chrono_literals;

// Longer than a button's guard against repeated taps.
constexpr std::uint32_t kButtonGuardMs = 1000;

// Counts the broadcasts that tell open views to reload.
class ReloadCounter : public BaseWnd {
public:
    int reloads = 0;
    HWND Open() {
        message_ = RegisterWindowMessage(kPoomDataChangedName);
        return Create(nullptr, "MIRODATE::SYNCCOUNTER", WS_POPUP, u"counter", 0, 0, 1, 1);
    }
    LRESULT WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) override {
        if (message == message_)
            ++reloads;
        return BaseWnd::WindowProc(hwnd, message, wParam, lParam);
    }

private:
    UINT message_ = 0;
};

int FreePort() {
    const int fd = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address);
    getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length);
    const int port = ntohs(address.sin_port);
    close(fd);
    return port;
}

bool PortAnswers(int port) {
    const int fd = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const bool connected = connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
    close(fd);
    return connected;
}

std::string ReadAll(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return std::string((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
}

std::string Event(const std::string& uid, const std::string& summary, const std::string& stamp) {
    return "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//test server//EN\r\nBEGIN:VEVENT\r\nUID:" + uid +
           "\r\nDTSTAMP:" + stamp +
           "\r\nDTSTART:20240320T090000Z\r\nDTEND:20240320T100000Z\r\nSUMMARY:" + summary +
           "\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n";
}

class SyncTest : public UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        ScreenBars::Reset();
        setenv("XDG_CACHE_HOME", (dir_ + "/cache").c_str(), 1);
        setenv("VDIRSYNCER_CONFIG", (dir_ + "/vdirsyncer.conf").c_str(), 1);
        oldPath_ = getenv("PATH") ? getenv("PATH") : "";
        VdirSource::Options options;
        options.createIfMissing = true;
        options.useIndex = false;
        auto source = std::make_unique<VdirSource>(Store(), options);
        source_ = source.get();
        WindowManager* windows = windows_.get();
        ASSERT_TRUE(PimStore::Instance().Open(std::move(source), [this, windows](const PimNotification& n) {
            if (HWND main = mainHwnd_.load())
                windows->PostMessage(main, n.message, n.oid, n.folder);
        }));
        // Each message page is recorded and answered with its button.
        MessagePage::SetOpenObserver([this](MessagePage& page) {
            messages_.push_back(Utf16ToUtf8(page.Text()));
            const RECT button = page.ButtonScreenRect(0);
            DisplayEvent down;
            down.type = DisplayEvent::Type::PointerDown;
            down.x = (button.left + button.right) / 2;
            down.y = (button.top + button.bottom) / 2;
            DisplayEvent up = down;
            up.type = DisplayEvent::Type::PointerUp;
            display_->Inject(down);
            display_->Inject(up);
        });
    }
    void TearDown() override {
        MessagePage::SetOpenObserver(nullptr);
        mainHwnd_ = nullptr;
        main_.reset();
        PimStore::Instance().Close();
        server_.Kill();
        setenv("PATH", oldPath_.c_str(), 1);
        unsetenv("VDIRSYNCER_CONFIG");
        UiTest::TearDown();
    }
    std::string Store() const { return dir_ + "/store"; }
    std::string Url() const { return "http://127.0.0.1:" + std::to_string(port_) + "/user/calendar/"; }

    static bool HaveTools() {
        return ChildProcess::IsOnPath("radicale") && ChildProcess::IsOnPath("vdirsyncer");
    }

    // An HTTP request through Python's standard library (Radicale brings
    // Python along); the answer's status, and its body in `body`.
    int Http(const std::string& method, const std::string& url, const std::string& payload = "",
             std::string* body = nullptr) {
        const std::string in = dir_ + "/http-in", out = dir_ + "/http-out";
        std::ofstream(in, std::ios::binary) << payload;
        const std::string script =
            "import sys, urllib.request, urllib.error\n"
            "data = open(sys.argv[3], 'rb').read() or None\n"
            "req = urllib.request.Request(sys.argv[2], data=data, method=sys.argv[1],\n"
            "    headers={'Content-Type': 'text/calendar; charset=utf-8'})\n"
            "try:\n"
            "    r = urllib.request.urlopen(req, timeout=10); code, text = r.status, r.read()\n"
            "except urllib.error.HTTPError as e:\n"
            "    code, text = e.code, e.read()\n"
            "open(sys.argv[4], 'wb').write(text)\n"
            "print(code)\n";
        std::ofstream(dir_ + "/davclient.py") << script;
        const std::string command =
            "python3 " + dir_ + "/davclient.py " + method + " '" + url + "' " + in + " " + out;
        FILE* pipe = popen(command.c_str(), "r");
        if (!pipe)
            return -1;
        int code = -1;
        if (std::fscanf(pipe, "%d", &code) != 1)
            code = -1;
        pclose(pipe);
        if (body)
            *body = ReadAll(out);
        return code;
    }

    void StartRadicale() {
        port_ = port_ ? port_ : FreePort();
        std::ofstream(dir_ + "/radicale.conf")
            << "[server]\nhosts = 127.0.0.1:" << port_
            << "\n[auth]\ntype = none\n[storage]\nfilesystem_folder = " << dir_
            << "/radicale\n[logging]\nlevel = warning\n";
        ASSERT_TRUE(server_.Start({"radicale", "--config", dir_ + "/radicale.conf"}, dir_ + "/radicale.log"));
        WaitForPort();
    }
    void WaitForPort() {
        const auto deadline = std::chrono::steady_clock::now() + 15s;
        while (!PortAnswers(port_) && std::chrono::steady_clock::now() < deadline)
            std::this_thread::sleep_for(50ms);
        ASSERT_TRUE(PortAnswers(port_)) << ReadAll(dir_ + "/radicale.log");
    }
    // The example configuration of the README, pointed at this test's folders.
    void WriteConfig() {
        std::ofstream(dir_ + "/vdirsyncer.conf")
            << "[general]\nstatus_path = \"" << dir_ << "/status/\"\n\n"
            << "[pair mirodate_calendar]\na = \"mirodate_calendar_local\"\nb = \"mirodate_calendar_remote\"\n"
            << "collections = null\nconflict_resolution = \"a wins\"\n\n"
            << "[storage mirodate_calendar_local]\ntype = \"filesystem\"\npath = \"" << Store()
            << "/calendar/\"\nfileext = \".ics\"\n\n"
            << "[storage mirodate_calendar_remote]\ntype = \"caldav\"\nurl = \"" << Url() << "\"\n";
    }
    void MakeCalendarOnServer() {
        ASSERT_EQ(Http("MKCOL", "http://127.0.0.1:" + std::to_string(port_) + "/user/"), 201);
        ASSERT_EQ(Http("MKCALENDAR", Url()), 201);
    }
    void StartMain() {
        main_ = std::make_unique<MainWnd>();
        ASSERT_TRUE(main_->Create(u""));
        mainHwnd_ = main_->GetHwnd();
        WaitForMarkers();
    }
    void WaitForMarkers() {
        const auto deadline = std::chrono::steady_clock::now() + 10s;
        do {
            windows_->RunUntilIdle();
            windows_->WaitOnDisplay(20);
        } while (MarkerWorker::RunningJobs() > 0 && std::chrono::steady_clock::now() < deadline);
        windows_->RunUntilIdle();
    }
    // "Sync" from the menu, and the run to its end and its one reload.
    void SyncFromMenu() {
        main_->OnDeferredCommand(MainWnd::kCmdSync);
        ASSERT_TRUE(main_->Sync().IsRunning());
        EXPECT_FALSE(main_->Status().Activity().empty());
        const auto deadline = std::chrono::steady_clock::now() + 40s;
        while (main_->Sync().IsRunning() && std::chrono::steady_clock::now() < deadline) {
            std::this_thread::sleep_for(50ms);
            windows_->RunFor(MainWnd::kSyncPollPeriod);
        }
        ASSERT_FALSE(main_->Sync().IsRunning());
        EXPECT_TRUE(main_->Status().Activity().empty());
        // The last change reports of the run arrive within the settling time.
        std::this_thread::sleep_for(200ms);
        windows_->RunFor(MainWnd::kSyncSettleDelay);
        WaitForMarkers();
    }

    // Creates an appointment the way a user does in the program: the editor
    // opened from the main window on 20 March, the subject typed into its
    // focused field and "OK" tapped. The oid of the item it saved.
    std::int32_t CreateAppointmentInProgram(const std::u16string& subject) {
        const DateTime day(2024, 3, 20);
        if (!main_->Router().NewAppointment(day, main_->GetHwnd()) || !main_->Router().Editor()) {
            ADD_FAILURE() << "the appointment editor did not open";
            return 0;
        }
        windows_->RunUntilIdle();
        AppointmentEditor& editor = *main_->Router().Editor();
        DisplayEvent typed;
        typed.type = DisplayEvent::Type::Text;
        typed.text = Utf16ToUtf8(subject);
        display_->Inject(typed);
        windows_->RunUntilIdle();
        EXPECT_EQ(editor.SubjectField().GetText(), subject);
        // After the button's guard against repeated taps.
        Clock::Current().Advance(kButtonGuardMs);
        windows_->RunUntilIdle();
        RECT ok;
        GetWindowRect(editor.OkButton().GetHwnd(), &ok);
        Tap((ok.left + ok.right) / 2, (ok.top + ok.bottom) / 2);
        windows_->RunUntilIdle();
        EXPECT_EQ(main_->Router().Editor(), nullptr) << "the editor is still open";
        std::vector<PimItem> items;
        PimStore::Instance().GetDayAppointments(day.GetYear(), day.GetMonth(), day.GetDay(), items);
        for (const PimItem& item : items)
            if (item.subject == subject)
                return item.oid;
        ADD_FAILURE() << "the editor saved no appointment " << Utf16ToUtf8(subject);
        return 0;
    }
    std::u16string SubjectOf(std::int32_t oid) {
        PimRecord record;
        return source_->GetItemFromOid(oid, record) ? record.subject : u"(missing)";
    }
    // The server's file of an item (Radicale names it by its href).
    std::string ServerFileOf(const std::string& uid) {
        std::error_code error;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(dir_ + "/radicale", error))
            if (entry.path().extension() == ".ics" &&
                ReadAll(entry.path()).find("UID:" + uid) != std::string::npos)
                return entry.path().filename().string();
        return "";
    }
    int LocalFiles() {
        int count = 0;
        for (const auto& entry : std::filesystem::directory_iterator(Store() + "/calendar"))
            if (entry.path().extension() == ".ics")
                ++count;
        return count;
    }

    VdirSource* source_ = nullptr;
    std::unique_ptr<MainWnd> main_;
    std::atomic<HWND> mainHwnd_{nullptr};
    ChildProcess server_;
    int port_ = 0;
    std::string oldPath_;
    std::vector<std::string> messages_;
};

TEST_F(SyncTest, RoundTripsWithRadicaleAndReloadsOncePerRun) {
    if (!HaveTools())
        GTEST_SKIP() << "radicale or vdirsyncer is not installed (scripts/install-deps.sh installs them)";
    StartRadicale();
    MakeCalendarOnServer();
    StartMain();
    // Without a configuration naming the store there is nothing to offer.
    EXPECT_FALSE(MainWnd::CanSync());
    WriteConfig();
    EXPECT_TRUE(MainWnd::CanSync());

    // Made here, it reaches the server.
    const std::int32_t oid = CreateAppointmentInProgram(u"Planning");
    PimRecord record;
    ASSERT_TRUE(source_->GetItemFromOid(oid, record));
    const std::string uid = record.uid;
    SyncFromMenu();
    EXPECT_TRUE(messages_.empty()) << messages_.front();
    std::string calendar;
    ASSERT_EQ(Http("GET", Url(), "", &calendar), 200);
    EXPECT_NE(calendar.find("SUMMARY:Planning"), std::string::npos) << calendar;
    EXPECT_NE(calendar.find("UID:" + uid), std::string::npos);

    // Changed on the server, it appears here after the next run, with one reload.
    const std::string href = ServerFileOf(uid);
    ASSERT_FALSE(href.empty());
    ASSERT_EQ(Http("PUT", Url() + href, Event(uid, "Planning (moved room)", "20240301T120000Z")), 201);
    ReloadCounter counter;
    ASSERT_TRUE(counter.Open());
    SyncFromMenu();
    std::this_thread::sleep_for(300ms);
    windows_->RunFor(MainWnd::kSyncReloadDelay + MainWnd::kSyncWatchPeriod);
    EXPECT_EQ(counter.reloads, 1);
    EXPECT_EQ(SubjectOf(oid), u"Planning (moved room)");

    // Both sides changed: the configured resolution ("a wins") keeps ours,
    // on both sides, and no file is lost.
    ASSERT_TRUE(source_->GetItemFromOid(oid, record));
    record.subject = u"Planning (ours)";
    ASSERT_EQ(source_->Save(record, kFolderCalendar), SaveResult::Saved);
    ASSERT_EQ(Http("PUT", Url() + href, Event(uid, "Planning (theirs)", "20240302T120000Z")), 201);
    SyncFromMenu();
    EXPECT_TRUE(messages_.empty()) << messages_.front();
    EXPECT_EQ(SubjectOf(oid), u"Planning (ours)");
    ASSERT_EQ(Http("GET", Url(), "", &calendar), 200);
    EXPECT_NE(calendar.find("SUMMARY:Planning (ours)"), std::string::npos) << calendar;
    EXPECT_EQ(calendar.find("theirs"), std::string::npos);
    EXPECT_EQ(LocalFiles(), 1);
    EXPECT_EQ(ServerFileOf(uid), href);

    // The server gone: a clear message with vdirsyncer's own last lines,
    // and the store as it was.
    const std::string before = ReadAll(source_->FilePath(oid));
    server_.Kill();
    SyncFromMenu();
    ASSERT_EQ(messages_.size(), 1u);
    EXPECT_EQ(messages_[0].rfind(Utf16ToUtf8(Lang("SyncFailed")), 0), 0u) << messages_[0];
    EXPECT_GT(messages_[0].size(), Utf16ToUtf8(Lang("SyncFailed")).size() + 10) << messages_[0];
    EXPECT_EQ(ReadAll(source_->FilePath(oid)), before);
    EXPECT_EQ(LocalFiles(), 1);
}

TEST_F(SyncTest, ServerErrorsAreShownAndNothingIsLost) {
    if (!HaveTools())
        GTEST_SKIP() << "radicale or vdirsyncer is not installed (scripts/install-deps.sh installs them)";
    // A server that answers every request with 500.
    port_ = FreePort();
    std::ofstream(dir_ + "/broken.py")
        << "import http.server, sys\n"
           "class H(http.server.BaseHTTPRequestHandler):\n"
           "    def answer(self):\n"
           "        self.send_response(500); self.send_header('Content-Length', '5'); self.end_headers()\n"
           "        self.wfile.write(b'oops\\n')\n"
           "    do_GET = do_PUT = do_PROPFIND = do_REPORT = do_OPTIONS = do_DELETE = do_HEAD = answer\n"
           "    def log_message(self, *args): pass\n"
           "http.server.HTTPServer(('127.0.0.1', int(sys.argv[1])), H).serve_forever()\n";
    ASSERT_TRUE(server_.Start({"python3", dir_ + "/broken.py", std::to_string(port_)}, dir_ + "/broken.log"));
    WaitForPort();
    WriteConfig();
    StartMain();
    const std::int32_t oid = CreateAppointmentInProgram(u"Kept");
    const std::string before = ReadAll(source_->FilePath(oid));
    SyncFromMenu();
    ASSERT_EQ(messages_.size(), 1u);
    EXPECT_EQ(messages_[0].rfind(Utf16ToUtf8(Lang("SyncFailed")), 0), 0u) << messages_[0];
    EXPECT_NE(messages_[0].find("500"), std::string::npos) << messages_[0];
    EXPECT_EQ(ReadAll(source_->FilePath(oid)), before);
    EXPECT_EQ(SubjectOf(oid), u"Kept");
}

TEST_F(SyncTest, ASynchroniserThatHangsIsStoppedAfterTheTimeLimit) {
    // A vdirsyncer that never ends, first on PATH.
    const std::string bin = dir_ + "/bin";
    std::filesystem::create_directories(bin);
    std::ofstream(bin + "/vdirsyncer") << "#!/bin/sh\necho starting to sync\nexec sleep 600\n";
    std::filesystem::permissions(bin + "/vdirsyncer", std::filesystem::perms::owner_all);
    setenv("PATH", (bin + ":" + oldPath_).c_str(), 1);
    port_ = 9; // nothing is ever asked of it
    WriteConfig();
    StartMain();
    ASSERT_TRUE(MainWnd::CanSync());
    main_->Sync().SetTimeLimit(5000);
    main_->OnDeferredCommand(MainWnd::kCmdSync);
    ASSERT_TRUE(main_->Sync().IsRunning());
    // The window stays responsive meanwhile: taps and timers are answered.
    windows_->RunFor(4000);
    EXPECT_TRUE(main_->Sync().IsRunning());
    EXPECT_TRUE(messages_.empty());
    windows_->RunFor(1000 + MainWnd::kSyncPollPeriod);
    EXPECT_FALSE(main_->Sync().IsRunning());
    ASSERT_EQ(messages_.size(), 1u);
    // "... longer than 5 seconds ..."
    std::u16string expected = Lang("SyncTimedOut");
    if (const size_t at = expected.find(u"%s"); at != std::u16string::npos)
        expected.replace(at, 2, u"5");
    EXPECT_EQ(messages_[0], Utf16ToUtf8(expected));
    EXPECT_EQ(main_->Sync().GetState(), SyncRunner::State::TimedOut);
    windows_->RunFor(MainWnd::kSyncSettleDelay);
    // A new run can start at once.
    EXPECT_TRUE(main_->StartSync());
}

} // namespace
} // namespace mirodate::test
