#pragma once
// Whether a synchroniser (vdirsyncer) is working on the store, from the
// process list.
namespace mirodate {

class SyncState {
public:
    static bool IsSynchronizerRunning();
};

} // namespace mirodate
