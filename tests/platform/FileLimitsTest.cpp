// Settings files beyond the limits: read as defaults, never replaced, and
// their values kept; names from outside printed harmlessly.
#include "platform/Settings.h"
#include "platform/SettingsStore.h"
#include "platform/TextUtil.h"
#include "tests/platform/TempDir.h"

#include <gtest/gtest.h>

#include <fstream>

using namespace mirodate;
using mirodate::test::TempDir;

namespace {

std::string ReadAll(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

void WriteAll(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
}

TEST(SettingsFileLimits, AFileTooBigToReadIsNeverReplaced) {
    TempDir dir;
    const std::string path = dir.File("settings.conf");
    std::string text = "Skin=Mine\n";
    while (text.size() <= static_cast<size_t>(SettingsStore::kMaxFileBytes))
        text += "Filler=0123456789\n";
    WriteAll(path, text);

    SettingsStore store(path);
    ::testing::internal::CaptureStderr();
    EXPECT_FALSE(store.Get("Skin").has_value());
    EXPECT_NE(::testing::internal::GetCapturedStderr().find("is not read"), std::string::npos);
    EXPECT_FALSE(store.Set("Skin", u"Other"));
    EXPECT_FALSE(store.Remove("Filler"));
    EXPECT_EQ(ReadAll(path), text);

    // Once the user trims it, it is read and written as usual.
    WriteAll(path, "Skin=Mine\n");
    EXPECT_EQ(store.Get("Skin"), u"Mine");
    EXPECT_TRUE(store.Set("Language", u"lang.de.txt"));
    EXPECT_EQ(ReadAll(path), "Language=lang.de.txt\nSkin=Mine\n");
}

TEST(SettingsFileLimits, AValueTooLongToUseIsIgnoredButKept) {
    TempDir dir;
    const std::string path = dir.File("settings.conf");
    const std::string longValue(SettingsStore::kMaxValueBytes + 1, 'f');
    const std::string usable(SettingsStore::kMaxValueBytes, 'u');
    WriteAll(path, "LastFilter=" + longValue + "\nExcludeFilter=" + usable + "\n");

    SettingsStore store(path);
    ::testing::internal::CaptureStderr();
    EXPECT_FALSE(store.Get("LastFilter").has_value());
    EXPECT_NE(::testing::internal::GetCapturedStderr().find("LastFilter is longer than"), std::string::npos);
    EXPECT_EQ(store.Get("ExcludeFilter"), Utf8ToUtf16(usable));

    // Writing another value keeps the long one as it was written...
    ::testing::internal::CaptureStderr();
    EXPECT_TRUE(store.Set("Skin", u"Dark"));
    EXPECT_EQ(ReadAll(path), "ExcludeFilter=" + usable + "\nLastFilter=" + longValue + "\nSkin=Dark\n");
    // ...and writing the value itself replaces it.
    EXPECT_TRUE(store.Set("LastFilter", u"Work"));
    ::testing::internal::GetCapturedStderr();
    EXPECT_EQ(store.Get("LastFilter"), u"Work");
    EXPECT_EQ(ReadAll(path).find(longValue), std::string::npos);
}

TEST(SettingsFileLimits, FontSizeDeltaStaysInARangeAScreenCanShow) {
    // Read once per process: this is the only test here that reads it.
    TempDir dir;
    Settings::UseFile(dir.File("settings.conf"));
    Settings::SetText("FontSizeDelta", u"2147483647");
    EXPECT_EQ(Settings::GetFontSizeDelta(), Settings::kMaxFontSizeDelta);
    EXPECT_LE(Settings::kMaxFontSizeDelta, 32);
    EXPECT_GE(Settings::kMinFontSizeDelta, -12);
}

TEST(PrintableText, KeepsUtf8AndEscapesEverythingATerminalWouldObey) {
    EXPECT_EQ(PrintableText("calendar/Büro – 2026.ics"), "calendar/Büro – 2026.ics");
    EXPECT_EQ(PrintableText("a\x1b[2Jb\x07\n\t"), "a\\x1b[2Jb\\x07\\x0a\\x09");
    EXPECT_EQ(PrintableText("\xff\xfe"), "\\xff\\xfe");
    EXPECT_EQ(PrintableText("back\\slash"), "back\\x5cslash");
    // Overlong forms, surrogates, code points beyond U+10FFFF and cut
    // sequences are not UTF-8.
    EXPECT_EQ(PrintableText("\xc0\xaf"), "\\xc0\\xaf");
    EXPECT_EQ(PrintableText("\xed\xa0\x80"), "\\xed\\xa0\\x80");
    EXPECT_EQ(PrintableText("\xf4\x90\x80\x80"), "\\xf4\\x90\\x80\\x80");
    EXPECT_EQ(PrintableText("\xe2\x82"), "\\xe2\\x82");
    EXPECT_EQ(PrintableText("\xf0\x9f\x93\x85"), "\xf0\x9f\x93\x85");
    EXPECT_EQ(PrintableText(std::string("a\0b", 3)), "a\\x00b");
}

} // namespace
