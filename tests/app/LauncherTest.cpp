// The launcher the desktop starts: it hands "tasks" and a calendar file's
// month to a running headless instance, and reads dates of files that are
// no calendars without harm.
#include "app/Launcher.h"
#include "platform/DefaultApps.h"
#include "platform/InstanceClient.h"
#include "platform/Settings.h"
#include "platform/TextUtil.h"
#include "tests/platform/TempDir.h"
#include "ui/WindowClasses.h"

#include <chrono>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace mirodate::test {
namespace {

pid_t Start(const std::string& binary, const std::vector<std::string>& args, const std::string& output) {
    const pid_t pid = fork();
    if (pid == 0) {
        const int out = open(output.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        dup2(out, 1);
        std::vector<char*> argv{const_cast<char*>(binary.c_str())};
        for (const std::string& arg : args)
            argv.push_back(const_cast<char*>(arg.c_str()));
        argv.push_back(nullptr);
        execv(binary.c_str(), argv.data());
        _exit(127);
    }
    return pid;
}

int WaitExit(pid_t pid) {
    for (int i = 0; i < 3000; ++i) {
        int status = 0;
        if (waitpid(pid, &status, WNOHANG) == pid)
            return WIFEXITED(status) ? WEXITSTATUS(status) : 128;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    kill(pid, SIGKILL);
    waitpid(pid, nullptr, 0);
    return -1;
}

std::string ReadAll(const std::string& path) {
    std::ifstream in(path);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

bool WaitFor(const std::function<bool()>& condition) {
    for (int i = 0; i < 1500; ++i) {
        if (condition())
            return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return false;
}

TEST(Launcher, HandsTasksAndACalendarFileToTheRunningInstance) {
    TempDir dir;
    setenv("XDG_CONFIG_HOME", dir.Path().c_str(), 1);
    const std::string socket = dir.File("link.sock");
    std::ofstream(dir.File("hold.script")) << "wait 600000\n";
    const pid_t first = Start(MIRODATE_BINARY_DIR "/mirodate",
                              {"--socket", socket, "--headless", "--script", dir.File("hold.script"),
                               "--store", dir.File("store"), "calendar"},
                              dir.File("first.out"));
    ASSERT_TRUE(WaitFor([&] {
        InstanceClient client;
        return client.Connect(socket) && client.FindWindow(kMainWndClass, kMainWndTitle);
    }));

    const std::string launcher = MIRODATE_BINARY_DIR "/mirodate-launcher";
    EXPECT_EQ(WaitExit(Start(launcher, {"--socket", socket, "tasks"}, dir.File("l1.out"))), 0);
    EXPECT_TRUE(WaitFor(
        [&] { return ReadAll(dir.File("first.out")).find("command \"tasks\"") != std::string::npos; }));

    std::ofstream(dir.File("invite.ics"))
        << "BEGIN:VCALENDAR\r\nBEGIN:VEVENT\r\nUID:x\r\n"
           "DTSTART;TZID=Europe/Berlin:20270214T190000\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n";
    EXPECT_EQ(WaitExit(Start(launcher, {"--socket", socket, "calendar", dir.File("invite.ics")},
                             dir.File("l2.out"))),
              0);
    EXPECT_TRUE(WaitFor([&] {
        // The running instance opens it in its import page.
        return ReadAll(dir.File("first.out")).find("command \"--import " + dir.File("invite.ics") + "\"") !=
               std::string::npos;
    }));
    kill(first, SIGTERM);
    EXPECT_EQ(WaitExit(first), 0);
}

TEST(Launcher, DashFStartRunsThePreviousProgramWithoutUsAndTakesOverAgain) {
    TempDir dir;
    setenv("XDG_CONFIG_HOME", dir.File("config").c_str(), 1);
    setenv("XDG_DATA_HOME", dir.File("data").c_str(), 1);
    setenv("XDG_DATA_DIRS", dir.File("usr").c_str(), 1);
    setenv("XDG_CONFIG_DIRS", dir.File("etc").c_str(), 1);
    std::filesystem::create_directories(dir.File("config/mirodate"));
    std::filesystem::create_directories(dir.File("data/applications"));
    // The previous calendar program writes down its arguments and the
    // defaults it saw while it ran.
    const std::string script = dir.File("othercal.sh");
    std::ofstream(script) << "#!/bin/sh\necho \"$@\" > " << dir.File("ran.txt") << "\ncat "
                          << dir.File("config/mimeapps.list") << " >> " << dir.File("ran.txt") << "\n";
    std::filesystem::permissions(script, std::filesystem::perms::owner_all);
    std::ofstream(dir.File("data/applications/othercal.desktop"))
        << "[Desktop Entry]\nType=Application\nName=Other\nExec=" << script
        << " %f\nMimeType=text/calendar;\n";
    const std::string original = "[Default Applications]\ntext/calendar=othercal.desktop;\n";
    std::ofstream(dir.File("config/mimeapps.list")) << original;
    // "firstrun" as the running program does it, through the settings of this process.
    Settings::UseFile(dir.File("config/mirodate/settings.conf"));
    std::string error;
    ASSERT_TRUE(DefaultApps::Replace(DefaultApps::Role::Calendar, error)) << error;
    ASSERT_TRUE(DefaultApps::Replace(DefaultApps::Role::Tasks, error)) << error;

    EXPECT_EQ(
        WaitExit(Start(MIRODATE_BINARY_DIR "/mirodate", {"-f", dir.File("invite.ics")}, dir.File("f.out"))),
        0);
    EXPECT_EQ(ReadAll(dir.File("ran.txt")), dir.File("invite.ics") + "\n" + original);
    EXPECT_TRUE(DefaultApps::IsCalendarReplaced());
    EXPECT_TRUE(DefaultApps::IsTasksReplaced());
    unsetenv("XDG_DATA_DIRS");
    unsetenv("XDG_CONFIG_DIRS");
}

TEST(Launcher, CommandsForFilesThatAreNoCalendars) {
    TempDir dir;
    std::ofstream(dir.File("binary.ics"), std::ios::binary) << std::string("\0\x01DTSTART:zz", 12);
    std::ofstream(dir.File("bad.ics")) << "DTSTART:20261399\n";
    std::ofstream(dir.File("date.ics")) << "BEGIN:VEVENT\nDTSTART;VALUE=DATE:20261123\n";
    EXPECT_EQ(Launcher::CommandFor({"calendar", dir.File("missing.ics")}), u"calendar");
    // A file that is there goes to the import page, which judges it.
    EXPECT_EQ(Launcher::CommandFor({"calendar", dir.File("binary.ics")}),
              u"--import " + Utf8ToUtf16(dir.File("binary.ics")));
    EXPECT_EQ(Launcher::CommandFor({dir.File("date.ics")}), u"--import " + Utf8ToUtf16(dir.File("date.ics")));
    EXPECT_EQ(Launcher::CommandFor({"tasks", dir.File("date.ics")}), u"tasks");
    Launcher::Options options;
    std::string error;
    EXPECT_FALSE(Launcher::Parse({"--socket"}, options, error));
    EXPECT_FALSE(Launcher::Parse({"--bogus", "tasks"}, options, error));
}

} // namespace
} // namespace mirodate::test
