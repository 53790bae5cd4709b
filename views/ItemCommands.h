#pragma once
// The command handler every view shares: it carries out the numbered
// commands of the item pop-up, the "Menu" pop-up and the "New" menu on the
// item the user picked, asks the questions each one needs in message pages,
// and writes through the store. A write refused because the file changed on
// disk since it was read is reported to the user; the caller reloads.
#include "data/DateTime.h"
#include "data/PimItem.h"
#include "ui/ContextMenu.h"
#include "ui/WinTypes.h"

#include <optional>
#include <vector>

namespace mirodate {

class ItemCommands {
public:
    // Command numbers of the menus.
    static constexpr UINT kNewAppointment = 0;
    static constexpr UINT kNewTask = 1;
    static constexpr UINT kExit = 4;
    static constexpr UINT kConfig = 5;
    static constexpr UINT kAbout = 7;
    static constexpr UINT kDelete = 10;
    static constexpr UINT kEdit = 20;
    static constexpr UINT kOpenInPlatform = 30;
    static constexpr UINT kNewAppointmentHere = 50;
    static constexpr UINT kDuplicate = 55;
    static constexpr UINT kBeam = 56;
    static constexpr UINT kNewTaskHere = 60;
    static constexpr UINT kToggleComplete = 100;
    static constexpr UINT kOpenPlatformCalendar = 155;
    static constexpr UINT kSearch = 401;
    static constexpr UINT kToday = 59000;
    static constexpr UINT kTomorrow = 60000;

    enum class Outcome {
        Done,    // carried out (or cancelled by the user); nothing to reload
        Changed, // the store changed: the view sets its refresh flag and reloads
        Unknown, // not one of the shared commands
    };

    // "Edit", "OpenInWMCal", "Delete", "Duplicate", "Beam".
    static std::vector<ContextMenuItem> ItemMenu();
    // "Search", "Config", "About", "Exit".
    static std::vector<ContextMenuItem> AppMenu();
    // "NewAppointment", "NewTask".
    static std::vector<ContextMenuItem> NewMenu();

    // Runs `command` for the page `owner` on `item` (null: none selected),
    // whose row stands on `rowDate`.
    static Outcome Run(HWND owner, UINT command, const PimItem* item, const DateTime& rowDate);

    static Outcome Delete(HWND owner, const PimItem& item);
    static Outcome ToggleComplete(HWND owner, const PimItem& task);
    static Outcome Duplicate(HWND owner, const PimItem& item);
    static Outcome Edit(HWND owner, const PimItem& item);
    static void Exit(HWND owner);

private:
    // Tells the user why a write did not happen; false when it did not.
    static bool ReportSave(HWND owner, int result, std::int32_t oid);
    // Brings the month cache up to date with an item the program just wrote.
    static void Refresh(std::int32_t oid, bool task, bool deleted);
};

} // namespace mirodate
