// The recurrence editor on the real window system, headless, saving what it
// edits into a real vdir: every type through taps and the page's menus,
// written, read back through libical and described as the page described
// it; Monday to Friday, the last Friday and 29 February as khal lists them;
// a rule the record cannot say kept until changed; bad input refused or
// clamped; and the question before exceptions are dropped.
#include "data/RecurrenceDescriber.h"
#include "forms/RecurrenceEditorPage.h"
#include "lang/LanguageTable.h"
#include "platform/TextUtil.h"
#include "platform/VirtualKeys.h"
#include "skin/PictureCache.h"
#include "skin/SkinLoader.h"
#include "skin/SkinStyles.h"
#include "store/IcsItem.h"
#include "store/SeriesExceptions.h"
#include "store/VdirSource.h"
#include "tests/ui/UiTestFixture.h"
#include "ui/ContextMenu.h"
#include "ui/MessagePage.h"

#include <cstdio>
#include <fstream>
#include <sstream>

namespace mirodate::test {
namespace {

using Row = RecurrenceEditorRows::Row;

class RecurrenceEditorTest : public UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        setenv("XDG_CACHE_HOME", (dir_ + "/cache").c_str(), 1);
        LanguageTable::Instance().Load(std::string(MIRODATE_BINARY_DIR) + "/lang.en.txt");
        for (const char* folder : {"calendar", "tasks", "contacts"})
            std::filesystem::create_directories(dir_ + "/vdir/" + folder);
        MessagePage::SetOpenObserver([this](MessagePage& page) {
            told_.push_back(page.Text());
            const int answer = answers_.empty() ? page.Buttons().size() : answers_.front();
            if (!answers_.empty())
                answers_.erase(answers_.begin());
            page.Answer(answer);
        });
    }
    void TearDown() override {
        MessagePage::SetOpenObserver(nullptr);
        RecurrenceEditorPage::SetOpenObserver(nullptr);
        page_.reset();
        UiTest::TearDown();
    }
    void Wait(std::uint32_t ms) {
        Clock::Current().Advance(ms);
        windows_->RunUntilIdle();
    }
    RecurrenceEditorPage& Open(const RecurrencePattern& pattern, const DateTime& start) {
        page_ = std::make_unique<RecurrenceEditorPage>(pattern, start);
        EXPECT_TRUE(page_->CreateModeless(nullptr));
        Wait(400);
        return *page_;
    }
    void TapCentre(const RECT& r) {
        ASSERT_GT(r.Width(), 0);
        Tap((r.left + r.right) / 2, (r.top + r.bottom) / 2);
        Wait(600); // past the buttons' and menus' guards
    }
    // Taps a row and chooses entry `index` of the menu it opens.
    void Choose(Row row, int index) {
        TapCentre(page_->RowScreenRect(row));
        Wait(600);
        const HWND menu = FindWindow(nullptr, kContextMenuTitle);
        ASSERT_TRUE(menu);
        auto* object = reinterpret_cast<ContextMenu*>(GetWindowLongPtr(menu, DWL_USER));
        ASSERT_TRUE(object);
        object->List().SetSelected(index);
        Wait(1100);
        SendMessage(menu, WM_KEYDOWN, VK_RETURN, 0);
        Wait(600);
    }
    void ChooseType(int type) {
        const auto& types = RecurrenceEditorRows::Types();
        Choose(Row::Type, static_cast<int>(std::find(types.begin(), types.end(), type) - types.begin()));
        ASSERT_EQ(page_->Value().RecurrenceType, type);
    }
    // Saves an hour-long appointment with the page's pattern; the file's text.
    std::string Save(const DateTime& start, const std::string& name) {
        VdirSource source(dir_ + "/vdir");
        EXPECT_TRUE(source.Logon());
        PimRecord record;
        record.itemKind = kItemAppointment;
        record.uid = name;
        record.subject = Utf8ToUtf16(name);
        record.start = start.ToDate();
        record.end = start.ToDate() + 1.0 / 24;
        record.isRecurring = page_->Value().RecurrenceType != RecurrencePattern::kNotRecurring;
        record.recurrence = page_->Value();
        EXPECT_EQ(source.Save(record, kFolderCalendar), SaveResult::Saved);
        std::ifstream in(dir_ + "/vdir/calendar/" + name + ".ics");
        return std::string(std::istreambuf_iterator<char>(in), {});
    }
    static std::vector<std::string> Days(const std::string& ics, const DateTime& from, const DateTime& to) {
        IcsItem item;
        std::string problem;
        EXPECT_TRUE(item.Parse(ics, problem)) << problem;
        std::vector<PimRecord> occurrences;
        item.Expand(from.ToDate(), to.ToDate(), occurrences);
        std::vector<std::string> days;
        for (const PimRecord& r : occurrences) {
            const DateTime d(r.start);
            char text[16];
            std::snprintf(text, sizeof text, "%04d-%02d-%02d", d.GetYear(), d.GetMonth(), d.GetDay());
            days.push_back(text);
        }
        return days;
    }
    // The days khal lists for the vdir, or nothing when khal is missing.
    std::vector<std::string> KhalDays(const std::string& from, const std::string& to) {
        std::vector<std::string> days;
        if (std::system("command -v khal >/dev/null 2>&1") != 0)
            return days;
        const std::string config = dir_ + "/khal.conf";
        std::ofstream(config) << "[calendars]\n[[test]]\npath = " << dir_
                              << "/vdir/calendar\ntype = calendar\n"
                              << "[locale]\nlocal_timezone = UTC\ndefault_timezone = UTC\n"
                              << "timeformat = %H:%M\ndateformat = %Y-%m-%d\nlongdateformat = %Y-%m-%d\n"
                              << "datetimeformat = %Y-%m-%d %H:%M\nlongdatetimeformat = %Y-%m-%d %H:%M\n"
                              << "[sqlite]\npath = " << dir_ << "/khal.db\n";
        const std::string command = "TZ=UTC LANG=C.UTF-8 HOME='" + dir_ + "' XDG_CONFIG_HOME='" + dir_ +
                                    "/config' XDG_CACHE_HOME='" + dir_ + "/cache' khal -c '" + config +
                                    "' list --format 'ITEM' --day-format 'DAY {date}' " + from + " " + to +
                                    " 2>&1";
        FILE* pipe = popen(command.c_str(), "r");
        if (!pipe)
            return days;
        std::string out;
        char buffer[4096];
        while (size_t n = std::fread(buffer, 1, sizeof buffer, pipe))
            out.append(buffer, n);
        pclose(pipe);
        std::istringstream lines(out);
        std::string day;
        for (std::string line; std::getline(lines, line);) {
            if (line.rfind("DAY ", 0) == 0)
                day = line.substr(4);
            else if (line == "ITEM")
                days.push_back(day);
        }
        return days;
    }
    static bool KhalInstalled() { return std::system("command -v khal >/dev/null 2>&1") == 0; }

    std::unique_ptr<RecurrenceEditorPage> page_;
    std::vector<std::u16string> told_;
    std::vector<int> answers_;
};

TEST_F(RecurrenceEditorTest, EveryTypeChosenByTapIsWrittenReadBackAndDescribed) {
    const DateTime start(2024, 3, 15, 10, 0, 0); // a Friday
    int n = 0;
    for (int type : RecurrenceEditorRows::Types()) {
        Open(RecurrencePattern(), start);
        if (type != RecurrencePattern::kNotRecurring) {
            ChooseType(type);
            // Every third period, ten times.
            TapCentre(page_->StepperScreenRect(Row::Interval, +1));
            TapCentre(page_->StepperScreenRect(Row::Interval, +1));
            Choose(Row::End, RecurrenceEditorRows::kEndAfterCount);
            if (type == RecurrencePattern::kWeekly)
                TapCentre(page_->DayScreenRect(2)); // and Tuesdays
            EXPECT_EQ(page_->Value().Interval, 3);
            EXPECT_EQ(page_->Value().Occurrences, RecurrenceEditorRows::kDefaultOccurrences);
        }
        const std::u16string sentence = page_->Sentence();
        EXPECT_EQ(sentence, RecurrenceDescriber::Describe(page_->Value()));
        TapCentre(page_->ButtonScreenRect(true));
        const std::string name = "type" + std::to_string(++n);
        const std::string ics = Save(start, name);
        IcsItem item;
        std::string problem;
        ASSERT_TRUE(item.Parse(ics, problem));
        RecurrencePattern read = item.GetRecord().recurrence, written = page_->Value();
        read.PatternStartDate = written.PatternStartDate = 0.0;
        EXPECT_EQ(read, written) << name << "\n" << ics;
        EXPECT_EQ(RecurrenceDescriber::Describe(item.GetRecord().recurrence), sentence) << name;
        if (type != RecurrencePattern::kNotRecurring)
            EXPECT_EQ(Days(ics, start, DateTime(2060, 1, 1)).size(), 10u) << name << "\n" << ics;
        page_.reset();
        Wait(100);
    }
}

TEST_F(RecurrenceEditorTest, MondayToFridayIsListedOnWeekdaysOnly) {
    const DateTime start(2024, 3, 15, 9, 0, 0); // a Friday
    Open(RecurrencePattern(), start);
    ChooseType(RecurrencePattern::kWeekly);
    for (int day : {1, 2, 3, 4})
        TapCentre(page_->DayScreenRect(day));
    EXPECT_EQ(page_->Value().DayOfWeekMask, 62);
    EXPECT_EQ(page_->Sentence(), Lang("EveryWeekDay") + u" (" + Lang("infinitely") + u")");
    const std::string ics = Save(start, "weekdays");
    EXPECT_NE(ics.find("RRULE:FREQ=WEEKLY;BYDAY=MO,TU,WE,TH,FR"), std::string::npos) << ics;
    const std::vector<std::string> expected = {"2024-03-15", "2024-03-18", "2024-03-19", "2024-03-20",
                                               "2024-03-21", "2024-03-22", "2024-03-25"};
    EXPECT_EQ(Days(ics, DateTime(2024, 3, 14), DateTime(2024, 3, 26)), expected);
    if (!KhalInstalled())
        GTEST_SKIP() << "khal is not installed";
    EXPECT_EQ(KhalDays("2024-03-14", "2024-03-25"), expected);
}

TEST_F(RecurrenceEditorTest, TheLastFridayAndTheTwentyNinthOfFebruary) {
    Open(RecurrencePattern(), DateTime(2024, 3, 29, 18, 0, 0)); // the last Friday of March
    ChooseType(RecurrencePattern::kMonthNth);
    EXPECT_EQ(page_->Value().Instance, 5);
    EXPECT_EQ(page_->Value().DayOfWeekMask, RecurrencePattern::kFriday);
    TapCentre(page_->ButtonScreenRect(true));
    const std::string lastFriday = Save(DateTime(2024, 3, 29, 18, 0, 0), "lastfriday");
    EXPECT_NE(lastFriday.find("RRULE:FREQ=MONTHLY;BYDAY=-1FR"), std::string::npos) << lastFriday;
    const std::vector<std::string> fridays = {"2024-03-29", "2024-04-26", "2024-05-31", "2024-06-28"};
    EXPECT_EQ(Days(lastFriday, DateTime(2024, 3, 1), DateTime(2024, 7, 1)), fridays);

    page_.reset();
    Open(RecurrencePattern(), DateTime(2024, 2, 29, 8, 0, 0));
    ChooseType(RecurrencePattern::kYearly);
    EXPECT_EQ(page_->Value().MonthOfYear, 2);
    EXPECT_EQ(page_->Value().DayOfMonth, 29);
    TapCentre(page_->ButtonScreenRect(true));
    const std::string leap = Save(DateTime(2024, 2, 29, 8, 0, 0), "leap");
    EXPECT_NE(leap.find("RRULE:FREQ=YEARLY;BYMONTHDAY=29;BYMONTH=2"), std::string::npos) << leap;
    const std::vector<std::string> leapDays = {"2024-02-29", "2028-02-29", "2032-02-29"};
    EXPECT_EQ(Days(leap, DateTime(2024, 1, 1), DateTime(2033, 1, 1)), leapDays);
    if (!KhalInstalled())
        GTEST_SKIP() << "khal is not installed";
    std::filesystem::remove(dir_ + "/vdir/calendar/leap.ics");
    EXPECT_EQ(KhalDays("2024-03-01", "2024-06-30"), fridays);
}

TEST_F(RecurrenceEditorTest, ARuleTheRecordCannotSayIsReturnedUntouchedUntilChanged) {
    RecurrencePattern custom;
    custom.RecurrenceType = RecurrencePattern::kMonthly;
    custom.DayOfMonth = 1;
    custom.RuleFit = RecurrencePattern::kNoFit;
    Open(custom, DateTime(2024, 3, 1, 9, 0, 0));
    EXPECT_TRUE(page_->ShowsWarning());
    EXPECT_EQ(page_->Sentence(), RecurrenceDescriber::Describe(custom));
    TapCentre(page_->ButtonScreenRect(true));
    EXPECT_EQ(page_->Value(), custom);
    EXPECT_FALSE(page_->Changed());

    // Through Edit, as the editors call it: a change replaces the rule.
    RecurrenceEditorPage::SetOpenObserver([](RecurrenceEditorPage& page) {
        page.Step(Row::Interval, +1);
        EXPECT_FALSE(page.ShowsWarning());
        page.Accept();
    });
    const auto edited = RecurrenceEditorPage::Edit(nullptr, custom, DateTime(2024, 3, 1, 9, 0, 0));
    ASSERT_TRUE(edited);
    EXPECT_EQ(edited->RuleFit, RecurrencePattern::kExact);
    EXPECT_EQ(edited->Interval, 2);
    RecurrenceEditorPage::SetOpenObserver([](RecurrenceEditorPage& page) { page.Cancel(); });
    EXPECT_FALSE(RecurrenceEditorPage::Edit(nullptr, custom, DateTime(2024, 3, 1, 9, 0, 0)));
}

TEST_F(RecurrenceEditorTest, BadValuesAreRefusedOrClamped) {
    const DateTime start(2024, 3, 15, 10, 0, 0);
    RecurrencePattern weekly;
    weekly.RecurrenceType = RecurrencePattern::kWeekly;
    weekly.DayOfWeekMask = RecurrencePattern::kFriday;
    Open(weekly, start);
    // The interval stops at 1; the only day cannot be switched off.
    TapCentre(page_->StepperScreenRect(Row::Interval, -1));
    EXPECT_EQ(page_->Value().Interval, 1);
    TapCentre(page_->DayScreenRect(5));
    EXPECT_EQ(page_->Value().DayOfWeekMask, RecurrencePattern::kFriday);
    // An end date before the start is refused with a message.
    page_->SetEndDate(DateTime(2024, 3, 1));
    ASSERT_EQ(told_.size(), 1u);
    EXPECT_EQ(told_.back(), Lang("recurrence.EndBeforeStart"));
    EXPECT_EQ(RecurrenceEditorRows::EndOf(page_->Value()), RecurrenceEditorRows::kNoEnd);
    // Values from elsewhere are clamped when OK is pressed.
    RecurrencePattern bad = weekly;
    bad.Interval = 100000;
    bad.DayOfWeekMask = 0;
    bad.Occurrences = 0;
    bad.NoEndDate = false;
    page_->SetValue(bad);
    TapCentre(page_->ButtonScreenRect(true));
    EXPECT_EQ(page_->Value().Interval, 999);
    EXPECT_EQ(page_->Value().DayOfWeekMask, RecurrencePattern::kFriday);
    EXPECT_TRUE(page_->Value().NoEndDate);
    page_.reset();
    bad = weekly;
    bad.Interval = -1;
    bad.NoEndDate = false;
    bad.PatternEndDate = DateTime(2024, 1, 1).ToDate();
    Open(weekly, start);
    page_->SetValue(bad);
    told_.clear();
    TapCentre(page_->ButtonScreenRect(true));
    EXPECT_EQ(told_.size(), 1u); // refused: the end lies before the start
    EXPECT_TRUE(IsWindowVisible(page_->GetHwnd()));
}

TEST_F(RecurrenceEditorTest, DroppingExceptionsIsAskedFirst) {
    const DateTime start(2024, 3, 4, 9, 0, 0); // a Monday
    RecurrencePattern mondays;
    mondays.RecurrenceType = RecurrencePattern::kWeekly;
    mondays.DayOfWeekMask = RecurrencePattern::kMonday | RecurrencePattern::kWednesday;
    const std::vector<double> exceptions = {DateTime(2024, 3, 11, 9, 0, 0).ToDate(),
                                            DateTime(2024, 3, 13, 9, 0, 0).ToDate()};
    int shown = 0;
    RecurrenceEditorPage::SetOpenObserver([&](RecurrenceEditorPage& page) {
        ++shown;
        page.ToggleDay(3); // Wednesday off: the 13th no longer happens
        page.Accept();     // "No": the page stays
        EXPECT_TRUE(IsWindowVisible(page.GetHwnd()));
        page.Accept(); // "Yes"
    });
    answers_ = {2, 1};
    const auto edited = RecurrenceEditorPage::Edit(nullptr, mondays, start, exceptions);
    ASSERT_TRUE(edited);
    EXPECT_EQ(shown, 1);
    EXPECT_EQ(edited->DayOfWeekMask, RecurrencePattern::kMonday);
    ASSERT_EQ(told_.size(), 2u);
    EXPECT_NE(told_[0].find(u"1 "), std::u16string::npos);
    // A change that keeps them all asks nothing.
    told_.clear();
    RecurrenceEditorPage::SetOpenObserver([](RecurrenceEditorPage& page) {
        page.SetEnd(RecurrenceEditorRows::kEndAfterCount);
        page.Accept();
    });
    EXPECT_TRUE(RecurrenceEditorPage::Edit(nullptr, mondays, start, exceptions));
    EXPECT_TRUE(told_.empty());
}

TEST_F(RecurrenceEditorTest, DayTogglesAndRowsInTheSkinsColoursAtBothSizes) {
    const SkinStyles saved = SkinStyles::Current();
    const char* shot = std::getenv("MIRODATE_SCREENSHOT_DIR");
    int checked = 0;
    for (const char* skin : {"Mirodate Black", "Mirodate Daylight"}) {
        const std::string archive = std::string(MIRODATE_BINARY_DIR) + "/skin." + skin + ".zip";
        if (!std::filesystem::exists(archive))
            continue;
        for (const auto& [width, height] : {std::pair{480, 640}, std::pair{240, 320}}) {
            SCOPED_TRACE(std::string(skin) + " " + std::to_string(width));
            page_.reset();
            UiTest::Open(width, height);
            PictureCache::Instance().Clear();
            SkinStyles styles;
            ASSERT_TRUE(SkinLoader::LoadArchive(archive, styles, width >= 480));
            SkinStyles::Current() = styles;
            RecurrencePattern weekly;
            weekly.RecurrenceType = RecurrencePattern::kWeekly;
            weekly.DayOfWeekMask = RecurrencePattern::kMonday | RecurrencePattern::kFriday;
            weekly.Occurrences = 8;
            weekly.NoEndDate = false;
            Open(weekly, DateTime(2024, 3, 15, 10, 0, 0));
            const AddModifyFormStyle& form = styles.addModifyForm;
            const RECT on = page_->DayScreenRect(5), off = page_->DayScreenRect(3);
            EXPECT_EQ(FramePixel(on.left + 2, on.top + 2), form.colorSelectionMark);
            EXPECT_EQ(FramePixel(off.left + 3, off.top + 3), form.colorBg);
            // Every row and both buttons lie on the screen, finger-sized.
            for (Row row : RecurrenceEditorRows::RowsFor(weekly)) {
                const RECT r = page_->RowScreenRect(row);
                EXPECT_GE(r.Height(), width / 12);
                EXPECT_LE(r.bottom, page_->ButtonScreenRect(true).top);
            }
            EXPECT_LE(page_->ButtonScreenRect(true).bottom, height);
            if (shot) {
                const std::string name = std::string(shot) + "/recurrence-" +
                                         (skin[9] == 'B' ? "black" : "daylight") + "-" +
                                         std::to_string(width) + ".png";
                windows_->WriteScreenshot(name);
                ChooseType(RecurrencePattern::kYearNth);
                windows_->WriteScreenshot(name.substr(0, name.size() - 4) + "-yearly.png");
                RecurrencePattern custom;
                custom.RecurrenceType = RecurrencePattern::kMonthly;
                custom.DayOfMonth = 1;
                custom.RuleFit = RecurrencePattern::kNoFit;
                page_.reset();
                Open(custom, DateTime(2024, 3, 1, 9, 0, 0));
                windows_->WriteScreenshot(name.substr(0, name.size() - 4) + "-custom.png");
            }
            ++checked;
        }
    }
    page_.reset();
    SkinStyles::Current() = saved;
    if (checked == 0)
        GTEST_SKIP() << "the skins are not built";
}

} // namespace
} // namespace mirodate::test
