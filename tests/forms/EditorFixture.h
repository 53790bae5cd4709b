#pragma once
// The appointment editor on the real window system, headless, over a real
// vdir store (see ViewFixture): helpers that tap its rows and buttons, type
// into its fields, choose from the menus its rows open, and read the files
// the store wrote.
#include "forms/AppointmentEditor.h"
#include "forms/AppointmentSaver.h"
#include "lang/LanguageTable.h"
#include "platform/RecordingPlatformServices.h"
#include "platform/VirtualKeys.h"
#include "tests/views/ViewFixture.h"
#include "ui/ContextMenu.h"

#include <memory>

namespace mirodate::test {

class EditorFixture : public ViewFixture {
protected:
    void SetUp() override {
        ViewFixture::SetUp();
        // Texts are their keys, whatever language an earlier test loaded.
        LanguageTable::Instance().SetText(u"");
        AppointmentSaver::SetMainWindow(nullptr);
        services_ = std::make_unique<RecordingPlatformServices>();
    }
    void TearDown() override {
        editor_.reset();
        services_.reset();
        ViewFixture::TearDown();
    }

    AppointmentEditor& Open(AppointmentDraft draft) {
        editor_ = std::make_unique<AppointmentEditor>(std::move(draft));
        EXPECT_TRUE(editor_->Open(nullptr));
        windows_->RunUntilIdle();
        return *editor_;
    }
    // The record of the only appointment on a day, through the store.
    PimItem ItemOn(const DateTime& day, const std::u16string& subject = {}) {
        std::vector<PimItem> items;
        PimStore::Instance().GetDayAppointments(day.GetYear(), day.GetMonth(), day.GetDay(), items);
        for (const PimItem& item : items)
            if (subject.empty() || item.subject == subject)
                return item;
        ADD_FAILURE() << "no item on the day";
        return {};
    }
    PimRecord RecordOf(std::int32_t oid) {
        PimRecord record;
        EXPECT_TRUE(PimStore::Instance().Source()->GetItemFromOid(oid, record));
        return record;
    }

    // Taps the middle of a window (a button), after the buttons' guard against repeated taps.
    void TapWindow(HWND hwnd) {
        Wait(1000);
        RECT rect;
        GetWindowRect(hwnd, &rect);
        Tap((rect.left + rect.right) / 2, (rect.top + rect.bottom) / 2);
    }
    // Scrolls a row into view and taps it like a finger.
    void TapRow(AppointmentDraft::Row row) { TapListRow(editor_->List(), editor_->RowIndex(row)); }
    // The same for row `index` of any editor's list.
    void TapListRow(TouchListCtrlWnd& list, int index) {
        ASSERT_GE(index, 0);
        list.Scroller().SetPosition(0);
        const int top = list.Scroller().ItemTop(index);
        list.Scroller().SetPosition(top);
        RECT rect;
        GetWindowRect(list.GetHwnd(), &rect);
        const int y = rect.top + list.Scroller().Viewport().top + list.Scroller().ItemTop(index) +
                      list.Item(index)->Height() / 2;
        Wait(600); // the list's guard between taps
        Tap(rect.left + (rect.right - rect.left) / 3, y);
        windows_->RunUntilIdle();
    }
    // Chooses entry `text` of the menu that is open (by keys, as a user
    // without a finger does).
    void ChooseMenu(const std::u16string& text) {
        Wait(1100); // the slide and the menu's guard
        const HWND hwnd = FindWindow(nullptr, kContextMenuTitle);
        ASSERT_TRUE(hwnd) << "no menu open";
        auto* menu = dynamic_cast<ContextMenu*>(reinterpret_cast<BaseWnd*>(GetWindowLongPtr(hwnd, DWL_USER)));
        ASSERT_TRUE(menu);
        menuTexts.clear();
        int index = -1;
        for (size_t i = 0; i < menu->items.size(); ++i) {
            menuTexts.push_back(menu->items[i].text);
            if (menu->items[i].text == text)
                index = static_cast<int>(i);
        }
        ASSERT_GE(index, 0) << "no such entry";
        menu->list.SetSelected(index);
        SendMessage(hwnd, WM_KEYDOWN, VK_RETURN, 0);
        Wait(500);
    }
    void Type(const std::string& utf8) {
        DisplayEvent event;
        event.type = DisplayEvent::Type::Text;
        event.text = utf8;
        display_->Inject(event);
        windows_->RunUntilIdle();
    }

    std::unique_ptr<AppointmentEditor> editor_;
    std::unique_ptr<RecordingPlatformServices> services_;
    std::vector<std::u16string> menuTexts; // the entries of the last menu chosen from
};

} // namespace mirodate::test
