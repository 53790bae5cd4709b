#pragma once
// Reads a view list back as text ("H:Today", "I:Dentist", "M:NoAppointments")
// and finds rows on the screen.
#include "ui/TouchListCtrlWnd.h"
#include "ui/WinApi.h"
#include "views/DayHeaderRow.h"
#include "views/MessageRow.h"
#include "views/ViewRow.h"

#include <string>
#include <vector>

namespace mirodate::test {

inline std::string Narrow(const std::u16string& text) {
    return std::string(text.begin(), text.end());
}

inline std::vector<std::string> RowTexts(TouchListCtrlWnd& list) {
    std::vector<std::string> rows;
    for (int i = 0; i < list.ItemCount(); ++i) {
        auto* row = dynamic_cast<ViewRow*>(list.Item(i));
        if (!row)
            continue;
        if (auto* header = dynamic_cast<DayHeaderRow*>(row))
            rows.push_back("H:" + Narrow(header->Caption()));
        else if (auto* message = dynamic_cast<MessageRow*>(row))
            rows.push_back("M:" + Narrow(message->Text()));
        else
            rows.push_back("I:" + Narrow(row->Item()->subject));
    }
    return rows;
}

// A screen point inside row `index`, `dx` pixels from its left edge.
inline POINT RowPoint(TouchListCtrlWnd& list, int index, int dx) {
    RECT window;
    GetWindowRect(list.GetHwnd(), &window);
    const TouchScroller& scroller = list.Scroller();
    const int top = window.top + scroller.Viewport().top + scroller.ItemTop(index);
    return {window.left + dx, top + list.Item(index)->Height() / 2};
}

} // namespace mirodate::test
