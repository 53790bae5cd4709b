#pragma once
// The base of every window object. It binds itself to its platform window
// and turns each message into one virtual operation, so that a derived window
// overrides only what it cares about. The operations keep a fixed order,
// and derived classes append theirs after the last one of their base.
#include "ui/OwnerButton.h"
#include "ui/WinTypes.h"

#include <vector>

namespace mirodate {

class BaseWnd {
public:
    BaseWnd();
    // Destroys the window if it still exists and frees the button list.
    virtual ~BaseWnd();
    BaseWnd(const BaseWnd&) = delete;
    BaseWnd& operator=(const BaseWnd&) = delete;

    virtual void OnPaint(HDC dc);
    virtual void OnAfterPaint();
    // Draws the matching owner button; 1, or 0 when no record has the id.
    virtual BOOL OnDrawItem(UINT controlId, DRAWITEMSTRUCT* drawItem);
    // Erases nothing: every window paints all of itself off-screen.
    virtual BOOL OnEraseBackground(HDC dc);
    virtual LRESULT OnControlColorButton(HDC dc, HWND control);
    // The close message alone never destroys the window.
    virtual void OnClose();
    virtual void OnDestroy();
    virtual void OnDoubleTap(int button);
    // Buttons: 0 left (finger), 1 right, 2 middle; client coordinates.
    virtual LRESULT OnPointerUp(int button, int x, int y, WPARAM keys);
    virtual LRESULT OnPointerDown(int button, int x, int y, WPARAM keys);
    virtual void OnPointerMove(int x, int y, WPARAM keys);
    virtual LRESULT OnMouseWheel(UINT keys, short delta, int x, int y);
    virtual void OnCaptureChanged(HWND newCapture);
    virtual void OnKeyUp(UINT key, UINT flags);
    virtual void OnKeyDown(UINT key, UINT flags);
    virtual void OnHotKey(int id, UINT modifiersAndKey);
    virtual void OnChar(char16_t ch, UINT flags);
    virtual BOOL OnInitDialog();
    virtual LRESULT OnCreate(WPARAM wParam, CREATESTRUCT* createStruct);
    virtual void OnShowWindow(BOOL shown);
    // Ends a modal dialog for ids 1 and 2.
    virtual void OnCommand(UINT id, UINT code, HWND control);
    virtual LRESULT OnSysCommand(UINT command, int x, int y);
    virtual LRESULT OnNotify(UINT_PTR id, NMHDR* header);
    virtual void OnTimer(UINT_PTR id);
    virtual void OnSize(UINT sizeParam, UINT type);
    virtual LRESULT OnWindowPosChanged(WINDOWPOS* windowPos);
    virtual LRESULT OnActivate(UINT state, BOOL minimized, HWND other);
    virtual LRESULT OnSetFocus(HWND previous);
    virtual LRESULT OnKillFocus(HWND next);
    virtual LRESULT WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual INT_PTR DialogProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    // The messages both dispatches map to the same operation; false for the
    // rest, which each dispatch handles (or defaults) in its own way.
    bool DispatchCommon(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result);
    // Moves and repaints; does not remember the placement.
    virtual void MoveTo(const RECT& rect);
    // Moves and repaints, and remembers the placement.
    virtual void MoveTo(int x, int y, int width, int height);

    // Registers the class and creates the window with this object bound to it.
    HWND Create(HWND parent, const char* className, DWORD style, const std::u16string& title, int x, int y,
                int width, int height);
    // Registers a class served by the framework's window procedure; a class
    // that exists already is left as it is.
    static void RegisterWindowClass(const char* className);
    // A page from the empty dialog template, modeless or modal.
    HWND CreateModeless(HWND parent);
    INT_PTR DoModal(HWND parent);
    // Invalidates all of the window and paints it at once.
    void Redraw(bool erase);

    HWND GetHwnd() const { return window; }

    // Tells the parent (the owner of a top-level window) by WM_NOTIFY, with
    // this window and its control id in the header; returns the answer.
    LRESULT NotifyParent(UINT code);
    // The same for a notification that carries more after its `header`.
    template <typename Notice> LRESULT NotifyParent(UINT code, Notice& notice) {
        return SendParentNotify(notice.header, code, &notice);
    }

    // The framework's procedures that bind windows to their objects.
    static LRESULT FrameworkWindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    static INT_PTR FrameworkDialogProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);

    HWND window = nullptr;
    DWORD modal = 0;
    int placementX = 0;
    int placementY = 0;
    int placementWidth = 0;
    int placementHeight = 0;
    std::vector<OwnerButton> ownerButtons;
    DWORD templateId = 0;
    WNDPROC previousWindowProc = nullptr;

private:
    LRESULT SendParentNotify(NMHDR& header, UINT code, void* notice);
};

} // namespace mirodate
