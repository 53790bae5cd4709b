// Feeds arbitrary text to the store's .ics reader as a vdir file would reach
// it, expands what it reads over a month and a year, and writes a change back
// into the text the way a save does, reading the result again.
#include "data/DateTime.h"
#include "store/IcsItem.h"
#include "store/IcsWriter.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <string>
#include <string_view>
#include <vector>

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    setenv("TZ", "Europe/Berlin", 1);
    tzset();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace mirodate;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    IcsItem item;
    std::string problem;
    if (!item.Parse(text, problem))
        return 0;
    std::vector<PimRecord> occurrences;
    const PimRecord& record = item.GetRecord();
    const DateTime start(record.start);
    if (start.IsValid()) {
        const DateTime month(start.GetYear(), start.GetMonth(), 1);
        item.Expand(month.ToDate(), (month + DateTimeSpan(31.0)).ToDate(), occurrences);
    }
    item.Expand(DateTime(2025, 1, 1).ToDate(), DateTime(2026, 1, 1).ToDate(), occurrences);

    std::string updated;
    if (IcsWriter::Update(text, record, updated)) {
        IcsItem again;
        again.Parse(updated, problem);
    }
    if (!occurrences.empty()) {
        std::string withException;
        IcsWriter::AddException(text, occurrences.front().start, nullptr, withException);
        IcsWriter::AddException(text, occurrences.back().start, &occurrences.back(), withException);
    }
    return 0;
}
