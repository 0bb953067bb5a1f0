#include "input_security.h"

#include "aek_file.h"
#include "bitstream_file.h"
#include "dev_family_enum.h"
#include "fio_path.h"
#include "firmware_archive.h"
#include "key_chain.h"
#include "lock_file.h"
#include "pgm_device.h"
#include "stream_packets.h"
#include "stream_reader.h"
#include "vek_file_assistant.h"
#include "vek_key_file_assistant.h"

#include <algorithm>

namespace
{

using PATH = PGM_COMMON_XML_VEK_PATH;

constexpr unsigned DEFAULT_KEY_BITS = 256;

/// The attributes of the fuse options, in the order of FUSE_OPTION.
constexpr std::string PATH::*FUSE_ATTRIBUTES[FUSE_OPTION_COUNT] = {
    &PATH::security_opt_epof_only,        &PATH::security_opt_no_config,   &PATH::security_opt_no_pr,
    &PATH::security_opt_no_jtag_key,      &PATH::security_opt_no_jtag_ext, &PATH::security_opt_no_jtag,
    &PATH::security_opt_no_hps_jtag,      &PATH::security_opt_no_otp_key,  &PATH::security_opt_no_battery_key,
    &PATH::security_opt_lock_battery_key, &PATH::security_opt_secure};

struct KEY_STORAGE_ROW {
    PGM_COMMON_XML_ENUM word;
    KEY_PLACE place;
};
constexpr KEY_STORAGE_ROW KEY_STORAGES[] = {
    {PGM_COMMON_XML_ENUM_IID_PUF_WRAPPED_AES_KEY, KEY_PLACE::FLASH},
    {PGM_COMMON_XML_ENUM_BLUEMARK_PUF_WRAPPED_AES_KEY, KEY_PLACE::FLASH},
    {PGM_COMMON_XML_ENUM_EFUSE_WRAPPED_AES_KEY, KEY_PLACE::FUSES},
    {PGM_COMMON_XML_ENUM_EFUSE_IID_PUF_WRAPPED_AES_KEY, KEY_PLACE::FUSES},
    {PGM_COMMON_XML_ENUM_EFUSE_BLUEMARK_PUF_WRAPPED_AES_KEY, KEY_PLACE::FUSES},
};

bool is_on(const std::string& word)
{
    return VEK_FILE_ASSISTANT::convert_string_to_bool(word);
}

bool is_signed(const PATH& path)
{
    return VEK_FILE_ASSISTANT::convert_string_to_xml_enum(path.signing) == PGM_COMMON_XML_ENUM_ON;
}

/// Wipes the keys of a key file whatever the way out.
struct KEY_MAP {
    std::map<std::string, std::string> keys;
    KEY_MAP() = default;
    ~KEY_MAP() { VEK_KEY_FILE_ASSISTANT::wipe_keys(keys); }
    KEY_MAP(const KEY_MAP&) = delete;
    KEY_MAP& operator=(const KEY_MAP&) = delete;
};

class SECURITY_LOADER
{
public:
    SECURITY_LOADER(const PATH& path, const std::string& label, const PGM_DEVICE* device,
                    const SIGNING_DESK& desk, INPUT_SECURITY& security, FINDINGS& findings)
        : m_path(path), m_label(label), m_device(device), m_desk(desk), m_security(security),
          m_findings(findings)
    {
    }

    bool load()
    {
        if (is_on(m_path.encryption)) {
            load_encryption();
        }
        if (is_finalised_later(m_path)) {
            prepare_encryption();
        } else if (is_on(m_path.finalize_encryption) || is_signed(m_path)) {
            load_password();
            if (is_on(m_path.finalize_encryption)) {
                load_final_encryption();
            }
            if (is_signed(m_path)) {
                load_signing();
            }
        }
        return m_good;
    }

private:
    void refuse(FINDING_KIND kind, const std::string& text)
    {
        m_findings.add(kind, m_label, text);
        m_good = false;
    }

    void refuse_without_file(FINDING_KIND kind, const std::string& what, const std::string& why)
    {
        refuse(kind, "No " + what + " is named although " + why + "; name one.");
    }

    void warn_if_open(const std::string& path)
    {
        if (is_readable_by_others(path)) {
            m_findings.add(FINDING_KEY_FILE_OPEN, m_label,
                           "The file \"" + path +
                               "\" holds a secret and can be read by others; take the rights from them with "
                               "\"chmod 600\".");
        }
    }

    bool is_secure() const { return m_device != nullptr && dev_family_is_secure(m_device->family); }

    unsigned key_bits() const
    {
        return m_device != nullptr && m_device->key_bits != 0 ? m_device->key_bits : DEFAULT_KEY_BITS;
    }

    void encrypt_with(std::shared_ptr<const STREAM_KEY> key, KEY_PLACE place)
    {
        const auto encryption = std::make_shared<STREAM_ENCRYPTION>();
        encryption->info.prepared = key == nullptr;
        if (key) {
            encryption->info.key_bits = key->bits();
            encryption->info.id = key->id();
        }
        encryption->info.place = place;
        encryption->info.during_reconfiguration = is_on(m_path.decryption_during_pr);
        for (std::size_t i = 0; i < FUSE_OPTION_COUNT; ++i) {
            const std::string& word = m_path.*FUSE_ATTRIBUTES[i];
            const bool is_value = word.size() == 1 && word[0] >= '0' && word[0] <= '0' + FUSE_VALUE_MAX;
            encryption->info.fuse_options[i] = is_value ? static_cast<std::uint8_t>(word[0] - '0') : 0;
        }
        encryption->key = std::move(key);
        m_security.encryption = encryption;
    }

    void load_encryption()
    {
        if (m_device != nullptr && (m_device->key_bits == 0 || is_secure())) {
            refuse(FINDING_SECURITY_NOT_OFFERED,
                   is_secure()
                       ? "Encryption is on, and in the family of the device " + m_device->user_name() +
                             " it is finalised with an AES key file; switch it off and finalise it."
                       : "Encryption is on, and the device " + m_device->user_name() +
                             " has no key; switch it off.");
        } else if (!m_path.elk_file.empty() && !m_path.key_file1.empty()) {
            refuse(FINDING_OPTION_CONFLICT,
                   "The encryption lock file and the key file exclude each other; remove one of them.");
        } else if (!m_path.elk_file.empty()) {
            load_lock_file();
        } else if (m_path.key_file1.empty()) {
            refuse_without_file(FINDING_KEY_FILE, "key file", "encryption is on");
        } else {
            load_key_file();
        }
    }

    KEY_PLACE chosen_place() const
    {
        return is_on(m_path.non_volatile_key) ? KEY_PLACE::FUSES : KEY_PLACE::BATTERY;
    }

    void load_key_file()
    {
        SECRET_BYTES second;
        if (!load_named_key(m_path.key_file1, m_path.key1, m_security.device_key)) {
            return;
        }
        if (!m_path.key2.empty() || !m_path.key_file2.empty()) {
            const std::string& file = m_path.key_file2.empty() ? m_path.key_file1 : m_path.key_file2;
            if (!load_named_key(file, m_path.key2, second)) {
                return;
            }
            if (second == m_security.device_key) {
                refuse(FINDING_OPTION_CONFLICT,
                       "The first and the second key are the same; name two different ones.");
                return;
            }
            m_security.device_key = mix_device_keys(m_security.device_key, second);
        }
        encrypt_with(STREAM_KEY::derive(m_security.device_key), chosen_place());
    }

    bool load_named_key(const std::string& file, const std::string& name, SECRET_BYTES& digits)
    {
        std::string message;
        const std::string path = absolute_path(file);
        if (!FILE_SOURCE::open(path, message)) {
            refuse(FINDING_KEY_FILE, message);
            return false;
        }
        if (file != m_path.key_file1 || name == m_path.key1) {
            warn_if_open(path);
        }
        KEY_MAP map;
        if (!VEK_KEY_FILE_ASSISTANT::parse_key_file(path, key_bits(), map.keys)) {
            refuse(FINDING_KEY_FILE, "The key file \"" + file + "\" is refused; give it one key of " +
                                         std::to_string(key_bits()) + " bits a line.");
            return false;
        }
        const auto key = map.keys.find(name);
        if (key == map.keys.end()) {
            refuse(FINDING_KEY_NAME,
                   "The key file \"" + file + "\" has no key \"" + name + "\"; choose one of its keys.");
            return false;
        }
        return parse_key_digits(key->second, digits);
    }

    void load_lock_file()
    {
        ENCRYPTION_LOCK lock;
        std::string message;
        const std::string path = absolute_path(m_path.elk_file);
        if (!read_lock_file(path, lock, message)) {
            refuse(FINDING_LOCK_FILE, message);
            return;
        }
        warn_if_open(path);
        const std::string name = "The encryption lock file \"" + m_path.elk_file + "\" ";
        if (m_device != nullptr && lock.device != m_device->name) {
            refuse(FINDING_LOCK_FILE, name + "is for the device " + lock.device + ", and the bitstream for " +
                                          m_device->name + "; name the lock file of this device.");
        } else if (lock.key->bits() != key_bits()) {
            refuse(FINDING_LOCK_FILE, name + "has a key of " + std::to_string(lock.key->bits()) +
                                          " bits, and the device takes one of " + std::to_string(key_bits()) +
                                          "; name the lock file of this device.");
        } else if (lock.non_volatile != is_on(m_path.non_volatile_key)) {
            refuse(FINDING_LOCK_FILE,
                   name + (lock.non_volatile ? "is for a non-volatile key; switch the non-volatile key on."
                                             : "is for a volatile key; switch the non-volatile key off."));
        } else {
            encrypt_with(lock.key, chosen_place());
        }
    }

    void load_password()
    {
        if (m_path.password.empty()) {
            return;
        }
        std::string message;
        const std::string path = absolute_path(m_path.password);
        if (!read_password_file(path, m_password, message)) {
            refuse(FINDING_PASSWORD_FILE, message);
            return;
        }
        warn_if_open(path);
        m_has_password = true;
    }

    const SECRET_BYTES* password() const { return m_has_password ? &m_password : nullptr; }

    /// Whether a password file is named that could not be read, which has been told.
    bool lacks_password() const { return !m_path.password.empty() && !m_has_password; }

    /// Neither a key nor a password is needed before the encryption is completed.
    void prepare_encryption()
    {
        if (!can_be_finalised()) {
            return;
        }
        check_prepared_by_compiler();
        if (is_signed(m_path)) {
            load_firmware();
        }
        encrypt_with(nullptr, storage_place());
    }

    bool can_be_finalised()
    {
        if (m_device == nullptr || is_secure()) {
            return true;
        }
        refuse(FINDING_SECURITY_NOT_OFFERED,
               "The encryption is to be finalised, and the family of the device " + m_device->user_name() +
                   " has no such step; switch it off.");
        return false;
    }

    void load_final_encryption()
    {
        std::string message;
        if (!can_be_finalised()) {
            return;
        }
        if (!is_signed(m_path)) {
            refuse(FINDING_FINALIZE_UNSIGNED,
                   "The encryption is to be finalised in a bitstream that is not signed; switch signing on.");
        }
        check_prepared_by_compiler();
        if (m_path.aek_file.empty()) {
            refuse_without_file(FINDING_AES_KEY_FILE, "AES key file", "the encryption is to be finalised");
            return;
        }
        const std::string path = absolute_path(m_path.aek_file);
        if (lacks_password()) {
            return;
        }
        if (!read_aek_file(path, password(), m_security.device_key, message)) {
            refuse(FINDING_AES_KEY_FILE, message);
            return;
        }
        warn_if_open(path);
        encrypt_with(STREAM_KEY::derive(m_security.device_key), storage_place());
    }

    void check_prepared_by_compiler()
    {
        std::string message;
        const auto file = BITSTREAM_FILE::open(absolute_path(m_path.text), message);
        if (!file || file->kind() != BITSTREAM_KIND::SOF) {
            return;
        }
        const auto option = file->options().find("sof_option_encryption");
        if (option == file->options().end() || !option->second) {
            refuse(FINDING_ENCRYPTION_NOT_PREPARED,
                   "The encryption is to be finalised, and the bitstream was compiled without it; compile it "
                   "with the option sof_option_encryption or do not finalise.");
        }
    }

    KEY_PLACE storage_place() const
    {
        const PGM_COMMON_XML_ENUM word = VEK_FILE_ASSISTANT::convert_string_to_xml_enum(m_path.key_storage);
        const auto row = std::find_if(std::begin(KEY_STORAGES), std::end(KEY_STORAGES),
                                      [word](const KEY_STORAGE_ROW& one) { return one.word == word; });
        return row == std::end(KEY_STORAGES) ? KEY_PLACE::BATTERY : row->place;
    }

    void load_signing()
    {
        if (m_device != nullptr && !is_secure()) {
            refuse(FINDING_SECURITY_NOT_OFFERED, "Signing is on, and the family of the device " +
                                                     m_device->user_name() +
                                                     " verifies no signatures; switch it off.");
            return;
        }
        load_firmware();
        if (m_path.signing_pem_file.empty()) {
            refuse_without_file(FINDING_SIGNING_KEY, "private key file", "signing is on");
            return;
        }
        if (lacks_password()) {
            return;
        }
        const std::string path = absolute_path(m_path.signing_pem_file);
        std::string message;
        PEM_KEY key;
        if (!load_pem_key(path, password(), key, message)) {
            refuse(FINDING_SIGNING_KEY, message);
            return;
        }
        if (!m_path.skc_file.empty() && !load_key_chain(key.public_key)) {
            return;
        }
        const bool has_desk = !m_desk.digest_directory.empty() || !m_desk.signature_directory.empty();
        if (key.signer) {
            warn_if_open(path);
        }
        if (!m_desk.digest_directory.empty() || (has_desk && (!key.signer || is_on(m_path.sign_later)))) {
            const std::string name = FIO_PATH(m_path.text).filename();
            m_security.signer = make_desk_signer(key.public_key, name.substr(0, name.rfind('.')), m_desk);
        } else if (!key.signer || is_on(m_path.sign_later)) {
            refuse(
                FINDING_SIGNED_ELSEWHERE,
                std::string(key.signer ? "The bitstream is to be signed later"
                                       : "\"" + m_path.signing_pem_file + "\" holds a public key alone") +
                    "; write the digests with \"imagewright-cmd generate --write-digests\", sign them, and "
                    "give the signatures with --signatures.");
        } else {
            m_security.signer = key.signer;
        }
    }

    bool load_key_chain(const ECDSA_PUBLIC_KEY& signer)
    {
        KEY_CHAIN chain;
        std::string message;
        if (!read_key_chain(absolute_path(m_path.skc_file), chain, message)) {
            refuse(FINDING_SIGNING_KEY, message);
            return false;
        }
        if (chain.back().key != signer) {
            refuse(FINDING_SIGNING_KEY, "The key chain \"" + m_path.skc_file +
                                            "\" ends with another key than \"" + m_path.signing_pem_file +
                                            "\"; name the chain of that key.");
            return false;
        }
        m_security.key_chain = encode_key_chain(chain);
        return true;
    }

    void load_firmware()
    {
        if (m_path.fw_source.empty()) {
            return;
        }
        FIRMWARE_ARCHIVE archive;
        std::string message;
        const std::string path = absolute_path(m_path.fw_source);
        if (!open_firmware_archive(path, false, archive, message)) {
            refuse(FINDING_FIRMWARE_ARCHIVE, message);
        } else if (m_device != nullptr && archive.family != static_cast<std::uint32_t>(m_device->family)) {
            refuse(FINDING_FIRMWARE_ARCHIVE,
                   "The firmware \"" + m_path.fw_source + "\" is not for the family " +
                       dstr_get_user_string(m_device->family) + "; name firmware for it.");
        }
    }

    const PATH& m_path;
    const std::string& m_label;
    const PGM_DEVICE* m_device;
    const SIGNING_DESK& m_desk;
    INPUT_SECURITY& m_security;
    FINDINGS& m_findings;
    SECRET_BYTES m_password;
    bool m_has_password = false;
    bool m_good = true;
};

} // namespace

bool load_input_security(const PGM_COMMON_XML_VEK_PATH& path, const std::string& label,
                         const PGM_DEVICE* device, const SIGNING_DESK& desk, INPUT_SECURITY& security,
                         FINDINGS& findings)
{
    return SECURITY_LOADER(path, label, device, desk, security, findings).load();
}

bool is_finalised_later(const PGM_COMMON_XML_VEK_PATH& path)
{
    return is_on(path.finalize_encryption) && is_on(path.finalize_encryption_later);
}

bool holds_secrets(const SETUP_VIEW& setup)
{
    const auto& all = setup.bitstreams().all();
    return std::any_of(all.begin(), all.end(), [](const PGM_COMMON_XML_VEK_BITSTREAM* bitstream) {
        return std::any_of(bitstream->path.begin(), bitstream->path.end(), [](const PATH* path) {
            return is_on(path->encryption) || is_on(path->finalize_encryption) || is_signed(*path);
        });
    });
}

std::string path_label(const PGM_COMMON_XML_VEK_BITSTREAM& bitstream, const PGM_COMMON_XML_VEK_PATH& path)
{
    return element_label("BITSTREAM", bitstream.id) + " / " +
           element_label("PATH", FIO_PATH(path.text).filename());
}

std::uint64_t security_allowance(const PGM_COMMON_XML_VEK_PATH& path, std::uint64_t plain)
{
    constexpr std::uint64_t RECORDS = 2048; // key info, signatures of the maker and the owner, key chain
    const bool encrypted = is_on(path.encryption) || is_on(path.finalize_encryption);
    const std::uint64_t packets = plain / FRAMES_LIMIT + STREAM_PART_COUNT;
    return (encrypted ? packets * SEAL_SIZE : 0) + (encrypted || is_signed(path) ? RECORDS : 0);
}

std::string firmware_source(const PGM_COMMON_XML_VEK_PATH& path)
{
    return is_signed(path) && !path.fw_source.empty() ? absolute_path(path.fw_source) : "";
}
