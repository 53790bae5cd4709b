#include "platform/PowerStatus.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace mirodate {

namespace {

// Reads the first line of a small sysfs attribute; empty when unreadable.
std::string ReadAttribute(const std::filesystem::path& path) {
    std::ifstream file(path);
    std::string line;
    if (!file || !std::getline(file, line))
        return {};
    while (!line.empty() && (line.back() == '\n' || line.back() == '\r' || line.back() == ' '))
        line.pop_back();
    return line;
}

std::optional<int> ParsePercent(const std::string& text) {
    if (text.empty() || text.size() > 6)
        return std::nullopt;
    int value = 0;
    for (char c : text) {
        if (c < '0' || c > '9')
            return std::nullopt;
        value = value * 10 + (c - '0');
    }
    return std::clamp(value, 0, 100);
}

} // namespace

std::optional<int> PowerStatus::BatteryPercent(const std::string& root) {
    std::error_code error;
    std::vector<std::filesystem::path> supplies;
    for (const auto& entry : std::filesystem::directory_iterator(root, error))
        supplies.push_back(entry.path());
    // The same battery every time, whatever order the folder lists.
    std::sort(supplies.begin(), supplies.end());
    for (const auto& supply : supplies) {
        if (ReadAttribute(supply / "type") != "Battery")
            continue;
        if (auto percent = ParsePercent(ReadAttribute(supply / "capacity")))
            return percent;
        // Older drivers give charge (or energy) now and full instead.
        for (const char* kind : {"charge", "energy"}) {
            const std::string now = ReadAttribute(supply / (std::string(kind) + "_now"));
            const std::string full = ReadAttribute(supply / (std::string(kind) + "_full"));
            if (now.empty() || full.empty() || now.size() > 15 || full.size() > 15)
                continue;
            if (now.find_first_not_of("0123456789") != std::string::npos ||
                full.find_first_not_of("0123456789") != std::string::npos)
                continue;
            const long long n = std::stoll(now), f = std::stoll(full);
            if (f > 0)
                return static_cast<int>(std::clamp(n * 100 / f, 0LL, 100LL));
        }
    }
    return std::nullopt;
}

} // namespace mirodate
