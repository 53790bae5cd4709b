#include "views/ItemRow.h"

#include "ui/Dc.h"
#include "ui/Scale.h"
#include "views/ItemTexts.h"

#include <algorithm>

namespace mirodate {

namespace {
// Subjects are cut for layout; a row shows one line of them anyway.
constexpr size_t kMaxShownSubject = 512;
constexpr int kCheckBoxSize = 9;
constexpr int kTextGap = 4;
// The mark keeps clear of the list's scroll strip along the right edge.
constexpr int kMarkRightInset = 10;

std::u16string ShownText(const std::u16string& text) {
    std::u16string shown = text.substr(0, kMaxShownSubject);
    // Line breaks would make a second line the row has no room for.
    std::replace_if(
        shown.begin(), shown.end(), [](char16_t c) { return c == u'\n' || c == u'\r' || c == u'\t'; }, u' ');
    return shown;
}
} // namespace

ItemRow::ItemRow(const RowLook& look, const PimItem& item, double dayDate)
    : ViewRow(look), item_(item), dayDate_(dayDate) {
    color_ = ItemTexts::RowColor(item_, look.text, look.colorize);
    struck_ = ItemTexts::IsStruckThrough(item_, look.strikePast, look.now);
}

void ItemRow::EnsureLayout() const {
    if (laidOut_)
        return;
    laidOut_ = true;
    const RowLook& look = look_;
    detailText_ = item_.IsTask() ? ItemTexts::DueText(item_, look.today) : ItemTexts::TimeRange(item_);
    if (!item_.location.empty()) {
        if (!detailText_.empty())
            detailText_ += u"  \u00b7  ";
        detailText_ += ShownText(item_.location);
    }
    int left = Scale(RowLook::kColorMarkWidth) + Scale(kTextGap);
    if (item_.IsTask())
        left = look.CheckZoneWidth();
    const int textWidth = std::max(look.width - left - Scale(kTextGap), 1);
    subject_ = TextLayout(ShownText(item_.subject), struck_ ? look.StruckSubjectFont() : look.SubjectFont(),
                          textWidth, false);
    int detailWidth = textWidth;
    if (!mark_.empty()) {
        markLayout_ = TextLayout(mark_, look.DetailFont(), std::max(textWidth / 3, 1), false);
        detailWidth = std::max(textWidth - markLayout_.Width() - Scale(kMarkRightInset), 1);
    }
    detail_ = TextLayout(detailText_, look.DetailFont(), detailWidth, false);
    // Timed appointments get the bar; all-day ones and contact dates do not.
    if (!item_.IsTask() && item_.kind == PimItem::kAppointment && !item_.isAllDay)
        dayBar_.Build(item_, dayDate_, look.width, look.background,
                      item_.colors.empty() ? look.timeScale : item_.colors.front());
}

bool ItemRow::HasDayBar() const {
    EnsureLayout();
    return !dayBar_.IsEmpty();
}

const std::u16string& ItemRow::DetailText() const {
    EnsureLayout();
    return detailText_;
}

bool ItemRow::AcceptsLongTap(HWND) {
    // Items from contacts have no pop-up.
    return item_.oid > 0 && (item_.IsTask() || item_.kind == PimItem::kAppointment);
}

bool ItemRow::InCheckZone(int x) const {
    return item_.IsTask() && x >= 0 && x < look_.CheckZoneWidth();
}

void ItemRow::DrawCheckBox(Dc& dc, const RECT& zone, COLORREF ink) const {
    const int size = Scale(kCheckBoxSize);
    const int x = zone.left + (zone.Width() - size) / 2;
    const int y = zone.top + (zone.Height() - size) / 2;
    const RECT box{x, y, x + size, y + size};
    dc.FrameRect(box, ink, std::max(1, Scale(1) / 2 + 1));
    if (!item_.isComplete)
        return;
    const int pen = std::max(2, Scale(1));
    dc.Line(x + size / 5, y + size / 2, x + size * 2 / 5, y + size * 4 / 5, ink, pen);
    dc.Line(x + size * 2 / 5, y + size * 4 / 5, x + size - size / 6, y + size / 6, ink, pen);
}

void ItemRow::Draw(Dc& dc, const RECT& rect) {
    EnsureLayout();
    const bool selected = highlighted_;
    dc.FillRect(rect, selected ? look_.selection : look_.background);
    const COLORREF ink = selected ? look_.textSelected : color_;
    const int padding = Scale(RowLook::kRowPadding);
    const int barHeight = Scale(RowLook::kBarHeight);
    int left = rect.left + Scale(RowLook::kColorMarkWidth) + Scale(kTextGap);
    if (item_.IsTask()) {
        DrawCheckBox(dc, RECT{rect.left, rect.top, rect.left + look_.CheckZoneWidth(), rect.bottom}, ink);
        left = rect.left + look_.CheckZoneWidth();
    } else {
        const COLORREF mark = item_.colors.empty() ? look_.separator : item_.colors.front();
        dc.FillSolidRect(rect.left, rect.top + padding, Scale(RowLook::kColorMarkWidth),
                         rect.Height() - 2 * padding - barHeight, mark);
    }
    subject_.Draw(dc, left, rect.top + padding, ink);
    detail_.Draw(dc, left, rect.top + padding + subject_.Height(),
                 selected ? look_.textSelected : look_.text);
    if (!mark_.empty())
        markLayout_.Draw(dc, rect.right - Scale(kMarkRightInset) - markLayout_.Width(),
                         rect.top + padding + subject_.Height(), ink);
    const RECT bar{rect.left, rect.bottom - barHeight, rect.right, rect.bottom};
    if (!dayBar_.IsEmpty())
        dayBar_.Draw(dc, bar);
    else if (look_.separatorStyle != 0)
        dc.FillSolidRect(rect.left, rect.bottom - 1, rect.Width(), 1, look_.separator);
}

} // namespace mirodate
