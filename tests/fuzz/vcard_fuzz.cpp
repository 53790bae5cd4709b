// Feeds arbitrary text to the vCard reader, and the dates it finds back
// through the writer and the reader, which must give the same dates.
#include "store/IcsWriter.h"
#include "store/VcardReader.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace mirodate;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    double date = 0.0;
    bool hasYear = false;
    VcardReader::ParseDate(text.substr(0, 64), date, hasYear);

    PimRecord record;
    std::string problem;
    if (!VcardReader::Read(text, record, problem))
        return 0;
    PimRecord again;
    if (!VcardReader::Read(IcsWriter::NewContact(record, "fuzz-uid"), again, problem))
        abort();
    if (again.birthday != record.birthday || again.anniversary != record.anniversary ||
        again.birthdayHasYear != record.birthdayHasYear ||
        again.anniversaryHasYear != record.anniversaryHasYear)
        abort();
    return 0;
}
