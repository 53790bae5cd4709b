#include "ui/TabCtrl.h"

#include "skin/SkinStyles.h"
#include "ui/Dc.h"
#include "ui/Font.h"
#include "ui/Scale.h"
#include "ui/WinApi.h"

namespace mirodate {

namespace {
constexpr double kFontShare = 0.5;          // label height as a share of the control's height
constexpr double kSelectedFontShare = 0.55; // the selected tab's label
constexpr int kCorner = 7;
constexpr int kBelowBottom = 6; // the selected shape reaches below the edge: only its top corners show
constexpr int kLabelInset = 2;
constexpr UINT kLabelFormat = DT_CENTER | DT_VCENTER | DT_SINGLELINE;
} // namespace

TabColors TabColors::FromSkin() {
    const AddModifyFormStyle& s = SkinStyles::Current().addModifyForm;
    TabColors c;
    c.background = s.colorHeaderBg;
    c.selected = s.colorBg;
    c.text = s.colorHeaderText;
    c.selectedText = s.colorText;
    return c;
}

HWND TabCtrl::Create(HWND owner_, const RECT& rect) {
    owner = owner_;
    return BaseWnd::Create(owner_, kTabCtrlClass, WS_CHILD | WS_VISIBLE, u"", rect.left, rect.top,
                           rect.Width(), rect.Height());
}

void TabCtrl::AddTab(const std::u16string& label) {
    tabs.push_back(Tab{label, RECT{}});
    LayoutTabs();
    Invalidate();
}

void TabCtrl::SetSelectedTab(int index) {
    selectedTab = index >= 0 && index < TabCount() ? index : -1;
    Invalidate();
}

void TabCtrl::SetColors(const TabColors& colors) {
    colors_ = colors;
    Invalidate();
}

void TabCtrl::Invalidate() {
    surfaceValid_ = false;
    if (window && IsWindow(window))
        Redraw(false);
}

void TabCtrl::LayoutTabs() {
    if (tabs.empty() || !window)
        return;
    RECT client;
    GetClientRect(window, &client);
    const int width = client.right / TabCount();
    for (int i = 0; i < TabCount(); ++i)
        tabs[i].rect = RECT{i * width, 0, (i + 1) * width, client.bottom};
}

void TabCtrl::OnSize(UINT, UINT) {
    LayoutTabs();
    surfaceValid_ = false;
}

void TabCtrl::OnPaint(HDC dc) {
    if (!dc)
        return;
    RECT client;
    GetClientRect(window, &client);
    const bool sized =
        surface_.IsValid() && surface_.Width() == client.right && surface_.Height() == client.bottom;
    if (sized && surfaceValid_) {
        dc->BitBlt(0, 0, client.right, client.bottom, surface_.GetBitmap(), 0, 0);
        return;
    }
    if (!sized) {
        if (!surface_.Create(client.right, client.bottom))
            return;
        LayoutTabs();
    }
    Dc& out = surface_.GetDc();
    out.FillRect(client, colors_.background);

    LOGFONT normal;
    DefaultFont(normal);
    normal.lfHeight = static_cast<int>(kFontShare * client.bottom);
    normal.lfWeight = FW_NORMAL;
    LOGFONT bold = normal;
    bold.lfHeight = static_cast<int>(kSelectedFontShare * client.bottom);
    bold.lfWeight = FW_BOLD;
    const Font normalFont(normal), boldFont(bold);

    out.SetBkMode(TRANSPARENT);
    for (int i = 0; i < TabCount(); ++i) {
        const RECT& r = tabs[i].rect;
        const bool selected = i == selectedTab;
        if (selected)
            out.RoundRect(RECT{r.left + 1, r.top + 1, r.right - 1, r.bottom + kBelowBottom}, kCorner, kCorner,
                          colors_.selected, colors_.selected);
        out.SelectFont(selected ? &boldFont : &normalFont);
        out.SetTextColor(selected ? colors_.selectedText : colors_.text);
        RECT label{r.left + Scale(kLabelInset), r.top, r.right - Scale(kLabelInset), r.bottom};
        out.DrawText(tabs[i].label, label, kLabelFormat);
    }
    out.SelectFont(nullptr);
    dc->BitBlt(0, 0, client.right, client.bottom, surface_.GetBitmap(), 0, 0);
    surfaceValid_ = true;
}

LRESULT TabCtrl::OnPointerDown(int button, int x, int y, WPARAM) {
    if (button != 0)
        return 0;
    int hit = -1;
    for (int i = 0; i < TabCount(); ++i)
        if (tabs[i].rect.Contains(x, y))
            hit = i;
    if (hit == selectedTab)
        return 0;
    // A press beside every tab clears the selection, and the parent hears of it too.
    selectedTab = hit;
    Invalidate();
    NotifyParent(NM_LONG_PRESS);
    return 0;
}

} // namespace mirodate
