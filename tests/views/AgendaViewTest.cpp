// The agenda on the real window system and a real vdir: which days get
// headers, where tomorrow's header lies, the day bars in pixels, and bad
// input.
#include "views/AgendaView.h"
#include "platform/Settings.h"
#include "tests/views/ViewFixture.h"
#include "tests/views/ViewRows.h"
#include "views/DayBar.h"
#include "views/ItemCommands.h"
#include "views/ItemRow.h"

namespace mirodate::test {
namespace {

using Rows = std::vector<std::string>;

class AgendaViewTest : public ViewFixture {
protected:
    AgendaView& OpenAgenda() {
        OpenStore();
        agenda_ = std::make_unique<AgendaView>();
        EXPECT_TRUE(agenda_->Open(nullptr));
        windows_->RunUntilIdle();
        return *agenda_;
    }
    void TearDown() override {
        agenda_.reset();
        ViewFixture::TearDown();
    }
    std::unique_ptr<AgendaView> agenda_;
};

TEST_F(AgendaViewTest, LeavesOutEmptyDaysButTheFirstAndCoversAgendaSizeWeeks) {
    // Friday 15 March 2024 is today.
    AddTimed("a", "Standup", "20240315T090000", "20240315T093000");
    AddTimed("b", "Brunch", "20240317T110000", "20240317T120000");
    AddTimed("c", "Day eight", "20240322T110000", "20240322T120000"); // the last day of one week
    AddTimed("d", "Day nine", "20240323T110000", "20240323T120000");  // one day too far for one week
    AddTimed("e", "Day 29", "20240412T110000", "20240412T120000");    // the last day of four weeks
    AddTimed("f", "Day 30", "20240413T110000", "20240413T120000");
    Settings::SetNumber("AgendaSize", 0); // behaves as 1: 8 days
    Settings::SetNumber("AgendaMode", 0);
    AgendaView& agenda = OpenAgenda();
    EXPECT_EQ(RowTexts(agenda.List()), (Rows{"H:Today", "I:Standup", "H:", "I:Brunch", "H:", "I:Day eight"}));

    Settings::SetNumber("AgendaSize", 9); // behaves as 4: 29 days
    agenda.Reload();
    const Rows rows = RowTexts(agenda.List());
    EXPECT_EQ(rows.back(), "I:Day 29");
    EXPECT_EQ(std::count(rows.begin(), rows.end(), "I:Day nine"), 1);
    EXPECT_EQ(AgendaView::DayCount(), 29);

    // Mode 1: every day has its header, tomorrow captioned.
    Settings::SetNumber("AgendaSize", 1);
    Settings::SetNumber("AgendaMode", 1);
    agenda.Reload();
    const Rows all = RowTexts(agenda.List());
    EXPECT_EQ(std::count_if(all.begin(), all.end(), [](const std::string& r) { return r[0] == 'H'; }), 8);
    EXPECT_EQ(all[0], "H:Today");
    EXPECT_EQ(all[2], "H:Tomorrow");
}

TEST_F(AgendaViewTest, AnEmptyAgendaSaysSoUnderToday) {
    Settings::SetNumber("AgendaMode", 0);
    AgendaView& agenda = OpenAgenda();
    EXPECT_EQ(RowTexts(agenda.List()), (Rows{"H:Today", "M:NoAppointments"}));
    EXPECT_EQ(agenda.TomorrowPosition(), 0);
    agenda.RunCommand(ItemCommands::kTomorrow);
    EXPECT_EQ(agenda.List().Scroller().Position(), 0);
}

TEST_F(AgendaViewTest, RecordsTomorrowsHeaderAndScrollsThereWhenItIsBelowTheScreen) {
    for (int i = 0; i < 12; ++i) {
        const std::string hour = (i + 8 < 10 ? "0" : "") + std::to_string(i + 8);
        AddTimed("t" + std::to_string(i), "Today " + std::to_string(i), "20240315T" + hour + "0000",
                 "20240315T" + hour + "3000");
    }
    AddTimed("n", "Tomorrow's", "20240316T090000", "20240316T100000");
    Settings::SetNumber("AgendaMode", 0);
    AgendaView& agenda = OpenAgenda();
    const int row = agenda.Look().RowHeight();
    const int header = agenda.Look().HeaderHeight();
    EXPECT_EQ(header, static_cast<int>(row * 0.625));
    // 13 rows came before tomorrow's header: (13 - 1) rows plus one header.
    EXPECT_EQ(agenda.TomorrowPosition(), 12 * row + header);
    // The header really is there.
    EXPECT_EQ(agenda.List().Scroller().ItemTop(13), header + 12 * row);
    agenda.RunCommand(ItemCommands::kTomorrow);
    EXPECT_EQ(agenda.List().Scroller().Position(),
              std::min(agenda.TomorrowPosition(), agenda.List().Scroller().MaxPosition()));
    agenda.RunCommand(ItemCommands::kToday);
    EXPECT_EQ(agenda.List().Scroller().Position(), 0);
}

TEST_F(AgendaViewTest, DayBarsShowWhereInTheDayAnAppointmentLies) {
    std::vector<std::uint16_t> bar(480);
    const double day = DateTime(2024, 3, 15).ToDate();
    // 23:00 to 01:00: from pixel 460 to the right end, clipped there.
    DayBar::Fill(DateTime(2024, 3, 15, 23, 0, 0).ToDate(), DateTime(2024, 3, 16, 1, 0, 0).ToDate(), day, 480,
                 RGB(255, 255, 255), RGB(255, 0, 0), bar.data());
    EXPECT_EQ(bar[459], DayBar::ToRgb565(RGB(255, 255, 255)));
    EXPECT_EQ(bar[460], 0xF800);
    EXPECT_EQ(bar[479], 0xF800);
    // The same on the next day: from the left end to 01:00.
    DayBar::Fill(DateTime(2024, 3, 15, 23, 0, 0).ToDate(), DateTime(2024, 3, 16, 1, 0, 0).ToDate(), day + 1,
                 480, RGB(255, 255, 255), RGB(255, 0, 0), bar.data());
    EXPECT_EQ(bar[0], 0xF800);
    EXPECT_EQ(bar[19], 0xF800);
    EXPECT_EQ(bar[20], 0xFFFF);
    // A moment is one pixel wide; 5-6-5 keeps the top bits.
    DayBar::Fill(day + 0.5, day + 0.5, day, 480, RGB(0, 0, 0), RGB(0x12, 0x34, 0x56), bar.data());
    EXPECT_EQ(std::count(bar.begin(), bar.end(), DayBar::ToRgb565(RGB(0x12, 0x34, 0x56))), 1);
    EXPECT_EQ(DayBar::ToRgb565(RGB(0x12, 0x34, 0x56)), (0x12 >> 3) << 11 | (0x34 >> 2) << 5 | (0x56 >> 3));

    // On the screen: the late appointment's row ends in the bar's colours.
    AddTimed("late", "Late call", "20240315T230000", "20240316T010000");
    AgendaView& agenda = OpenAgenda();
    ASSERT_EQ(RowTexts(agenda.List())[1], "I:Late call");
    auto* row = dynamic_cast<ItemRow*>(agenda.List().Item(1));
    ASSERT_TRUE(row && row->HasDayBar());
    const POINT middle = RowPoint(agenda.List(), 1, 0);
    const int barY = middle.y + row->Height() / 2 - 1;
    EXPECT_EQ(FramePixel(475, barY), agenda.Look().timeScale);
    EXPECT_EQ(FramePixel(200, barY), agenda.Look().background);
    // An all-day item has no bar.
    AddEvent("allday", "Holiday", "DTSTART;VALUE=DATE:20240315\r\nDTEND;VALUE=DATE:20240316\r\n");
    PimStore::Instance().ClearCache();
    agenda.Reload();
    for (int i = 0; i < agenda.List().ItemCount(); ++i)
        if (auto* item = dynamic_cast<ItemRow*>(agenda.List().Item(i)); item && item->Item()->isAllDay)
            EXPECT_FALSE(item->HasDayBar());
}

TEST_F(AgendaViewTest, HostileItemsStillMakeAnAgenda) {
    AddTimed("empty", "", "20240315T090000", "20240315T100000");
    AddTimed("long", std::string(10000, 'x'), "20240315T110000", "20240315T120000");
    for (int i = 0; i < 500; ++i)
        AddTimed("many" + std::to_string(i), "Item " + std::to_string(i), "20240316T090000",
                 "20240316T091500");
    AgendaView& agenda = OpenAgenda();
    const Rows rows = RowTexts(agenda.List());
    EXPECT_EQ(rows.size(), 1u + 2u + 1u + 500u);
    // The long subject is laid out in the row, not beyond it.
    windows_->ComposeIfNeeded();
    EXPECT_EQ(agenda.List().Item(2)->Height(), agenda.Look().RowHeight());
}

} // namespace
} // namespace mirodate::test
