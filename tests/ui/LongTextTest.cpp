// A text of megabytes (a subject from a damaged file) is drawn as its
// beginning: the same pixels as the longest text a screen can show, without
// laying out the rest.
#include "ui/Bitmap.h"
#include "ui/Dc.h"
#include "ui/Font.h"
#include "ui/Scale.h"
#include "ui/TextLayout.h"

#include <gtest/gtest.h>

namespace mirodate {
namespace {

std::vector<COLORREF> Pixels(const Bitmap& bitmap) {
    std::vector<COLORREF> pixels;
    for (int y = 0; y < bitmap.Height(); ++y)
        for (int x = 0; x < bitmap.Width(); ++x)
            pixels.push_back(bitmap.GetPixel(x, y));
    return pixels;
}

TEST(LongText, OnlyWhatAScreenCanShowIsLaidOut) {
    std::u16string text;
    while (text.size() < 4'000'000)
        text += u"word ";
    EXPECT_EQ(TextLayout::Shown(text, false).size(), TextLayout::kMaxLineChars);
    EXPECT_EQ(TextLayout::Shown(text, true).size(), TextLayout::kMaxWrappedChars);
    EXPECT_EQ(TextLayout::Shown(u"short", false), u"short");
    // A surrogate pair across the cut is left out whole.
    std::u16string emoji(TextLayout::kMaxLineChars - 1, u'a');
    emoji += u"\U0001F4C5 more";
    EXPECT_EQ(TextLayout::Shown(emoji, false).size(), TextLayout::kMaxLineChars - 1);

    LOGFONT lf;
    DefaultFont(lf);
    const Font font(lf);
    const std::u16string longest(TextLayout::Shown(text, false));
    auto draw = [&](const std::u16string& shown, UINT format) {
        Bitmap target(300, 60);
        Dc dc(target);
        dc.FillSolidRect(0, 0, 300, 60, RGB(255, 255, 255));
        dc.SelectFont(&font);
        RECT rect{0, 0, 300, 60};
        dc.DrawText(shown, rect, format);
        return Pixels(target);
    };
    for (UINT format : {UINT(DT_SINGLELINE | DT_END_ELLIPSIS | DT_NOPREFIX), UINT(DT_WORDBREAK)})
        EXPECT_EQ(draw(text, format), draw(longest, format));

    const TextLayout whole(text, font, 300, false);
    const TextLayout cut(longest, font, 300, false);
    EXPECT_EQ(whole.Width(), cut.Width());
    EXPECT_EQ(whole.Height(), cut.Height());
}

} // namespace
} // namespace mirodate
