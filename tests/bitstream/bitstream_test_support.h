#ifndef IMAGEWRIGHT_TESTS_BITSTREAM_TEST_SUPPORT_H
#define IMAGEWRIGHT_TESTS_BITSTREAM_TEST_SUPPORT_H

#include "bitstream_writer.h"
#include "pgm_device.h"

#include <cstdint>
#include <random>
#include <string>
#include <vector>

using BYTES = std::vector<std::uint8_t>;

/// Bytes of a fixed sequence.
BYTES random_bytes(std::mt19937& random, std::size_t size);

/// Bytes that compress well.
BYTES redundant_bytes(std::mt19937& random, std::size_t size);

/// What the tests put into a file.
struct TEST_CONTENT {
    BITSTREAM_KIND kind = BITSTREAM_KIND::SOF;
    BITSTREAM_DEVICE device;
    std::optional<std::uint32_t> scheme;
    BITSTREAM_OPTIONS options;
    std::optional<DSET_OTI_DEV_OPTIONS_INFO> option_block;
    std::vector<BITSTREAM_REGION> regions;
    std::vector<std::pair<SECTION_TAG, BYTES>> data; ///< periphery, core and others
};

/// Content of every kind of section but regions, for the first FPGA of the database.
TEST_CONTENT full_content();

/// The smallest good file for the first FPGA of the database.
TEST_CONTENT small_content(const BYTES& core);

/// The file's bytes; fails the test when they cannot be made.
BYTES make_file(const TEST_CONTENT& content);

/// An FPGA of the database.
const PGM_DEVICE& some_fpga();
/// An FPGA of a family.
const PGM_DEVICE& fpga_of_family(DEV_FAMILY_ENUM family);

/// Overwrites an integer, least significant byte first.
void put_number(BYTES& bytes, std::size_t offset, std::size_t size, std::uint64_t value);

/// Makes the header's checksum fit again, so that a test reaches the rules behind it.
void mend_header(BYTES& file);

/// Makes the digest at the end fit again.
void mend_digest(BYTES& file);

std::shared_ptr<const BITSTREAM_FILE> open_bytes(const BYTES& bytes, std::string& message);

/// Peak memory since the object was made, so that what earlier tests took does not hide what this one takes.
class PEAK_MEMORY
{
public:
    PEAK_MEMORY();
    std::uint64_t kib() const; ///< above what was in use at the start

private:
    std::uint64_t m_start;
};

/// All bytes of a source; fails the test when they cannot be read.
BYTES bytes_of(const BYTE_SOURCE& source);

#endif
