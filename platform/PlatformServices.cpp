#include "platform/PlatformServices.h"

#include "platform/SpawnedPlatformServices.h"

#include <atomic>

namespace mirodate {

namespace {
std::atomic<PlatformServices*> g_installed{nullptr};

bool StartsWithNoCase(const std::string& text, const char* prefix) {
    for (std::size_t i = 0; prefix[i]; ++i) {
        if (i >= text.size())
            return false;
        char ch = text[i];
        if (ch >= 'A' && ch <= 'Z')
            ch += 'a' - 'A';
        if (ch != prefix[i])
            return false;
    }
    return true;
}
} // namespace

bool PlatformServices::OpenUrl(const std::string& url) {
    if (StartsWithNoCase(url, "www."))
        return RunHelper("xdg-open", "http://" + url);
    return RunHelper("xdg-open", url);
}

bool PlatformServices::SendMail(const std::string& address) {
    return RunHelper("xdg-email", address);
}

bool PlatformServices::SendMailTo(const std::vector<std::string>& addresses, const std::string& subject,
                                  const std::string& body) {
    std::vector<std::string> argv{"xdg-email", "--subject", subject, "--body", body};
    for (const std::string& address : addresses)
        if (!address.empty() && address[0] != '-')
            argv.push_back(address);
    if (argv.size() == 5)
        return false;
    return RunProgram(argv);
}

bool PlatformServices::CallNumber(const std::string& number) {
    // Blanks only group the digits for the eye; a tel: address has none.
    std::string compact;
    for (char ch : number)
        if (ch != ' ' && ch != '\t')
            compact += ch;
    if (compact.empty())
        return false;
    return RunHelper("xdg-open", "tel:" + compact);
}

bool PlatformServices::OpenPath(const std::string& path) {
    return RunHelper("xdg-open", path);
}

bool PlatformServices::RunHelper(const char* program, const std::string& argument) {
    // "-x" would be taken as an option of the helper, not as what to open.
    if (argument.empty() || argument[0] == '-')
        return false;
    return RunProgram({program, argument});
}

PlatformServices& PlatformServices::Instance() {
    if (PlatformServices* installed = g_installed.load())
        return *installed;
    static SpawnedPlatformServices real;
    return real;
}

void PlatformServices::SetInstance(PlatformServices* services) {
    g_installed.store(services);
}

} // namespace mirodate
