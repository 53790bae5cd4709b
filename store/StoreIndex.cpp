#include "store/StoreIndex.h"

#include "data/PimFolder.h"
#include "data/PimSource.h"
#include "platform/Log.h"
#include "platform/MappedFile.h"
#include "platform/Paths.h"
#include "platform/TextUtil.h"
#include "store/VdirFileIo.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace mirodate {

namespace {

constexpr char kMagic[] = "MIRODATE-INDEX-11\n";
// Largest index we read (a store of a million items stays far below).
constexpr std::size_t kMaxIndexBytes = 512u * 1024u * 1024u;

class Writer {
public:
    void Bytes(const void* data, std::size_t size) { out.append(static_cast<const char*>(data), size); }
    template <typename T> void Value(T value) { Bytes(&value, sizeof value); }
    void String(const std::string& text) {
        Value<std::uint32_t>(static_cast<std::uint32_t>(text.size()));
        out += text;
    }
    void Text(const std::u16string& text) {
        Value<std::uint32_t>(static_cast<std::uint32_t>(text.size()));
        Bytes(text.data(), text.size() * sizeof(char16_t));
    }
    std::string out;
};

class Reader {
public:
    explicit Reader(std::string_view data) : data_(data) {}
    bool Bytes(void* target, std::size_t size) {
        if (!ok || size > data_.size() - pos_)
            return ok = false;
        std::memcpy(target, data_.data() + pos_, size);
        pos_ += size;
        return true;
    }
    template <typename T> T Value() {
        T value{};
        Bytes(&value, sizeof value);
        return value;
    }
    std::string String() {
        const auto size = Value<std::uint32_t>();
        if (!ok || size > data_.size() - pos_) {
            ok = false;
            return {};
        }
        std::string text(data_.substr(pos_, size));
        pos_ += size;
        return text;
    }
    std::u16string Text() {
        const auto size = Value<std::uint32_t>();
        if (!ok || size > (data_.size() - pos_) / sizeof(char16_t)) {
            ok = false;
            return {};
        }
        std::u16string text(size, u'\0');
        Bytes(text.data(), size * sizeof(char16_t));
        return text;
    }
    bool AtEnd() const { return pos_ == data_.size(); }
    std::size_t Left() const { return data_.size() - pos_; }
    void Skip(std::size_t size) { pos_ = std::min(data_.size(), pos_ + size); }
    bool ok = true;

private:
    std::string_view data_;
    std::size_t pos_ = 0;
};

void WritePattern(Writer& w, const RecurrencePattern& p) {
    for (std::int32_t v : {p.RecurrenceType, p.Interval, p.Instance, p.DayOfMonth, p.MonthOfYear,
                           p.DayOfWeekMask, p.Occurrences, p.RuleFit})
        w.Value(v);
    w.Value(p.PatternStartDate);
    w.Value(p.PatternEndDate);
    w.Value<std::uint8_t>(p.NoEndDate);
}

RecurrencePattern ReadPattern(Reader& r) {
    RecurrencePattern p;
    for (std::int32_t* v : {&p.RecurrenceType, &p.Interval, &p.Instance, &p.DayOfMonth, &p.MonthOfYear,
                            &p.DayOfWeekMask, &p.Occurrences, &p.RuleFit})
        *v = r.Value<std::int32_t>();
    p.PatternStartDate = r.Value<double>();
    p.PatternEndDate = r.Value<double>();
    p.NoEndDate = r.Value<std::uint8_t>() != 0;
    return p;
}

// A record's fields but its UID and OID, which come from its entry.
void WriteRecord(Writer& w, const PimRecord& rec) {
    w.Value<std::int32_t>(rec.itemKind);
    w.Text(rec.subject);
    w.Text(rec.location);
    w.Text(rec.categories);
    w.Text(rec.body);
    w.Text(rec.attendees);
    for (double v : {rec.start, rec.end, rec.startDate, rec.dueDate, rec.birthday, rec.anniversary})
        w.Value(v);
    for (bool v : {rec.allDay, rec.isRecurring, rec.complete, rec.birthdayHasYear, rec.anniversaryHasYear,
                   rec.cancelled})
        w.Value<std::uint8_t>(v);
    w.Value<std::int32_t>(rec.importance);
    WritePattern(w, rec.recurrence);
    w.Value<std::uint8_t>(rec.reminderSet);
    for (int v : {rec.reminderMinutes, rec.busyStatus, rec.sensitivity})
        w.Value<std::int32_t>(v);
    w.Value<std::int32_t>(static_cast<std::int32_t>(rec.attachments.size()));
    for (const std::u16string& a : rec.attachments)
        w.Text(a);
    w.Value<std::int32_t>(static_cast<std::int32_t>(rec.emails.size()));
    for (const std::u16string& e : rec.emails)
        w.Text(e);
}

void WriteItem(Writer& w, const StoredItem& item) {
    w.Value<std::int32_t>(item.directory);
    w.String(item.fileName);
    w.Value(item.size);
    w.Value(item.mtimeNs);
    w.Value<std::uint8_t>(item.readable);
    w.String(item.problem);
    w.Value<std::int32_t>(item.folder);
    w.String(item.uid);
    w.Value<std::uint8_t>(item.series);
    w.Value(item.seriesEnd);
    w.Value(item.longest);
    w.Value<std::int32_t>(item.record.oid);
    WriteRecord(w, item.record);
    const StoredExpansion* expansion = item.expansion.get();
    w.Value<std::uint8_t>(expansion != nullptr);
    if (!expansion)
        return;
    w.Value(expansion->from);
    w.Value(expansion->before);
    w.Value<std::uint32_t>(static_cast<std::uint32_t>(expansion->occurrences.size()));
    for (const PimRecord& occurrence : expansion->occurrences)
        WriteRecord(w, occurrence);
}

void ReadRecord(Reader& r, PimRecord& rec) {
    rec.itemKind = r.Value<std::int32_t>();
    rec.subject = r.Text();
    rec.location = r.Text();
    rec.categories = r.Text();
    rec.body = r.Text();
    rec.attendees = r.Text();
    for (double* v : {&rec.start, &rec.end, &rec.startDate, &rec.dueDate, &rec.birthday, &rec.anniversary})
        *v = r.Value<double>();
    for (bool* v : {&rec.allDay, &rec.isRecurring, &rec.complete, &rec.birthdayHasYear,
                    &rec.anniversaryHasYear, &rec.cancelled})
        *v = r.Value<std::uint8_t>() != 0;
    rec.importance = r.Value<std::int32_t>();
    rec.recurrence = ReadPattern(r);
    rec.reminderSet = r.Value<std::uint8_t>() != 0;
    for (int* v : {&rec.reminderMinutes, &rec.busyStatus, &rec.sensitivity})
        *v = r.Value<std::int32_t>();
    const std::int32_t attachments = r.Value<std::int32_t>();
    // Each attachment takes at least its length word: a count beyond the
    // data is damage, and the reader's own checks end the index.
    for (std::int32_t i = 0; i < attachments && r.ok; ++i)
        rec.attachments.push_back(r.Text());
    const std::int32_t emails = r.Value<std::int32_t>();
    for (std::int32_t i = 0; i < emails && r.ok; ++i)
        rec.emails.push_back(r.Text());
}

// Fewest bytes a written record takes: a bound on a count read from the file.
constexpr std::size_t kMinRecordBytes = 4 + 5 * 4 + 6 * 8 + 6 + 4 + 8 * 4 + 2 * 8 + 1 + 1 + 3 * 4 + 4 + 4;

void ReadItem(Reader& r, StoredItem& item) {
    item.directory = r.Value<std::int32_t>();
    item.fileName = r.String();
    item.size = r.Value<std::int64_t>();
    item.mtimeNs = r.Value<std::int64_t>();
    item.readable = r.Value<std::uint8_t>() != 0;
    item.problem = r.String();
    item.folder = r.Value<std::int32_t>();
    item.uid = r.String();
    item.series = r.Value<std::uint8_t>() != 0;
    item.seriesEnd = r.Value<double>();
    item.longest = r.Value<double>();
    item.record.oid = r.Value<std::int32_t>();
    item.record.uid = item.uid;
    ReadRecord(r, item.record);
    if (r.Value<std::uint8_t>() == 0 || !r.ok)
        return;
    auto expansion = std::make_shared<StoredExpansion>();
    expansion->from = r.Value<double>();
    expansion->before = r.Value<double>();
    const auto count = r.Value<std::uint32_t>();
    if (!r.ok || count > r.Left() / kMinRecordBytes) {
        r.ok = false;
        return;
    }
    expansion->occurrences.resize(count);
    for (PimRecord& occurrence : expansion->occurrences) {
        occurrence.uid = item.uid;
        ReadRecord(r, occurrence);
    }
    item.expansion = std::move(expansion);
}

// DATE values the program can represent: 1 January 100 to 31 December 9999.
constexpr double kFirstDate = -657434.0;
constexpr double kAfterLastDate = 2958466.0;
// Bounds of the recurrence record as the store fills it from a rule.
constexpr std::int32_t kMaxInterval = 0x7FFF;
constexpr std::int32_t kMaxInstance = 366; // BYSETPOS reaches the days of a year
constexpr std::int32_t kAllDays = 0x7F;

bool IsDate(double date) {
    return date >= kFirstDate && date < kAfterLastDate;
} // false for NaN

bool IsPlausible(const RecurrencePattern& p) {
    using R = RecurrencePattern;
    const bool knownType = p.RecurrenceType == R::kNotRecurring || p.RecurrenceType == R::kDaily ||
                           p.RecurrenceType == R::kWeekly || p.RecurrenceType == R::kMonthly ||
                           p.RecurrenceType == R::kMonthNth || p.RecurrenceType == R::kYearly ||
                           p.RecurrenceType == R::kYearNth;
    return knownType && p.Interval >= 1 && p.Interval <= kMaxInterval && p.Instance >= 0 &&
           p.Instance <= kMaxInstance && p.DayOfMonth >= 0 && p.DayOfMonth <= 31 && p.MonthOfYear >= 0 &&
           p.MonthOfYear <= 12 && p.DayOfWeekMask >= 0 && p.DayOfWeekMask <= kAllDays && p.Occurrences >= 0 &&
           p.RuleFit >= R::kExact && p.RuleFit <= R::kNoFit && IsDate(p.PatternStartDate) &&
           IsDate(p.PatternEndDate);
}

// A kept expansion: appointments of a series, each starting in the window,
// in order of start.
bool IsPlausible(const StoredExpansion& expansion, const StoredItem& item) {
    if (!item.series || item.folder != kFolderCalendar || !IsDate(expansion.from) ||
        !IsDate(expansion.before) || expansion.before < expansion.from)
        return false;
    double previous = expansion.from;
    for (const PimRecord& rec : expansion.occurrences) {
        for (double date : {rec.start, rec.end, rec.startDate, rec.dueDate, rec.birthday, rec.anniversary})
            if (!IsDate(date))
                return false;
        if (rec.itemKind != kItemAppointment || rec.start < previous || rec.start >= expansion.before ||
            rec.end < rec.start || rec.importance < 0 || rec.importance > 2 || !IsPlausible(rec.recurrence) ||
            rec.reminderMinutes < 0 || rec.busyStatus < 0 || rec.busyStatus > 3 || rec.sensitivity < 0 ||
            rec.sensitivity > 3)
            return false;
        previous = rec.start;
    }
    return true;
}

// Whether an entry holds only values the store itself could have written, so
// that nothing damaged reaches the date arithmetic or the views.
bool IsPlausible(const StoredItem& item) {
    const PimRecord& rec = item.record;
    if (item.directory < 0 || item.directory > 2 || item.fileName.empty() ||
        item.fileName.find_first_of(std::string_view("/\0", 2)) != std::string::npos || item.size < 0)
        return false;
    for (double date :
         {rec.start, rec.end, rec.startDate, rec.dueDate, rec.birthday, rec.anniversary, item.seriesEnd})
        if (!IsDate(date))
            return false;
    if (!(item.longest >= 0.0 && item.longest <= kAfterLastDate - kFirstDate))
        return false;
    if (rec.importance < 0 || rec.importance > 2 || !IsPlausible(rec.recurrence))
        return false;
    if (rec.reminderMinutes < 0 || rec.busyStatus < 0 || rec.busyStatus > 3 || rec.sensitivity < 0 ||
        rec.sensitivity > 3)
        return false;
    if (!item.readable)
        return !item.expansion;
    if (rec.oid <= 0)
        return false;
    if (item.expansion && !IsPlausible(*item.expansion, item))
        return false;
    switch (item.folder) {
    case kFolderCalendar:
        return rec.itemKind == kItemAppointment && rec.end >= rec.start && !item.uid.empty();
    case kFolderTasks:
        return rec.itemKind == kItemTask && !item.uid.empty();
    case kFolderContacts:
        return rec.itemKind == kItemContact && !item.uid.empty();
    default:
        return false;
    }
}

std::uint64_t Fnv64(const std::string& text) {
    std::uint64_t hash = 1469598103934665603ull;
    for (unsigned char c : text)
        hash = (hash ^ c) * 1099511628211ull;
    return hash;
}

} // namespace

std::string StoreIndex::PathFor(const std::string& root) {
    char name[64];
    std::snprintf(name, sizeof name, "/index-%016llx.bin", static_cast<unsigned long long>(Fnv64(root)));
    return Paths::CacheDir() + name;
}

std::string StoreIndex::ZoneSignature() {
    const char* tz = std::getenv("TZ");
    std::string signature = std::string("TZ=") + (tz ? tz : "(unset)");
    struct stat st {};
    if (stat("/etc/localtime", &st) == 0)
        signature += ";" + std::to_string(st.st_size) + ";" + std::to_string(st.st_mtim.tv_sec) + ";" +
                     std::to_string(st.st_ino);
    return signature;
}

std::uint64_t StoreIndex::MaxBytesFor(std::size_t files, std::uint64_t fileBytes) {
    constexpr std::uint64_t kHeaderBytes = 64 * 1024; // magic, root, zone
    constexpr std::uint64_t kRecordBytes = 1024;      // fixed fields, file name, reason
    return kHeaderBytes + files * kRecordBytes + 3 * fileBytes;
}

StoreIndex::Entries StoreIndex::Load(const std::string& path, const std::string& root,
                                     const std::string& zone, std::size_t maxEntries, std::uint64_t maxBytes,
                                     std::vector<std::shared_ptr<StoredItem>>* order) {
    Entries entries;
    // A file that shrinks while mapped would fault on its lost pages: the
    // index is only ever replaced by a rename, never truncated.
    MappedFile file;
    std::uint64_t size = 0;
    if (!file.Open(path, std::min<std::uint64_t>(maxBytes, kMaxIndexBytes), size)) {
        if (size > 0)
            // Stale (files deleted while the program was not running) or not ours.
            Log::Info("store: the index %s is larger than the store's files can explain; it is built again",
                      PrintableText(path).c_str());
        return entries;
    }
    const std::string_view data = file.Data();
    if (data.substr(0, sizeof kMagic - 1) != std::string_view(kMagic, sizeof kMagic - 1))
        return entries;
    Reader reader(data);
    reader.Skip(sizeof kMagic - 1);
    if (reader.String() != root || reader.String() != zone)
        return entries;
    const auto count = reader.Value<std::uint32_t>();
    if (reader.ok && count > maxEntries) {
        Log::Info("store: the index %s has more entries than the store has files; it is built again",
                  PrintableText(path).c_str());
        return entries;
    }
    entries.reserve(std::min<std::size_t>(count, data.size() / 64));
    bool plausible = reader.ok;
    for (std::uint32_t i = 0; i < count && plausible; ++i) {
        // Read straight into the entry the store keeps.
        auto item = std::make_shared<StoredItem>();
        ReadItem(reader, *item);
        plausible = reader.ok && IsPlausible(*item);
        if (!plausible)
            break;
        std::string key;
        VdirFileIo::KeyInto(item->directory, item->fileName, key);
        if (order)
            order->push_back(item);
        plausible = entries.emplace(std::move(key), std::move(item)).second;
    }
    if (!plausible || !reader.AtEnd()) {
        // A cache is only worth its trust: on any doubt read every file again.
        Log::Warning("store: the index %s is damaged; it is built again from the files",
                     PrintableText(path).c_str());
        entries.clear();
        if (order)
            order->clear();
    }
    return entries;
}

bool StoreIndex::Save(const std::string& path, const std::string& root, const std::string& zone,
                      std::vector<const StoredItem*> items) {
    // In file order, so that the next start need not sort what it reads.
    std::sort(items.begin(), items.end(), [](const StoredItem* a, const StoredItem* b) {
        return a->directory != b->directory ? a->directory < b->directory : a->fileName < b->fileName;
    });
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos || !Paths::MakeDirs(path.substr(0, slash), 0700))
        return false;
    Writer w;
    w.Bytes(kMagic, sizeof kMagic - 1);
    w.String(root);
    w.String(zone);
    w.Value<std::uint32_t>(static_cast<std::uint32_t>(items.size()));
    for (const StoredItem* item : items)
        WriteItem(w, *item);
    const std::string temp = path + ".tmp." + std::to_string(getpid());
    const int fd = open(temp.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (fd < 0)
        return false;
    std::size_t done = 0;
    while (done < w.out.size()) {
        const ssize_t n = write(fd, w.out.data() + done, w.out.size() - done);
        if (n <= 0)
            break;
        done += static_cast<std::size_t>(n);
    }
    const bool ok = done == w.out.size() && close(fd) == 0;
    if (!ok || rename(temp.c_str(), path.c_str()) != 0) {
        unlink(temp.c_str());
        return false;
    }
    return true;
}

} // namespace mirodate
