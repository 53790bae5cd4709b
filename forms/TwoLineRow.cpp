#include "forms/TwoLineRow.h"

#include "skin/SkinStyles.h"
#include "ui/Dc.h"
#include "ui/Scale.h"
#include "ui/WinApi.h"

#include <algorithm>

namespace mirodate {

namespace {
// Unscaled sizes for a 240-pixel-wide screen: a finger-sized row at least.
constexpr int kRowHeight = 34;
constexpr int kIndent = 6;
} // namespace

TwoLineRow::TwoLineRow(UINT command, const std::u16string& first, const std::u16string& second,
                       const Font& font, const Font& bold, int width)
    : command_(command) {
    const int room = std::max(1, width - Scale(2 * kIndent));
    first_ = TextLayout(first, bold, room, false);
    second_ = TextLayout(second, font, room, false);
    height_ = std::max(Scale(kRowHeight), first_.Height() + second_.Height() + Scale(kIndent));
}

void TwoLineRow::Draw(Dc& dc, const RECT& rect) {
    const AddModifyFormStyle& style = SkinStyles::Current().addModifyForm;
    dc.FillRect(rect, highlighted_ ? style.colorSelectionMark : style.colorBg);
    dc.FillRect(RECT{rect.left, rect.bottom - 1, rect.right, rect.bottom}, style.colorLineSeparator);
    const COLORREF ink = highlighted_ ? style.colorTextSel : style.colorText;
    const int top = rect.top + (rect.Height() - first_.Height() - second_.Height()) / 2;
    first_.Draw(dc, rect.left + Scale(kIndent), top, ink);
    second_.Draw(dc, rect.left + Scale(kIndent), top + first_.Height(), ink);
}

void TwoLineRow::Click(HWND list, int, int) {
    PostMessage(GetParent(list), WM_DEFERRED_COMMAND, command_, 0);
}

} // namespace mirodate
