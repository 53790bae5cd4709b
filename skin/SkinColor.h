#pragma once
// Colour values of skin.ini: "RRGGBB" or one leading character and "RRGGBB"
// ("#3366cc"). Any other length gives black; digits are read as far as they
// are hexadecimal. The result has red in the low byte.
#include "platform/Types.h"

#include <string_view>

namespace mirodate {

COLORREF ParseSkinColor(std::string_view value);

} // namespace mirodate
