#pragma once
// One field row of the appointment editor in the "styles.addmodifyform"
// colours: the label on the left and the value on the right, or, for the
// reminder and recurrence rows, the label over a value that may take
// several lines. A tap hands the row's command to the page once the list
// has let go of the pointer.
#include "ui/Font.h"
#include "ui/TextLayout.h"
#include "ui/TouchScroller.h"
#include "ui/WinTypes.h"

#include <string>

namespace mirodate {

class EditorRow : public TouchListItem {
public:
    // Unscaled sizes for a 240-pixel-wide screen.
    static constexpr int kRowHeight = 28;
    static constexpr int kMargin = 4;
    static constexpr int kRightMargin = 9; // clear of the list's scroll strip
    // The reminder and recurrence rows: top margin, left margin, label line
    // and value line.
    static constexpr int kTwoLineTop = 3;
    static constexpr int kTwoLineLeft = 6;
    static constexpr int kTwoLineLabel = 20;
    static constexpr int kTwoLineValue = 20;

    EditorRow(UINT command, const std::u16string& label, const std::u16string& value, bool twoLine,
              bool alternate, const Font& font, const Font& bold, int width);

    void Draw(Dc& dc, const RECT& rect) override;
    int Height() const override { return height_; }
    void Click(HWND list, int x, int y) override;

    UINT Command() const { return command_; }
    const std::u16string& ValueText() const { return valueText_; }

private:
    UINT command_;
    bool twoLine_;
    bool alternate_;
    std::u16string valueText_;
    TextLayout label_;
    TextLayout value_;
    int height_ = 0;
};

} // namespace mirodate
