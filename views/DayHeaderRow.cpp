#include "views/DayHeaderRow.h"

#include "data/DateTime.h"
#include "platform/Locale.h"
#include "ui/Dc.h"
#include "ui/Scale.h"

#include <algorithm>

namespace mirodate {

namespace {
// The header's inset from the row (8 pixels at high resolution).
constexpr int kInset = 4;
// The caption's left edge inside the inset, and its bottom margin.
constexpr int kCaptionLeft = 3;
constexpr int kCaptionBottom = 6;
} // namespace

DayHeaderRow::DayHeaderRow(const RowLook& look, double dayDate, const std::u16string& caption)
    : ViewRow(look), dayDate_(dayDate), caption_(caption) {
    // The date is taken at noon, away from any change of clocks.
    SYSTEMTIME day = DateTime(dayDate + 0.5).ToSystemTime();
    const std::u16string longDate = Locale::FormatDatePicture(day, u"dd MMMM yyyy");
    const std::u16string weekday = Locale::FormatDatePicture(day, u"dddd");
    const int inner = std::max(look.width - 2 * Scale(kInset) - 2 * Scale(kCaptionLeft), 1);
    // The date keeps its natural width unless that leaves the caption less than a third.
    date_ = TextLayout(longDate, look.HeaderFont(), 0, false);
    if (date_.Width() > inner - inner / 3)
        date_ = TextLayout(longDate, look.HeaderFont(), inner - inner / 3, false);
    left_ = TextLayout(caption.empty() ? weekday : caption, look.HeaderFont(),
                       std::max(inner - date_.Width() - Scale(4), 1), false);
}

void DayHeaderRow::Draw(Dc& dc, const RECT& rect) {
    dc.FillRect(rect, look_.background);
    const RECT inset{rect.left + Scale(kInset), rect.top + Scale(kInset), rect.right - Scale(kInset),
                     rect.bottom - Scale(kInset)};
    if (highlighted_)
        dc.FillRect(inset, look_.selection);
    else
        dc.GradientFillVertical(inset, look_.headerBackground, look_.headerGradient);
    const COLORREF ink = highlighted_ ? look_.textSelected : look_.headerText;
    // Both texts sit on the inset's middle line; very low headers keep the caption's bottom margin.
    const int middle = (inset.top + inset.bottom) / 2;
    const int captionTop =
        std::min(middle - left_.Height() / 2, inset.bottom - Scale(kCaptionBottom) / 2 - left_.Height());
    left_.Draw(dc, inset.left + Scale(kCaptionLeft), std::max(inset.top, captionTop), ink);
    date_.Draw(dc, inset.right - Scale(kCaptionLeft) - date_.Width(), middle - date_.Height() / 2, ink);
}

} // namespace mirodate
