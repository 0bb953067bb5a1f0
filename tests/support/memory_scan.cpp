#include "memory_scan.h"

#include <cinttypes>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <initializer_list>

namespace
{

constexpr int QUARTER = SECRET_DIGITS::QUARTER;
/// What a sanitizer reserves beyond this is no memory of the program.
constexpr std::uintptr_t LARGEST_MAPPING = std::uintptr_t{1} << 30;

/// How many digits from `place` on stand at `address`.
__attribute__((no_sanitize("address", "thread"))) int match(const SECRET_DIGITS& secret, const char* address,
                                                            const char* end, int place, std::ptrdiff_t width)
{
    int length = 0;
    while (place + length < SECRET_DIGITS::COUNT && end - address >= width &&
           *address == secret.digit(place + length) && (width == 1 || address[1] == '\0')) {
        address += width;
        ++length;
    }
    return length;
}

__attribute__((no_sanitize("address", "thread"))) int count_in(const SECRET_DIGITS& secret, int least,
                                                               const char* begin, const char* end)
{
    char first_digits[5] = "";
    for (int quarter = 0; quarter < 4; ++quarter) {
        first_digits[quarter] = secret.digit(quarter * QUARTER);
    }
    int count = 0;
    for (const char* address = begin; address < end; ++address) {
        if (*address != first_digits[0] && *address != first_digits[1] && *address != first_digits[2] &&
            *address != first_digits[3]) {
            continue;
        }
        for (const std::ptrdiff_t width : {1, 2}) {
            for (int place = 0; place < SECRET_DIGITS::COUNT; place += QUARTER) {
                const int length = match(secret, address, end, place, width);
                if (length >= least) {
                    ++count;
                    address += length * width - 1;
                    break;
                }
            }
        }
    }
    return count;
}

} // namespace

char SECRET_DIGITS::digit(int place) const
{
    std::uint64_t mixed = m_seed + static_cast<std::uint64_t>(place) * 0x9E3779B97F4A7C15ULL;
    mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9ULL;
    mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EBULL;
    return "0123456789ABCDEF"[mixed >> 60];
}

int count_in_memory(const SECRET_DIGITS& secret, int least)
{
    int count = 0;
    std::FILE* const maps = std::fopen("/proc/self/maps", "r");
    char line[512];
    while (maps != nullptr && std::fgets(line, sizeof line, maps) != nullptr) {
        std::uintptr_t begin = 0;
        std::uintptr_t end = 0;
        char rights[5] = "";
        if (std::sscanf(line, "%" SCNxPTR "-%" SCNxPTR " %4s", &begin, &end, rights) == 3 &&
            std::strncmp(rights, "rw", 2) == 0 && end - begin <= LARGEST_MAPPING &&
            std::strstr(line, "/dev/") == nullptr) {
            count += count_in(secret, least, reinterpret_cast<const char*>(begin),
                              reinterpret_cast<const char*>(end));
        }
    }
    if (maps != nullptr) {
        std::fclose(maps);
    }
    return count;
}
