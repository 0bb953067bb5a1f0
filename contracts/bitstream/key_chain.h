#ifndef KEY_CHAIN_H
#define KEY_CHAIN_H

#include "byte_source.h"
#include "stream_signer.h"

#include <optional>
#include <span>
#include <string>
#include <vector>

/// A chain of keys (.skc): the root key, which a device trusts, has signed another, which may have signed the
/// next. Who has the last one signs bitstreams, and the root key can stay in its safe. Layout:
/// docs/formats/key-chain.md.
inline constexpr std::size_t KEY_CHAIN_LIMIT = 3;

/// One key and who has signed it.
struct KEY_CHAIN_LINK {
    ECDSA_PUBLIC_KEY key;
    ECDSA_PUBLIC_KEY signer;
    std::vector<std::uint8_t> signature; ///< r, s
};
using KEY_CHAIN = std::vector<KEY_CHAIN_LINK>;

/// The record that files and streams hold.
std::vector<std::uint8_t> encode_key_chain(const KEY_CHAIN& chain);
/// Reads the record, which must be used up, and verifies every link; false with the end of a sentence in
/// `reason`.
bool decode_key_chain(std::span<const std::uint8_t> bytes, KEY_CHAIN& chain, std::string& reason);

/// Reads a file and verifies it. False with a whole sentence in `message`.
bool read_key_chain(const std::string& path, KEY_CHAIN& chain, std::string& message);

/// Adds a key, signed by the root key or, when the chain has links, by the key of the last one, and writes
/// the file, atomically. False with a whole sentence in `message`.
bool extend_key_chain(KEY_CHAIN chain, const ECDSA_PUBLIC_KEY& key, const STREAM_SIGNER& signer,
                      const std::string& output, std::string& message);

#endif
