#include "skin/SkinStyles.h"

namespace mirodate {

const SkinPicture* BackgroundPictures::ForScreen(int width, int height) const {
    const SkinPictureRef& first = width <= height ? portrait : landscape;
    const SkinPictureRef& second = width <= height ? landscape : portrait;
    return first ? first.get() : second.get();
}

void CalendarStyle::ApplyGridLines(bool& firstStyle, bool& secondStyle) const {
    switch (showGridLines) {
    case 0:
        firstStyle = secondStyle = false;
        break;
    case 1:
        firstStyle = true, secondStyle = false;
        break;
    case 2:
        firstStyle = false, secondStyle = true;
        break;
    default:
        break;
    }
}

SkinStyles& SkinStyles::Current() {
    static SkinStyles styles;
    return styles;
}

} // namespace mirodate
