#include "views/RowLook.h"

#include "skin/SkinStyles.h"
#include "ui/Scale.h"
#include "ui/TextLayout.h"

#include <algorithm>

namespace mirodate {

namespace {
std::unique_ptr<Font> MakeFont(int height, int weight, bool strikeOut) {
    LOGFONT logFont;
    DefaultFont(logFont);
    // A size the screen can show, whatever the size delta says.
    logFont.lfHeight = -std::clamp(Scale(height) + FontSizeDelta(), 6, 200);
    logFont.lfWeight = weight;
    logFont.lfStrikeOut = strikeOut;
    return std::make_unique<Font>(logFont);
}
// Medium and semi-bold weights of the view fonts.
constexpr int kSubjectWeight = 600;
constexpr int kDetailWeight = 400;
constexpr int kHeaderWeight = 500;
} // namespace

RowLook::RowLook(const TimeViewStyle& style, RowListener* rowListener)
    : text(style.colorText), textSelected(style.colorTextSelected), background(style.colorBg),
      selection(style.colorSelectionMark), headerBackground(style.colorHeaderBg),
      headerGradient(style.colorHeaderGradient), headerText(style.colorHeaderText),
      separator(style.colorLineSeparator), separatorStyle(style.styleLineSeparator),
      timeScale(style.colorTimeScale), listener(rowListener) {
    subject_ = MakeFont(kSubjectFontHeight, kSubjectWeight, false);
    struckSubject_ = MakeFont(kSubjectFontHeight, kSubjectWeight, true);
    detail_ = MakeFont(kDetailFontHeight, kDetailWeight, false);
    header_ = MakeFont(kHeaderFontHeight, kHeaderWeight, false);
    // Two lines of text, the padding around them and the day bar.
    const int subjectLine = TextLayout(u"Ag", *subject_, 0, false).Height();
    const int detailLine = TextLayout(u"Ag", *detail_, 0, false).Height();
    rowHeight_ = subjectLine + detailLine + 2 * Scale(kRowPadding) + Scale(kBarHeight);
}

RowLook::~RowLook() = default;

void RowLook::BeginFill(int listWidth, bool colorizeText, bool strikePastEvents) {
    width = listWidth;
    colorize = colorizeText;
    strikePast = strikePastEvents;
    now = DateTime::Now();
    today = DateTime::Today();
}

int RowLook::CheckZoneWidth() const {
    return rowHeight_ / 2 + Scale(4);
}

} // namespace mirodate
