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
#include <initializer_list>
#include <optional>
#include <string>
#include <utility>

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

// One key of a section and the field of the style it sets.
template <typename Style, typename Field> struct KeyField {
    std::string_view key;
    Field Style::*field;
};
template <typename Style> using ColorKeys = std::initializer_list<KeyField<Style, COLORREF>>;
template <typename Style>
using OptionalColorKeys = std::initializer_list<KeyField<Style, std::optional<COLORREF>>>;
template <typename Style> using NumberKeys = std::initializer_list<KeyField<Style, int>>;

// Sets each field whose key the section has; the others keep their value.
template <typename Style, typename Field>
void ReadColors(const SectionReader& r, Style& s, std::initializer_list<KeyField<Style, Field>> keys) {
    for (const KeyField<Style, Field>& k : keys)
        r.Color(k.key, s.*k.field);
}

template <typename Style> void ReadNumbers(const SectionReader& r, Style& s, NumberKeys<Style> keys) {
    for (const KeyField<Style, int>& k : keys)
        r.Number(k.key, s.*k.field);
}

// An absent header gradient is the plain header colour (or `fallback`).
void HeaderGradient(const SectionReader& r, TimeViewStyle& s, COLORREF fallback) {
    if (!r.Color("colorHeaderGradient", s.colorHeaderGradient))
        s.colorHeaderGradient = fallback;
}

using T = TimeViewStyle;

void ApplyCalendar(const SectionReader& r, CalendarStyle& s) {
    using C = CalendarStyle;
    ReadColors(r, s,
               OptionalColorKeys<C>{{"colorGrid", &C::colorGrid},
                                    {"colorYearMonthBarBg", &C::colorYearMonthBarBg},
                                    {"colorYearMonthBarText", &C::colorYearMonthBarText},
                                    {"colorDayBarBg", &C::colorDayBarBg},
                                    {"colorDayBarText", &C::colorDayBarText},
                                    {"colorDayGridText", &C::colorDayGridText},
                                    {"colorDayGridTextNextPrevMonth", &C::colorDayGridTextNextPrevMonth},
                                    {"colorWeekNumber", &C::colorWeekNumber},
                                    {"colorDayGridBg", &C::colorDayGridBg},
                                    {"colorDayGridBgSelected", &C::colorDayGridBgSelected},
                                    {"colorDayGridBorderToday", &C::colorDayGridBorderToday},
                                    {"colorDayGridTextSelected", &C::colorDayGridTextSelected},
                                    {"colorAppointmentIndicator", &C::colorAppointmentIndicator},
                                    {"colorTaskIndicator", &C::colorTaskIndicator}});
    r.DayNames(s.colorDayName);
    r.Pictures(s.pictures);
    r.Number("showGridLines", s.showGridLines, "2");
}

void ApplyInfo(const SectionReader& r, SkinInfo& info) {
    for (auto [key, field] :
         {std::pair{"author", &SkinInfo::author}, std::pair{"version", &SkinInfo::version}})
        if (std::string value = r.Text(key); !value.empty())
            info.*field = Utf8ToUtf16(value);
}

void ApplyContextMenu(const SectionReader& r, ContextMenuStyle& s) {
    using C = ContextMenuStyle;
    ReadColors(r, s,
               ColorKeys<C>{{"colorBorder", &C::colorBorder},
                            {"colorBg", &C::colorBg},
                            {"colorBgGradient", &C::colorBgGradient},
                            {"colorText", &C::colorText},
                            {"colorTextSelected", &C::colorTextSelected},
                            {"colorSelectionMark", &C::colorSelectionMark}});
}

void ApplyListViews(const SectionReader& r, ListViewStyle& s) {
    using L = ListViewStyle;
    ReadColors(r, s,
               ColorKeys<L>{{"colorLineSeparator", &L::colorLineSeparator},
                            {"colorBorder", &L::colorBorder},
                            {"colorBg", &L::colorBg},
                            {"colorBg2", &L::colorBg2},
                            {"colorText", &L::colorText},
                            {"colorSelectionMark", &L::colorSelectionMark},
                            {"colorHeaderBg", &L::colorHeaderBg},
                            {"colorHeaderText", &L::colorHeaderText}});
    ReadNumbers(r, s, NumberKeys<L>{{"styleLineSeparator", &L::styleLineSeparator}});
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
    ReadColors(r, s,
               ColorKeys<T>{{"colorTimeScale", &T::colorTimeScale},
                            {"colorTimeScaleAllday", &T::colorTimeScaleAllday},
                            {"colorText", &T::colorText},
                            {"colorTextSelected", &T::colorTextSelected},
                            {"colorHeaderText", &T::colorHeaderText},
                            {"colorHeaderBg", &T::colorHeaderBg},
                            {"colorBg", &T::colorBg},
                            {"colorBg2", &T::colorBg2},
                            {"colorSelectionMark", &T::colorSelectionMark}});
    HeaderGradient(r, s, s.colorHeaderBg);
    r.DayNames(s.colorDayName);
}

void ApplyDayView(const SectionReader& r, TimeViewStyle& s) {
    r.Pictures(s.pictures);
    ReadColors(r, s,
               ColorKeys<T>{{"colorTimeScale", &T::colorTimeScale},
                            {"colorTimeScaleAllday", &T::colorTimeScaleAllday},
                            {"colorText", &T::colorText},
                            {"colorHeaderText", &T::colorHeaderText},
                            {"colorHeaderBg", &T::colorHeaderBg},
                            {"colorBg", &T::colorBg},
                            {"colorBg2", &T::colorBg2},
                            {"colorSelectionMark", &T::colorSelectionMark},
                            {"colorTextSelected", &T::colorTextSelected},
                            {"colorLineSeparator", &T::colorLineSeparator}});
    HeaderGradient(r, s, s.colorHeaderBg);
    ReadNumbers(r, s, NumberKeys<T>{{"styleLineSeparator", &T::styleLineSeparator}});
}

// The agenda starts from the day view's look.
void InheritFromDayView(SkinStyles& s) {
    for (COLORREF T::*field :
         {&T::colorBg, &T::colorText, &T::colorSelectionMark, &T::colorTimeScale, &T::colorTimeScaleAllday,
          &T::colorTextSelected, &T::colorHeaderBg, &T::colorHeaderText, &T::colorHeaderGradient})
        s.agendaView.*field = s.dayView.*field;
}

void ApplyAgendaView(const SectionReader& r, TimeViewStyle& s, const TimeViewStyle& day) {
    r.Pictures(s.pictures);
    ReadColors(r, s,
               ColorKeys<T>{{"colorTimeScale", &T::colorTimeScale},
                            {"colorTimeScaleAllday", &T::colorTimeScaleAllday},
                            {"colorText", &T::colorText},
                            {"colorTextSelected", &T::colorTextSelected},
                            {"colorHeaderText", &T::colorHeaderText},
                            {"colorHeaderBg", &T::colorHeaderBg},
                            {"colorBg", &T::colorBg},
                            {"colorSelectionMark", &T::colorSelectionMark},
                            {"colorLineSeparator", &T::colorLineSeparator}});
    // Unlike week and day view, the agenda header follows the day view's gradient.
    HeaderGradient(r, s, day.colorHeaderGradient);
    s.styleLineSeparator = day.styleLineSeparator;
    ReadNumbers(r, s, NumberKeys<T>{{"styleLineSeparator", &T::styleLineSeparator}});
}

void ApplyQuickView(const SectionReader& r, TimeViewStyle& s) {
    r.Pictures(s.pictures);
    ReadColors(r, s,
               ColorKeys<T>{{"colorTimeScale", &T::colorTimeScale},
                            {"colorTimeScaleAllday", &T::colorTimeScaleAllday},
                            {"colorText", &T::colorText},
                            {"colorTextSelected", &T::colorTextSelected},
                            {"colorBg", &T::colorBg},
                            {"colorBg2", &T::colorBg2},
                            {"colorSelectionMark", &T::colorSelectionMark},
                            {"colorLineSeparator", &T::colorLineSeparator}});
    ReadNumbers(r, s, NumberKeys<T>{{"styleLineSeparator", &T::styleLineSeparator}});
}

void ApplyItemDetailView(const SectionReader& r, ItemDetailStyle& s) {
    using D = ItemDetailStyle;
    r.Pictures(s.pictures);
    ReadColors(r, s,
               ColorKeys<D>{{"colorBg", &D::colorBg},
                            {"colorMemoBg", &D::colorMemoBg},
                            {"colorMemoText", &D::colorMemoText}});
    // Kept as text: it goes straight into the detail view's mark-up.
    if (std::string text = r.Text("colorText"); !text.empty())
        s.colorText = Utf8ToUtf16(text);
}

void ApplyAddModifyForm(const SectionReader& r, AddModifyFormStyle& s) {
    using F = AddModifyFormStyle;
    ReadColors(r, s,
               ColorKeys<F>{{"colorBg", &F::colorBg},
                            {"colorBg2", &F::colorBg2},
                            {"colorText", &F::colorText},
                            {"colorTextSel", &F::colorTextSel},
                            {"colorSelectionMark", &F::colorSelectionMark},
                            {"colorHeaderBg", &F::colorHeaderBg},
                            {"colorHeaderText", &F::colorHeaderText},
                            {"colorLineSeparator", &F::colorLineSeparator}});
    ReadNumbers(r, s, NumberKeys<F>{{"styleLineSeparator", &F::styleLineSeparator}});
}

void ApplyInputForms(const SectionReader& r, InputFormsStyle& s) {
    using I = InputFormsStyle;
    ReadColors(r, s,
               ColorKeys<I>{{"colorBg", &I::colorBg},
                            {"colorItemBg", &I::colorItemBg},
                            {"colorItemText", &I::colorItemText}});
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
    using S = StatusBarStyle;
    for (const KeyField<S, std::optional<COLORREF>>& k :
         OptionalColorKeys<S>{{"colorBg", &S::colorBg},
                              {"colorBgGradient", &S::colorBgGradient},
                              {"colorText", &S::colorText},
                              {"colorMeters", &S::colorMeters}})
        StatusColor(r, k.key, s.*k.field);
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
