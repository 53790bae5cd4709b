#pragma once
// The page a calendar file from elsewhere opens in: its events and tasks as
// rows, and "Add to calendar", which writes each as a file of the store with
// its UID and time zones kept. An item whose UID the store holds already is
// marked "Update" and replaces the store's version instead of doubling it.
// The file is read and written on worker threads in batches (one sync of
// the disk per batch), and a timer moves the progress bar, so that the
// window keeps repainting through thousands of items.
#include "store/IcsImport.h"
#include "views/ViewPage.h"

#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <string>
#include <vector>

namespace mirodate {

// Sent to the page's owner when many items are about to change (wParam 1)
// and when they have (wParam 0): the owner reads the store again once at
// the end instead of once per item.
constexpr const char* kBulkChangeMessageName = "MIRODATE_WM_BULK_CHANGE";

class ImportView : public ViewPage {
public:
    // The timer that looks at the writing worker, and the items it writes
    // per batch.
    static constexpr UINT_PTR kProgressTimer = 60;
    static constexpr UINT kProgressPeriod = 50;
    static constexpr std::size_t kBatchItems = 250;
    // How often the worker reading the file is looked at.
    static constexpr UINT_PTR kReadTimer = 61;
    static constexpr UINT kReadPeriod = 20;
    // Height of the progress bar for a 240-pixel-wide screen.
    static constexpr int kProgressHeight = 12;
    static constexpr UINT kCmdAdd = 0x7F01;

    enum class Phase { Reading, Ready, Writing, Done, Failed };

    explicit ImportView(std::string path);
    ~ImportView() override;

    DateTime CurrentDate() const override;
    void Reload() override;

    // Starts writing the items (the "Add to calendar" button).
    void AddToCalendar();
    Phase GetPhase() const { return phase_; }
    const std::vector<ImportItem>& Items() const { return items_; }
    // Which items the store holds already (by index).
    const std::vector<bool>& Existing() const { return existing_; }
    int Written() const { return written_; }
    int Failed() const { return failed_; }
    // Called as the progress bar moves and at the end.
    void SetProgressObserver(std::function<void(int done, int total)> observer) {
        progressObserver_ = std::move(observer);
    }

    void OnTimer(UINT_PTR id) override;
    void OnPaint(HDC dc) override;
    void OnRowTap(ViewRow& row, int x, int y) override;
    void OnListHold(int index) override;

protected:
    std::vector<MenuBarEntry> MenuEntries() const override;
    std::u16string Title() const override;
    void OnMenuButton(const std::string& key) override;
    void LayoutLists(const RECT& area) override;

private:
    void OnRead(IcsImport::Result result, IcsImport::Parsed parsed);
    void WriteAll();
    void OnProgress();
    void Finish();
    RECT ProgressRect() const;
    void ShowText(const std::u16string& text);

    std::string path_;
    Phase phase_ = Phase::Reading;
    std::future<std::pair<IcsImport::Result, IcsImport::Parsed>> reading_;
    std::vector<ImportItem> items_;
    std::vector<bool> existing_;
    int droppedAlarms_ = 0;
    std::future<void> writing_;
    std::atomic<std::size_t> progress_{0};
    std::atomic<int> writtenSoFar_{0};
    std::atomic<int> failedSoFar_{0};
    std::atomic<bool> cancel_{false};
    std::size_t shownProgress_ = 0;
    int written_ = 0;
    int failed_ = 0;
    RECT listArea_{};
    std::function<void(int, int)> progressObserver_;
};

} // namespace mirodate
