#include "ui/DialogSupport.h"

#include "platform/Log.h"
#include "ui/MessageLoop.h"
#include "ui/WindowClasses.h"
#include "ui/WindowManager.h"
#include "ui/WindowTree.h"

namespace mirodate {

namespace {
bool DirectDialogResult(UINT message) {
    return message == WM_INITDIALOG || message == WM_CTLCOLORBTN;
}
} // namespace

DialogSupport::DialogSupport(WindowManager& manager, WindowTree& tree, MessageLoop& loop)
    : manager_(manager), tree_(tree), loop_(loop) {}

HWND DialogSupport::CreateDialogParam(HINSTANCE instance, int templateId, HWND parent, DLGPROC proc,
                                      LPARAM param) {
    if (templateId != kEmptyDialogTemplate) {
        Log::Warning("no dialog template %d", templateId);
        return nullptr;
    }
    // The empty template: a full-screen pop-up, shown once initialised.
    HWND window = manager_.CreateWindowEx(0, kClassName, u"", WS_POPUP, 0, 0, manager_.ScreenWidth(),
                                          manager_.ScreenHeight(), parent, 0, instance, nullptr);
    if (!window)
        return nullptr;
    WindowRecord* dialog = tree_.Get(window);
    dialog->isDialog = true;
    dialog->dialogProc = proc;
    manager_.SendMessage(window, WM_INITDIALOG, 0, param);
    if (!manager_.IsWindow(window))
        return nullptr;
    manager_.ShowWindow(window, SW_SHOW);
    return manager_.IsWindow(window) ? window : nullptr;
}

INT_PTR DialogSupport::DialogBoxParam(HINSTANCE instance, int templateId, HWND parent, DLGPROC proc,
                                      LPARAM param) {
    HWND owner = parent ? tree_.TopLevelOf(parent) : nullptr;
    const bool disableOwner = owner && manager_.IsWindowEnabled(owner);
    if (disableOwner)
        manager_.EnableWindow(owner, false);
    HWND dialog = CreateDialogParam(instance, templateId, parent, proc, param);
    INT_PTR result = -1;
    if (dialog) {
        result = loop_.RunModal(dialog, [&]() -> std::optional<INT_PTR> {
            const WindowRecord* window = tree_.Get(dialog);
            if (window && window->dialogEnded)
                return window->dialogResult;
            return std::nullopt;
        });
    }
    if (disableOwner && manager_.IsWindow(owner))
        manager_.EnableWindow(owner, true);
    if (dialog && manager_.IsWindow(dialog)) {
        if (owner && manager_.IsWindow(owner) && manager_.IsWindowVisible(owner))
            manager_.SetActiveWindow(owner);
        manager_.DestroyWindow(dialog);
    }
    return result;
}

bool DialogSupport::EndDialog(HWND dialog, INT_PTR result) {
    WindowRecord* window = tree_.Get(dialog);
    if (!window || !window->isDialog)
        return false;
    window->dialogEnded = true;
    window->dialogResult = result;
    manager_.ShowWindow(dialog, SW_HIDE);
    return true;
}

LRESULT DialogSupport::DefDlgProc(HWND handle, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_CLOSE) {
        manager_.PostMessage(handle, WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED), 0);
        return 0;
    }
    return manager_.DefWindowProc(handle, message, wParam, lParam);
}

LRESULT DialogSupport::WindowProc(HWND handle, UINT message, WPARAM wParam, LPARAM lParam) {
    WindowRecord* window = tree_.Get(handle);
    if (!window)
        return 0;
    DLGPROC proc = window->dialogProc;
    const INT_PTR result = proc ? proc(handle, message, wParam, lParam) : 0;
    window = tree_.Get(handle);
    if (!window)
        return result; // the page went away while handling the message
    if (DirectDialogResult(message))
        return result;
    if (result)
        return window->dialogMessageResult;
    return DefDlgProc(handle, message, wParam, lParam);
}

} // namespace mirodate
