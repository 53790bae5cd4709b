#pragma once
// The filter configuration PimStore holds and the test every appointment
// and task passes before a view sees it.
#include "data/FilterList.h"
#include "data/PimItem.h"

#include <string>

namespace mirodate {

struct FilterConfig {
    std::u16string excludeFilter;
    std::u16string categoryFilter;
    bool hideCompleteTasks = false;
    bool showBirthdays = false;
    bool showAnniversaries = false;

    friend bool operator==(const FilterConfig&, const FilterConfig&) = default;
};

class ItemFilter {
public:
    ItemFilter() = default;
    explicit ItemFilter(const FilterConfig& config);

    const FilterConfig& Config() const { return config_; }
    // In this order: a complete task is dropped when complete tasks are
    // hidden; an item matching the exclude list is dropped; while an include
    // list is set, an item not matching it (one without categories too) is
    // dropped. Birthdays and anniversaries have no categories and are ruled
    // by their own switches only.
    bool Keep(const PimItem& item) const;

private:
    FilterConfig config_;
    FilterList exclude_;
    FilterList include_;
};

} // namespace mirodate
