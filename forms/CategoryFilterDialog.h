#pragma once
// The category filter: every category the store knows, with its colour, set
// to shown, hidden or neither by tapping it (a tap moves it on in that
// order), a "Show all" row that sets every category back to neither, and
// switches for completed tasks, birthdays and anniversaries. OK applies the
// filter through the store (which writes "LastFilter", the shown ones, and
// "ExcludeFilter", the hidden ones); Cancel leaves everything as it was.
#include "data/ItemFilter.h"
#include "ui/ButtonWnd.h"
#include "ui/DialogWnd.h"
#include "ui/TouchListCtrlWnd.h"

#include <memory>
#include <string>
#include <vector>

namespace mirodate {

class CategoryFilterDialog : public DialogWnd {
public:
    enum class State { Neutral, Shown, Hidden };
    struct Entry {
        std::u16string name;
        COLORREF color = 0;
        bool hasColor = false;
        State state = State::Neutral;
    };

    CategoryFilterDialog();
    ~CategoryFilterDialog() override;

    // The filter texts of a set of entries ("a,b"), in the entries' order.
    static std::u16string JoinNames(const std::vector<Entry>& entries, State state);

    std::vector<Entry>& Entries() { return entries_; }
    FilterConfig& Config() { return config_; }
    TouchListCtrlWnd& List() { return list_; }
    // Taps on row `index`: a category moves on, a switch flips.
    void ToggleRow(int index);
    // Writes the filter through the store and ends with IDOK.
    void Apply();

    BOOL OnInitDialog() override;
    void OnPaint(HDC dc) override;
    void OnCommand(UINT id, UINT code, HWND control) override;
    void OnKeyDown(UINT key, UINT flags) override;

private:
    void Fill();
    int SwitchRowCount() const { return 3; }

    FilterConfig config_;
    std::vector<Entry> entries_;
    TouchListCtrlWnd list_;
    ButtonWnd ok_;
    ButtonWnd cancel_;
    std::unique_ptr<Font> font_;
};

} // namespace mirodate
