#pragma once
// One appointment or task as read-only rich text (see ItemDetailDocument):
// links in its texts ask and then hand off to the desktop. The "Menu"
// button offers "Edit", "Delete", "Beam" and "Cancel", carried out by the
// shared command handler; "Back", the title and Escape close the page. The
// page follows changes of the store and closes when its item is gone.
#include "data/PimRecord.h"
#include "ui/TextBoxWnd.h"
#include "views/ViewPage.h"

#include <memory>

namespace mirodate {

class ItemDetailView : public ViewPage {
public:
    // "Cancel" of the menu: does nothing.
    static constexpr UINT kCancel = 0x7F000010;

    ItemDetailView(std::int32_t oid, bool task, const DateTime& occurrence);
    ~ItemDetailView() override;

    // Shows another item in the same page.
    void SetItem(std::int32_t oid, bool task, const DateTime& occurrence);
    DateTime CurrentDate() const override;
    // Reads the item again and rebuilds the document; closes the page when
    // the item no longer exists.
    void Reload() override;
    // False when the item could not be read (the page then shows nothing).
    bool HasItem() const { return found_; }
    const std::u16string& Markup() const { return markup_; }
    TextBoxWnd& Box() { return *box_; }
    // "Edit", "Delete", "Beam", "Cancel".
    static std::vector<ContextMenuItem> DetailMenu();

    void OnCommand(UINT id, UINT code, HWND control) override;
    void OnDeferredCommand(UINT id) override;

protected:
    std::vector<MenuBarEntry> MenuEntries() const override;
    std::u16string Title() const override;
    void LayoutLists(const RECT& area) override;
    bool OnViewKey(UINT key) override;

private:
    // The record and the occurrence shown; false when the item is gone.
    bool ReadItem();

    std::int32_t oid_;
    bool task_;
    DateTime occurrence_;
    bool found_ = false;
    PimRecord record_;
    PimItem item_;
    std::u16string markup_;
    std::unique_ptr<TextBoxWnd> box_;
    std::vector<PimItem> dayItems_;
};

} // namespace mirodate
