#include "views/MessageRow.h"

#include "ui/Dc.h"
#include "ui/Scale.h"

#include <algorithm>

namespace mirodate {

MessageRow::MessageRow(const RowLook& look, const std::u16string& text, double dayDate)
    : ViewRow(look), text_(text), dayDate_(dayDate) {
    layout_ = TextLayout(text, look.DetailFont(), std::max(look.width - 2 * Scale(8), 1), false);
}

void MessageRow::Draw(Dc& dc, const RECT& rect) {
    dc.FillRect(rect, highlighted_ ? look_.selection : look_.background);
    layout_.Draw(dc, rect.left + (rect.Width() - layout_.Width()) / 2,
                 rect.top + (rect.Height() - layout_.Height()) / 2,
                 highlighted_ ? look_.textSelected : look_.text);
}

} // namespace mirodate
