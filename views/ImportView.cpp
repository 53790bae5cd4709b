#include "views/ImportView.h"

#include "data/PimFolder.h"
#include "data/PimStore.h"
#include "lang/LanguageTable.h"
#include "platform/Log.h"
#include "platform/TextUtil.h"
#include "skin/SkinStyles.h"
#include "store/VdirSource.h"
#include "ui/MessagePage.h"
#include "ui/Scale.h"
#include "ui/WinApi.h"
#include "views/DayHeaderRow.h"
#include "views/ItemRow.h"
#include "views/MessageRow.h"

#include <algorithm>
#include <memory>

namespace mirodate {

namespace {
// One hour, as a DATE span: the length an imported event is shown with.
constexpr double kShownLength = 1.0 / 24.0;

std::u16string WithCount(std::u16string text, int count) {
    const size_t at = text.find(u"%s");
    const std::u16string number = Utf8ToUtf16(std::to_string(count));
    if (at != std::u16string::npos)
        text.replace(at, 2, number);
    return text;
}

PimItem RowItem(const ImportItem& source) {
    PimItem item;
    item.subject = source.subject;
    item.oid = -1;
    if (source.folder == kFolderTasks) {
        item.type = PimItem::kTypeTask;
        item.SetTaskDates(kNoDate, source.start > 0 ? source.start : kNoDate);
    } else {
        const DateTime start(source.start);
        item.SetTimes(start, source.allDay ? start + DateTimeSpan(1, 0, 0, 0)
                                           : DateTime(source.start + kShownLength));
        item.isAllDay = source.allDay;
        item.isRecurring = source.recurring;
    }
    return item;
}

VdirSource* StoreSource() {
    return dynamic_cast<VdirSource*>(PimStore::Instance().Source());
}
} // namespace

ImportView::ImportView(std::string path)
    : ViewPage(SkinStyles::Current().agendaView), path_(std::move(path)) {
    // The file is read away from the window, which shows "Reading" meanwhile.
    reading_ = std::async(std::launch::async, [path = path_] {
        IcsImport::Parsed parsed;
        const IcsImport::Result result = IcsImport::ReadFile(path, parsed);
        return std::make_pair(result, std::move(parsed));
    });
}

ImportView::~ImportView() {
    cancel_ = true;
    if (reading_.valid())
        reading_.wait();
    if (writing_.valid())
        writing_.wait();
}

DateTime ImportView::CurrentDate() const {
    return DateTime::Today();
}

std::vector<MenuBarEntry> ImportView::MenuEntries() const {
    return {{"ImportAdd", MenuBarIcon::New}, {"Back", MenuBarIcon::Back}};
}

std::u16string ImportView::Title() const {
    if (phase_ == Phase::Reading)
        return Lang("ImportTitle");
    return Lang("ImportTitle") + u" (" + Utf8ToUtf16(std::to_string(items_.size())) + u")";
}

RECT ImportView::ProgressRect() const {
    const int height = Scale(kProgressHeight);
    return {listArea_.left, listArea_.bottom - height, listArea_.right, listArea_.bottom};
}

void ImportView::LayoutLists(const RECT& area) {
    listArea_ = area;
    RECT list = area;
    // While writing, the bottom strip is the progress bar.
    if (phase_ == Phase::Writing)
        list.bottom = ProgressRect().top;
    MoveWindow(list_.GetHwnd(), list.left, list.top, list.Width(), list.Height(), true);
}

void ImportView::ShowText(const std::u16string& text) {
    BeginFill(list_);
    list_.AddItem(std::make_unique<MessageRow>(look_, text, DateTime::Today().ToDate()));
    EndFill(list_);
}

void ImportView::Reload() {
    if (!window)
        return;
    if (phase_ == Phase::Reading) {
        ShowText(Lang("ImportReading"));
        SetTimer(window, kReadTimer, kReadPeriod);
        return;
    }
    // While writing, the rows wait for the end: one fill, not one per file.
    if (phase_ == Phase::Failed || phase_ == Phase::Writing)
        return;
    VdirSource* source = StoreSource();
    existing_.assign(items_.size(), false);
    BeginFill(list_);
    const std::u16string update = Lang("ImportUpdate");
    double shownDay = -1.0;
    for (std::size_t i = 0; i < items_.size(); ++i) {
        existing_[i] = source && source->HasUid(items_[i].uid);
        const PimItem item = RowItem(items_[i]);
        const DateTime start(items_[i].start);
        const double day =
            items_[i].start > 0 ? DateTime(start.GetYear(), start.GetMonth(), start.GetDay()).ToDate() : 0.0;
        // The items of a day stand under its header, as in the agenda.
        if (day > 0 && day != shownDay)
            list_.AddItem(std::make_unique<DayHeaderRow>(look_, day, u""));
        shownDay = day;
        auto row = std::make_unique<ItemRow>(look_, item, day);
        if (existing_[i])
            row->SetMark(update);
        list_.AddItem(std::move(row));
    }
    EndFill(list_);
}

void ImportView::OnRead(IcsImport::Result result, IcsImport::Parsed parsed) {
    switch (result) {
    case IcsImport::Result::Ok:
        items_ = std::move(parsed.items);
        // Shown by date like the agenda; items without one come last.
        std::stable_sort(items_.begin(), items_.end(), [](const ImportItem& a, const ImportItem& b) {
            return (a.start > 0 ? a.start : 1e9) < (b.start > 0 ? b.start : 1e9);
        });
        droppedAlarms_ = parsed.droppedAlarms;
        phase_ = Phase::Ready;
        title_.SetLabel(Title());
        Reload();
        return;
    case IcsImport::Result::Empty:
        ShowText(Lang("ImportEmpty"));
        break;
    case IcsImport::Result::TooLarge:
        ShowText(Lang("ImportTooLarge"));
        break;
    case IcsImport::Result::Unreadable:
        ShowText(Lang("ImportUnreadable"));
        break;
    case IcsImport::Result::NotCalendar:
        ShowText(Lang("ImportNotCalendar"));
        break;
    }
    Log::Warning("import: %s could not be imported (%d)", path_.c_str(), static_cast<int>(result));
    phase_ = Phase::Failed;
}

void ImportView::OnTimer(UINT_PTR id) {
    if (id == kReadTimer) {
        if (!reading_.valid() || reading_.wait_for(std::chrono::seconds(0)) != std::future_status::ready)
            return;
        KillTimer(window, kReadTimer);
        auto [result, parsed] = reading_.get();
        OnRead(result, std::move(parsed));
        return;
    }
    if (id == kProgressTimer) {
        OnProgress();
        return;
    }
    ViewPage::OnTimer(id);
}

void ImportView::OnMenuButton(const std::string& key) {
    if (key == "ImportAdd")
        AddToCalendar();
}

void ImportView::AddToCalendar() {
    if (phase_ != Phase::Ready || items_.empty() || !StoreSource())
        return;
    phase_ = Phase::Writing;
    progress_ = 0;
    shownProgress_ = 0;
    writtenSoFar_ = failedSoFar_ = 0;
    LayoutLists(listArea_);
    InvalidateRect(window, nullptr, false);
    if (HWND owner = GetParent(window))
        PostMessage(owner, RegisterWindowMessage(kBulkChangeMessageName), 1, 0);
    // items_ stays untouched by the window until the worker has ended.
    writing_ = std::async(std::launch::async, [this] { WriteAll(); });
    SetTimer(window, kProgressTimer, kProgressPeriod);
}

void ImportView::WriteAll() {
    VdirSource* source = StoreSource();
    std::vector<VdirSource::ImportFile> files;
    for (std::size_t next = 0; source && next < items_.size() && !cancel_;) {
        const std::size_t end = std::min(items_.size(), next + kBatchItems);
        files.clear();
        for (std::size_t i = next; i < end; ++i)
            files.push_back({items_[i].folder, items_[i].uid, items_[i].text});
        for (SaveResult result : source->ImportFiles(files))
            (result == SaveResult::Saved ? writtenSoFar_ : failedSoFar_)++;
        next = end;
        progress_ = next;
    }
}

void ImportView::OnProgress() {
    const bool done =
        writing_.valid() && writing_.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
    const std::size_t progress = progress_;
    if (progress != shownProgress_) {
        shownProgress_ = progress;
        const RECT bar = ProgressRect();
        InvalidateRect(window, &bar, false);
        if (progressObserver_)
            progressObserver_(static_cast<int>(progress), static_cast<int>(items_.size()));
    }
    if (!done)
        return;
    writing_.get();
    written_ = writtenSoFar_;
    failed_ = failedSoFar_ + static_cast<int>(items_.size() - std::min(items_.size(), progress_.load()));
    Finish();
}

void ImportView::Finish() {
    KillTimer(window, kProgressTimer);
    phase_ = Phase::Done;
    if (HWND owner = GetParent(window))
        PostMessage(owner, RegisterWindowMessage(kBulkChangeMessageName), 0, 0);
    LayoutLists(listArea_);
    Reload();
    std::u16string message = WithCount(Lang("ImportDone"), written_);
    if (failed_ > 0)
        message += u"\n" + WithCount(Lang("ImportFailed"), failed_);
    if (droppedAlarms_ > 0)
        message += u"\n" + WithCount(Lang("ImportAlarmsDropped"), droppedAlarms_);
    MessagePage::Tell(window, message);
}

void ImportView::OnPaint(HDC dc) {
    ViewPage::OnPaint(dc);
    if (!dc || phase_ != Phase::Writing || items_.empty())
        return;
    const RECT bar = ProgressRect();
    dc->FillRect(bar, look_.separator);
    RECT done = bar;
    done.right =
        bar.left + static_cast<int>(static_cast<long long>(bar.Width()) * shownProgress_ / items_.size());
    dc->FillRect(done, look_.selection);
}

void ImportView::OnRowTap(ViewRow&, int, int) {
    // The rows are a preview; the items open once they are in the calendar.
}

void ImportView::OnListHold(int) {}

} // namespace mirodate
