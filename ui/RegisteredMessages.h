#pragma once
// Names of the window messages registered by name, so that every window and
// every process of the program agrees on their numbers. The broadcast name is
// spelled as it always was; other processes depend on it.
namespace mirodate {

constexpr const char* kMinimizedBroadcastName = "MIRODATE_WM_MINIMZED_BROADCAST";
constexpr const char* kPoomDataChangedName = "MIRODATE_WM_NOTIFY_POOMDATA_CHANGED";

} // namespace mirodate
