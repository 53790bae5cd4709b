#pragma once
// The running instance's end of the instance link: a Unix socket under the
// runtime directory, served by a thread of its own. Requests reach the
// program through the handler, called on the server thread; the handler must
// be safe to call from there (post to the UI thread, answer from atomics).
#include <atomic>
#include <cstdint>
#include <functional>
#include <string>
#include <thread>

namespace mirodate {

class InstanceServer {
public:
    struct Handler {
        // Whether a top-level window of this class and title exists.
        std::function<bool(const std::string& className, const std::string& title)> hasWindow;
        // A registered message posted to every top-level window.
        std::function<void(const std::string& messageName)> broadcast;
        // WM_COPYDATA to the window; returns the message result.
        std::function<std::int32_t(std::uint32_t dwData, const std::string& bytes)> copyData;
        std::function<void(const std::string& className, const std::string& title)> bringToFront;
        std::function<void(const std::string& className, const std::string& title)> close;
    };

    InstanceServer() = default;
    ~InstanceServer();
    InstanceServer(const InstanceServer&) = delete;
    InstanceServer& operator=(const InstanceServer&) = delete;

    // Binds the socket and starts serving. A socket left behind by a process
    // that died is removed; one that a live instance answers on is not, and
    // Start returns false.
    bool Start(const std::string& socketPath, Handler handler);
    void Stop();
    bool IsRunning() const { return thread_.joinable(); }

    // The default socket: <runtime dir>/mirodate.sock.
    static std::string DefaultSocketPath();

private:
    void Serve();

    std::string path_;
    Handler handler_;
    int listenFd_ = -1;
    int wakePipe_[2] = {-1, -1};
    std::thread thread_;
};

} // namespace mirodate
