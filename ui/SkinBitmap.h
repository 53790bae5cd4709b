#pragma once
// Skin pictures (plain decoded pixels) as bitmaps the drawing calls can use.
#include "skin/SkinPicture.h"
#include "ui/Bitmap.h"

namespace mirodate {

class SkinBitmap {
public:
    // A copy of the picture with its alpha; a null bitmap for a null or empty picture.
    static Bitmap FromPicture(const SkinPicture* picture);
};

} // namespace mirodate
