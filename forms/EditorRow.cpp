#include "forms/EditorRow.h"

#include "skin/SkinStyles.h"
#include "ui/Dc.h"
#include "ui/Scale.h"
#include "ui/WinApi.h"

#include <algorithm>

namespace mirodate {

namespace {
// A row shows at most this much of a long value (notes, a pasted page); the
// field's own page shows all of it.
constexpr std::size_t kShownValue = 160;

std::u16string Shown(const std::u16string& text) {
    std::u16string out = text.substr(0, kShownValue);
    for (char16_t& c : out)
        if (c == u'\r' || c == u'\n' || c == u'\t')
            c = u' ';
    return out;
}
} // namespace

EditorRow::EditorRow(UINT command, const std::u16string& label, const std::u16string& value, bool twoLine,
                     bool alternate, const Font& font, const Font& bold, int width)
    : command_(command), twoLine_(twoLine), alternate_(alternate), valueText_(value) {
    if (twoLine) {
        const int room = std::max(1, width - Scale(kTwoLineLeft) - Scale(kRightMargin));
        label_ = TextLayout(label, bold, room, false);
        value_ = TextLayout(Shown(value), font, room, true);
        const int valueHeight = value_.Height();
        height_ = Scale(kTwoLineTop) * 2 + std::max(Scale(kTwoLineLabel), label_.Height()) +
                  std::max(Scale(kTwoLineValue), valueHeight);
        return;
    }
    const int room = std::max(1, width - Scale(2 * kMargin + kRightMargin));
    label_ = TextLayout(label, bold, 0, false);
    if (label_.Width() > room / 2)
        label_ = TextLayout(label, bold, room / 2, true);
    const int valueRoom = std::max(1, room - label_.Width() - Scale(kMargin));
    value_ = TextLayout(Shown(value), font, valueRoom, true);
    const int valueHeight = value_.Height();
    height_ = std::max(Scale(kRowHeight), std::max(label_.Height(), valueHeight) + Scale(2 * kMargin));
}

void EditorRow::Draw(Dc& dc, const RECT& rect) {
    const AddModifyFormStyle& style = SkinStyles::Current().addModifyForm;
    dc.FillRect(rect, highlighted_ ? style.colorSelectionMark : alternate_ ? style.colorBg2 : style.colorBg);
    const COLORREF ink = highlighted_ ? style.colorTextSel : style.colorText;
    // The separator line under each row.
    if (style.styleLineSeparator > 0) {
        const RECT line{rect.left, rect.bottom - 1, rect.right, rect.bottom};
        dc.FillRect(line, style.colorLineSeparator);
    }
    if (twoLine_) {
        const int x = rect.left + Scale(kTwoLineLeft);
        const int top = rect.top + Scale(kTwoLineTop);
        label_.Draw(dc, x, top + (std::max(Scale(kTwoLineLabel), label_.Height()) - label_.Height()) / 2,
                    ink);
        const int valueTop = top + std::max(Scale(kTwoLineLabel), label_.Height());
        value_.Draw(dc, x, valueTop, ink);
        return;
    }
    label_.Draw(dc, rect.left + Scale(kMargin), rect.top + (rect.Height() - label_.Height()) / 2, ink);
    value_.Draw(dc, rect.right - Scale(kRightMargin) - value_.Width(),
                rect.top + (rect.Height() - value_.Height()) / 2, ink);
}

void EditorRow::Click(HWND list, int, int) {
    PostMessage(GetParent(list), WM_DEFERRED_COMMAND, command_, 0);
}

} // namespace mirodate
