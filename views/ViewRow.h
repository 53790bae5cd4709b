#pragma once
// The base of every row in a view's list: an item row, a day header or a
// plain message row. A view asks a row what it holds instead of casting.
#include "data/PimItem.h"
#include "ui/TouchListItem.h"
#include "views/RowLook.h"

namespace mirodate {

class ViewRow : public TouchListItem {
public:
    // Row type codes the lists keep; 37 is a day header.
    static constexpr int kTypeItem = 1;
    static constexpr int kTypeHeader = 37;
    static constexpr int kTypeMessage = 2;

    explicit ViewRow(const RowLook& look) : look_(look) {}

    virtual int RowType() const = 0;
    // The row's item, or null for headers and message rows.
    virtual const PimItem* Item() const { return nullptr; }
    // The DATE of the row's day (00:00), or 0 when it has none.
    virtual double DayDate() const { return 0.0; }

    void Click(HWND, int x, int y) override {
        if (look_.listener)
            look_.listener->OnRowTap(*this, x, y);
    }
    const RowLook& Look() const { return look_; }

protected:
    const RowLook& look_;
};

} // namespace mirodate
