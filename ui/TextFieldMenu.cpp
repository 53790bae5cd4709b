#include "ui/TextFieldMenu.h"

#include "lang/LanguageTable.h"
#include "ui/Clipboard.h"
#include "ui/TextFieldWnd.h"
#include "ui/WinApi.h"

namespace mirodate {

TextFieldMenu::TextFieldMenu(HWND field, std::vector<ContextMenuItem> items)
    : ContextMenu(nullptr, std::move(items)), field_(field) {}

void TextFieldMenu::DeliverChoice(UINT command) {
    if (IsWindow(field_))
        PostMessage(field_, WM_COMMAND, command, 0);
    ContextMenu::DeliverChoice(command); // without an owner: closes and deletes the menu
}

std::vector<ContextMenuItem> TextFieldMenu::Items(bool selection, bool withInsert, bool insertEnabled) {
    std::vector<ContextMenuItem> items;
    auto add = [&](const char* key, UINT command, bool enabled) {
        ContextMenuItem item;
        item.text = Lang(key);
        item.command = command;
        item.enabled = enabled;
        items.push_back(std::move(item));
    };
    add("Cut", TextFieldWnd::kCommandCut, selection);
    add("Copy", TextFieldWnd::kCommandCopy, selection);
    add("Paste", TextFieldWnd::kCommandPaste, Clipboard::HasText());
    // Select all asks for a selection too, as cut does.
    add("SelectAll", TextFieldWnd::kCommandSelectAll, selection);
    if (withInsert) {
        add("InsertContact", TextFieldWnd::kCommandInsertContact, insertEnabled);
        add("InsertLocation", TextFieldWnd::kCommandInsertLocation, insertEnabled);
        add("InsertDate", TextFieldWnd::kCommandInsertDate, insertEnabled);
    }
    return items;
}

} // namespace mirodate
