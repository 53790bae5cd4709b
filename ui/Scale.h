#pragma once
// Screen-resolution scaling and the small numeric and font helpers every
// control shares. Pixel constants are written for a 240-pixel-wide screen and
// doubled on a screen of 480 pixels or more.
#include "ui/Font.h"

namespace mirodate {

// Screens at least this wide are high resolution.
constexpr int kHighResolutionWidth = 480;

// Taken at start-up and again when the screen is reset.
void SetHighResolution(bool highResolution);
bool IsHighResolution();

// 2n on a high-resolution screen, n otherwise; Scale(0) is 1 there and 0 here.
int Scale(int n);
// Nearest integer, halves to even (the 1.5 x 2^52 trick of the animation code).
int RoundToInt(double x);
// The system font, with the face replaced by the font-family setting unless it
// is empty or "*auto*".
void DefaultFont(LOGFONT& logFont);
// The user's font size delta, read once per process.
int FontSizeDelta();

} // namespace mirodate
