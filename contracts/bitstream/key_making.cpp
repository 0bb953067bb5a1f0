#include "key_making.h"

#include "aek_file.h"
#include "atomic_file.h"
#include "bitstream_target.h"
#include "dev_family_enum.h"
#include "firmware_archive.h"
#include "key_chain.h"
#include "lock_file.h"
#include "pgm_device.h"
#include "same_file.h"
#include "stream_finalizer.h"
#include "stream_signer.h"
#include "vek_key_file_assistant.h"

#include <filesystem>
#include <map>

namespace
{

constexpr unsigned AES_KEY_BITS = AEK_KEY_SIZE * 8;

/// The key as bytes; the digits are overwritten whatever the way out.
bool load_named_key(const NAMED_KEY& named, unsigned bits, SECRET_BYTES& key, std::string& message)
{
    if (!FILE_SOURCE::open(named.key_file, message))
        return false;
    std::map<std::string, std::string> keys;
    if (!VEK_KEY_FILE_ASSISTANT::parse_key_file(named.key_file, bits, keys)) {
        message =
            named.key_file + " is refused; give it one key of " + std::to_string(bits) + " bits a line.";
        return false;
    }
    const auto found = keys.find(named.name);
    const bool good = found != keys.end() && parse_key_digits(found->second, key);
    VEK_KEY_FILE_ASSISTANT::wipe_keys(keys);
    if (!good)
        message = named.key_file + " has no key \"" + named.name + "\"; choose one of its keys.";
    return good;
}

/// `password` stays empty when no file is named.
bool load_password(const std::string& path, SECRET_BYTES& password, std::string& message)
{
    if (path.empty())
        return true;
    if (!read_password_file(path, password, message))
        return false;
    if (!is_readable_by_others(path))
        return true;
    message = path + " can be read by others; take the right from them (chmod go-rwx).";
    return false;
}

} // namespace

bool make_aes_key_file(const NAMED_KEY& key, const std::string& password_file, const std::string& output,
                       std::string& message)
{
    SECRET_BYTES bytes;
    SECRET_BYTES password;
    return load_named_key(key, AES_KEY_BITS, bytes, message) &&
           load_password(password_file, password, message) &&
           write_aek_file(output, bytes, password_file.empty() ? nullptr : &password, message);
}

bool make_lock_file(const NAMED_KEY& key, const std::string& device, bool non_volatile,
                    const std::string& output, std::string& message)
{
    const PGM_DEVICE* const target = find_fpga(device, message);
    if (target == nullptr)
        return false;
    if (target->key_bits == 0 || dev_family_is_secure(target->family)) {
        message = "Device " + target->name +
                  " takes no lock file; choose a device that is encrypted with a key "
                  "file.";
        return false;
    }
    SECRET_BYTES bytes;
    return load_named_key(key, target->key_bits, bytes, message) &&
           write_lock_file(output, {target->name, non_volatile, STREAM_KEY::derive(bytes)}, message);
}

bool make_firmware_archive(const FIRMWARE_REQUEST& request, std::string& message)
{
    const DEV_FAMILY_ENUM family = dstr_get_dev_family_enum_by_string(request.family);
    if (!dev_family_is_secure(family)) {
        message =
            "\"" + request.family + "\" is no family with co-signed firmware; \"list families\" names all.";
        return false;
    }
    for (const std::string& input : {request.image_path, request.pem_path, request.password_file}) {
        if (!input.empty() && same_file(input, request.output_path)) {
            message = request.output_path + " is also an input; choose another name for the archive.";
            return false;
        }
    }
    const auto firmware = FILE_SOURCE::open(request.image_path, message);
    if (!firmware)
        return false;
    if (firmware->size() == 0) {
        message = request.image_path + " is empty; name an image with firmware.";
        return false;
    }
    SECRET_BYTES password;
    PEM_KEY key;
    if (!load_password(request.password_file, password, message) ||
        !load_pem_key(request.pem_path, request.password_file.empty() ? nullptr : &password, key, message))
        return false;
    if (!key.signer) {
        message = request.pem_path + " holds a public key alone; name the private key of the maker.";
        return false;
    }
    return write_firmware_archive(request.output_path, static_cast<std::uint32_t>(family), request.release,
                                  *firmware, *key.signer, message);
}

bool make_key_chain(const KEY_CHAIN_REQUEST& request, std::string& message)
{
    for (const std::string& input : {request.signer_path, request.key_path, request.password_file}) {
        if (!input.empty() && same_file(input, request.output_path)) {
            message = request.output_path + " is also an input; choose another name for the key chain.";
            return false;
        }
    }
    SECRET_BYTES password;
    PEM_KEY signer;
    PEM_KEY key;
    KEY_CHAIN chain;
    if (!load_password(request.password_file, password, message) ||
        !load_pem_key(request.signer_path, request.password_file.empty() ? nullptr : &password, signer,
                      message) ||
        !load_pem_key(request.key_path, nullptr, key, message) ||
        (!request.chain_path.empty() && !read_key_chain(request.chain_path, chain, message)))
        return false;
    if (!signer.signer) {
        message = request.signer_path + " holds a public key alone; name the private key that is to sign.";
        return false;
    }
    return extend_key_chain(chain, key.public_key, *signer.signer, request.output_path, message);
}

bool finalize_stream_file(const FINALIZATION_REQUEST& request, std::string& message)
{
    for (const std::string& input :
         {request.input_path, request.aek_path, request.pem_path, request.password_file}) {
        if (!input.empty() && same_file(input, request.output_path)) {
            message = request.output_path + " is also an input; choose another name for the stream.";
            return false;
        }
    }
    const auto prepared = FILE_SOURCE::open(request.input_path, message);
    SECRET_BYTES password;
    SECRET_BYTES key;
    PEM_KEY pem;
    if (!prepared || !load_password(request.password_file, password, message))
        return false;
    const SECRET_BYTES* const given = request.password_file.empty() ? nullptr : &password;
    if (!read_aek_file(request.aek_path, given, key, message) ||
        !load_pem_key(request.pem_path, given, pem, message))
        return false;
    if (!pem.signer) {
        message = request.pem_path + " holds a public key alone; name the private key.";
        return false;
    }
    const auto target = ATOMIC_FILE::create(request.output_path, 0666, message);
    if (!target)
        return false;
    const std::string directory = std::filesystem::path(request.output_path).parent_path().string();
    const auto stream = finalize_stream(*prepared, *STREAM_KEY::derive(key), *pem.signer,
                                        directory.empty() ? "." : directory, message);
    if (!stream) {
        message = request.input_path + ": " + message;
        return false;
    }
    return copy_source(*stream, *target, message) && target->commit(message);
}
