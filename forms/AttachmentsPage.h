#pragma once
// A modal page that edits an appointment's attachments: the list of files
// and web addresses ("[FILE]" and the name over the full path or address; a
// tap offers to open or remove it) and a field for a new one, typed as a
// path or a web address (our toolkit has no file dialog). A typed path must
// name an existing file; it is kept as a file:// URI. Returns the list, or
// nothing on Cancel.
#include "forms/ListEntryPage.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace mirodate {

class AttachmentsPage : public ListEntryPage {
public:
    static constexpr UINT kCmdRowBase = 0x7F00;
    // An item with more attachments than this is a damaged one.
    static constexpr std::size_t kMaxAttachments = 100;
    // The buttons of the question a tap on an attachment asks.
    static constexpr int kAnswerOpen = 1;
    static constexpr int kAnswerRemove = 2;

    explicit AttachmentsPage(std::vector<std::u16string> attachments);
    ~AttachmentsPage() override;

    static std::optional<std::vector<std::u16string>> Edit(HWND owner,
                                                           std::vector<std::u16string> attachments);
    static void SetOpenObserver(std::function<void(AttachmentsPage& page)> observer);

    const std::vector<std::u16string>& Attachments() const { return attachments_; }
    // Adds a typed path or web address; false (with a message) when it is
    // neither a web address nor an existing file.
    bool Add(const std::u16string& typed) override;
    // Asks what to do with attachment `index`: open it, or remove it.
    void Choose(int index);
    // Hands an attachment to the desktop; false when that failed.
    static bool OpenAttachment(const std::u16string& uri);

    void OnDialogReady() override;
    void OnDeferredCommand(UINT id) override;

protected:
    void Fill() override;

private:
    std::vector<std::u16string> attachments_;
};

} // namespace mirodate
