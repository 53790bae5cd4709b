#pragma once
// The row of tabs on top of multi-page forms. Tabs share the width in whole
// pixels (what the division leaves stays empty at the right); the selected
// tab is a raised, bold one. A press on another tab selects it and notifies
// the parent (NM_LONG_PRESS code, told apart by the window); a press beside
// every tab clears the selection and notifies as well.
#include "ui/BaseWnd.h"
#include "ui/Surface16.h"

#include <string>
#include <vector>

namespace mirodate {

constexpr const char* kTabCtrlClass = "KESTRELIA::TABCTRL";

struct TabColors {
    COLORREF background = RGB(0x5C, 0x5C, 0x5C);
    COLORREF selected = RGB(255, 255, 255);
    COLORREF text = RGB(255, 255, 255);
    COLORREF selectedText = RGB(0, 0, 0);

    // The editor colours of the current skin.
    static TabColors FromSkin();
};

class TabCtrl : public BaseWnd {
public:
    struct Tab {
        std::u16string label;
        RECT rect;
    };

    HWND Create(HWND owner, const RECT& rect);
    void AddTab(const std::u16string& label);
    int TabCount() const { return static_cast<int>(tabs.size()); }
    const Tab& TabAt(int index) const { return tabs.at(index); }
    int SelectedTab() const { return selectedTab; }
    void SetSelectedTab(int index);
    void SetColors(const TabColors& colors);

    void OnPaint(HDC dc) override;
    LRESULT OnPointerDown(int button, int x, int y, WPARAM keys) override;
    void OnSize(UINT sizeParam, UINT type) override;

    HWND owner = nullptr;
    std::vector<Tab> tabs;
    int selectedTab = -1;

private:
    void LayoutTabs();
    void Invalidate();

    Surface16 surface_;
    bool surfaceValid_ = false;
    TabColors colors_ = TabColors::FromSkin();
};

} // namespace mirodate
