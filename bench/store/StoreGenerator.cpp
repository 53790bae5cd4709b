#include "bench/store/StoreGenerator.h"

#include "data/DateTime.h"
#include "platform/Paths.h"

#include <cstdio>
#include <fstream>
#include <random>
#include <vector>

namespace mirodate {

namespace {

constexpr int kSpanDays = 730; // two years around the middle day
const char* const kSubjects[] = {"Team meeting",
                                 "1:1 with Alex",
                                 "Dentist",
                                 "Lunch with Sam",
                                 "Budget review",
                                 "Sprint planning",
                                 "Call with the bank",
                                 "Project kickoff",
                                 "Parents' evening",
                                 "Haircut",
                                 "Car service",
                                 "Yoga",
                                 "Football training",
                                 "Choir rehearsal",
                                 "Doctor's appointment",
                                 "Coffee with Maria",
                                 "Board meeting",
                                 "Code review",
                                 "Flight to Lisbon",
                                 "Dinner with friends"};
const char* const kLocations[] = {"",
                                  "",
                                  "Room 2.01",
                                  "Room 4.12",
                                  "Cafe Linde",
                                  "Dr. Weber",
                                  "Studio Ost",
                                  "Town hall",
                                  "https://meet.example.org/abc",
                                  "Main station"};
const char* const kCategories[] = {"", "", "Work", "Private", "Family", "Health", "Sport", "Work,Travel"};
const char* const kTasks[] = {
    "Pay the electricity bill", "Renew passport",   "Prepare slides", "Buy a present",
    "File the tax return",      "Call the plumber", "Book holidays",  "Answer Tom's mail",
    "Water the plants",         "Update the CV"};
const char* const kFirstNames[] = {"Anna",  "Ben",   "Clara", "David", "Eva",
                                   "Felix", "Greta", "Hugo",  "Ida",   "Jonas"};
const char* const kLastNames[] = {"Berg",    "Ortiz", "Meyer",  "Novak",
                                  "Schmidt", "Rossi", "Dubois", "Kowalski"};
const char* const kDays[] = {"SU", "MO", "TU", "WE", "TH", "FR", "SA"};

class Generator {
public:
    explicit Generator(const StoreGeneratorOptions& o)
        : o_(o), random_(o.seed), middle_(o.year, o.month, o.day) {}

    int Uniform(int low, int high) { return std::uniform_int_distribution<int>(low, high)(random_); }
    bool Chance(int percent) { return Uniform(0, 99) < percent; }
    template <std::size_t N> const char* Pick(const char* const (&list)[N]) {
        return list[Uniform(0, N - 1)];
    }

    DateTime RandomDay() { return middle_ + DateTimeSpan(Uniform(-kSpanDays / 2, kSpanDays / 2), 0, 0, 0); }

    static std::string Stamp(const DateTime& t, bool withTime = true) {
        char text[32];
        if (withTime)
            std::snprintf(text, sizeof text, "%04d%02d%02dT%02d%02d%02d", t.GetYear(), t.GetMonth(),
                          t.GetDay(), t.GetHour(), t.GetMinute(), t.GetSecond());
        else
            std::snprintf(text, sizeof text, "%04d%02d%02d", t.GetYear(), t.GetMonth(), t.GetDay());
        return text;
    }

    // A timed property in the usual zone, another zone or UTC.
    std::string Time(const char* name, const DateTime& t, int zoneKind) {
        if (zoneKind == 1)
            return std::string(name) + ";TZID=America/New_York:" + Stamp(t) + "\r\n";
        if (zoneKind == 2)
            return std::string(name) + ":" + Stamp(t - DateTimeSpan(0, 1, 0, 0)) + "Z\r\n";
        return std::string(name) + ";TZID=" + o_.zone + ":" + Stamp(t) + "\r\n";
    }

    static std::string Wrap(const std::string& kind, const std::string& body) {
        return "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//Kestrelia//Mirodate generator//EN\r\nBEGIN:" +
               kind + "\r\n" + body + "END:" + kind + "\r\n";
    }

    std::string Texts() {
        std::string body = std::string("SUMMARY:") + Pick(kSubjects) + "\r\n";
        const char* location = Pick(kLocations);
        if (*location)
            body += std::string("LOCATION:") + location + "\r\n";
        const char* categories = Pick(kCategories);
        if (*categories)
            body += std::string("CATEGORIES:") + categories + "\r\n";
        if (Chance(20))
            body += "DESCRIPTION:Bring the notes from last time\\, and the contract.\r\n";
        return body;
    }

    std::string Event(int index, bool series) {
        const std::string uid = "gen-" + std::to_string(o_.seed) + "-e" + std::to_string(index);
        std::string body = "UID:" + uid + "\r\nDTSTAMP:20260101T000000Z\r\n" + Texts();
        DateTime day = RandomDay();
        std::string extra;
        const int shape = Uniform(0, 99);
        if (!series && shape < 10) { // all-day, sometimes several days
            const int days = shape < 3 ? Uniform(2, 5) : 1;
            body += "DTSTART;VALUE=DATE:" + Stamp(day, false) +
                    "\r\nDTEND;VALUE=DATE:" + Stamp(day + DateTimeSpan(days, 0, 0, 0), false) + "\r\n";
            return Wrap("VEVENT", body) + "END:VCALENDAR\r\n";
        }
        const DateTime start = day + DateTimeSpan(0, Uniform(7, 20), Uniform(0, 3) * 15, 0);
        const int minutes = shape < 12 ? Uniform(10, 30) * 60 : Uniform(1, 8) * 15; // a few overnight items
        const DateTime end = start + DateTimeSpan(0, 0, minutes, 0);
        const int zoneKind = shape < 85 ? 0 : shape < 93 ? 1 : 2;
        body += Time("DTSTART", start, zoneKind) + Time("DTEND", end, zoneKind);
        if (series) {
            const int rule = Uniform(0, 9);
            if (rule < 6)
                body += std::string("RRULE:FREQ=WEEKLY;BYDAY=") + kDays[start.GetDayOfWeek()] +
                        (Chance(30) ? ";COUNT=" + std::to_string(Uniform(5, 40)) : "") + "\r\n";
            else if (rule < 8)
                body += "RRULE:FREQ=DAILY;COUNT=" + std::to_string(Uniform(3, 20)) + "\r\n";
            else if (rule < 9)
                body += "RRULE:FREQ=MONTHLY;BYMONTHDAY=" + std::to_string(start.GetDay()) +
                        ";UNTIL=" + Stamp(start + DateTimeSpan(365, 0, 0, 0), false) + "T235959Z\r\n";
            else
                body += "RRULE:FREQ=YEARLY\r\n";
            const int step = rule < 6 ? 7 : rule < 8 ? 1 : 0;
            if (step && Chance(50)) // a cancelled occurrence
                body += Time("EXDATE", start + DateTimeSpan(step * 2, 0, 0, 0), zoneKind);
            if (step && Chance(40)) { // a moved occurrence
                const DateTime original = start + DateTimeSpan(step, 0, 0, 0);
                const DateTime moved = original + DateTimeSpan(0, 1, 0, 0);
                extra = "BEGIN:VEVENT\r\nUID:" + uid + "\r\nDTSTAMP:20260101T000000Z\r\n" +
                        Time("RECURRENCE-ID", original, zoneKind) + Time("DTSTART", moved, zoneKind) +
                        Time("DTEND", moved + DateTimeSpan(0, 0, minutes, 0), zoneKind) +
                        "SUMMARY:Moved\r\n" + "END:VEVENT\r\n";
            }
        }
        return Wrap("VEVENT", body) + extra + "END:VCALENDAR\r\n";
    }

    std::string Task(int index) {
        std::string body = "UID:gen-" + std::to_string(o_.seed) + "-t" + std::to_string(index) +
                           "\r\nDTSTAMP:20260101T000000Z\r\nSUMMARY:" + Pick(kTasks) + "\r\n";
        const int shape = Uniform(0, 99);
        const DateTime due = RandomDay();
        if (shape >= 15)
            body += "DUE;VALUE=DATE:" + Stamp(due, false) + "\r\n";
        if (shape >= 70)
            body +=
                "DTSTART;VALUE=DATE:" + Stamp(due - DateTimeSpan(Uniform(1, 14), 0, 0, 0), false) + "\r\n";
        body += Chance(30) ? "STATUS:COMPLETED\r\n" : "STATUS:NEEDS-ACTION\r\n";
        body += "PRIORITY:" + std::to_string(Uniform(0, 9)) + "\r\n";
        const char* categories = Pick(kCategories);
        if (*categories)
            body += std::string("CATEGORIES:") + categories + "\r\n";
        return Wrap("VTODO", body) + "END:VCALENDAR\r\n";
    }

    std::string Contact(int index) {
        const bool four = Chance(40);
        std::string text = std::string("BEGIN:VCARD\r\nVERSION:") + (four ? "4.0" : "3.0") + "\r\nUID:gen-" +
                           std::to_string(o_.seed) + "-c" + std::to_string(index) + "\r\n";
        const std::string first = Pick(kFirstNames), last = Pick(kLastNames);
        text += "FN:" + first + " " + last + "\r\nN:" + last + ";" + first + ";;;\r\n";
        if (Chance(70)) {
            const DateTime born(Uniform(1940, 2020), Uniform(1, 12), Uniform(1, 28));
            char date[16];
            if (Chance(15))
                std::snprintf(date, sizeof date, "--%02d%02d", born.GetMonth(), born.GetDay());
            else if (four)
                std::snprintf(date, sizeof date, "%04d%02d%02d", born.GetYear(), born.GetMonth(),
                              born.GetDay());
            else
                std::snprintf(date, sizeof date, "%04d-%02d-%02d", born.GetYear(), born.GetMonth(),
                              born.GetDay());
            text += std::string("BDAY:") + date + "\r\n";
        }
        if (Chance(15)) {
            char date[16];
            std::snprintf(date, sizeof date, "%04d%02d%02d", Uniform(1970, 2024), Uniform(1, 12),
                          Uniform(1, 28));
            text += std::string(four ? "ANNIVERSARY:" : "X-ANNIVERSARY:") + date + "\r\n";
        }
        return text + "END:VCARD\r\n";
    }

    const StoreGeneratorOptions& o_;
    std::mt19937 random_;
    DateTime middle_;
};

bool WriteText(const std::string& path, const std::string& text) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file << text;
    return static_cast<bool>(file);
}

} // namespace

bool StoreGenerator::Generate(const StoreGeneratorOptions& options) {
    Generator g(options);
    const std::string calendar = options.root + "/calendar", tasks = options.root + "/tasks",
                      contacts = options.root + "/contacts";
    if (!Paths::MakeDirs(calendar) || !Paths::MakeDirs(tasks) || !Paths::MakeDirs(contacts))
        return false;
    const std::string prefix = "gen-" + std::to_string(options.seed);
    for (int i = 0; i < options.events; ++i)
        if (!WriteText(calendar + "/" + prefix + "-e" + std::to_string(i) + ".ics",
                       g.Event(i, i < options.series)))
            return false;
    for (int i = 0; i < options.tasks; ++i)
        if (!WriteText(tasks + "/" + prefix + "-t" + std::to_string(i) + ".ics", g.Task(i)))
            return false;
    for (int i = 0; i < options.contacts; ++i)
        if (!WriteText(contacts + "/" + prefix + "-c" + std::to_string(i) + ".vcf", g.Contact(i)))
            return false;
    return true;
}

} // namespace mirodate
