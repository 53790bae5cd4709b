#include "ui/Scale.h"

#include "platform/Settings.h"

#include <cstdint>
#include <cstring>

namespace mirodate {

namespace {
bool g_highResolution = true;
// The system font's character height on a 240-pixel-wide screen.
constexpr int kSystemFontHeight = 12;
constexpr const char16_t* kSystemFontFace = u"Sans";
constexpr int kDeltaNotRead = -999;
int g_fontSizeDelta = kDeltaNotRead;
} // namespace

void SetHighResolution(bool highResolution) {
    g_highResolution = highResolution;
}
bool IsHighResolution() {
    return g_highResolution;
}

int Scale(int n) {
    if (n == 0)
        return g_highResolution ? 1 : 0;
    return g_highResolution ? 2 * n : n;
}

int RoundToInt(double x) {
    // Adding 1.5 x 2^52 leaves the rounded value in the low word of the
    // mantissa (round half to even under the default rounding mode).
    volatile double shifted = x + 6755399441055744.0;
    const double value = shifted;
    std::int64_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    return static_cast<int>(static_cast<std::int32_t>(static_cast<std::uint32_t>(bits & 0xFFFFFFFF)));
}

void DefaultFont(LOGFONT& logFont) {
    logFont = LOGFONT();
    logFont.lfHeight = -Scale(kSystemFontHeight);
    logFont.lfWeight = FW_NORMAL;
    logFont.lfFaceName = kSystemFontFace;
    const std::u16string family = Settings::GetFontFamily();
    if (!family.empty() && family != u"*auto*")
        logFont.lfFaceName = family;
}

int FontSizeDelta() {
    if (g_fontSizeDelta == kDeltaNotRead)
        g_fontSizeDelta = Settings::GetFontSizeDelta();
    return g_fontSizeDelta;
}

} // namespace mirodate
