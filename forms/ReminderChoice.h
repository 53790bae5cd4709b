#pragma once
// The reminder row of both item editors: the entries of its menu and what
// each does to the draft ("set_datetime"/"change_datetime" pick a moment,
// "set_span"/"change_span" a lead time, "unset" clears the reminder). The
// draft (AppointmentDraft or TaskDraft) relates the moment to its own start
// or due date.
#include "forms/DateTimePickerPage.h"
#include "forms/TimeSpanPickerPage.h"
#include "lang/LanguageTable.h"
#include "ui/MessagePage.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace mirodate {

class ReminderChoice {
public:
    // The menu's entries for a reminder that is set or not; `keys` receives
    // the key behind each entry.
    static std::vector<std::u16string> Entries(bool reminderSet, std::vector<const char*>& keys);

    // Does what entry `key` says to `draft`. A moment the draft refuses is
    // told over the rows as they are: `showRows` repaints them first.
    template <class Draft>
    static void Choose(HWND owner, std::string_view key, Draft& draft,
                       const std::function<void()>& showRows) {
        if (key == "set_datetime" || key == "change_datetime") {
            const auto moment = DateTimePickerPage::Pick(owner, draft.ReminderMoment());
            if (!moment || draft.SetReminderMoment(*moment))
                return;
            showRows();
            MessagePage::Tell(owner, Lang("ReminderInvalid"));
        } else if (key == "set_span" || key == "change_span") {
            const auto minutes = TimeSpanPickerPage::Pick(
                owner, draft.Record().reminderSet ? draft.Record().reminderMinutes : 0);
            if (minutes && *minutes >= 0)
                draft.SetReminder(true, *minutes);
        } else if (key == "unset") {
            draft.SetReminder(false, 0);
        }
    }
};

} // namespace mirodate
