#pragma once
// Hand-offs to the desktop: a web address to the browser, an address to the
// mail program, a number to the dialler, a file to its application, or any
// other program. Each call starts the program and returns at once, true when
// it could be started. The process-wide instance spawns the freedesktop.org
// helpers (xdg-open, xdg-email); tests install a recorder instead.
#include <string>
#include <vector>

namespace mirodate {

class PlatformServices {
public:
    virtual ~PlatformServices() = default;

    // xdg-open URL; an address that starts with "www." gets "http://" first,
    // so that the browser, not the file manager, takes it.
    virtual bool OpenUrl(const std::string& url);
    // xdg-email ADDRESS
    virtual bool SendMail(const std::string& address);
    // xdg-email --subject SUBJECT --body BODY ADDRESS...: a message to
    // several people, ready to send. Addresses that the helper would read
    // as options are left out; none left starts nothing.
    virtual bool SendMailTo(const std::vector<std::string>& addresses, const std::string& subject,
                            const std::string& body);
    // xdg-open tel:NUMBER, the number without its blanks
    virtual bool CallNumber(const std::string& number);
    // xdg-open PATH
    virtual bool OpenPath(const std::string& path);
    // Starts argv[0] (looked up in PATH) with the rest as its arguments,
    // without a shell and without waiting for it.
    virtual bool RunProgram(const std::vector<std::string>& argv) = 0;
    // Starts a program the same way and waits, without a time limit, until
    // it ends; its exit status, or -1 when it could not be started.
    virtual int RunProgramAndWait(const std::vector<std::string>& argv) = 0;

    // The instance the program hands off through.
    static PlatformServices& Instance();
    // Replaces it (not owned; must outlive its use); null restores the real one.
    static void SetInstance(PlatformServices* services);

protected:
    // The one-argument hand-offs. An empty argument, or one that the helper
    // would read as an option, starts nothing.
    bool RunHelper(const char* program, const std::string& argument);
};

} // namespace mirodate
