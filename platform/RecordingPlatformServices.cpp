#include "platform/RecordingPlatformServices.h"

namespace mirodate {

RecordingPlatformServices::RecordingPlatformServices() : previous_(&PlatformServices::Instance()) {
    PlatformServices::SetInstance(this);
}

RecordingPlatformServices::~RecordingPlatformServices() {
    // Gives back whatever was installed before, unless someone replaced us meanwhile.
    if (&PlatformServices::Instance() == this)
        PlatformServices::SetInstance(previous_);
}

bool RecordingPlatformServices::RunProgram(const std::vector<std::string>& argv) {
    std::string line;
    for (const std::string& arg : argv) {
        if (!line.empty())
            line += ' ';
        line += arg;
    }
    calls_.push_back(std::move(line));
    programs_.push_back(argv);
    return result_;
}

int RecordingPlatformServices::RunProgramAndWait(const std::vector<std::string>& argv) {
    if (!RunProgram(argv))
        return -1;
    if (waitHook_)
        waitHook_(argv);
    return 0;
}

void RecordingPlatformServices::Clear() {
    calls_.clear();
    programs_.clear();
}

} // namespace mirodate
