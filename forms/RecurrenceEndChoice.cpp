#include "forms/RecurrenceEndChoice.h"

#include "data/DateTime.h"
#include "forms/AppointmentDraft.h"
#include "forms/DatePickerPage.h"
#include "forms/TextEntryPage.h"
#include "lang/LanguageTable.h"
#include "platform/TextUtil.h"
#include "ui/MessagePage.h"

#include <algorithm>
#include <cstdlib>

namespace mirodate {

namespace {
constexpr std::size_t kCountDigits = 3;
}

std::optional<RecurrenceEndChoice::End> RecurrenceEndChoice::Ask(HWND owner, std::string_view key,
                                                                 const RecurrencePattern& pattern,
                                                                 double seriesStart) {
    if (key == "SetOccurrences") {
        const int current = std::max(1, pattern.Occurrences);
        const auto text =
            TextEntryPage::Edit(owner, Lang("SetOccurrences"), ToU16(current), false, kCountDigits);
        if (!text)
            return std::nullopt;
        const int count = std::atoi(Utf16ToUtf8(*text).c_str());
        if (count < 1 || count > kMaxOccurrences) {
            MessagePage::Tell(owner, Lang("editor.BadCount"));
            return std::nullopt;
        }
        return End{count, 0.0};
    }
    if (key == "SetPatternEndDate") {
        const double end = pattern.PatternEndDate;
        const auto date = DatePickerPage::Pick(owner, DateTime(end > 0.0 ? end : seriesStart));
        if (!date)
            return std::nullopt;
        if (!date->IsValid() || date->GetYear() < AppointmentDraft::kFirstYear ||
            date->GetYear() > AppointmentDraft::kLastYear) {
            MessagePage::Tell(owner, Lang("editor.DateOutOfRange"));
            return std::nullopt;
        }
        if (date->StartOfDay().ToDate() < DateTime(seriesStart).StartOfDay().ToDate()) {
            MessagePage::Tell(owner, Lang("editor.EndBeforeStart"));
            return std::nullopt;
        }
        return End{0, date->StartOfDay().ToDate()};
    }
    return End{};
}

} // namespace mirodate
