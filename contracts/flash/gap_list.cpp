#include "gap_list.h"

#include <algorithm>
#include <bit>

void GAP_LIST::build()
{
    m_leaves = std::bit_ceil(std::max<std::size_t>(m_gaps.size(), 1));
    m_tree.assign(2 * m_leaves, 0);
    for (std::size_t i = 0; i < m_gaps.size(); ++i) {
        m_tree[m_leaves + i] = m_gaps[i].size;
    }
    for (std::size_t node = m_leaves - 1; node != 0; --node) {
        m_tree[node] = std::max(m_tree[2 * node], m_tree[2 * node + 1]);
    }
}

bool GAP_LIST::take_lowest(std::uint64_t size, std::uint64_t& start)
{
    if (m_gaps.empty() || m_tree[1] < size) {
        return false;
    }
    std::size_t node = 1;
    while (node < m_leaves) {
        node = m_tree[2 * node] >= size ? 2 * node : 2 * node + 1;
    }
    GAP& gap = m_gaps[node - m_leaves];
    start = gap.start;
    gap.start += size;
    gap.size -= size;
    m_tree[node] = gap.size;
    for (node /= 2; node != 0; node /= 2) {
        m_tree[node] = std::max(m_tree[2 * node], m_tree[2 * node + 1]);
    }
    return true;
}
