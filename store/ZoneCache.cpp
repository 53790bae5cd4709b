#include "store/ZoneCache.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>

namespace mirodate {

namespace {

// One distinct definition. libical extends a zone's list of changes as later
// years are asked for, so each use holds the zone's own lock.
struct SharedZone {
    icaltimezone* zone = nullptr;
    std::mutex mutex;
    std::uint64_t lastUse = 0;
    ~SharedZone() {
        if (zone)
            icaltimezone_free(zone, 1);
    }
};

struct Alias {
    std::shared_ptr<SharedZone> shared;
    int count = 0;
};

struct Cache {
    std::mutex mutex;
    // By the VTIMEZONE's text, which names its TZID.
    std::unordered_map<std::string, std::shared_ptr<SharedZone>> byText;
    std::unordered_map<const icaltimezone*, Alias> aliases;
    std::uint64_t uses = 0;
};

Cache& TheCache() {
    static Cache cache;
    return cache;
}

std::string TextOf(icalcomponent* component) {
    char* text = icalcomponent_as_ical_string_r(component);
    if (!text)
        return {};
    std::string result = text;
    icalmemory_free_buffer(text);
    return result;
}

std::shared_ptr<SharedZone> MakeShared(icalcomponent* definition) {
    auto shared = std::make_shared<SharedZone>();
    icalcomponent* copy = icalcomponent_new_clone(definition);
    shared->zone = icaltimezone_new();
    if (!copy || !shared->zone || !icaltimezone_set_component(shared->zone, copy)) {
        if (copy)
            icalcomponent_free(copy);
        return nullptr;
    }
    return shared;
}

// Under the cache's lock: the shared zone for a definition, made when new.
std::shared_ptr<SharedZone> Find(Cache& cache, const std::string& text, icalcomponent* definition) {
    auto it = cache.byText.find(text);
    if (it == cache.byText.end()) {
        std::shared_ptr<SharedZone> made = MakeShared(definition);
        if (!made)
            return nullptr;
        if (cache.byText.size() >= ZoneCache::kMaxZones) {
            auto oldest =
                std::min_element(cache.byText.begin(), cache.byText.end(), [](const auto& a, const auto& b) {
                    return a.second->lastUse < b.second->lastUse;
                });
            cache.byText.erase(oldest);
        }
        it = cache.byText.emplace(text, std::move(made)).first;
    }
    it->second->lastUse = ++cache.uses;
    return it->second;
}

void CollectZones(icalcomponent* parent, std::vector<std::pair<icaltimezone*, icalcomponent*>>& found) {
    for (icalcomponent* c = icalcomponent_get_first_component(parent, ICAL_ANY_COMPONENT); c;
         c = icalcomponent_get_next_component(parent, ICAL_ANY_COMPONENT)) {
        const icalcomponent_kind kind = icalcomponent_isa(c);
        if (kind == ICAL_VCALENDAR_COMPONENT) {
            CollectZones(c, found); // several calendars under one root
            continue;
        }
        if (kind != ICAL_VTIMEZONE_COMPONENT)
            continue;
        icalproperty* id = icalcomponent_get_first_property(c, ICAL_TZID_PROPERTY);
        const char* name = id ? icalproperty_get_tzid(id) : nullptr;
        if (!name || !*name)
            continue;
        // The zone libical hands out for this TZID here: with two definitions
        // of one TZID, the one the times are read in.
        icaltimezone* zone = icalcomponent_get_timezone(parent, name);
        icalcomponent* definition = zone ? icaltimezone_get_component(zone) : nullptr;
        if (definition)
            found.emplace_back(zone, definition);
    }
}

} // namespace

ZoneCache::Aliases& ZoneCache::Aliases::operator=(Aliases&& other) noexcept {
    if (this != &other) {
        Release();
        zones_ = std::move(other.zones_);
        other.zones_.clear();
    }
    return *this;
}

void ZoneCache::Aliases::Release() {
    if (zones_.empty())
        return;
    Cache& cache = TheCache();
    std::lock_guard lock(cache.mutex);
    for (const icaltimezone* zone : zones_) {
        auto it = cache.aliases.find(zone);
        if (it != cache.aliases.end() && --it->second.count <= 0)
            cache.aliases.erase(it);
    }
    zones_.clear();
}

ZoneCache::Aliases ZoneCache::Share(icalcomponent* root) {
    Aliases aliases;
    if (!root)
        return aliases;
    std::vector<std::pair<icaltimezone*, icalcomponent*>> found;
    CollectZones(root, found);
    if (found.empty())
        return aliases;
    // The texts are made outside the lock.
    std::vector<std::string> texts;
    texts.reserve(found.size());
    for (const auto& [zone, definition] : found)
        texts.push_back(TextOf(definition));
    Cache& cache = TheCache();
    std::lock_guard lock(cache.mutex);
    for (std::size_t i = 0; i < found.size(); ++i) {
        const icaltimezone* zone = found[i].first;
        if (texts[i].empty() ||
            std::find(aliases.zones_.begin(), aliases.zones_.end(), zone) != aliases.zones_.end())
            continue;
        std::shared_ptr<SharedZone> shared = Find(cache, texts[i], found[i].second);
        if (!shared)
            continue;
        // Two living trees never hold one zone, so an alias already here is
        // left from a freed tree whose memory this one was given (its
        // owner released it late): this tree's definition replaces it.
        // Should the late release drop the alias, the zone reads through
        // libical on its own again, slower but the same.
        Alias& alias = cache.aliases[zone];
        alias.shared = std::move(shared);
        ++alias.count;
        aliases.zones_.push_back(zone);
    }
    return aliases;
}

bool ZoneCache::OffsetOf(const icaltimezone* zone, const icaltimetype& utc, long& offset) {
    std::shared_ptr<SharedZone> shared;
    {
        Cache& cache = TheCache();
        std::lock_guard lock(cache.mutex);
        if (cache.aliases.empty())
            return false;
        auto it = cache.aliases.find(zone);
        if (it == cache.aliases.end())
            return false;
        shared = it->second.shared;
    }
    std::lock_guard lock(shared->mutex);
    icaltimetype time = utc;
    offset = icaltimezone_get_utc_offset_of_utc_time(shared->zone, &time, nullptr);
    return true;
}

std::size_t ZoneCache::Size() {
    Cache& cache = TheCache();
    std::lock_guard lock(cache.mutex);
    return cache.byText.size();
}

void ZoneCache::Clear() {
    Cache& cache = TheCache();
    std::lock_guard lock(cache.mutex);
    cache.byText.clear();
}

} // namespace mirodate
