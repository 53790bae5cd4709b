#pragma once
// The mark-up document of the detail view for one item: the subject, where
// and when, how it repeats and its categories, the attendees and the notes,
// with every free-text field run through the Linkifier (and '<' in it
// written as an entity, so that user text never becomes mark-up).
//
// An appointment is its body: bold subject, location line, the time text in
// italics with (recurrence, categories), the attendees, the notes. A task is
// its underlined title followed by the notes block with a bold due line.
#include "data/PimItem.h"
#include "data/PimRecord.h"
#include "platform/Types.h"
#include "views/Linkifier.h"

#include <string>
#include <vector>

namespace mirodate {

struct ItemDetailColors {
    std::u16string text = u"#000000"; // written as it stands into the font tags
    COLORREF memoText = RGB(0, 0, 0);

    // The detail view's section of the current skin; an empty colorText
    // takes the view's own.
    static ItemDetailColors FromSkin();
};

class ItemDetailDocument {
public:
    // Attendee data of items whose attendees were not loaded.
    static constexpr const char16_t* kAttendeesNotLoaded = u"#NoA^#";

    struct Attendee {
        std::u16string name;
        std::u16string address;
    };

    // `record` holds the texts (notes, attendees), `item` the occurrence
    // shown (its times).
    static std::u16string Build(const PimRecord& record, const PimItem& item, const ItemDetailColors& colors,
                                const Linkifier& linkifier);

    // The notes colour: "#%2x%2x%2x", blank-padded on purpose.
    static std::u16string MemoColor(COLORREF color);
    // "name|address" entries joined by "~".
    static std::vector<Attendee> SplitAttendees(const std::u16string& text);
    // Plain text as linkified mark-up.
    static std::u16string Linkify(const std::u16string& text, const Linkifier& linkifier);
    // The time line of an appointment occurrence.
    static std::u16string TimeText(const PimItem& item);
};

} // namespace mirodate
