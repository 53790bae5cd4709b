#pragma once
// What the rows of one view list share: fonts, colours, the row height and
// width, the colour and strike-through settings of the fill, the moment the
// rows were made, and where their taps go. The view owns it and keeps it
// alive longer than its rows.
#include "data/DateTime.h"
#include "platform/Types.h"
#include "ui/Font.h"

#include <memory>

namespace mirodate {

struct TimeViewStyle;
class ViewRow;

// Receives the taps of a list's rows (row-local coordinates).
class RowListener {
public:
    virtual ~RowListener() = default;
    virtual void OnRowTap(ViewRow& row, int x, int y) = 0;
};

class RowLook {
public:
    // Unscaled sizes for a 240-pixel-wide screen.
    static constexpr int kSubjectFontHeight = 12;
    static constexpr int kDetailFontHeight = 10;
    static constexpr int kHeaderFontHeight = 11;
    static constexpr int kRowPadding = 3;
    static constexpr int kBarHeight = 2;
    static constexpr int kColorMarkWidth = 3;
    // Day headers are this share of a row's height (rounded toward zero).
    static constexpr double kHeaderHeightRatio = 0.625;

    // Fonts from the default face with the user's size delta; colours from
    // the view's skin section.
    RowLook(const TimeViewStyle& style, RowListener* listener);
    ~RowLook();
    RowLook(const RowLook&) = delete;
    RowLook& operator=(const RowLook&) = delete;

    // Read each time the view fills its rows.
    void BeginFill(int listWidth, bool colorize, bool strikePast);

    int RowHeight() const { return rowHeight_; }
    int HeaderHeight() const { return static_cast<int>(rowHeight_ * kHeaderHeightRatio); }
    // The task's check-mark zone: half the row height plus 4 (scaled).
    int CheckZoneWidth() const;

    const Font& SubjectFont() const { return *subject_; }
    const Font& StruckSubjectFont() const { return *struckSubject_; }
    const Font& DetailFont() const { return *detail_; }
    const Font& HeaderFont() const { return *header_; }

    COLORREF text = 0;
    COLORREF textSelected = 0;
    COLORREF background = 0;
    COLORREF selection = 0;
    COLORREF headerBackground = 0;
    COLORREF headerGradient = 0;
    COLORREF headerText = 0;
    COLORREF separator = 0;
    COLORREF timeScale = 0; // day bars of appointments without a colour
    int separatorStyle = 0;
    int width = 0;
    bool colorize = false;
    bool strikePast = false;
    DateTime now;
    DateTime today;
    RowListener* listener = nullptr;

private:
    std::unique_ptr<Font> subject_;
    std::unique_ptr<Font> struckSubject_;
    std::unique_ptr<Font> detail_;
    std::unique_ptr<Font> header_;
    int rowHeight_ = 0;
};

} // namespace mirodate
