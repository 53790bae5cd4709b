#include "forms/FormPainter.h"

#include "skin/SkinStyles.h"
#include "ui/Dc.h"

namespace mirodate {

void FormPainter::PaintPage(Dc& dc, const RECT& client, int titleHeight, const Font* font,
                            const std::u16string& title) {
    const SkinStyles& styles = SkinStyles::Current();
    dc.FillRect(client, styles.inputForms.colorBg);
    RECT band{0, 0, client.right, titleHeight};
    dc.FillRect(band, styles.listViews.colorHeaderBg);
    dc.SelectFont(font);
    dc.SetBkMode(TRANSPARENT);
    dc.SetTextColor(styles.listViews.colorHeaderText);
    dc.DrawText(title, band, DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX | DT_END_ELLIPSIS);
    dc.SelectFont(nullptr);
}

} // namespace mirodate
