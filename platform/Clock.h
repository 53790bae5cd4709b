#pragma once
// The program's sense of time. Everything that asks for "now" (tick counts,
// today's date, the status-bar clock) goes through the current Clock, so that
// tests and scripted runs can use a virtual clock that advances only when told.
#include "platform/Types.h"

#include <cstdint>
#include <memory>

namespace mirodate {

class Clock {
public:
    virtual ~Clock() = default;
    // Milliseconds since an arbitrary start, wrapping like GetTickCount.
    virtual std::uint32_t GetTickCount() const = 0;
    // Local wall-clock time.
    virtual SYSTEMTIME GetLocalTime() const = 0;
    // True for a clock that only moves when Advance() is called.
    virtual bool IsVirtual() const { return false; }
    // Moves a virtual clock forward; the real clock ignores it.
    virtual void Advance(std::uint32_t /*milliseconds*/) {}

    // The process-wide clock: the real one unless a test or --virtual-clock
    // installed another.
    static Clock& Current();
    static void Install(std::unique_ptr<Clock> clock);
};

class RealClock : public Clock {
public:
    std::uint32_t GetTickCount() const override;
    SYSTEMTIME GetLocalTime() const override;
};

// Starts at a given local time and moves only through Advance().
class VirtualClock : public Clock {
public:
    explicit VirtualClock(const SYSTEMTIME& start, std::uint32_t startTick = 0);
    std::uint32_t GetTickCount() const override;
    SYSTEMTIME GetLocalTime() const override;
    bool IsVirtual() const override { return true; }
    void Advance(std::uint32_t milliseconds) override;

private:
    std::int64_t startSeconds_; // local time of the start as seconds since 1970 (UTC-like arithmetic)
    std::uint32_t startTick_;
    std::uint64_t elapsedMs_ = 0;
};

} // namespace mirodate
