#include "forms/TimeWheelWnd.h"

#include "skin/SkinStyles.h"
#include "ui/Dc.h"
#include "ui/GestureTuning.h"
#include "ui/Scale.h"
#include "ui/WinApi.h"

#include <algorithm>
#include <cmath>

namespace mirodate {

namespace {
// Unscaled row heights for a 240-pixel-wide screen.
constexpr int kMinRowHeight = 18;
constexpr int kMaxRowHeight = 30;
constexpr int kRowsShown = 5;
// How fast a glide to an entry closes in (share of the distance per ms): a
// snap of half a row ends within about 200 ms.
constexpr double kSnapRate = 0.02;
// Closer than this to its target (pixels) a motion ends on the target.
constexpr double kRestDistance = 0.5;
// Finger movement older than this does not count for the release velocity.
constexpr DWORD kVelocityWindow = 100;

COLORREF Mix(COLORREF a, COLORREF b) {
    return RGB((GetRValue(a) + GetRValue(b)) / 2, (GetGValue(a) + GetGValue(b)) / 2,
               (GetBValue(a) + GetBValue(b)) / 2);
}

// The lists' friction (a share of the velocity lost per fling tick) as a
// continuous decay per millisecond.
double FlingRate() {
    const GestureTuning& tuning = GestureTuning::Current();
    return -std::log(1.0 - tuning.friction) / static_cast<double>(tuning.flingTick);
}
} // namespace

TimeWheelWnd::TimeWheelWnd() = default;

TimeWheelWnd::~TimeWheelWnd() = default;

HWND TimeWheelWnd::Create(HWND parent, int id, const RECT& rect, const std::vector<std::u16string>& labels,
                          const Font& font) {
    id_ = id;
    labels_ = labels.empty() ? std::vector<std::u16string>{u""} : labels;
    GestureTuning::Set();
    // Laid out once: a turning wheel only draws them.
    layouts_.clear();
    layouts_.reserve(labels_.size());
    for (const std::u16string& label : labels_)
        layouts_.emplace_back(label, font, 0, false);
    return BaseWnd::Create(parent, kTimeWheelClass, WS_CHILD | WS_VISIBLE, u"", rect.left, rect.top,
                           rect.Width(), rect.Height());
}

int TimeWheelWnd::Wrap(long long index) const {
    const long long count = Count();
    return static_cast<int>(((index % count) + count) % count);
}

int TimeWheelWnd::Value() const {
    return Wrap(std::llround(offset_ / rowHeight_));
}

double TimeWheelWnd::Snapped(double offset) const {
    return std::round(offset / rowHeight_) * rowHeight_;
}

void TimeWheelWnd::SetValue(int index, bool glide) {
    if (!glide) {
        Stop();
        offset_ = static_cast<double>(Wrap(index)) * rowHeight_;
        OffsetChanged();
        return;
    }
    // The short way round.
    const int count = Count();
    int delta = Wrap(index) - Value();
    if (delta > count / 2)
        delta -= count;
    if (delta < -count / 2)
        delta += count;
    Step(delta);
}

void TimeWheelWnd::Step(int delta) {
    const double base = motion_ != Motion::None ? target_ : Snapped(offset_);
    GlideTo(base + static_cast<double>(delta) * rowHeight_, Motion::Snap);
}

void TimeWheelWnd::Settle() {
    if (motion_ == Motion::None)
        return;
    offset_ = target_;
    Stop();
    OffsetChanged();
}

void TimeWheelWnd::SetActive(bool active) {
    if (active == active_)
        return;
    active_ = active;
    if (window)
        InvalidateRect(window, nullptr, false);
}

void TimeWheelWnd::GlideTo(double target, Motion motion) {
    target_ = target;
    rate_ = motion == Motion::Fling ? FlingRate() : kSnapRate;
    if (std::abs(target_ - offset_) < kRestDistance) {
        offset_ = target_;
        Stop();
        OffsetChanged();
        return;
    }
    if (motion_ == Motion::None && window)
        SetTimer(window, kMotionTimer, kTick);
    motion_ = motion;
    lastTick_ = GetTickCount();
}

void TimeWheelWnd::Stop() {
    if (motion_ != Motion::None && window)
        KillTimer(window, kMotionTimer);
    motion_ = Motion::None;
    // Back into one turn, so that the position never runs away.
    const double turn = static_cast<double>(Count()) * rowHeight_;
    offset_ = std::fmod(offset_, turn);
    if (offset_ < 0)
        offset_ += turn;
}

void TimeWheelWnd::MotionStep() {
    const DWORD now = GetTickCount();
    const double elapsed = static_cast<double>(now - lastTick_);
    lastTick_ = now;
    // The distance left shrinks by the same share each millisecond: the
    // wheel slows down smoothly and arrives on the whole entry.
    const double left = (target_ - offset_) * std::exp(-rate_ * elapsed);
    if (std::abs(left) < kRestDistance) {
        offset_ = target_;
        Stop();
    } else {
        offset_ = target_ - left;
    }
    OffsetChanged();
}

void TimeWheelWnd::OffsetChanged() {
    if (!window)
        return;
    InvalidateRect(window, nullptr, false);
    const int value = Value();
    if (value == lastValue_)
        return;
    lastValue_ = value;
    if (HWND parent = GetParent(window))
        SendMessage(parent, WM_COMMAND, MAKEWPARAM(id_, kChanged), reinterpret_cast<LPARAM>(window));
}

double TimeWheelWnd::ReleaseVelocity() const {
    if (sampleCount_ < 2)
        return 0;
    const Sample& last = samples_[static_cast<size_t>((sampleCount_ - 1) % kSamples)];
    const Sample* first = &last;
    for (int i = sampleCount_ - 2; i >= std::max(0, sampleCount_ - kSamples); --i) {
        const Sample& sample = samples_[static_cast<size_t>(i % kSamples)];
        if (last.time - sample.time > kVelocityWindow)
            break;
        first = &sample;
    }
    if (last.time == first->time)
        return 0;
    const double fingerSpeed =
        static_cast<double>(last.y - first->y) / static_cast<double>(last.time - first->time);
    const GestureTuning& tuning = GestureTuning::Current();
    const double limit = tuning.maxVelocity / static_cast<double>(tuning.flingTick);
    // The finger moving down brings earlier entries: the offset shrinks.
    return std::clamp(-fingerSpeed, -limit, limit);
}

LRESULT TimeWheelWnd::OnPointerDown(int button, int, int y, WPARAM) {
    if (button != 0)
        return 0;
    caught_ = motion_ != Motion::None;
    if (caught_) {
        KillTimer(window, kMotionTimer);
        motion_ = Motion::None;
    }
    pressed_ = true;
    dragging_ = false;
    pressY_ = lastY_ = y;
    sampleCount_ = 0;
    samples_[0] = Sample{GetTickCount(), y};
    sampleCount_ = 1;
    SetCapture(window);
    if (HWND parent = GetParent(window))
        SendMessage(parent, WM_COMMAND, MAKEWPARAM(id_, kTouched), reinterpret_cast<LPARAM>(window));
    return 0;
}

void TimeWheelWnd::OnPointerMove(int, int y, WPARAM) {
    if (!pressed_)
        return;
    samples_[static_cast<size_t>(sampleCount_ % kSamples)] = Sample{GetTickCount(), y};
    ++sampleCount_;
    if (!dragging_ && std::abs(y - pressY_) <= GestureTuning::Current().dragThreshold)
        return;
    dragging_ = true;
    offset_ -= y - lastY_;
    lastY_ = y;
    OffsetChanged();
}

LRESULT TimeWheelWnd::OnPointerUp(int button, int, int y, WPARAM) {
    if (button != 0 || !pressed_)
        return 0;
    pressed_ = false;
    if (GetCapture() == window)
        ReleaseCapture();
    const DWORD now = GetTickCount();
    if (dragging_) {
        offset_ -= y - lastY_;
        const GestureTuning& tuning = GestureTuning::Current();
        // A finger that rested before lifting throws nothing.
        const Sample& lastMove = samples_[static_cast<size_t>((sampleCount_ - 1) % kSamples)];
        const bool still = now - lastMove.time > tuning.stillTime;
        samples_[static_cast<size_t>(sampleCount_ % kSamples)] = Sample{now, y};
        ++sampleCount_;
        const double velocity = still ? 0.0 : ReleaseVelocity();
        if (std::abs(velocity) * tuning.flingTick > tuning.flingMinVelocity) {
            // Where the friction alone would stop it, moved to the nearest whole entry.
            GlideTo(Snapped(offset_ + velocity / FlingRate()), Motion::Fling);
        } else {
            GlideTo(Snapped(offset_), Motion::Snap);
        }
        return 0;
    }
    if (caught_) {
        GlideTo(Snapped(offset_), Motion::Snap);
        return 0;
    }
    // A tap turns the tapped entry into the band.
    RECT client;
    GetClientRect(window, &client);
    const double centre = client.Height() / 2.0;
    Step(static_cast<int>(std::lround((y - centre) / rowHeight_)));
    return 0;
}

void TimeWheelWnd::OnCaptureChanged(HWND newCapture) {
    if (newCapture == window || !pressed_)
        return;
    pressed_ = false;
    GlideTo(Snapped(offset_), Motion::Snap);
}

void TimeWheelWnd::OnTimer(UINT_PTR id) {
    if (id == kMotionTimer)
        MotionStep();
}

void TimeWheelWnd::OnSize(UINT, UINT) {
    const int value = Value();
    RECT client;
    GetClientRect(window, &client);
    const int shortest = std::min(Scale(kMinRowHeight), std::max(1, client.Height() / 3));
    rowHeight_ = std::clamp(client.Height() / kRowsShown, shortest, Scale(kMaxRowHeight));
    rowHeight_ = std::max(rowHeight_, 1);
    Stop();
    offset_ = static_cast<double>(value) * rowHeight_;
    InvalidateRect(window, nullptr, false);
}

void TimeWheelWnd::OnPaint(HDC dc) {
    if (!dc)
        return;
    const SkinStyles& styles = SkinStyles::Current();
    const InputFormsStyle& form = styles.inputForms;
    const COLORREF mark = styles.addModifyForm.colorSelectionMark;
    RECT client;
    GetClientRect(window, &client);
    dc->FillRect(client, form.colorItemBg);
    const int width = client.Width(), height = client.Height();
    const int bandTop = (height - rowHeight_) / 2;
    const RECT band{0, bandTop, width, bandTop + rowHeight_};
    dc->FillRect(band, mark);

    // Rows r whose span [bandTop + r h - offset, + h) meets the window.
    const long long first = static_cast<long long>(std::floor((offset_ - bandTop) / rowHeight_));
    const long long last = static_cast<long long>(std::ceil((offset_ + height - bandTop) / rowHeight_));
    const COLORREF far = Mix(form.colorItemText, form.colorItemBg);
    auto drawRows = [&](COLORREF nearColor, COLORREF farColor) {
        for (long long r = first; r <= last; ++r) {
            const double top = bandTop + static_cast<double>(r) * rowHeight_ - offset_;
            const TextLayout& layout = layouts_[static_cast<size_t>(Wrap(r))];
            const int y = static_cast<int>(std::lround(top)) + (rowHeight_ - layout.Height()) / 2;
            const bool isFar = std::abs(top - bandTop) > 1.5 * rowHeight_;
            layout.Draw(*dc, (width - layout.Width()) / 2, y, isFar ? farColor : nearColor);
        }
    };
    drawRows(form.colorItemText, far);
    // Inside the band the same rows again in the selected text colour.
    dc->IntersectClip(band);
    drawRows(styles.addModifyForm.colorTextSel, styles.addModifyForm.colorTextSel);
    dc->ResetClip();
    dc->FrameRect(client, active_ ? mark : far, std::max(1, Scale(1)));
}

} // namespace mirodate
