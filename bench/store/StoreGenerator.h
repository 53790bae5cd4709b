#pragma once
// Writes a realistic vdir of any size, the same for the same seed: events
// over two years around a day (meetings, all-day and multi-day items, items
// in other time zones), weekly, daily, monthly and yearly series with moved
// and cancelled occurrences, tasks with and without dates, and contacts with
// birthdays and anniversaries in vCard 3 and 4.
#include <cstdint>
#include <string>

namespace mirodate {

struct StoreGeneratorOptions {
    std::string root;
    int events = 10000; // series included
    int series = 500;
    int tasks = 2000;
    int contacts = 1000;
    std::uint32_t seed = 1;
    int year = 2026, month = 3, day = 15; // the middle of the generated span
    std::string zone = "Europe/Berlin";   // TZID of most timed items
};

class StoreGenerator {
public:
    // False when the folders cannot be written.
    static bool Generate(const StoreGeneratorOptions& options);
};

} // namespace mirodate
