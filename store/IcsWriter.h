#pragma once
// Writes items as iCalendar and vCard text: new files, and changes to the
// main component of an existing file that keep every property we do not own.
#include "data/PimRecord.h"

#include <string>
#include <string_view>

namespace mirodate {

class IcsWriter {
public:
    // A VCALENDAR with one VEVENT (itemKind 1) or VTODO (3).
    static std::string NewItem(const PimRecord& record, const std::string& uid);
    // `existing` with the main component's owned properties replaced by the
    // record's; false when `existing` does not parse.
    static bool Update(std::string_view existing, const PimRecord& record, std::string& out);
    // `existing` with every UID replaced (for a copy).
    static bool ReplaceUid(std::string_view existing, const std::string& uid, std::string& out);
    // Adds an override for the occurrence starting at `originalStart` (local
    // DATE): moved to `occurrence`'s times and texts, or, when `occurrence`
    // is null, cancelled (an EXDATE).
    static bool AddException(std::string_view existing, double originalStart, const PimRecord* occurrence,
                             std::string& out);
    // A vCard 3.0 with FN, BDAY and ANNIVERSARY.
    static std::string NewContact(const PimRecord& record, const std::string& uid);
    // A new random UID.
    static std::string MakeUid();
};

} // namespace mirodate
