#ifndef INPUT_SECURITY_H
#define INPUT_SECURITY_H

#include "finding.h"
#include "setup_view.h"
#include "stream_key.h"
#include "stream_signer.h"

#include <map>
#include <memory>
#include <string>

struct PGM_DEVICE;

/// How the stream of one file of a bitstream is encrypted and signed.
struct INPUT_SECURITY {
    std::shared_ptr<const STREAM_ENCRYPTION> encryption; ///< null for none
    std::shared_ptr<const STREAM_SIGNER> signer;         ///< null for none
    std::vector<std::uint8_t> key_chain;                 ///< by which the signer is trusted; empty for none
    SECRET_BYTES device_key; ///< what a device is to be programmed with; empty where a lock file encrypts
};

/// Reads the keys that the options of a file ask for. The check and the generation both ask here, so that
/// what one accepts the other takes. `device`: that of the file, null when it is not known. Adds a finding
/// for each problem, and warnings for key files that others can read; true when nothing forbids to generate.
bool load_input_security(const PGM_COMMON_XML_VEK_PATH& path, const std::string& label,
                         const PGM_DEVICE* device, const SIGNING_DESK& desk, INPUT_SECURITY& security,
                         FINDINGS& findings);

/// Whether the encryption of a file is to be completed, and its image to be signed, by a later run.
bool is_finalised_later(const PGM_COMMON_XML_VEK_PATH& path);

/// Whether the options of any file ask for a key or a password.
bool holds_secrets(const SETUP_VIEW& setup);

/// How findings name a file of a bitstream.
std::string path_label(const PGM_COMMON_XML_VEK_BITSTREAM& bitstream, const PGM_COMMON_XML_VEK_PATH& path);

/// More than encryption and signature add to the stream of a file with `plain` bytes of configuration data.
std::uint64_t security_allowance(const PGM_COMMON_XML_VEK_PATH& path, std::uint64_t plain);

/// Archive of co-signed firmware that the stream of the file takes; empty for none.
std::string firmware_source(const PGM_COMMON_XML_VEK_PATH& path);

#endif
