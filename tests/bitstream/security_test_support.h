#ifndef IMAGEWRIGHT_TESTS_SECURITY_TEST_SUPPORT_H
#define IMAGEWRIGHT_TESTS_SECURITY_TEST_SUPPORT_H

#include "bitstream_test_support.h"
#include "configuration_stream.h"
#include "reference_loader.h"
#include "stream_key.h"
#include "stream_signer.h"
#include "temporary_directory.h"

#include <gtest/gtest.h>

#include <functional>

/// Files, keys and streams in a directory of their own.
class SECURITY_TEST : public testing::Test
{
protected:
    std::string add_file(const std::string& name, const TEST_CONTENT& content);
    BYTES build(const std::vector<STREAM_INPUT>& inputs);
    std::string refusal(const std::vector<STREAM_INPUT>& inputs);
    /// What a device with that key loads.
    static LOADED_STREAM load(const BYTES& stream, const BYTES& key = {});
    /// Why a device does not load it.
    static std::string load_error(const BYTES& stream, const BYTES& key = {});
    std::shared_ptr<const STREAM_SIGNER> signer(const std::string& curve);

    TEMPORARY_DIRECTORY m_directory;
};

/// Bytes 0, 1, 2 ... as a key.
BYTES counted_key(std::size_t size, std::uint8_t first = 0);
std::shared_ptr<const STREAM_ENCRYPTION> encryption_with(const BYTES& key);

/// A packet of a stream.
struct PACKET_PLACE {
    std::uint8_t opcode = 0;
    std::size_t offset = 0;
    std::size_t size = 0; ///< header and checksum included
};
std::vector<PACKET_PLACE> packets_of(const BYTES& stream);
/// Makes all checksums and the digest of the end fit again.
void mend_stream(BYTES& stream);

/// Calls `read` with many damaged forms of `good`: each bit of the first `bits_in` bytes flipped, cut at many
/// lengths, bytes repeated.
void for_each_mutation(const BYTES& good, std::size_t bits_in, const std::function<void(const BYTES&)>& read);

#endif
