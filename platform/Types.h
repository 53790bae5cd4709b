#pragma once
// Small value types shared by every folder: the Win32 shapes the program's
// algorithms are written in (colours, rectangles, points, calendar times).
#include <cstdint>

namespace mirodate {

// 0x00BBGGRR: red in the low byte. Converted to device colours only by Dc.
using COLORREF = std::uint32_t;

constexpr COLORREF RGB(int r, int g, int b) {
    return static_cast<COLORREF>((r & 0xFF) | ((g & 0xFF) << 8) | ((b & 0xFF) << 16));
}
constexpr int GetRValue(COLORREF c) {
    return static_cast<int>(c & 0xFF);
}
constexpr int GetGValue(COLORREF c) {
    return static_cast<int>((c >> 8) & 0xFF);
}
constexpr int GetBValue(COLORREF c) {
    return static_cast<int>((c >> 16) & 0xFF);
}

// The transparent key colour of every picture: pixels of this colour are holes.
constexpr COLORREF kKeyColor = RGB(0, 128, 128);

struct POINT {
    int x = 0;
    int y = 0;
    friend bool operator==(const POINT&, const POINT&) = default;
};

struct SIZE {
    int cx = 0;
    int cy = 0;
    friend bool operator==(const SIZE&, const SIZE&) = default;
};

struct RECT {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
    int Width() const { return right - left; }
    int Height() const { return bottom - top; }
    bool IsEmpty() const { return right <= left || bottom <= top; }
    bool Contains(int x, int y) const { return x >= left && x < right && y >= top && y < bottom; }
    friend bool operator==(const RECT&, const RECT&) = default;
};

// Calendar time with the Win32 field names; local time inside the program.
struct SYSTEMTIME {
    std::uint16_t wYear = 0;
    std::uint16_t wMonth = 0;
    std::uint16_t wDayOfWeek = 0; // 0 Sunday .. 6 Saturday
    std::uint16_t wDay = 0;
    std::uint16_t wHour = 0;
    std::uint16_t wMinute = 0;
    std::uint16_t wSecond = 0;
    std::uint16_t wMilliseconds = 0;
};

} // namespace mirodate
