#include "internal_error_trap.h"
#include "partition_layout.h"

#include <algorithm>
#include <chrono>
#include <random>

namespace
{

constexpr std::uint64_t KIB = 1024;
constexpr std::uint64_t SECTOR = 64 * KIB;
constexpr std::uint64_t DEVICE = 1024 * KIB;

PARTITION_REQUEST request(const std::string& name, const std::string& start, const std::string& end,
                          std::uint64_t content = 0)
{
    PARTITION_REQUEST result;
    result.name = name;
    result.start = start;
    result.end = end;
    result.content_size = content;
    return result;
}

struct RESULT {
    bool usable = false;
    std::vector<PLACED_PARTITION> placed;
    std::vector<LAYOUT_PROBLEM> problems;
};

RESULT place(const std::vector<PARTITION_REQUEST>& requests, std::uint64_t device = DEVICE)
{
    RESULT result;
    result.usable = place_partitions(requests, device, SECTOR, result.placed, result.problems);
    return result;
}

std::string range(const RESULT& result, std::size_t i)
{
    return format_range(result.placed[i].start, result.placed[i].end);
}

void expect_one_problem(const RESULT& result, LAYOUT_PROBLEM_KIND kind, const std::string& partition,
                        const std::string& message)
{
    EXPECT_EQ(result.usable, kind == LAYOUT_PROBLEM_UNALIGNED);
    ASSERT_EQ(result.problems.size(), 1U);
    EXPECT_EQ(result.problems[0].kind, kind);
    EXPECT_EQ(result.problems[0].partition, partition);
    EXPECT_EQ(result.problems[0].message, message);
}

} // namespace

TEST(partition_layout, fixed_addresses_are_kept_and_automatic_ones_fill_the_lowest_gap)
{
    const RESULT result =
        place({request("A", "auto", "auto", 1), request("F", "0x00010000", "0x0001FFFF"),
               request("B", "auto", "auto", 2 * SECTOR), request("C", "auto", "auto", SECTOR)});
    ASSERT_TRUE(result.usable);
    EXPECT_TRUE(result.problems.empty());
    EXPECT_EQ(range(result, 0), "0x00000000 to 0x0000FFFF");
    EXPECT_EQ(range(result, 1), "0x00010000 to 0x0001FFFF");
    EXPECT_EQ(range(result, 2), "0x00020000 to 0x0003FFFF");
    EXPECT_EQ(range(result, 3), "0x00040000 to 0x0004FFFF");
    EXPECT_EQ(result.placed[3].name, "C");
}

TEST(partition_layout, a_later_small_partition_fills_a_gap_that_was_too_small_for_an_earlier_one)
{
    const RESULT result =
        place({request("F", "0x10000", "0x1FFFF"), request("BIG", "auto", "auto", SECTOR + 1),
               request("SMALL", "auto", "auto", SECTOR)});
    ASSERT_TRUE(result.usable);
    EXPECT_EQ(range(result, 1), "0x00020000 to 0x0003FFFF");
    EXPECT_EQ(range(result, 2), "0x00000000 to 0x0000FFFF");
}

TEST(partition_layout, an_automatic_end_covers_content_and_extra_space_up_to_the_end_of_the_sector)
{
    PARTITION_REQUEST with_extra = request("P1", "0x00020000", "auto", SECTOR);
    with_extra.extra_space = 1;
    EXPECT_EQ(range(place({with_extra}), 0), "0x00020000 to 0x0003FFFF");
    EXPECT_EQ(range(place({request("P1", "0x00020000", "auto", SECTOR)}), 0), "0x00020000 to 0x0002FFFF");
    EXPECT_EQ(range(place({request("P1", "20100", "auto", SECTOR - 0x100)}), 0), "0x00020100 to 0x0002FFFF");
}

TEST(partition_layout, a_partition_without_content_takes_one_sector_or_its_minimum_size)
{
    EXPECT_EQ(range(place({request("P1", "auto", "auto")}), 0), "0x00000000 to 0x0000FFFF");
    PARTITION_REQUEST sized = request("P1", "auto", "auto");
    sized.minimum_size = SECTOR + 1;
    EXPECT_EQ(range(place({sized}), 0), "0x00000000 to 0x0001FFFF");
}

TEST(partition_layout, no_partitions_make_an_empty_layout)
{
    const RESULT result = place({});
    EXPECT_TRUE(result.usable);
    EXPECT_TRUE(result.placed.empty());
}

TEST(partition_layout, addresses_are_hexadecimal_with_or_without_prefix)
{
    std::uint64_t address = 0;
    EXPECT_TRUE(parse_address("1f", address));
    EXPECT_EQ(address, 0x1FU);
    EXPECT_TRUE(parse_address("0xFFFFFFFFFFFFFFFF", address));
    EXPECT_EQ(address, ~std::uint64_t{0});
    for (const char* text :
         {"", "0x", "x1", "12G", " 1", "1 ", "-1", "0x-1", "0x0x1", "0x10000000000000000", "auto"}) {
        EXPECT_FALSE(parse_address(text, address)) << text;
    }
}

TEST(partition_layout, an_address_that_is_no_hexadecimal_number_is_refused)
{
    expect_one_problem(
        place({request("P1", "top", "auto")}), LAYOUT_PROBLEM_BAD_ADDRESS, "P1",
        "The start address \"top\" of partition \"P1\" is no hexadecimal number; write \"auto\" or an "
        "address such as 0x00010000.");
    expect_one_problem(
        place({request("P1", "0", "")}), LAYOUT_PROBLEM_BAD_ADDRESS, "P1",
        "The end address \"\" of partition \"P1\" is no hexadecimal number; write \"auto\" or an "
        "address such as 0x00010000.");
}

TEST(partition_layout, an_end_without_a_start_is_refused)
{
    expect_one_problem(
        place({request("P1", "auto", "0xFFFF")}), LAYOUT_PROBLEM_BAD_ADDRESS, "P1",
        "The start address of partition \"P1\" is \"auto\" although its end address is 0x0000FFFF; "
        "give both addresses, the start alone, or none.");
}

TEST(partition_layout, a_start_above_the_end_is_refused)
{
    expect_one_problem(
        place({request("P1", "0x20000", "0x1FFFF")}), LAYOUT_PROBLEM_START_ABOVE_END, "P1",
        "The start address 0x00020000 of partition \"P1\" lies above its end address 0x0001FFFF; "
        "exchange or correct them.");
}

TEST(partition_layout, a_partition_beyond_the_device_is_refused)
{
    expect_one_problem(
        place({request("P1", "0xF0000", "0x10FFFF")}), LAYOUT_PROBLEM_BEYOND_DEVICE, "P1",
        "The partition \"P1\" (0x000F0000 to 0x0010FFFF) leaves the flash device (0x00000000 to "
        "0x000FFFFF); move it down, make it smaller, or choose a larger device.");
    EXPECT_TRUE(place({request("P1", "0xF0000", "0xFFFFF")}).usable);
    EXPECT_FALSE(place({request("P1", "0xF0000", "auto", SECTOR + 1)}).usable);
    EXPECT_FALSE(place({request("P1", "0xFFFFFFFFFFFFFFFF", "auto", SECTOR)}).usable);
}

TEST(partition_layout, content_larger_than_its_block_is_refused)
{
    expect_one_problem(
        place({request("P1", "0x10000", "0x1FFFF", SECTOR + 1)}), LAYOUT_PROBLEM_CONTENT_TOO_LARGE, "P1",
        "The partition \"P1\" (0x00010000 to 0x0001FFFF) has room for 65536 bytes, but its content "
        "needs 65537 bytes; enlarge the partition or assign a smaller input.");
    PARTITION_REQUEST with_extra = request("P1", "0x10000", "0x1FFFF", SECTOR);
    with_extra.extra_space = 1;
    EXPECT_FALSE(place({with_extra}).usable);
}

TEST(partition_layout, overlapping_partitions_are_refused_with_both_ranges)
{
    expect_one_problem(
        place({request("P1", "0x0", "0x1FFFF"), request("P2", "0x10000", "0x2FFFF")}), LAYOUT_PROBLEM_OVERLAP,
        "P2",
        "The partition \"P2\" (0x00010000 to 0x0002FFFF) overlaps partition \"P1\" (0x00000000 to "
        "0x0001FFFF); move one of them, or let the tool place it with \"auto\".");
}

TEST(partition_layout, a_start_within_a_sector_is_used_with_a_warning)
{
    expect_one_problem(
        place({request("P1", "0x100", "0x1FF")}), LAYOUT_PROBLEM_UNALIGNED, "P1",
        "The partition \"P1\" (0x00000100 to 0x000001FF) does not start at a multiple of the sector "
        "size 0x00010000; erasing it erases bytes before it as well, so move it to a sector boundary.");
}

TEST(partition_layout, a_partition_within_an_earlier_large_one_is_found_behind_a_small_one)
{
    const RESULT result = place({request("BIG", "0x0", "0x7FFFF"), request("IN1", "0x10000", "0x1FFFF"),
                                 request("IN2", "0x40000", "0x4FFFF")});
    EXPECT_FALSE(result.usable);
    ASSERT_EQ(result.problems.size(), 2U);
    EXPECT_EQ(result.problems[1].message,
              "The partition \"IN2\" (0x00040000 to 0x0004FFFF) overlaps partition \"BIG\" (0x00000000 to "
              "0x0007FFFF); move one of them, or let the tool place it with \"auto\".");
}

TEST(partition_layout, an_automatic_partition_without_room_is_refused_with_the_largest_free_block)
{
    expect_one_problem(
        place({request("P1", "0x0", "0xDFFFF"), request("P2", "auto", "auto", 2 * SECTOR + 1)}),
        LAYOUT_PROBLEM_NO_ROOM, "P2",
        "There is no room for partition \"P2\", which needs 196608 bytes in whole sectors of "
        "0x00010000 bytes, in the flash device (0x00000000 to 0x000FFFFF); the largest free block has "
        "131072 bytes. Make other partitions smaller or choose a larger device.");
    PARTITION_REQUEST endless = request("P1", "auto", "auto");
    endless.extra_space = ~std::uint64_t{0};
    EXPECT_FALSE(place({endless}).usable);
}

TEST(partition_layout, two_partitions_with_one_page_are_refused)
{
    PARTITION_REQUEST first = request("P1", "auto", "auto");
    PARTITION_REQUEST second = request("P2", "auto", "auto");
    first.has_page = second.has_page = true;
    first.page = second.page = 3;
    expect_one_problem(place({first, second}), LAYOUT_PROBLEM_SHARED_PAGE, "P2",
                       "The partition \"P2\" (0x00010000 to 0x0001FFFF) and partition \"P1\" (0x00000000 to "
                       "0x0000FFFF) both hold page 3; give each bitstream a page of its own.");
    second.page = 4;
    EXPECT_TRUE(place({first, second}).usable);
    second.page = 3;
    second.has_page = false;
    EXPECT_TRUE(place({first, second}).usable);
}

TEST(partition_layout, every_problem_of_a_layout_is_told)
{
    const RESULT result = place({request("P1", "none", "never"), request("P2", "2", "1"),
                                 request("P3", "0x0", "0x1FFFF"), request("P4", "0x10000", "0xFFFFFFFF")});
    EXPECT_FALSE(result.usable);
    ASSERT_EQ(result.problems.size(), 4U);
    EXPECT_EQ(result.problems[3].kind, LAYOUT_PROBLEM_BEYOND_DEVICE);
}

TEST(partition_layout, a_sector_size_of_zero_is_an_internal_error)
{
    std::vector<PLACED_PARTITION> placed;
    std::vector<LAYOUT_PROBLEM> problems;
    EXPECT_INTERNAL_ERROR(place_partitions({}, DEVICE, 0, placed, problems), "sector_size != 0");
}

// Whatever is asked for, what comes out as usable keeps the rules.
TEST(partition_layout, random_layouts_never_overlap_and_are_the_same_each_time)
{
    std::mt19937_64 random(7);
    int usable = 0;
    for (int round = 0; round < 2000; ++round) {
        std::vector<PARTITION_REQUEST> requests;
        const std::size_t count = random() % 12;
        for (std::size_t i = 0; i < count; ++i) {
            PARTITION_REQUEST one = request("P" + std::to_string(i), "auto", "auto", random() % (2 * SECTOR));
            if (random() % 4 == 0) {
                const std::uint64_t start = random() % 16 * SECTOR;
                one.start = format_address(start);
                if (random() % 2 == 0) {
                    one.end = format_address(start + random() % (3 * SECTOR));
                }
            }
            one.extra_space = random() % 3 == 0 ? random() % SECTOR : 0;
            requests.push_back(one);
        }
        const RESULT result = place(requests);
        const RESULT again = place(requests);
        ASSERT_EQ(result.usable, again.usable);
        ASSERT_EQ(result.usable, result.problems.empty());
        if (!result.usable) {
            continue;
        }
        ++usable;
        std::vector<PLACED_PARTITION> by_start = result.placed;
        std::sort(by_start.begin(), by_start.end(),
                  [](const auto& a, const auto& b) { return a.start < b.start; });
        for (std::size_t i = 0; i < count; ++i) {
            ASSERT_EQ(range(result, i), range(again, i));
            const PLACED_PARTITION& one = result.placed[i];
            ASSERT_EQ(one.start % SECTOR, 0U);
            ASSERT_LT(one.end, DEVICE);
            ASSERT_GE(one.end - one.start + 1, requests[i].content_size + requests[i].extra_space);
            if (requests[i].end == AUTO_ADDRESS) {
                ASSERT_EQ((one.end + 1) % SECTOR, 0U);
            }
            if (i != 0) {
                ASSERT_GT(by_start[i].start, by_start[i - 1].end);
            }
        }
    }
    EXPECT_GT(usable, 500);
}

TEST(partition_layout, the_lowest_fitting_place_is_taken_as_a_plain_search_finds_it)
{
    std::mt19937_64 random(11);
    for (int round = 0; round < 300; ++round) {
        std::vector<PARTITION_REQUEST> requests;
        std::vector<bool> used(64);
        for (std::uint64_t sector = random() % 3; sector < 64; sector += 1 + random() % 5) {
            requests.push_back(
                request("F" + std::to_string(sector), format_address(sector * SECTOR), "auto", 1));
            used[sector] = true;
        }
        const std::size_t fixed = requests.size();
        for (int i = 0; i < 10; ++i) {
            requests.push_back(request("A" + std::to_string(i), "auto", "auto", (1 + random() % 4) * SECTOR));
        }
        const RESULT result = place(requests, 64 * SECTOR);
        for (std::size_t i = fixed; i < requests.size(); ++i) {
            const std::uint64_t sectors = requests[i].content_size / SECTOR;
            std::uint64_t at = 0;
            const auto fits = [&](std::uint64_t first) {
                return std::find(used.begin() + static_cast<std::ptrdiff_t>(first),
                                 used.begin() + static_cast<std::ptrdiff_t>(first + sectors),
                                 true) == used.begin() + static_cast<std::ptrdiff_t>(first + sectors);
            };
            while (at + sectors <= 64 && !fits(at)) {
                ++at;
            }
            if (at + sectors > 64) {
                EXPECT_FALSE(result.usable);
                break;
            }
            ASSERT_EQ(result.placed[i].start, at * SECTOR);
            std::fill_n(used.begin() + static_cast<std::ptrdiff_t>(at), sectors, true);
        }
    }
}

TEST(partition_layout, many_partitions_take_no_quadratic_time)
{
    const auto seconds = [](std::size_t count) {
        std::vector<PARTITION_REQUEST> requests;
        for (std::size_t i = 0; i < count; ++i) {
            const bool fixed = i % 2 == 0;
            requests.push_back(request("P" + std::to_string(i), fixed ? format_address(i * SECTOR) : "auto",
                                       "auto", 2 * SECTOR));
            if (fixed) {
                requests.back().content_size = 1;
            }
        }
        const auto begin = std::chrono::steady_clock::now();
        EXPECT_TRUE(place(requests, 4 * count * SECTOR).usable);
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    };
    EXPECT_LT(seconds(1000), 0.1);
    EXPECT_LT(seconds(40000), 4.0); // the square of 40 times the work would take minutes
}
