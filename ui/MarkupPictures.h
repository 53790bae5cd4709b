#pragma once
// Pictures the text box's <img id='...'> names: a picture of the current
// skin by its file name ("bg.png"), a menu-bar icon by name ("week",
// "tasks", "back", ...) from the skin's icon strip or the built-in one, or
// a registered resource picture by number.
#include "ui/Bitmap.h"

#include <string>

namespace mirodate {

class MarkupPictures {
public:
    // A null bitmap when the id names nothing we have.
    static Bitmap Find(const std::u16string& id);
};

} // namespace mirodate
