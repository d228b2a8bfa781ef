// The free point sets by id. Unlike in a hash map alone, a walk has an order: pictures with overlapping translucent
// sets are the same in every run.
#pragma once
#include <cstddef>
#include <cstdint>
#include <list>
#include <set>
#include <unordered_map>
#include <utility>

#include "markers/FreePointSet.h"

/// A walk visits the oldest entry first. An id that was erased and is used again is the newest. References to entries
/// stay valid until they are erased.
class FreePointMap {
public:
    using Entry = std::pair<const std::int32_t, FreePointSet>;
    using iterator = std::list<Entry>::iterator;
    using const_iterator = std::list<Entry>::const_iterator;

    FreePointMap() { m_places.max_load_factor(1.0f); }
    // The places are iterators into the own list.
    FreePointMap(const FreePointMap&) = delete;
    FreePointMap& operator=(const FreePointMap&) = delete;

    [[nodiscard]] iterator begin() { return m_entries.begin(); }
    [[nodiscard]] iterator end() { return m_entries.end(); }
    [[nodiscard]] const_iterator begin() const { return m_entries.begin(); }
    [[nodiscard]] const_iterator end() const { return m_entries.end(); }
    [[nodiscard]] bool empty() const { return m_entries.empty(); }
    [[nodiscard]] std::size_t size() const { return m_entries.size(); }
    [[nodiscard]] std::size_t bucket_count() const { return m_places.bucket_count(); }
    [[nodiscard]] float max_load_factor() const { return m_places.max_load_factor(); }

    [[nodiscard]] bool contains(std::int32_t id) const { return m_places.contains(id); }
    [[nodiscard]] iterator find(std::int32_t id) {
        const auto place = m_places.find(id);
        return place == m_places.end() ? end() : place->second;
    }
    FreePointSet& operator[](std::int32_t id) { return emplace(id, {}).first->second; }
    /// @return the entry of the id, and whether it is new; an older entry is kept as it is
    std::pair<iterator, bool> emplace(std::int32_t id, const FreePointSet& points) {
        if (const iterator older = find(id); older != end()) return {older, false};
        std::list<Entry> entry;
        entry.emplace_back(id, points);
        const iterator place = entry.begin();
        m_places.emplace(id, place);
        m_entries.splice(m_entries.end(), entry);
        m_erased.erase(id);
        return {place, true};
    }
    /// @return number of entries that were erased
    std::size_t erase(std::int32_t id) {
        const auto place = m_places.find(id);
        if (place == m_places.end()) return 0;
        if (id >= 0 && id < m_firstUntried) m_erased.insert(id);
        m_entries.erase(place->second);
        m_places.erase(place);
        return 1;
    }
    void clear() {
        m_places.clear();
        m_entries.clear();
        m_erased.clear();
        m_firstUntried = 0;
    }

    /// The smallest id from 0 on that has no entry. Each id is tried once, and those erased later are kept in order:
    /// the next of many sets costs as little as the first.
    [[nodiscard]] std::int32_t SmallestFreeId() {
        if (!m_erased.empty()) return *m_erased.begin();
        while (contains(m_firstUntried)) ++m_firstUntried;
        return m_firstUntried;
    }

private:
    static constexpr std::size_t kStartBuckets = 8;

    std::list<Entry> m_entries;  ///< oldest first
    std::unordered_map<std::int32_t, iterator> m_places{kStartBuckets};
    std::int32_t m_firstUntried = 0;  ///< each id from 0 up to this one has an entry or is in m_erased
    std::set<std::int32_t> m_erased;
};
