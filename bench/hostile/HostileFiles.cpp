#include "bench/hostile/HostileFiles.h"

#include "store/StoreIndex.h"

#include <minizip/zip.h>
#include <zlib.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <spawn.h>
#include <sstream>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

extern char** environ;

namespace mirodate {

namespace fs = std::filesystem;

namespace {

constexpr const char* kHostileSkin = "Hostile";
constexpr const char* kHostileLanguage = "lang.hostile.txt";
constexpr const char* kTimeProgram = "/usr/bin/time";
// Values that change nothing in the month listed: a settings file that is
// not read gives the same output.
constexpr const char* kBaseSettings = "DefaultSpan=30\n";

std::string Event(const std::string& uid, const std::string& start, const std::string& body) {
    return "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//hostile//EN\r\nBEGIN:VEVENT\r\nUID:" + uid +
           "\r\nDTSTAMP:20260101T000000Z\r\nDTSTART:" + start + "\r\nDURATION:PT1H\r\n" + body +
           "END:VEVENT\r\nEND:VCALENDAR\r\n";
}

void WriteFile(const fs::path& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
}

std::string ReadFile(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream bytes;
    bytes << file.rdbuf();
    return bytes.str();
}

std::string Repeat(const std::string& piece, std::size_t times) {
    std::string out;
    out.reserve(piece.size() * times);
    for (std::size_t i = 0; i < times; ++i)
        out += piece;
    return out;
}

// --- PNG pieces -------------------------------------------------------------

std::string BigEndian(std::uint32_t value) {
    return {static_cast<char>(value >> 24), static_cast<char>(value >> 16), static_cast<char>(value >> 8),
            static_cast<char>(value)};
}

std::string Chunk(const std::string& type, const std::string& data) {
    std::string crcInput = type + data;
    const uLong crc =
        crc32(0, reinterpret_cast<const Bytef*>(crcInput.data()), static_cast<uInt>(crcInput.size()));
    return BigEndian(static_cast<std::uint32_t>(data.size())) + crcInput +
           BigEndian(static_cast<std::uint32_t>(crc));
}

// `size` zero bytes deflated, without holding them all in memory.
std::string DeflatedZeros(std::uint64_t size) {
    z_stream stream{};
    deflateInit(&stream, Z_BEST_COMPRESSION);
    std::string zeros(1 << 20, '\0'), out, buffer(1 << 16, '\0');
    std::uint64_t left = size;
    int flush = Z_NO_FLUSH;
    do {
        const std::size_t piece = static_cast<std::size_t>(std::min<std::uint64_t>(left, zeros.size()));
        left -= piece;
        flush = left == 0 ? Z_FINISH : Z_NO_FLUSH;
        stream.next_in = reinterpret_cast<Bytef*>(zeros.data());
        stream.avail_in = static_cast<uInt>(piece);
        do {
            stream.next_out = reinterpret_cast<Bytef*>(buffer.data());
            stream.avail_out = static_cast<uInt>(buffer.size());
            deflate(&stream, flush);
            out.append(buffer.data(), buffer.size() - stream.avail_out);
        } while (stream.avail_out == 0);
    } while (flush != Z_FINISH);
    deflateEnd(&stream);
    return out;
}

// An RGBA picture whose image data inflates to `dataBytes` zero bytes (the
// size needs height * (1 + 4 * width)); `extraChunks` go before the data.
std::string Png(std::uint32_t width, std::uint32_t height, std::uint64_t dataBytes,
                const std::string& extraChunks = {}) {
    const std::string header = BigEndian(width) + BigEndian(height) + std::string("\x08\x06\x00\x00\x00", 5);
    return std::string("\x89PNG\r\n\x1a\n", 8) + Chunk("IHDR", header) + extraChunks +
           Chunk("IDAT", DeflatedZeros(dataBytes)) + Chunk("IEND", "");
}

std::uint64_t ImageBytes(std::uint32_t width, std::uint32_t height) {
    return std::uint64_t{height} * (1 + 4 * width);
}

// --- zip ----------------------------------------------------------------------

bool WriteZip(const std::string& path, const std::vector<std::pair<std::string, std::string>>& entries) {
    zipFile zip = zipOpen64(path.c_str(), APPEND_STATUS_CREATE);
    if (!zip)
        return false;
    for (const auto& [name, data] : entries) {
        zip_fileinfo info{};
        zipOpenNewFileInZip64(zip, name.c_str(), &info, nullptr, 0, nullptr, 0, nullptr, Z_DEFLATED,
                              Z_BEST_COMPRESSION, data.size() >= 0xFFFFFFFFu);
        zipWriteInFileInZip(zip, data.data(), static_cast<unsigned>(data.size()));
        zipCloseFileInZip(zip);
    }
    return zipClose(zip, nullptr) == ZIP_OK;
}

const char* const kViewSections[] = {"styles.calendar",   "styles.weekview",  "styles.dayview",
                                     "styles.agendaview", "styles.quickview", "styles.itemdetailview"};

} // namespace

const std::vector<HostileFiles::Case>& HostileFiles::Cases() {
    static const std::vector<Case> cases = {
        {"store-long-line", "event with one 7 MB line", "more than the 4 MB an item file may have", true,
         true},
        {"store-long-line-within-limit", "event of the month listed with one line just under 4 MB", "", true,
         false},
        {"store-long-line-today", "event of today with a subject just under 4 MB", "", false, true},
        {"store-many-lines", "event with 500,000 properties", "content lines", true, true},
        {"store-many-parameters", "event with 600,000 parameters on one line", "parameters", true, true},
        {"store-symlink-loop", "two symbolic links pointing at each other", "a loop of symbolic links", true,
         true},
        {"store-fifo", "a named pipe called like an item", "not a regular file", true, true},
        {"store-name-not-utf8", "an unreadable item whose name is not UTF-8 and holds escape codes",
         "bad\\xff\\x1b[2J.ics", true, true},
        {"index-damaged", "derived index with a start time of 1e308", "index", true, true},
        {"index-huge", "derived index of 40 MB for a store of 4 small files", "", true, true},
        {"skin-ini-sections", "skin.ini of 5.5 million empty section lines (16 MB)", "skin.ini has", false,
         true},
        {"skin-ini-within-limit", "skin.ini of 250 KB of distinct sections", "", false, true},
        {"skin-endless-picture", "2048 x 2048 PNG whose data inflates to 256 MB", "inflates to more data",
         false, true},
        {"skin-many-pictures", "twelve 2048 x 2048 backgrounds", "all pictures of a skin", false, true},
        {"skin-huge-picture", "a 8192 x 8192 background", "a picture may have", false, true},
        {"skin-text-chunks", "PNG with 1000 text chunks inflating to 8 MB each", "", false, true},
        {"skin-many-entries", "archive of 20,000 entries", "entries", false, true},
        {"language-huge", "language file of 17 MB", "language file", false, true},
        {"language-line-feeds", "language file of 1 MB of line feeds", "", false, true},
        {"language-many-keys", "language file of 1 MB of distinct keys", "", false, true},
        {"settings-huge", "settings file of 5 MB", "settings file", true, true},
        {"settings-many-values", "settings file of 1 MB of distinct names", "", true, true},
        {"settings-long-value", "settings value of 100 KB", "longer than", true, true},
        {"settings-font-size-max", "FontSizeDelta=2147483647", "", true, true},
        {"settings-font-size-min", "FontSizeDelta=-2147483648", "", true, true},
    };
    return cases;
}

HostileFiles::HostileFiles(std::string scratch, const std::string& program) : scratch_(std::move(scratch)) {
    std::error_code error;
    fs::remove_all(scratch_, error);
    programDir_ = scratch_ + "/program";
    store_ = scratch_ + "/store";
    fs::create_directories(programDir_, error);
    // The program finds its resources beside its own file: a link keeps it
    // the same binary, a copy does where links cannot be made.
    // The window program beside it comes along: `mirodate` hands it every
    // use with a window.
    const fs::path built(program);
    for (const fs::path& binary : {built, built.parent_path() / "mirodate-ui"}) {
        const fs::path copy = fs::path(programDir_) / binary.filename();
        error.clear();
        fs::create_hard_link(binary, copy, error);
        if (error)
            fs::copy_file(binary, copy, error);
        if (error)
            return;
    }
    for (const auto& entry : fs::directory_iterator(built.parent_path(), error)) {
        const std::string name = entry.path().filename().string();
        if ((name.rfind("lang.", 0) == 0 && name.size() > 9 && name.ends_with(".txt")) ||
            (name.rfind("skin.", 0) == 0 && name.ends_with(".zip")))
            fs::copy_file(entry.path(), fs::path(programDir_) / name, fs::copy_options::overwrite_existing,
                          error);
    }
    // The runs and the index written here share these.
    setenv("TZ", "Europe/Berlin", 1);
    setenv("LANG", "C", 1);
    setenv("XDG_CONFIG_HOME", (scratch_ + "/config").c_str(), 1);
    setenv("XDG_CACHE_HOME", (scratch_ + "/cache").c_str(), 1);
    setenv("XDG_DATA_HOME", (scratch_ + "/data").c_str(), 1);
    setenv("XDG_RUNTIME_DIR", (scratch_ + "/runtime").c_str(), 1);
    ready_ = true;
    Reset();
}

HostileFiles::~HostileFiles() {
    std::error_code error;
    fs::remove_all(scratch_, error);
}

std::string HostileFiles::SettingsPath() const {
    return scratch_ + "/config/mirodate/settings.conf";
}

void HostileFiles::WriteSettings(const std::string& text) const {
    WriteFile(SettingsPath(), text);
}

void HostileFiles::Reset() {
    std::error_code error;
    for (const char* dir : {"/store", "/config", "/cache", "/data", "/runtime"})
        fs::remove_all(scratch_ + dir, error);
    for (const auto& entry : fs::directory_iterator(programDir_, error))
        if (entry.path().filename().string().find("ostile") != std::string::npos)
            fs::remove(entry.path(), error);
    for (const char* dir : {"/store/calendar", "/store/tasks", "/store/contacts", "/config/mirodate",
                            "/cache", "/data", "/runtime"})
        fs::create_directories(scratch_ + dir, error);
    chmod((scratch_ + "/runtime").c_str(), 0700);
    WriteFile(store_ + "/calendar/standup.ics", Event("standup", "20260310T090000", "SUMMARY:Standup\r\n"));
    WriteFile(store_ + "/calendar/review.ics",
              Event("review", "20260318T140000", "SUMMARY:Design review\r\n"));
    WriteFile(store_ + "/tasks/report.ics",
              "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//hostile//EN\r\nBEGIN:VTODO\r\nUID:report\r\n"
              "DTSTAMP:20260101T000000Z\r\nDUE;VALUE=DATE:20260320\r\nSUMMARY:Write the report\r\n"
              "END:VTODO\r\nEND:VCALENDAR\r\n");
    WriteFile(store_ + "/contacts/ada.vcf",
              "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:ada\r\nFN:Ada Lovelace\r\nBDAY:1815-03-25\r\nEND:VCARD\r\n");
    WriteSettings(kBaseSettings);
}

void HostileFiles::WriteSkin(const std::string& fileName, const std::string& bytes) const {
    WriteFile(fs::path(programDir_) / fileName, bytes);
}

bool HostileFiles::DamageIndex(bool huge) const {
    // Build the index as the program does, then spoil one value in it.
    if (Run(Mode::List).exitCode != 0)
        return false;
    const std::string zone = StoreIndex::ZoneSignature();
    const std::string path = StoreIndex::PathFor(store_);
    StoreIndex::Entries entries = StoreIndex::Load(path, store_, zone);
    auto standup = entries.find("0/standup.ics");
    if (standup == entries.end())
        return false;
    if (huge)
        standup->second->record.body.assign(20 * 1000 * 1000, u'b');
    else
        standup->second->record.start = 1e308;
    std::vector<const StoredItem*> items;
    for (const auto& [key, item] : entries)
        items.push_back(item.get());
    return StoreIndex::Save(path, store_, zone, items);
}

bool HostileFiles::Apply(const std::string& caseName) {
    Reset();
    const fs::path calendar = store_ + "/calendar";
    const std::string skinFile = std::string("skin.") + kHostileSkin + ".zip";
    const std::string skinPath = programDir_ + "/" + skinFile;
    auto useSkin = [&] { WriteSettings(std::string(kBaseSettings) + "Skin=" + kHostileSkin + "\n"); };
    auto pictureSkin = [&](const std::vector<std::pair<std::string, std::string>>& pictures) {
        std::string ini;
        std::size_t next = 0;
        for (const char* section : kViewSections) {
            ini += std::string("[") + section + "]\n";
            for (const char* key : {"backgroundImage", "backgroundImageLandscape"})
                ini += std::string(key) + "=" + pictures[next++ % pictures.size()].first + "\n";
        }
        std::vector<std::pair<std::string, std::string>> entries{{"skin.ini", ini}};
        entries.insert(entries.end(), pictures.begin(), pictures.end());
        useSkin();
        return WriteZip(skinPath, entries);
    };

    if (caseName == "store-long-line") {
        WriteFile(calendar / "long-line.ics",
                  Event("long-line", "20260312T100000", "SUMMARY:" + std::string(7000000, 'x') + "\r\n"));
    } else if (caseName == "store-long-line-within-limit") {
        WriteFile(calendar / "long-line.ics",
                  Event("long-line", "20260312T100000",
                        "SUMMARY:" + std::string(4 * 1024 * 1024 - 400, 'x') + "\r\n"));
    } else if (caseName == "store-long-line-today") {
        // On the day a start shows, so that its subject is drawn.
        const std::time_t now = std::time(nullptr);
        std::tm local{};
        localtime_r(&now, &local);
        char day[16];
        std::strftime(day, sizeof day, "%Y%m%dT100000", &local);
        std::string subject;
        while (subject.size() < 4 * 1024 * 1024 - 400)
            subject += "word ";
        WriteFile(calendar / "long-line.ics", Event("long-line", day, "SUMMARY:" + subject + "\r\n"));
    } else if (caseName == "store-many-lines") {
        WriteFile(calendar / "many-lines.ics",
                  Event("many-lines", "20260312T100000", Repeat("X-A:b\r\n", 500000)));
    } else if (caseName == "store-many-parameters") {
        WriteFile(calendar / "many-parameters.ics", Event("many-parameters", "20260312T100000",
                                                          "SUMMARY" + Repeat(";X-P=a", 600000) + ":x\r\n"));
    } else if (caseName == "store-symlink-loop") {
        fs::create_symlink("loop-b.ics", calendar / "loop-a.ics");
        fs::create_symlink("loop-a.ics", calendar / "loop-b.ics");
    } else if (caseName == "store-fifo") {
        if (mkfifo((calendar / "pipe.ics").c_str(), 0600) != 0)
            return false;
    } else if (caseName == "store-name-not-utf8") {
        WriteFile(calendar / "bad\xff\x1b[2J.ics", "BEGIN:VCALENDAR\r\nnothing else\r\n");
    } else if (caseName == "index-damaged" || caseName == "index-huge") {
        return DamageIndex(caseName == "index-huge");
    } else if (caseName == "skin-ini-sections") {
        useSkin();
        return WriteZip(skinPath, {{"skin.ini", Repeat("[]\n", 5500000)}});
    } else if (caseName == "skin-ini-within-limit") {
        std::string ini;
        for (int i = 0; ini.size() < 250 * 1000; ++i)
            ini += "[s" + std::to_string(i) + "]\n";
        ini += "[styles.calendar]\ncolorDayGridBg=#203040\n";
        useSkin();
        return WriteZip(skinPath, {{"skin.ini", ini}});
    } else if (caseName == "skin-endless-picture") {
        return pictureSkin({{"endless.png", Png(2048, 2048, 256ull * 1024 * 1024)}});
    } else if (caseName == "skin-many-pictures") {
        const std::string picture = Png(2048, 2048, ImageBytes(2048, 2048));
        std::vector<std::pair<std::string, std::string>> pictures;
        for (int i = 0; i < 12; ++i)
            pictures.emplace_back("picture" + std::to_string(i) + ".png", picture);
        return pictureSkin(pictures);
    } else if (caseName == "skin-huge-picture") {
        // The size in the header is what counts; the data is never inflated.
        return pictureSkin({{"huge.png", Png(8192, 8192, 1)}});
    } else if (caseName == "skin-text-chunks") {
        const std::string text =
            "Comment" + std::string(1, '\0') + std::string(1, '\0') + DeflatedZeros(8000000);
        return pictureSkin(
            {{"chunks.png", Png(64, 64, ImageBytes(64, 64), Repeat(Chunk("zTXt", text), 1000))}});
    } else if (caseName == "skin-many-entries") {
        std::vector<std::pair<std::string, std::string>> entries{{"skin.ini", "[styles.calendar]\n"}};
        for (int i = 0; i < 20000; ++i)
            entries.emplace_back("e" + std::to_string(i), "");
        useSkin();
        return WriteZip(skinPath, entries);
    } else if (caseName == "language-huge" || caseName == "language-line-feeds") {
        // UTF-16 LE with a byte-order mark, as the shipped files.
        const std::size_t bytes = caseName == "language-huge" ? 17 * 1024 * 1024 : 1000 * 1000;
        std::string text("\xFF\xFE", 2);
        text.reserve(bytes);
        while (text.size() + 2 <= bytes)
            text += std::string("\n\0", 2);
        WriteFile(fs::path(programDir_) / kHostileLanguage, text);
        WriteSettings(std::string(kBaseSettings) + "Language=" + kHostileLanguage + "\n");
    } else if (caseName == "language-many-keys") {
        std::string text("\xFF\xFE", 2);
        for (int i = 0; text.size() < 1000 * 1000; ++i)
            for (char c : "\nK" + std::to_string(i) + "=v\r")
                text += std::string{c, '\0'};
        WriteFile(fs::path(programDir_) / kHostileLanguage, text);
        WriteSettings(std::string(kBaseSettings) + "Language=" + kHostileLanguage + "\n");
    } else if (caseName == "settings-many-values") {
        std::string text = kBaseSettings;
        for (int i = 0; text.size() < 1000 * 1000; ++i)
            text += "Name" + std::to_string(i) + "=1\n";
        WriteSettings(text);
    } else if (caseName == "settings-huge") {
        std::string text = kBaseSettings;
        for (int i = 0; text.size() < 5 * 1024 * 1024; ++i)
            text += "Name" + std::to_string(i) + "=1\n";
        WriteSettings(text);
    } else if (caseName == "settings-long-value") {
        WriteSettings(std::string(kBaseSettings) + "LastFilter=" + std::string(100 * 1000, 'a') + "\n");
    } else if (caseName == "settings-font-size-max") {
        WriteSettings(std::string(kBaseSettings) + "FontSizeDelta=2147483647\n");
    } else if (caseName == "settings-font-size-min") {
        WriteSettings(std::string(kBaseSettings) + "FontSizeDelta=-2147483648\n");
    } else {
        return false;
    }
    return true;
}

ProgramRun HostileFiles::Run(Mode mode, int timeoutSeconds) const {
    ProgramRun run;
    const std::string program = programDir_ + "/mirodate";
    std::vector<std::string> args{program, "--store", store_};
    if (mode == Mode::List) {
        args.insert(args.end(), {"--list", "2026-03-01", "2026-03-31"});
    } else {
        args.insert(args.end(),
                    {"--headless", "--virtual-clock", "--socket", scratch_ + "/runtime/hostile.sock",
                     "--screenshot", scratch_ + "/runtime/shot.png"});
    }
    const std::string outPath = scratch_ + "/runtime/out.txt";
    const std::string errPath = scratch_ + "/runtime/err.txt";
    // A child's peak memory, as the kernel counts it, starts from its
    // parent's at the exec; GNU time, a small process, reports the program's own.
    const std::string rssPath = scratch_ + "/runtime/rss.txt";
    const bool timed = access(kTimeProgram, X_OK) == 0;
    if (timed)
        args.insert(args.begin(), {kTimeProgram, "-f", "%M", "-o", rssPath});
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, outPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    posix_spawn_file_actions_addopen(&actions, 2, errPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    std::vector<char*> argv;
    for (const auto& arg : args)
        argv.push_back(const_cast<char*>(arg.c_str()));
    argv.push_back(nullptr);
    const auto start = std::chrono::steady_clock::now();
    pid_t pid = -1;
    const int spawned = posix_spawn(&pid, argv[0], &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (spawned != 0)
        return run;
    int status = 0;
    rusage usage{};
    const auto deadline = start + std::chrono::seconds(timeoutSeconds);
    bool killed = false;
    while (wait4(pid, &status, WNOHANG, &usage) == 0) {
        if (!killed && std::chrono::steady_clock::now() > deadline) {
            kill(pid, SIGKILL);
            killed = true;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    run.ms = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
    run.maxRssKb = usage.ru_maxrss;
    if (timed) {
        const std::string rss = ReadFile(rssPath);
        // The last line holds the figure; "Command exited with non-zero status" may come first.
        const std::size_t lastLine = rss.find_last_of('\n', rss.size() >= 2 ? rss.size() - 2 : 0);
        run.maxRssKb = std::atol(rss.c_str() + (lastLine == std::string::npos ? 0 : lastLine + 1));
    }
    run.exitCode = !killed && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    run.out = ReadFile(outPath);
    run.err = ReadFile(errPath);
    return run;
}

std::string HostileFiles::Snapshot() const {
    std::map<std::string, std::string> contents;
    std::error_code error;
    for (const auto& entry : fs::recursive_directory_iterator(store_, error))
        if (entry.is_regular_file(error))
            contents[entry.path().string()] = ReadFile(entry.path());
    contents[SettingsPath()] = ReadFile(SettingsPath());
    std::string snapshot;
    for (const auto& [path, bytes] : contents)
        snapshot += path + "\n" + std::to_string(std::hash<std::string>{}(bytes)) + "\n";
    return snapshot;
}

} // namespace mirodate
