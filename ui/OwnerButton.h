#pragma once
// One owner-drawn push button of a window: its pictures, label and colours in
// the normal, pressed and focused states. The button control itself is made
// by the window with the record's control id and the owner-draw style.
#include "platform/Types.h"
#include "ui/WinTypes.h"

#include <string>

namespace mirodate {

// Labels hold at most this many UTF-16 units, the terminator included.
constexpr size_t kOwnerButtonTextLength = 64;

struct OwnerButton {
    UINT controlId = 0;
    UINT bitmapId = 0;        // background in the normal state; 0 = none
    UINT pressedBitmapId = 0; // background while pressed
    UINT focusedBitmapId = 0; // background while focused; 0 = bitmapId
    UINT iconId = 0;          // 0 = none
    UINT pressedIconId = 0;   // icon while pressed; 0 = iconId
    struct IconRect {
        int x = 0;
        int y = 0;
        int width = 0;
        int height = 0;
        int sourceWidth = 0;
        int sourceHeight = 0;
        bool transparentIcon = false; // draw through the transparent-icon primitive
        bool iconFillsButton = false; // destination size is the whole button
    } iconRect;
    std::u16string text;        // normal label
    std::u16string pressedText; // label while pressed; empty = text
    COLORREF textColor = 0;
    COLORREF pressedTextColor = 0;
    int fontHeight = 0; // before the user's font size delta
    UINT textFormat = 0;
    int marginX = 0;
    int marginY = 0;
    int iconY = 0;
    int iconX = 0;
    UINT stateful = 0; // 1: shows pressed, focused and disabled looks
};

} // namespace mirodate
