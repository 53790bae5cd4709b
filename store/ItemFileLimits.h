#pragma once
// Bounds on one item file of the vdir, checked before it is parsed, so that a
// damaged or hostile file costs no more time and memory than a big real one.
//
// Real items are small: a meeting is 1-5 KB, a daily series with a thousand
// moved or cancelled occurrences about 1 MB and 20,000 properties, a contact
// with a photo a few hundred KB. libical spends a few microseconds and a few
// hundred bytes on each property and parameter, so the bounds below keep a
// file under a quarter of a second and about 60 MB however it is shaped.
#include <cstdint>
#include <string>
#include <string_view>

namespace mirodate {

class ItemFileLimits {
public:
    static constexpr std::int64_t kMaxFileBytes = 4 * 1024 * 1024;
    // Content lines (after unfolding) of an .ics or .vcf file.
    static constexpr std::size_t kMaxProperties = 50000;
    // Parameters (";NAME=value" before a line's ":") of an .ics or .vcf file.
    static constexpr std::size_t kMaxParameters = 50000;

    // Empty when the file size is within the bound, else the reason to skip it.
    static std::string CheckSize(std::int64_t bytes);
    // Empty when iCalendar or vCard text is within the bounds, else the reason.
    static std::string CheckText(std::string_view text);
};

} // namespace mirodate
