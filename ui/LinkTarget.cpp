#include "ui/LinkTarget.h"

#include <array>

namespace mirodate {

namespace {
struct Prefix {
    std::u16string_view text; // lower case
    LinkKind kind;
};
// "http://" before "https://" does not matter: both keep the whole target.
constexpr std::array<Prefix, 9> kPrefixes{{
    {u"http://", LinkKind::Web},
    {u"https://", LinkKind::Web},
    {u"www.", LinkKind::Web},
    {u"mailto:", LinkKind::Mail},
    {u"tel:", LinkKind::Call},
    {u"file:\\\\\\", LinkKind::File},
    {u"file:///", LinkKind::File},
    {u"action:\\\\\\", LinkKind::Action},
    {u"alert", LinkKind::Alert},
}};
constexpr std::u16string_view kUnknownProtocol = u"Unknown protocol!";
// The characters around an alert's message: "('" and "')".
constexpr std::size_t kAlertWrapping = 2;

bool StartsWithLower(std::u16string_view text, std::u16string_view lowerPrefix) {
    if (text.size() < lowerPrefix.size())
        return false;
    for (std::size_t i = 0; i < lowerPrefix.size(); ++i) {
        char16_t ch = text[i];
        if (ch >= u'A' && ch <= u'Z')
            ch += u'a' - u'A';
        if (ch != lowerPrefix[i])
            return false;
    }
    return true;
}
} // namespace

LinkTarget LinkTarget::Classify(std::u16string_view target) {
    for (const Prefix& prefix : kPrefixes) {
        if (!StartsWithLower(target, prefix.text))
            continue;
        LinkTarget result;
        result.kind = prefix.kind;
        result.argument =
            std::u16string(prefix.kind == LinkKind::Web ? target : target.substr(prefix.text.size()));
        return result;
    }
    return LinkTarget{LinkKind::Unknown, std::u16string(kUnknownProtocol)};
}

std::u16string LinkTarget::AlertMessage(std::u16string_view argument) {
    if (argument.size() <= 2 * kAlertWrapping)
        return std::u16string();
    return std::u16string(argument.substr(kAlertWrapping, argument.size() - 2 * kAlertWrapping));
}

} // namespace mirodate
