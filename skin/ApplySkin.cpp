#include "skin/ApplySkin.h"

#include "lang/IniFile.h"
#include "platform/TextUtil.h"
#include "skin/PictureCache.h"
#include "skin/SkinArchive.h"
#include "skin/SkinColor.h"
#include "skin/SkinStyles.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <string>

namespace mirodate {

namespace {

constexpr COLORREF kWhite = RGB(0xFF, 0xFF, 0xFF);
// Status-bar values shorter than this are ignored (unlike everywhere else).
constexpr size_t kStatusBarMinLength = 2;
constexpr std::string_view kTransparent = "TRANSPARENT";

// Decimal number read like atoi: leading digits, 0 if none.
int ParseNumber(const std::string& text) {
    const long value = std::strtol(text.c_str(), nullptr, 10);
    return static_cast<int>(std::clamp<long>(value, INT_MIN, INT_MAX));
}

// Reads the keys of one section.
class SectionReader {
public:
    SectionReader(const IniFile& ini, SkinArchive& archive, std::string_view section)
        : ini_(ini), archive_(archive), section_(section) {}

    std::string Text(std::string_view key, std::string_view defaultValue = {}) const {
        return ini_.GetValue(section_, key, defaultValue);
    }

    bool Color(std::string_view key, COLORREF& field) const {
        const std::string value = Text(key);
        if (value.empty())
            return false;
        field = ParseSkinColor(value);
        return true;
    }

    bool Color(std::string_view key, std::optional<COLORREF>& field) const {
        COLORREF color = 0;
        if (!Color(key, color))
            return false;
        field = color;
        return true;
    }

    void Number(std::string_view key, int& field, std::string_view defaultValue = {}) const {
        std::string value = Text(key);
        if (value.empty())
            value = defaultValue;
        if (!value.empty())
            field = ParseNumber(value);
    }

    void DayNames(DayNameColors& colors) const {
        for (size_t day = 0; day < colors.size(); ++day)
            Color("colorDayName_" + std::to_string(day), colors[day]);
    }

    // Replaces `field` when the key names a picture; a picture that fails to
    // load leaves no picture.
    void Picture(std::string_view key, SkinPictureRef& field) const {
        const std::string name = Text(key);
        if (!name.empty())
            LoadSkinImage(archive_, Utf8ToUtf16(name), field);
    }

    void Pictures(BackgroundPictures& pictures) const {
        Picture("backgroundImage", pictures.portrait);
        Picture("backgroundImageLandscape", pictures.landscape);
    }

    // Button colours: a given normal colour also sets its pressed twin, and an
    // absent gradient falls back to the plain background.
    void Buttons(ButtonColors& b, bool absentGradientResetsBoth) const {
        if (Color("colorButtonBg", b.colorButtonBg))
            b.colorButtonBgPressed = b.colorButtonBg;
        if (Color("colorButtonGradient", b.colorButtonGradient)) {
            b.colorButtonGradientPressed = b.colorButtonGradient;
        } else {
            b.colorButtonGradient = b.colorButtonBg;
            if (absentGradientResetsBoth)
                b.colorButtonGradientPressed = b.colorButtonBg;
        }
        if (Color("colorButtonText", b.colorButtonText))
            b.colorButtonTextPressed = b.colorButtonText;
        Color("colorButtonBgPressed", b.colorButtonBgPressed);
        if (!Color("colorButtonGradientPressed", b.colorButtonGradientPressed))
            b.colorButtonGradientPressed = b.colorButtonBgPressed;
        Color("colorButtonTextPressed", b.colorButtonTextPressed);
    }

    SkinArchive& Archive() const { return archive_; }

private:
    const IniFile& ini_;
    SkinArchive& archive_;
    std::string_view section_;
};

void ApplyCalendar(const SectionReader& r, CalendarStyle& s) {
    r.Color("colorGrid", s.colorGrid);
    r.Color("colorYearMonthBarBg", s.colorYearMonthBarBg);
    r.Color("colorYearMonthBarText", s.colorYearMonthBarText);
    r.Color("colorDayBarBg", s.colorDayBarBg);
    r.Color("colorDayBarText", s.colorDayBarText);
    r.Color("colorDayGridText", s.colorDayGridText);
    r.Color("colorDayGridTextNextPrevMonth", s.colorDayGridTextNextPrevMonth);
    r.Color("colorWeekNumber", s.colorWeekNumber);
    r.Color("colorDayGridBg", s.colorDayGridBg);
    r.Color("colorDayGridBgSelected", s.colorDayGridBgSelected);
    r.Color("colorDayGridBorderToday", s.colorDayGridBorderToday);
    r.Color("colorDayGridTextSelected", s.colorDayGridTextSelected);
    r.Color("colorAppointmentIndicator", s.colorAppointmentIndicator);
    r.Color("colorTaskIndicator", s.colorTaskIndicator);
    r.DayNames(s.colorDayName);
    r.Pictures(s.pictures);
    r.Number("showGridLines", s.showGridLines, "2");
}

void ApplyInfo(const SectionReader& r, SkinInfo& info) {
    if (std::string author = r.Text("author"); !author.empty())
        info.author = Utf8ToUtf16(author);
    if (std::string version = r.Text("version"); !version.empty())
        info.version = Utf8ToUtf16(version);
}

void ApplyContextMenu(const SectionReader& r, ContextMenuStyle& s) {
    r.Color("colorBorder", s.colorBorder);
    r.Color("colorBg", s.colorBg);
    r.Color("colorBgGradient", s.colorBgGradient);
    r.Color("colorText", s.colorText);
    r.Color("colorTextSelected", s.colorTextSelected);
    r.Color("colorSelectionMark", s.colorSelectionMark);
}

void ApplyListViews(const SectionReader& r, ListViewStyle& s) {
    r.Color("colorLineSeparator", s.colorLineSeparator);
    r.Number("styleLineSeparator", s.styleLineSeparator);
    r.Color("colorBorder", s.colorBorder);
    r.Color("colorBg", s.colorBg);
    r.Color("colorBg2", s.colorBg2);
    r.Color("colorText", s.colorText);
    r.Color("colorSelectionMark", s.colorSelectionMark);
    r.Color("colorHeaderBg", s.colorHeaderBg);
    r.Color("colorHeaderText", s.colorHeaderText);
}

// The list views are the starting point of every view with a time scale.
void InheritFromListViews(SkinStyles& s) {
    const ListViewStyle& lv = s.listViews;
    for (TimeViewStyle* view : {&s.weekView, &s.dayView, &s.agendaView, &s.quickView}) {
        view->colorBg = lv.colorBg;
        view->colorText = lv.colorText;
        view->colorSelectionMark = lv.colorSelectionMark;
        view->colorTextSelected = kWhite;
    }
    for (TimeViewStyle* view : {&s.weekView, &s.dayView, &s.quickView})
        view->colorBg2 = lv.colorBg2;
    for (TimeViewStyle* view : {&s.weekView, &s.dayView, &s.agendaView}) {
        view->colorHeaderBg = lv.colorHeaderBg;
        view->colorHeaderGradient = lv.colorHeaderBg;
        view->colorHeaderText = lv.colorHeaderText;
    }
}

void ApplyWeekView(const SectionReader& r, TimeViewStyle& s) {
    r.Pictures(s.pictures);
    r.Color("colorTimeScale", s.colorTimeScale);
    r.Color("colorTimeScaleAllday", s.colorTimeScaleAllday);
    r.Color("colorText", s.colorText);
    r.Color("colorTextSelected", s.colorTextSelected);
    r.Color("colorHeaderText", s.colorHeaderText);
    r.Color("colorHeaderBg", s.colorHeaderBg);
    if (!r.Color("colorHeaderGradient", s.colorHeaderGradient))
        s.colorHeaderGradient = s.colorHeaderBg;
    r.Color("colorBg", s.colorBg);
    r.Color("colorBg2", s.colorBg2);
    r.Color("colorSelectionMark", s.colorSelectionMark);
    r.DayNames(s.colorDayName);
}

void ApplyDayView(const SectionReader& r, TimeViewStyle& s) {
    r.Pictures(s.pictures);
    r.Color("colorTimeScale", s.colorTimeScale);
    r.Color("colorTimeScaleAllday", s.colorTimeScaleAllday);
    r.Color("colorText", s.colorText);
    r.Color("colorHeaderText", s.colorHeaderText);
    r.Color("colorHeaderBg", s.colorHeaderBg);
    r.Color("colorBg", s.colorBg);
    r.Color("colorBg2", s.colorBg2);
    r.Color("colorSelectionMark", s.colorSelectionMark);
    r.Color("colorTextSelected", s.colorTextSelected);
    if (!r.Color("colorHeaderGradient", s.colorHeaderGradient))
        s.colorHeaderGradient = s.colorHeaderBg;
    r.Color("colorLineSeparator", s.colorLineSeparator);
    r.Number("styleLineSeparator", s.styleLineSeparator);
}

void InheritFromDayView(SkinStyles& s) {
    const TimeViewStyle& day = s.dayView;
    TimeViewStyle& agenda = s.agendaView;
    agenda.colorBg = day.colorBg;
    agenda.colorText = day.colorText;
    agenda.colorSelectionMark = day.colorSelectionMark;
    agenda.colorTimeScale = day.colorTimeScale;
    agenda.colorTimeScaleAllday = day.colorTimeScaleAllday;
    agenda.colorTextSelected = day.colorTextSelected;
    agenda.colorHeaderBg = day.colorHeaderBg;
    agenda.colorHeaderText = day.colorHeaderText;
    agenda.colorHeaderGradient = day.colorHeaderGradient;
}

void ApplyAgendaView(const SectionReader& r, TimeViewStyle& s, const TimeViewStyle& day) {
    r.Pictures(s.pictures);
    r.Color("colorTimeScale", s.colorTimeScale);
    r.Color("colorTimeScaleAllday", s.colorTimeScaleAllday);
    r.Color("colorText", s.colorText);
    r.Color("colorTextSelected", s.colorTextSelected);
    r.Color("colorHeaderText", s.colorHeaderText);
    r.Color("colorHeaderBg", s.colorHeaderBg);
    r.Color("colorBg", s.colorBg);
    r.Color("colorSelectionMark", s.colorSelectionMark);
    // Unlike week and day view, the agenda header follows the day view's gradient.
    if (!r.Color("colorHeaderGradient", s.colorHeaderGradient))
        s.colorHeaderGradient = day.colorHeaderGradient;
    r.Color("colorLineSeparator", s.colorLineSeparator);
    s.styleLineSeparator = day.styleLineSeparator;
    r.Number("styleLineSeparator", s.styleLineSeparator);
}

void ApplyQuickView(const SectionReader& r, TimeViewStyle& s) {
    r.Pictures(s.pictures);
    r.Color("colorTimeScale", s.colorTimeScale);
    r.Color("colorTimeScaleAllday", s.colorTimeScaleAllday);
    r.Color("colorText", s.colorText);
    r.Color("colorTextSelected", s.colorTextSelected);
    r.Color("colorBg", s.colorBg);
    r.Color("colorBg2", s.colorBg2);
    r.Color("colorSelectionMark", s.colorSelectionMark);
    r.Color("colorLineSeparator", s.colorLineSeparator);
    r.Number("styleLineSeparator", s.styleLineSeparator);
}

void ApplyItemDetailView(const SectionReader& r, ItemDetailStyle& s) {
    r.Pictures(s.pictures);
    r.Color("colorBg", s.colorBg);
    // Kept as text: it goes straight into the detail view's mark-up.
    if (std::string text = r.Text("colorText"); !text.empty())
        s.colorText = Utf8ToUtf16(text);
    r.Color("colorMemoBg", s.colorMemoBg);
    r.Color("colorMemoText", s.colorMemoText);
}

void ApplyAddModifyForm(const SectionReader& r, AddModifyFormStyle& s) {
    r.Color("colorBg", s.colorBg);
    r.Color("colorBg2", s.colorBg2);
    r.Color("colorText", s.colorText);
    r.Color("colorTextSel", s.colorTextSel);
    r.Color("colorSelectionMark", s.colorSelectionMark);
    r.Color("colorHeaderBg", s.colorHeaderBg);
    r.Color("colorHeaderText", s.colorHeaderText);
    r.Color("colorLineSeparator", s.colorLineSeparator);
    r.Number("styleLineSeparator", s.styleLineSeparator);
}

void ApplyInputForms(const SectionReader& r, InputFormsStyle& s) {
    r.Color("colorBg", s.colorBg);
    r.Color("colorItemBg", s.colorItemBg);
    r.Color("colorItemText", s.colorItemText);
    r.Buttons(s.buttons, false);
}

// Status-bar values need two characters; "TRANSPARENT" switches a shadow off.
void StatusColor(const SectionReader& r, std::string_view key, std::optional<COLORREF>& field) {
    const std::string value = r.Text(key);
    if (value.size() >= kStatusBarMinLength)
        field = ParseSkinColor(value);
}

void StatusShadow(const SectionReader& r, std::string_view key, std::optional<COLORREF>& field, bool& off) {
    const std::string value = r.Text(key);
    if (value.size() < kStatusBarMinLength)
        return;
    off = value == kTransparent;
    if (!off)
        field = ParseSkinColor(value);
}

void ApplyStatusBar(const SectionReader& r, StatusBarStyle& s) {
    StatusColor(r, "colorBg", s.colorBg);
    StatusColor(r, "colorBgGradient", s.colorBgGradient);
    StatusColor(r, "colorText", s.colorText);
    StatusColor(r, "colorMeters", s.colorMeters);
    StatusShadow(r, "colorTextShadow", s.colorTextShadow, s.textShadowOff);
    StatusShadow(r, "colorMetersShadow", s.colorMetersShadow, s.metersShadowOff);
}

void ApplyMenuBarResolution(const SectionReader& r, MenuBarStyle& s, bool highResolution) {
    r.Buttons(s.buttons, true);
    r.Number("height", s.height,
             highResolution ? std::to_string(MenuBarStyle::kHighResolutionHeight)
                            : std::to_string(MenuBarStyle::kLowResolutionHeight));
    const std::string iconsName = r.Text("menuBarIcons");
    if (iconsName.empty())
        return;
    // A strip that fails to load leaves none; the built-in one takes its place.
    s.iconsFromSkin = LoadSkinImage(r.Archive(), Utf8ToUtf16(iconsName), s.icons);
}

} // namespace

void ApplySkin(const IniFile& ini, SkinArchive& archive, bool highResolution, SkinStyles& styles) {
    auto section = [&](std::string_view name) { return SectionReader(ini, archive, name); };
    ini.ApplyVariables();
    ApplyCalendar(section("styles.calendar"), styles.calendar);
    ApplyInfo(section("info"), styles.info);
    ApplyContextMenu(section("styles.contextmenu"), styles.contextMenu);
    ApplyListViews(section("styles.listviews"), styles.listViews);
    InheritFromListViews(styles);
    ApplyWeekView(section("styles.weekview"), styles.weekView);
    ApplyDayView(section("styles.dayview"), styles.dayView);
    InheritFromDayView(styles);
    ApplyAgendaView(section("styles.agendaview"), styles.agendaView, styles.dayView);
    ApplyQuickView(section("styles.quickview"), styles.quickView);
    ApplyItemDetailView(section("styles.itemdetailview"), styles.itemDetailView);
    ApplyAddModifyForm(section("styles.addmodifyform"), styles.addModifyForm);
    ApplyInputForms(section("styles.inputforms"), styles.inputForms);
    ApplyStatusBar(section("styles.statusbar"), styles.statusBar);
    section("styles.menubar").Buttons(styles.menuBar.buttons, true);
    ApplyMenuBarResolution(section(highResolution ? "styles.menubar.hires" : "styles.menubar.lores"),
                           styles.menuBar, highResolution);
}

} // namespace mirodate
