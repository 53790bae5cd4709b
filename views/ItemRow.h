#pragma once
// One appointment, birthday, anniversary or task in a view's list: a colour
// mark, the subject (struck through when past or done), the time range or
// due text with the location, and for timed appointments the day bar along
// the bottom. A task has a check-mark zone on the left that toggles it.
#include "ui/TextLayout.h"
#include "views/DayBar.h"
#include "views/ViewRow.h"

namespace mirodate {

class ItemRow : public ViewRow {
public:
    // `dayDate` is the DATE (00:00) of the day the row stands under.
    ItemRow(const RowLook& look, const PimItem& item, double dayDate);

    int RowType() const override { return kTypeItem; }
    const PimItem* Item() const override { return &item_; }
    double DayDate() const override { return dayDate_; }
    int Height() const override { return look_.RowHeight(); }
    void Draw(Dc& dc, const RECT& rect) override;
    bool AcceptsLongTap(HWND) override;

    // Whether a row-local x lies in a task's check-mark zone.
    bool InCheckZone(int x) const;
    bool HasDayBar() const;
    COLORREF Color() const { return color_; }
    bool IsStruckThrough() const { return struck_; }
    // The second line as shown (time range or due text, and the location).
    const std::u16string& DetailText() const;
    // A short label at the right end of the second line (a task's priority).
    void SetMark(std::u16string mark) { mark_ = std::move(mark); }
    const std::u16string& Mark() const { return mark_; }

private:
    void DrawCheckBox(Dc& dc, const RECT& zone, COLORREF ink) const;
    // Texts, layouts and the day bar are made when the row is first shown:
    // a long agenda fills fast and only pays for the rows the user sees.
    void EnsureLayout() const;

    PimItem item_;
    double dayDate_;
    COLORREF color_;
    bool struck_;
    mutable bool laidOut_ = false;
    mutable std::u16string detailText_;
    mutable TextLayout subject_;
    mutable TextLayout detail_;
    std::u16string mark_;
    mutable TextLayout markLayout_;
    mutable DayBar dayBar_;
};

} // namespace mirodate
