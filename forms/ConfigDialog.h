#pragma once
// The configuration dialog: tabs over a touch list of setting rows. A tap on
// a switch flips it, a tap on a choice opens the list of its values, a tap on
// a colour opens the colour page, a tap on the subject templates or the
// locations opens that list as a text to edit. Every change is written through Settings
// at once (there is nothing to confirm); the language is applied at once,
// the skin and the font size at the next start, as the page says.
#include "forms/ConfigEntries.h"
#include "ui/ButtonWnd.h"
#include "ui/DialogWnd.h"
#include "ui/TabCtrl.h"
#include "ui/TouchListCtrlWnd.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace mirodate {

class ConfigDialog : public DialogWnd {
public:
    // Told the name of each setting that changed, so that the main window
    // can relabel, relayout or reload.
    using ChangeHandler = std::function<void(const std::string& setting)>;
    // Deferred commands of the value list: the chosen option's index added.
    static constexpr UINT kCmdOptionBase = 0x7C00;

    explicit ConfigDialog(ChangeHandler onChange = {}, ConfigFolders folders = ConfigFolders::Installed());
    ~ConfigDialog() override;

    const std::vector<ConfigTab>& Tabs() const { return tabs_; }
    int CurrentTab() const { return tab_; }
    void SelectTab(int index);
    TabCtrl& TabBar() { return tabBar_; }
    TouchListCtrlWnd& List() { return list_; }
    // The row of the current tab whose label or setting is `key`; -1 when none.
    int FindRow(const std::string& key) const;
    // What a tap on row `index` of the current tab does.
    void ActivateRow(int index);
    // Chooses option `option` of the choice row `index`.
    void ChooseOption(int index, int option);
    // Sets the colour of the colour row `index`.
    void SetColour(int index, COLORREF color);
    // New language texts on the page.
    void Relabel();

    BOOL OnInitDialog() override;
    void OnPaint(HDC dc) override;
    void OnCommand(UINT id, UINT code, HWND control) override;
    LRESULT OnNotify(UINT_PTR id, NMHDR* header) override;
    void OnKeyDown(UINT key, UINT flags) override;
    void OnDeferredCommand(UINT id) override;
    void OnScreenReset() override;

private:
    void Layout();
    const ConfigEntry& Entry(int index) const;
    void Fill();
    void Changed(const std::string& setting);
    void FlipSwitch(const ConfigEntry& entry);
    void SwitchReplacement(const ConfigEntry& entry);
    void OpenChoices(int index);
    void OpenColourPage(int index);
    // Opens the text page of a list row and saves the list on OK.
    void EditList(const ConfigEntry& entry);
    std::u16string Label(const ConfigEntry& entry) const;

    ChangeHandler onChange_;
    ConfigFolders folders_;
    std::vector<ConfigTab> tabs_;
    int tab_ = 0;
    int pendingRow_ = -1;
    TabCtrl tabBar_;
    TouchListCtrlWnd list_;
    ButtonWnd done_;
    std::unique_ptr<Font> font_;
};

} // namespace mirodate
