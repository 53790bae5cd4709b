#include "data/ItemFilter.h"

namespace mirodate {

ItemFilter::ItemFilter(const FilterConfig& config)
    : config_(config), exclude_(config.excludeFilter), include_(config.categoryFilter) {}

bool ItemFilter::Keep(const PimItem& item) const {
    if (!item.IsTask() && item.kind != PimItem::kAppointment)
        return true;
    if (item.IsTask() && item.isComplete && config_.hideCompleteTasks)
        return false;
    if (!exclude_.IsEmpty() && MatchesFilterList(item.categories, exclude_))
        return false;
    if (!include_.IsEmpty() && !MatchesFilterList(item.categories, include_))
        return false;
    return true;
}

} // namespace mirodate
