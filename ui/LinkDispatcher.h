#pragma once
// What a tap on a link does: web, mail, call and file links ask the user
// first ("QuestionVisitUrl" and the others, formed "%s:\n%s" with the
// argument) and on yes hand the argument to the desktop through
// PlatformServices; an alert shows its message; an "action:\\\" link goes to
// the owner; anything else says that the protocol is unknown. The owner
// supplies how questions and messages are shown (its message page).
#include "ui/LinkTarget.h"

#include <functional>
#include <string>

namespace mirodate {

class LinkDispatcher {
public:
    // Asks a yes/no question; true for yes. Without it every question is
    // answered no, so nothing starts unasked.
    std::function<bool(const std::u16string& text)> confirm;
    // Shows a message with a caption (the alert's text, the unknown protocol).
    std::function<void(const std::u16string& text, const std::u16string& caption)> inform;
    // Receives the argument of an "action:\\\" link.
    std::function<void(const std::u16string& argument)> action;

    // Runs the link action for `target`; true when something was handed off.
    bool Activate(const std::u16string& target) const;

    // The question for a hand-off: the language text of `key`, a colon, a
    // line break and the argument.
    static std::u16string Question(const char* key, const std::u16string& argument);

private:
    bool Ask(const char* key, const std::u16string& argument) const;
    void Inform(const std::u16string& text, const std::u16string& caption) const;
};

} // namespace mirodate
