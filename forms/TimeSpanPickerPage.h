#pragma once
// A modal page that picks a span of time as weeks, days, hours and minutes
// (a reminder's lead time): a column for each with a plus and a minus
// button, and the span written out above them as it changes. Up and Down
// change the active column, Left and Right choose it; holding a button
// repeats it. Weeks go up to 52. Returns nothing when the user cancels.
#include "forms/PickerChrome.h"
#include "ui/DialogWnd.h"
#include "ui/Font.h"

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace mirodate {

class TimeSpanPickerPage : public DialogWnd {
public:
    static constexpr int kMaxWeeks = 52;
    static constexpr int kMinuteStep = 5;
    static constexpr UINT_PTR kRepeatTimer = 0x7C30;
    static constexpr UINT kRepeatDelay = 400;
    static constexpr UINT kRepeatInterval = 100;
    enum Unit { kWeeks, kDays, kHours, kMinutes, kUnits };

    explicit TimeSpanPickerPage(std::int64_t minutes);
    ~TimeSpanPickerPage() override;

    // The chosen span in minutes, or nothing on Cancel.
    static std::optional<std::int64_t> Pick(HWND owner, std::int64_t minutes);

    // Called with each page once it is shown (tests answer through it).
    static void SetOpenObserver(std::function<void(TimeSpanPickerPage& page)> observer);

    std::int64_t Value() const { return value_; }
    void SetValue(std::int64_t minutes);
    // Ends the page with the current value (OK) or with nothing (Cancel).
    void Accept();
    void Cancel();

    // The largest span offered: 52 weeks, 6 days, 23 hours and 59 minutes.
    static std::int64_t MaxMinutes();
    // One part of the value (weeks 0..52, days 0..6, hours 0..23, minutes 0..59).
    int Part(Unit unit) const;
    // Steps a part up or down (minutes to the next multiple of five).
    void StepPart(Unit unit, int direction);
    int ActiveUnit() const { return active_; }
    // The text shown for the value.
    std::u16string ValueText() const;
    // The plus and minus buttons of a column, in page coordinates.
    RECT PlusRect(Unit unit) const;
    RECT MinusRect(Unit unit) const;
    PickerChrome& Chrome() { return chrome_; }

    BOOL OnInitDialog() override;
    void OnDialogReady() override;
    void OnPaint(HDC dc) override;
    void OnCommand(UINT id, UINT code, HWND control) override;
    void OnKeyDown(UINT key, UINT flags) override;
    LRESULT OnPointerDown(int button, int x, int y, WPARAM keys) override;
    void OnPointerMove(int x, int y, WPARAM keys) override;
    LRESULT OnPointerUp(int button, int x, int y, WPARAM keys) override;
    void OnCaptureChanged(HWND newCapture) override;
    void OnTimer(UINT_PTR id) override;
    void OnClose() override;
    void OnScreenReset() override;

private:
    struct Column {
        RECT label, plus, value, minus;
    };
    void Layout();
    void SetParts(const std::array<int, kUnits>& parts);
    void EndPress();
    void PaintButton(Dc& dc, const RECT& rect, const std::u16string& text, bool pressed) const;

    std::int64_t value_ = 0;
    PickerChrome chrome_;
    std::unique_ptr<Font> textFont_, labelFont_, numberFont_;
    RECT textRect_{};
    std::array<Column, kUnits> columns_{};
    int active_ = kMinutes;
    // The button held: unit * 2 + (0 plus, 1 minus), or -1.
    int pressedButton_ = -1;
};

} // namespace mirodate
