#include "platform/Clock.h"

#include <atomic>
#include <ctime>
#include <mutex>

namespace mirodate {

namespace {
std::unique_ptr<Clock> g_clock;
std::once_flag g_defaultOnce;

SYSTEMTIME FromTm(const std::tm& tm, int milliseconds) {
    SYSTEMTIME st;
    st.wYear = static_cast<std::uint16_t>(tm.tm_year + 1900);
    st.wMonth = static_cast<std::uint16_t>(tm.tm_mon + 1);
    st.wDayOfWeek = static_cast<std::uint16_t>(tm.tm_wday);
    st.wDay = static_cast<std::uint16_t>(tm.tm_mday);
    st.wHour = static_cast<std::uint16_t>(tm.tm_hour);
    st.wMinute = static_cast<std::uint16_t>(tm.tm_min);
    st.wSecond = static_cast<std::uint16_t>(tm.tm_sec);
    st.wMilliseconds = static_cast<std::uint16_t>(milliseconds);
    return st;
}
} // namespace

Clock& Clock::Current() {
    std::call_once(g_defaultOnce, [] {
        if (!g_clock)
            g_clock = std::make_unique<RealClock>();
    });
    return *g_clock;
}

void Clock::Install(std::unique_ptr<Clock> clock) {
    std::call_once(g_defaultOnce, [] {});
    g_clock = std::move(clock);
}

std::uint32_t RealClock::GetTickCount() const {
    timespec ts{};
    clock_gettime(CLOCK_MONOTONIC, &ts);
    return static_cast<std::uint32_t>(static_cast<std::uint64_t>(ts.tv_sec) * 1000u +
                                      static_cast<std::uint64_t>(ts.tv_nsec) / 1000000u);
}

SYSTEMTIME RealClock::GetLocalTime() const {
    timespec ts{};
    clock_gettime(CLOCK_REALTIME, &ts);
    std::tm tm{};
    localtime_r(&ts.tv_sec, &tm);
    return FromTm(tm, static_cast<int>(ts.tv_nsec / 1000000));
}

VirtualClock::VirtualClock(const SYSTEMTIME& start, std::uint32_t startTick) : startTick_(startTick) {
    std::tm tm{};
    tm.tm_year = start.wYear - 1900;
    tm.tm_mon = start.wMonth - 1;
    tm.tm_mday = start.wDay;
    tm.tm_hour = start.wHour;
    tm.tm_min = start.wMinute;
    tm.tm_sec = start.wSecond;
    startSeconds_ = static_cast<std::int64_t>(timegm(&tm));
    elapsedMs_ = start.wMilliseconds;
}

std::uint32_t VirtualClock::GetTickCount() const {
    return static_cast<std::uint32_t>(startTick_ + elapsedMs_);
}

SYSTEMTIME VirtualClock::GetLocalTime() const {
    // The start is taken as local wall time; arithmetic in UTC keeps it free of
    // daylight-saving jumps, which a test clock should not have.
    std::int64_t ms = static_cast<std::int64_t>(elapsedMs_);
    time_t seconds = static_cast<time_t>(startSeconds_ + ms / 1000);
    std::tm tm{};
    gmtime_r(&seconds, &tm);
    return FromTm(tm, static_cast<int>(ms % 1000));
}

void VirtualClock::Advance(std::uint32_t milliseconds) {
    elapsedMs_ += milliseconds;
}

} // namespace mirodate
