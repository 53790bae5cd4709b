#pragma once
// Every skinnable colour and picture of the program, one block per styled
// area. The members hold the built-in look; ApplySkin overwrites what a skin
// gives. Colours are COLORREF (red in the low byte).
//
// The month view and the status bar keep their own defaults, so their fields
// are optional here: an empty optional means "the skin says nothing".
#include "platform/Types.h"
#include "skin/SkinPicture.h"

#include <array>
#include <optional>
#include <string>

namespace mirodate {

// The portrait ("backgroundImage") and landscape ("backgroundImageLandscape")
// pictures of one view.
struct BackgroundPictures {
    SkinPictureRef portrait;
    SkinPictureRef landscape;

    // Portrait when the screen is not wider than high; either falls back to the other.
    const SkinPicture* ForScreen(int width, int height) const;
};

// The seven "colorDayName_<n>" overrides, index 0 = Sunday.
using DayNameColors = std::array<std::optional<COLORREF>, 7>;

struct CalendarStyle {
    std::optional<COLORREF> colorGrid, colorYearMonthBarBg, colorYearMonthBarText, colorDayBarBg,
        colorDayBarText, colorDayGridText, colorDayGridTextNextPrevMonth, colorWeekNumber, colorDayGridBg,
        colorDayGridBgSelected, colorDayGridBorderToday, colorDayGridTextSelected, colorAppointmentIndicator,
        colorTaskIndicator;
    DayNameColors colorDayName;
    BackgroundPictures pictures;
    int showGridLines = 2;

    // Sets the month grid's two line styles from showGridLines: 0 none, 1 the
    // first, 2 the second; any other number leaves them as they are.
    void ApplyGridLines(bool& firstStyle, bool& secondStyle) const;
};

struct ContextMenuStyle {
    COLORREF colorBorder = RGB(0, 0, 0);
    COLORREF colorBg = RGB(0xFF, 0xFF, 0xFF);
    COLORREF colorBgGradient = RGB(0xE4, 0xE4, 0xE4);
    COLORREF colorText = RGB(0, 0, 0);
    COLORREF colorTextSelected = RGB(0xFF, 0xFF, 0xFF);
    COLORREF colorSelectionMark = RGB(0, 0, 0xFF);
};

struct ListViewStyle {
    COLORREF colorLineSeparator = RGB(0xC0, 0xC0, 0xC0);
    int styleLineSeparator = 2;
    COLORREF colorBorder = RGB(0, 0, 0);
    COLORREF colorBg = RGB(0xFF, 0xFF, 0xFF);
    COLORREF colorBg2 = RGB(0xC0, 0xC0, 0xC0); // alternate rows
    COLORREF colorText = RGB(0, 0, 0);
    COLORREF colorSelectionMark = RGB(0, 0, 0xFF);
    COLORREF colorHeaderBg = RGB(0, 0, 0);
    COLORREF colorHeaderText = RGB(0xFF, 0xFF, 0xFF);
};

// Week, day, agenda and quick view. Each view uses the fields that apply to
// it: the agenda has no colorBg2, the week view no separators, the quick view
// no header; only the week view has day-name overrides.
struct TimeViewStyle {
    BackgroundPictures pictures;
    COLORREF colorTimeScale = RGB(0, 0xFF, 0);
    COLORREF colorTimeScaleAllday = RGB(0, 0xA4, 0);
    COLORREF colorText = RGB(0, 0, 0);
    COLORREF colorTextSelected = RGB(0xFF, 0xFF, 0xFF);
    COLORREF colorHeaderText = RGB(0xFF, 0xFF, 0xFF);
    COLORREF colorHeaderBg = RGB(0, 0, 0);
    COLORREF colorHeaderGradient = RGB(0, 0, 0);
    COLORREF colorBg = RGB(0xFF, 0xFF, 0xFF);
    COLORREF colorBg2 = RGB(0xC0, 0xC0, 0xC0);
    COLORREF colorSelectionMark = RGB(0, 0, 0xFF);
    COLORREF colorLineSeparator = RGB(0xC0, 0xC0, 0xC0);
    int styleLineSeparator = 2;
    DayNameColors colorDayName;
};

struct ItemDetailStyle {
    BackgroundPictures pictures;
    COLORREF colorBg = RGB(0xFF, 0xFF, 0xFF);
    // Inserted as written into the detail mark-up's font tag; empty means the
    // view's own colour.
    std::u16string colorText;
    COLORREF colorMemoBg = RGB(0xFF, 0xFF, 0xFF);
    COLORREF colorMemoText = RGB(0, 0, 0);
};

struct AddModifyFormStyle {
    COLORREF colorBg = RGB(0xFF, 0xFF, 0xFF);
    COLORREF colorBg2 = RGB(0xC0, 0xC0, 0xC0);
    COLORREF colorText = RGB(0, 0, 0);
    COLORREF colorTextSel = RGB(0xFF, 0xFF, 0xFF);
    COLORREF colorSelectionMark = RGB(0, 0, 0xFF);
    COLORREF colorHeaderBg = RGB(0x5C, 0x5C, 0x5C);
    COLORREF colorHeaderText = RGB(0xFF, 0xFF, 0xFF);
    COLORREF colorLineSeparator = RGB(0xC0, 0xC0, 0xC0);
    int styleLineSeparator = 2;
};

struct ButtonColors {
    COLORREF colorButtonBg = RGB(0x40, 0x40, 0x40);
    COLORREF colorButtonGradient = RGB(0xFF, 0xFF, 0xFF);
    COLORREF colorButtonText = RGB(0, 0, 0);
    COLORREF colorButtonBgPressed = RGB(0x40, 0x40, 0x40);
    COLORREF colorButtonGradientPressed = RGB(0xFF, 0xFF, 0xFF);
    COLORREF colorButtonTextPressed = RGB(0, 0, 0);
};

struct InputFormsStyle {
    COLORREF colorBg = RGB(0xFF, 0xFF, 0xFF);
    COLORREF colorItemBg = RGB(0xFF, 0xFF, 0xFF);
    COLORREF colorItemText = RGB(0, 0, 0);
    ButtonColors buttons;
};

struct StatusBarStyle {
    std::optional<COLORREF> colorBg, colorBgGradient, colorText, colorMeters, colorTextShadow,
        colorMetersShadow;
    // Set by the value "TRANSPARENT": no shadow at all.
    bool textShadowOff = false;
    bool metersShadowOff = false;
};

struct MenuBarStyle {
    static constexpr int kHighResolutionHeight = 60;
    static constexpr int kLowResolutionHeight = 30;

    ButtonColors buttons;
    int height = kHighResolutionHeight;
    // Icons side by side in the order of MenuBarIcon (MenuBarIcons.h).
    SkinPictureRef icons;
    bool iconsFromSkin = false;
};

struct SkinInfo {
    std::u16string author;
    std::u16string version;
};

struct SkinStyles {
    CalendarStyle calendar;
    SkinInfo info;
    ContextMenuStyle contextMenu;
    ListViewStyle listViews;
    TimeViewStyle weekView;
    TimeViewStyle dayView;
    TimeViewStyle agendaView;
    TimeViewStyle quickView;
    ItemDetailStyle itemDetailView;
    AddModifyFormStyle addModifyForm;
    InputFormsStyle inputForms;
    StatusBarStyle statusBar;
    MenuBarStyle menuBar;

    // The styles the whole program draws with.
    static SkinStyles& Current();
};

} // namespace mirodate
