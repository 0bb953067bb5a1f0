#ifndef SAMPLE_H
#define SAMPLE_H

#include "byte_source.h"

#include <cstdint>
#include <memory>
#include <string>

/// Bytes with the redundancy of configuration data, computed when they are read: long runs of zeros, frames
/// that repeat, sparse and dense areas. The bytes depend on `seed` and the offset alone.
class SAMPLE_SOURCE final : public BYTE_SOURCE
{
public:
    SAMPLE_SOURCE(std::uint64_t seed, std::uint64_t size) : m_seed(seed), m_size(size) {}
    std::uint64_t size() const override { return m_size; }
    bool read(std::uint64_t offset, std::span<std::uint8_t> into, std::string& message) const override;

private:
    std::uint64_t m_seed;
    std::uint64_t m_size;
};

/// Writes a bitstream file of the device's full configuration size (periphery and core), deterministic by
/// device and seed. `scheme` as in PACK_REQUEST. False with a whole sentence in `message`.
bool write_sample_bitstream(const std::string& device, std::uint64_t seed, const std::string& scheme,
                            const std::string& output_path, std::string& message);

#endif
