#include "store/StoreIndex.h"

#include "platform/Paths.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <sys/stat.h>
#include <unistd.h>

namespace mirodate {

namespace {

constexpr char kMagic[] = "MIRODATE-INDEX-5\n";
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
    explicit Reader(const std::string& data) : data_(data) {}
    bool Bytes(void* target, std::size_t size) {
        if (!ok || size > data_.size() - pos_) return ok = false;
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
        std::string text = data_.substr(pos_, size);
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
    void Skip(std::size_t size) { pos_ = std::min(data_.size(), pos_ + size); }
    bool ok = true;

private:
    const std::string& data_;
    std::size_t pos_ = 0;
};

void WritePattern(Writer& w, const RecurrencePattern& p) {
    for (std::int32_t v : {p.RecurrenceType, p.Interval, p.Instance, p.DayOfMonth, p.MonthOfYear, p.DayOfWeekMask,
                           p.Occurrences, p.RuleFit})
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

void WriteItem(Writer& w, const StoredItem& item) {
    w.Value<std::int32_t>(item.directory);
    w.String(item.fileName);
    w.Value(item.size);
    w.Value(item.mtimeNs);
    w.Value<std::uint8_t>(item.readable);
    w.Value<std::int32_t>(item.folder);
    w.String(item.uid);
    w.Value<std::uint8_t>(item.series);
    w.Value(item.seriesEnd);
    w.Value(item.longest);
    const PimRecord& rec = item.record;
    w.Value<std::int32_t>(rec.itemKind);
    w.Text(rec.subject);
    w.Text(rec.location);
    w.Text(rec.categories);
    w.Text(rec.body);
    w.Text(rec.attendees);
    for (double v : {rec.start, rec.end, rec.startDate, rec.dueDate, rec.birthday, rec.anniversary}) w.Value(v);
    for (bool v : {rec.allDay, rec.isRecurring, rec.complete, rec.birthdayHasYear, rec.anniversaryHasYear})
        w.Value<std::uint8_t>(v);
    w.Value<std::int32_t>(rec.importance);
    WritePattern(w, rec.recurrence);
}

StoredItem ReadItem(Reader& r) {
    StoredItem item;
    item.directory = r.Value<std::int32_t>();
    item.fileName = r.String();
    item.size = r.Value<std::int64_t>();
    item.mtimeNs = r.Value<std::int64_t>();
    item.readable = r.Value<std::uint8_t>() != 0;
    item.folder = r.Value<std::int32_t>();
    item.uid = r.String();
    item.series = r.Value<std::uint8_t>() != 0;
    item.seriesEnd = r.Value<double>();
    item.longest = r.Value<double>();
    PimRecord& rec = item.record;
    rec.itemKind = r.Value<std::int32_t>();
    rec.uid = item.uid;
    rec.subject = r.Text();
    rec.location = r.Text();
    rec.categories = r.Text();
    rec.body = r.Text();
    rec.attendees = r.Text();
    for (double* v : {&rec.start, &rec.end, &rec.startDate, &rec.dueDate, &rec.birthday, &rec.anniversary})
        *v = r.Value<double>();
    for (bool* v : {&rec.allDay, &rec.isRecurring, &rec.complete, &rec.birthdayHasYear, &rec.anniversaryHasYear})
        *v = r.Value<std::uint8_t>() != 0;
    rec.importance = r.Value<std::int32_t>();
    rec.recurrence = ReadPattern(r);
    return item;
}

std::uint64_t Fnv64(const std::string& text) {
    std::uint64_t hash = 1469598103934665603ull;
    for (unsigned char c : text) hash = (hash ^ c) * 1099511628211ull;
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
    struct stat st{};
    if (stat("/etc/localtime", &st) == 0)
        signature += ";" + std::to_string(st.st_size) + ";" + std::to_string(st.st_mtim.tv_sec) + ";" +
                     std::to_string(st.st_ino);
    return signature;
}

StoreIndex::Entries StoreIndex::Load(const std::string& path, const std::string& root, const std::string& zone) {
    Entries entries;
    std::ifstream file(path, std::ios::binary);
    if (!file) return entries;
    file.seekg(0, std::ios::end);
    const std::streamoff size = file.tellg();
    if (size <= 0 || static_cast<std::size_t>(size) > kMaxIndexBytes) return entries;
    file.seekg(0);
    std::string data(static_cast<std::size_t>(size), '\0');
    if (!file.read(data.data(), size)) return entries;
    if (data.compare(0, sizeof kMagic - 1, kMagic) != 0) return entries;
    Reader reader(data);
    reader.Skip(sizeof kMagic - 1);
    if (reader.String() != root || reader.String() != zone) return entries;
    const auto count = reader.Value<std::uint32_t>();
    entries.reserve(std::min<std::size_t>(count, data.size() / 64));
    for (std::uint32_t i = 0; i < count && reader.ok; ++i) {
        StoredItem item = ReadItem(reader);
        if (!reader.ok) break;
        std::string key = std::to_string(item.directory) + "/" + item.fileName;
        entries.emplace(std::move(key), std::move(item));
    }
    if (!reader.ok || !reader.AtEnd()) entries.clear();
    return entries;
}

bool StoreIndex::Save(const std::string& path, const std::string& root, const std::string& zone,
                      const std::vector<const StoredItem*>& items) {
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos || !Paths::MakeDirs(path.substr(0, slash), 0700)) return false;
    Writer w;
    w.Bytes(kMagic, sizeof kMagic - 1);
    w.String(root);
    w.String(zone);
    w.Value<std::uint32_t>(static_cast<std::uint32_t>(items.size()));
    for (const StoredItem* item : items) WriteItem(w, *item);
    const std::string temp = path + ".tmp." + std::to_string(getpid());
    const int fd = open(temp.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (fd < 0) return false;
    std::size_t done = 0;
    while (done < w.out.size()) {
        const ssize_t n = write(fd, w.out.data() + done, w.out.size() - done);
        if (n <= 0) break;
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
