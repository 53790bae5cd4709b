// The real program on one hostile file at a time, of every kind it reads:
// it must finish with its normal output (the month's items for `--list`, a
// screenshot for a start), print a warning that names the problem where a
// limit was hit, and leave the user's files as they were. Timings and memory
// belong to bench_hostile.
#include "bench/hostile/HostileFiles.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <unistd.h>
#include <vector>

namespace mirodate {
namespace {

// A hang guard only: sanitizer builds are slow.
constexpr int kRunTimeoutSeconds = 300;

std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

class HostileFilesTest : public ::testing::TestWithParam<HostileFiles::Case> {
protected:
    static void SetUpTestSuite() {
        files_ = new HostileFiles(std::filesystem::temp_directory_path().string() +
                                      "/mirodate-hostile-test-" + std::to_string(getpid()),
                                  MIRODATE_PROGRAM);
        ASSERT_TRUE(files_->Ready());
        const ProgramRun clean = files_->Run(HostileFiles::Mode::List, kRunTimeoutSeconds);
        ASSERT_EQ(clean.exitCode, 0) << clean.err;
        cleanList_ = new std::vector<std::string>(Lines(clean.out));
        ASSERT_EQ(cleanList_->size(), 3u) << clean.out; // two meetings and a task
    }
    static void TearDownTestSuite() {
        delete files_;
        delete cleanList_;
        files_ = nullptr;
        cleanList_ = nullptr;
    }

    static HostileFiles* files_;
    static std::vector<std::string>* cleanList_;
};

HostileFiles* HostileFilesTest::files_ = nullptr;
std::vector<std::string>* HostileFilesTest::cleanList_ = nullptr;

TEST_P(HostileFilesTest, FinishesNormallyWithAClearWarningAndChangesNoFile) {
    const HostileFiles::Case& hostile = GetParam();
    for (const auto mode : {HostileFiles::Mode::List, HostileFiles::Mode::Start}) {
        const bool list = mode == HostileFiles::Mode::List;
        if (!(list ? hostile.list : hostile.start))
            continue;
        SCOPED_TRACE(list ? "--list" : "start");
        // Anew for each run: a damaged index, for one, is repaired by the first.
        ASSERT_TRUE(files_->Apply(hostile.name));
        const std::string before = files_->Snapshot();
        const ProgramRun run = files_->Run(mode, kRunTimeoutSeconds);
        ASSERT_EQ(run.exitCode, 0) << run.err;
        if (*hostile.warning) {
            EXPECT_NE(run.err.find("warning"), std::string::npos) << run.err;
            EXPECT_NE(run.err.find(hostile.warning), std::string::npos) << run.err;
        }
        EXPECT_EQ(run.err.find("runtime error"), std::string::npos) << run.err; // UBSan
        if (list) {
            // Every item of the clean store, in order; a hostile item within
            // the limits may add its own line.
            const std::vector<std::string> lines = Lines(run.out);
            std::vector<std::string> clean;
            for (const std::string& line : lines)
                if (std::find(cleanList_->begin(), cleanList_->end(), line) != cleanList_->end())
                    clean.push_back(line);
            EXPECT_EQ(clean, *cleanList_) << run.out.substr(0, 2000);
            EXPECT_LE(lines.size(), cleanList_->size() + 1);
        }
        EXPECT_EQ(files_->Snapshot(), before);
    }
}

INSTANTIATE_TEST_SUITE_P(EveryKindOfFile, HostileFilesTest, ::testing::ValuesIn(HostileFiles::Cases()),
                         [](const ::testing::TestParamInfo<HostileFiles::Case>& info) {
                             std::string name = info.param.name;
                             for (char& c : name)
                                 if (c == '-')
                                     c = '_';
                             return name;
                         });

} // namespace
} // namespace mirodate
