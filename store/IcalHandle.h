#pragma once
// Owners for libical objects.
#include <libical/ical.h>

#include <memory>

namespace mirodate {

struct IcalComponentFree {
    void operator()(icalcomponent* component) const { icalcomponent_free(component); }
};
using IcalComponentPtr = std::unique_ptr<icalcomponent, IcalComponentFree>;

struct IcalRecurIteratorFree {
    void operator()(icalrecur_iterator* iterator) const { icalrecur_iterator_free(iterator); }
};
using IcalRecurIteratorPtr = std::unique_ptr<icalrecur_iterator, IcalRecurIteratorFree>;

} // namespace mirodate
