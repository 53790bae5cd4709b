#include "platform/InstanceServer.h"

#include "platform/InstanceFrameReader.h"
#include "platform/InstanceProtocol.h"
#include "platform/Log.h"
#include "platform/Paths.h"

#include <cerrno>
#include <chrono>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <vector>

namespace mirodate {

namespace {
using namespace instance;
// At most this many clients are served at once; more wait in the backlog.
constexpr size_t kMaxClients = 8;

struct Client {
    int fd = -1;
    InstanceFrameReader frames;
    std::chrono::steady_clock::time_point lastActivity;
};

bool FillAddress(const std::string& path, sockaddr_un& address) {
    std::memset(&address, 0, sizeof address);
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path)
        return false;
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    return true;
}

bool SomeoneListens(const sockaddr_un& address) {
    int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (fd < 0)
        return false;
    bool live = connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    close(fd);
    return live;
}

bool SendAll(int fd, const std::string& data) {
    size_t sent = 0;
    while (sent < data.size()) {
        ssize_t n = send(fd, data.data() + sent, data.size() - sent, MSG_NOSIGNAL);
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0 && errno == EAGAIN) {
            pollfd p{fd, POLLOUT, 0};
            if (poll(&p, 1, kClientTimeoutMs) <= 0)
                return false;
            continue;
        }
        if (n <= 0)
            return false;
        sent += static_cast<size_t>(n);
    }
    return true;
}
} // namespace

std::string InstanceServer::DefaultSocketPath() {
    return Paths::RuntimeDir() + "/mirodate.sock";
}

InstanceServer::~InstanceServer() {
    Stop();
}

bool InstanceServer::Start(const std::string& socketPath, Handler handler) {
    Stop();
    sockaddr_un address;
    if (!FillAddress(socketPath, address)) {
        Log::Error("instance socket path too long: %s", socketPath.c_str());
        return false;
    }
    // Two starts racing for a stale socket must not both remove it: the
    // check-and-bind runs under a lock file beside the socket.
    int lockFd = open((socketPath + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (lockFd >= 0)
        flock(lockFd, LOCK_EX);
    int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    bool bound = false;
    if (fd >= 0) {
        bound = bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
        if (!bound && errno == EADDRINUSE && !SomeoneListens(address)) {
            Log::Info("removing stale instance socket %s", socketPath.c_str());
            unlink(socketPath.c_str());
            bound = bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
        }
        if (bound)
            bound = listen(fd, 16) == 0;
    }
    if (lockFd >= 0) {
        flock(lockFd, LOCK_UN);
        close(lockFd);
    }
    if (!bound) {
        if (fd >= 0)
            close(fd);
        return false;
    }
    if (pipe2(wakePipe_, O_CLOEXEC | O_NONBLOCK) != 0) {
        close(fd);
        unlink(socketPath.c_str());
        return false;
    }
    listenFd_ = fd;
    path_ = socketPath;
    handler_ = std::move(handler);
    thread_ = std::thread([this] { Serve(); });
    return true;
}

void InstanceServer::Stop() {
    if (!thread_.joinable())
        return;
    char byte = 1;
    [[maybe_unused]] ssize_t ignored = write(wakePipe_[1], &byte, 1);
    thread_.join();
    close(listenFd_);
    close(wakePipe_[0]);
    close(wakePipe_[1]);
    listenFd_ = wakePipe_[0] = wakePipe_[1] = -1;
    unlink(path_.c_str());
}

void InstanceServer::Serve() {
    std::vector<Client> clients;
    std::vector<pollfd> fds;
    for (;;) {
        fds.clear();
        fds.push_back({wakePipe_[0], POLLIN, 0});
        fds.push_back({listenFd_, static_cast<short>(clients.size() < kMaxClients ? POLLIN : 0), 0});
        for (const auto& client : clients)
            fds.push_back({client.fd, POLLIN, 0});
        int ready = poll(fds.data(), fds.size(), 250);
        if (ready < 0 && errno != EINTR)
            break;
        if (fds[0].revents)
            break;

        const auto now = std::chrono::steady_clock::now();
        for (size_t i = 0; i < clients.size(); ++i) {
            Client& client = clients[i];
            bool drop = false;
            if (fds[i + 2].revents & (POLLIN | POLLHUP | POLLERR)) {
                char chunk[4096];
                ssize_t n = recv(client.fd, chunk, sizeof chunk, 0);
                if (n <= 0) {
                    drop = !(n < 0 && (errno == EAGAIN || errno == EINTR));
                } else {
                    client.frames.Append(chunk, static_cast<size_t>(n));
                    client.lastActivity = now;
                }
            }
            // Answer every complete frame in the buffer.
            InstanceFrameReader::Frame frame;
            while (!drop) {
                const InstanceFrameReader::Result result = client.frames.Next(frame);
                if (result == InstanceFrameReader::Result::NeedMore)
                    break;
                if (result == InstanceFrameReader::Result::TooLarge) {
                    Log::Warning("instance link: dropping a client that sent an oversized frame");
                    drop = true;
                    break;
                }
                const char type = frame.type;
                const std::string& payload = frame.payload;
                std::string reply;
                std::string className, title;
                switch (type) {
                case kFindWindow:
                    InstanceFrameReader::SplitClassTitle(payload, className, title);
                    reply = handler_.hasWindow && handler_.hasWindow(className, title) ? "1" : "0";
                    break;
                case kBroadcast:
                    if (handler_.broadcast)
                        handler_.broadcast(payload);
                    break;
                case kCopyData: {
                    if (payload.size() < 4) {
                        drop = true;
                        break;
                    }
                    std::int32_t result = 0;
                    if (handler_.copyData)
                        result = handler_.copyData(DecodeU32(payload.data()), payload.substr(4));
                    reply = EncodeU32(static_cast<std::uint32_t>(result));
                    break;
                }
                case kBringToFront:
                    InstanceFrameReader::SplitClassTitle(payload, className, title);
                    if (handler_.bringToFront)
                        handler_.bringToFront(className, title);
                    break;
                case kClose:
                    InstanceFrameReader::SplitClassTitle(payload, className, title);
                    if (handler_.close)
                        handler_.close(className, title);
                    break;
                default:
                    Log::Warning("instance link: unknown frame type %d", static_cast<int>(type));
                    drop = true;
                }
                if (!drop && !SendAll(client.fd, EncodeFrame(kReply, reply)))
                    drop = true;
            }
            if (!drop && now - client.lastActivity > std::chrono::milliseconds(kClientTimeoutMs))
                drop = true;
            if (drop) {
                close(client.fd);
                client.fd = -1;
            }
        }
        std::erase_if(clients, [](const Client& c) { return c.fd < 0; });

        if (fds[1].revents & POLLIN) {
            int fd = accept4(listenFd_, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
            if (fd >= 0)
                clients.push_back({fd, {}, std::chrono::steady_clock::now()});
        }
    }
    for (auto& client : clients)
        close(client.fd);
}

} // namespace mirodate
