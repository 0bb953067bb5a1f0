#ifndef ENUM_SET_H
#define ENUM_SET_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <vector>

/// A set of enumerators below LIMIT as a bit mask, so that membership costs one bit test.
template <class ENUM, std::size_t LIMIT>
class ENUM_SET
{
public:
    constexpr ENUM_SET() = default;
    constexpr ENUM_SET(std::initializer_list<ENUM> members)
    {
        for (const ENUM member : members) {
            insert(member);
        }
    }

    /// A member at or above LIMIT does not compile in a constant and ends the run elsewhere.
    constexpr void insert(ENUM member)
    {
        const std::size_t value = static_cast<std::size_t>(member);
        m_words.at(value / WORD_BITS) |= std::uint64_t{1} << (value % WORD_BITS);
    }

    constexpr bool contains(ENUM member) const
    {
        const std::size_t value = static_cast<std::size_t>(member);
        return value < m_words.size() * WORD_BITS &&
               (m_words[value / WORD_BITS] >> (value % WORD_BITS) & 1U) != 0;
    }

    constexpr bool empty() const
    {
        for (const std::uint64_t word : m_words) {
            if (word != 0) {
                return false;
            }
        }
        return true;
    }

    /// The members in ascending order.
    std::vector<ENUM> members() const
    {
        std::vector<ENUM> result;
        for (std::size_t value = 0; value < m_words.size() * WORD_BITS; ++value) {
            if (contains(static_cast<ENUM>(value))) {
                result.push_back(static_cast<ENUM>(value));
            }
        }
        return result;
    }

    constexpr friend ENUM_SET operator|(ENUM_SET left, const ENUM_SET& right)
    {
        for (std::size_t i = 0; i < left.m_words.size(); ++i) {
            left.m_words[i] |= right.m_words[i];
        }
        return left;
    }
    constexpr friend ENUM_SET operator&(ENUM_SET left, const ENUM_SET& right)
    {
        for (std::size_t i = 0; i < left.m_words.size(); ++i) {
            left.m_words[i] &= right.m_words[i];
        }
        return left;
    }
    /// The members of `left` that are not in `right`.
    constexpr friend ENUM_SET operator-(ENUM_SET left, const ENUM_SET& right)
    {
        for (std::size_t i = 0; i < left.m_words.size(); ++i) {
            left.m_words[i] &= ~right.m_words[i];
        }
        return left;
    }
    constexpr bool operator==(const ENUM_SET&) const = default;

private:
    static constexpr std::size_t WORD_BITS = 64;
    std::array<std::uint64_t, (LIMIT + WORD_BITS - 1) / WORD_BITS> m_words{};
};

/// A few enumerators in a meaningful order.
template <class ENUM, std::size_t CAPACITY>
class SHORT_LIST
{
public:
    constexpr SHORT_LIST() = default;
    constexpr SHORT_LIST(std::initializer_list<ENUM> members)
    {
        for (const ENUM member : members) {
            m_members.at(m_size++) = member;
        }
    }
    constexpr const ENUM* begin() const { return m_members.data(); }
    constexpr const ENUM* end() const { return m_members.data() + m_size; }
    constexpr bool empty() const { return m_size == 0; }
    constexpr bool contains(ENUM member) const
    {
        for (const ENUM candidate : *this) {
            if (candidate == member) {
                return true;
            }
        }
        return false;
    }
    std::vector<ENUM> members() const { return {begin(), end()}; }

private:
    std::array<ENUM, CAPACITY> m_members{};
    std::size_t m_size = 0;
};

#endif
