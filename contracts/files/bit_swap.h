#ifndef BIT_SWAP_H
#define BIT_SWAP_H

#include <cstdint>
#include <span>

/// Reverses the order of the bits within each byte: bit 0 becomes bit 7.
void swap_bits(std::span<std::uint8_t> bytes);

/// The same from `from` to `to`, which have the same length (internal error "from.size() == to.size()") and
/// do not overlap.
void swap_bits(std::span<const std::uint8_t> from, std::span<std::uint8_t> to);

/// The ways in which the work can be done. The fastest that the processor has is taken; each is open to
/// tests.
enum class BIT_SWAP_METHOD : std::uint8_t { PORTABLE, SSSE3, AVX2 };
bool bit_swap_available(BIT_SWAP_METHOD method);
void swap_bits_with(BIT_SWAP_METHOD method, const std::uint8_t* from, std::uint8_t* to, std::size_t size);

#endif
