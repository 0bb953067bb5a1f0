#ifndef GAP_LIST_H
#define GAP_LIST_H

#include <cstddef>
#include <cstdint>
#include <vector>

/// Free blocks of a flash device, ascending by address, from whose front space is taken. A tree of maxima
/// over the blocks finds the lowest that is large enough in logarithmic time.
class GAP_LIST
{
public:
    /// Adds a block behind those added before.
    void add(std::uint64_t start, std::uint64_t size) { m_gaps.push_back({start, size}); }

    /// Ends the adding; to be called before the first take.
    void build();

    /// Takes `size` bytes from the front of the lowest block that has them. False when none has.
    bool take_lowest(std::uint64_t size, std::uint64_t& start);

    /// Size of the largest free block, 0 when there is none.
    std::uint64_t largest() const { return m_gaps.empty() ? 0 : m_tree[1]; }

private:
    struct GAP {
        std::uint64_t start;
        std::uint64_t size;
    };
    std::vector<GAP> m_gaps;
    std::vector<std::uint64_t> m_tree; ///< node k has the children 2k and 2k+1; the leaves are the gaps
    std::size_t m_leaves = 0;
};

#endif
