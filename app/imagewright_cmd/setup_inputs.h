#ifndef SETUP_INPUTS_H
#define SETUP_INPUTS_H

#include "vek_file_assistant.h"

#include <string>
#include <vector>

/// "Bitstream_" and the like with the lowest number from 1 that none of the ids has.
std::string free_id(const std::string& prefix, const std::vector<std::string>& taken);

/// Prefixes of the ids that the tool gives.
inline constexpr const char* BITSTREAM_ID_PREFIX = "Bitstream_";
inline constexpr const char* RAW_FILE_ID_PREFIX = "Raw_File_";
inline constexpr const char* FLASH_DEVICE_ID_PREFIX = "Flash_Device_";

/// The word of the document for the kind of raw file that the extension stands for; empty for another file.
std::string raw_file_word(const std::string& path);

/// The ids of the bitstreams, or else the raw files, that hold the file of a path.
std::vector<std::string> bitstreams_of_path(const PGM_COMMON_XML_VEK_VEK& document, const std::string& path);
std::vector<std::string> raw_files_of_path(const PGM_COMMON_XML_VEK_VEK& document, const std::string& path);

/// Makes a list complete before it is used: where the id of an input is asked for, the path of one that the
/// document has stands for its id, and a bitstream or raw file that is given by its path alone gets the id
/// that it has, or a free one. False with a sentence when a path belongs to several.
bool complete_ids(const PGM_COMMON_XML_VEK_VEK& document, PGM_COMMON_XML_VEK_CMD_OPT_ENUM option,
                  VEK_FILE_ASSISTANT::PARAMS& params, std::string& message);

#endif
