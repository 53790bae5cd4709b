// The instance link between a running process and a second start: real
// sockets, and for the hand-over real processes of the program.
#include "app/Application.h"
#include "platform/InstanceClient.h"
#include "platform/InstanceProtocol.h"
#include "platform/InstanceServer.h"
#include "tests/platform/TempDir.h"
#include "ui/WindowClasses.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <fstream>
#include <mutex>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

using namespace mirodate;
using mirodate::test::TempDir;

namespace {

struct Recorder {
    std::mutex mutex;
    std::vector<std::string> events;
    bool mainWindow = true;

    InstanceServer::Handler Handler() {
        InstanceServer::Handler h;
        h.hasWindow = [this](const std::string& c, const std::string& t) {
            return t == kMainWndTitle && c == (mainWindow ? kMainWndClass : kSplashScreenClass);
        };
        h.broadcast = [this](const std::string& name) { Add("broadcast " + name); };
        h.copyData = [this](std::uint32_t, const std::string& bytes) {
            Add("copy " + std::string(bytes.begin(), bytes.end()));
            return 1;
        };
        h.bringToFront = [this](const std::string& c, const std::string&) { Add("front " + c); };
        h.close = [this](const std::string& c, const std::string&) { Add("close " + c); };
        return h;
    }
    void Add(std::string event) {
        std::lock_guard lock(mutex);
        events.push_back(std::move(event));
    }
    std::vector<std::string> Events() {
        std::lock_guard lock(mutex);
        return events;
    }
};

int RawConnect(const std::string& path) {
    int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::snprintf(address.sun_path, sizeof address.sun_path, "%s", path.c_str());
    if (connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
        close(fd);
        return -1;
    }
    return fd;
}

std::string Utf16Bytes(const std::string& ascii) {
    return Application::CommandPayload(std::u16string(ascii.begin(), ascii.end()));
}

} // namespace

TEST(InstanceLink, HandOverSendsBroadcastCommandAndRaise) {
    TempDir dir;
    const std::string path = dir.File("s.sock");
    Recorder recorder;
    InstanceServer server;
    ASSERT_TRUE(server.Start(path, recorder.Handler()));

    EXPECT_EQ(Application::HandOver(path, u"calendar -d20100101"), Application::HandOverResult::HandedOver);
    EXPECT_EQ(Application::HandOver(path, u""), Application::HandOverResult::HandedOver);
    auto events = recorder.Events();
    ASSERT_EQ(events.size(), 6u);
    EXPECT_EQ(events[0], "broadcast MIRODATE_WM_MINIMZED_BROADCAST");
    EXPECT_EQ(events[1], "copy " + Utf16Bytes("calendar -d20100101"));
    EXPECT_EQ(events[2], std::string("front ") + kMainWndClass);
    // An empty command line asks the running instance to restore its last view.
    EXPECT_EQ(events[4], "copy " + Utf16Bytes("reactivate"));
}

TEST(InstanceLink, SecondStartWhileLoadingDoesNothing) {
    TempDir dir;
    const std::string path = dir.File("s.sock");
    Recorder recorder;
    recorder.mainWindow = false; // still on the splash screen
    InstanceServer server;
    ASSERT_TRUE(server.Start(path, recorder.Handler()));
    EXPECT_EQ(Application::HandOver(path, u"calendar"), Application::HandOverResult::OtherLoading);
    EXPECT_TRUE(recorder.Events().empty());
    server.Stop();
    EXPECT_EQ(Application::HandOver(path, u"calendar"), Application::HandOverResult::NoInstance);
}

TEST(InstanceLink, StaleSocketDoesNotBlockButLiveOneDoes) {
    TempDir dir;
    const std::string path = dir.File("s.sock");
    {
        // What a crashed instance leaves: a bound socket file nobody listens on.
        int fd = socket(AF_UNIX, SOCK_STREAM, 0);
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::snprintf(address.sun_path, sizeof address.sun_path, "%s", path.c_str());
        ASSERT_EQ(bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
        close(fd);
    }
    EXPECT_EQ(Application::HandOver(path, u"calendar"), Application::HandOverResult::NoInstance);
    Recorder recorder;
    InstanceServer first;
    ASSERT_TRUE(first.Start(path, recorder.Handler()));
    InstanceServer second;
    EXPECT_FALSE(second.Start(path, recorder.Handler()));
    InstanceClient client;
    ASSERT_TRUE(client.Connect(path));
    EXPECT_TRUE(client.FindWindow(kMainWndClass, kMainWndTitle));
}

TEST(InstanceLink, HostileClientsDoNotHurtTheServer) {
    TempDir dir;
    const std::string path = dir.File("s.sock");
    Recorder recorder;
    InstanceServer server;
    ASSERT_TRUE(server.Start(path, recorder.Handler()));

    // Garbage, an enormous declared length, a frame cut off half-way, a
    // client that never sends, and one that closes at once.
    std::vector<int> fds;
    const std::string garbage = "this is not a frame at all \xff\xfe";
    const std::string huge = std::string(1, 'C') + instance::EncodeU32(0xFFFFFFF0u) + "abc";
    const std::string half = instance::EncodeFrame('C', instance::EncodeU32(0) + "half").substr(0, 7);
    for (const std::string* data : {&garbage, &huge, &half}) {
        int fd = RawConnect(path);
        ASSERT_GE(fd, 0);
        ASSERT_EQ(send(fd, data->data(), data->size(), MSG_NOSIGNAL), static_cast<ssize_t>(data->size()));
        fds.push_back(fd);
    }
    fds.push_back(RawConnect(path));
    close(RawConnect(path));
    const std::string tooShort = instance::EncodeFrame('C', "ab");
    int shortFd = RawConnect(path);
    send(shortFd, tooShort.data(), tooShort.size(), MSG_NOSIGNAL);
    fds.push_back(shortFd);

    // A well-behaved client is still served, at once.
    InstanceClient client;
    ASSERT_TRUE(client.Connect(path));
    EXPECT_TRUE(client.FindWindow(kMainWndClass, kMainWndTitle));
    EXPECT_EQ(client.CopyData(0, Utf16Bytes("tasks")), 1);
    for (int fd : fds)
        close(fd);
    auto events = recorder.Events();
    ASSERT_EQ(events.size(), 1u); // the garbage reached no handler
    EXPECT_EQ(events[0], "copy " + Utf16Bytes("tasks"));
    server.Stop();
}

// --- two real processes -------------------------------------------------

namespace {

class ProgramProcess {
public:
    ProgramProcess(const std::vector<std::string>& args, const std::string& outputPath) {
        const char* bin = std::getenv("MIRODATE_BIN");
        binary_ = bin ? bin : MIRODATE_BINARY_DIR "/mirodate";
        pid_ = fork();
        if (pid_ == 0) {
            int out = open(outputPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
            dup2(out, 1);
            std::vector<char*> argv;
            argv.push_back(binary_.data());
            for (const auto& arg : args)
                argv.push_back(const_cast<char*>(arg.c_str()));
            argv.push_back(nullptr);
            execv(binary_.c_str(), argv.data());
            _exit(127);
        }
    }
    ~ProgramProcess() {
        if (pid_ > 0 && !exited_) {
            kill(pid_, SIGKILL);
            waitpid(pid_, nullptr, 0);
        }
    }
    // Waits for the exit; -1 when it did not come within the limit.
    int Wait(std::chrono::milliseconds limit = std::chrono::seconds(30)) {
        const auto deadline = std::chrono::steady_clock::now() + limit;
        while (std::chrono::steady_clock::now() < deadline) {
            int status = 0;
            if (waitpid(pid_, &status, WNOHANG) == pid_) {
                exited_ = true;
                return WIFEXITED(status) ? WEXITSTATUS(status) : 128;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return -1;
    }
    void Terminate() { kill(pid_, SIGTERM); }

private:
    std::string binary_;
    pid_t pid_ = -1;
    bool exited_ = false;
};

std::string ReadAll(const std::string& path) {
    std::ifstream in(path);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

// Waits until a process answers on the socket with its main window.
bool WaitForMainWindow(const std::string& socketPath) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (std::chrono::steady_clock::now() < deadline) {
        InstanceClient client;
        if (client.Connect(socketPath) && client.FindWindow(kMainWndClass, kMainWndTitle))
            return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return false;
}

bool WaitForText(const std::string& path, const std::string& text) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (std::chrono::steady_clock::now() < deadline) {
        if (ReadAll(path).find(text) != std::string::npos)
            return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return false;
}

std::vector<std::string> FirstInstanceArgs(const TempDir& dir, const std::string& socketPath) {
    // A headless run kept alive by a long script wait; no display needed.
    std::ofstream(dir.File("hold.script")) << "wait 600000\n";
    return {"--socket", socketPath,        "--headless", "--script", dir.File("hold.script"),
            "--store",  dir.File("store"), "calendar"};
}

} // namespace

TEST(InstanceHandOver, SecondProcessHandsItsCommandToTheFirst) {
    TempDir dir;
    setenv("XDG_CONFIG_HOME", dir.Path().c_str(), 1);
    const std::string socketPath = dir.File("link.sock");
    ProgramProcess first(FirstInstanceArgs(dir, socketPath), dir.File("first.out"));
    ASSERT_TRUE(WaitForMainWindow(socketPath));

    ProgramProcess second({"--socket", socketPath, "calendar", "-d20100101"}, dir.File("second.out"));
    EXPECT_EQ(second.Wait(), 0);
    EXPECT_TRUE(WaitForText(dir.File("first.out"), "command \"calendar -d20100101\""));
    ProgramProcess third({"--socket", socketPath}, dir.File("third.out"));
    EXPECT_EQ(third.Wait(), 0);
    EXPECT_TRUE(WaitForText(dir.File("first.out"), "command \"reactivate\""));
    // The second starts printed nothing of their own: they only handed over.
    EXPECT_EQ(ReadAll(dir.File("second.out")), "");

    first.Terminate();
    EXPECT_EQ(first.Wait(), 0);
}

TEST(InstanceHandOver, RestartReplacesTheRunningInstance) {
    TempDir dir;
    setenv("XDG_CONFIG_HOME", dir.Path().c_str(), 1);
    const std::string socketPath = dir.File("link.sock");
    ProgramProcess first(FirstInstanceArgs(dir, socketPath), dir.File("first.out"));
    ASSERT_TRUE(WaitForMainWindow(socketPath));

    // The value is compared exactly: "Restart" is handed over like any command.
    ProgramProcess notRestart({"--socket", socketPath, "/ACTION=Restart"}, dir.File("nr.out"));
    EXPECT_EQ(notRestart.Wait(), 0);
    EXPECT_TRUE(WaitForText(dir.File("first.out"), "command \"/ACTION=Restart\""));

    auto args = FirstInstanceArgs(dir, socketPath);
    args.back() = "/action=restart";
    ProgramProcess second(args, dir.File("second.out"));
    EXPECT_EQ(first.Wait(), 0); // closed by the restart
    ASSERT_TRUE(WaitForMainWindow(socketPath));
    ASSERT_TRUE(WaitForText(dir.File("second.out"), "command \"/action=restart\""));
    second.Terminate();
    EXPECT_EQ(second.Wait(), 0);
}
