#include "forms/AboutPage.h"

#include "data/PimStore.h"
#include "forms/FormPainter.h"
#include "lang/LanguageTable.h"
#include "platform/Settings.h"
#include "platform/TextUtil.h"
#include "platform/VirtualKeys.h"
#include "skin/SkinStyles.h"
#include "ui/Dc.h"
#include "ui/Scale.h"
#include "ui/ScreenBars.h"
#include "ui/TextLayout.h"
#include "ui/WinApi.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#ifndef MIRODATE_VERSION
#define MIRODATE_VERSION "0"
#endif

namespace mirodate {

namespace {
// Unscaled sizes for a 240-pixel-wide screen.
constexpr int kTitleHeight = 24;
constexpr int kButtonHeight = 26;
constexpr int kTextHeight = 11;
constexpr int kMargin = 6;

// One paragraph, wrapped to the page.
class ParagraphRow : public TouchListItem {
public:
    ParagraphRow(const std::u16string& text, const Font& font, int width, COLORREF ink, COLORREF background)
        : layout_(text, font, std::max(1, width - Scale(2 * kMargin)), true), ink_(ink),
          background_(background) {}
    void Draw(Dc& dc, const RECT& rect) override {
        dc.FillRect(rect, background_);
        layout_.Draw(dc, rect.left + Scale(kMargin), rect.top + Scale(kMargin) / 2, ink_);
    }
    int Height() const override { return layout_.Height() + Scale(kMargin); }
    void Highlight(int, int) override {}

private:
    TextLayout layout_;
    COLORREF ink_, background_;
};

std::u16string Replace(std::u16string text, std::u16string_view placeholder, const std::u16string& value) {
    const size_t at = text.find(placeholder);
    if (at != std::u16string::npos)
        text.replace(at, placeholder.size(), value);
    return text;
}
std::u16string Count(std::u16string_view key, int count) {
    return Replace(LangW(key), u"%i", Utf8ToUtf16(std::to_string(count)));
}
} // namespace

AboutPage::AboutPage() {
    auto add = [this](std::u16string text, bool heading = false) {
        lines_.push_back(std::move(text));
        headings_.push_back(heading);
    };
    add(u"Mirodate " + Utf8ToUtf16(MIRODATE_VERSION), true);
    const SkinStyles& skin = SkinStyles::Current();
    std::u16string skinLine = Lang("about.Skin");
    skinLine = Replace(skinLine, u"%s", Settings::GetSkin());
    skinLine = Replace(skinLine, u"%s", skin.info.author.empty() ? Lang("about.Unknown") : skin.info.author);
    if (!skin.info.version.empty())
        skinLine += u" (" + skin.info.version + u")";
    add(skinLine);
    StoreSummary summary;
    if (PimSource* source = PimStore::Instance().Source())
        summary = source->Summarize();
    std::error_code error;
    const std::filesystem::path folder = std::filesystem::absolute(summary.location, error);
    add(Replace(Lang("about.Store"), u"%s",
                Utf8ToUtf16(error ? summary.location : folder.lexically_normal().string())));
    add(Count(u"about.Appointments", summary.appointments) + u"\n" + Count(u"about.Tasks", summary.tasks) +
        u"\n" + Count(u"about.Contacts", summary.contacts));
    if (summary.skipped.empty()) {
        add(Lang("about.AllRead"));
        return;
    }
    add(Count(u"about.Unreadable", static_cast<int>(summary.skipped.size())), true);
    for (const StoreSummary::Skipped& file : summary.skipped)
        add(Utf8ToUtf16(file.path) + u"\n\u2192 " + Utf8ToUtf16(file.reason));
}

AboutPage::~AboutPage() = default;

BOOL AboutPage::OnInitDialog() {
    SetWindowText(window, Lang("About"));
    LOGFONT logFont;
    DefaultFont(logFont);
    logFont.lfHeight = -std::clamp(Scale(kTextHeight) + FontSizeDelta(), 6, 200);
    font_ = std::make_unique<Font>(logFont);
    logFont.lfWeight = FW_BOLD;
    bold_ = std::make_unique<Font>(logFont);
    list_.Create(window, 0, 0, 1, 1, false, false);
    list_.SetHeaderHeight(0);
    TouchListColors colors = TouchListColors::FromSkin();
    colors.background = SkinStyles::Current().listViews.colorBg;
    list_.SetColors(colors);
    const InputFormsStyle& form = SkinStyles::Current().inputForms;
    ok_.Create(window, Lang("OK"), 0, 0, 1, 1, IDOK);
    ok_.SetColors(form.buttons.colorButtonBg, form.buttons.colorButtonText, form.buttons.colorButtonBgPressed,
                  form.buttons.colorButtonTextPressed);
    ok_.SetGradient(form.buttons.colorButtonGradient, form.buttons.colorButtonGradientPressed);
    Layout();
    SetFocus(window);
    return DialogWnd::OnInitDialog();
}

void AboutPage::Layout() {
    const int width = GetScreenWidth(), height = GetScreenHeight();
    MoveWindow(window, 0, 0, width, height, false);
    const int top = Scale(kTitleHeight);
    const int buttons = Scale(kButtonHeight) + 2 * Scale(kMargin);
    MoveWindow(list_.GetHwnd(), 0, top, width, std::max(1, height - top - buttons), true);
    MoveWindow(ok_.GetHwnd(), Scale(kMargin), height - Scale(kMargin) - Scale(kButtonHeight),
               width - 2 * Scale(kMargin), Scale(kButtonHeight), true);
    // The paragraphs wrap to the list's width.
    list_.ClearItems();
    RECT client;
    GetClientRect(list_.GetHwnd(), &client);
    const ListViewStyle& style = SkinStyles::Current().listViews;
    for (size_t i = 0; i < lines_.size(); ++i)
        list_.AddItem(std::make_unique<ParagraphRow>(lines_[i], headings_[i] ? *bold_ : *font_,
                                                     client.Width(), style.colorText, style.colorBg));
    list_.Relayout();
    InvalidateRect(window, nullptr, false);
}

void AboutPage::OnScreenReset() {
    Layout();
}

void AboutPage::OnPaint(HDC dc) {
    if (!dc)
        return;
    RECT client;
    GetClientRect(window, &client);
    FormPainter::PaintPage(*dc, client, Scale(kTitleHeight), bold_.get(), Lang("About"));
}

void AboutPage::OnCommand(UINT, UINT, HWND control) {
    if (control == ok_.GetHwnd())
        EndDialog(window, IDOK);
}

void AboutPage::OnKeyDown(UINT key, UINT) {
    if (key == VK_ESCAPE || key == VK_RETURN)
        EndDialog(window, IDOK);
}

} // namespace mirodate
