#include "sample.h"

#include "bitstream_target.h"
#include "pgm_device.h"
#include "pgmio_config_scheme.h"

#include <algorithm>
#include <cstring>

namespace
{

constexpr std::uint64_t WORD = 8;
constexpr std::uint64_t FRAME_WORDS = 32;
constexpr std::uint64_t AREA_FRAMES = 128;
constexpr std::uint64_t AREA_WORDS = FRAME_WORDS * AREA_FRAMES;
constexpr std::uint64_t FIRMWARE_SIZE = 128 * 1024;

/// The finaliser of SplitMix64 (Steele, Lea, Flood: Fast splittable pseudorandom number generators, 2014).
constexpr std::uint64_t mix(std::uint64_t value)
{
    value += 0x9E3779B97F4A7C15U;
    value = (value ^ (value >> 30)) * 0xBF58476D1CE4E5B9U;
    value = (value ^ (value >> 27)) * 0x94D049BB133111EBU;
    return value ^ (value >> 31);
}

/// One stretch of the configuration memory with a look of its own.
class AREA
{
public:
    AREA(std::uint64_t seed, std::uint64_t index) : m_key(mix(mix(seed) ^ index)), m_kind(m_key % 100) {}

    /// The word with this number within the area.
    std::uint64_t word(std::uint64_t number) const
    {
        if (m_kind < UNUSED)
            return 0;
        if (m_kind < REPEATED) {
            const std::uint64_t frame = mix(m_key ^ number % FRAME_WORDS);
            // Every eighth frame or so differs from its neighbours in one word.
            const std::uint64_t change = mix(m_key + number / FRAME_WORDS);
            const bool changed = change % 8 == 0 && change / 8 % FRAME_WORDS == number % FRAME_WORDS;
            return sparse(frame) ^ (changed ? change >> 48 : 0);
        }
        const std::uint64_t value = mix(m_key ^ (number << 8));
        return m_kind < SPARSE ? sparse(value) : value;
    }

private:
    static constexpr std::uint64_t UNUSED = 45;
    static constexpr std::uint64_t REPEATED = 70;
    static constexpr std::uint64_t SPARSE = 90;

    /// Mostly zero words, the others with few bits set.
    static std::uint64_t sparse(std::uint64_t value)
    {
        return value % 4 == 0 ? value & (value >> 7) & (value << 11) & (value >> 23) : 0;
    }

    std::uint64_t m_key;
    std::uint64_t m_kind;
};

} // namespace

bool SAMPLE_SOURCE::read(std::uint64_t offset, std::span<std::uint8_t> into, std::string& message) const
{
    if (offset > m_size || into.size() > m_size - offset) {
        message = "the sample data ends at offset " + std::to_string(m_size);
        return false;
    }
    std::size_t done = 0;
    while (done < into.size()) {
        const std::uint64_t first_word = (offset + done) / WORD;
        const std::uint64_t area_index = first_word / AREA_WORDS;
        const AREA area(m_seed, area_index);
        for (std::uint64_t number = first_word % AREA_WORDS; number < AREA_WORDS && done < into.size();
             ++number) {
            const std::uint64_t value = area.word(number);
            std::uint8_t bytes[WORD];
            for (unsigned i = 0; i < WORD; ++i)
                bytes[i] = static_cast<std::uint8_t>(value >> (8 * i));
            const std::size_t skip = static_cast<std::size_t>((offset + done) % WORD);
            const std::size_t count = std::min<std::size_t>(WORD - skip, into.size() - done);
            std::memcpy(into.data() + done, bytes + skip, count);
            done += count;
        }
    }
    return true;
}

bool write_sample_bitstream(const std::string& device, std::uint64_t seed, const std::string& scheme,
                            const std::string& output_path, std::string& message)
{
    const PGM_DEVICE* const fpga = find_fpga(device, message);
    std::optional<std::uint32_t> scheme_number;
    if (fpga == nullptr || !parse_scheme_word(scheme, scheme_number, message))
        return false;
    const bool on_chip = fpga->family == DEV_FAMILY_ONCHIP_FLASH;
    if (on_chip && !scheme_number)
        scheme_number = PGMIO_CONFIG_SCHEME_SINGLE_COMPRESSED_IMAGE;

    BITSTREAM_WRITER writer(BITSTREAM_KIND::SOF, {fpga->name, fpga->idcode});
    if (scheme_number)
        writer.set_scheme(*scheme_number);
    const bool secure = dev_family_is_secure(fpga->family);
    if (secure)
        writer.set_options({{"sof_option_encryption", false}});
    if (on_chip)
        writer.set_option_block({});
    // Another device gives other data for the same seed.
    const std::uint64_t key = mix(seed) ^ fpga->idcode;
    if (fpga->periphery_bytes != 0)
        writer.add_section(SECTION_PERIPHERY,
                           std::make_shared<SAMPLE_SOURCE>(mix(key ^ 1), fpga->periphery_bytes));
    writer.add_section(SECTION_CORE, std::make_shared<SAMPLE_SOURCE>(mix(key ^ 2), fpga->core_bytes));
    if (secure)
        writer.add_section(SECTION_FIRMWARE, std::make_shared<SAMPLE_SOURCE>(mix(key ^ 3), FIRMWARE_SIZE));
    return write_bitstream_file(writer, output_path, message);
}
