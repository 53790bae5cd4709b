#pragma once
// Reads what the calendar needs of a vCard (2.1, 3.0 or 4.0): the UID, the
// display name, the birthday and anniversary (with or without a year) and
// every e-mail address (for inviting the contact to a meeting).
#include "data/PimRecord.h"

#include <string>
#include <string_view>

namespace mirodate {

class VcardReader {
public:
    // More addresses than anyone has are left out: a damaged card must not
    // fill the attendee list.
    static constexpr std::size_t kMaxEmails = 32;
    static constexpr std::size_t kMaxEmailLength = 254;

    // False (with the reason) for text that is not a vCard.
    static bool Read(std::string_view text, PimRecord& record, std::string& problem);
    // "1990-02-15", "19900215", "--0215", "--02-15", with or without a time
    // part; false for anything else.
    static bool ParseDate(std::string_view text, double& date, bool& hasYear);
};

} // namespace mirodate
