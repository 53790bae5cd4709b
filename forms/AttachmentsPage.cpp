#include "forms/AttachmentsPage.h"

#include "forms/AttachmentUri.h"
#include "lang/LanguageTable.h"
#include "platform/PlatformServices.h"
#include "platform/TextUtil.h"
#include "skin/SkinStyles.h"
#include "ui/Dc.h"
#include "ui/MessagePage.h"
#include "ui/Scale.h"
#include "ui/TextLayout.h"
#include "ui/WinApi.h"

#include <algorithm>

namespace mirodate {

namespace {
constexpr int kFieldId = 204;
constexpr int kRowHeight = 34;
constexpr int kAddWidth = 30;
constexpr int kIndent = 6;

std::function<void(AttachmentsPage&)>& OpenObserver() {
    static std::function<void(AttachmentsPage&)> observer;
    return observer;
}

// An attachment: "[FILE]" and its name in bold, over the path of a file.
class AttachmentRow : public TouchListItem {
public:
    AttachmentRow(UINT command, const std::u16string& uri, const Font& font, const Font& bold, int width)
        : command_(command) {
        const int room = std::max(1, width - Scale(2 * kIndent));
        const std::string path = AttachmentUri::LocalPath(uri);
        name_ = TextLayout(u"[FILE] " + AttachmentUri::DisplayName(uri), bold, room, false);
        // A file's folder tells which of two same-named files it is; a web
        // address is all said on the first line.
        where_ = TextLayout(path.empty() ? std::u16string() : Utf8ToUtf16(path), font, room, false);
        height_ = std::max(Scale(kRowHeight), name_.Height() + where_.Height() + Scale(kIndent));
    }
    void Draw(Dc& dc, const RECT& rect) override {
        const AddModifyFormStyle& style = SkinStyles::Current().addModifyForm;
        dc.FillRect(rect, highlighted_ ? style.colorSelectionMark : style.colorBg);
        dc.FillRect(RECT{rect.left, rect.bottom - 1, rect.right, rect.bottom}, style.colorLineSeparator);
        const COLORREF ink = highlighted_ ? style.colorTextSel : style.colorText;
        const int top = rect.top + (rect.Height() - name_.Height() - where_.Height()) / 2;
        name_.Draw(dc, rect.left + Scale(kIndent), top, ink);
        where_.Draw(dc, rect.left + Scale(kIndent), top + name_.Height(), ink);
    }
    int Height() const override { return height_; }
    void Click(HWND list, int, int) override { PostMessage(GetParent(list), WM_DEFERRED_COMMAND, command_, 0); }

private:
    UINT command_;
    TextLayout name_;
    TextLayout where_;
    int height_ = 0;
};
} // namespace

AttachmentsPage::AttachmentsPage(std::vector<std::u16string> attachments)
    : SmallFormPage(u""), attachments_(std::move(attachments)) {
    if (attachments_.size() > kMaxAttachments) attachments_.resize(kMaxAttachments);
}
AttachmentsPage::~AttachmentsPage() = default;

void AttachmentsPage::SetOpenObserver(std::function<void(AttachmentsPage&)> observer) {
    OpenObserver() = std::move(observer);
}

std::optional<std::vector<std::u16string>> AttachmentsPage::Edit(HWND owner, std::vector<std::u16string> attachments) {
    AttachmentsPage page(std::move(attachments));
    if (page.DoModal(owner) != IDOK) return std::nullopt;
    return page.attachments_;
}

bool AttachmentsPage::Add(const std::u16string& typed) {
    const std::u16string uri = AttachmentUri::FromTyped(typed);
    if (uri.empty()) {
        MessagePage::Tell(window, Lang("editor.NoSuchFile"));
        return false;
    }
    if (std::find(attachments_.begin(), attachments_.end(), uri) == attachments_.end() &&
        attachments_.size() < kMaxAttachments)
        attachments_.push_back(uri);
    Fill();
    return true;
}

bool AttachmentsPage::OpenAttachment(const std::u16string& uri) {
    const std::string path = AttachmentUri::LocalPath(uri);
    if (!path.empty()) return PlatformServices::Instance().OpenPath(path);
    return AttachmentUri::IsWebAddress(uri) && PlatformServices::Instance().OpenUrl(Utf16ToUtf8(uri));
}

void AttachmentsPage::Choose(int index) {
    if (index < 0 || index >= static_cast<int>(attachments_.size())) return;
    const std::u16string uri = attachments_[static_cast<size_t>(index)];
    const std::string path = AttachmentUri::LocalPath(uri);
    const std::u16string where = path.empty() ? uri : Utf8ToUtf16(path);
    switch (MessagePage::Ask(window, Lang("File") + u"\n" + where,
                             {Lang("editor.OpenAttachment"), Lang("editor.RemoveAttachment"), Lang("Cancel")})) {
    case kAnswerOpen:
        if (!OpenAttachment(uri)) MessagePage::Tell(window, Lang("editor.CannotOpen"));
        break;
    case kAnswerRemove:
        attachments_.erase(attachments_.begin() + index);
        Fill();
        break;
    default: break;
    }
}

void AttachmentsPage::CreateControls() {
    title_ = Lang("addmodify.Attachments");
    SetWindowText(window, title_);
    list_.Create(window, 0, 0, 1, 1, false, false);
    list_.SetHeaderHeight(0);
    TouchListColors colors = TouchListColors::FromSkin();
    colors.background = SkinStyles::Current().addModifyForm.colorBg;
    list_.SetColors(colors);
    field_.Create(window, kFieldId, 0, 0, 1, 1, false);
    field_.SetFont(logFont_);
    field_.SetLimit(AttachmentUri::kMaxTyped);
    add_.Create(window, u"+", 0, 0, 1, 1);
    Style(add_);
    SetFocus(field_.GetHwnd());
}

void AttachmentsPage::LayoutControls(const RECT& area) {
    const int margin = Scale(kMargin);
    const int field = Scale(kFieldHeight);
    const int add = Scale(kAddWidth);
    const int fieldTop = area.top + margin;
    MoveWindow(field_.GetHwnd(), margin, fieldTop, std::max(1, area.Width() - 3 * margin - add), field, true);
    MoveWindow(add_.GetHwnd(), area.Width() - margin - add, fieldTop, add, field, true);
    const int listTop = fieldTop + field + margin;
    MoveWindow(list_.GetHwnd(), 0, listTop, area.Width(), std::max(1, area.bottom - listTop), true);
    Fill();
}

void AttachmentsPage::Fill() {
    if (!list_.GetHwnd() || !font_) return;
    list_.ClearItems();
    RECT client;
    GetClientRect(list_.GetHwnd(), &client);
    for (size_t i = 0; i < attachments_.size(); ++i)
        list_.AddItem(std::make_unique<AttachmentRow>(kCmdRowBase + static_cast<UINT>(i), attachments_[i], *font_,
                                                      *bold_, client.Width()));
    list_.Relayout();
    list_.RefreshViewport();
}

void AttachmentsPage::OnControl(HWND control, UINT code) {
    if (control == add_.GetHwnd() || (control == field_.GetHwnd() && code == EN_ENTER)) {
        if (Add(field_.GetText())) field_.SetText(u"");
    }
}

bool AttachmentsPage::OnAccept() {
    // A path typed and not yet added is added; one that names no file keeps the page open.
    if (field_.GetText().find_first_not_of(u" \t") == std::u16string::npos) return true;
    if (!Add(field_.GetText())) return false;
    field_.SetText(u"");
    return true;
}

void AttachmentsPage::OnDeferredCommand(UINT id) {
    if (id >= kCmdRowBase && id < kCmdRowBase + attachments_.size()) Choose(static_cast<int>(id - kCmdRowBase));
}

void AttachmentsPage::OnDialogReady() {
    SmallFormPage::OnDialogReady();
    if (OpenObserver()) OpenObserver()(*this);
}

} // namespace mirodate
