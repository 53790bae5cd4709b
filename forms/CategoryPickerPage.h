#pragma once
// A modal page that picks the categories of an item: every known category
// with its colour and a check mark (a tap flips it), and a field for a new
// name. Returns the chosen names joined by "," in the order of the list,
// or nothing on Cancel.
#include "forms/SmallFormPage.h"
#include "ui/TextFieldWnd.h"
#include "ui/TouchListCtrlWnd.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace mirodate {

class CategoryPickerPage : public SmallFormPage {
public:
    static constexpr UINT kCmdRowBase = 0x7D00;
    static constexpr std::size_t kMaxName = 64;

    explicit CategoryPickerPage(const std::u16string& current);
    ~CategoryPickerPage() override;

    static std::optional<std::u16string> Pick(HWND owner, const std::u16string& current);
    static void SetOpenObserver(std::function<void(CategoryPickerPage& page)> observer);

    const std::vector<std::u16string>& Names() const { return names_; }
    bool IsChosen(const std::u16string& name) const;
    // Flips a name; a name not listed yet is added, chosen.
    void Toggle(const std::u16string& name);
    // The chosen names, comma-joined.
    std::u16string Value() const;
    TouchListCtrlWnd& List() { return list_; }
    TextFieldWnd& Field() { return field_; }

    void OnDialogReady() override;
    void OnDeferredCommand(UINT id) override;

protected:
    void CreateControls() override;
    void LayoutControls(const RECT& area) override;
    void OnControl(HWND control, UINT code) override;
    bool OnAccept() override;

private:
    void Fill();
    void AddTyped();

    std::vector<std::u16string> names_;
    std::vector<bool> chosen_;
    TouchListCtrlWnd list_;
    TextFieldWnd field_;
    ButtonWnd add_;
};

} // namespace mirodate
