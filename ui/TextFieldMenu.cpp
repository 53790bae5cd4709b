#include "ui/TextFieldMenu.h"

#include "ui/WinApi.h"

namespace mirodate {

TextFieldMenu::TextFieldMenu(HWND field, std::vector<ContextMenuItem> items)
    : ContextMenu(nullptr, std::move(items)), field_(field) {}

void TextFieldMenu::DeliverChoice(UINT command) {
    if (IsWindow(field_))
        PostMessage(field_, WM_COMMAND, command, 0);
    ContextMenu::DeliverChoice(command); // without an owner: closes and deletes the menu
}

} // namespace mirodate
