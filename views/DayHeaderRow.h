#pragma once
// The header of one day in a list: the caption ("Today", "Tomorrow") or the
// weekday name on the left, the long date on the right, over the header
// colours of the skin.
#include "ui/TextLayout.h"
#include "views/ViewRow.h"

#include <string>

namespace mirodate {

class DayHeaderRow : public ViewRow {
public:
    DayHeaderRow(const RowLook& look, double dayDate, const std::u16string& caption);

    int RowType() const override { return kTypeHeader; }
    double DayDate() const override { return dayDate_; }
    int Height() const override { return look_.HeaderHeight(); }
    void Draw(Dc& dc, const RECT& rect) override;
    const std::u16string& Caption() const { return caption_; }

private:
    double dayDate_;
    std::u16string caption_;
    TextLayout left_;
    TextLayout date_;
};

} // namespace mirodate
