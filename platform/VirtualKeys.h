#pragma once
// Key codes as the window messages carry them (Win32 virtual-key numbers), so
// that every display backend and every window speaks the same numbers.
#include <cstdint>

namespace mirodate {

constexpr std::uint32_t VK_BACK = 0x08;
constexpr std::uint32_t VK_TAB = 0x09;
constexpr std::uint32_t VK_RETURN = 0x0D;
constexpr std::uint32_t VK_SHIFT = 0x10;
constexpr std::uint32_t VK_CONTROL = 0x11;
constexpr std::uint32_t VK_MENU = 0x12;
constexpr std::uint32_t VK_ESCAPE = 0x1B;
constexpr std::uint32_t VK_SPACE = 0x20;
constexpr std::uint32_t VK_PRIOR = 0x21;
constexpr std::uint32_t VK_NEXT = 0x22;
constexpr std::uint32_t VK_END = 0x23;
constexpr std::uint32_t VK_HOME = 0x24;
constexpr std::uint32_t VK_LEFT = 0x25;
constexpr std::uint32_t VK_UP = 0x26;
constexpr std::uint32_t VK_RIGHT = 0x27;
constexpr std::uint32_t VK_DOWN = 0x28;
constexpr std::uint32_t VK_DELETE = 0x2E;
// Digits are '0'..'9' (0x30..0x39) and letters 'A'..'Z' (0x41..0x5A).
constexpr std::uint32_t VK_F1 = 0x70;

} // namespace mirodate
