#include "data/PimItem.h"

namespace mirodate {

bool operator==(const SYSTEMTIME& a, const SYSTEMTIME& b) {
    return a.wYear == b.wYear && a.wMonth == b.wMonth && a.wDay == b.wDay && a.wHour == b.wHour &&
           a.wMinute == b.wMinute && a.wSecond == b.wSecond;
}

void PimItem::SetTimes(const DateTime& startTime, const DateTime& endTime) {
    start = startTime.ToSystemTime();
    end = endTime.ToSystemTime();
    startValue = startTime.ToDate();
    endValue = endTime.ToDate();
}

void PimItem::SetTaskDates(double startDateDate, double dueDateDate) {
    const DateTime startTime(startDateDate), dueTime(dueDateDate);
    noStartDate = startDateDate == kNoDate || !startTime.IsValid();
    noDueDate = dueDateDate == kNoDate || !dueTime.IsValid();
    startDateValue = noStartDate ? kNoDate : startDateDate;
    dueDateValue = noDueDate ? kNoDate : dueDateDate;
    startDate = noStartDate ? SYSTEMTIME{} : startTime.ToSystemTime();
    dueDate = noDueDate ? SYSTEMTIME{} : dueTime.ToSystemTime();
}

bool operator==(const PimItem& a, const PimItem& b) {
    return a.type == b.type && a.oid == b.oid && a.colors == b.colors && a.subject == b.subject &&
           a.categories == b.categories && a.kind == b.kind && a.start == b.start && a.end == b.end &&
           a.isAllDay == b.isAllDay && a.isRecurring == b.isRecurring && a.isCancelled == b.isCancelled &&
           a.location == b.location && a.startDateValue == b.startDateValue &&
           a.dueDateValue == b.dueDateValue && a.noStartDate == b.noStartDate && a.noDueDate == b.noDueDate &&
           a.isComplete == b.isComplete && a.importance == b.importance && a.recurrence == b.recurrence &&
           a.body == b.body;
}

} // namespace mirodate
