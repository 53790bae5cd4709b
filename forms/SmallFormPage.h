#pragma once
// The frame of the editor's small modal pages (notes, categories,
// attendees): a title band, an area for the page's own controls and OK and
// Cancel at the bottom, in the "styles.inputforms" colours. Derived pages
// create their controls in CreateControls() and place them in
// LayoutControls(); OK ends with IDOK, Cancel and Escape with IDCANCEL.
#include "ui/ButtonWnd.h"
#include "ui/DialogWnd.h"
#include "ui/Font.h"

#include <memory>
#include <string>

namespace mirodate {

class SmallFormPage : public DialogWnd {
public:
    // Unscaled sizes for a 240-pixel-wide screen.
    static constexpr int kTitleHeight = 24;
    static constexpr int kButtonHeight = 26;
    static constexpr int kFieldHeight = 26;
    static constexpr int kMargin = 4;
    static constexpr int kTextHeight = 11;

    explicit SmallFormPage(std::u16string title);
    ~SmallFormPage() override;

    void Accept();
    void Cancel();

    BOOL OnInitDialog() override;
    void OnPaint(HDC dc) override;
    void OnCommand(UINT id, UINT code, HWND control) override;
    void OnKeyDown(UINT key, UINT flags) override;
    void OnScreenReset() override;

protected:
    virtual void CreateControls() = 0;
    virtual void LayoutControls(const RECT& area) = 0;
    // Commands of the page's own controls.
    virtual void OnControl(HWND control, UINT code) { (void)control, (void)code; }
    // Called before the page ends with OK; false keeps it open.
    virtual bool OnAccept() { return true; }
    // Buttons in the input-form colours.
    static void Style(ButtonWnd& button);
    void Layout();

    std::u16string title_;
    std::unique_ptr<Font> font_;
    std::unique_ptr<Font> bold_;
    LOGFONT logFont_{};
    ButtonWnd ok_;
    ButtonWnd cancel_;
};

} // namespace mirodate
