#include "forms/AppointmentSaver.h"

#include "data/PimFolder.h"
#include "data/PimNotification.h"
#include "data/PimStore.h"
#include "data/TemplateLists.h"
#include "lang/LanguageTable.h"
#include "platform/Locale.h"
#include "platform/Log.h"
#include "platform/PlatformServices.h"
#include "platform/TextUtil.h"
#include "ui/MessagePage.h"
#include "ui/RegisteredMessages.h"
#include "ui/WinApi.h"

namespace mirodate {

namespace {
PimSource* Source() {
    return PimStore::Instance().Source();
}

void Tell(HWND owner, const char* key) {
    ItemSaver::Tell(owner, key);
}
} // namespace

bool AppointmentSaver::ChangedSinceRead(const AppointmentDraft& draft, const PimRecord& current) {
    PimRecord read = draft.Original();
    PimRecord now = current;
    if (draft.GetMode() == AppointmentDraft::Mode::Occurrence) {
        // The editor shows the occurrence's times; the store gives the series'.
        read.start = now.start;
        read.end = now.end;
    }
    return !(read == now);
}

AppointmentSaver::Outcome AppointmentSaver::Save(HWND owner, AppointmentDraft& draft) {
    if (const std::string problem = draft.Problem(); !problem.empty()) {
        Tell(owner, problem.c_str());
        return Outcome::Stay;
    }
    PimSource* source = Source();
    if (!source) {
        Tell(owner, "ItemNotSaved");
        return Outcome::Stay;
    }
    if (draft.GetMode() == AppointmentDraft::Mode::New)
        return WriteNew(owner, draft);

    const std::int32_t oid = draft.Original().oid;
    PimRecord current;
    if (!source->GetItemFromOid(oid, current))
        return OnDeleted(owner, draft);
    if (ChangedSinceRead(draft, current))
        return OnChangedOnDisk(owner, draft);
    if (!draft.IsChanged())
        return Outcome::Saved;

    // A series whose pattern the user did not change keeps its rule as
    // written: the store compares the pattern with the one it read.
    PimRecord record = draft.Record();
    const SaveResult result = draft.GetMode() == AppointmentDraft::Mode::Occurrence
                                  ? source->SaveOccurrence(oid, draft.OccurrenceStart(), &record)
                                  : source->Save(record, kFolderCalendar);
    switch (result) {
    case SaveResult::Saved:
        AfterSave(owner, draft, oid);
        return Outcome::Saved;
    case SaveResult::ChangedOnDisk:
        Announce(oid, source->GetItemKind(oid) == 0);
        return source->GetItemKind(oid) == 0 ? OnDeleted(owner, draft) : OnChangedOnDisk(owner, draft);
    case SaveResult::NotFound:
        return OnDeleted(owner, draft);
    case SaveResult::Failed:
        break;
    }
    Tell(owner, "ItemNotSaved");
    return Outcome::Stay;
}

AppointmentSaver::Outcome AppointmentSaver::WriteNew(HWND owner, AppointmentDraft& draft) {
    PimRecord record = draft.Record();
    record.oid = -1;
    record.uid.clear();
    record.itemKind = kItemAppointment;
    if (draft.GetMode() == AppointmentDraft::Mode::Occurrence) {
        // The occurrence alone stands as an item of its own.
        record.isRecurring = false;
        record.recurrence = RecurrencePattern{};
    }
    if (Source()->Save(record, kFolderCalendar) != SaveResult::Saved) {
        Tell(owner, "ItemNotSaved");
        return Outcome::Stay;
    }
    AfterSave(owner, draft, record.oid);
    return Outcome::Saved;
}

AppointmentSaver::Outcome AppointmentSaver::OnChangedOnDisk(HWND owner, AppointmentDraft& draft) {
    return ItemSaver::ChangedOnDisk(owner, draft.Original().oid, kFolderCalendar, "editor.ChangedOnDisk");
}

AppointmentSaver::Outcome AppointmentSaver::OnDeleted(HWND owner, AppointmentDraft& draft) {
    switch (ItemSaver::Deleted(owner, draft.Original().oid, kFolderCalendar, "editor.ItemDeleted")) {
    case ItemSaver::DeletedChoice::SaveAsNew:
        return WriteNew(owner, draft);
    case ItemSaver::DeletedChoice::Discard:
        return Outcome::Discard;
    case ItemSaver::DeletedChoice::Stay:
        break;
    }
    return Outcome::Stay;
}

void AppointmentSaver::AfterSave(HWND owner, const AppointmentDraft& draft, std::int32_t oid) {
    const PimRecord& record = draft.Record();
    // Every location typed into a saved appointment is offered next time.
    if (!record.location.empty())
        TemplateLists::AddLocation(record.location);
    Announce(oid, false);
    if (draft.AttendeesChanged() && !AppointmentDraft::SplitPeople(record.attendees).empty() &&
        MessagePage::YesNo(owner, Lang("QuestionNotifyAttendees")))
        NotifyAttendees(owner, record);
}

void AppointmentSaver::NotifyAttendees(HWND owner, const PimRecord& record) {
    std::vector<std::string> addresses;
    for (const auto& person : AppointmentDraft::SplitPeople(record.attendees))
        if (person.address.find(u'@') != std::u16string::npos)
            addresses.push_back(Utf16ToUtf8(person.address));
    if (addresses.empty())
        return;
    const DateTime start(record.start), end(record.end);
    std::u16string when = Locale::FormatShortDate(start.ToSystemTime());
    if (!record.allDay)
        when += u" " + Locale::FormatShortTime(start.ToSystemTime()) + u" - " +
                Locale::FormatShortTime(end.ToSystemTime());
    std::u16string body = record.subject + u"\n" + when;
    if (!record.location.empty())
        body += u"\n" + record.location;
    if (!PlatformServices::Instance().SendMailTo(addresses, Utf16ToUtf8(record.subject), Utf16ToUtf8(body)))
        Tell(owner, "editor.MailNotStarted");
}

void AppointmentSaver::RemoveCopy(std::int32_t oid) {
    ItemSaver::RemoveCopy(oid, kFolderCalendar);
}

void AppointmentSaver::Announce(std::int32_t oid, bool deleted) {
    ItemSaver::Announce(oid, deleted, kFolderCalendar);
}

} // namespace mirodate
