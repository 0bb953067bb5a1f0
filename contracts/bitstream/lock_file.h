#ifndef LOCK_FILE_H
#define LOCK_FILE_H

#include "stream_key.h"

#include <memory>
#include <string>

/// Encryption lock files (.elk): encrypt for a device without its key. The file holds the keys that are
/// derived from the device's key, and locks what goes with them: the device and where it keeps its key.
/// Layout: docs/formats/encryption-lock-file.md.
struct ENCRYPTION_LOCK {
    std::string device;        ///< name of the FPGA
    bool non_volatile = false; ///< the key is in fuses
    std::shared_ptr<const STREAM_KEY> key;
};

/// Takes the bytes of such a file apart. False with the end of a sentence in `reason`.
bool decode_lock(const SECRET_BYTES& bytes, ENCRYPTION_LOCK& lock, std::string& reason);

/// False with a whole sentence in `message` when the file cannot be read, is none, or is damaged.
bool read_lock_file(const std::string& path, ENCRYPTION_LOCK& lock, std::string& message);

/// Writes a new file with mode 0600; one that is there already is refused.
bool write_lock_file(const std::string& path, const ENCRYPTION_LOCK& lock, std::string& message);

#endif
