#include "setup_security.h"

#include "pgm_device.h"

namespace
{

/// The files of the bitstreams in order.
std::vector<const PGM_COMMON_XML_VEK_PATH*> files_of(const SETUP_VIEW& setup,
                                                     const std::vector<std::string>& bitstreams)
{
    std::vector<const PGM_COMMON_XML_VEK_PATH*> files;
    for (const std::string& id : bitstreams) {
        const PGM_COMMON_XML_VEK_BITSTREAM* bitstream = setup.bitstreams().find(id);
        if (bitstream != nullptr) {
            files.insert(files.end(), bitstream->path.begin(), bitstream->path.end());
        }
    }
    return files;
}

} // namespace

bool SETUP_SECURITY::load(const SETUP_VIEW& setup, const SIGNING_DESK& desk, FINDINGS& findings)
{
    bool good = true;
    for (const PGM_COMMON_XML_VEK_BITSTREAM* bitstream : setup.bitstreams().all()) {
        for (const PGM_COMMON_XML_VEK_PATH* path : bitstream->path) {
            good = load_input_security(*path, path_label(*bitstream, *path), path_device(*path), desk,
                                       m_files[path], findings) &&
                   good;
        }
    }
    return good;
}

void SETUP_SECURITY::apply(const PGM_COMMON_XML_VEK_BITSTREAM& bitstream,
                           std::vector<STREAM_INPUT>& inputs) const
{
    auto input = inputs.begin();
    for (const PGM_COMMON_XML_VEK_PATH* file : bitstream.path) {
        const INPUT_SECURITY& security = m_files.at(file);
        for (std::size_t i = 0; i < image_count(*file); ++i, ++input) {
            input->encryption = security.encryption;
            input->signer = security.signer;
            input->key_chain = security.key_chain;
        }
    }
}

void SETUP_SECURITY::apply_sizes(const PGM_COMMON_XML_VEK_BITSTREAM& bitstream,
                                 std::vector<STREAM_INPUT>& inputs) const
{
    apply(bitstream, inputs);
    for (STREAM_INPUT& input : inputs) {
        if (input.signer) {
            input.signer = make_sizing_signer(input.signer->public_key());
        }
    }
}

bool SETUP_SECURITY::key_programs(const SETUP_VIEW& setup, const OUTPUT_PLAN& plan,
                                  std::vector<KEY_PROGRAM>& keys, std::string& message) const
{
    const std::vector<const PGM_COMMON_XML_VEK_PATH*> files =
        plan.key_of != nullptr ? std::vector<const PGM_COMMON_XML_VEK_PATH*>{plan.key_of}
                               : files_of(setup, output_bitstreams(setup, *plan.output));
    for (const PGM_COMMON_XML_VEK_PATH* file : files) {
        const INPUT_SECURITY& security = m_files.at(file);
        const PGM_DEVICE* device = path_device(*file);
        if (security.device_key.empty() || device == nullptr) {
            message = "The file \"" + file->text + "\" brings no key to program.";
            return false;
        }
        keys.push_back({device->name, device->idcode, security.encryption->info, security.device_key});
    }
    return true;
}

const STREAM_SIGNER* SETUP_SECURITY::signer_of(const SETUP_VIEW& setup,
                                               const std::vector<std::string>& bitstreams) const
{
    for (const PGM_COMMON_XML_VEK_PATH* file : files_of(setup, bitstreams)) {
        const STREAM_SIGNER* signer = m_files.at(file).signer.get();
        if (signer != nullptr) {
            return signer;
        }
    }
    return nullptr;
}
