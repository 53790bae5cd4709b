// `--list` ends its process without closing the store: the index it builds
// must be on disk all the same, and a file rewritten in place afterwards (its
// folder unchanged) must still be read again by the next listing.
#include "bench/hostile/HostileFiles.h"
#include "store/StoreIndex.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace mirodate {
namespace {

namespace fs = std::filesystem;

std::string ReadText(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

TEST(ListCommand, LeavesTheIndexBehindAndNoticesAFileChangedInPlace) {
    HostileFiles files(fs::temp_directory_path().string() + "/mirodate-list-index-" +
                           std::to_string(getpid()),
                       MIRODATE_PROGRAM);
    ASSERT_TRUE(files.Ready());
    files.Reset();
    const std::string index = StoreIndex::PathFor(files.Store());
    fs::remove(index);

    const ProgramRun first = files.Run(HostileFiles::Mode::List);
    ASSERT_EQ(first.exitCode, 0) << first.err;
    ASSERT_NE(first.out.find("Standup"), std::string::npos) << first.out;
    std::size_t itemFiles = 0;
    for (const char* folder : {"calendar", "tasks", "contacts"})
        if (fs::is_directory(fs::path(files.Store()) / folder))
            for (const auto& entry : fs::directory_iterator(fs::path(files.Store()) / folder))
                if (entry.path().extension() == ".ics" || entry.path().extension() == ".vcf")
                    ++itemFiles;
    StoreIndex::Entries entries = StoreIndex::Load(index, files.Store(), StoreIndex::ZoneSignature());
    EXPECT_EQ(entries.size(), itemFiles);
    ASSERT_TRUE(entries.count("0/standup.ics"));

    // Rewritten in place, as an editor that does not rename would: the same
    // file, the folder's own time untouched.
    const fs::path standup = fs::path(files.Store()) / "calendar" / "standup.ics";
    std::string text = ReadText(standup);
    const std::size_t subject = text.find("SUMMARY:Standup");
    ASSERT_NE(subject, std::string::npos);
    text.replace(subject, 15, "SUMMARY:Standup moved to the garden");
    const auto folderTime = fs::last_write_time(standup.parent_path());
    std::ofstream(standup, std::ios::binary | std::ios::in | std::ios::out) << text;
    ASSERT_EQ(fs::last_write_time(standup.parent_path()), folderTime);

    const ProgramRun second = files.Run(HostileFiles::Mode::List);
    ASSERT_EQ(second.exitCode, 0) << second.err;
    EXPECT_NE(second.out.find("Standup moved to the garden"), std::string::npos) << second.out;
    entries = StoreIndex::Load(index, files.Store(), StoreIndex::ZoneSignature());
    ASSERT_TRUE(entries.count("0/standup.ics"));
    EXPECT_EQ(entries["0/standup.ics"]->size, static_cast<std::int64_t>(fs::file_size(standup)));
}

// Runs a shell command; its output (stderr too) and its exit status.
std::string Output(const std::string& command, int& status) {
    FILE* pipe = popen((command + " 2>&1").c_str(), "r");
    std::string out;
    char buffer[4096];
    while (pipe && std::fgets(buffer, sizeof buffer, pipe))
        out += buffer;
    status = pipe ? WEXITSTATUS(pclose(pipe)) : -1;
    return out;
}

// The entry program lists on its own, without the window program beside it
// and without the window system's libraries, and names the window program
// when a window is asked for and it is missing.
TEST(EntryProgram, ListsAloneAndNamesTheMissingWindowProgram) {
    const fs::path dir = fs::temp_directory_path() / ("mirodate-entry-" + std::to_string(getpid()));
    fs::remove_all(dir);
    fs::create_directories(dir / "store" / "calendar");
    fs::copy_file(MIRODATE_PROGRAM, dir / "mirodate");
    std::ofstream(dir / "store" / "calendar" / "a.ics")
        << "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nBEGIN:VEVENT\r\nUID:a\r\nDTSTART:20260310T100000\r\n"
           "DTEND:20260310T110000\r\nSUMMARY:Dentist\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n";
    const std::string program = "env PATH=/nonexistent XDG_CACHE_HOME='" + (dir / "cache").string() +
                                "' XDG_CONFIG_HOME='" + (dir / "config").string() + "' '" +
                                (dir / "mirodate").string() + "' --store '" + (dir / "store").string() + "' ";
    int status = 0;
    const std::string listed = Output(program + "--list 2026-03-10 2026-03-10", status);
    EXPECT_EQ(status, 0) << listed;
    EXPECT_NE(listed.find("2026-03-10 10:00-11:00 Dentist"), std::string::npos) << listed;

    const std::string window =
        Output(program + "--headless --screenshot '" + (dir / "shot.png").string() + "'", status);
    EXPECT_EQ(status, 127);
    EXPECT_NE(window.find("mirodate-ui"), std::string::npos) << window;
    EXPECT_FALSE(fs::exists(dir / "shot.png"));

    // What keeps a listing quick: none of the window system's libraries load.
    const std::string libraries = Output("ldd '" + (dir / "mirodate").string() + "'", status);
    for (const char* library : {"libSDL2", "libcairo", "libpango", "libnotify"})
        EXPECT_EQ(libraries.find(library), std::string::npos) << library << " in\n" << libraries;
    fs::remove_all(dir);
}

} // namespace
} // namespace mirodate
