#pragma once
// Pictures by resource id: the bitmaps and icons that owner-drawn buttons and
// controls name by number. Whoever loads pictures (the skin) registers them
// here; a missing id gives null and is simply not drawn.
#include "ui/Bitmap.h"
#include "ui/WinTypes.h"

namespace mirodate {

class Resources {
public:
    static void SetBitmap(UINT id, Bitmap bitmap);
    static const Bitmap* GetBitmap(UINT id);
    // Icons are pictures with their own alpha.
    static void SetIcon(UINT id, Bitmap icon);
    static const Bitmap* GetIcon(UINT id);
    static void Clear();
};

} // namespace mirodate
