#pragma once
// A starting process's end of the instance link: asks the running instance
// which windows it has and hands requests over to it.
#include <cstdint>
#include <optional>
#include <string>

namespace mirodate {

class InstanceClient {
public:
    InstanceClient() = default;
    ~InstanceClient();
    InstanceClient(const InstanceClient&) = delete;
    InstanceClient& operator=(const InstanceClient&) = delete;

    // False when no instance listens on the socket (none, or a stale file).
    bool Connect(const std::string& socketPath);
    bool IsConnected() const { return fd_ >= 0; }

    // FindWindow(class, title) in the running instance.
    bool FindWindow(const std::string& className, const std::string& title);
    bool Broadcast(const std::string& messageName);
    // WM_COPYDATA; the result, or nothing when the link failed.
    std::optional<std::int32_t> CopyData(std::uint32_t dwData, const std::string& bytes);
    bool BringToFront(const std::string& className, const std::string& title);
    bool Close(const std::string& className, const std::string& title);

private:
    std::optional<std::string> Request(char type, const std::string& payload);
    int fd_ = -1;
};

} // namespace mirodate
