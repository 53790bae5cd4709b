// Hand-offs to the desktop: the command lines the four link kinds become
// (recorded), the recorder's installation, and real spawning of programs:
// arguments reach the program untouched by any shell, a missing program is
// reported, and finished children do not linger as zombies.
#include "TempDir.h"
#include "platform/RecordingPlatformServices.h"
#include "platform/SpawnedPlatformServices.h"

#include <chrono>
#include <dirent.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <thread>
#include <unistd.h>

namespace mirodate::test {
namespace {

TEST(PlatformServicesTest, HandOffsBecomeXdgCommandLines) {
    RecordingPlatformServices recorder;
    PlatformServices& services = PlatformServices::Instance();
    EXPECT_EQ(&services, &recorder);
    EXPECT_TRUE(services.OpenUrl("www.example.org/a b"));
    EXPECT_TRUE(services.OpenUrl("WWW.Example.org"));
    EXPECT_TRUE(services.OpenUrl("https://x.org/?q=1&r=2"));
    EXPECT_TRUE(services.SendMail("anna@x.org"));
    EXPECT_TRUE(services.CallNumber("+49 (30) 1234"));
    EXPECT_TRUE(services.OpenPath("/home/me/My Notes.txt"));
    EXPECT_TRUE(services.RunProgram({"gio", "open", "x"}));
    const std::vector<std::vector<std::string>> expected{{"xdg-open", "http://www.example.org/a b"},
                                                         {"xdg-open", "http://WWW.Example.org"},
                                                         {"xdg-open", "https://x.org/?q=1&r=2"},
                                                         {"xdg-email", "anna@x.org"},
                                                         {"xdg-open", "tel:+49(30)1234"},
                                                         {"xdg-open", "/home/me/My Notes.txt"},
                                                         {"gio", "open", "x"}};
    EXPECT_EQ(recorder.Programs(), expected);
    EXPECT_EQ(recorder.Calls()[4], "xdg-open tel:+49(30)1234");
    EXPECT_FALSE(services.CallNumber("  "));
}

TEST(PlatformServicesTest, EmptyArgumentsAndOptionLookalikesStartNothing) {
    RecordingPlatformServices recorder;
    PlatformServices& services = PlatformServices::Instance();
    EXPECT_FALSE(services.OpenUrl(""));
    EXPECT_FALSE(services.OpenUrl("--help"));
    EXPECT_FALSE(services.SendMail("--attach"));
    EXPECT_FALSE(services.CallNumber(""));
    EXPECT_FALSE(services.OpenPath("-x"));
    EXPECT_TRUE(recorder.Calls().empty());
    recorder.SetResult(false);
    EXPECT_FALSE(services.OpenPath("/tmp"));
    EXPECT_EQ(recorder.Calls().size(), 1u);
}

TEST(PlatformServicesTest, RecordersStackAndGiveTheRealInstanceBack) {
    PlatformServices* real = &PlatformServices::Instance();
    {
        RecordingPlatformServices outer;
        {
            RecordingPlatformServices inner;
            EXPECT_EQ(&PlatformServices::Instance(), &inner);
        }
        EXPECT_EQ(&PlatformServices::Instance(), &outer);
    }
    EXPECT_EQ(&PlatformServices::Instance(), real);
    EXPECT_NE(dynamic_cast<SpawnedPlatformServices*>(real), nullptr);
}

// Children of this process that have ended but were not reaped.
int ZombieChildren() {
    int zombies = 0;
    DIR* proc = opendir("/proc");
    if (!proc)
        return 0;
    const std::string self = std::to_string(getpid());
    while (dirent* entry = readdir(proc)) {
        if (entry->d_name[0] < '0' || entry->d_name[0] > '9')
            continue;
        std::ifstream stat(std::string("/proc/") + entry->d_name + "/stat");
        std::string line;
        std::getline(stat, line);
        // pid (comm) state ppid ...; comm may hold blanks, so read after the last ')'.
        const std::size_t close = line.rfind(')');
        if (close == std::string::npos)
            continue;
        std::istringstream rest(line.substr(close + 1));
        std::string state, ppid;
        rest >> state >> ppid;
        if (ppid == self && state == "Z")
            ++zombies;
    }
    closedir(proc);
    return zombies;
}

template <typename Condition> bool WaitFor(Condition condition) {
    // Spawned programs run on their own schedule; give them real time, generously.
    for (int i = 0; i < 500; ++i) {
        if (condition())
            return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return condition();
}

TEST(PlatformServicesTest, ProgramsGetTheirArgumentsWithoutAShellAndAreReaped) {
    TempDir dir;
    SpawnedPlatformServices services;
    // Blanks, a semicolon and a dollar sign stay part of the one argument.
    const std::string name = dir.File("a b;c $HOME");
    ASSERT_TRUE(services.RunProgram({"touch", name}));
    EXPECT_TRUE(WaitFor([&] { return std::filesystem::exists(name); }));
    for (int i = 0; i < 5; ++i)
        ASSERT_TRUE(services.RunProgram({"true"}));
    EXPECT_TRUE(WaitFor([] { return ZombieChildren() == 0; }));
}

TEST(PlatformServicesTest, AProgramThatCannotStartIsReported) {
    SpawnedPlatformServices services;
    EXPECT_FALSE(services.RunProgram({"mirodate-no-such-program-here"}));
    EXPECT_FALSE(services.RunProgram({}));
    EXPECT_FALSE(services.RunProgram({""}));
}

} // namespace
} // namespace mirodate::test
