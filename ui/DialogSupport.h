#pragma once
// Dialogs of the window system: the dialog window class, dialogs made from
// the one (empty, full-screen) template, modal dialogs run in a loop of
// their own with the owner disabled meanwhile, their end and result, and
// what a dialog does with the messages its procedure leaves alone.
#include "ui/WinTypes.h"

namespace mirodate {

class MessageLoop;
class WindowManager;
class WindowTree;

class DialogSupport {
public:
    // The window class of every dialog.
    static constexpr const char* kClassName = "#32770";

    DialogSupport(WindowManager& manager, WindowTree& tree, MessageLoop& loop);

    HWND CreateDialogParam(HINSTANCE instance, int templateId, HWND parent, DLGPROC proc, LPARAM param);
    INT_PTR DialogBoxParam(HINSTANCE instance, int templateId, HWND parent, DLGPROC proc, LPARAM param);
    bool EndDialog(HWND dialog, INT_PTR result);
    LRESULT DefDlgProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    // The window procedure of the dialog class: the dialog's own procedure
    // first, then DefDlgProc for what it did not handle.
    LRESULT WindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

private:
    WindowManager& manager_;
    WindowTree& tree_;
    MessageLoop& loop_;
};

} // namespace mirodate
