#pragma once
// A row of the small list pages: a first line in bold over a second one
// (either may wrap; the second may be empty), in the "styles.addmodifyform"
// colours. A tap posts the row's command to the list's parent as a deferred
// command.
#include "ui/Font.h"
#include "ui/TextLayout.h"
#include "ui/TouchListItem.h"

#include <string>

namespace mirodate {

class TwoLineRow : public TouchListItem {
public:
    TwoLineRow(UINT command, const std::u16string& first, const std::u16string& second, const Font& font,
               const Font& bold, int width);

    void Draw(Dc& dc, const RECT& rect) override;
    int Height() const override { return height_; }
    void Click(HWND list, int x, int y) override;

private:
    UINT command_;
    TextLayout first_;
    TextLayout second_;
    int height_ = 0;
};

} // namespace mirodate
