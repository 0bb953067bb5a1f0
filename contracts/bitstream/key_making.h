#ifndef KEY_MAKING_H
#define KEY_MAKING_H

#include <cstdint>
#include <string>

/// What the command line makes for encryption and signing out of keys that the user has. All passwords come
/// from files that nobody else may read; all secret files are new ones of mode 0600. Each function returns
/// false with a whole sentence in `message`.

/// A key of a key file.
struct NAMED_KEY {
    std::string key_file;
    std::string name;
};

/// Writes an AES key file with that key of 256 bits, under the password of `password_file` unless that is
/// empty.
bool make_aes_key_file(const NAMED_KEY& key, const std::string& password_file, const std::string& output,
                       std::string& message);

/// Writes an encryption lock file for the device that has that key, in fuses or by a battery.
bool make_lock_file(const NAMED_KEY& key, const std::string& device, bool non_volatile,
                    const std::string& output, std::string& message);

/// What goes into an archive of co-signed firmware.
struct FIRMWARE_REQUEST {
    std::string image_path;
    std::string family; ///< as users see it
    std::uint32_t release = 0;
    std::string pem_path;      ///< private key of the maker
    std::string password_file; ///< of that key; empty for none
    std::string output_path;
};

/// Signs firmware as its maker and writes the archive.
bool make_firmware_archive(const FIRMWARE_REQUEST& request, std::string& message);

/// A public key to be signed by another key.
struct KEY_CHAIN_REQUEST {
    std::string signer_path;   ///< private key: the root key, or that of the last link of the chain
    std::string key_path;      ///< public key, or a private one whose public half counts
    std::string chain_path;    ///< chain to be extended; empty for a new one
    std::string password_file; ///< of the private key that signs; empty for none
    std::string output_path;
};

/// Signs the key and writes the chain.
bool make_key_chain(const KEY_CHAIN_REQUEST& request, std::string& message);

/// A stream to be encrypted and signed after it was generated without keys.
struct FINALIZATION_REQUEST {
    std::string input_path;
    std::string aek_path;
    std::string pem_path;      ///< private key
    std::string password_file; ///< of both key files; empty for none
    std::string output_path;
};

/// Completes the stream and writes it.
bool finalize_stream_file(const FINALIZATION_REQUEST& request, std::string& message);

#endif
