#include "lang/LanguageTable.h"

#include "platform/Log.h"
#include "platform/Paths.h"
#include "platform/Settings.h"
#include "platform/TextUtil.h"

#include <fstream>

namespace mirodate {

LanguageTable& LanguageTable::Instance() {
    static LanguageTable table;
    return table;
}

void LanguageTable::SetBytes(std::string_view bytes) { text_ = DecodeUtf16Le(bytes); }

bool LanguageTable::Load(const std::string& path) {
    text_.clear();
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        Log::Warning("language file %s cannot be opened", path.c_str());
        return false;
    }
    const std::streampos start = file.tellg();
    file.seekg(0, std::ios::end);
    const std::streamoff size = file.tellg() - start;
    file.seekg(start);
    if (size < 0 || static_cast<unsigned long long>(size) > kMaxFileBytes) {
        Log::Warning("language file %s is too big (%lld bytes)", path.c_str(), static_cast<long long>(size));
        return false;
    }
    std::string bytes(static_cast<size_t>(size), '\0');
    if (!file.read(bytes.data(), size)) {
        Log::Warning("language file %s cannot be read", path.c_str());
        return false;
    }
    SetBytes(bytes);
    return true;
}

bool LanguageTable::LoadFromSettings() {
    const std::string fileName = Utf16ToUtf8(Settings::GetLanguage());
    return Load(Paths::FindResourceDir(fileName) + "/" + fileName);
}

std::u16string LanguageTable::Get(std::u16string_view key) const {
    // "LANGUAGE" may be the first line of the file, so it needs no line break.
    std::u16string pattern;
    if (key != u"LANGUAGE")
        pattern.push_back(u'\n');
    pattern.append(key);
    pattern.push_back(u'=');

    const size_t found = text_.find(pattern);
    if (found == std::u16string::npos)
        return std::u16string(key);
    const size_t begin = found + pattern.size();
    size_t end = text_.find_first_of(u"\r\n", begin);
    if (end == std::u16string::npos)
        end = text_.size();

    std::u16string value;
    value.reserve(end - begin);
    for (size_t i = begin; i < end; ++i) {
        if (text_[i] == u'\\' && i + 1 < end && text_[i + 1] == u'n') {
            value.push_back(u'\n');
            ++i;
        } else {
            value.push_back(text_[i]);
        }
    }
    return value;
}

std::u16string LanguageTable::Get(std::string_view keyAnsi) const {
    return Get(std::u16string_view(Utf8ToUtf16(keyAnsi.substr(0, kMaxNarrowKey))));
}

std::u16string Lang(std::string_view key) {
    return LanguageTable::Instance().Get(key);
}
std::u16string LangW(std::u16string_view key) {
    return LanguageTable::Instance().Get(key);
}

} // namespace mirodate
