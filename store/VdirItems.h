#pragma once
// The item collection of a vdir folder: the folder's items as they were when
// it was made, sorted on request, with series expanded into occurrences
// within the window the restriction allows.
#include "data/PimItems.h"
#include "data/TextMatcher.h"
#include "store/VdirSource.h"

#include <optional>
#include <vector>

namespace mirodate {

class VdirItems : public PimItems {
public:
    VdirItems(VdirSource& source, VdirSource::Snapshot items);

    bool Sort(const std::u16string& property, bool descending) override;
    void SetIncludeRecurrences(bool include) override { includeRecurrences_ = include; }
    void SetTextFilter(const std::u16string& text) override;
    FindResult Find(const std::u16string& restriction, PimRecord& item) override;
    FindResult FindNext(PimRecord& item) override;
    int GetCount() override;
    bool Item(int index, PimRecord& item) override;

private:
    enum class SortKey { None, Start, End, DueDate, StartDate, Subject };
    void SortRecords(std::vector<PimRecord>& records) const;

    VdirSource& source_;
    VdirSource::Snapshot items_;
    SortKey sortKey_ = SortKey::None;
    bool descending_ = false;
    bool includeRecurrences_ = false;
    std::optional<TextMatcher> textFilter_;
    std::vector<PimRecord> found_;
    std::size_t next_ = 0;
    std::vector<PimRecord> sortedItems_; // for Item(): every item, series once
    bool sortedValid_ = false;
};

} // namespace mirodate
