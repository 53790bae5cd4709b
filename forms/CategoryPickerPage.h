#pragma once
// A modal page that picks the categories of an item: every known category
// with its colour and a check mark (a tap flips it), and a field for a new
// name. Returns the chosen names joined by "," in the order of the list,
// or nothing on Cancel.
#include "forms/ListEntryPage.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace mirodate {

class CategoryPickerPage : public ListEntryPage {
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
    // Chooses a typed name (added when not listed yet); false when it is blank.
    bool Add(const std::u16string& typed) override;
    // The chosen names, comma-joined.
    std::u16string Value() const;

    void OnDialogReady() override;
    void OnDeferredCommand(UINT id) override;

protected:
    void Fill() override;

private:
    std::vector<std::u16string> names_;
    std::vector<bool> chosen_;
};

} // namespace mirodate
