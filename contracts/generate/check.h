#ifndef CHECK_H
#define CHECK_H

#include "dset_oti_dev_options_info.h"
#include "finding.h"
#include "output_plan.h"
#include "setup_facts.h"
#include "setup_view.h"
#include "signing_desk.h"

/// All that is wrong with a setup. `include_files`: also look at the files and directories it names;
/// `directory_override` stands for the output directories unless it is empty. `desk`: where signatures of
/// keys that are kept elsewhere come from.
void check_setup(const PGM_COMMON_XML_VEK_VEK& document, bool include_files,
                 const std::string& directory_override, FINDINGS& findings, const SIGNING_DESK& desk = {});

// The parts of the check. Each adds to the findings and looks at no other part's matter.

/// Mode, ids, references, values: what a setup must have to be saved.
void check_structure(const SETUP_VIEW& setup, FINDINGS& findings);
/// Output files: that there are some, that mode and family offer them, that they have inputs.
void check_outputs(const SETUP_VIEW& setup, const SETUP_FACTS& facts, FINDINGS& findings);
/// Names and directories of the files to be written.
void check_targets(const SETUP_VIEW& setup, const std::vector<OUTPUT_PLAN>& outputs, FINDINGS& findings);
/// Bitstreams and what goes with their devices; the files only with `include_files`.
void check_inputs(const SETUP_VIEW& setup, const SETUP_FACTS& facts, bool include_files, FINDINGS& findings);
/// Options of the setup that this version does not honour, and those that exclude each other.
void check_options(const SETUP_VIEW& setup, FINDINGS& findings);
/// Options of update images, application images and parts of images: that they go together, and with
/// `include_files` that the files bring what they ask for.
void check_image_options(const SETUP_VIEW& setup, const SETUP_FACTS& facts, bool include_files,
                         FINDINGS& findings);
/// A key programming file needs the key of each file whose device it is to program.
void check_key_programming(const SETUP_VIEW& setup, FINDINGS& findings);
/// Key files, key names and signing keys that the options ask for.
void check_keys(const SETUP_VIEW& setup, const SIGNING_DESK& desk, FINDINGS& findings);
/// Flash devices, their layout and the flash loader; needs the files.
void check_flash(const SETUP_VIEW& setup, const SETUP_FACTS& facts, FINDINGS& findings);

#endif
