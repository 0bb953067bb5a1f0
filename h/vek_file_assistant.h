#ifndef VEK_FILE_ASSISTANT_H
#define VEK_FILE_ASSISTANT_H

#include "dset_oti_dev_options_info.h"
#include "pgm_common_xml_vek_auto_export.h"
#include "pgm_common_xml_vek_cmd_enum.h"
#include "pgmio_config_scheme.h"
#include "vek_file_type.h"

#include <string>
#include <utility>
#include <vector>

/// The one door to the setup document: finders, and a parameter interface that addresses every value by an
/// enumerator. The callers create no element and destroy none.
///
/// A parameter list is an ordered vector of parameters with their texts. Keys pick the element, the other
/// entries are values. Keys by option:
///
///     raw_file      RAW_FILE_ID
///     assignment    ASSIGNMENT_PARTITION_ID; for an input RAW_FILE_ID or BITSTREAM_ID in addition
///     settings      none
///     output_file   OUTPUT_FILE_TYPE; SECONDARY_FILE_TYPE, BITSTREAM_ID, FLASH_DEVICE_ID in addition
///     flash_loader  none
///     flash_device  FLASH_DEVICE_ID; PARTITION_ID, MBR_ID, MBR_PARTITION_ID in addition
///     bitstream     BITSTREAM_ID; BITSTREAM_PATH in addition
///
/// Lists come in document order. A finder that finds nothing returns null or an empty vector. Pointers stay
/// valid until their element is removed or the document goes. A null document is the internal error
/// "document != nullptr". No locks: one thread at a time.
class VEK_FILE_ASSISTANT
{
public:
    using PARAMS = std::vector<std::pair<PGM_COMMON_XML_VEK_CMD_PARAM_ENUM, std::string>>;

    // The parameter interface.

    /// The values of the element that the keys in `params` pick; empty when there is none, or when the list
    /// would make `set` fail. When `params` names values too (their texts do not matter), the answer has the
    /// parameters of `params` in their order, each with its value, one that lies in an element that does not
    /// exist left out. With keys alone it has all values of the element, secrets excepted, those of its
    /// single children (file options, say), and the texts of its lists (the ids of the bitstreams, say).
    static PARAMS get(const PGM_COMMON_XML_VEK_VEK* document, PGM_COMMON_XML_VEK_CMD_OPT_ENUM option,
                      const PARAMS& params);

    /// Stores the values, creating elements and groups that do not exist yet. The pairs apply in order and a
    /// value that occurs twice takes the last text, except that each id in a list adds to the list. On
    /// output_file an id is added to those that are there; on assignment the ids replace the inputs, which
    /// are one bitstream or any number of raw files. Values under a list follow the id that they belong to.
    /// False, and nothing changed: unknown option, a parameter of another option, a key that is missing or
    /// empty, a bool that is none, a word that the attribute does not know.
    static bool set(PGM_COMMON_XML_VEK_VEK* document, PGM_COMMON_XML_VEK_CMD_OPT_ENUM option,
                    const PARAMS& params);

    /// Removes the element that the keys pick, with its children; a group goes with its last child. What is
    /// not there is removed already. output_file with ids alone removes these links from every output, and
    /// with a type and ids from that output. assignment with inputs named removes those, and the assignment
    /// with the last of them. False as for `set`, and for a parameter that is no key; for flash_loader the
    /// name may be given, and another name than that in the document removes nothing.
    static bool remove(PGM_COMMON_XML_VEK_VEK* document, PGM_COMMON_XML_VEK_CMD_OPT_ENUM option,
                       const PARAMS& params);

    /// Renames a partition of a device and the assignment that names it. False when the device has no such
    /// partition, the new id is empty, or another partition of the document has it.
    static bool modify_partition_id(PGM_COMMON_XML_VEK_VEK* document, const std::string& new_id,
                                    const std::string& old_id, const std::string& flash_device_id);

    // Texts of values.

    static std::string convert_bool_to_string(bool value); ///< "1" or "0"
    /// True for "1", "on" and "true" in any letter case.
    static bool convert_string_to_bool(const std::string& text);
    static std::string convert_dword_to_string(unsigned value); ///< decimal
    static std::string convert_xml_enum_to_string(PGM_COMMON_XML_ENUM value);
    /// PGM_COMMON_XML_ENUM__INVALID__ for a text that is no row of the vocabulary.
    static PGM_COMMON_XML_ENUM convert_string_to_xml_enum(const std::string& text);

    // Settings and outputs.

    /// `mode` stays untouched when the document names none.
    static bool get_config_mode(const PGM_COMMON_XML_VEK_VEK* document, PGMIO_CONFIG_SCHEME& mode);
    /// True when there is a SETTINGS element; its directory may be empty.
    static bool get_custom_db_dir(const PGM_COMMON_XML_VEK_VEK* document, std::string& directory);
    static std::vector<VEK_FILE_TYPE> get_output_file_types(const PGM_COMMON_XML_VEK_VEK* document);
    /// Those that take flash devices, or else those that take bitstreams.
    static std::vector<VEK_FILE_TYPE> get_output_file_types(const PGM_COMMON_XML_VEK_VEK* document,
                                                            bool take_flash_devices);
    static std::vector<PGM_COMMON_XML_VEK_OUTPUT_FILE*>
    get_output_file_elements(const PGM_COMMON_XML_VEK_VEK* document);
    static PGM_COMMON_XML_VEK_FILE_OPTIONS*
    get_file_options_element(const PGM_COMMON_XML_VEK_OUTPUT_FILE* output_file);
    static PGM_COMMON_XML_VEK_FILE_OPTIONS*
    get_file_options_element(const PGM_COMMON_XML_VEK_SECONDARY_FILE* secondary_file);
    static std::vector<PGM_COMMON_XML_VEK_SECONDARY_FILE*>
    get_secondary_file_elements(const PGM_COMMON_XML_VEK_OUTPUT_FILE* output_file);

    // Inputs.

    static std::vector<PGM_COMMON_XML_VEK_BITSTREAM*>
    get_bitstream_elements(const PGM_COMMON_XML_VEK_VEK* document);
    static PGM_COMMON_XML_VEK_BITSTREAM* get_bitstream_element(const PGM_COMMON_XML_VEK_VEK* document,
                                                               const std::string& bitstream_id);
    static std::vector<std::string> get_bitstream_ids(const PGM_COMMON_XML_VEK_VEK* document);
    static std::vector<PGM_COMMON_XML_VEK_PATH*> get_path_elements(const PGM_COMMON_XML_VEK_VEK* document,
                                                                   const std::string& bitstream_id);
    static PGM_COMMON_XML_VEK_PATH* get_path_element(const PGM_COMMON_XML_VEK_VEK* document,
                                                     const std::string& bitstream_id,
                                                     const std::string& file_path);
    static std::vector<PGM_COMMON_XML_VEK_RAW_FILE*>
    get_raw_file_elements(const PGM_COMMON_XML_VEK_VEK* document);
    static PGM_COMMON_XML_VEK_RAW_FILE* get_raw_file_element(const PGM_COMMON_XML_VEK_VEK* document,
                                                             const std::string& raw_file_id);
    static std::vector<std::string> get_raw_file_ids(const PGM_COMMON_XML_VEK_VEK* document);
    /// PGM_COMMON_XML_ENUM_BITSTREAM or _RAW_FILE, PGM_COMMON_XML_ENUM__INVALID__ when no input has the id.
    static PGM_COMMON_XML_ENUM get_input_file_type(const PGM_COMMON_XML_VEK_VEK* document,
                                                   const std::string& input_id);

    // Assignments.

    static PGM_COMMON_XML_VEK_ASSIGNMENT* get_assignment_element(const PGM_COMMON_XML_VEK_VEK* document,
                                                                 const std::string& partition_id);
    static PGM_COMMON_XML_VEK_BITSTREAM_ID* get_bitstream_id_element(const PGM_COMMON_XML_VEK_VEK* document,
                                                                     const std::string& partition_id);
    /// The first raw file of the assignment.
    static PGM_COMMON_XML_VEK_RAW_FILE_ID* get_raw_file_id_element(const PGM_COMMON_XML_VEK_VEK* document,
                                                                   const std::string& partition_id);
    static std::vector<PGM_COMMON_XML_VEK_RAW_FILE_ID*>
    get_raw_file_id_elements(const PGM_COMMON_XML_VEK_VEK* document, const std::string& partition_id);
    /// The partitions whose assignment names the bitstream or the raw file; one of the two ids is empty.
    static std::vector<std::string> get_partition_ids(const PGM_COMMON_XML_VEK_VEK* document,
                                                      const std::string& bitstream_id,
                                                      const std::string& raw_file_id);

    // Flash devices.

    static std::vector<std::string> get_flash_device_ids(const PGM_COMMON_XML_VEK_VEK* document);
    static PGM_COMMON_XML_VEK_FLASH_DEVICE* get_flash_device_element(const PGM_COMMON_XML_VEK_VEK* document,
                                                                     const std::string& flash_device_id);
    static std::vector<PGM_COMMON_XML_VEK_FLASH_DEVICE*>
    get_flash_device_elements(const PGM_COMMON_XML_VEK_VEK* document);
    static std::vector<PGM_COMMON_XML_VEK_FLASH_LOADER*>
    get_flash_loader_elements(const PGM_COMMON_XML_VEK_VEK* document);
    /// Searched in all devices, the partitions within an MBR included.
    static PGM_COMMON_XML_VEK_PARTITION* get_partition_element(const PGM_COMMON_XML_VEK_VEK* document,
                                                               const std::string& partition_id);
    static PGM_COMMON_XML_VEK_PARTITION* get_partition_element(const PGM_COMMON_XML_VEK_VEK* document,
                                                               const std::string& flash_device_id,
                                                               const std::string& partition_id);
    /// The partitions that stand directly under the device, those within an MBR left out.
    static std::vector<PGM_COMMON_XML_VEK_PARTITION*>
    get_partition_elements(const PGM_COMMON_XML_VEK_VEK* document, const std::string& flash_device_id);
    static std::vector<PGM_COMMON_XML_VEK_MBR*> get_mbr_elements(const PGM_COMMON_XML_VEK_VEK* document,
                                                                 const std::string& flash_device_id);
    /// Fills the record from the device; fields that the document does not hold, and numbers that are none,
    /// stay as they are. False when there is no such device.
    static bool get_internal_configuration_options(const PGM_COMMON_XML_VEK_VEK* document,
                                                   DSET_OTI_DEV_OPTIONS_INFO& options,
                                                   const std::string& flash_device_id);
};

#endif
