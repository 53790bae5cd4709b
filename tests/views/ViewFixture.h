#pragma once
// The real window system headless (480x640, virtual clock at Friday
// 15 March 2024 10:00) and a real vdir store on a temporary folder, filled
// with files as other programs write them. Message pages are answered by the
// test through the page's own buttons.
#include "data/PimStore.h"
#include "store/VdirSource.h"
#include "tests/ui/UiTestFixture.h"
#include "ui/MessagePage.h"
#include "ui/ScreenBars.h"

#include <deque>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace mirodate::test {

class ViewFixture : public UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        ScreenBars::Reset();
        setenv("XDG_CACHE_HOME", (dir_ + "/cache").c_str(), 1);
        for (const char* folder : {"calendar", "tasks", "contacts"})
            std::filesystem::create_directories(Root() + "/" + folder);
        // Each page names its question; the test's answers are taken in order.
        MessagePage::SetOpenObserver([this](MessagePage& page) {
            questions.push_back(page.Text());
            const int answer = answers.empty() ? static_cast<int>(page.Buttons().size()) : answers.front();
            if (!answers.empty())
                answers.pop_front();
            // Tapped like a finger does, on the button itself.
            const RECT button = page.ButtonScreenRect(answer - 1);
            DisplayEvent down;
            down.type = DisplayEvent::Type::PointerDown;
            down.x = (button.left + button.right) / 2;
            down.y = (button.top + button.bottom) / 2;
            DisplayEvent up = down;
            up.type = DisplayEvent::Type::PointerUp;
            display_->Inject(down);
            display_->Inject(up);
        });
    }
    void TearDown() override {
        MessagePage::SetOpenObserver(nullptr);
        PimStore::Instance().Close();
        UiTest::TearDown();
    }
    std::string Root() const { return dir_ + "/vdir"; }
    void OpenStore() {
        VdirSource::Options options;
        options.useIndex = false;
        auto source = std::make_unique<VdirSource>(Root(), options);
        source_ = source.get();
        ASSERT_TRUE(PimStore::Instance().Open(std::move(source)));
    }
    void WriteFile(const std::string& relative, const std::string& text) const {
        std::ofstream(Root() + "/" + relative, std::ios::binary) << text;
    }
    std::string ReadFile(const std::string& relative) const {
        std::ifstream file(Root() + "/" + relative, std::ios::binary);
        return std::string((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    }
    bool FileExists(const std::string& relative) const {
        return std::filesystem::exists(Root() + "/" + relative);
    }

    // An event file: `times` holds DTSTART/DTEND (and any other lines).
    void AddEvent(const std::string& uid, const std::string& subject, const std::string& times,
                  const std::string& more = "") {
        WriteFile("calendar/" + uid + ".ics",
                  "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//test//EN\r\nBEGIN:VEVENT\r\nUID:" + uid +
                      "\r\nSUMMARY:" + subject + "\r\n" + times + more + "END:VEVENT\r\nEND:VCALENDAR\r\n");
    }
    void AddTimed(const std::string& uid, const std::string& subject, const std::string& start,
                  const std::string& end, const std::string& more = "") {
        AddEvent(uid, subject, "DTSTART:" + start + "\r\nDTEND:" + end + "\r\n", more);
    }
    void AddTask(const std::string& uid, const std::string& subject, const std::string& due,
                 const std::string& more = "") {
        WriteFile("tasks/" + uid + ".ics",
                  "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//test//EN\r\nBEGIN:VTODO\r\nUID:" + uid +
                      "\r\nSUMMARY:" + subject + "\r\nDUE;VALUE=DATE:" + due + "\r\n" + more +
                      "END:VTODO\r\nEND:VCALENDAR\r\n");
    }
    void AddContact(const std::string& uid, const std::string& name, const std::string& birthday) {
        WriteFile("contacts/" + uid + ".vcf", "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:" + uid + "\r\nFN:" + name +
                                                  "\r\nBDAY:" + birthday + "\r\nEND:VCARD\r\n");
    }
    void Key(std::uint32_t key) {
        DisplayEvent event;
        event.type = DisplayEvent::Type::KeyDown;
        event.key = key;
        display_->Inject(event);
        event.type = DisplayEvent::Type::KeyUp;
        display_->Inject(event);
        windows_->RunUntilIdle();
    }
    // Lets virtual time pass (timers fire, guards run out).
    void Wait(std::uint32_t milliseconds) {
        Clock::Current().Advance(milliseconds);
        windows_->RunUntilIdle();
    }

    VdirSource* source_ = nullptr;
    std::deque<int> answers;               // button numbers for the next message pages
    std::vector<std::u16string> questions; // texts of the pages shown
};

} // namespace mirodate::test
