#pragma once
// Every window message number, style bit and flag the program uses, in one
// place. System messages keep their usual numbers; the program's own private
// messages start at 0x8000.
#include "ui/WinTypes.h"

namespace mirodate {

// System messages.
constexpr UINT WM_NULL = 0x0000;
constexpr UINT WM_CREATE = 0x0001;
constexpr UINT WM_DESTROY = 0x0002;
constexpr UINT WM_MOVE = 0x0003;
constexpr UINT WM_SIZE = 0x0005;
constexpr UINT WM_ACTIVATE = 0x0006;
constexpr UINT WM_SETFOCUS = 0x0007;
constexpr UINT WM_KILLFOCUS = 0x0008;
constexpr UINT WM_ENABLE = 0x000A;
constexpr UINT WM_SETTEXT = 0x000C;
constexpr UINT WM_PAINT = 0x000F;
constexpr UINT WM_CLOSE = 0x0010;
constexpr UINT WM_QUIT = 0x0012;
constexpr UINT WM_ERASEBKGND = 0x0014;
constexpr UINT WM_SHOWWINDOW = 0x0018;
constexpr UINT WM_SETTINGCHANGE = 0x001A;
constexpr UINT WM_WINDOWPOSCHANGED = 0x0047;
constexpr UINT WM_DRAWITEM = 0x002B;
constexpr UINT WM_COPYDATA = 0x004A;
constexpr UINT WM_NOTIFY = 0x004E;
constexpr UINT WM_NCDESTROY = 0x0082;
constexpr UINT WM_KEYDOWN = 0x0100;
constexpr UINT WM_KEYUP = 0x0101;
constexpr UINT WM_CHAR = 0x0102;
constexpr UINT WM_IME_COMPOSITION = 0x010F; // the input method's composition changed
constexpr UINT WM_INITDIALOG = 0x0110;
constexpr UINT WM_COMMAND = 0x0111;
constexpr UINT WM_SYSCOMMAND = 0x0112;
constexpr UINT WM_TIMER = 0x0113;
constexpr UINT WM_CTLCOLORBTN = 0x0135;
constexpr UINT WM_MOUSEMOVE = 0x0200;
constexpr UINT WM_LBUTTONDOWN = 0x0201;
constexpr UINT WM_LBUTTONUP = 0x0202;
constexpr UINT WM_LBUTTONDBLCLK = 0x0203;
constexpr UINT WM_RBUTTONDOWN = 0x0204;
constexpr UINT WM_RBUTTONUP = 0x0205;
constexpr UINT WM_RBUTTONDBLCLK = 0x0206;
constexpr UINT WM_MBUTTONDOWN = 0x0207;
constexpr UINT WM_MBUTTONUP = 0x0208;
constexpr UINT WM_MBUTTONDBLCLK = 0x0209;
constexpr UINT WM_MOUSEWHEEL = 0x020A;
constexpr UINT WM_CAPTURECHANGED = 0x0215;
constexpr UINT WM_CUT = 0x0300;
constexpr UINT WM_COPY = 0x0301;
constexpr UINT WM_PASTE = 0x0302;
constexpr UINT WM_CLEAR = 0x0303;
constexpr UINT WM_HOTKEY = 0x0312;
constexpr UINT WM_USER = 0x0400;
constexpr UINT WM_APP = 0x8000;

// The program's own messages.
constexpr UINT WM_POOM_CREATED_LOCAL = 0x8100; // wParam item id, lParam folder
constexpr UINT WM_POOM_DELETED_LOCAL = 0x8101;
constexpr UINT WM_POOM_CHANGED_LOCAL = 0x8102;
constexpr UINT WM_POOM_CREATED_REMOTE = 0x8105;
constexpr UINT WM_POOM_DELETED_REMOTE = 0x8106;
constexpr UINT WM_POOM_CHANGED_REMOTE = 0x8107;
constexpr UINT NM_LIST_ROW_CHOSEN = 0x812E;  // notify code: a list row was chosen
constexpr UINT WM_CLOSE_POPUP = 0x8134;      // close a pop-up
constexpr UINT NM_LIST_HEADER_TAP = 0x8135;  // notify code: tap in a list's header band
constexpr UINT WM_DEFERRED_COMMAND = 0x8163; // wParam command id, lParam object to delete or 0
constexpr UINT NM_LONG_PRESS = 0x8190;       // notify code: long press
// Registered (named) messages take numbers from here upwards.
constexpr UINT kFirstRegisteredMessage = 0xC000;

// WM_CHAR flags bit: the character came from text input (typed or committed
// by an input method), not from a key that stands for one (Enter, Backspace).
constexpr LPARAM kCharFromTextInput = 0x10000000;

// WM_SETTINGCHANGE wParam when the screen changed size or orientation.
constexpr WPARAM SETTINGCHANGE_RESET = 0x3002;

// WM_ACTIVATE states.
constexpr WORD WA_INACTIVE = 0;
constexpr WORD WA_ACTIVE = 1;
constexpr WORD WA_CLICKACTIVE = 2;

// WM_SIZE types.
constexpr WPARAM SIZE_RESTORED = 0;

// Pointer key-state bits.
constexpr WPARAM MK_LBUTTON = 0x0001;
constexpr WPARAM MK_RBUTTON = 0x0002;
constexpr WPARAM MK_MBUTTON = 0x0010;

// Window styles.
constexpr DWORD WS_OVERLAPPED = 0x00000000;
constexpr DWORD WS_POPUP = 0x80000000;
constexpr DWORD WS_CHILD = 0x40000000;
constexpr DWORD WS_VISIBLE = 0x10000000;
constexpr DWORD WS_DISABLED = 0x08000000;
constexpr DWORD WS_CLIPSIBLINGS = 0x04000000;
constexpr DWORD WS_CLIPCHILDREN = 0x02000000;
constexpr DWORD WS_BORDER = 0x00800000;
constexpr DWORD WS_TABSTOP = 0x00010000;

// Class styles.
constexpr UINT CS_DBLCLKS = 0x0008;

// Button control styles and notifications.
constexpr DWORD BS_PUSHBUTTON = 0x0000;
constexpr DWORD BS_OWNERDRAW = 0x000B;
constexpr WORD BN_CLICKED = 0;
constexpr UINT BM_GETSTATE = 0x00F2;
constexpr UINT BM_SETSTATE = 0x00F3; // wParam 1 shows the button pressed
constexpr LRESULT BST_PUSHED = 0x0004;
constexpr LRESULT BST_FOCUS = 0x0008;

// Owner-draw records.
constexpr UINT ODT_BUTTON = 4;
constexpr UINT ODA_DRAWENTIRE = 0x0001;
constexpr UINT ODA_SELECT = 0x0002;
constexpr UINT ODA_FOCUS = 0x0004;
constexpr UINT ODS_SELECTED = 0x0001;
constexpr UINT ODS_DISABLED = 0x0004;
constexpr UINT ODS_FOCUS = 0x0010;

// ShowWindow commands.
constexpr int SW_HIDE = 0;
constexpr int SW_SHOWNORMAL = 1;
constexpr int SW_SHOWMINIMIZED = 2;
constexpr int SW_SHOW = 5;
constexpr int SW_MINIMIZE = 6;
constexpr int SW_SHOWNA = 8;

// GetWindowLong indices.
constexpr int GWL_WNDPROC = -4;
constexpr int GWL_STYLE = -16;
constexpr int GWL_ID = -12;
constexpr int GWL_USERDATA = -21;
constexpr int DWL_MSGRESULT = 0;
constexpr int DWL_USER = 8;

// PeekMessage flags.
constexpr UINT PM_NOREMOVE = 0x0000;
constexpr UINT PM_REMOVE = 0x0001;

// Dialog results.
constexpr int IDOK = 1;
constexpr int IDCANCEL = 2;

// The empty dialog template every page is made from.
constexpr int kEmptyDialogTemplate = 101;

} // namespace mirodate
