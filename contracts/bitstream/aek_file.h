#ifndef AEK_FILE_H
#define AEK_FILE_H

#include "secret_bytes.h"

#include <string>

/// AES key files (.aek): one 256-bit key, as it is or under a password (scrypt, RFC 7914, and AES-256-GCM).
/// Layout: docs/formats/aes-key-file.md.

inline constexpr std::size_t AEK_KEY_SIZE = 32;

/// Reads the key. `password` may be null. False with a whole sentence in `message` when the file cannot be
/// read, is none, is damaged, or is not opened by the password.
bool read_aek_file(const std::string& path, const SECRET_BYTES* password, SECRET_BYTES& key,
                   std::string& message);

/// Writes a new file with mode 0600; `password` null leaves the key as it is. A file that is there already is
/// refused: a key that is overwritten is lost.
bool write_aek_file(const std::string& path, const SECRET_BYTES& key, const SECRET_BYTES* password,
                    std::string& message);

/// Writes a new secret file of mode 0600 and refuses to replace one.
bool write_new_secret_file(const std::string& path, const SECRET_BYTES& bytes, std::string& message);

#endif
