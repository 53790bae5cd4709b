#include "store/IcsAttendees.h"

#include "platform/TextUtil.h"

#include <vector>

namespace mirodate {

namespace {

constexpr std::string_view kMailto = "mailto:";

struct Person {
    std::u16string name;
    std::u16string address;
};

// A field may not hold the separators of the text; they become blanks.
std::u16string Clean(const std::string& utf8) {
    std::u16string text = Utf8ToUtf16(utf8);
    for (char16_t& c : text)
        if (c == IcsAttendees::kPersonSeparator || c == IcsAttendees::kFieldSeparator || c < u' ')
            c = u' ';
    return text;
}

std::string Address(const char* value) {
    std::string text = value ? value : "";
    if (text.size() >= kMailto.size()) {
        std::string prefix = text.substr(0, kMailto.size());
        for (char& c : prefix)
            c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        if (prefix == kMailto)
            text.erase(0, kMailto.size());
    }
    return text;
}

Person PersonOf(icalproperty* p, bool organizer) {
    Person person;
    const char* value = organizer ? icalproperty_get_organizer(p) : icalproperty_get_attendee(p);
    person.address = Clean(Address(value));
    if (icalparameter* cn = icalproperty_get_first_parameter(p, ICAL_CN_PARAMETER))
        person.name = Clean(icalparameter_get_cn(cn) ? icalparameter_get_cn(cn) : "");
    return person;
}

std::vector<Person> ReadPeople(icalcomponent* component) {
    std::vector<Person> people;
    std::u16string organizerAddress;
    if (icalproperty* p = icalcomponent_get_first_property(component, ICAL_ORGANIZER_PROPERTY)) {
        people.push_back(PersonOf(p, true));
        organizerAddress = people.back().address;
    }
    for (icalproperty* p = icalcomponent_get_first_property(component, ICAL_ATTENDEE_PROPERTY); p;
         p = icalcomponent_get_next_property(component, ICAL_ATTENDEE_PROPERTY)) {
        Person person = PersonOf(p, false);
        // The organizer often lists himself as attendee as well.
        if (!organizerAddress.empty() && person.address == organizerAddress)
            continue;
        if (person.address.empty() && person.name.empty())
            continue;
        people.push_back(std::move(person));
    }
    return people;
}

std::vector<Person> Split(const std::u16string& text) {
    std::vector<Person> people;
    std::size_t start = 0;
    while (start <= text.size()) {
        std::size_t end = text.find(IcsAttendees::kPersonSeparator, start);
        if (end == std::u16string::npos)
            end = text.size();
        const std::u16string entry = text.substr(start, end - start);
        if (!entry.empty()) {
            const std::size_t bar = entry.find(IcsAttendees::kFieldSeparator);
            Person person;
            person.name = entry.substr(0, bar);
            if (bar != std::u16string::npos) {
                person.address = entry.substr(bar + 1);
                person.address = person.address.substr(0, person.address.find(IcsAttendees::kFieldSeparator));
            }
            people.push_back(std::move(person));
        }
        start = end + 1;
    }
    return people;
}

icalproperty* MakeProperty(const Person& person, bool organizer) {
    const std::string value = std::string(kMailto) + Utf16ToUtf8(person.address);
    icalproperty* p =
        organizer ? icalproperty_new_organizer(value.c_str()) : icalproperty_new_attendee(value.c_str());
    if (!person.name.empty())
        icalproperty_add_parameter(p, icalparameter_new_cn(Utf16ToUtf8(person.name).c_str()));
    return p;
}

void RemoveAll(icalcomponent* component, icalproperty_kind kind) {
    while (icalproperty* p = icalcomponent_get_first_property(component, kind)) {
        icalcomponent_remove_property(component, p);
        icalproperty_free(p);
    }
}

} // namespace

std::u16string IcsAttendees::Read(icalcomponent* component) {
    std::u16string text;
    for (const Person& person : ReadPeople(component)) {
        if (!text.empty())
            text += kPersonSeparator;
        text += person.name;
        text += kFieldSeparator;
        text += person.address;
    }
    return text;
}

void IcsAttendees::Write(icalcomponent* component, const std::u16string& text) {
    if (Read(component) == text)
        return;
    const bool hadOrganizer = icalcomponent_get_first_property(component, ICAL_ORGANIZER_PROPERTY) != nullptr;
    RemoveAll(component, ICAL_ORGANIZER_PROPERTY);
    RemoveAll(component, ICAL_ATTENDEE_PROPERTY);
    const std::vector<Person> people = Split(text);
    for (std::size_t i = 0; i < people.size(); ++i)
        icalcomponent_add_property(component, MakeProperty(people[i], hadOrganizer && i == 0));
}

} // namespace mirodate
