#pragma once
// Battery charge and phone signal for the status bar. The battery comes from
// the kernel's power-supply class; the signal and operator from ModemManager
// when it runs (here: not read, so there is no signal meter and no operator).
#include <optional>
#include <string>

namespace mirodate {

class PowerStatus {
public:
    // The charge of the first battery in percent (0..100), or nothing when
    // the machine has no battery. `root` is the power-supply class folder.
    static std::optional<int> BatteryPercent(const std::string& root = kPowerSupplyRoot);

    static constexpr const char* kPowerSupplyRoot = "/sys/class/power_supply";
};

} // namespace mirodate
