#pragma once
// A page of colour swatches for a category, birthday or anniversary colour:
// a tap on a swatch chooses it and ends the page with IDOK; "Cancel" or
// Escape ends it with IDCANCEL. The colour in use is framed.
#include "ui/ButtonWnd.h"
#include "ui/DialogWnd.h"
#include "ui/Font.h"

#include <memory>
#include <string>
#include <vector>

namespace mirodate {

class ColorPickerPage : public DialogWnd {
public:
    static constexpr int kColumns = 5;

    ColorPickerPage(std::u16string title, COLORREF current);
    ~ColorPickerPage() override;

    COLORREF Color() const { return color_; }
    static const std::vector<COLORREF>& Palette();
    // A swatch's rectangle in the page (screen coordinates: the page fills the screen).
    RECT SwatchRect(int index) const;

    BOOL OnInitDialog() override;
    void OnPaint(HDC dc) override;
    LRESULT OnPointerDown(int button, int x, int y, WPARAM keys) override;
    void OnCommand(UINT id, UINT code, HWND control) override;
    void OnKeyDown(UINT key, UINT flags) override;
    void OnScreenReset() override;

private:
    void Layout();
    std::u16string title_;
    COLORREF color_;
    ButtonWnd cancel_;
    std::unique_ptr<Font> font_;
    RECT grid_{};
};

} // namespace mirodate
