#ifndef ID_TABLE_H
#define ID_TABLE_H

#include <atomic>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// Distinct ids by their number, in the order in which they came, found in constant time. The ids themselves
/// stay with their owners, which must keep them as they are.
///
/// Open addressing, at most three quarters full: with a node for each of many thousand ids the search would
/// cost more than reading them from the file. Who asks for the ids in their order finds each behind the last
/// one, without a search: a list of references as a rule stands in the order of what it refers to. Any number
/// of threads may ask at a time.
class ID_TABLE
{
public:
    /// Makes room for so many in all.
    void reserve(std::size_t count);
    /// False when the id is there already.
    bool insert(const std::string& id);
    std::optional<std::size_t> find(const std::string& id) const;

private:
    struct SLOT {
        std::uint32_t number = 0; ///< of the id, from 1 on; 0: free
        std::uint32_t hash = 0;
    };
    std::size_t find_slot(const std::string& id, std::uint32_t hash) const;
    void spread(std::size_t slots);

    std::vector<const std::string*> m_ids;
    std::vector<SLOT> m_slots;                  ///< a power of two of them
    mutable std::atomic<std::size_t> m_next{0}; ///< behind the one found last
};

#endif
