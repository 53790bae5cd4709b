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

void LanguageTable::SetText(std::u16string text) {
    text_ = std::move(text);
    BuildIndex();
}

void LanguageTable::SetBytes(std::string_view bytes) {
    SetText(DecodeUtf16Le(bytes));
}

void LanguageTable::BuildIndex() {
    valueOfKey_.clear();
    for (size_t lineFeed = text_.find(u'\n'); lineFeed != std::u16string::npos;) {
        const size_t keyStart = lineFeed + 1;
        const size_t stop = text_.find_first_of(u"=\n", keyStart);
        if (stop != std::u16string::npos && text_[stop] == u'=')
            valueOfKey_.try_emplace(text_.substr(keyStart, stop - keyStart), stop + 1);
        lineFeed = stop == std::u16string::npos || text_[stop] == u'\n' ? stop : text_.find(u'\n', stop);
    }
}

size_t LanguageTable::FindValue(std::u16string_view key) const {
    // The index knows keys that start a line and hold no "=" or line feed;
    // anything else (and "LANGUAGE", which may also open the text) is searched.
    if (key != u"LANGUAGE" && key.find_first_of(u"=\n") == std::u16string_view::npos) {
        auto it = valueOfKey_.find(std::u16string(key));
        return it == valueOfKey_.end() ? std::u16string::npos : it->second;
    }
    std::u16string pattern;
    if (key != u"LANGUAGE")
        pattern.push_back(u'\n');
    pattern.append(key);
    pattern.push_back(u'=');
    const size_t found = text_.find(pattern);
    return found == std::u16string::npos ? found : found + pattern.size();
}

bool LanguageTable::Load(const std::string& path) {
    SetText(u"");
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        Log::Warning("language file %s cannot be opened", PrintableText(path).c_str());
        return false;
    }
    const std::streampos start = file.tellg();
    file.seekg(0, std::ios::end);
    const std::streamoff size = file.tellg() - start;
    file.seekg(start);
    if (size < 0 || static_cast<unsigned long long>(size) > kMaxFileBytes) {
        Log::Warning(
            "language file %s is not read: %lld bytes, more than the %zu KB a language file may have",
            PrintableText(path).c_str(), static_cast<long long>(size), kMaxFileBytes / 1024);
        return false;
    }
    std::string bytes(static_cast<size_t>(size), '\0');
    if (!file.read(bytes.data(), size)) {
        Log::Warning("language file %s cannot be read", PrintableText(path).c_str());
        return false;
    }
    SetBytes(bytes);
    return true;
}

bool LanguageTable::LoadFromSettings() {
    const std::string fileName = Utf16ToUtf8(Settings::GetLanguage());
    if (Load(Paths::FindResourceDir(fileName) + "/" + fileName))
        return true;
    if (fileName == kDefaultFile)
        return false;
    // Texts in the default language read better than bare keys.
    Log::Warning("language file %s cannot be used; the texts are English", PrintableText(fileName).c_str());
    return Load(Paths::FindResourceDir(kDefaultFile) + "/" + kDefaultFile);
}

std::u16string LanguageTable::Get(std::u16string_view key) const {
    const size_t begin = FindValue(key);
    if (begin == std::u16string::npos)
        return std::u16string(key);
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
