#include "lang/IniFile.h"

#include <algorithm>

namespace mirodate {

namespace {

std::string UpperAscii(std::string_view text) {
    std::string out(text);
    for (char& c : out)
        if (c >= 'a' && c <= 'z')
            c = static_cast<char>(c - 'a' + 'A');
    return out;
}

// The part of a line that decides its kind and holds its name and value.
std::string_view WithoutComment(std::string_view text) {
    size_t semicolon = text.find(';');
    return semicolon == std::string_view::npos ? text : text.substr(0, semicolon);
}

IniFile::LineKind Classify(std::string_view text) {
    std::string_view code = WithoutComment(text);
    if (code.find('[') != std::string_view::npos && code.find(']') != std::string_view::npos)
        return IniFile::LineKind::Section;
    if (code.find('=') != std::string_view::npos)
        return IniFile::LineKind::Entry;
    return IniFile::LineKind::Other;
}

std::string_view Clip(std::string_view text) {
    return text.substr(0, IniFile::kMaxNameLength);
}

} // namespace

bool IniFile::Parse(std::string_view text) {
    lines_.clear();
    size_t start = 0;
    while (start < text.size()) {
        size_t end = text.find('\n', start);
        if (end == std::string_view::npos)
            end = text.size();
        Line line;
        line.text.reserve(end - start);
        for (char c : text.substr(start, end - start))
            if (c != '\r')
                line.text.push_back(c);
        line.kind = Classify(line.text);
        lines_.push_back(std::move(line));
        start = end + 1;
    }
    return !lines_.empty();
}

std::list<IniFile::Line>::const_iterator IniFile::FindSection(std::string_view section) const {
    const std::string wanted = UpperAscii("[" + std::string(section) + "]");
    return std::find_if(lines_.begin(), lines_.end(), [&](const Line& line) {
        return line.kind == LineKind::Section && UpperAscii(line.text) == wanted;
    });
}

bool IniFile::HasSection(std::string_view section) const {
    return FindSection(section) != lines_.end();
}

bool IniFile::Find(std::string_view section, std::string_view key, LookupResult& result) const {
    auto sectionLine = FindSection(section);
    if (sectionLine == lines_.end())
        return false;
    const std::string wantedKey = UpperAscii(Clip(key));
    for (auto it = std::next(sectionLine); it != lines_.end() && it->kind != LineKind::Section; ++it) {
        if (it->kind != LineKind::Entry)
            continue;
        std::string_view text = it->text;
        std::string_view code = WithoutComment(text);
        size_t equals = code.find('=');
        if (equals == std::string_view::npos)
            continue;
        if (UpperAscii(Clip(code.substr(0, equals))) != wantedKey)
            continue;
        result.section = &*sectionLine;
        result.entry = &*it;
        result.key = std::string(Clip(code.substr(0, equals)));
        result.value = std::string(Clip(code.substr(equals + 1)));
        result.comment = std::string(text.substr(code.size()));
        return true;
    }
    return false;
}

std::string IniFile::GetValue(std::string_view section, std::string_view key,
                              std::string_view defaultValue) const {
    LookupResult found;
    if (!Find(section, key, found))
        return std::string(defaultValue);
    if (!found.value.empty() && found.value.front() == '$') {
        // One level only: a variable's own value is returned as written.
        LookupResult variable;
        if (!Find(kVariablesSection, found.value, variable))
            return std::string(defaultValue);
        return variable.value;
    }
    return found.value;
}

} // namespace mirodate
