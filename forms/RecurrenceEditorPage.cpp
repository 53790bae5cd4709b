#include "forms/RecurrenceEditorPage.h"

#include "data/EditorTexts.h"
#include "data/RecurrenceDescriber.h"
#include "data/RecurrenceLimits.h"
#include "forms/DatePickerPage.h"
#include "forms/FormPainter.h"
#include "lang/LanguageTable.h"
#include "platform/Locale.h"
#include "platform/VirtualKeys.h"
#include "skin/SkinStyles.h"
#include "store/SeriesExceptions.h"
#include "ui/ContextMenu.h"
#include "ui/Dc.h"
#include "ui/MessagePage.h"
#include "ui/Scale.h"
#include "ui/WinApi.h"

#include <algorithm>

namespace mirodate {

namespace {

// Unscaled sizes for a 240-pixel-wide screen.
constexpr int kTitleHeight = 24;
constexpr int kRowHeight = 26;
constexpr int kButtonHeight = 26;
constexpr int kMargin = 4;
constexpr int kTextHeight = 11;
constexpr int kSentenceLines = 2;
constexpr int kWarningLines = 6;
constexpr int kLabelShare = 30; // percent of a row's width its label keeps at least
constexpr int kDaysPerWeek = 7;
constexpr int kMonths = 12;

std::function<void(RecurrenceEditorPage&)>& OpenObserver() {
    static std::function<void(RecurrenceEditorPage&)> observer;
    return observer;
}

bool Inside(const RECT& r, int x, int y) {
    return x >= r.left && x < r.right && y >= r.top && y < r.bottom;
}

} // namespace

RecurrenceEditorPage::RecurrenceEditorPage(const RecurrencePattern& pattern, const DateTime& start)
    : original_(pattern), value_(pattern), start_(start.IsValid() ? start : DateTime::Today()) {
    sentence_ = RecurrenceDescriber::Describe(value_);
    rows_ = RecurrenceEditorRows::RowsFor(value_);
}

RecurrenceEditorPage::~RecurrenceEditorPage() = default;

std::optional<RecurrencePattern> RecurrenceEditorPage::Edit(HWND owner, const RecurrencePattern& pattern,
                                                            const DateTime& start) {
    return Edit(owner, pattern, start, {});
}

std::optional<RecurrencePattern> RecurrenceEditorPage::Edit(HWND owner, const RecurrencePattern& pattern,
                                                            const DateTime& start,
                                                            std::vector<double> exceptions) {
    RecurrenceEditorPage page(pattern, start);
    page.SetExceptions(std::move(exceptions));
    if (page.DoModal(owner) != IDOK)
        return std::nullopt;
    return page.Value();
}

void RecurrenceEditorPage::SetOpenObserver(std::function<void(RecurrenceEditorPage&)> observer) {
    OpenObserver() = std::move(observer);
}

void RecurrenceEditorPage::SetValue(const RecurrencePattern& pattern) {
    value_ = pattern;
    Edited();
}

bool RecurrenceEditorPage::ShowsWarning() const {
    return !changed_ && value_.RecurrenceType != RecurrencePattern::kNotRecurring &&
           value_.RuleFit != RecurrencePattern::kExact;
}

void RecurrenceEditorPage::Edited() {
    changed_ = true;
    // What the user sets is said exactly by the record.
    value_.RuleFit = RecurrencePattern::kExact;
    sentence_ = RecurrenceDescriber::Describe(value_);
    const std::vector<Row> rows = RecurrenceEditorRows::RowsFor(value_);
    if (rows != rows_ || warningRect_.bottom > warningRect_.top) {
        rows_ = rows;
        if (window)
            Layout();
    } else if (window) {
        InvalidateRect(window, nullptr, false);
    }
}

void RecurrenceEditorPage::SetType(int type) {
    value_ = RecurrenceLimits::ForType(type, value_, start_);
    Edited();
}

void RecurrenceEditorPage::SetEnd(int end) {
    RecurrenceEditorRows::SetEnd(value_, end, start_);
    Edited();
}

void RecurrenceEditorPage::SetEndDate(const DateTime& day) {
    if (!day.IsValid())
        return;
    RecurrencePattern next = value_;
    next.Occurrences = 0;
    next.NoEndDate = false;
    next.PatternEndDate = day.StartOfDay().ToDate();
    if (RecurrenceLimits::EndsBeforeStart(next, start_)) {
        MessagePage::Tell(window, Lang("recurrence.EndBeforeStart"));
        return;
    }
    value_ = next;
    Edited();
}

void RecurrenceEditorPage::Step(Row row, int delta) {
    if (RecurrenceEditorRows::Step(row, value_, delta))
        Edited();
}

void RecurrenceEditorPage::ToggleDay(int dayOfWeek) {
    if (RecurrenceEditorRows::ToggleDay(value_, dayOfWeek))
        Edited();
}

void RecurrenceEditorPage::Accept() {
    if (!window)
        return;
    if (!changed_) {
        EndDialog(window, IDOK);
        return;
    }
    if (RecurrenceLimits::EndsBeforeStart(value_, start_)) {
        MessagePage::Tell(window, Lang("recurrence.EndBeforeStart"));
        return;
    }
    value_ = RecurrenceLimits::Normalise(value_, start_);
    value_.PatternStartDate = start_.StartOfDay().ToDate();
    const std::vector<double> dropped = SeriesExceptions::Dropped(value_, start_.ToDate(), exceptions_);
    if (!dropped.empty()) {
        std::u16string question = Lang("recurrence.DropExceptions");
        const std::string count = std::to_string(dropped.size());
        const std::u16string placeholder = u"$Count";
        if (size_t at = question.find(placeholder); at != std::u16string::npos)
            question.replace(at, placeholder.size(), std::u16string(count.begin(), count.end()));
        if (!MessagePage::YesNo(window, question))
            return;
    }
    EndDialog(window, IDOK);
}

void RecurrenceEditorPage::Cancel() {
    if (window)
        EndDialog(window, IDCANCEL);
}

BOOL RecurrenceEditorPage::OnInitDialog() {
    SetWindowText(window, Lang("recurrence.Title"));
    LOGFONT logFont;
    DefaultFont(logFont);
    logFont.lfHeight = -std::clamp(Scale(kTextHeight) + FontSizeDelta(), 6, 200);
    font_ = std::make_unique<Font>(logFont);
    logFont.lfWeight = FW_BOLD;
    boldFont_ = std::make_unique<Font>(logFont);
    const InputFormsStyle& form = SkinStyles::Current().inputForms;
    for (ButtonWnd* button : {&ok_, &cancel_}) {
        button->Create(window, Lang(button == &ok_ ? "OK" : "Cancel"), 0, 0, 1, 1,
                       button == &ok_ ? IDOK : IDCANCEL);
        button->SetColors(form.buttons.colorButtonBg, form.buttons.colorButtonText,
                          form.buttons.colorButtonBgPressed, form.buttons.colorButtonTextPressed);
        button->SetGradient(form.buttons.colorButtonGradient, form.buttons.colorButtonGradientPressed);
    }
    Layout();
    SetFocus(window);
    return DialogWnd::OnInitDialog();
}

void RecurrenceEditorPage::OnDialogReady() {
    if (OpenObserver())
        OpenObserver()(*this);
}

void RecurrenceEditorPage::OnScreenReset() {
    Layout();
}

void RecurrenceEditorPage::Layout() {
    const int width = GetScreenWidth(), height = GetScreenHeight();
    MoveWindow(window, 0, 0, width, height, false);
    const int margin = Scale(kMargin);
    // Lines of text are about a third taller than the font's pixel size.
    const int lineHeight = (font_ ? std::max(1, font_->PixelSize()) : Scale(kTextHeight)) * 4 / 3;
    // The sentence takes two lines or what it needs; the warning three.
    Bitmap scratch(1, 1);
    Dc measure(scratch);
    measure.SelectFont(boldFont_.get());
    RECT text{0, 0, width - 2 * margin, 0};
    measure.DrawText(sentence_, text, DT_CALCRECT | DT_WORDBREAK | DT_NOPREFIX);
    const int sentenceHeight = std::max(text.Height(), kSentenceLines * lineHeight);
    const int top = Scale(kTitleHeight);
    sentenceRect_ = RECT{margin, top + margin, width - margin, top + margin + sentenceHeight};
    int y = sentenceRect_.bottom + margin;
    warningRect_ = RECT{margin, y, width - margin, y};
    if (ShowsWarning()) {
        RECT warning{0, 0, width - 2 * margin, 0};
        measure.SelectFont(font_.get());
        measure.DrawText(Lang("recurrence.RuleReplaced"), warning, DT_CALCRECT | DT_WORDBREAK | DT_NOPREFIX);
        warningRect_.bottom = y + std::min(warning.Height(), kWarningLines * lineHeight);
        y = warningRect_.bottom + margin;
    }
    measure.SelectFont(nullptr);

    const int buttonTop = height - margin - Scale(kButtonHeight);
    const int buttonWidth = (width - 3 * margin) / 2;
    MoveWindow(ok_.GetHwnd(), margin, buttonTop, buttonWidth, Scale(kButtonHeight), true);
    MoveWindow(cancel_.GetHwnd(), 2 * margin + buttonWidth, buttonTop, buttonWidth, Scale(kButtonHeight),
               true);

    // Rows share what is left, none taller than a finger needs.
    const int rowCount = static_cast<int>(rows_.size());
    const int room = buttonTop - margin - y;
    const int rowHeight =
        std::clamp(room / std::max(rowCount, 1), Scale(kRowHeight) * 3 / 4, Scale(kRowHeight) * 5 / 4);
    rowRects_.clear();
    targets_.clear();
    for (Row row : rows_) {
        const RECT rect{0, y, width, y + rowHeight};
        rowRects_.push_back(rect);
        const auto control = RecurrenceEditorRows::ControlOf(row);
        if (control == RecurrenceEditorRows::Control::Stepper) {
            const int side = rowHeight - 2 * margin;
            targets_.push_back(
                {RECT{width - margin - side, y + margin, width - margin, y + margin + side}, row, 1});
            const int valueWidth = side * 3 / 2;
            const int minusRight = width - margin - side - valueWidth;
            targets_.push_back({RECT{minusRight - side, y + margin, minusRight, y + margin + side}, row, -1});
        } else if (control == RecurrenceEditorRows::Control::DayToggles) {
            const std::vector<int> order = RecurrenceEditorRows::DayOrder();
            const int cell = (width - 2 * margin) / kDaysPerWeek;
            for (int i = 0; i < kDaysPerWeek; ++i) {
                const int left = margin + i * cell;
                targets_.push_back(
                    {RECT{left + margin / 2, y + margin, left + cell - margin / 2, y + rowHeight - margin},
                     row, kDayAction + order[static_cast<size_t>(i)]});
            }
        } else {
            targets_.push_back({rect, row, 0});
        }
        y += rowHeight;
    }
    InvalidateRect(window, nullptr, false);
}

RECT RecurrenceEditorPage::ToScreen(RECT rect) const {
    POINT origin{0, 0};
    if (window)
        ClientToScreen(window, &origin);
    return RECT{rect.left + origin.x, rect.top + origin.y, rect.right + origin.x, rect.bottom + origin.y};
}

RECT RecurrenceEditorPage::RowScreenRect(Row row) const {
    for (size_t i = 0; i < rows_.size() && i < rowRects_.size(); ++i)
        if (rows_[i] == row)
            return ToScreen(rowRects_[i]);
    return RECT{};
}

RECT RecurrenceEditorPage::StepperScreenRect(Row row, int delta) const {
    for (const Target& t : targets_)
        if (t.row == row && t.action == (delta < 0 ? -1 : 1))
            return ToScreen(t.rect);
    return RECT{};
}

RECT RecurrenceEditorPage::DayScreenRect(int dayOfWeek) const {
    for (const Target& t : targets_)
        if (t.action == kDayAction + dayOfWeek)
            return ToScreen(t.rect);
    return RECT{};
}

RECT RecurrenceEditorPage::ButtonScreenRect(bool ok) const {
    RECT rect{};
    GetWindowRect((ok ? ok_ : cancel_).GetHwnd(), &rect);
    return rect;
}

void RecurrenceEditorPage::PaintRow(Dc& dc, Row row, const RECT& rect) {
    const AddModifyFormStyle& style = SkinStyles::Current().addModifyForm;
    const int margin = Scale(kMargin);
    dc.Line(rect.left, rect.bottom - 1, rect.right, rect.bottom - 1, style.colorLineSeparator, 1);
    dc.SetTextColor(style.colorText);
    const auto control = RecurrenceEditorRows::ControlOf(row);
    if (control == RecurrenceEditorRows::Control::DayToggles) {
        dc.SelectFont(font_.get());
        for (const Target& t : targets_) {
            if (t.row != row || t.action < kDayAction)
                continue;
            const int day = t.action - kDayAction;
            const bool on = (value_.DayOfWeekMask >> day) & 1;
            if (on)
                dc.FillRect(t.rect, style.colorSelectionMark);
            else
                dc.FrameRect(t.rect, style.colorLineSeparator, std::max(1, Scale(1)));
            dc.SetTextColor(on ? style.colorTextSel : style.colorText);
            RECT label = t.rect;
            dc.DrawText(Locale::DayName(day, true), label,
                        DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX);
        }
        return;
    }
    // A rule the record only approximates is not named as one of the types.
    const std::u16string valueText =
        row == Row::Type && ShowsWarning()
            ? RecurrenceEditorRows::TypeName(RecurrencePattern::kNotRecurring - 1)
            : RecurrenceEditorRows::ValueText(row, value_);
    dc.SelectFont(font_.get());
    if (control == RecurrenceEditorRows::Control::Stepper) {
        RECT minus{}, plus{};
        for (const Target& t : targets_) {
            if (t.row != row)
                continue;
            (t.action < 0 ? minus : plus) = t.rect;
        }
        RECT label{rect.left + margin, rect.top, minus.left - margin, rect.bottom};
        dc.DrawText(RecurrenceEditorRows::Label(row), label,
                    DT_LEFT | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX | DT_END_ELLIPSIS);
        dc.SelectFont(boldFont_.get());
        for (const RECT* box : {&minus, &plus}) {
            dc.FillRect(*box, style.colorBg2);
            RECT sign = *box;
            dc.DrawText(box == &minus ? u"\u2212" : u"+", sign,
                        DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX);
        }
        RECT value{minus.right, rect.top, plus.left, rect.bottom};
        dc.DrawText(valueText, value, DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX);
        return;
    }
    // The value keeps what it needs; the label gets the rest, at least its share.
    const std::u16string shown = valueText + u" \u25BE";
    dc.SelectFont(boldFont_.get());
    const int valueWidth = dc.GetTextExtent(shown).cx;
    const int labelRight =
        std::max(rect.left + rect.Width() * kLabelShare / 100, rect.right - 2 * margin - valueWidth);
    RECT value{labelRight + margin, rect.top, rect.right - margin, rect.bottom};
    dc.DrawText(shown, value, DT_RIGHT | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX | DT_END_ELLIPSIS);
    dc.SelectFont(font_.get());
    RECT label{rect.left + margin, rect.top, labelRight, rect.bottom};
    dc.DrawText(RecurrenceEditorRows::Label(row), label,
                DT_LEFT | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX | DT_END_ELLIPSIS);
}

void RecurrenceEditorPage::OnPaint(HDC dc) {
    if (!dc)
        return;
    RECT client;
    GetClientRect(window, &client);
    FormPainter::PaintPage(*dc, client, Scale(kTitleHeight), boldFont_.get(), Lang("recurrence.Title"));
    const AddModifyFormStyle& style = SkinStyles::Current().addModifyForm;
    const int margin = Scale(kMargin);
    dc->SetBkMode(TRANSPARENT);
    RECT header{0, Scale(kTitleHeight), client.right, warningRect_.bottom + margin};
    dc->FillRect(header, style.colorHeaderBg);
    dc->SelectFont(boldFont_.get());
    dc->SetTextColor(style.colorHeaderText);
    RECT sentence = sentenceRect_;
    dc->DrawText(sentence_, sentence, DT_LEFT | DT_WORDBREAK | DT_NOPREFIX | DT_END_ELLIPSIS);
    if (ShowsWarning()) {
        dc->SelectFont(font_.get());
        RECT warning = warningRect_;
        dc->DrawText(Lang("recurrence.RuleReplaced"), warning,
                     DT_LEFT | DT_WORDBREAK | DT_NOPREFIX | DT_END_ELLIPSIS);
    }
    if (!rowRects_.empty()) {
        RECT rows{0, rowRects_.front().top, client.right, rowRects_.back().bottom};
        dc->FillRect(rows, style.colorBg);
    }
    for (size_t i = 0; i < rows_.size() && i < rowRects_.size(); ++i)
        PaintRow(*dc, rows_[i], rowRects_[i]);
    dc->SelectFont(nullptr);
}

LRESULT RecurrenceEditorPage::OnPointerUp(int, int x, int y, WPARAM) {
    for (const Target& t : targets_) {
        if (!Inside(t.rect, x, y))
            continue;
        if (t.action >= kDayAction)
            ToggleDay(t.action - kDayAction);
        else if (t.action != 0)
            Step(t.row, t.action);
        else if (t.row == Row::EndDate)
            PickEndDate();
        else
            OpenMenu(t.row);
        return 0;
    }
    return 0;
}

void RecurrenceEditorPage::OpenMenu(Row row) {
    std::vector<ContextMenuItem> items;
    int current = -1;
    auto add = [&](std::u16string text, UINT command, bool checked) {
        if (checked)
            current = static_cast<int>(items.size());
        items.push_back({std::move(text), command, checked});
    };
    switch (row) {
    case Row::Type: {
        const auto& types = RecurrenceEditorRows::Types();
        for (size_t i = 0; i < types.size(); ++i)
            add(RecurrenceEditorRows::TypeName(types[i]), kCmdTypeBase + static_cast<UINT>(i),
                types[i] == value_.RecurrenceType && !ShowsWarning());
        break;
    }
    case Row::End: {
        const auto keys = EditorTexts::RecurrenceEndKeys();
        for (size_t i = 0; i < keys.size(); ++i)
            add(Lang(keys[i]), kCmdEndBase + static_cast<UINT>(i),
                static_cast<int>(i) == RecurrenceEditorRows::EndOf(value_));
        break;
    }
    case Row::Instance:
        for (int i = 1; i <= RecurrenceLimits::kLastInstance; ++i)
            add(RecurrenceDescriber::InstanceText(i), kCmdInstanceBase + static_cast<UINT>(i),
                i == value_.Instance);
        break;
    case Row::Month:
        for (int m = 1; m <= kMonths; ++m)
            add(RecurrenceDescriber::MonthName(m), kCmdMonthBase + static_cast<UINT>(m),
                m == value_.MonthOfYear);
        break;
    default:
        return;
    }
    auto* menu = new ContextMenu(this, std::move(items), 0); // owned by our deferred command, or by itself
    if (current >= 0)
        menu->SetPreselected(current);
    menu->SetHeaderText(RecurrenceEditorRows::Label(row));
    menu->Open();
}

void RecurrenceEditorPage::PickEndDate() {
    const DateTime initial = value_.PatternEndDate != 0.0 ? DateTime(value_.PatternEndDate) : start_;
    if (const std::optional<DateTime> day = DatePickerPage::Pick(window, initial))
        SetEndDate(*day);
}

void RecurrenceEditorPage::OnDeferredCommand(UINT id) {
    const auto& types = RecurrenceEditorRows::Types();
    if (id >= kCmdTypeBase && id < kCmdTypeBase + types.size()) {
        SetType(types[id - kCmdTypeBase]);
    } else if (id >= kCmdEndBase && id < kCmdEndBase + 3) {
        SetEnd(static_cast<int>(id - kCmdEndBase));
        if (id - kCmdEndBase == RecurrenceEditorRows::kEndOnDate)
            PickEndDate();
    } else if (id > kCmdInstanceBase && id <= kCmdInstanceBase + RecurrenceLimits::kLastInstance) {
        value_.Instance = static_cast<int>(id - kCmdInstanceBase);
        Edited();
    } else if (id > kCmdMonthBase && id <= kCmdMonthBase + kMonths) {
        value_.MonthOfYear = static_cast<int>(id - kCmdMonthBase);
        Edited();
    }
}

void RecurrenceEditorPage::OnCommand(UINT id, UINT, HWND control) {
    if (control == ok_.GetHwnd() || (!control && id == IDOK))
        Accept();
    else if (control == cancel_.GetHwnd() || (!control && id == IDCANCEL))
        Cancel();
}

void RecurrenceEditorPage::OnKeyDown(UINT key, UINT) {
    if (key == VK_RETURN)
        Accept();
    else if (key == VK_ESCAPE)
        Cancel();
}

} // namespace mirodate
