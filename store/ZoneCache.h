#pragma once
// Time zones of files, worked out once for all files that define them alike.
// libical turns a VTIMEZONE into a list of its changes the first time a time
// in it is converted, afresh for every file that carries its own copy: about
// 2 ms per file for a zone with yearly rules since 1970, which dominates
// reading thousands of files of the same zone. Here each distinct definition
// (its TZID and text) is kept once, parsed and expanded, and the zones of a
// parsed file stand in for it for as long as the file's tree lives.
#include <libical/ical.h>

#include <cstddef>
#include <vector>

namespace mirodate {

class ZoneCache {
public:
    // Distinct definitions kept; the least recently used goes first. Zones
    // a living file stands in for stay until that file is freed.
    static constexpr std::size_t kMaxZones = 64;

    // The zones of one parsed tree registered with the cache. Must be
    // destroyed before the tree is freed (declare it after the tree's owner).
    class Aliases {
    public:
        Aliases() = default;
        Aliases(Aliases&& other) noexcept : zones_(std::move(other.zones_)) { other.zones_.clear(); }
        Aliases& operator=(Aliases&& other) noexcept;
        Aliases(const Aliases&) = delete;
        Aliases& operator=(const Aliases&) = delete;
        ~Aliases() { Release(); }
        std::size_t Count() const { return zones_.size(); }

    private:
        friend class ZoneCache;
        void Release();
        std::vector<const icaltimezone*> zones_;
    };

    // Registers the zone of every VTIMEZONE under `root` (as libical looks
    // it up for the times of the tree) with the shared definition.
    static Aliases Share(icalcomponent* root);

    // The offset from UTC (seconds east) at a UTC time, when `zone` is a
    // registered zone; false otherwise.
    static bool OffsetOf(const icaltimezone* zone, const icaltimetype& utc, long& offset);

    // Distinct definitions held now.
    static std::size_t Size();
    // Forgets every definition not in use by a living tree (tests start
    // from an empty cache with it).
    static void Clear();
};

} // namespace mirodate
