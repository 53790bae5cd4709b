#include "ui/MessagePage.h"

#include "lang/LanguageTable.h"
#include "platform/Log.h"
#include "platform/TextUtil.h"
#include "platform/VirtualKeys.h"
#include "skin/SkinStyles.h"
#include "ui/Dc.h"
#include "ui/Scale.h"
#include "ui/WinApi.h"

#include <algorithm>

namespace mirodate {

namespace {
std::function<void(MessagePage&)>& OpenObserver() {
    static std::function<void(MessagePage&)> observer;
    return observer;
}
// Messages longer than this are cut: a page shows a few lines, not a file.
constexpr size_t kMaxText = 4000;
} // namespace

MessagePage::MessagePage(std::u16string text, std::vector<std::u16string> buttons)
    : text_(std::move(text)), labels_(std::move(buttons)) {
    if (text_.size() > kMaxText)
        text_.resize(kMaxText);
    if (labels_.empty())
        labels_.push_back(Lang("OK"));
}

MessagePage::~MessagePage() = default;

int MessagePage::Ask(HWND owner, const std::u16string& text, std::vector<std::u16string> buttons) {
    MessagePage page(text, std::move(buttons));
    Log::Info("message: %s", Utf16ToUtf8(page.text_).c_str());
    const INT_PTR result = page.DoModal(owner);
    const int count = static_cast<int>(page.labels_.size());
    // Closed without a choice: the last button, which cancels.
    if (result < 1 || result > count)
        return count;
    return static_cast<int>(result);
}

bool MessagePage::YesNo(HWND owner, const std::u16string& text) {
    return Ask(owner, text, {Lang("Yes"), Lang("No")}) == 1;
}

int MessagePage::AllSingleCancel(HWND owner, const std::u16string& text) {
    return Ask(owner, text, {Lang("All"), Lang("Single"), Lang("Cancel")});
}

void MessagePage::Tell(HWND owner, const std::u16string& text) {
    Ask(owner, text, {Lang("OK")});
}

void MessagePage::SetOpenObserver(std::function<void(MessagePage&)> observer) {
    OpenObserver() = std::move(observer);
}

BOOL MessagePage::OnInitDialog() {
    const int screenWidth = GetScreenWidth(), screenHeight = GetScreenHeight();
    const int margin = Scale(kMargin);
    const int width = screenWidth - 2 * margin;
    LOGFONT logFont;
    DefaultFont(logFont);
    logFont.lfHeight = -std::clamp(Scale(kTextHeight) + FontSizeDelta(), 6, 200);
    font_ = std::make_unique<Font>(logFont);

    // Measure the text in the panel's width, up to most of the screen.
    Bitmap scratch(1, 1);
    Dc measure(scratch);
    measure.SelectFont(font_.get());
    RECT text{0, 0, width - 4 * margin, 0};
    measure.DrawText(text_, text, DT_CALCRECT | DT_WORDBREAK | DT_NOPREFIX | DT_CENTER);
    const int buttonHeight = Scale(kButtonHeight) + std::max(0, FontSizeDelta());
    const int maxTextHeight = std::max(screenHeight - buttonHeight - 6 * margin, Scale(20));
    const int textHeight = std::min(text.Height(), maxTextHeight);
    const int height = textHeight + buttonHeight + 5 * margin;
    const int top = std::max(0, (screenHeight - height) / 2);
    MoveWindow(window, margin, top, width, height, false);
    textRect_ = RECT{2 * margin, 2 * margin, width - 2 * margin, 2 * margin + textHeight};

    const ButtonColors& colors = SkinStyles::Current().inputForms.buttons;
    const int count = static_cast<int>(labels_.size());
    const int gap = margin;
    const int buttonWidth = (width - 2 * margin - (count - 1) * gap) / count;
    for (int i = 0; i < count; ++i) {
        auto button = std::make_unique<ButtonWnd>();
        button->Create(window, labels_[static_cast<size_t>(i)], margin + i * (buttonWidth + gap),
                       height - margin - buttonHeight, buttonWidth, buttonHeight, i + 1);
        button->SetColors(colors.colorButtonBg, colors.colorButtonText, colors.colorButtonBgPressed,
                          colors.colorButtonTextPressed);
        button->SetGradient(colors.colorButtonGradient, colors.colorButtonGradientPressed);
        buttons_.push_back(std::move(button));
    }
    SetFocus(window);
    return DialogWnd::OnInitDialog();
}

void MessagePage::OnDialogReady() {
    if (OpenObserver())
        OpenObserver()(*this);
}

RECT MessagePage::ButtonScreenRect(int index) const {
    RECT rect{};
    if (index < 0 || index >= static_cast<int>(buttons_.size()))
        return rect;
    GetWindowRect(buttons_[static_cast<size_t>(index)]->GetHwnd(), &rect);
    return rect;
}

void MessagePage::Answer(int number) {
    if (window)
        EndDialog(window, number);
}

void MessagePage::OnPaint(HDC dc) {
    if (!dc)
        return;
    const InputFormsStyle& style = SkinStyles::Current().inputForms;
    RECT client;
    GetClientRect(window, &client);
    dc->FillRect(client, style.colorBg);
    dc->FrameRect(client, style.colorItemText, std::max(1, Scale(1)));
    dc->SelectFont(font_.get());
    dc->SetBkMode(TRANSPARENT);
    dc->SetTextColor(style.colorItemText);
    RECT text = textRect_;
    dc->DrawText(text_, text, DT_CENTER | DT_WORDBREAK | DT_NOPREFIX);
    dc->SelectFont(nullptr);
}

void MessagePage::OnCommand(UINT, UINT, HWND control) {
    for (size_t i = 0; i < buttons_.size(); ++i)
        if (buttons_[i]->GetHwnd() == control)
            Answer(static_cast<int>(i) + 1);
}

void MessagePage::OnKeyDown(UINT key, UINT) {
    const int count = static_cast<int>(buttons_.size());
    if (key == VK_RETURN)
        Answer(1);
    else if (key == VK_ESCAPE)
        Answer(count);
    else if (key >= '1' && key < '1' + static_cast<UINT>(count))
        Answer(static_cast<int>(key - '0'));
}

void MessagePage::OnClose() {
    Answer(static_cast<int>(buttons_.size()));
}

} // namespace mirodate
