#include "views/ItemDetailDocument.h"

#include "data/RecurrenceDescriber.h"
#include "lang/LanguageTable.h"
#include "platform/Locale.h"
#include "skin/SkinStyles.h"
#include "views/ItemTexts.h"

#include <cstdio>

namespace mirodate {

namespace {

// The detail view's own text colour when the skin gives none.
constexpr char16_t kDefaultTextColor[] = u"#000000";
constexpr char16_t kPersonSeparator = u'~';
constexpr char16_t kFieldSeparator = u'|';

// User text never opens a tag; line ends become line breaks.
std::u16string PlainToMarkup(const std::u16string& text) {
    std::u16string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t c = text[i];
        if (c == u'<')
            out += u"&lt;";
        else if (c == u'\r') {
            out += u"<br>";
            if (i + 1 < text.size() && text[i + 1] == u'\n')
                ++i;
        } else if (c == u'\n')
            out += u"<br>";
        else
            out += c;
    }
    return out;
}

std::u16string Font(const std::u16string& color, const std::u16string& inner) {
    return u"<font color='" + color + u"'>" + inner + u"</font>";
}

std::u16string AttendeeBlock(const std::u16string& data, const Linkifier& linkifier) {
    if (data.empty())
        return {};
    const std::vector<ItemDetailDocument::Attendee> people = ItemDetailDocument::SplitAttendees(data);
    if (data == ItemDetailDocument::kAttendeesNotLoaded)
        return u"<br>0 " + Lang("Attendees") + u"<br>";
    std::u16string list;
    for (const auto& person : people) {
        if (!list.empty())
            list += u"\n";
        list += person.name + u" (" + person.address + u")";
    }
    return u"<br>" + Lang("Attendees") + u":<br>" + ItemDetailDocument::Linkify(list, linkifier) + u"<br>";
}

std::u16string Appointment(const PimRecord& record, const PimItem& item, const ItemDetailColors& colors,
                           const Linkifier& linkifier) {
    const std::u16string memo = ItemDetailDocument::MemoColor(colors.memoText);
    const std::u16string location =
        record.location.empty() ? u"" : ItemDetailDocument::Linkify(record.location, linkifier) + u"<br>";
    const std::u16string time = ItemDetailDocument::TimeText(item);
    const std::u16string repeats =
        record.isRecurring ? RecurrenceDescriber::Describe(record.recurrence) : Lang("Once");
    const std::u16string categories =
        record.categories.empty() ? Lang("filter.NoCategories") : PlainToMarkup(record.categories);
    const std::u16string notes =
        record.body.empty()
            ? Font(memo, u"")
            : Font(memo, u"<br><i>" + ItemDetailDocument::Linkify(record.body, linkifier) + u"</i><br><br>");
    return Font(colors.text, u"<b>" + ItemDetailDocument::Linkify(record.subject, linkifier) + u"</b><br>" +
                                 location + u"<i>" + time + (time.empty() ? u"" : u"<br>") + u"(" + repeats +
                                 u", " + categories + u")</i><br>" +
                                 AttendeeBlock(record.attendees, linkifier) + u"<br>" + notes);
}

std::u16string Task(const PimRecord& record, const PimItem& item, const ItemDetailColors& colors,
                    const Linkifier& linkifier) {
    const std::u16string memo = ItemDetailDocument::MemoColor(colors.memoText);
    std::u16string due = ItemTexts::DueText(item, DateTime::Today());
    if (due.empty())
        due = Lang("Tasks");
    if (record.complete)
        due = u"<s>" + due + u"</s>";
    const std::u16string categories = PlainToMarkup(record.categories);
    const std::u16string title =
        Font(colors.text, u"<b><u>" + ItemDetailDocument::Linkify(record.subject, linkifier) + u"</u></b>");
    const std::u16string block =
        record.body.empty()
            ? Font(memo, u"<b>" + due + u"</b><br>" + categories + u"<br>")
            : Font(memo, u"<b>" + due + u"</b><br><i>" + ItemDetailDocument::Linkify(record.body, linkifier) +
                             u"</i><br><br>" + categories);
    return title + u"<br>" + block;
}

} // namespace

ItemDetailColors ItemDetailColors::FromSkin() {
    const ItemDetailStyle& style = SkinStyles::Current().itemDetailView;
    ItemDetailColors colors;
    colors.text = style.colorText.empty() ? std::u16string(kDefaultTextColor) : style.colorText;
    colors.memoText = style.colorMemoText;
    return colors;
}

std::u16string ItemDetailDocument::Build(const PimRecord& record, const PimItem& item,
                                         const ItemDetailColors& colors, const Linkifier& linkifier) {
    return item.IsTask() ? Task(record, item, colors, linkifier)
                         : Appointment(record, item, colors, linkifier);
}

std::u16string ItemDetailDocument::MemoColor(COLORREF color) {
    char text[16];
    std::snprintf(text, sizeof text, "#%2x%2x%2x", GetRValue(color), GetGValue(color), GetBValue(color));
    return std::u16string(text, text + std::char_traits<char>::length(text));
}

std::vector<ItemDetailDocument::Attendee> ItemDetailDocument::SplitAttendees(const std::u16string& text) {
    std::vector<Attendee> people;
    std::size_t start = 0;
    while (start < text.size()) {
        std::size_t end = text.find(kPersonSeparator, start);
        if (end == std::u16string::npos)
            end = text.size();
        const std::u16string entry = text.substr(start, end - start);
        if (!entry.empty()) {
            const std::size_t bar = entry.find(kFieldSeparator);
            Attendee person{entry.substr(0, bar), {}};
            if (bar != std::u16string::npos) {
                const std::size_t next = entry.find(kFieldSeparator, bar + 1);
                person.address = entry.substr(bar + 1, next == std::u16string::npos ? next : next - bar - 1);
            }
            people.push_back(std::move(person));
        }
        start = end + 1;
    }
    return people;
}

std::u16string ItemDetailDocument::Linkify(const std::u16string& text, const Linkifier& linkifier) {
    std::u16string markup = PlainToMarkup(text);
    linkifier.Run(markup);
    return markup;
}

std::u16string ItemDetailDocument::TimeText(const PimItem& item) {
    if (item.IsTask())
        return {};
    const DateTime start(item.startValue);
    const bool oneDay = item.isAllDay ? item.endValue - item.startValue <= 1.0
                                      : start.StartOfDay() == DateTime(item.endValue).StartOfDay();
    const std::u16string range = ItemTexts::TimeRange(item);
    if (!oneDay)
        return range;
    const DateTime noon(start.GetYear(), start.GetMonth(), start.GetDay(), 12, 0, 0);
    return Locale::FormatDatePicture(noon.ToSystemTime(), u"dddd',' d MMMM yyyy") + u", " + range;
}

} // namespace mirodate
