#pragma once
// What every form page paints behind its controls: the form background and
// a title band in the list header colours, the title centred in it.
#include "platform/Types.h"

#include <string>

namespace mirodate {

class Dc;
class Font;

class FormPainter {
public:
    static void PaintPage(Dc& dc, const RECT& client, int titleHeight, const Font* font,
                          const std::u16string& title);
};

} // namespace mirodate
