#include "forms/TextEntryPage.h"

#include "ui/Scale.h"
#include "ui/WinApi.h"

#include <algorithm>

namespace mirodate {

namespace {
constexpr int kFieldId = 201;

std::function<void(TextEntryPage&)>& OpenObserver() {
    static std::function<void(TextEntryPage&)> observer;
    return observer;
}
} // namespace

TextEntryPage::TextEntryPage(std::u16string title, std::u16string text, bool multiLine, std::size_t limit)
    : SmallFormPage(std::move(title)), text_(std::move(text)), multiLine_(multiLine), limit_(limit) {}
TextEntryPage::~TextEntryPage() = default;

void TextEntryPage::SetOpenObserver(std::function<void(TextEntryPage&)> observer) {
    OpenObserver() = std::move(observer);
}

std::optional<std::u16string> TextEntryPage::Edit(HWND owner, const std::u16string& title,
                                                  const std::u16string& text, bool multiLine,
                                                  std::size_t limit) {
    TextEntryPage page(title, text, multiLine, limit);
    if (page.DoModal(owner) != IDOK)
        return std::nullopt;
    return page.Text();
}

void TextEntryPage::CreateControls() {
    field_.Create(window, kFieldId, 0, 0, 1, 1, multiLine_);
    field_.SetFont(logFont_);
    field_.SetLimit(limit_);
    field_.SetText(text_.substr(0, limit_));
    SetFocus(field_.GetHwnd());
}

void TextEntryPage::LayoutControls(const RECT& area) {
    const int margin = Scale(kMargin);
    const int height = multiLine_ ? std::max(1, area.Height() - 2 * margin) : Scale(kFieldHeight);
    MoveWindow(field_.GetHwnd(), margin, area.top + margin, std::max(1, area.Width() - 2 * margin), height,
               true);
}

void TextEntryPage::OnControl(HWND control, UINT code) {
    if (control != field_.GetHwnd())
        return;
    if (code == EN_CHANGE)
        text_ = field_.GetText();
    if (code == EN_ENTER && !multiLine_)
        Accept();
}

void TextEntryPage::OnDialogReady() {
    SmallFormPage::OnDialogReady();
    if (OpenObserver())
        OpenObserver()(*this);
}

} // namespace mirodate
