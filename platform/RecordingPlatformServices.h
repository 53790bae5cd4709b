#pragma once
// Hand-offs that start nothing: each program call is written down as its
// command line ("xdg-open tel:+49 30 1234"), so that tests see exactly what
// would have reached the desktop. Installs itself as the process-wide
// instance for its lifetime.
#include "platform/PlatformServices.h"

#include <functional>

namespace mirodate {

class RecordingPlatformServices : public PlatformServices {
public:
    RecordingPlatformServices();
    ~RecordingPlatformServices() override;
    RecordingPlatformServices(const RecordingPlatformServices&) = delete;
    RecordingPlatformServices& operator=(const RecordingPlatformServices&) = delete;

    bool RunProgram(const std::vector<std::string>& argv) override;
    // Recorded like RunProgram; the hook runs in place of the program, while
    // the caller waits (0 is the exit status then).
    int RunProgramAndWait(const std::vector<std::string>& argv) override;
    void SetWaitHook(std::function<void(const std::vector<std::string>&)> hook) {
        waitHook_ = std::move(hook);
    }

    // The calls so far, arguments joined by single blanks.
    const std::vector<std::string>& Calls() const { return calls_; }
    // The same calls as argument vectors.
    const std::vector<std::vector<std::string>>& Programs() const { return programs_; }
    void Clear();
    // What RunProgram answers (a failed start when false).
    void SetResult(bool result) { result_ = result; }

private:
    PlatformServices* previous_ = nullptr;
    std::vector<std::string> calls_;
    std::vector<std::vector<std::string>> programs_;
    bool result_ = true;
    std::function<void(const std::vector<std::string>&)> waitHook_;
};

} // namespace mirodate
