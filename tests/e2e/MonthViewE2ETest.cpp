// The real program in a real window under a private Xvfb: it starts on a
// demo store, a click with xdotool selects a day, and screenshots of the
// window show the selection moving. Skipped when Xvfb, xdotool or import is
// missing.
#include "ui/Bitmap.h"

#include <csignal>
#include <cstdlib>
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

constexpr int kLineTimeoutMs = 20000;

bool Installed(const std::string& program) {
    for (const char* dir : {"/usr/bin", "/bin", "/usr/local/bin"})
        if (access((std::string(dir) + "/" + program).c_str(), X_OK) == 0)
            return true;
    return false;
}

// A child process whose stdout (and optionally one more descriptor) is read by lines.
class Process {
public:
    Process(const std::vector<std::string>& args, const std::vector<std::string>& env, int extraFd = -1) {
        int out[2], extra[2] = {-1, -1};
        if (pipe(out) != 0 || (extraFd >= 0 && pipe(extra) != 0))
            return;
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, out[1], 1);
        posix_spawn_file_actions_addclose(&actions, out[0]);
        if (extraFd >= 0) {
            posix_spawn_file_actions_adddup2(&actions, extra[1], extraFd);
            posix_spawn_file_actions_addclose(&actions, extra[0]);
        }
        // The given variables come first, so that they win over inherited ones.
        std::vector<std::string> envStrings(env.begin(), env.end());
        for (char** e = environ; *e; ++e)
            envStrings.push_back(*e);
        std::vector<char*> argv, envp;
        for (const auto& a : args)
            argv.push_back(const_cast<char*>(a.c_str()));
        for (const auto& e : envStrings)
            envp.push_back(const_cast<char*>(e.c_str()));
        argv.push_back(nullptr);
        envp.push_back(nullptr);
        if (posix_spawnp(&pid_, args[0].c_str(), &actions, nullptr, argv.data(), envp.data()) != 0)
            pid_ = -1;
        posix_spawn_file_actions_destroy(&actions);
        close(out[1]);
        fds_[0] = out[0];
        if (extraFd >= 0) {
            close(extra[1]);
            fds_[1] = extra[0];
        }
    }
    ~Process() {
        if (pid_ > 0) {
            kill(pid_, SIGKILL);
            waitpid(pid_, nullptr, 0);
        }
        for (int fd : fds_)
            if (fd >= 0)
                close(fd);
    }
    bool Started() const { return pid_ > 0; }
    std::string ReadLine(int which = 0) {
        std::string& buffer = buffers_[which];
        while (true) {
            const size_t newline = buffer.find('\n');
            if (newline != std::string::npos) {
                std::string line = buffer.substr(0, newline);
                buffer.erase(0, newline + 1);
                return line;
            }
            pollfd p{fds_[which], POLLIN, 0};
            if (poll(&p, 1, kLineTimeoutMs) <= 0)
                return "";
            char chunk[256];
            const ssize_t n = read(fds_[which], chunk, sizeof chunk);
            if (n <= 0)
                return "";
            buffer.append(chunk, static_cast<size_t>(n));
        }
    }
    int Stop(int signal) {
        kill(pid_, signal);
        return Wait();
    }
    int Wait() {
        int status = 0;
        waitpid(pid_, &status, 0);
        pid_ = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    }

private:
    pid_t pid_ = -1;
    int fds_[2] = {-1, -1};
    std::string buffers_[2];
};

std::string Output(const std::vector<std::string>& args, const std::vector<std::string>& env) {
    Process process(args, env);
    std::string output;
    for (std::string line; !(line = process.ReadLine()).empty();)
        output += line + "\n";
    process.Wait();
    return output;
}

TEST(MonthViewOnRealDisplay, ClickSelectsADay) {
    if (!Installed("Xvfb") || !Installed("xdotool") || !Installed("import"))
        GTEST_SKIP() << "Xvfb, xdotool or import is not installed";
    char pattern[] = "/tmp/mirodate-e2e-month-XXXXXX";
    const std::string dir = mkdtemp(pattern);
    {
        Process xvfb({"Xvfb", "-displayfd", "3", "-screen", "0", "800x900x24", "-nolisten", "tcp"}, {}, 3);
        ASSERT_TRUE(xvfb.Started());
        const std::string number = xvfb.ReadLine(1);
        ASSERT_FALSE(number.empty()) << "Xvfb did not start";
        // Under the sanitizer build, SDL's D-Bus connection (and what it loads
        // without symbols) stays allocated until exit, so leaks are not
        // counted for the real-window run; the headless tests count ours.
        const std::vector<std::string> env = {"DISPLAY=:" + number,
                                              "SDL_VIDEODRIVER=x11",
                                              "TZ=UTC",
                                              "LANG=C",
                                              "XDG_CONFIG_HOME=" + dir,
                                              "XDG_RUNTIME_DIR=" + dir,
                                              "XDG_DATA_HOME=" + dir,
                                              "XDG_CACHE_HOME=" + dir,
                                              "ASAN_OPTIONS=detect_leaks=0"};
        const std::string store = dir + "/store";
        Output({MIRODATE_PROGRAM, "--store", store, "--demo"}, env);

        Process program({MIRODATE_PROGRAM, "--store", store, "--socket", dir + "/link.sock"}, env);
        ASSERT_TRUE(program.Started());
        // The command line is acted on once the main window exists.
        ASSERT_EQ(program.ReadLine().rfind("mirodate: command", 0), 0u);
        std::string window = Output({"xdotool", "search", "--sync", "--name", "^Mirodate$"}, env);
        window = window.substr(0, window.find('\n'));
        ASSERT_FALSE(window.empty());

        // Where two cells of the 480x640 page lie: the grid starts under the
        // 52-pixel top bar and takes 58% of the space above the 60-pixel menu bar.
        const int gridTop = 52, gridHeight = (640 - 52 - 60) * 58 / 100;
        const int bar = static_cast<int>(gridHeight * 0.125 * 0.75), row = (gridHeight - 2 * bar) / 6;
        auto cellSpot = [&](int r, int c) {
            return std::pair<int, int>{c * (480 / 7) + 14, gridTop + 2 * bar + r * row + 14};
        };
        auto click = [&](std::pair<int, int> at) {
            Output({"xdotool", "mousemove", "--window", window, std::to_string(at.first + 20),
                    std::to_string(at.second + 8), "click", "1"},
                   env);
        };
        auto shot = [&](const std::string& name) {
            const std::string path = dir + "/" + name;
            Output({"import", "-window", window, path}, env);
            return mirodate::Bitmap::LoadPng(path);
        };
        const auto a = cellSpot(2, 2), b = cellSpot(3, 4);
        click(a);
        mirodate::Bitmap first = shot("first.png");
        ASSERT_FALSE(first.IsNull());
        ASSERT_EQ(first.Width(), 480);
        const mirodate::COLORREF selected = first.GetPixel(a.first, a.second);
        // Taps closer than 201 ms to the previous one count as one: tap again
        // until the window shows the new selection.
        mirodate::Bitmap second;
        for (int attempt = 0; attempt < 50; ++attempt) {
            click(b);
            second = shot("second.png");
            if (!second.IsNull() && second.GetPixel(b.first, b.second) == selected)
                break;
        }
        ASSERT_FALSE(second.IsNull());
        // The selection's background moved from the first cell to the second.
        EXPECT_EQ(second.GetPixel(b.first, b.second), selected);
        EXPECT_NE(second.GetPixel(a.first, a.second), selected);
        EXPECT_NE(first.GetPixel(b.first, b.second), selected);
        EXPECT_EQ(program.Stop(SIGTERM), 0);
    }
    std::filesystem::remove_all(dir);
}

} // namespace
