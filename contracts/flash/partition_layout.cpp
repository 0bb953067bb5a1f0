#include "partition_layout.h"

#include "gap_list.h"
#include "msg_internal_error.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <map>
#include <numeric>

namespace
{

constexpr std::uint64_t NO_ADDRESS = ~std::uint64_t{0};

std::uint64_t saturating_add(std::uint64_t a, std::uint64_t b)
{
    return b > NO_ADDRESS - a ? NO_ADDRESS : a + b;
}

/// The bytes from the start of a partition that have to lie within it.
std::uint64_t needed_size(const PARTITION_REQUEST& request)
{
    return saturating_add(request.content_size, request.extra_space);
}

class LAYOUT
{
public:
    LAYOUT(const std::vector<PARTITION_REQUEST>& requests, std::uint64_t device_size,
           std::uint64_t sector_size, std::vector<PLACED_PARTITION>& placed,
           std::vector<LAYOUT_PROBLEM>& problems)
        : m_requests(requests), m_device_size(device_size), m_sector_size(sector_size), m_placed(placed),
          m_problems(problems)
    {
    }

    bool run()
    {
        m_placed.assign(m_requests.size(), {});
        for (std::size_t i = 0; i < m_requests.size(); ++i) {
            m_placed[i].name = m_requests[i].name;
            read_addresses(i);
        }
        std::stable_sort(m_fixed.begin(), m_fixed.end(), [this](std::size_t a, std::size_t b) {
            return m_placed[a].start < m_placed[b].start;
        });
        find_overlaps();
        place_automatic();
        find_shared_pages();
        return !m_refused;
    }

private:
    void problem(LAYOUT_PROBLEM_KIND kind, std::size_t i, const std::string& message)
    {
        m_problems.push_back({kind, m_requests[i].name, message});
        m_refused = m_refused || kind != LAYOUT_PROBLEM_UNALIGNED;
    }

    std::string named(std::size_t i) const { return "partition \"" + m_requests[i].name + "\""; }

    std::string named_with_range(std::size_t i) const
    {
        return named(i) + " (" + format_range(m_placed[i].start, m_placed[i].end) + ")";
    }

    /// The last byte of a sector, counted from the block that `size` bytes from `start` need.
    std::uint64_t automatic_end(std::size_t i, std::uint64_t start) const
    {
        const std::uint64_t size =
            std::max({needed_size(m_requests[i]), m_requests[i].minimum_size, std::uint64_t{1}});
        const std::uint64_t last = saturating_add(start, size - 1);
        return saturating_add(last - last % m_sector_size, m_sector_size - 1);
    }

    bool read_address(std::size_t i, const char* which, const std::string& text, std::uint64_t& address)
    {
        if (parse_address(text, address)) {
            return true;
        }
        problem(LAYOUT_PROBLEM_BAD_ADDRESS, i,
                "The " + std::string(which) + " address \"" + text + "\" of " + named(i) +
                    " is no hexadecimal number; write \"auto\" or an address such as 0x00010000.");
        return false;
    }

    void read_addresses(std::size_t i)
    {
        const PARTITION_REQUEST& request = m_requests[i];
        std::uint64_t start = 0;
        std::uint64_t end = 0;
        const bool auto_start = request.start == AUTO_ADDRESS;
        const bool auto_end = request.end == AUTO_ADDRESS;
        const bool start_ok = auto_start || read_address(i, "start", request.start, start);
        const bool end_ok = auto_end || read_address(i, "end", request.end, end);
        if (!start_ok || !end_ok) {
            return;
        }
        if (auto_start && auto_end) {
            m_automatic.push_back(i);
        } else if (auto_start) {
            problem(LAYOUT_PROBLEM_BAD_ADDRESS, i,
                    "The start address of " + named(i) + " is \"auto\" although its end address is " +
                        format_address(end) + "; give both addresses, the start alone, or none.");
        } else {
            read_fixed(i, start, auto_end ? automatic_end(i, start) : end);
        }
    }

    void read_fixed(std::size_t i, std::uint64_t start, std::uint64_t end)
    {
        m_placed[i].start = start;
        m_placed[i].end = end;
        if (start > end) {
            problem(LAYOUT_PROBLEM_START_ABOVE_END, i,
                    "The start address " + format_address(start) + " of " + named(i) +
                        " lies above its end address " + format_address(end) + "; exchange or correct them.");
            return;
        }
        if (end >= m_device_size) {
            problem(LAYOUT_PROBLEM_BEYOND_DEVICE, i,
                    "The " + named_with_range(i) + " leaves the flash device (" + device_range() +
                        "); move it down, make it smaller, or choose a larger device.");
            return;
        }
        if (needed_size(m_requests[i]) > end - start + 1) {
            problem(LAYOUT_PROBLEM_CONTENT_TOO_LARGE, i,
                    "The " + named_with_range(i) + " has room for " + std::to_string(end - start + 1) +
                        " bytes, but its content needs " + std::to_string(needed_size(m_requests[i])) +
                        " bytes; enlarge the partition or assign a smaller input.");
        }
        if (start % m_sector_size != 0) {
            problem(LAYOUT_PROBLEM_UNALIGNED, i,
                    "The " + named_with_range(i) + " does not start at a multiple of the sector size " +
                        format_address(m_sector_size) +
                        "; erasing it erases bytes before it as well, so move it to a sector boundary.");
        }
        m_fixed.push_back(i);
    }

    std::string device_range() const
    {
        return m_device_size == 0 ? "of no size" : format_range(0, m_device_size - 1);
    }

    /// Each partition is compared with the one before it that reaches furthest, which meets it if any does.
    void find_overlaps()
    {
        std::size_t reaching = 0;
        for (std::size_t k = 0; k < m_fixed.size(); ++k) {
            const std::size_t i = m_fixed[k];
            if (k != 0 && m_placed[i].start <= m_placed[reaching].end) {
                problem(LAYOUT_PROBLEM_OVERLAP, i,
                        "The " + named_with_range(i) + " overlaps " + named_with_range(reaching) +
                            "; move one of them, or let the tool place it with \"auto\".");
            }
            if (k == 0 || m_placed[i].end > m_placed[reaching].end) {
                reaching = i;
            }
        }
    }

    void place_automatic()
    {
        GAP_LIST gaps;
        std::uint64_t free_from = 0;
        for (const std::size_t i : m_fixed) {
            if (m_placed[i].start > free_from) {
                add_gap(gaps, free_from, m_placed[i].start);
            }
            free_from = std::max(free_from, m_placed[i].end + 1);
        }
        if (free_from < m_device_size) {
            add_gap(gaps, free_from, m_device_size);
        }
        gaps.build();
        for (const std::size_t i : m_automatic) {
            const std::uint64_t last = automatic_end(i, 0);
            const std::uint64_t size = last == NO_ADDRESS ? last : last + 1;
            std::uint64_t start = 0;
            if (gaps.take_lowest(size, start)) {
                m_placed[i].start = start;
                m_placed[i].end = start + size - 1;
            } else {
                problem(LAYOUT_PROBLEM_NO_ROOM, i,
                        "There is no room for " + named(i) + ", which needs " + std::to_string(size) +
                            " bytes in whole sectors of " + format_address(m_sector_size) +
                            " bytes, in the flash device (" + device_range() +
                            "); the largest free block has " + std::to_string(gaps.largest()) +
                            " bytes. Make other partitions smaller or choose a larger device.");
            }
        }
    }

    /// Keeps the whole sectors of a gap.
    void add_gap(GAP_LIST& gaps, std::uint64_t begin, std::uint64_t end) const
    {
        const std::uint64_t aligned_end = end - end % m_sector_size;
        const std::uint64_t misfit = begin % m_sector_size;
        const std::uint64_t aligned_begin =
            misfit == 0 ? begin : saturating_add(begin, m_sector_size - misfit);
        if (aligned_begin < aligned_end) {
            gaps.add(aligned_begin, aligned_end - aligned_begin);
        }
    }

    void find_shared_pages()
    {
        std::map<unsigned, std::size_t> holders;
        for (std::size_t i = 0; i < m_requests.size(); ++i) {
            if (!m_requests[i].has_page) {
                continue;
            }
            const auto [holder, is_new] = holders.emplace(m_requests[i].page, i);
            if (!is_new) {
                problem(LAYOUT_PROBLEM_SHARED_PAGE, i,
                        "The " + named_with_range(i) + " and " + named_with_range(holder->second) +
                            " both hold page " + std::to_string(m_requests[i].page) +
                            "; give each bitstream a page of its own.");
            }
        }
    }

    const std::vector<PARTITION_REQUEST>& m_requests;
    std::uint64_t m_device_size;
    std::uint64_t m_sector_size;
    std::vector<PLACED_PARTITION>& m_placed;
    std::vector<LAYOUT_PROBLEM>& m_problems;
    std::vector<std::size_t> m_fixed;
    std::vector<std::size_t> m_automatic;
    bool m_refused = false;
};

} // namespace

bool parse_address(const std::string& text, std::uint64_t& address)
{
    const char* begin = text.data();
    const char* const end = begin + text.size();
    if (text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) {
        begin += 2;
    }
    const auto [stop, error] = std::from_chars(begin, end, address, 16);
    return error == std::errc() && stop == end && end - begin <= 16;
}

std::string format_address(std::uint64_t address)
{
    char text[24];
    std::snprintf(text, sizeof text, "0x%08llX", static_cast<unsigned long long>(address));
    return text;
}

std::string format_range(std::uint64_t start, std::uint64_t end)
{
    return format_address(start) + " to " + format_address(end);
}

bool place_partitions(const std::vector<PARTITION_REQUEST>& requests, std::uint64_t device_size,
                      std::uint64_t sector_size, std::vector<PLACED_PARTITION>& placed,
                      std::vector<LAYOUT_PROBLEM>& problems)
{
    VEK_ASSERT(sector_size != 0);
    return LAYOUT(requests, device_size, sector_size, placed, problems).run();
}
