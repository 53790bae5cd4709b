#pragma once
// The program's date and time: an OLE automation DATE (days since 30 December
// 1899 at midnight, the fraction being the time of day), local time, with a
// validity state. Impossible dates (month 0, 30 February) give an invalid value.
#include "data/DateTimeSpan.h"
#include "platform/Types.h"

#include <compare>

namespace mirodate {

// The absent-date value of task dates: 1 January 4501 at midnight.
constexpr double kNoDate = 949998.0;

// Conversions in the manner of the Win32 calls: false for a date outside
// the years 100..9999 or an impossible field. Times are rounded to the second.
bool SystemTimeToVariantTime(const SYSTEMTIME& time, double* date);
bool VariantTimeToSystemTime(double date, SYSTEMTIME* time);

bool IsLeapYear(int year);
// 31, 30, 29 or 28; 0 for a month outside 1..12.
int DaysInMonth(int year, int month);

class DateTime {
public:
    // An invalid value.
    DateTime() = default;
    // A valid value for any DATE the platform can represent.
    explicit DateTime(double date);
    DateTime(int year, int month, int day, int hour = 0, int minute = 0, int second = 0);

    // The current local date and time from the program's clock.
    static DateTime Now();
    // Today at 00:00:00.
    static DateTime Today();
    static DateTime FromSystemTime(const SYSTEMTIME& time);

    bool IsValid() const { return valid_; }
    // Sets the value; returns false and makes it invalid for an impossible date.
    bool SetDateTime(int year, int month, int day, int hour, int minute, int second);

    int GetYear() const;
    int GetMonth() const;
    int GetDay() const;
    int GetHour() const;
    int GetMinute() const;
    int GetSecond() const;
    int GetDayOfWeek() const; // 0 Sunday .. 6 Saturday
    SYSTEMTIME ToSystemTime() const;
    bool ToSystemTime(SYSTEMTIME& time) const;
    double ToDate() const { return date_; }
    // The DATE truncated toward zero: the day number of restriction strings.
    long DayNumber() const;
    // The same day at 00:00:00 and at 23:59:59.
    DateTime StartOfDay() const;
    DateTime EndOfDay() const;

    DateTime& operator+=(const DateTimeSpan& span);
    DateTime& operator-=(const DateTimeSpan& span);
    friend DateTime operator+(DateTime time, const DateTimeSpan& span) { return time += span; }
    friend DateTime operator-(DateTime time, const DateTimeSpan& span) { return time -= span; }
    friend DateTimeSpan operator-(const DateTime& a, const DateTime& b);

    // Invalid values compare equal to each other and before every valid one.
    friend bool operator==(const DateTime& a, const DateTime& b);
    friend std::partial_ordering operator<=>(const DateTime& a, const DateTime& b);

private:
    SYSTEMTIME Fields() const;

    double date_ = 0.0;
    bool valid_ = false;
};

} // namespace mirodate
