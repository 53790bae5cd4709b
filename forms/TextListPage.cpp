#include "forms/TextListPage.h"

#include "lang/LanguageTable.h"
#include "platform/VirtualKeys.h"
#include "skin/SkinStyles.h"
#include "ui/Dc.h"
#include "ui/Scale.h"
#include "ui/WinApi.h"

#include <algorithm>

namespace mirodate {

namespace {
constexpr int kFieldId = 100;
// Unscaled height of the hint line.
constexpr int kHintHeight = 18;

std::function<void(TextListPage&)>& OpenObserver() {
    static std::function<void(TextListPage&)> observer;
    return observer;
}

bool IsBlank(char16_t c) {
    return c == u' ' || c == u'\t' || c == u'\r' || c == 0xA0 || c == 0x3000;
}
} // namespace

TextListPage::TextListPage(std::u16string title, const std::vector<std::u16string>& entries)
    : title_(std::move(title)) {
    for (const std::u16string& entry : entries) {
        if (text_.size() + entry.size() + 1 > kMaxText)
            break;
        if (!text_.empty())
            text_ += u'\n';
        text_ += entry;
    }
}

TextListPage::~TextListPage() = default;

void TextListPage::SetOpenObserver(std::function<void(TextListPage&)> observer) {
    OpenObserver() = std::move(observer);
}

std::vector<std::u16string> TextListPage::Entries() const {
    const std::u16string& text = field_.GetHwnd() ? field_.GetText() : text_;
    std::vector<std::u16string> entries;
    size_t start = 0;
    while (start <= text.size()) {
        size_t end = text.find(u'\n', start);
        if (end == std::u16string::npos)
            end = text.size();
        size_t first = start, last = end;
        while (first < last && IsBlank(text[first]))
            ++first;
        while (last > first && IsBlank(text[last - 1]))
            --last;
        if (last > first)
            entries.push_back(text.substr(first, last - first));
        start = end + 1;
    }
    return entries;
}

std::u16string TextListPage::FileText(const std::vector<std::u16string>& entries) {
    std::u16string text;
    for (const std::u16string& entry : entries)
        text += entry + u"\r\n";
    return text;
}

BOOL TextListPage::OnInitDialog() {
    chrome_.Create(window, title_);
    hintFont_ = PickerChrome::MakeFont(90, false);
    field_.Create(window, kFieldId, 0, 0, 1, 1, true);
    field_.SetLimit(kMaxText);
    field_.SetNoInsert(true);
    field_.SetText(text_);
    Layout();
    SetFocus(field_.GetHwnd());
    return DialogWnd::OnInitDialog();
}

void TextListPage::Layout() {
    const RECT content = chrome_.Layout();
    const int margin = Scale(PickerChrome::kMargin);
    hintRect_ = RECT{margin, content.top, content.right - margin, content.top + Scale(kHintHeight)};
    MoveWindow(field_.GetHwnd(), margin, hintRect_.bottom, content.Width() - 2 * margin,
               std::max(1, content.bottom - hintRect_.bottom), true);
}

void TextListPage::OnScreenReset() {
    Layout();
}

void TextListPage::OnDialogReady() {
    if (OpenObserver())
        OpenObserver()(*this);
}

void TextListPage::OnPaint(HDC dc) {
    if (!dc)
        return;
    chrome_.Paint(*dc);
    dc->SelectFont(hintFont_.get());
    dc->SetBkMode(TRANSPARENT);
    dc->SetTextColor(SkinStyles::Current().inputForms.colorItemText);
    RECT hint = hintRect_;
    dc->DrawText(Lang("config.OnePerLine"), hint,
                 DT_LEFT | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX | DT_END_ELLIPSIS);
    dc->SelectFont(nullptr);
}

void TextListPage::OnCommand(UINT, UINT, HWND control) {
    if (chrome_.IsOk(control))
        EndDialog(window, IDOK);
    else if (chrome_.IsCancel(control))
        EndDialog(window, IDCANCEL);
}

void TextListPage::OnKeyDown(UINT key, UINT) {
    // Enter belongs to the field (a new line); only Escape leaves.
    if (key == VK_ESCAPE)
        EndDialog(window, IDCANCEL);
}

void TextListPage::OnClose() {
    EndDialog(window, IDCANCEL);
}

} // namespace mirodate
