#include "ui/LinkDispatcher.h"

#include "lang/LanguageTable.h"
#include "platform/Log.h"
#include "platform/PlatformServices.h"
#include "platform/TextUtil.h"

namespace mirodate {

std::u16string LinkDispatcher::Question(const char* key, const std::u16string& argument) {
    return Lang(key) + u":\n" + argument;
}

bool LinkDispatcher::Ask(const char* key, const std::u16string& argument) const {
    return confirm && confirm(Question(key, argument));
}

void LinkDispatcher::Inform(const std::u16string& text, const std::u16string& caption) const {
    if (inform)
        inform(text, caption);
}

bool LinkDispatcher::Activate(const std::u16string& target) const {
    const LinkTarget link = LinkTarget::Classify(target);
    const std::string argument = Utf16ToUtf8(link.argument);
    PlatformServices& services = PlatformServices::Instance();
    bool started = false;
    switch (link.kind) {
    case LinkKind::Web:
        if (!Ask("QuestionVisitUrl", link.argument))
            return false;
        started = services.OpenUrl(argument);
        break;
    case LinkKind::Mail:
        if (!Ask("QuestionSendMail", link.argument))
            return false;
        started = services.SendMail(argument);
        break;
    case LinkKind::Call:
        if (!Ask("QuestionCallNumber", link.argument))
            return false;
        started = services.CallNumber(argument);
        break;
    case LinkKind::File:
        if (!Ask("QuestionOpenFile", link.argument))
            return false;
        started = services.OpenPath(argument);
        break;
    case LinkKind::Alert:
        Inform(LinkTarget::AlertMessage(link.argument), Lang("LinkAlertCaption"));
        return false;
    case LinkKind::Action:
        if (action)
            action(link.argument);
        return false;
    case LinkKind::Unknown:
        Inform(Lang("UnknownProtocol"), Lang("LinkAlertCaption"));
        return false;
    }
    // As on the handheld, a failed start is not put to the user; the log has it.
    if (!started)
        Log::Info("link not handed off: %s", argument.c_str());
    return started;
}

} // namespace mirodate
