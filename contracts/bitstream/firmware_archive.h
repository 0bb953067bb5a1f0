#ifndef FIRMWARE_ARCHIVE_H
#define FIRMWARE_ARCHIVE_H

#include "byte_source.h"
#include "stream_signer.h"

#include <memory>
#include <string>
#include <vector>

/// Archives of co-signed firmware (.fw): firmware with the signature of its maker, to which that of the
/// stream's owner is added. Layout: docs/formats/firmware-archive.md.
inline constexpr std::size_t FIRMWARE_HEADER_SIZE = 32;

struct FIRMWARE_ARCHIVE {
    std::uint32_t family = 0;         ///< number of the DEV_FAMILY_ENUM it is for
    std::uint32_t release = 0;        ///< number of the maker's release
    std::vector<std::uint8_t> header; ///< the signed bytes before the firmware, FIRMWARE_HEADER_SIZE of them
    std::shared_ptr<const BYTE_SOURCE> firmware;
    ECDSA_PUBLIC_KEY key;
    std::vector<std::uint8_t> signature; ///< over header and firmware
};

/// Opens an archive and verifies the signature of the maker. `verify` false reads the structure alone, for a
/// check that is to be cheap. False with a whole sentence in `message`.
bool open_firmware_archive(const std::string& path, bool verify, FIRMWARE_ARCHIVE& archive,
                           std::string& message);

/// Writes an archive, atomically.
bool write_firmware_archive(const std::string& path, std::uint32_t family, std::uint32_t release,
                            const BYTE_SOURCE& firmware, const STREAM_SIGNER& maker, std::string& message);

#endif
