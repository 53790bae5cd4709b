#pragma once
// One folder of the vdir source.
#include "data/PimFolder.h"

namespace mirodate {

class VdirSource;

class VdirFolder : public PimFolder {
public:
    VdirFolder(VdirSource& source, int folderId) : source_(source), folderId_(folderId) {}
    int GetId() const override { return folderId_; }
    std::unique_ptr<PimItems> GetItems() override;
    void AddItemsNotifications(int origins) override;

private:
    VdirSource& source_;
    int folderId_;
};

} // namespace mirodate
