#include "fill_crc.h"

namespace
{
/// The product of two polynomials over GF(2) modulo that of CRC-32; the upper bit is the coefficient of x^0.
constexpr std::uint32_t multiply(std::uint32_t a, std::uint32_t b)
{
    std::uint32_t product = 0;
    for (; a != 0; a <<= 1) {
        product ^= (a >> 31) != 0 ? b : 0;
        b = b >> 1 ^ ((b & 1) != 0 ? 0xEDB88320u : 0u);
    }
    return product;
}
} // namespace

std::uint32_t crc32_of_fill(std::uint32_t crc, std::uint64_t length)
{
    std::uint32_t shift = 0x00800000; // x^8: moves a checksum over one byte
    std::uint32_t fill = 0xFF000000;  // the checksum of one byte 0xFF
    for (; length != 0; length >>= 1) {
        if ((length & 1) != 0)
            crc = multiply(shift, crc) ^ fill;
        fill = multiply(shift, fill) ^ fill;
        shift = multiply(shift, shift);
    }
    return crc;
}
