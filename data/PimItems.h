#pragma once
// A folder's item collection, in the manner of the handheld's PIM object
// model: sort it, choose whether a series yields one item per occurrence,
// then walk the items matching a restriction with Find and FindNext.
//
// Restrictions are texts such as "[Start]<= <46000 AND [End]>= <45970":
// fields [Start], [End], [DueDate], [StartDate], [Complete]; operators <=,
// >=, =; AND, OR, parentheses; "<N" is the day number N (a DATE truncated
// toward zero) and compares with the day of the field; True and False. An
// absent task date matches no comparison. An empty restriction matches every
// item. A restriction that does not parse is an error, never "everything".
#include "data/PimRecord.h"

#include <string>

namespace mirodate {

enum class FindResult { Found, NotFound, BadRestriction };

class PimItems {
public:
    virtual ~PimItems() = default;
    // property: "[Start]", "[End]", "[DueDate]", "[StartDate]" or "[Subject]";
    // false for any other.
    virtual bool Sort(const std::u16string& property, bool descending) = 0;
    virtual void SetIncludeRecurrences(bool include) = 0;
    // Find and FindNext then leave out items whose subject, location, notes
    // and categories do not contain `text`, compared case folded and
    // literally; an empty text lifts the filter.
    virtual void SetTextFilter(const std::u16string& text) = 0;
    virtual FindResult Find(const std::u16string& restriction, PimRecord& item) = 0;
    virtual FindResult FindNext(PimRecord& item) = 0;
    // Every item of the folder, series as one item, in the current sort.
    virtual int GetCount() = 0;
    virtual bool Item(int index, PimRecord& item) = 0;
};

} // namespace mirodate
