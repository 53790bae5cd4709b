#include "forms/ReminderChoice.h"

#include "data/EditorTexts.h"

namespace mirodate {

std::vector<std::u16string> ReminderChoice::Entries(bool reminderSet, std::vector<const char*>& keys) {
    keys = EditorTexts::ReminderMenuKeys(reminderSet);
    std::vector<std::u16string> entries;
    for (const char* key : keys)
        entries.push_back(Lang(key));
    return entries;
}

} // namespace mirodate
