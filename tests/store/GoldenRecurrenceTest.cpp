// Recurrence against expected occurrence lists: every tests/store/golden/X.ics
// is read by the store's parser and expanded over the window its X.expected
// names, in the local zone it names, and must give exactly the listed
// occurrences. The expected lists were worked out by hand from RFC 5545 and
// the zones' published rules, not taken from this code's output.
//
// X.expected: "#" comments, "zone <Olson name>", "window <first day> <last day>"
// and one line per occurrence, "YYYY-MM-DD HH:MM - YYYY-MM-DD HH:MM", local
// times, followed by " allday" and/or " cancelled" where that applies.
#include "store/IcsItem.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace mirodate {
namespace {

const std::filesystem::path kGoldenDir =
    std::filesystem::path(MIRODATE_SOURCE_DIR) / "tests" / "store" / "golden";

std::vector<std::string> GoldenNames() {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(kGoldenDir))
        if (entry.path().extension() == ".ics")
            names.push_back(entry.path().stem().string());
    std::sort(names.begin(), names.end());
    return names;
}

std::string ReadText(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

bool ParseDay(const std::string& text, DateTime& day) {
    int y = 0, m = 0, d = 0;
    if (std::sscanf(text.c_str(), "%d-%d-%d", &y, &m, &d) != 3)
        return false;
    day = DateTime(y, m, d);
    return day.IsValid();
}

std::string Describe(const PimRecord& r) {
    const DateTime start(r.start), end(r.end);
    char line[96];
    std::snprintf(line, sizeof line, "%04d-%02d-%02d %02d:%02d - %04d-%02d-%02d %02d:%02d", start.GetYear(),
                  start.GetMonth(), start.GetDay(), start.GetHour(), start.GetMinute(), end.GetYear(),
                  end.GetMonth(), end.GetDay(), end.GetHour(), end.GetMinute());
    std::string text = line;
    if (r.allDay)
        text += " allday";
    if (r.cancelled)
        text += " cancelled";
    return text;
}

class GoldenRecurrence : public ::testing::TestWithParam<std::string> {
protected:
    void TearDown() override {
        setenv("TZ", "Europe/Berlin", 1);
        tzset();
    }
};

TEST_P(GoldenRecurrence, MatchesTheExpectedOccurrences) {
    const std::string name = GetParam();
    std::istringstream expectedFile(ReadText(kGoldenDir / (name + ".expected")));
    std::string zone;
    DateTime first, last;
    bool haveWindow = false;
    std::vector<std::string> expected;
    for (std::string line; std::getline(expectedFile, line);) {
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        if (line.empty() || line[0] == '#')
            continue;
        if (line.rfind("zone ", 0) == 0) {
            zone = line.substr(5);
        } else if (line.rfind("window ", 0) == 0) {
            haveWindow = ParseDay(line.substr(7, 10), first) && ParseDay(line.substr(18, 10), last);
        } else {
            expected.push_back(line);
        }
    }
    ASSERT_FALSE(zone.empty()) << name << ".expected names no zone";
    ASSERT_TRUE(haveWindow) << name << ".expected names no window";
    setenv("TZ", zone.c_str(), 1);
    tzset();

    IcsItem item;
    std::string problem;
    ASSERT_TRUE(item.Parse(ReadText(kGoldenDir / (name + ".ics")), problem)) << problem;
    std::vector<PimRecord> occurrences;
    item.Expand(first.ToDate(), (last + DateTimeSpan(1.0)).ToDate(), occurrences);
    std::vector<std::string> got;
    for (const PimRecord& r : occurrences)
        got.push_back(Describe(r));
    EXPECT_EQ(got, expected);
}

INSTANTIATE_TEST_SUITE_P(Files, GoldenRecurrence, ::testing::ValuesIn(GoldenNames()),
                         [](const ::testing::TestParamInfo<std::string>& info) {
                             std::string name = info.param;
                             std::replace_if(
                                 name.begin(), name.end(),
                                 [](char c) { return !std::isalnum(static_cast<unsigned char>(c)); }, '_');
                             return name;
                         });

} // namespace
} // namespace mirodate
