#pragma once
// The base of every full-screen page (views, forms, pickers, the context
// menu): activation with full-screen switching, a dialog-ready call once the
// page has been shown, deferred commands, the screen reset and the close-all
// broadcast.
#include "ui/BaseWnd.h"
#include "ui/Shell.h"

namespace mirodate {

class DialogWnd : public BaseWnd {
public:
    DialogWnd();
    ~DialogWnd() override;

    BOOL OnInitDialog() override;
    void OnTimer(UINT_PTR id) override;
    LRESULT OnActivate(UINT state, BOOL minimized, HWND other) override;
    LRESULT WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) override;
    INT_PTR DialogProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) override;

    virtual void ReservedHook();
    virtual void OnDeferredCommand(UINT id);
    virtual void OnScreenReset();
    virtual void OnDialogReady();

    // Paints the page now, then posts the command to itself; `object` (may be
    // null) is deleted when the command arrives.
    void PostDeferredCommand(UINT id, BaseWnd* object);

    // Pages alive in the process.
    static int LivePageCount();

    DWORD showInputPanelButton = 0;
    SHACTIVATEINFO shellActivateInfo;
    DWORD initTime = 0;

private:
    // The deferred-command step shared by both dispatches.
    void HandleDeferredCommand(WPARAM wParam, LPARAM lParam);
    void ApplyFullScreen();
};

// The timer that brings OnDialogReady, and its period.
constexpr UINT_PTR kDialogReadyTimer = 555;
constexpr UINT kDialogReadyDelay = 100;

} // namespace mirodate
