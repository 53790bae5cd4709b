#pragma once
// The search: a one-line field at the top and, below it, the appointments of
// the coming year and the tasks whose texts contain what was typed, as rows
// of the other views under their day headers. Typing restarts a timer of
// "SearchStartDelay" milliseconds and the search runs when it fires; Enter
// searches at once. One instance serves the whole program; "OK" and
// "Cancel" hide it with its text and results kept.
#include "ui/TextFieldWnd.h"
#include "views/ViewPage.h"

#include <cstdint>
#include <functional>

namespace mirodate {

class SearchView : public ViewPage {
public:
    // The timer that starts a search after the last change of the text.
    static constexpr UINT_PTR kSearchTimer = 3;
    // Searches read at most this many characters of the field.
    static constexpr std::size_t kMaxSearchLength = 255;
    // The field takes more, so that a paste is cut here rather than hangs.
    static constexpr std::size_t kFieldLimit = 1024;
    static constexpr int kFieldId = 0x5E01;

    SearchView();

    DateTime CurrentDate() const override { return date_; }
    void SetDate(const DateTime& date);
    // Searches again with the field's text.
    void Reload() override;
    // Searches with the field's text now (what the timer and Enter do).
    void SearchNow();

    TextFieldWnd& Field() { return field_; }
    // The text the last search looked for (empty: none ran).
    const std::u16string& SearchedText() const { return searched_; }
    int SearchCount() const { return searchCount_; }
    // Called after each search has filled the list (benchmarks watch it).
    void SetSearchObserver(std::function<void()> observer) { searchObserver_ = std::move(observer); }

    BOOL OnInitDialog() override;
    void OnCommand(UINT id, UINT code, HWND control) override;
    void OnTimer(UINT_PTR id) override;
    LRESULT OnActivate(UINT state, BOOL minimized, HWND other) override;

protected:
    std::vector<MenuBarEntry> MenuEntries() const override;
    std::u16string Title() const override;
    void OnMenuButton(const std::string& key) override;
    void LayoutLists(const RECT& area) override;

private:
    void Fill();

    DateTime date_;
    TextFieldWnd field_;
    std::uint32_t startDelay_ = 0; // read at creation
    std::u16string searched_;
    int searchCount_ = 0;
    std::vector<PimItem> appointments_;
    std::vector<PimItem> tasks_;
    std::function<void()> searchObserver_;
};

} // namespace mirodate
