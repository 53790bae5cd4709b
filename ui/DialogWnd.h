#pragma once
// The base of every full-screen page (views, forms, pickers, the context
// menu): activation with full-screen switching, a dialog-ready call once the
// page has been shown, deferred commands, the screen reset and the close-all
// broadcast.
//
// The program's own messages arrive decoded, as virtual operations, in both
// dispatches (window and dialog): the data-changed broadcast as OnStoreChanged,
// the store's item notifications as OnItemNotification, a command text handed
// over by another instance as OnCommandText, the close-all broadcast as
// OnCloseAll. A page that still decodes one of them by hand in its own
// procedure and returns keeps working: it simply sees the message first.
#include "data/PimNotification.h"
#include "ui/BaseWnd.h"
#include "ui/Shell.h"

#include <string>

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

    // What the data-changed broadcast says: whether everything was read again
    // (false: items changed), and the month it concerns (0, 0: any month).
    struct StoreChange {
        bool reloaded = false;
        int year = 0;
        int month = 0;
    };
    virtual void OnStoreChanged(const StoreChange& change);
    // An item the store reports created, changed or deleted (the main window).
    virtual void OnItemNotification(const PimNotification& notification);
    // A command text from another instance; false leaves it unhandled.
    virtual bool OnCommandText(const std::u16string& text);
    // The close-all broadcast reached a page. By default a modeless page
    // deletes itself (it owns itself once shown) and a modal one ends with
    // IDCANCEL; the main window, created as a plain window, never hears it.
    virtual void OnCloseAll();

    // Sends the data-changed broadcast to every top-level window.
    static void BroadcastStoreChanged(const StoreChange& change);
    // Sends the close-all broadcast (posted: safe from inside a page).
    static void BroadcastCloseAll(bool post);

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
    // Decodes the program's own messages into the operations above; false
    // for any other message. `result` is what the message returns.
    bool DispatchApplication(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam, bool dialog,
                             LRESULT& result);
    void ApplyFullScreen();
};

// The timer that brings OnDialogReady, and its period.
constexpr UINT_PTR kDialogReadyTimer = 555;
constexpr UINT kDialogReadyDelay = 100;

} // namespace mirodate
