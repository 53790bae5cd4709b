// The real SDL display under a private Xvfb, driven by xdotool: a click lands
// on the right window at the right client coordinates, typed keys reach a
// focused text field and its copy reaches the clipboard, and the program's
// window appears and ends on SIGTERM. Skipped when Xvfb or xdotool is missing.
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <poll.h>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

extern char** environ;

namespace {

// Longest wait for a line from a child process before the test fails.
constexpr int kLineTimeoutMs = 20000;
// Tries to remove a test's folder, and the pause between them.
constexpr int kRemoveAttempts = 5;
constexpr useconds_t kRemoveRetryUs = 100000;

bool OnPath(const std::string& program) {
    const char* path = std::getenv("PATH");
    std::string dirs = path ? path : "/usr/bin:/bin";
    size_t start = 0;
    while (start <= dirs.size()) {
        const size_t end = dirs.find(':', start);
        const std::string dir =
            dirs.substr(start, end == std::string::npos ? std::string::npos : end - start);
        if (!dir.empty() && access((dir + "/" + program).c_str(), X_OK) == 0)
            return true;
        if (end == std::string::npos)
            break;
        start = end + 1;
    }
    return false;
}

// A child process with its stdout (and optionally one more fd) on pipes.
class Child {
public:
    Child(const std::vector<std::string>& args, const std::vector<std::string>& env, int extraFd = -1) {
        int out[2];
        if (pipe(out) != 0)
            return;
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, out[1], 1);
        posix_spawn_file_actions_addclose(&actions, out[0]);
        if (extraFd >= 0) {
            int extra[2];
            if (pipe(extra) != 0)
                return;
            extraRead_ = extra[0];
            posix_spawn_file_actions_adddup2(&actions, extra[1], extraFd);
            posix_spawn_file_actions_addclose(&actions, extra[0]);
            extraWrite_ = extra[1];
        }
        std::vector<char*> argv;
        for (const std::string& a : args)
            argv.push_back(const_cast<char*>(a.c_str()));
        argv.push_back(nullptr);
        // Our variables replace inherited ones of the same name.
        std::vector<std::string> envStrings;
        for (char** e = environ; *e; ++e) {
            const std::string inherited = *e;
            const std::string name = inherited.substr(0, inherited.find('=') + 1);
            bool replaced = false;
            for (const std::string& own : env)
                replaced = replaced || own.rfind(name, 0) == 0;
            if (!replaced)
                envStrings.push_back(inherited);
        }
        for (const std::string& e : env)
            envStrings.push_back(e);
        std::vector<char*> envp;
        for (const std::string& e : envStrings)
            envp.push_back(const_cast<char*>(e.c_str()));
        envp.push_back(nullptr);
        if (posix_spawnp(&pid_, args[0].c_str(), &actions, nullptr, argv.data(), envp.data()) != 0)
            pid_ = -1;
        posix_spawn_file_actions_destroy(&actions);
        close(out[1]);
        if (extraWrite_ >= 0)
            close(extraWrite_);
        read_ = out[0];
    }
    ~Child() {
        if (pid_ > 0) {
            kill(pid_, SIGKILL);
            waitpid(pid_, nullptr, 0);
        }
        if (read_ >= 0)
            close(read_);
        if (extraRead_ >= 0)
            close(extraRead_);
    }
    bool Started() const { return pid_ > 0; }
    // One line from stdout (or the extra pipe); empty on end of file or timeout.
    std::string ReadLine(bool extra = false) {
        const int fd = extra ? extraRead_ : read_;
        std::string& buffer = extra ? extraBuffer_ : buffer_;
        while (true) {
            const size_t newline = buffer.find('\n');
            if (newline != std::string::npos) {
                std::string line = buffer.substr(0, newline);
                buffer.erase(0, newline + 1);
                return line;
            }
            pollfd p{fd, POLLIN, 0};
            if (poll(&p, 1, kLineTimeoutMs) <= 0)
                return "";
            char chunk[256];
            const ssize_t n = read(fd, chunk, sizeof chunk);
            if (n <= 0)
                return "";
            buffer.append(chunk, static_cast<size_t>(n));
        }
    }
    int Signal(int signal) {
        kill(pid_, signal);
        int status = 0;
        waitpid(pid_, &status, 0);
        pid_ = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    }
    int Wait() {
        int status = 0;
        waitpid(pid_, &status, 0);
        pid_ = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    }

private:
    pid_t pid_ = -1;
    int read_ = -1;
    int extraRead_ = -1;
    int extraWrite_ = -1;
    std::string buffer_;
    std::string extraBuffer_;
};

std::string RunToEnd(const std::vector<std::string>& args, const std::vector<std::string>& env) {
    Child child(args, env);
    std::string output;
    for (std::string line; !(line = child.ReadLine()).empty();)
        output += line + "\n";
    child.Wait();
    return output;
}

class RealDisplayTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (!OnPath("Xvfb") || !OnPath("xdotool"))
            GTEST_SKIP() << "Xvfb or xdotool is not installed";
        // Xvfb picks a free display number itself and reports it once ready.
        xvfb_ = std::make_unique<Child>(std::vector<std::string>{"Xvfb", "-displayfd", "3", "-screen", "0",
                                                                 "800x900x24", "-nolisten", "tcp"},
                                        std::vector<std::string>{}, 3);
        ASSERT_TRUE(xvfb_->Started());
        const std::string number = xvfb_->ReadLine(true);
        ASSERT_FALSE(number.empty()) << "Xvfb did not start";
        display_ = "DISPLAY=:" + number;
        char pattern[] = "/tmp/mirodate-e2e-XXXXXX";
        dir_ = mkdtemp(pattern);
    }
    void TearDown() override {
        xvfb_.reset();
        // A helper the display libraries started (an audio or bus daemon
        // using XDG_RUNTIME_DIR) may still be leaving its files there: a few
        // tries, and a folder left in /tmp is no failure of the program's.
        std::error_code error;
        for (int attempt = 0; !dir_.empty() && attempt < kRemoveAttempts; ++attempt) {
            if (std::filesystem::remove_all(dir_, error) != static_cast<std::uintmax_t>(-1) && !error)
                break;
            usleep(kRemoveRetryUs);
        }
    }
    std::vector<std::string> Env() const {
        return {display_, "SDL_VIDEODRIVER=x11", "TZ=UTC", "LANG=C", "XDG_CONFIG_HOME=" + dir_,
                "XDG_RUNTIME_DIR=" + dir_, "XDG_DATA_HOME=" + dir_,
                // Sanitizer builds: SDL unloads the X11 libraries it opened before
                // the leak check runs, so what they keep cannot be told from ours.
                // Our code is leak-checked headless by the ui tests.
                "ASAN_OPTIONS=detect_leaks=0"};
    }
    std::string FindWindow(const std::string& name) {
        std::string id = RunToEnd({"xdotool", "search", "--sync", "--name", "^" + name + "$"}, Env());
        if (!id.empty() && id.back() == '\n')
            id.pop_back();
        return id.substr(0, id.find('\n'));
    }

    std::unique_ptr<Child> xvfb_;
    std::string display_;
    std::string dir_;
};

TEST_F(RealDisplayTest, ClickReachesOnPointerDownInClientCoordinates) {
    Child probe({MIRODATE_POINTER_PROBE}, Env());
    ASSERT_TRUE(probe.Started());
    ASSERT_EQ(probe.ReadLine(), "ready");
    const std::string window = FindWindow("Mirodate Probe");
    ASSERT_FALSE(window.empty());
    // (130, 250) in the window is (30, 50) in the child at (100, 200).
    RunToEnd({"xdotool", "mousemove", "--window", window, "130", "250", "click", "1"}, Env());
    EXPECT_EQ(probe.ReadLine(), "down 0 30 50");
    EXPECT_EQ(probe.ReadLine(), "up 0 30 50");
    EXPECT_EQ(probe.Wait(), 0);
}

TEST_F(RealDisplayTest, TypingReachesAFocusedTextFieldAndCopyReachesTheClipboard) {
    Child probe({MIRODATE_TEXTFIELD_PROBE}, Env());
    ASSERT_TRUE(probe.Started());
    ASSERT_EQ(probe.ReadLine(), "ready 0"); // no text input before a field has the focus
    const std::string window = FindWindow("Mirodate Text Probe");
    ASSERT_FALSE(window.empty());
    RunToEnd({"xdotool", "mousemove", "--window", window, "60", "125", "click", "1"}, Env());
    RunToEnd({"xdotool", "type", "--window", window, "--delay", "20", "hello world"}, Env());
    RunToEnd({"xdotool", "key", "--window", window, "BackSpace", "Return"}, Env());
    EXPECT_EQ(probe.ReadLine(), "text hello worl");
    EXPECT_EQ(probe.ReadLine(), "input 1");
    EXPECT_EQ(probe.ReadLine(), "clipboard hello worl");
    EXPECT_EQ(probe.Wait(), 0);
}

TEST_F(RealDisplayTest, ProgramShowsItsMainWindowAndEndsOnSigterm) {
    Child program({MIRODATE_PROGRAM, "--socket", dir_ + "/mirodate.sock", "calendar"}, Env());
    ASSERT_TRUE(program.Started());
    EXPECT_EQ(program.ReadLine().rfind("mirodate: command \"calendar\"", 0), 0u);
    EXPECT_FALSE(FindWindow("Mirodate").empty());
    EXPECT_EQ(program.Signal(SIGTERM), 0);
}

} // namespace
