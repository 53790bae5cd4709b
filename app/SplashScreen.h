#pragma once
// The small window shown while the store loads the first month: the splash
// picture with a progress bar under it. Its existence tells a second start
// that this instance is still loading. The first timer tick runs the load
// step, which ends by creating the main window and destroying the splash.
#include "ui/BaseWnd.h"
#include "ui/Bitmap.h"

#include <functional>
#include <string>

namespace mirodate {

class SplashScreen : public BaseWnd {
public:
    // Runs on the first timer tick; reports progress through SetProgress.
    using LoadStep = std::function<void(SplashScreen& splash)>;

    static constexpr UINT_PTR kLoadTimer = 1;
    static constexpr UINT kLoadTimerPeriod = 20;
    static constexpr int kInitialProgress = 20;
    static constexpr COLORREF kBarBackground = RGB(235, 243, 235);
    static constexpr COLORREF kBarFill = RGB(83, 163, 38);

    SplashScreen(std::u16string commandLine, LoadStep loadStep);
    ~SplashScreen() override;

    // Creates the centred window and starts the load timer.
    HWND CreateCentered();
    // Sets the bar and repaints at once, so that progress shows during a long load.
    void SetProgress(int percent);
    int Progress() const { return progress; }
    // Destroys the window (the object stays with its owner).
    void Close();

    void OnPaint(HDC dc) override;
    void OnTimer(UINT_PTR id) override;

    // The progress bar's rectangle in a client area of this size.
    static RECT ProgressBarRect(int width, int height, bool highResolution);

    int progress = kInitialProgress;
    std::u16string commandLine;

private:
    LoadStep loadStep_;
    Bitmap picture_;
};

} // namespace mirodate
