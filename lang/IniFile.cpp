#include "lang/IniFile.h"

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
    BuildIndex();
    return !lines_.empty();
}

void IniFile::BuildIndex() {
    sections_.clear();
    // Entries before the first section, and after a repeated section line
    // (whose name the first one answers for), are never found.
    Section* current = nullptr;
    for (const Line& line : lines_) {
        if (line.kind == LineKind::Section) {
            auto [it, inserted] = sections_.try_emplace(UpperAscii(line.text));
            current = inserted ? &it->second : nullptr;
            if (current)
                current->line = &line;
        } else if (line.kind == LineKind::Entry && current) {
            std::string_view code = WithoutComment(line.text);
            size_t equals = code.find('=');
            if (equals != std::string_view::npos)
                current->entries.try_emplace(UpperAscii(Clip(code.substr(0, equals))), &line);
        }
    }
}

const IniFile::Section* IniFile::FindSection(std::string_view section) const {
    auto it = sections_.find(UpperAscii("[" + std::string(section) + "]"));
    return it == sections_.end() ? nullptr : &it->second;
}

bool IniFile::HasSection(std::string_view section) const {
    return FindSection(section) != nullptr;
}

bool IniFile::Find(std::string_view section, std::string_view key, LookupResult& result) const {
    const Section* found = FindSection(section);
    if (!found)
        return false;
    auto entry = found->entries.find(UpperAscii(Clip(key)));
    if (entry == found->entries.end())
        return false;
    std::string_view text = entry->second->text;
    std::string_view code = WithoutComment(text);
    size_t equals = code.find('=');
    result.section = found->line;
    result.entry = entry->second;
    result.key = std::string(Clip(code.substr(0, equals)));
    result.value = std::string(Clip(code.substr(equals + 1)));
    result.comment = std::string(text.substr(code.size()));
    return true;
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
