#pragma once
// Shows the system's wait cursor for its lifetime: a scope around work the
// user waits for. Headless it does nothing visible.
namespace mirodate {

class WaitCursor {
public:
    WaitCursor();
    ~WaitCursor();
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;
};

} // namespace mirodate
