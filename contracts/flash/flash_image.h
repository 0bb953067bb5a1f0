#ifndef FLASH_IMAGE_H
#define FLASH_IMAGE_H

#include "byte_source.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>

/// The content of a flash device: extents over a fill of 0xFF. It costs memory by the extents, not by the
/// device.
class FLASH_IMAGE final : public BYTE_SOURCE
{
public:
    static constexpr std::uint8_t FILL = 0xFF;

    /// `size`: capacity of the device in bytes.
    explicit FLASH_IMAGE(std::uint64_t size) : m_size(size) {}

    /// Lays `content` at `offset`. False with both hexadecimal ranges in `message` when it leaves the device
    /// or meets another extent; empty content is laid nowhere.
    bool add(std::uint64_t offset, std::shared_ptr<const BYTE_SOURCE> content, std::string& message);

    std::uint64_t size() const override { return m_size; }
    bool read(std::uint64_t offset, std::span<std::uint8_t> into, std::string& message) const override;

    /// The extents by their offset.
    const std::map<std::uint64_t, std::shared_ptr<const BYTE_SOURCE>>& extents() const { return m_extents; }

    /// The range from the first used byte to behind the last; both 0 when nothing is used.
    void used_range(std::uint64_t& begin, std::uint64_t& end) const;

private:
    std::uint64_t m_size;
    std::map<std::uint64_t, std::shared_ptr<const BYTE_SOURCE>> m_extents;
};

#endif
