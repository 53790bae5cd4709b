#include "forms/EditorPage.h"

#include "forms/EditorRow.h"
#include "forms/FormPainter.h"
#include "lang/LanguageTable.h"
#include "platform/VirtualKeys.h"
#include "skin/SkinStyles.h"
#include "ui/ContextMenu.h"
#include "ui/Dc.h"
#include "ui/RegisteredMessages.h"
#include "ui/Scale.h"
#include "ui/WinApi.h"

#include <algorithm>

namespace mirodate {

namespace {
// Unscaled sizes for a 240-pixel-wide screen.
constexpr int kTitleHeight = 24;
constexpr int kButtonHeight = 26;
constexpr int kMargin = 4;
constexpr int kTextHeight = 11;
} // namespace

EditorPage::EditorPage() = default;
EditorPage::~EditorPage() = default;

HWND EditorPage::Open(HWND owner) {
    const HWND hwnd = CreateModeless(owner);
    if (!hwnd)
        return nullptr;
    ShowWindow(hwnd, SW_SHOW);
    SetForegroundWindow(hwnd);
    return hwnd;
}

void EditorPage::Style(ButtonWnd& button) {
    const InputFormsStyle& form = SkinStyles::Current().inputForms;
    button.SetColors(form.buttons.colorButtonBg, form.buttons.colorButtonText,
                     form.buttons.colorButtonBgPressed, form.buttons.colorButtonTextPressed);
    button.SetGradient(form.buttons.colorButtonGradient, form.buttons.colorButtonGradientPressed);
}

BOOL EditorPage::OnInitDialog() {
    closeAllMessage_ = RegisterWindowMessage(kMinimizedBroadcastName);
    SetWindowText(window, Title());
    LOGFONT logFont;
    DefaultFont(logFont);
    logFont.lfHeight = -std::clamp(Scale(kTextHeight) + FontSizeDelta(), 6, 200);
    font_ = std::make_unique<Font>(logFont);
    LOGFONT boldFont = logFont;
    boldFont.lfWeight = FW_BOLD;
    bold_ = std::make_unique<Font>(boldFont);

    CreateFields(logFont);
    list_.Create(window, 0, 0, 1, 1, false, false);
    list_.SetHeaderHeight(0);
    TouchListColors colors = TouchListColors::FromSkin();
    colors.background = SkinStyles::Current().addModifyForm.colorBg;
    colors.strip = SkinStyles::Current().addModifyForm.colorLineSeparator;
    list_.SetColors(colors);
    ok_.Create(window, Lang("OK"), 0, 0, 1, 1, IDOK);
    cancel_.Create(window, Lang("Cancel"), 0, 0, 1, 1, IDCANCEL);
    Style(ok_);
    Style(cancel_);
    Layout();
    return DialogWnd::OnInitDialog();
}

void EditorPage::Layout() {
    const int width = GetScreenWidth(), height = GetScreenHeight();
    MoveWindow(window, 0, 0, width, height, false);
    const int margin = Scale(kMargin);
    const int top = LayoutFields(Scale(kTitleHeight) + margin, width);
    const int buttons = Scale(kButtonHeight) + 2 * margin;
    MoveWindow(list_.GetHwnd(), 0, top, width, std::max(1, height - top - buttons), true);
    const int half = (width - 3 * margin) / 2;
    const int buttonTop = height - margin - Scale(kButtonHeight);
    MoveWindow(ok_.GetHwnd(), margin, buttonTop, half, Scale(kButtonHeight), true);
    MoveWindow(cancel_.GetHwnd(), 2 * margin + half, buttonTop, half, Scale(kButtonHeight), true);
    Fill();
    InvalidateRect(window, nullptr, false);
}

void EditorPage::OnScreenReset() {
    Layout();
}

void EditorPage::Fill() {
    if (!list_.GetHwnd())
        return;
    const int position = list_.Scroller().Position();
    list_.ClearItems();
    RECT client;
    GetClientRect(list_.GetHwnd(), &client);
    const std::vector<RowText> rows = RowTexts();
    for (std::size_t i = 0; i < rows.size() && i < kCmdLimit; ++i)
        list_.AddItem(std::make_unique<EditorRow>(kCmdRowBase + static_cast<UINT>(i), rows[i].label,
                                                  rows[i].value, rows[i].twoLine, i % 2 == 1, *font_, *bold_,
                                                  client.Width()));
    list_.Relayout();
    list_.Scroller().SetPosition(position);
    list_.RefreshViewport();
}

void EditorPage::OnPaint(HDC dc) {
    if (!dc)
        return;
    RECT client;
    GetClientRect(window, &client);
    FormPainter::PaintPage(*dc, client, Scale(kTitleHeight), bold_.get(), Title());
}

void EditorPage::OnCommand(UINT id, UINT code, HWND control) {
    if (control == ok_.GetHwnd() || (!control && id == IDOK))
        Ok();
    else if (control == cancel_.GetHwnd() || (!control && id == IDCANCEL))
        Cancel();
    else if (control)
        OnFieldCommand(control, code);
}

void EditorPage::OnKeyDown(UINT key, UINT) {
    if (key == VK_ESCAPE)
        Cancel();
}

INT_PTR EditorPage::DialogProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == closeAllMessage_ && closeAllMessage_ != 0) {
        // The owner deletes the page; the base would delete it here. Nothing is saved.
        Cancel();
        return 0;
    }
    return DialogWnd::DialogProc(hwnd, message, wParam, lParam);
}

void EditorPage::OnClose() {
    Cancel();
}

void EditorPage::OpenMenu(int menu, const std::vector<std::u16string>& entries, const std::u16string& header,
                          int current) {
    if (entries.empty())
        return;
    menu_ = menu;
    std::vector<ContextMenuItem> items;
    for (size_t i = 0; i < entries.size() && i < kCmdLimit; ++i)
        items.push_back({entries[i], kCmdMenuBase + static_cast<UINT>(i), static_cast<int>(i) == current});
    auto* contextMenu =
        new ContextMenu(this, std::move(items), 0); // owned by our deferred command, or by itself
    if (current >= 0)
        contextMenu->SetPreselected(current);
    contextMenu->SetHeaderText(header);
    contextMenu->Open();
}

void EditorPage::OnDeferredCommand(UINT id) {
    if (closed_)
        return;
    if (id >= kCmdMenuBase && id < kCmdMenuBase + kCmdLimit) {
        const int menu = menu_;
        menu_ = 0;
        if (menu != 0)
            OnMenuChoice(menu, static_cast<int>(id - kCmdMenuBase));
        return;
    }
    if (id >= kCmdRowBase && id < kCmdRowBase + kCmdLimit)
        OnRowTap(id - kCmdRowBase);
}

void EditorPage::Ok() {
    if (closed_)
        return;
    switch (Save()) {
    case ItemSaver::Outcome::Saved:
        saved_ = true;
        Close();
        return;
    case ItemSaver::Outcome::Reload:
        Reload();
        return;
    case ItemSaver::Outcome::Discard:
        Close();
        return;
    case ItemSaver::Outcome::Stay:
        Fill();
        return;
    }
}

void EditorPage::Cancel() {
    if (closed_)
        return;
    OnCancel();
    Close();
}

void EditorPage::Close() {
    closed_ = true;
    ShowWindow(window, SW_HIDE);
    OnClosed();
}

} // namespace mirodate
