#ifndef SETUP_SECURITY_H
#define SETUP_SECURITY_H

#include "format.h"
#include "input_security.h"
#include "output_plan.h"
#include "setup_facts.h"
#include "signing_desk.h"

#include <map>
#include <string>
#include <vector>

/// The keys of all files of a setup, each read once. The keys are overwritten with the object. The setup must
/// outlive it. Once loaded, any thread may ask.
class SETUP_SECURITY
{
public:
    /// True when nothing forbids to generate; the findings tell.
    bool load(const SETUP_VIEW& setup, const SIGNING_DESK& desk, FINDINGS& findings);

    /// Completes the inputs of a bitstream, which are its files in order.
    void apply(const PGM_COMMON_XML_VEK_BITSTREAM& bitstream, std::vector<STREAM_INPUT>& inputs) const;
    /// The same, for streams of which only the size matters: nothing is signed.
    void apply_sizes(const PGM_COMMON_XML_VEK_BITSTREAM& bitstream, std::vector<STREAM_INPUT>& inputs) const;

    /// The keys that a key programming file holds. False with a whole sentence in `message` when a file has
    /// none.
    bool key_programs(const SETUP_VIEW& setup, const OUTPUT_PLAN& plan, std::vector<KEY_PROGRAM>& keys,
                      std::string& message) const;

    /// Who signs what is made from the bitstreams: the first signer among their files, null for none.
    const STREAM_SIGNER* signer_of(const SETUP_VIEW& setup, const std::vector<std::string>& bitstreams) const;

private:
    std::map<const PGM_COMMON_XML_VEK_PATH*, INPUT_SECURITY> m_files;
};

#endif
