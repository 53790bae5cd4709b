#include "skin/SkinLoader.h"

#include "lang/IniFile.h"
#include "platform/Log.h"
#include "platform/Paths.h"
#include "platform/Settings.h"
#include "platform/TextUtil.h"
#include "skin/ApplySkin.h"
#include "skin/MenuBarIcons.h"
#include "skin/PictureCache.h"
#include "skin/SkinArchive.h"
#include "skin/SkinStyles.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace mirodate {

namespace {

constexpr std::string_view kPrefix = "skin.";
constexpr std::string_view kSuffix = ".zip";
constexpr std::string_view kStyleFile = "skin.ini";

std::string ArchiveFileName(const std::u16string& name) {
    return std::string(kPrefix) + Utf16ToUtf8(name) + std::string(kSuffix);
}

// A skin.ini longer than this is not a skin: the shipped ones have 3 KB.
constexpr std::uint64_t kMaxStyleFileBytes = 256 * 1024;

enum class Applied { Yes, No, LimitExceeded };

Applied ApplyArchive(const std::string& path, SkinStyles& styles, bool highResolution) {
    SkinArchive archive;
    if (archive.Open(path) != SkinArchive::kOk) {
        if (archive.LimitExceeded())
            Log::Warning("skin %s is not used: %s", PrintableText(path).c_str(),
                         PrintableText(archive.LimitReason()).c_str());
        else
            Log::Warning("skin %s cannot be opened", PrintableText(path).c_str());
        return archive.LimitExceeded() ? Applied::LimitExceeded : Applied::No;
    }
    SkinArchive::Item styleFile;
    if (archive.FindItem(kStyleFile, styleFile) == SkinArchive::kOk && styleFile.size > kMaxStyleFileBytes)
        archive.NoteLimitExceeded("skin.ini has " + std::to_string(styleFile.size) +
                                  " bytes, more than the " + std::to_string(kMaxStyleFileBytes / 1024) +
                                  " KB it may have");
    std::string text;
    const bool read =
        !archive.LimitExceeded() && archive.ReadItem(kStyleFile, text) == SkinArchive::kOk && !text.empty();
    if (!read && !archive.LimitExceeded()) {
        Log::Warning("skin %s has no readable skin.ini", PrintableText(path).c_str());
        return Applied::No;
    }
    if (read) {
        IniFile ini;
        if (!ini.Parse(text))
            return Applied::No;
        ApplySkin(ini, archive, highResolution, styles);
    }
    if (archive.LimitExceeded()) {
        Log::Warning("skin %s is not used: %s", PrintableText(path).c_str(),
                     PrintableText(archive.LimitReason()).c_str());
        return Applied::LimitExceeded;
    }
    return Applied::Yes;
}

} // namespace

std::string SkinLoader::ArchivePath(const std::u16string& name) {
    const std::string fileName = ArchiveFileName(name);
    return Paths::FindResourceDir(fileName) + "/" + fileName;
}

bool SkinLoader::LoadArchive(const std::string& path, SkinStyles& styles, bool highResolution) {
    const SkinStyles before = styles;
    Applied applied = ApplyArchive(path, styles, highResolution);
    if (applied == Applied::LimitExceeded) {
        // Nothing of a skin that went beyond a limit stays, not even the
        // pictures it had decoded before.
        styles = before;
        PictureCache::Instance().Clear();
        const std::string fallback = ArchivePath(kDefaultSkin);
        if (fallback != path) {
            Log::Warning("the default skin %s is used instead", PrintableText(fallback).c_str());
            applied = ApplyArchive(fallback, styles, highResolution);
            if (applied == Applied::LimitExceeded) {
                styles = before;
                PictureCache::Instance().Clear();
            }
        }
    }
    if (!styles.menuBar.iconsFromSkin)
        styles.menuBar.icons = MenuBarIcons::Builtin(highResolution);
    return applied == Applied::Yes;
}

bool SkinLoader::Load(SkinStyles& styles, bool highResolution) {
    std::string path = ArchivePath(Settings::GetSkin());
    if (!Paths::FileExists(path)) {
        Settings::SetSkin(kDefaultSkin);
        path = ArchivePath(Settings::GetSkin());
    }
    return LoadArchive(path, styles, highResolution);
}

std::vector<std::u16string> SkinLoader::ListIn(const std::vector<std::string>& folders) {
    std::vector<std::u16string> names;
    for (const std::string& folder : folders) {
        std::error_code error;
        for (const auto& entry : std::filesystem::directory_iterator(folder, error)) {
            const std::string file = entry.path().filename().string();
            if (file.size() <= kPrefix.size() + kSuffix.size() || !file.starts_with(kPrefix) ||
                !file.ends_with(kSuffix))
                continue;
            names.push_back(
                Utf8ToUtf16(file.substr(kPrefix.size(), file.size() - kPrefix.size() - kSuffix.size())));
        }
    }
    std::sort(names.begin(), names.end());
    names.erase(std::unique(names.begin(), names.end()), names.end());
    return names;
}

std::vector<std::u16string> SkinLoader::ListInstalled() {
    std::vector<std::string> folders{Paths::ProgramDir()};
    const std::string defaultFolder = Paths::FindResourceDir(ArchiveFileName(kDefaultSkin));
    if (defaultFolder != folders.front())
        folders.push_back(defaultFolder);
    return ListIn(folders);
}

} // namespace mirodate
