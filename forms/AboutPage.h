#pragma once
// The about box: the program's name and version, the skin with its author
// and version, the folder of the calendar files, how many appointments,
// tasks and contacts it holds, and every file that could not be read with
// the reason, so that the user can repair it. The lines scroll when the list
// of files is long.
#include "ui/ButtonWnd.h"
#include "ui/DialogWnd.h"
#include "ui/Font.h"
#include "ui/TouchListCtrlWnd.h"

#include <memory>
#include <string>
#include <vector>

namespace mirodate {

class AboutPage : public DialogWnd {
public:
    AboutPage();
    ~AboutPage() override;

    // The texts of the page, one per paragraph, as shown.
    const std::vector<std::u16string>& Lines() const { return lines_; }

    BOOL OnInitDialog() override;
    void OnPaint(HDC dc) override;
    void OnCommand(UINT id, UINT code, HWND control) override;
    void OnKeyDown(UINT key, UINT flags) override;
    void OnScreenReset() override;

private:
    void Layout();
    std::vector<std::u16string> lines_;
    std::vector<bool> headings_;
    TouchListCtrlWnd list_;
    ButtonWnd ok_;
    std::unique_ptr<Font> font_;
    std::unique_ptr<Font> bold_;
};

} // namespace mirodate
