#pragma once
// The properties the editors own beside texts and times: the reminder (the
// first display or audio alarm relative to an event's start, or to a task's
// due date through TRIGGER;RELATED=END), the busy status of events (TRANSP
// and X-MICROSOFT-CDO-BUSYSTATUS), the sensitivity (CLASS) and the
// attachments (ATTACH by reference). VEVENT or VTODO is told by the
// component itself.
//
// Sensitivity: "personal" and "private" both mean CLASS:PRIVATE to other
// programs; "personal" adds X-MIRODATE-SENSITIVITY:PERSONAL, which is read
// only beside CLASS:PRIVATE, so a program that changes the class also ends
// the personal mark.
//
// Writing changes a property only when the record says something else than
// the component already does, so that alarms, classes and attachments of
// other programs stay as they were written.
#include "data/PimRecord.h"

#include <libical/ical.h>

namespace mirodate {

class IcsEditorFields {
public:
    static void Read(icalcomponent* component, PimRecord& record);
    static void Write(icalcomponent* component, const PimRecord& record);
};

} // namespace mirodate
