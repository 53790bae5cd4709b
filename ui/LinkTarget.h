#pragma once
// What a link in the text box points at, told by the prefix of its target:
// the test is on the lower-cased target and only at its very start, the
// argument is taken from the target as written.
#include <string>
#include <string_view>

namespace mirodate {

enum class LinkKind { Web, Mail, Call, File, Action, Alert, Unknown };

struct LinkTarget {
    LinkKind kind = LinkKind::Unknown;
    // Web: the whole target; mail, call, file, action, alert: the text after
    // the prefix; unknown: "Unknown protocol!".
    std::u16string argument;

    static LinkTarget Classify(std::u16string_view target);
    // The message of an alert argument: without the two characters at each
    // end (the parentheses and quotes around it); empty when nothing is left.
    static std::u16string AlertMessage(std::u16string_view argument);
};

} // namespace mirodate
