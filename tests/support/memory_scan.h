#ifndef IMAGEWRIGHT_TESTS_MEMORY_SCAN_H
#define IMAGEWRIGHT_TESTS_MEMORY_SCAN_H

#include <cstdint>

/// Digits of a key that are made one at a time, so that the key stands nowhere unless somebody puts it
/// together.
class SECRET_DIGITS
{
public:
    static constexpr int COUNT = 64;
    static constexpr int QUARTER = COUNT / 4;

    explicit SECRET_DIGITS(std::uint64_t seed) : m_seed(seed) {}
    /// Upper case, as the keypad enters them.
    char digit(int place) const;

private:
    std::uint64_t m_seed;
};

/// How often `least` digits or more from the start of a quarter on stand in the writable memory of this
/// process, as bytes and as UTF-16. A place in which several quarters follow each other counts once.
int count_in_memory(const SECRET_DIGITS& secret, int least = SECRET_DIGITS::QUARTER);

#endif
