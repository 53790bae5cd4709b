#include "store/VdirItems.h"

#include "data/DateTime.h"
#include "store/IcsItem.h"
#include "store/Restriction.h"

#include <algorithm>
#include <cmath>

namespace mirodate {

namespace {
bool AnyMatches(TextMatcher& matcher, const IcsItem& series) {
    for (const PimRecord& record : series.GetOverrideRecords())
        if (matcher.Matches(record))
            return true;
    return false;
}
} // namespace

VdirItems::VdirItems(VdirSource& source, VdirSource::Snapshot items)
    : source_(source), items_(std::move(items)) {}

bool VdirItems::Sort(const std::u16string& property, bool descending) {
    if (property == u"[Start]")
        sortKey_ = SortKey::Start;
    else if (property == u"[End]")
        sortKey_ = SortKey::End;
    else if (property == u"[DueDate]")
        sortKey_ = SortKey::DueDate;
    else if (property == u"[StartDate]")
        sortKey_ = SortKey::StartDate;
    else if (property == u"[Subject]")
        sortKey_ = SortKey::Subject;
    else
        return false;
    descending_ = descending;
    sortedValid_ = false;
    return true;
}

void VdirItems::SortRecords(std::vector<PimRecord>& records) const {
    auto key = [this](const PimRecord& r) {
        switch (sortKey_) {
        case SortKey::Start:
            return r.start;
        case SortKey::End:
            return r.end;
        case SortKey::DueDate:
            return r.dueDate;
        case SortKey::StartDate:
            return r.startDate;
        default:
            return 0.0;
        }
    };
    if (sortKey_ == SortKey::None)
        return;
    if (sortKey_ == SortKey::Subject) {
        std::stable_sort(records.begin(), records.end(), [this](const PimRecord& a, const PimRecord& b) {
            return descending_ ? b.subject < a.subject : a.subject < b.subject;
        });
        return;
    }
    std::stable_sort(records.begin(), records.end(), [&](const PimRecord& a, const PimRecord& b) {
        return descending_ ? key(b) < key(a) : key(a) < key(b);
    });
}

void VdirItems::SetTextFilter(const std::u16string& text) {
    if (text.empty())
        textFilter_.reset();
    else
        textFilter_.emplace(text);
}

FindResult VdirItems::Find(const std::u16string& text, PimRecord& item) {
    found_.clear();
    next_ = 0;
    Restriction restriction;
    std::string error;
    if (!restriction.Parse(text, error))
        return FindResult::BadRestriction;
    const Restriction::Window window = restriction.GetWindow();
    // Which stored items are series to expand, and over what days: only
    // occurrences that can match are made (the restriction bounds their
    // start, and their end bounds it from below). Without bounds a series
    // stays one item.
    struct Span {
        double from = 0, before = 0;
    };
    auto expansion = [&](const StoredItem& stored, Span& span) {
        if (!includeRecurrences_ || !stored.series)
            return false;
        span.from = std::max(window.startFrom, window.endFrom - stored.longest);
        span.before = window.startBefore;
        return std::isfinite(span.from) && std::isfinite(span.before);
    };
    auto mayOccur = [](const StoredItem& stored, const Span& span) {
        return stored.record.start < span.before &&
               (stored.seriesEnd == kNoDate || stored.seriesEnd >= span.from);
    };
    // A series whose kept expansion covers the span needs no parsing: its
    // occurrences are those kept, as the rule would give them again.
    auto keptFor = [&](const std::shared_ptr<const StoredItem>& stored, const Span& span) {
        auto kept = source_.GetExpansion(stored);
        return kept && kept->from <= span.from && span.before <= kept->before ? kept : nullptr;
    };
    // The kept expansions of the series to expand, in the order of the walk
    // below; the other series files are parsed first, all at once on every core.
    std::vector<std::shared_ptr<const StoredExpansion>> keptInOrder;
    std::vector<std::shared_ptr<const StoredItem>> toParse;
    Span span;
    for (const auto& stored : items_)
        if (expansion(*stored, span) && mayOccur(*stored, span)) {
            keptInOrder.push_back(keptFor(stored, span));
            if (!keptInOrder.back())
                toParse.push_back(stored);
        }
    source_.ParseAhead(toParse);
    const double now = DateTime::Now().ToDate();
    std::size_t nextKept = 0;

    std::vector<PimRecord> occurrences;
    for (const auto& stored : items_) {
        if (!expansion(*stored, span)) {
            if (restriction.Matches(stored->record) && (!textFilter_ || textFilter_->Matches(stored->record)))
                found_.push_back(stored->record);
            continue;
        }
        if (!mayOccur(*stored, span))
            continue;
        occurrences.clear();
        if (const auto& kept = keptInOrder[nextKept++]) {
            auto first = std::lower_bound(
                kept->occurrences.begin(), kept->occurrences.end(), span.from,
                [](const PimRecord& occurrence, double start) { return occurrence.start < start; });
            for (auto it = first; it != kept->occurrences.end() && it->start < span.before; ++it)
                occurrences.push_back(*it);
        } else {
            auto parsed = source_.GetParsed(stored);
            if (!parsed)
                continue;
            if (textFilter_ && !textFilter_->Matches(stored->record) && !AnyMatches(*textFilter_, *parsed))
                continue; // no occurrence can carry the text: nothing to expand
            bool complete = true;
            parsed->Expand(span.from, span.before, occurrences, &complete);
            // Kept only when no bound on work cut it short, so that any
            // window inside it gives what a new expansion would.
            if (complete)
                source_.KeepExpansion(stored, span.from, span.before, occurrences, now);
        }
        for (auto& occurrence : occurrences) {
            occurrence.oid = stored->record.oid;
            occurrence.uid = stored->uid;
            occurrence.recurrence = stored->record.recurrence;
            // An occurrence moved or retitled on its own keeps its own texts.
            if (restriction.Matches(occurrence) && (!textFilter_ || textFilter_->Matches(occurrence)))
                found_.push_back(std::move(occurrence));
        }
    }
    SortRecords(found_);
    return FindNext(item);
}

FindResult VdirItems::FindNext(PimRecord& item) {
    if (next_ >= found_.size())
        return FindResult::NotFound;
    item = found_[next_++];
    return FindResult::Found;
}

int VdirItems::GetCount() {
    return static_cast<int>(items_.size());
}

bool VdirItems::Item(int index, PimRecord& item) {
    if (!sortedValid_) {
        sortedItems_.clear();
        for (const auto& stored : items_)
            sortedItems_.push_back(stored->record);
        SortRecords(sortedItems_);
        sortedValid_ = true;
    }
    if (index < 0 || static_cast<std::size_t>(index) >= sortedItems_.size())
        return false;
    item = sortedItems_[static_cast<std::size_t>(index)];
    return true;
}

} // namespace mirodate
