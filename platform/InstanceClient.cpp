#include "platform/InstanceClient.h"

#include "platform/InstanceProtocol.h"

#include <cerrno>
#include <cstring>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace mirodate {

namespace {
using namespace instance;
// How long a starting process waits for the running one to answer.
constexpr int kReplyTimeoutMs = 5000;

bool ReadExactly(int fd, char* out, size_t size) {
    size_t got = 0;
    while (got < size) {
        pollfd p{fd, POLLIN, 0};
        if (poll(&p, 1, kReplyTimeoutMs) <= 0)
            return false;
        ssize_t n = recv(fd, out + got, size - got, 0);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return false;
        got += static_cast<size_t>(n);
    }
    return true;
}
} // namespace

InstanceClient::~InstanceClient() {
    if (fd_ >= 0)
        close(fd_);
}

bool InstanceClient::Connect(const std::string& socketPath) {
    sockaddr_un address;
    std::memset(&address, 0, sizeof address);
    address.sun_family = AF_UNIX;
    if (socketPath.size() >= sizeof address.sun_path)
        return false;
    std::memcpy(address.sun_path, socketPath.c_str(), socketPath.size() + 1);
    int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (fd < 0)
        return false;
    if (connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
        close(fd);
        return false;
    }
    if (fd_ >= 0)
        close(fd_);
    fd_ = fd;
    return true;
}

std::optional<std::string> InstanceClient::Request(char type, const std::string& payload) {
    if (fd_ < 0 || payload.size() > kMaxPayload)
        return std::nullopt;
    const std::string frame = EncodeFrame(type, payload);
    size_t sent = 0;
    while (sent < frame.size()) {
        ssize_t n = send(fd_, frame.data() + sent, frame.size() - sent, MSG_NOSIGNAL);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return std::nullopt;
        sent += static_cast<size_t>(n);
    }
    char header[kHeaderSize];
    if (!ReadExactly(fd_, header, kHeaderSize) || header[0] != kReply)
        return std::nullopt;
    std::uint32_t length = DecodeU32(header + 1);
    if (length > kMaxPayload)
        return std::nullopt;
    std::string reply(length, '\0');
    if (length && !ReadExactly(fd_, reply.data(), length))
        return std::nullopt;
    return reply;
}

bool InstanceClient::FindWindow(const std::string& className, const std::string& title) {
    auto reply = Request(kFindWindow, className + "\n" + title);
    return reply && *reply == "1";
}

bool InstanceClient::Broadcast(const std::string& messageName) {
    return Request(kBroadcast, messageName).has_value();
}

std::optional<std::int32_t> InstanceClient::CopyData(std::uint32_t dwData, const std::string& bytes) {
    auto reply = Request(kCopyData, EncodeU32(dwData) + bytes);
    if (!reply || reply->size() != 4)
        return std::nullopt;
    return static_cast<std::int32_t>(DecodeU32(reply->data()));
}

bool InstanceClient::BringToFront(const std::string& className, const std::string& title) {
    return Request(kBringToFront, className + "\n" + title).has_value();
}

bool InstanceClient::Close(const std::string& className, const std::string& title) {
    return Request(kClose, className + "\n" + title).has_value();
}

} // namespace mirodate
