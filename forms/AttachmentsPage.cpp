#include "forms/AttachmentsPage.h"

#include "forms/AttachmentUri.h"
#include "forms/TwoLineRow.h"
#include "lang/LanguageTable.h"
#include "platform/PlatformServices.h"
#include "platform/TextUtil.h"
#include "ui/MessagePage.h"
#include "ui/WinApi.h"

#include <algorithm>

namespace mirodate {

namespace {
constexpr int kFieldId = 204;

std::function<void(AttachmentsPage&)>& OpenObserver() {
    static std::function<void(AttachmentsPage&)> observer;
    return observer;
}
} // namespace

AttachmentsPage::AttachmentsPage(std::vector<std::u16string> attachments)
    : ListEntryPage("addmodify.Attachments", kFieldId, AttachmentUri::kMaxTyped, FieldPlace::AboveList),
      attachments_(std::move(attachments)) {
    if (attachments_.size() > kMaxAttachments)
        attachments_.resize(kMaxAttachments);
}
AttachmentsPage::~AttachmentsPage() = default;

void AttachmentsPage::SetOpenObserver(std::function<void(AttachmentsPage&)> observer) {
    OpenObserver() = std::move(observer);
}

std::optional<std::vector<std::u16string>> AttachmentsPage::Edit(HWND owner,
                                                                 std::vector<std::u16string> attachments) {
    AttachmentsPage page(std::move(attachments));
    if (page.DoModal(owner) != IDOK)
        return std::nullopt;
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
    if (!path.empty())
        return PlatformServices::Instance().OpenPath(path);
    return AttachmentUri::IsWebAddress(uri) && PlatformServices::Instance().OpenUrl(Utf16ToUtf8(uri));
}

void AttachmentsPage::Choose(int index) {
    if (index < 0 || index >= static_cast<int>(attachments_.size()))
        return;
    const std::u16string uri = attachments_[static_cast<size_t>(index)];
    const std::string path = AttachmentUri::LocalPath(uri);
    const std::u16string where = path.empty() ? uri : Utf8ToUtf16(path);
    switch (
        MessagePage::Ask(window, Lang("File") + u"\n" + where,
                         {Lang("editor.OpenAttachment"), Lang("editor.RemoveAttachment"), Lang("Cancel")})) {
    case kAnswerOpen:
        if (!OpenAttachment(uri))
            MessagePage::Tell(window, Lang("editor.CannotOpen"));
        break;
    case kAnswerRemove:
        attachments_.erase(attachments_.begin() + index);
        Fill();
        break;
    default:
        break;
    }
}

void AttachmentsPage::Fill() {
    FillList(
        [this](int width) {
            for (size_t i = 0; i < attachments_.size(); ++i) {
                // A file's folder tells which of two same-named files it is;
                // a web address is all said on the first line.
                const std::string path = AttachmentUri::LocalPath(attachments_[i]);
                List().AddItem(std::make_unique<TwoLineRow>(
                    kCmdRowBase + static_cast<UINT>(i),
                    u"[FILE] " + AttachmentUri::DisplayName(attachments_[i]),
                    path.empty() ? std::u16string() : Utf8ToUtf16(path), *font_, *bold_, width));
            }
        },
        false);
}

void AttachmentsPage::OnDeferredCommand(UINT id) {
    if (id >= kCmdRowBase && id < kCmdRowBase + attachments_.size())
        Choose(static_cast<int>(id - kCmdRowBase));
}

void AttachmentsPage::OnDialogReady() {
    ListEntryPage::OnDialogReady();
    if (OpenObserver())
        OpenObserver()(*this);
}

} // namespace mirodate
