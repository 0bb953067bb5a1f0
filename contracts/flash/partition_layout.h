#ifndef PARTITION_LAYOUT_H
#define PARTITION_LAYOUT_H

#include <cstdint>
#include <string>
#include <vector>

/// The text of an address that the tool is to choose.
inline constexpr const char* AUTO_ADDRESS = "auto";

/// Reads a hexadecimal address, with or without "0x", the whole text and at most 16 digits. False when it is
/// none.
bool parse_address(const std::string& text, std::uint64_t& address);

/// "0x" and at least eight upper-case hexadecimal digits.
std::string format_address(std::uint64_t address);

/// "0x00000000 to 0x0000FFFF", both ends included.
std::string format_range(std::uint64_t start, std::uint64_t end);

/// A partition as the setup asks for it.
struct PARTITION_REQUEST {
    std::string name;
    std::string start;                ///< "auto" or hexadecimal
    std::string end;                  ///< "auto" or hexadecimal, the last byte included
    std::uint64_t content_size = 0;   ///< bytes from the start to behind the last one in use
    std::uint64_t minimum_size = 0;   ///< bytes that an automatic end covers even when the content is smaller
    std::uint64_t extra_space = 0;    ///< bytes to be kept free behind the content
    bool has_page = false;
    unsigned page = 0;
};

/// A partition with its place.
struct PLACED_PARTITION {
    std::string name;
    std::uint64_t start = 0;
    std::uint64_t end = 0; ///< last byte, included
};

enum LAYOUT_PROBLEM_KIND {
    LAYOUT_PROBLEM_BAD_ADDRESS,
    LAYOUT_PROBLEM_START_ABOVE_END,
    LAYOUT_PROBLEM_BEYOND_DEVICE,
    LAYOUT_PROBLEM_CONTENT_TOO_LARGE,
    LAYOUT_PROBLEM_OVERLAP,
    LAYOUT_PROBLEM_NO_ROOM,
    LAYOUT_PROBLEM_SHARED_PAGE,
    LAYOUT_PROBLEM_UNALIGNED, ///< does not keep the layout from being used
};

struct LAYOUT_PROBLEM {
    LAYOUT_PROBLEM_KIND kind;
    std::string partition; ///< name of the partition it is about
    std::string message;   ///< whole sentences with names and hexadecimal ranges, and what to do
};

/// Lays the partitions out in a flash device of `device_size` bytes whose smallest erasable unit has
/// `sector_size` bytes.
///
/// Partitions with a start address are placed first, where they ask to be. An automatic start is then taken,
/// in the order of `requests`, as the lowest multiple of the sector size at which the partition fits. An
/// automatic end covers the larger of content plus extra space and the minimum size, and reaches to the end
/// of its sector. The time is n log n in the number of partitions.
///
/// `placed` gets one entry per request, in the same order; `problems` all problems found. True when the
/// layout can be used. `sector_size` must not be 0 (internal error "sector_size != 0").
bool place_partitions(const std::vector<PARTITION_REQUEST>& requests, std::uint64_t device_size,
                      std::uint64_t sector_size, std::vector<PLACED_PARTITION>& placed,
                      std::vector<LAYOUT_PROBLEM>& problems);

#endif
