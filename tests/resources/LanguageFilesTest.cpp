// Checks the language files we ship, as the build leaves them next to the
// executable: encoding and line ends, well-formed and unique keys, the same
// keys and placeholders in every language, and every key the code asks for.
#include "lang/LanguageTable.h"
#include "platform/TextUtil.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace mirodate {
namespace {

namespace fs = std::filesystem;

// Reference language first; the others must match it key for key.
const std::vector<std::string> kShippedLanguages = {"en", "de", "fr", "nl", "pl", "ru", "se"};

// Keys the code builds at run time from a pattern, with the numbers it fills in.
struct KeyPattern {
    std::string pattern; // one "%i"
    int first;
    int last;
};
const std::vector<KeyPattern> kKeyPatterns = {
    {"DayNames.Day_%i", 0, 6}, // 0 is Sunday, as in the day-of-week mask
    {"DayNames.AbbrevDay_%i", 0, 6},
    {"MonthNames.Month_%i", 0, 11}, // month - 1
    {"MonthNames.AbbrevMonth_%i", 0, 11},
    {"Sensitivity.%i", 0, 3}, // normal, personal, private, confidential
    {"BusyStatus.%i", 0, 3},  // free, tentative, busy, out of office
    {"Priority_%i", 0, 2},    // low, normal, high
};

// Folders whose code looks texts up by key.
const std::vector<std::string> kCodeFolders = {"app", "data", "ui", "views", "forms", "skin", "lang"};

std::optional<std::string> ReadBytes(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in)
        return std::nullopt;
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

// One language file as the program sees it (the whole UTF-16 text, byte-order
// mark included) and as key=value lines.
struct LangFile {
    std::string code;
    std::u16string text;
    std::vector<std::pair<std::string, std::string>> lines; // UTF-8 key and raw value, file order
    std::vector<std::string> problems;

    std::map<std::string, std::string> Entries() const {
        std::map<std::string, std::string> out;
        for (const auto& [key, value] : lines)
            out.emplace(key, value);
        return out;
    }
};

bool IsKeyChar(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_' || c == '.';
}

LangFile LoadBuilt(const std::string& code) {
    LangFile file;
    file.code = code;
    const fs::path path = fs::path(MIRODATE_BINARY_DIR) / ("lang." + code + ".txt");
    const auto bytes = ReadBytes(path);
    if (!bytes) {
        file.problems.push_back("not built: " + path.string());
        return file;
    }
    if (bytes->size() % 2 != 0)
        file.problems.push_back("odd number of bytes");
    if (bytes->size() < 2 || (*bytes)[0] != '\xFF' || (*bytes)[1] != '\xFE') {
        file.problems.push_back("no UTF-16 LE byte-order mark");
        return file;
    }
    for (size_t i = 0; i + 1 < bytes->size(); i += 2) {
        file.text.push_back(static_cast<char16_t>(static_cast<unsigned char>((*bytes)[i]) |
                                                  static_cast<unsigned char>((*bytes)[i + 1]) << 8));
    }
    const std::string utf8 = Utf16ToUtf8(std::u16string_view(file.text).substr(1));
    if (utf8.rfind("LANGUAGE=", 0) != 0)
        file.problems.push_back("does not start with its LANGUAGE line");
    if (utf8.empty() || utf8.size() < 2 || utf8.compare(utf8.size() - 2, 2, "\r\n") != 0) {
        file.problems.push_back("last line has no CR LF");
    }

    size_t pos = 0;
    int lineNo = 0;
    while (pos < utf8.size()) {
        size_t end = utf8.find('\n', pos);
        if (end == std::string::npos)
            end = utf8.size();
        std::string line = utf8.substr(pos, end - pos);
        pos = end + 1;
        ++lineNo;
        const std::string where = "line " + std::to_string(lineNo) + ": ";
        if (end < utf8.size() && (line.empty() || line.back() != '\r')) {
            file.problems.push_back(where + "ends in LF without CR");
        }
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        if (line.find('\r') != std::string::npos)
            file.problems.push_back(where + "stray CR");
        if (line.empty())
            continue;
        const size_t eq = line.find('=');
        const std::string key = line.substr(0, eq);
        if (eq == std::string::npos || key.empty() || !std::all_of(key.begin(), key.end(), IsKeyChar)) {
            // The lookup would never find such a line: it is dead text.
            file.problems.push_back(where + "not a Key=Value line: " + line);
            continue;
        }
        file.lines.emplace_back(key, line.substr(eq + 1));
    }
    return file;
}

// The value the program's lookup finds for `key` in the whole file text: the
// first "\nKey=" ("LANGUAGE=" anywhere), up to the line end.
std::optional<std::u16string> LookUp(const std::u16string& text, const std::string& key) {
    const std::u16string needle = (key == "LANGUAGE" ? u"" : u"\n") + Utf8ToUtf16(key) + u"=";
    const size_t at = text.find(needle);
    if (at == std::u16string::npos)
        return std::nullopt;
    const size_t begin = at + needle.size();
    const size_t end = text.find_first_of(u"\r\n", begin);
    return text.substr(begin, end == std::u16string::npos ? std::u16string::npos : end - begin);
}

bool IsLetter(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

// "$Name" placeholders and printf conversions ("%s", "%02i") of a value.
std::set<std::string> Placeholders(const std::string& value) {
    std::set<std::string> out;
    for (size_t i = 0; i < value.size(); ++i) {
        size_t end = i + 1;
        if (value[i] == '$') {
            while (end < value.size() && IsLetter(value[end]))
                ++end;
            if (end == i + 1)
                continue;
        } else if (value[i] == '%') {
            while (end < value.size() &&
                   std::string_view("-0123456789.").find(value[end]) != std::string::npos)
                ++end;
            if (end == value.size() || !IsLetter(value[end]))
                continue;
            ++end;
        } else {
            continue;
        }
        out.insert(value.substr(i, end - i));
        i = end - 1;
    }
    return out;
}

std::string Join(const std::set<std::string>& items) {
    std::string out;
    for (const auto& item : items)
        out += (out.empty() ? "" : ", ") + item;
    return out;
}

class ShippedLanguages : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        files_ = new std::vector<LangFile>;
        for (const auto& code : kShippedLanguages)
            files_->push_back(LoadBuilt(code));
    }
    static void TearDownTestSuite() {
        delete files_;
        files_ = nullptr;
    }
    static const std::vector<LangFile>& Files() { return *files_; }
    static const LangFile& English() { return files_->front(); }

private:
    static std::vector<LangFile>* files_;
};
std::vector<LangFile>* ShippedLanguages::files_ = nullptr;

TEST_F(ShippedLanguages, AreUtf16WithByteOrderMarkCrLfAndWellFormedLines) {
    std::set<std::string> names;
    for (const auto& file : Files()) {
        for (const auto& problem : file.problems)
            ADD_FAILURE() << "lang." << file.code << ".txt: " << problem;
        const auto name = LookUp(file.text, "LANGUAGE");
        ASSERT_TRUE(name.has_value()) << file.code;
        EXPECT_FALSE(name->empty()) << file.code;
        EXPECT_TRUE(names.insert(Utf16ToUtf8(*name)).second) << "LANGUAGE name used twice: " << file.code;
    }
}

TEST_F(ShippedLanguages, BuiltFilesHoldExactlyTheirSources) {
    for (const auto& file : Files()) {
        auto source =
            ReadBytes(fs::path(MIRODATE_SOURCE_DIR) / "resources/lang" / ("lang." + file.code + ".txt"));
        ASSERT_TRUE(source.has_value()) << file.code;
        std::string expected;
        for (char c : *source) {
            if (c == '\n')
                expected += '\r';
            if (c != '\r')
                expected += c;
        }
        ASSERT_FALSE(file.text.empty()) << file.code;
        EXPECT_EQ(Utf16ToUtf8(std::u16string_view(file.text).substr(1)), expected)
            << "lang." << file.code << ".txt in the build tree is stale or was converted lossily";
    }
}

TEST_F(ShippedLanguages, EveryKeyIsUniqueAndFoundByTheLookup) {
    for (const auto& file : Files()) {
        std::set<std::string> seen;
        for (const auto& [key, value] : file.lines) {
            EXPECT_TRUE(seen.insert(key).second)
                << "lang." << file.code << ".txt: " << key << " defined twice";
            const auto found = LookUp(file.text, key);
            ASSERT_TRUE(found.has_value()) << "lang." << file.code << ".txt: " << key << " cannot be found";
            EXPECT_EQ(Utf16ToUtf8(*found), value) << "lang." << file.code << ".txt: " << key;
            // Only the ordinal suffixes may be empty: some languages write "the 22" without one.
            EXPECT_TRUE(!value.empty() || key.rfind("Suffix_", 0) == 0)
                << "lang." << file.code << ".txt: " << key << " has no text";
        }
    }
}

TEST_F(ShippedLanguages, HaveTheEnglishKeysAndPlaceholders) {
    const auto english = English().Entries();
    ASSERT_FALSE(english.empty());
    for (const auto& file : Files()) {
        const auto entries = file.Entries();
        for (const auto& [key, value] : english) {
            const auto it = entries.find(key);
            if (it == entries.end()) {
                ADD_FAILURE() << "lang." << file.code << ".txt lacks " << key;
                continue;
            }
            EXPECT_EQ(Join(Placeholders(it->second)), Join(Placeholders(value)))
                << "lang." << file.code << ".txt: placeholders of " << key;
        }
        for (const auto& [key, value] : entries) {
            EXPECT_TRUE(english.count(key))
                << "lang." << file.code << ".txt has " << key << ", English has not";
        }
    }
}

// What the program shows: every text read through the real table, with "\n"
// turned into a line break, and keys short enough for narrow look-ups.
TEST_F(ShippedLanguages, ReadThroughTheLanguageTableGiveTheirTexts) {
    for (const auto& file : Files()) {
        LanguageTable table;
        ASSERT_TRUE(table.Load((fs::path(MIRODATE_BINARY_DIR) / ("lang." + file.code + ".txt")).string()))
            << file.code;
        for (const auto& [key, value] : file.lines) {
            EXPECT_LE(key.size(), LanguageTable::kMaxNarrowKey) << key;
            std::u16string expected = Utf8ToUtf16(value);
            for (size_t at = expected.find(u"\\n"); at != std::u16string::npos;
                 at = expected.find(u"\\n", at)) {
                expected.replace(at, 2, u"\n");
            }
            EXPECT_EQ(Utf16ToUtf8(table.Get(std::string_view(key))), Utf16ToUtf8(expected))
                << "lang." << file.code << ".txt: " << key;
        }
    }
}

// The recurrence text compares the day-mask text with these fixed English words
// to choose "every weekday" and "every weekend"; in English they must match.
TEST_F(ShippedLanguages, EnglishDayMaskWordsAreTheOnesTheRecurrenceTextExpects) {
    EXPECT_EQ(LookUp(English().text, "weekday").value_or(u""), u"weekday");
    EXPECT_EQ(LookUp(English().text, "weekendday").value_or(u""), u"weekend day");
}

// Literal keys in the arguments of Lang(...) and LangW(...) calls in a piece of
// code, so that Lang(n == 1 ? "Daily" : "EveryNDays") counts both keys.
std::set<std::string> KeysUsedIn(const std::string& code) {
    std::set<std::string> keys;
    for (size_t at = code.find("Lang"); at != std::string::npos; at = code.find("Lang", at + 1)) {
        if (at > 0 && (IsKeyChar(code[at - 1]) || code[at - 1] == '.'))
            continue; // part of another name
        size_t begin = at + 4;
        if (begin < code.size() && code[begin] == 'W')
            ++begin;
        if (begin >= code.size() || code[begin] != '(')
            continue;
        // The argument runs to the parenthesis that closes the call.
        size_t end = ++begin;
        for (int depth = 1; end < code.size() && depth > 0; ++end) {
            if (code[end] == '(')
                ++depth;
            if (code[end] == ')')
                --depth;
        }
        for (size_t q = code.find('"', begin); q < end; q = code.find('"', q + 1)) {
            const size_t close = code.find('"', q + 1);
            if (close >= end)
                break;
            keys.insert(code.substr(q + 1, close - q - 1));
            q = close;
        }
    }
    return keys;
}

TEST(LanguageKeysInCode, ScannerFindsTheKeysOfLookupCallsOnly) {
    const auto keys = KeysUsedIn("auto a = Lang(\"Menu\");\nauto b = LangW( u\"addmodify.EditPattern\");\n"
                                 "x = MyLang(\"NotAKey\"); y = Lang(key); Show(\"NotAKeyEither\");\n"
                                 "z = Lang(n == 1 ? \"Daily\" : \"EveryNDays\");\n");
    EXPECT_EQ(keys, (std::set<std::string>{"Menu", "addmodify.EditPattern", "Daily", "EveryNDays"}));
}

TEST(LanguageKeysInCode, EveryKeyTheCodeUsesExistsInEveryLanguage) {
    std::map<std::string, std::string> used; // key -> first file using it
    for (const auto& folder : kCodeFolders) {
        const fs::path dir = fs::path(MIRODATE_SOURCE_DIR) / folder;
        if (!fs::is_directory(dir))
            continue;
        for (const auto& entry : fs::recursive_directory_iterator(dir)) {
            const auto ext = entry.path().extension();
            if (!entry.is_regular_file() || (ext != ".h" && ext != ".cpp"))
                continue;
            const auto code = ReadBytes(entry.path());
            if (!code)
                continue;
            for (const auto& key : KeysUsedIn(*code))
                used.emplace(key, entry.path().string());
        }
    }
    std::set<std::string> patterns;
    for (const auto& p : kKeyPatterns)
        patterns.insert(p.pattern);
    std::vector<std::string> required;
    for (const auto& [key, where] : used) {
        if (key.find('%') != std::string::npos) {
            // A pattern must be listed above, so that its expansions are checked.
            EXPECT_TRUE(patterns.count(key))
                << where << " formats the key pattern " << key << "; add its range to kKeyPatterns";
        } else {
            required.push_back(key);
        }
    }
    for (const auto& p : kKeyPatterns) {
        for (int i = p.first; i <= p.last; ++i) {
            const size_t at = p.pattern.find("%i");
            required.push_back(p.pattern.substr(0, at) + std::to_string(i) + p.pattern.substr(at + 2));
        }
    }
    for (const auto& code : kShippedLanguages) {
        const LangFile file = LoadBuilt(code);
        ASSERT_FALSE(file.text.empty()) << "lang." << code << ".txt not built";
        for (const auto& key : required) {
            EXPECT_TRUE(LookUp(file.text, key).has_value())
                << "lang." << code << ".txt lacks " << key
                << (used.count(key) ? " (used in " + used.at(key) + ")" : std::string());
        }
    }
}

} // namespace
} // namespace mirodate
