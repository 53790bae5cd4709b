#pragma once
// A real vdir in a temporary folder, with the time zone, the clock, the
// settings file and the cache folder of the test fixed, removed afterwards.
#include "data/PimStore.h"
#include "platform/Clock.h"
#include "platform/Settings.h"
#include "store/VdirSource.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>

namespace mirodate {

class StoreFixture : public ::testing::Test {
protected:
    void SetUp() override {
        setenv("TZ", "Europe/Berlin", 1);
        setenv("LANG", "C", 1);
        tzset();
        static int counter = 0;
        dir_ = std::filesystem::temp_directory_path() /
               ("mirodate-store-" + std::to_string(getpid()) + "-" + std::to_string(++counter));
        std::filesystem::create_directories(dir_ / "vdir" / "calendar");
        std::filesystem::create_directories(dir_ / "vdir" / "tasks");
        std::filesystem::create_directories(dir_ / "vdir" / "contacts");
        setenv("XDG_CACHE_HOME", (dir_ / "cache").c_str(), 1);
        Settings::UseFile((dir_ / "settings.conf").string());
        SetToday(2026, 3, 15, 10, 0);
    }
    void TearDown() override { std::filesystem::remove_all(dir_); }

    static void SetToday(int year, int month, int day, int hour, int minute) {
        SYSTEMTIME now;
        now.wYear = static_cast<std::uint16_t>(year);
        now.wMonth = static_cast<std::uint16_t>(month);
        now.wDay = static_cast<std::uint16_t>(day);
        now.wHour = static_cast<std::uint16_t>(hour);
        now.wMinute = static_cast<std::uint16_t>(minute);
        Clock::Install(std::make_unique<VirtualClock>(now));
    }

    std::string Root() const { return (dir_ / "vdir").string(); }

    // Writes a file the way another program would (not through the store).
    void WriteFile(const std::string& relative, const std::string& text) const {
        std::ofstream(dir_ / "vdir" / relative, std::ios::binary) << text;
    }
    std::string ReadFile(const std::string& relative) const {
        std::ifstream file(dir_ / "vdir" / relative, std::ios::binary);
        return std::string((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    }

    static std::string Event(const std::string& uid, const std::string& body) {
        return "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//test//EN\r\nBEGIN:VEVENT\r\nUID:" + uid + "\r\n" +
               body + "END:VEVENT\r\nEND:VCALENDAR\r\n";
    }
    static std::string Todo(const std::string& uid, const std::string& body) {
        return "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//test//EN\r\nBEGIN:VTODO\r\nUID:" + uid + "\r\n" +
               body + "END:VTODO\r\nEND:VCALENDAR\r\n";
    }

    std::unique_ptr<VdirSource> OpenSource(bool useIndex = true) const {
        VdirSource::Options options;
        options.useIndex = useIndex;
        auto source = std::make_unique<VdirSource>(Root(), options);
        EXPECT_TRUE(source->Logon());
        return source;
    }

    std::filesystem::path dir_;
};

} // namespace mirodate
