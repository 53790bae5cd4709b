#pragma once
// Hand-offs that start nothing: each program call is written down as its
// command line ("xdg-open tel:+49 30 1234"), so that tests see exactly what
// would have reached the desktop. Installs itself as the process-wide
// instance for its lifetime.
#include "platform/PlatformServices.h"

namespace mirodate {

class RecordingPlatformServices : public PlatformServices {
public:
    RecordingPlatformServices();
    ~RecordingPlatformServices() override;
    RecordingPlatformServices(const RecordingPlatformServices&) = delete;
    RecordingPlatformServices& operator=(const RecordingPlatformServices&) = delete;

    bool RunProgram(const std::vector<std::string>& argv) override;

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
};

} // namespace mirodate
