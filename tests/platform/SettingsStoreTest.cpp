#include "platform/SettingsStore.h"
#include "tests/platform/TempDir.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace mirodate;
using mirodate::test::TempDir;

namespace {
std::string ReadFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}
} // namespace

TEST(SettingsStore, MissingOrUnreadableFileGivesNothing) {
    TempDir dir;
    SettingsStore missing(dir.File("none/settings.conf"));
    EXPECT_FALSE(missing.Get("Skin").has_value());

    // A directory where the file should be cannot be read: still no error.
    std::filesystem::create_directory(dir.File("adir"));
    SettingsStore unreadable(dir.File("adir"));
    EXPECT_FALSE(unreadable.Get("Skin").has_value());
    EXPECT_FALSE(unreadable.Set("Skin", u"x"));
}

TEST(SettingsStore, ValuesSurviveRoundTripWhateverTheyHold) {
    TempDir dir;
    const std::string path = dir.File("sub/settings.conf");
    const std::u16string tricky = u"a=b\nsecond line\r\nback\\slash \\n literal, \u00e9t\u00e9 \U0001F600";
    {
        SettingsStore store(path);
        ASSERT_TRUE(store.Set("LastFilter", tricky));
        ASSERT_TRUE(store.Set("Empty", u""));
        ASSERT_TRUE(store.Set("Skin", u"Mirodate Black"));
    }
    SettingsStore reread(path);
    EXPECT_EQ(reread.Get("LastFilter"), tricky);
    EXPECT_EQ(reread.Get("Empty"), std::u16string());
    EXPECT_EQ(reread.Get("Skin"), u"Mirodate Black");
    // One value per line: the line breaks inside the value were escaped.
    std::string text = ReadFile(path);
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 3);
    EXPECT_FALSE(reread.Set("Bad=Name", u"x"));
    EXPECT_FALSE(reread.Set("Bad\nName", u"x"));
}

TEST(SettingsStore, WriteReplacesFileAndLeavesNoTemporaries) {
    TempDir dir;
    const std::string path = dir.File("settings.conf");
    SettingsStore store(path);
    ASSERT_TRUE(store.Set("A", u"1"));
    struct stat before {};
    ASSERT_EQ(stat(path.c_str(), &before), 0);
    ASSERT_TRUE(store.Set("B", u"2"));
    struct stat after {};
    ASSERT_EQ(stat(path.c_str(), &after), 0);
    // Replaced by a rename, not rewritten in place: a reader never sees half a file.
    EXPECT_NE(before.st_ino, after.st_ino);
    for (const auto& entry : std::filesystem::directory_iterator(dir.Path())) {
        const std::string name = entry.path().filename().string();
        EXPECT_TRUE(name == "settings.conf" || name == "settings.conf.lock") << name;
    }
}

TEST(SettingsStore, FailedWriteKeepsTheOldFile) {
    TempDir dir;
    const std::string path = dir.File("settings.conf");
    SettingsStore store(path);
    ASSERT_TRUE(store.Set("A", u"1"));
    // A directory where the temporary file goes makes the write fail, even for root.
    const std::string temp = path + ".tmp." + std::to_string(getpid());
    ASSERT_TRUE(std::filesystem::create_directory(temp));
    EXPECT_FALSE(store.Set("A", u"2"));
    std::filesystem::remove(temp);
    EXPECT_EQ(SettingsStore(path).Get("A"), u"1");
    EXPECT_EQ(store.Get("A"), u"1");
}

TEST(SettingsStore, SeesValuesWrittenByAnotherWriter) {
    TempDir dir;
    const std::string path = dir.File("settings.conf");
    SettingsStore reader(path);
    SettingsStore writer(path);
    EXPECT_FALSE(reader.Get("Skin").has_value());
    ASSERT_TRUE(writer.Set("Skin", u"Light"));
    EXPECT_EQ(reader.Get("Skin"), u"Light");
    // The reader's own write merges with what the other wrote, not with its stale copy.
    ASSERT_TRUE(writer.Set("Language", u"lang.de.txt"));
    ASSERT_TRUE(reader.Set("AgendaSize", u"2"));
    SettingsStore fresh(path);
    EXPECT_EQ(fresh.Get("Skin"), u"Light");
    EXPECT_EQ(fresh.Get("Language"), u"lang.de.txt");
    EXPECT_EQ(fresh.Get("AgendaSize"), u"2");
}

TEST(SettingsStore, ConcurrentProcessesNeverLoseOrCorruptValues) {
    TempDir dir;
    const std::string path = dir.File("settings.conf");
    constexpr int kProcesses = 4;
    constexpr int kWritesEach = 40;
    std::vector<pid_t> children;
    for (int p = 0; p < kProcesses; ++p) {
        pid_t pid = fork();
        ASSERT_GE(pid, 0);
        if (pid == 0) {
            SettingsStore store(path);
            bool ok = true;
            for (int i = 0; i < kWritesEach; ++i)
                ok = store.Set("P" + std::to_string(p) + "_" + std::to_string(i), u"value\nwith break") && ok;
            _exit(ok ? 0 : 1);
        }
        children.push_back(pid);
    }
    for (pid_t pid : children) {
        int status = 0;
        waitpid(pid, &status, 0);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    }
    SettingsStore store(path);
    for (int p = 0; p < kProcesses; ++p)
        for (int i = 0; i < kWritesEach; ++i)
            EXPECT_EQ(store.Get("P" + std::to_string(p) + "_" + std::to_string(i)), u"value\nwith break");
}

TEST(SettingsStore, IgnoresJunkLinesAndHugeFiles) {
    TempDir dir;
    const std::string path = dir.File("settings.conf");
    {
        std::ofstream out(path, std::ios::binary);
        out << "no equals sign\n=nameless\nSkin=Dark\r\n\xff\xfe garbage=\xc3\n";
    }
    SettingsStore store(path);
    EXPECT_EQ(store.Get("Skin"), u"Dark");
    EXPECT_FALSE(store.Get("").has_value());

    const std::string huge = dir.File("huge.conf");
    {
        std::ofstream out(huge, std::ios::binary);
        std::string line = "Key=" + std::string(1000, 'x') + "\n";
        for (int i = 0; i < 5000; ++i)
            out << line;
    }
    EXPECT_FALSE(SettingsStore(huge).Get("Key").has_value());
}
