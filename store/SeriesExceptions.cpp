#include "store/SeriesExceptions.h"

#include "data/DateTime.h"
#include "data/RecurrenceLimits.h"
#include "store/IcalText.h"
#include "store/IcalTime.h"
#include "store/ItemFileLimits.h"
#include "store/RecurrenceRule.h"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>
#include <strings.h>

namespace mirodate {

namespace {

int DayKey(double date) {
    const DateTime d(date);
    return d.GetYear() * 10000 + d.GetMonth() * 100 + d.GetDay();
}

int DayKey(const icaltimetype& t) {
    return t.year * 10000 + t.month * 100 + t.day;
}

bool IsItem(icalcomponent* c) {
    const auto kind = icalcomponent_isa(c);
    return kind == ICAL_VEVENT_COMPONENT || kind == ICAL_VTODO_COMPONENT;
}

icalcomponent* FindMaster(icalcomponent* calendar) {
    for (icalcomponent* c = icalcomponent_get_first_component(calendar, ICAL_ANY_COMPONENT); c;
         c = icalcomponent_get_next_component(calendar, ICAL_ANY_COMPONENT))
        if (IsItem(c) && !icalcomponent_get_first_property(c, ICAL_RECURRENCEID_PROPERTY))
            return c;
    return nullptr;
}

bool SameUid(icalcomponent* a, icalcomponent* b) {
    const char* x = icalcomponent_get_uid(a);
    const char* y = icalcomponent_get_uid(b);
    return std::string(x ? x : "") == std::string(y ? y : "");
}

std::vector<icalcomponent*> Overrides(icalcomponent* calendar, icalcomponent* master) {
    std::vector<icalcomponent*> found;
    for (icalcomponent* c = icalcomponent_get_first_component(calendar, ICAL_ANY_COMPONENT); c;
         c = icalcomponent_get_next_component(calendar, ICAL_ANY_COMPONENT))
        if (c != master && IsItem(c) && icalcomponent_get_first_property(c, ICAL_RECURRENCEID_PROPERTY) &&
            SameUid(c, master))
            found.push_back(c);
    return found;
}

bool LocalStart(icalproperty* p, icalcomponent* owner, double& date) {
    return IcalTime::ToLocalDate(icalproperty_get_datetime_with_component(p, owner), date);
}

// The days of `wanted` (sorted day keys) that the rule of `pattern` reaches.
std::vector<int> DaysOnPattern(const RecurrencePattern& pattern, double start,
                               const std::vector<int>& wanted) {
    std::vector<int> hits;
    if (wanted.empty())
        return hits;
    const DateTime first = DateTime(start).StartOfDay();
    const std::string text = RecurrenceRule::FromPattern(RecurrenceLimits::Normalise(pattern, first), true);
    if (text.empty())
        return hits;
    icalerror_clear_errno();
    const icalrecurrencetype rule = icalrecurrencetype_from_string(text.c_str());
    icalerror_clear_errno();
    if (rule.freq == ICAL_NO_RECURRENCE)
        return hits;
    icaltimetype dtstart = IcalTime::FromLocalDate(first.ToDate(), true, nullptr);
    IcalRecurIteratorPtr iterator{icalrecur_iterator_new(rule, dtstart)};
    if (!iterator)
        return hits;
    auto next = wanted.begin();
    // The series' own start is an occurrence even where the rule skips it.
    const int startKey = DayKey(dtstart);
    bool ended = false;
    for (int step = 0; step < SeriesExceptions::kMaxSteps && next != wanted.end(); ++step) {
        icaltimetype occurrence = icalrecur_iterator_next(iterator.get());
        if (icaltime_is_null_time(occurrence)) {
            ended = true;
            break;
        }
        const int key = step == 0 ? std::min(startKey, DayKey(occurrence)) : DayKey(occurrence);
        while (next != wanted.end() && *next < key)
            ++next;
        if (next != wanted.end() && *next == key)
            hits.push_back(key);
    }
    // Days past the walk's bound are not judged: they stay.
    if (!ended)
        hits.insert(hits.end(), next, wanted.end());
    return hits;
}

} // namespace

std::vector<double> SeriesExceptions::Read(std::string_view ics) {
    std::vector<double> starts;
    IcalComponentPtr calendar = IcalText::Parse(ics);
    if (!calendar)
        return starts;
    icalcomponent* root = calendar.get();
    if (icalcomponent_isa(root) != ICAL_VCALENDAR_COMPONENT)
        if (icalcomponent* inner = icalcomponent_get_first_component(root, ICAL_VCALENDAR_COMPONENT))
            root = inner;
    icalcomponent* master = FindMaster(root);
    if (!master)
        return starts;
    for (icalproperty* p = icalcomponent_get_first_property(master, ICAL_EXDATE_PROPERTY); p;
         p = icalcomponent_get_next_property(master, ICAL_EXDATE_PROPERTY))
        if (double date = 0.0; LocalStart(p, master, date))
            starts.push_back(date);
    for (icalcomponent* c : Overrides(root, master))
        if (double date = 0.0;
            LocalStart(icalcomponent_get_first_property(c, ICAL_RECURRENCEID_PROPERTY), c, date))
            starts.push_back(date);
    std::sort(starts.begin(), starts.end());
    starts.erase(std::unique(starts.begin(), starts.end()), starts.end());
    return starts;
}

std::vector<double> SeriesExceptions::ReadFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in)
        return {};
    in.seekg(0, std::ios::end);
    const std::streamoff size = in.tellg();
    if (size < 0 || !ItemFileLimits::CheckSize(size).empty())
        return {};
    in.seekg(0);
    std::string text(static_cast<size_t>(size), '\0');
    if (!in.read(text.data(), size) || !ItemFileLimits::CheckText(text).empty())
        return {};
    return Read(text);
}

std::vector<double> SeriesExceptions::Dropped(const RecurrencePattern& pattern, double start,
                                              const std::vector<double>& exceptions) {
    if (pattern.RecurrenceType == RecurrencePattern::kNotRecurring)
        return exceptions;
    std::vector<int> keys;
    for (double e : exceptions)
        keys.push_back(DayKey(e));
    std::sort(keys.begin(), keys.end());
    keys.erase(std::unique(keys.begin(), keys.end()), keys.end());
    const std::vector<int> kept = DaysOnPattern(pattern, start, keys);
    std::vector<double> dropped;
    for (double e : exceptions)
        if (!std::binary_search(kept.begin(), kept.end(), DayKey(e)))
            dropped.push_back(e);
    return dropped;
}

int SeriesExceptions::Drop(icalcomponent* calendar, icalcomponent* master, const RecurrencePattern& pattern,
                           double start) {
    struct Candidate {
        double date;
        icalproperty* exdate;
        icalcomponent* moved;
    };
    std::vector<Candidate> candidates;
    for (icalproperty* p = icalcomponent_get_first_property(master, ICAL_EXDATE_PROPERTY); p;
         p = icalcomponent_get_next_property(master, ICAL_EXDATE_PROPERTY))
        if (double date = 0.0; LocalStart(p, master, date))
            candidates.push_back({date, p, nullptr});
    for (icalcomponent* c : Overrides(calendar, master))
        if (double date = 0.0;
            LocalStart(icalcomponent_get_first_property(c, ICAL_RECURRENCEID_PROPERTY), c, date))
            candidates.push_back({date, nullptr, c});
    std::vector<double> dates;
    for (const Candidate& c : candidates)
        dates.push_back(c.date);
    const std::vector<double> dropped = Dropped(pattern, start, dates);
    int removed = 0;
    for (const Candidate& c : candidates) {
        if (std::find(dropped.begin(), dropped.end(), c.date) == dropped.end())
            continue;
        if (c.exdate) {
            icalcomponent_remove_property(master, c.exdate);
            icalproperty_free(c.exdate);
        } else {
            icalcomponent_remove_component(calendar, c.moved);
            icalcomponent_free(c.moved);
        }
        ++removed;
    }
    return removed;
}

std::string SeriesExceptions::RawRuleLine(std::string_view ics) {
    // Unfolded content lines, with the nesting of components followed so that
    // the RRULE of an override or an alarm is not taken for the series'.
    std::string line, rule;
    int depth = 0;
    bool inItem = false, itemIsOverride = false, found = false;
    std::string itemRule;
    auto nameIs = [&](const char* name) {
        const size_t n = std::strlen(name);
        return line.size() > n && strncasecmp(line.c_str(), name, n) == 0 &&
               (line[n] == ':' || line[n] == ';');
    };
    auto finish = [&] {
        if (line.empty())
            return;
        if (strncasecmp(line.c_str(), "BEGIN:", 6) == 0) {
            ++depth;
            const std::string kind = line.substr(6);
            if (depth == 2 &&
                (strcasecmp(kind.c_str(), "VEVENT") == 0 || strcasecmp(kind.c_str(), "VTODO") == 0)) {
                inItem = true;
                itemIsOverride = false;
                itemRule.clear();
            }
        } else if (strncasecmp(line.c_str(), "END:", 4) == 0) {
            if (depth == 2 && inItem) {
                inItem = false;
                if (!itemIsOverride && !found) {
                    rule = itemRule;
                    found = true;
                }
            }
            --depth;
        } else if (inItem && depth == 2) {
            if (nameIs("RECURRENCE-ID"))
                itemIsOverride = true;
            else if (nameIs("RRULE") && itemRule.empty())
                itemRule = line;
        }
        line.clear();
    };
    size_t i = 0;
    while (i < ics.size() && !found) {
        const size_t end = ics.find('\n', i);
        std::string_view piece =
            ics.substr(i, end == std::string_view::npos ? std::string_view::npos : end - i);
        if (!piece.empty() && piece.back() == '\r')
            piece.remove_suffix(1);
        if (!piece.empty() && (piece.front() == ' ' || piece.front() == '\t')) {
            line.append(piece.substr(1));
        } else {
            finish();
            line.assign(piece);
        }
        if (end == std::string_view::npos)
            break;
        i = end + 1;
    }
    finish();
    return rule;
}

} // namespace mirodate
