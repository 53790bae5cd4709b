#include "app/StoreCommands.h"

#include "data/DateTime.h"
#include "data/PimStore.h"
#include "platform/Clock.h"
#include "platform/Settings.h"
#include "platform/TextUtil.h"
#include "store/DemoData.h"
#include "store/IcsExport.h"
#include "store/VdirSource.h"

#include <cstdio>
#include <fstream>
#include <memory>
#include <set>
#include <string>
#include <unistd.h>

namespace mirodate {

namespace {

// Longest --list range; a longer one is almost certainly a typing error.
constexpr int kMaxListDays = 366 * 100;

bool ParseIsoDate(const std::string& text, DateTime& date) {
    if (text.size() != 10 || text[4] != '-' || text[7] != '-')
        return false;
    for (std::size_t i : {0, 1, 2, 3, 5, 6, 8, 9})
        if (text[i] < '0' || text[i] > '9')
            return false;
    date = DateTime(std::stoi(text.substr(0, 4)), std::stoi(text.substr(5, 2)), std::stoi(text.substr(8, 2)));
    return date.IsValid();
}

std::string StoreRoot(const ProgramOptions& options) {
    return options.storeDir.empty() ? VdirSource::DefaultRoot() : options.storeDir;
}

void AppendLine(std::string& out, const DateTime& day, const PimItem& item) {
    char head[64];
    std::snprintf(head, sizeof head, "%04d-%02d-%02d ", day.GetYear(), day.GetMonth(), day.GetDay());
    out += head;
    if (item.IsTask()) {
        out += item.isComplete ? "task [x] " : "task [ ] ";
    } else if (item.kind == PimItem::kBirthday) {
        out += "birthday ";
    } else if (item.kind == PimItem::kAnniversary) {
        out += "anniversary ";
    } else if (item.isAllDay) {
        out += "allday ";
    } else {
        char times[32];
        std::snprintf(times, sizeof times, "%02d:%02d-%02d:%02d ", item.start.wHour, item.start.wMinute,
                      item.end.wHour, item.end.wMinute);
        out += times;
    }
    if (item.isCancelled)
        out += "cancelled ";
    // One line per item, whatever the subject holds.
    std::string subject = Utf16ToUtf8(item.subject);
    for (char& c : subject)
        if (c == '\n' || c == '\r')
            c = ' ';
    out += subject;
    out += '\n';
}

} // namespace

bool StoreCommands::Wanted(const ProgramOptions& options) {
    return options.demo || options.list || options.exportGiven;
}

int StoreCommands::Run(const ProgramOptions& options) {
    if (options.demo) {
        const int status = Demo(options);
        if (status != 0 || !options.list)
            return status;
    }
    if (options.list)
        return List(options);
    return Export(options);
}

int StoreCommands::List(const ProgramOptions& options) {
    DateTime from, to;
    if (!ParseIsoDate(options.listFrom, from) || !ParseIsoDate(options.listTo, to)) {
        std::fprintf(stderr, "mirodate: --list wants two dates as YYYY-MM-DD, got \"%s\" \"%s\"\n",
                     options.listFrom.c_str(), options.listTo.c_str());
        return 2;
    }
    if (to < from || (to - from).GetDays() > kMaxListDays) {
        std::fprintf(stderr, "mirodate: --list range %s to %s is not a range of at most 100 years\n",
                     options.listFrom.c_str(), options.listTo.c_str());
        return 2;
    }
    const std::string root = StoreRoot(options);
    PimStore& store = PimStore::Instance();
    auto source = std::make_unique<VdirSource>(root);
    VdirSource& vdir = *source;
    if (!store.Open(std::move(source))) {
        std::fprintf(stderr, "mirodate: cannot read the store at %s\n", root.c_str());
        return 2;
    }
    store.SetFilters(Settings::GetExcludeFilter(), Settings::GetLastFilter(),
                     Settings::GetHideCompleteTasks(), Settings::GetShowContactsBirthdays(),
                     Settings::GetShowContactsAnniversaries());
    // The listing is the agenda as text: tasks appear when the agenda shows them.
    const bool withTasks = Settings::IsTaskViewEnabled(u"Agenda");
    std::string out;
    std::vector<PimItem> items;
    for (DateTime day = from; day <= to; day += DateTimeSpan(1.0)) {
        items.clear();
        store.GetDayAppointments(day.GetYear(), day.GetMonth(), day.GetDay(), items);
        if (withTasks)
            store.GetDayTasks(day.GetYear(), day.GetMonth(), day.GetDay(), items);
        for (const PimItem& item : items)
            AppendLine(out, day, item);
        if (out.size() > (1u << 16)) {
            std::fwrite(out.data(), 1, out.size(), stdout);
            out.clear();
        }
    }
    std::fwrite(out.data(), 1, out.size(), stdout);
    std::fflush(stdout);
    // The program may end without closing the store (see main).
    vdir.SaveIndexIfChanged();
    return 0;
}

int StoreCommands::Export(const ProgramOptions& options) {
    DateTime from, to;
    if (!ParseIsoDate(options.exportFrom, from) || !ParseIsoDate(options.exportTo, to) || to < from ||
        (to - from).GetDays() > kMaxListDays) {
        std::fprintf(stderr,
                     "mirodate: --export wants two dates as YYYY-MM-DD, the first not after the second, got "
                     "\"%s\" \"%s\"\n",
                     options.exportFrom.c_str(), options.exportTo.c_str());
        return 2;
    }
    const std::string root = StoreRoot(options);
    PimStore& store = PimStore::Instance();
    if (!store.Open(std::make_unique<VdirSource>(root))) {
        std::fprintf(stderr, "mirodate: cannot read the store at %s\n", root.c_str());
        return 2;
    }
    // Every item of the range, unfiltered: an export is a copy, not a view.
    store.SetFilters(u"", u"", false, false, false);
    std::vector<PimItem> items;
    store.QueryAppointments(from.GetYear(), from.GetMonth(), from.GetDay(), to.GetYear(), to.GetMonth(),
                            to.GetDay(), items);
    store.QueryTasks(from.GetYear(), from.GetMonth(), from.GetDay(), to.GetYear(), to.GetMonth(), to.GetDay(),
                     items);
    std::set<std::int32_t> seen;
    std::vector<std::string> texts;
    for (const PimItem& item : items) {
        if (item.oid <= 0 || item.kind == PimItem::kBirthday || item.kind == PimItem::kAnniversary)
            continue;
        if (!seen.insert(item.oid).second)
            continue;
        const std::string path = store.Source()->ItemFilePath(item.oid);
        std::ifstream file(path, std::ios::binary);
        std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
        if (!text.empty())
            texts.push_back(std::move(text));
    }
    std::string out;
    if (!IcsExport::Combine(texts, out) && !texts.empty()) {
        std::fprintf(stderr, "mirodate: the items could not be put together\n");
        return 2;
    }
    if (texts.empty())
        IcsExport::Combine({"BEGIN:VCALENDAR\r\nVERSION:2.0\r\nEND:VCALENDAR\r\n"}, out);
    // Written beside the target and renamed: a reader never sees half a file.
    const std::string temp = options.exportPath + ".part";
    {
        std::ofstream file(temp, std::ios::binary | std::ios::trunc);
        file << out;
        file.flush();
        if (!file) {
            unlink(temp.c_str());
            std::fprintf(stderr, "mirodate: cannot write %s\n", options.exportPath.c_str());
            return 2;
        }
    }
    if (std::rename(temp.c_str(), options.exportPath.c_str()) != 0) {
        unlink(temp.c_str());
        std::fprintf(stderr, "mirodate: cannot write %s\n", options.exportPath.c_str());
        return 2;
    }
    std::fprintf(stderr, "mirodate: wrote %zu items to %s\n", texts.size(), options.exportPath.c_str());
    return 0;
}

int StoreCommands::Demo(const ProgramOptions& options) {
    const std::string root = StoreRoot(options);
    VdirSource::Options sourceOptions;
    sourceOptions.createIfMissing = true;
    VdirSource source(root, sourceOptions);
    if (!source.Logon()) {
        std::fprintf(stderr, "mirodate: cannot create the store at %s\n", root.c_str());
        return 2;
    }
    if (const int count = source.GetItemCount(); count > 0) {
        std::fprintf(stderr, "mirodate: the store at %s holds %d items; the demo fills only an empty store\n",
                     root.c_str(), count);
        return 0;
    }
    const int written = DemoData::Fill(source, DateTime::Now());
    if (written < 0) {
        std::fprintf(stderr, "mirodate: the demo items could not all be written to %s\n", root.c_str());
        return 2;
    }
    std::fprintf(stderr, "mirodate: wrote %d demo items to %s\n", written, root.c_str());
    return 0;
}

} // namespace mirodate
