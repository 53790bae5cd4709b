#pragma once
// A kinetic wheel of entries (the hours or the minutes of the time pickers)
// that turns round: drag it, fling it, and it slows down with the lists'
// friction and comes to rest with one whole entry in the band at its
// centre. A tap above or below the band turns it to the tapped entry. The
// motion runs on the window system's timers, so a virtual clock drives it
// exactly. Each change of the entry in the band goes to the parent as
// WM_COMMAND with the wheel's id and kChanged; a touch with kTouched.
#include "ui/BaseWnd.h"
#include "ui/TextLayout.h"

#include <array>
#include <string>
#include <vector>

namespace mirodate {

constexpr const char* kTimeWheelClass = "MIRODATE::TIMEWHEEL";

class TimeWheelWnd : public BaseWnd {
public:
    static constexpr WORD kChanged = 1;
    // Sent when a finger touches the wheel.
    static constexpr WORD kTouched = 2;
    static constexpr UINT_PTR kMotionTimer = 0x7C20;
    // One step of the motion: about a frame of a 60 Hz screen.
    static constexpr UINT kTick = 16;

    TimeWheelWnd();
    ~TimeWheelWnd() override;

    HWND Create(HWND parent, int id, const RECT& rect, const std::vector<std::u16string>& labels,
                const Font& font);

    int Count() const { return static_cast<int>(labels_.size()); }
    // The entry in the band now (while turning, the one passing it).
    int Value() const;
    // Turns to `index` (wrapped into the entries), gliding or at once.
    void SetValue(int index, bool glide);
    // Glides by `delta` entries from where the wheel is heading.
    void Step(int delta);
    // Stops any motion on the entry the wheel was coming to rest on.
    void Settle();
    bool IsMoving() const { return motion_ != Motion::None; }
    // Scroll position in pixels: entry i is in the band at i x RowHeight().
    double Offset() const { return offset_; }
    int RowHeight() const { return rowHeight_; }
    // The wheel that keys turn is framed in the selection colour.
    void SetActive(bool active);

    void OnPaint(HDC dc) override;
    LRESULT OnPointerDown(int button, int x, int y, WPARAM keys) override;
    void OnPointerMove(int x, int y, WPARAM keys) override;
    LRESULT OnPointerUp(int button, int x, int y, WPARAM keys) override;
    void OnCaptureChanged(HWND newCapture) override;
    void OnTimer(UINT_PTR id) override;
    void OnSize(UINT sizeParam, UINT type) override;

private:
    enum class Motion { None, Fling, Snap };
    struct Sample {
        DWORD time;
        int y;
    };
    static constexpr int kSamples = 8;

    // Glides to the pixel position `target`: slowing down with the lists'
    // friction after a fling, or quicker for a snap or a step.
    void GlideTo(double target, Motion motion);
    void MotionStep();
    void Stop();
    // The whole entry nearest to `offset`, as a position.
    double Snapped(double offset) const;
    void OffsetChanged();
    int Wrap(long long index) const;
    double ReleaseVelocity() const; // px per ms over the last moves, positive = offset growing

    int id_ = 0;
    std::vector<std::u16string> labels_;
    std::vector<TextLayout> layouts_;
    int rowHeight_ = 1;
    double offset_ = 0;
    int lastValue_ = 0;
    bool active_ = false;

    Motion motion_ = Motion::None;
    double target_ = 0;
    double rate_ = 0;
    DWORD lastTick_ = 0;

    bool pressed_ = false;
    bool dragging_ = false;
    bool caught_ = false; // the press stopped a motion: its release is no tap
    int pressY_ = 0;
    int lastY_ = 0;
    std::array<Sample, kSamples> samples_{};
    int sampleCount_ = 0;
};

} // namespace mirodate
