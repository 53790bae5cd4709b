#pragma once
// A realistic month of appointments, tasks and contacts around a day, for
// trying the program out on an empty store.
#include "data/DateTime.h"
#include "data/PimSource.h"

namespace mirodate {

class DemoData {
public:
    // Writes the demo items through the source; the number written, or -1
    // when a write failed.
    static int Fill(PimSource& source, const DateTime& today);
};

} // namespace mirodate
