#include "store/VdirFolder.h"

#include "store/VdirItems.h"
#include "store/VdirSource.h"

namespace mirodate {

std::unique_ptr<PimItems> VdirFolder::GetItems() {
    return std::make_unique<VdirItems>(source_, source_.GetSnapshot(folderId_));
}

void VdirFolder::AddItemsNotifications(int origins) {
    source_.EnableNotifications(folderId_, origins);
}

} // namespace mirodate
