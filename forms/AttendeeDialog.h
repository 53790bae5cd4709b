#pragma once
// A modal page that edits the people of a meeting: the list of names and
// addresses (a tap removes a person after asking), a field for a new one,
// typed as an address or as "Name <address>", and below the people the
// contacts' e-mail addresses to pick from (a tap adds one; what is typed in
// the field narrows them to the contacts whose name or address contains
// it). An address without "@" is refused with a message. Returns the people
// as PimRecord keeps them ("name|address" joined by "~"), or nothing on
// Cancel.
#include "forms/AppointmentDraft.h"
#include "forms/ListEntryPage.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace mirodate {

class AttendeeDialog : public ListEntryPage {
public:
    static constexpr UINT kCmdRowBase = 0x7E00;
    static constexpr UINT kCmdContactBase = 0x8000;
    static constexpr std::size_t kMaxEntry = 255;
    // No meeting needs more; the list stays readable.
    static constexpr std::size_t kMaxPeople = 200;
    // Contact addresses listed at once; typing narrows a longer list.
    static constexpr std::size_t kMaxContactRows = 500;

    explicit AttendeeDialog(const std::u16string& people);
    ~AttendeeDialog() override;

    static std::optional<std::u16string> Edit(HWND owner, const std::u16string& people);
    static void SetOpenObserver(std::function<void(AttendeeDialog& page)> observer);

    const std::vector<AppointmentDraft::Person>& People() const { return people_; }
    // Adds "Name <address>" or a bare address; false (with a message) when
    // the text holds no address with "@".
    bool Add(const std::u16string& text) override;
    // Removes person `index` after asking.
    void Remove(int index);
    // The contact addresses listed now (the typed text narrows them; people
    // already invited are left out), and adding one of them.
    const std::vector<AppointmentDraft::Person>& ContactChoices() const { return choices_; }
    void AddContact(int index);
    // Every e-mail address of the store's contacts, one entry each, by name.
    static std::vector<AppointmentDraft::Person> ContactAddresses();
    std::u16string Value() const { return AppointmentDraft::JoinPeople(people_); }

    // Splits "Name <address>" (or a bare address); false without "@".
    static bool ParseEntry(const std::u16string& text, AppointmentDraft::Person& person);

    void OnDialogReady() override;
    void OnDeferredCommand(UINT id) override;

protected:
    void Fill() override;
    void OnControl(HWND control, UINT code) override;

private:
    void UpdateChoices();

    std::vector<AppointmentDraft::Person> people_;
    std::vector<AppointmentDraft::Person> contacts_;
    std::vector<AppointmentDraft::Person> choices_;
};

} // namespace mirodate
