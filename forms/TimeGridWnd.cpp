#include "forms/TimeGridWnd.h"

#include "forms/PickerChrome.h"
#include "forms/TimeTexts.h"
#include "lang/LanguageTable.h"
#include "skin/SkinStyles.h"
#include "ui/Dc.h"
#include "ui/Scale.h"
#include "ui/WinApi.h"

#include <algorithm>

namespace mirodate {

namespace {
constexpr int kHours = 24;
constexpr int kMinuteCellBase = 100;
// Unscaled sizes for a 240-pixel-wide screen.
constexpr int kLabelHeight = 16;
constexpr int kMinCellHeight = 22;
constexpr int kMaxCellHeight = 34;
constexpr int kInset = 1;
constexpr int kCompactGap = 3;
} // namespace

TimeGridWnd::TimeGridWnd() = default;
TimeGridWnd::~TimeGridWnd() = default;

HWND TimeGridWnd::Create(HWND parent, int id, const RECT& rect) {
    id_ = id;
    labelFont_ = PickerChrome::MakeFont(90, true);
    cellFont_ = PickerChrome::MakeFont(100, false);
    smallCellFont_ = PickerChrome::MakeFont(80, false);
    return BaseWnd::Create(parent, kTimeGridClass, WS_CHILD | WS_VISIBLE, u"", rect.left, rect.top,
                           rect.Width(), rect.Height());
}

void TimeGridWnd::SetTime(int hour, int minute) {
    hour = std::clamp(hour, 0, kHours - 1);
    minute = std::clamp(minute, 0, 59);
    if (hour == hour_ && minute == minute_)
        return;
    hour_ = hour, minute_ = minute;
    if (!window)
        return;
    InvalidateRect(window, nullptr, false);
    if (HWND parent = GetParent(window))
        SendMessage(parent, WM_COMMAND, MAKEWPARAM(id_, kChanged), reinterpret_cast<LPARAM>(window));
}

void TimeGridWnd::SetActivePart(int part) {
    if (part == activePart_)
        return;
    activePart_ = part;
    if (window)
        InvalidateRect(window, nullptr, false);
}

TimeGridWnd::Metrics TimeGridWnd::Measure() const {
    RECT client{};
    if (window)
        GetClientRect(window, &client);
    Metrics m{};
    m.width = client.Width();
    // Six hours a row and six minutes: four rows and two. In a low band the
    // words above the parts give their room to the cells, and a gap parts them.
    m.hourColumns = 6;
    m.minuteColumns = 6;
    const int rows = kHours / m.hourColumns + kMinuteCells / m.minuteColumns;
    m.labelHeight = Scale(kLabelHeight);
    if ((client.Height() - 2 * m.labelHeight) / rows < Scale(kMinCellHeight))
        m.labelHeight = 0;
    const int gap = m.labelHeight ? m.labelHeight : Scale(kCompactGap);
    m.cellHeight = std::clamp((client.Height() - m.labelHeight - gap) / rows, 1, Scale(kMaxCellHeight));
    m.hoursTop = m.labelHeight;
    m.minutesTop = m.hoursTop + (kHours / m.hourColumns) * m.cellHeight + gap;
    return m;
}

RECT TimeGridWnd::HourRect(int hour) const {
    const Metrics m = Measure();
    const int cellWidth = m.width / m.hourColumns;
    const int left = (hour % m.hourColumns) * cellWidth,
              top = m.hoursTop + (hour / m.hourColumns) * m.cellHeight;
    return RECT{left, top, left + cellWidth, top + m.cellHeight};
}

RECT TimeGridWnd::MinuteRect(int index) const {
    const Metrics m = Measure();
    const int cellWidth = m.width / m.minuteColumns;
    const int left = (index % m.minuteColumns) * cellWidth;
    const int top = m.minutesTop + (index / m.minuteColumns) * m.cellHeight;
    return RECT{left, top, left + cellWidth, top + m.cellHeight};
}

int TimeGridWnd::CellAt(int x, int y) const {
    for (int hour = 0; hour < kHours; ++hour)
        if (HourRect(hour).Contains(x, y))
            return hour;
    for (int index = 0; index < kMinuteCells; ++index)
        if (MinuteRect(index).Contains(x, y))
            return kMinuteCellBase + index;
    return -1;
}

void TimeGridWnd::OnPaint(HDC dc) {
    if (!dc)
        return;
    const SkinStyles& styles = SkinStyles::Current();
    const InputFormsStyle& form = styles.inputForms;
    const COLORREF mark = styles.addModifyForm.colorSelectionMark;
    RECT client;
    GetClientRect(window, &client);
    dc->FillRect(client, form.colorBg);
    dc->SetBkMode(TRANSPARENT);
    const Metrics m = Measure();
    const int inset = std::max(1, Scale(kInset));
    const UINT centred = DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX | DT_END_ELLIPSIS;

    auto label = [&](int top, const std::u16string& text, bool active) {
        RECT band{Scale(2), top - m.labelHeight, client.right, top};
        dc->SelectFont(labelFont_.get());
        dc->SetTextColor(active ? mark : form.colorItemText);
        dc->DrawText(text, band, DT_LEFT | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX | DT_END_ELLIPSIS);
    };
    auto cell = [&](RECT rect, const std::u16string& text, bool chosen, bool pressed) {
        rect = RECT{rect.left + inset, rect.top + inset, rect.right - inset, rect.bottom - inset};
        dc->FillRect(rect, chosen || pressed ? mark : form.colorItemBg);
        dc->SetTextColor(chosen || pressed ? styles.addModifyForm.colorTextSel : form.colorItemText);
        dc->DrawText(text, rect, centred);
    };

    if (m.labelHeight) {
        label(m.hoursTop, Lang("picker.Hours"), activePart_ == 0);
        label(m.minutesTop, Lang("picker.Minutes"), activePart_ == 1);
    }
    // Hours written "10 PM" may not fit narrow cells in the normal size.
    dc->SelectFont(cellFont_.get());
    const int room = HourRect(0).Width() - 2 * inset;
    if (dc->GetTextExtent(TimeTexts::HourLabel(22)).cx > room)
        dc->SelectFont(smallCellFont_.get());
    for (int hour = 0; hour < kHours; ++hour)
        cell(HourRect(hour), TimeTexts::HourLabel(hour), hour == hour_, pressedCell_ == hour);
    for (int index = 0; index < kMinuteCells; ++index)
        cell(MinuteRect(index), TimeTexts::MinuteLabel(index * kMinuteStep), index * kMinuteStep == minute_,
             pressedCell_ == kMinuteCellBase + index);
    // The part the keys change is framed.
    if (activePart_ >= 0) {
        const RECT first = activePart_ == 0 ? HourRect(0) : MinuteRect(0);
        const RECT last = activePart_ == 0 ? HourRect(kHours - 1) : MinuteRect(kMinuteCells - 1);
        dc->FrameRect(RECT{first.left, first.top, last.right, last.bottom}, mark, inset);
    }
    dc->SelectFont(nullptr);
}

LRESULT TimeGridWnd::OnPointerDown(int button, int x, int y, WPARAM) {
    if (button != 0)
        return 0;
    pressedCell_ = CellAt(x, y);
    SetCapture(window);
    InvalidateRect(window, nullptr, false);
    return 0;
}

LRESULT TimeGridWnd::OnPointerUp(int button, int x, int y, WPARAM) {
    if (button != 0)
        return 0;
    if (GetCapture() == window)
        ReleaseCapture();
    const int cell = CellAt(x, y);
    const bool same = cell >= 0 && cell == pressedCell_;
    pressedCell_ = -1;
    InvalidateRect(window, nullptr, false);
    if (!same)
        return 0;
    if (cell < kMinuteCellBase) {
        SetActivePart(0);
        SetTime(cell, minute_);
    } else {
        SetActivePart(1);
        SetTime(hour_, (cell - kMinuteCellBase) * kMinuteStep);
    }
    return 0;
}

} // namespace mirodate
