#pragma once
// A length of time as a number of days (the fraction is the time of day);
// negative spans move back in time.
#include <compare>

namespace mirodate {

class DateTimeSpan {
public:
    constexpr DateTimeSpan() = default;
    constexpr explicit DateTimeSpan(double days) : days_(days) {}
    constexpr DateTimeSpan(long days, int hours, int minutes, int seconds)
        : days_(static_cast<double>(days) + (hours * 3600.0 + minutes * 60.0 + seconds) / kSecondsPerDay) {}

    constexpr double GetDays() const { return days_; }
    // Rounded to the nearest second.
    long long GetTotalSeconds() const;

    constexpr DateTimeSpan operator-() const { return DateTimeSpan(-days_); }
    friend constexpr bool operator==(const DateTimeSpan&, const DateTimeSpan&) = default;
    friend constexpr auto operator<=>(const DateTimeSpan&, const DateTimeSpan&) = default;

    static constexpr double kSecondsPerDay = 86400.0;

private:
    double days_ = 0.0;
};

} // namespace mirodate
