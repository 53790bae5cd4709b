#pragma once
// A row with one line of text and no item, such as "NoAppointments".
#include "ui/TextLayout.h"
#include "views/ViewRow.h"

#include <string>

namespace mirodate {

class MessageRow : public ViewRow {
public:
    MessageRow(const RowLook& look, const std::u16string& text, double dayDate);

    int RowType() const override { return kTypeMessage; }
    double DayDate() const override { return dayDate_; }
    int Height() const override { return look_.RowHeight(); }
    void Draw(Dc& dc, const RECT& rect) override;
    const std::u16string& Text() const { return text_; }

private:
    std::u16string text_;
    double dayDate_;
    TextLayout layout_;
};

} // namespace mirodate
