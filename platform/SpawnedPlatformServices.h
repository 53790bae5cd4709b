#pragma once
// The real hand-offs: each program runs as a child in a session of its own
// (so that a Ctrl-C in our terminal does not reach the browser), started
// with posix_spawnp and reaped by a small waiting thread, so that no child
// is left a zombie and the caller never waits.
#include "platform/PlatformServices.h"

namespace mirodate {

class SpawnedPlatformServices : public PlatformServices {
public:
    bool RunProgram(const std::vector<std::string>& argv) override;
    int RunProgramAndWait(const std::vector<std::string>& argv) override;
};

} // namespace mirodate
