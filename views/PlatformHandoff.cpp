#include "views/PlatformHandoff.h"

#include "data/PimStore.h"
#include "lang/LanguageTable.h"
#include "platform/DesktopHandlers.h"
#include "platform/Log.h"
#include "platform/Paths.h"
#include "platform/PlatformServices.h"
#include "platform/TextUtil.h"
#include "ui/MessagePage.h"

#include <cctype>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace mirodate {

namespace {
// File names made from subjects stay short and plain.
constexpr size_t kMaxNameLength = 60;

std::string FileNameFor(const PimItem& item) {
    std::string name;
    for (char c : Utf16ToUtf8(item.subject)) {
        const auto u = static_cast<unsigned char>(c);
        if (u >= 0x80 || std::isalnum(u))
            name += c;
        else if (!name.empty() && name.back() != '-')
            name += '-';
        if (name.size() >= kMaxNameLength)
            break;
    }
    while (!name.empty() && name.back() == '-')
        name.pop_back();
    // Cut at a character boundary, not inside one.
    while (!name.empty() && (static_cast<unsigned char>(name.back()) & 0xC0) == 0x80)
        name.pop_back();
    if (!name.empty() && (static_cast<unsigned char>(name.back()) & 0xC0) == 0xC0)
        name.pop_back();
    return name.empty() ? std::string(item.IsTask() ? "task" : "appointment") : name;
}

// Writes `text` to a new file in `dir`: "name.ics", else "name-2.ics" and on.
std::string WriteNewFile(const std::string& dir, const std::string& name, const std::string& text) {
    for (int n = 1; n < 1000; ++n) {
        const std::string path = dir + "/" + name + (n > 1 ? "-" + std::to_string(n) : "") + ".ics";
        const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
        if (fd < 0) {
            if (errno == EEXIST)
                continue;
            return {};
        }
        size_t written = 0;
        while (written < text.size()) {
            const ssize_t n2 = ::write(fd, text.data() + written, text.size() - written);
            if (n2 <= 0)
                break;
            written += static_cast<size_t>(n2);
        }
        const bool ok = written == text.size() && ::close(fd) == 0;
        if (!ok)
            ::unlink(path.c_str());
        return ok ? path : std::string();
    }
    return {};
}
} // namespace

void PlatformHandoff::OpenPlatformCalendar(HWND owner) {
    const auto command = DesktopHandlers::OtherCalendarCommand("");
    if (!command || !PlatformServices::Instance().RunProgram(*command)) {
        MessagePage::Tell(owner, Lang("NoPlatformCalendar"));
    }
}

void PlatformHandoff::OpenInPlatformCalendar(HWND owner, const PimItem& item) {
    PimSource* source = PimStore::Instance().Source();
    const std::string file = source ? source->ItemFilePath(item.oid) : std::string();
    const auto command = DesktopHandlers::OtherCalendarCommand(file);
    if (!command || !PlatformServices::Instance().RunProgram(*command)) {
        MessagePage::Tell(owner, Lang("NoPlatformCalendar"));
    }
}

void PlatformHandoff::OpenContact(HWND owner, const PimItem& item) {
    PimSource* source = PimStore::Instance().Source();
    const std::string file = source ? source->ItemFilePath(item.oid) : std::string();
    if (file.empty()) {
        MessagePage::Tell(owner, Lang("ItemNotFound"));
        return;
    }
    if (!PlatformServices::Instance().OpenPath(file))
        Log::Warning("no program took %s", file.c_str());
}

void PlatformHandoff::Beam(HWND owner, const PimItem& item) {
    PimSource* source = PimStore::Instance().Source();
    std::string text;
    if (!source || !source->ExportItem(item.oid, text)) {
        MessagePage::Tell(owner, Lang("ItemNotFound"));
        return;
    }
    const std::string dir = DesktopHandlers::DownloadDir();
    Paths::MakeDirs(dir);
    const std::string path = WriteNewFile(dir, FileNameFor(item), text);
    if (path.empty()) {
        MessagePage::Tell(owner, Lang("BeamFailed"));
        return;
    }
    std::u16string message = Lang("BeamSaved");
    const size_t at = message.find(u"%s");
    if (at != std::u16string::npos)
        message.replace(at, 2, Utf8ToUtf16(path));
    else
        message += u"\n" + Utf8ToUtf16(path);
    MessagePage::Tell(owner, message);
}

} // namespace mirodate
