#include "data/DateTime.h"

#include "platform/Clock.h"

#include <cmath>

namespace mirodate {

namespace {

constexpr int kMinYear = 100;
constexpr int kMaxYear = 9999;
constexpr int kSecondsPerDay = 86400;
// Day number of 30 December 1899 counted from 1 January 1970.
constexpr long kDateEpochFromUnix = -25569;
// Larger than any DATE of the years 100..9999, small enough for any integer.
constexpr double kMaxDateMagnitude = 1e7;

// Days since 1 January 1970 of a proleptic Gregorian date.
long DaysFromCivil(long year, unsigned month, unsigned day) {
    year -= month <= 2;
    const long era = (year >= 0 ? year : year - 399) / 400;
    const unsigned yoe = static_cast<unsigned>(year - era * 400);
    const unsigned doy = (153 * (month > 2 ? month - 3 : month + 9) + 2) / 5 + day - 1;
    const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + static_cast<long>(doe) - 719468;
}

void CivilFromDays(long z, int& year, int& month, int& day) {
    z += 719468;
    const long era = (z >= 0 ? z : z - 146096) / 146097;
    const unsigned doe = static_cast<unsigned>(z - era * 146097);
    const unsigned yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
    const unsigned doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
    const unsigned mp = (5 * doy + 2) / 153;
    day = static_cast<int>(doy - (153 * mp + 2) / 5 + 1);
    month = static_cast<int>(mp < 10 ? mp + 3 : mp - 9);
    year = static_cast<int>(static_cast<long>(yoe) + era * 400 + (month <= 2));
}

bool FieldsValid(int year, int month, int day, int hour, int minute, int second) {
    return year >= kMinYear && year <= kMaxYear && month >= 1 && month <= 12 && day >= 1 &&
           day <= DaysInMonth(year, month) && hour >= 0 && hour < 24 && minute >= 0 && minute < 60 &&
           second >= 0 && second < 60;
}

// DATE values before 1899-12-30 keep a positive time of day: -1.25 is
// 29 December 1899 at 06:00.
double ComposeDate(long dayNumber, double dayFraction) {
    return dayNumber >= 0 ? dayNumber + dayFraction : dayNumber - dayFraction;
}

// The DATE on a straight time line (days and fraction both counting forward).
double Linear(double date) {
    return date >= 0 ? date : std::trunc(date) - (date - std::trunc(date));
}

} // namespace

bool IsLeapYear(int year) {
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

int DaysInMonth(int year, int month) {
    static constexpr int kDays[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    if (month < 1 || month > 12)
        return 0;
    return month == 2 && IsLeapYear(year) ? 29 : kDays[month - 1];
}

bool SystemTimeToVariantTime(const SYSTEMTIME& time, double* date) {
    if (!FieldsValid(time.wYear, time.wMonth, time.wDay, time.wHour, time.wMinute, time.wSecond))
        return false;
    const long dayNumber = DaysFromCivil(time.wYear, time.wMonth, time.wDay) - kDateEpochFromUnix;
    const double fraction = (time.wHour * 3600.0 + time.wMinute * 60.0 + time.wSecond) / kSecondsPerDay;
    *date = ComposeDate(dayNumber, fraction);
    return true;
}

bool VariantTimeToSystemTime(double date, SYSTEMTIME* time) {
    // Far outside the years 100..9999 the day count would not fit an integer.
    if (!std::isfinite(date) || std::fabs(date) > kMaxDateMagnitude)
        return false;
    long dayNumber = static_cast<long>(std::trunc(date));
    long long seconds = std::llround(std::fabs(date - static_cast<double>(dayNumber)) * kSecondsPerDay);
    if (seconds >= kSecondsPerDay) {
        seconds -= kSecondsPerDay;
        dayNumber += date >= 0 ? 1 : -1;
    }
    // The negative encoding counts whole days toward the past but time forward.
    int year = 0, month = 0, day = 0;
    CivilFromDays(dayNumber + kDateEpochFromUnix, year, month, day);
    if (year < kMinYear || year > kMaxYear)
        return false;
    const long unixDay = dayNumber + kDateEpochFromUnix;
    SYSTEMTIME st;
    st.wYear = static_cast<std::uint16_t>(year);
    st.wMonth = static_cast<std::uint16_t>(month);
    st.wDay = static_cast<std::uint16_t>(day);
    st.wDayOfWeek = static_cast<std::uint16_t>(((unixDay % 7) + 7 + 4) % 7); // 1 Jan 1970 was a Thursday
    st.wHour = static_cast<std::uint16_t>(seconds / 3600);
    st.wMinute = static_cast<std::uint16_t>(seconds / 60 % 60);
    st.wSecond = static_cast<std::uint16_t>(seconds % 60);
    *time = st;
    return true;
}

DateTime::DateTime(double date) {
    SYSTEMTIME st;
    valid_ = VariantTimeToSystemTime(date, &st);
    date_ = valid_ ? date : 0.0;
}

DateTime::DateTime(int year, int month, int day, int hour, int minute, int second) {
    SetDateTime(year, month, day, hour, minute, second);
}

DateTime DateTime::Now() {
    return FromSystemTime(Clock::Current().GetLocalTime());
}

DateTime DateTime::Today() {
    return Now().StartOfDay();
}

DateTime DateTime::FromSystemTime(const SYSTEMTIME& time) {
    DateTime result;
    result.SetDateTime(time.wYear, time.wMonth, time.wDay, time.wHour, time.wMinute, time.wSecond);
    return result;
}

bool DateTime::SetDateTime(int year, int month, int day, int hour, int minute, int second) {
    SYSTEMTIME st;
    if (!FieldsValid(year, month, day, hour, minute, second)) {
        valid_ = false;
        date_ = 0.0;
        return false;
    }
    st.wYear = static_cast<std::uint16_t>(year);
    st.wMonth = static_cast<std::uint16_t>(month);
    st.wDay = static_cast<std::uint16_t>(day);
    st.wHour = static_cast<std::uint16_t>(hour);
    st.wMinute = static_cast<std::uint16_t>(minute);
    st.wSecond = static_cast<std::uint16_t>(second);
    valid_ = SystemTimeToVariantTime(st, &date_);
    return valid_;
}

SYSTEMTIME DateTime::Fields() const {
    SYSTEMTIME st;
    if (valid_)
        VariantTimeToSystemTime(date_, &st);
    return st;
}

int DateTime::GetYear() const {
    return Fields().wYear;
}
int DateTime::GetMonth() const {
    return Fields().wMonth;
}
int DateTime::GetDay() const {
    return Fields().wDay;
}
int DateTime::GetHour() const {
    return Fields().wHour;
}
int DateTime::GetMinute() const {
    return Fields().wMinute;
}
int DateTime::GetSecond() const {
    return Fields().wSecond;
}
int DateTime::GetDayOfWeek() const {
    return Fields().wDayOfWeek;
}
SYSTEMTIME DateTime::ToSystemTime() const {
    return Fields();
}

bool DateTime::ToSystemTime(SYSTEMTIME& time) const {
    if (!valid_)
        return false;
    return VariantTimeToSystemTime(date_, &time);
}

long DateTime::DayNumber() const {
    return static_cast<long>(std::trunc(date_));
}

DateTime DateTime::StartOfDay() const {
    if (!valid_)
        return *this;
    const SYSTEMTIME st = Fields();
    return DateTime(st.wYear, st.wMonth, st.wDay);
}

DateTime DateTime::EndOfDay() const {
    if (!valid_)
        return *this;
    const SYSTEMTIME st = Fields();
    return DateTime(st.wYear, st.wMonth, st.wDay, 23, 59, 59);
}

DateTime& DateTime::operator+=(const DateTimeSpan& span) {
    if (!valid_)
        return *this;
    // Arithmetic on the linear time line, so that spans cross 1899-12-30
    // the same way as any other day.
    const double moved = Linear(date_) + span.GetDays();
    const double dayNumber = std::floor(moved);
    // Rebuilt from its fields, so that equal times always have equal DATEs.
    SYSTEMTIME st;
    if (!VariantTimeToSystemTime(ComposeDate(static_cast<long>(dayNumber), moved - dayNumber), &st)) {
        *this = DateTime();
        return *this;
    }
    *this = FromSystemTime(st);
    return *this;
}

DateTime& DateTime::operator-=(const DateTimeSpan& span) {
    return *this += -span;
}

DateTimeSpan operator-(const DateTime& a, const DateTime& b) {
    if (!a.valid_ || !b.valid_)
        return DateTimeSpan();
    return DateTimeSpan(Linear(a.date_) - Linear(b.date_));
}

bool operator==(const DateTime& a, const DateTime& b) {
    if (a.valid_ != b.valid_)
        return false;
    return !a.valid_ || a.date_ == b.date_;
}

std::partial_ordering operator<=>(const DateTime& a, const DateTime& b) {
    if (a.valid_ != b.valid_)
        return a.valid_ ? std::partial_ordering::greater : std::partial_ordering::less;
    if (!a.valid_)
        return std::partial_ordering::equivalent;
    return Linear(a.date_) <=> Linear(b.date_);
}

} // namespace mirodate
