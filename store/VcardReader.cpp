#include "store/VcardReader.h"

#include "data/DateTime.h"
#include "platform/TextUtil.h"

#include <algorithm>
#include <cctype>
#include <vector>

namespace mirodate {

namespace {

struct Line {
    std::string name;   // lower case, group removed
    std::string params; // lower case
    std::string value;
};

std::vector<Line> Unfold(std::string_view text) {
    std::vector<std::string> raw;
    std::size_t begin = 0;
    while (begin < text.size()) {
        std::size_t end = text.find('\n', begin);
        if (end == std::string_view::npos)
            end = text.size();
        std::string line(text.substr(begin, end - begin));
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        if (!line.empty() && (line[0] == ' ' || line[0] == '\t') && !raw.empty())
            raw.back() += line.substr(1);
        else
            raw.push_back(std::move(line));
        begin = end + 1;
    }
    std::vector<Line> lines;
    for (const auto& entry : raw) {
        const std::size_t colon = entry.find(':');
        if (colon == std::string::npos)
            continue;
        std::string head = entry.substr(0, colon);
        Line line;
        line.value = entry.substr(colon + 1);
        const std::size_t semicolon = head.find(';');
        line.name = ToLowerAscii(head.substr(0, semicolon));
        if (semicolon != std::string::npos)
            line.params = ToLowerAscii(head.substr(semicolon + 1));
        const std::size_t dot = line.name.find('.');
        if (dot != std::string::npos)
            line.name = line.name.substr(dot + 1);
        lines.push_back(std::move(line));
    }
    return lines;
}

std::string Unescape(const std::string& value) {
    std::string out;
    for (std::size_t i = 0; i < value.size(); ++i) {
        if (value[i] == '\\' && i + 1 < value.size()) {
            const char next = value[++i];
            out += next == 'n' || next == 'N' ? '\n' : next;
        } else {
            out += value[i];
        }
    }
    return out;
}

bool Digits(std::string_view text, std::size_t at, std::size_t count, int& value) {
    if (at + count > text.size())
        return false;
    value = 0;
    for (std::size_t i = at; i < at + count; ++i) {
        if (!std::isdigit(static_cast<unsigned char>(text[i])))
            return false;
        value = value * 10 + (text[i] - '0');
    }
    return true;
}

// An EMAIL value as an address: unescaped, trimmed, a "mailto:" taken off;
// empty when it cannot be one (no "@", blanks inside, too long).
std::string EmailAddress(const std::string& value) {
    std::string text = Unescape(value);
    const std::size_t first = text.find_first_not_of(" \t");
    if (first == std::string::npos)
        return {};
    text = text.substr(first, text.find_last_not_of(" \t") - first + 1);
    if (ToLowerAscii(text.substr(0, 7)) == "mailto:")
        text.erase(0, 7);
    if (text.empty() || text.size() > VcardReader::kMaxEmailLength || text.find('@') == std::string::npos ||
        text.find_first_of(" \t\r\n,;<>") != std::string::npos)
        return {};
    return text;
}

} // namespace

bool VcardReader::ParseDate(std::string_view text, double& date, bool& hasYear) {
    const std::size_t t = text.find('T');
    if (t != std::string_view::npos)
        text = text.substr(0, t);
    while (!text.empty() && std::isspace(static_cast<unsigned char>(text.back())))
        text.remove_suffix(1);
    int year = PimRecord::kNoYear, month = 0, day = 0;
    hasYear = true;
    if (text.starts_with("--")) {
        hasYear = false;
        text.remove_prefix(2);
        if (text.size() == 4) {
            if (!Digits(text, 0, 2, month) || !Digits(text, 2, 2, day))
                return false;
        } else if (text.size() == 5 && text[2] == '-') {
            if (!Digits(text, 0, 2, month) || !Digits(text, 3, 2, day))
                return false;
        } else {
            return false;
        }
    } else if (text.size() == 8) {
        if (!Digits(text, 0, 4, year) || !Digits(text, 4, 2, month) || !Digits(text, 6, 2, day))
            return false;
    } else if (text.size() == 10 && text[4] == '-' && text[7] == '-') {
        if (!Digits(text, 0, 4, year) || !Digits(text, 5, 2, month) || !Digits(text, 8, 2, day))
            return false;
    } else {
        return false;
    }
    const DateTime value(year, month, day);
    if (!value.IsValid())
        return false;
    date = value.ToDate();
    return true;
}

bool VcardReader::Read(std::string_view text, PimRecord& record, std::string& problem) {
    const std::vector<Line> lines = Unfold(text);
    bool begun = false;
    std::string fullName, structuredName;
    record = PimRecord();
    record.itemKind = 2;
    for (const Line& line : lines) {
        if (line.name == "begin" && ToLowerAscii(line.value) == "vcard") {
            if (begun)
                break; // only the first card of a file
            begun = true;
            continue;
        }
        if (!begun)
            continue;
        if (line.name == "end")
            break;
        if (line.name == "fn")
            fullName = Unescape(line.value);
        else if (line.name == "n")
            structuredName = line.value;
        else if (line.name == "uid")
            record.uid = Unescape(line.value);
        else if (line.name == "email") {
            const std::u16string address = Utf8ToUtf16(EmailAddress(line.value));
            if (!address.empty() && record.emails.size() < kMaxEmails &&
                std::find(record.emails.begin(), record.emails.end(), address) == record.emails.end())
                record.emails.push_back(address);
        } else if (line.params.find("value=text") == std::string::npos) {
            double date = 0.0;
            bool hasYear = true;
            if (line.name == "bday" && ParseDate(line.value, date, hasYear)) {
                record.birthday = date;
                record.birthdayHasYear = hasYear;
            } else if ((line.name == "anniversary" || line.name == "x-anniversary" ||
                        line.name == "x-evolution-anniversary") &&
                       ParseDate(line.value, date, hasYear)) {
                record.anniversary = date;
                record.anniversaryHasYear = hasYear;
            }
        }
    }
    if (!begun) {
        problem = "not a vCard";
        return false;
    }
    if (fullName.empty() && !structuredName.empty()) {
        // N: family;given;... shown as "given family"
        const std::size_t semicolon = structuredName.find(';');
        const std::string family = Unescape(structuredName.substr(0, semicolon));
        std::string given = semicolon == std::string::npos ? "" : structuredName.substr(semicolon + 1);
        given = Unescape(given.substr(0, given.find(';')));
        fullName = given.empty() ? family : family.empty() ? given : given + " " + family;
    }
    record.subject = Utf8ToUtf16(fullName);
    return true;
}

} // namespace mirodate
