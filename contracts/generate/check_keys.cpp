#include "byte_source.h"
#include "check.h"
#include "fio_path.h"
#include "pgm_device.h"
#include "vek_file_assistant.h"
#include "vek_key_file_assistant.h"

#include <algorithm>
#include <map>

namespace
{

constexpr unsigned DEFAULT_KEY_BITS = 256;
constexpr std::uint64_t PEM_LIMIT = 1024 * 1024;

class KEY_CHECK
{
public:
    KEY_CHECK(const SETUP_FACTS& facts, FINDINGS& findings)
        : m_key_bits(facts.device != nullptr && facts.device->key_bits != 0 ? facts.device->key_bits
                                                                            : DEFAULT_KEY_BITS),
          m_secure(dev_family_is_secure(facts.family)), m_findings(findings)
    {
    }

    void check(const PGM_COMMON_XML_VEK_PATH& path, const std::string& label)
    {
        const bool encryption = VEK_FILE_ASSISTANT::convert_string_to_bool(path.encryption);
        if (encryption && !m_secure) {
            check_key_file(label, path.key_file1, path.key1);
        }
        if (VEK_FILE_ASSISTANT::convert_string_to_bool(path.finalize_encryption)) {
            check_file(FINDING_AES_KEY_FILE, label, path.aek_file, "AES key file",
                       "the encryption is to be finalised");
        }
        if (VEK_FILE_ASSISTANT::convert_string_to_xml_enum(path.signing) == PGM_COMMON_XML_ENUM_ON &&
            check_file(FINDING_SIGNING_KEY, label, path.signing_pem_file, "private key file",
                       "signing is on")) {
            check_password(label, path);
        }
    }

private:
    bool check_file(FINDING_KIND kind, const std::string& label, const std::string& file, const char* what,
                    const char* why)
    {
        std::string message;
        if (file.empty()) {
            m_findings.add(kind, label,
                           "No " + std::string(what) + " is named although " + why + "; name one.");
            return false;
        }
        if (!FILE_SOURCE::open(absolute_path(file), message)) {
            m_findings.add(kind, label, message);
            return false;
        }
        return true;
    }

    void check_key_file(const std::string& label, const std::string& file, const std::string& key_name)
    {
        if (!check_file(FINDING_KEY_FILE, label, file, "key file", "encryption is on")) {
            return;
        }
        std::map<std::string, std::string> keys;
        if (!VEK_KEY_FILE_ASSISTANT::parse_key_file(absolute_path(file), m_key_bits, keys)) {
            m_findings.add(FINDING_KEY_FILE, label,
                           "The key file \"" + file + "\" is refused; give it one key of " +
                               std::to_string(m_key_bits) + " bits a line.");
        } else if (!keys.contains(key_name)) {
            m_findings.add(FINDING_KEY_NAME, label,
                           "The key file \"" + file + "\" has no key \"" + key_name +
                               "\"; choose one of its keys.");
        }
        VEK_KEY_FILE_ASSISTANT::wipe_keys(keys);
    }

    /// The words in a PEM file that tell of a password stand outside the encoded key.
    void check_password(const std::string& label, const PGM_COMMON_XML_VEK_PATH& path)
    {
        std::string message;
        const auto file = FILE_SOURCE::open(absolute_path(path.signing_pem_file), message);
        if (!file || file->size() > PEM_LIMIT) {
            m_findings.add(FINDING_SIGNING_KEY, label,
                           "\"" + path.signing_pem_file + "\" is no private key file; name a PEM file.");
            return;
        }
        std::vector<std::uint8_t> bytes(file->size());
        constexpr std::string_view BEGIN = "-----BEGIN ";
        constexpr std::string_view ENCRYPTED = "ENCRYPTED";
        const bool is_read = file->read(0, bytes, message);
        const auto has = [&](std::string_view words) {
            return std::search(bytes.begin(), bytes.end(), words.begin(), words.end()) != bytes.end();
        };
        if (!is_read || !has(BEGIN)) {
            m_findings.add(FINDING_SIGNING_KEY, label,
                           "\"" + path.signing_pem_file + "\" is no private key file; name a PEM file.");
        } else if (has(ENCRYPTED) && path.password.empty()) {
            m_findings.add(FINDING_SIGNING_KEY, label,
                           "The private key in \"" + path.signing_pem_file +
                               "\" is under a password, and none is given; give the password.");
        }
        std::fill(bytes.begin(), bytes.end(), std::uint8_t{0});
    }

    unsigned m_key_bits;
    bool m_secure;
    FINDINGS& m_findings;
};

} // namespace

void check_keys(const SETUP_VIEW& setup, const SETUP_FACTS& facts, FINDINGS& findings)
{
    KEY_CHECK check(facts, findings);
    for (const PGM_COMMON_XML_VEK_BITSTREAM* bitstream : setup.bitstreams().all()) {
        for (const PGM_COMMON_XML_VEK_PATH* path : bitstream->path) {
            check.check(*path, element_label("BITSTREAM", bitstream->id) + " / " +
                                   element_label("PATH", FIO_PATH(path->text).filename()));
        }
    }
}
