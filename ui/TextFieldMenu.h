#pragma once
// The pop-up a long press in a text field opens: the editing commands with
// their enabled states, drawn as our context menu. The chosen command goes
// back to the field as WM_COMMAND (sent to a window handle, so a field that
// is gone by then simply misses it); the menu deletes itself when it closes.
#include "ui/ContextMenu.h"

namespace mirodate {

class TextFieldMenu : public ContextMenu {
public:
    TextFieldMenu(HWND field, std::vector<ContextMenuItem> items);
    // The entries for a field: cut, copy, paste and select all, enabled by
    // the selection and the clipboard, and with `withInsert` the three insert
    // entries, greyed unless `insertEnabled`.
    static std::vector<ContextMenuItem> Items(bool selection, bool withInsert, bool insertEnabled);
    void DeliverChoice(UINT command) override;

private:
    HWND field_;
};

} // namespace mirodate
