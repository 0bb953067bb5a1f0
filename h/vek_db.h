#ifndef VEK_DB_H
#define VEK_DB_H

#include "dev_family_enum.h"
#include "fio_types.h"
#include "pgm_common_xml_enum.h"
#include "pgm_common_xml_vek_cmd_enum.h"
#include "pgmio_config_scheme.h"
#include "vek_file_type.h"

#include <string>
#include <vector>

/// What the tool can produce, and from what: three read-only tables (output file types, command parameters,
/// configuration modes), asked by key. Every answer is a value that may be kept, any thread may ask, and the
/// `supports_` operations cost a bit test. A key that is in no table is an internal error: "key is in table".
class VEK_DB
{
public:
    // Output file types.

    /// All keys of the table, ascending, those included that are switched off or for the command line only.
    static std::vector<VEK_FILE_TYPE> get_all_output_file_type_keys();
    /// The word under which the type stands in the document.
    static PGM_COMMON_XML_ENUM get_xml_enum(VEK_FILE_TYPE type);
    /// Text of the row in the output tree, distinct among the types: the rows are sorted by it.
    static std::string get_description(VEK_FILE_TYPE type);
    static std::string get_tooltip(VEK_FILE_TYPE type);
    /// False hides the type altogether.
    static bool get_enabled(VEK_FILE_TYPE type);
    /// True: available on the command line only.
    static bool get_cmd_only(VEK_FILE_TYPE type);
    /// True: the file is a child of another output file.
    static bool get_secondary(VEK_FILE_TYPE type);
    /// True: a group row without a file of its own.
    static bool get_virtual_type(VEK_FILE_TYPE type);
    /// True: the type has options to edit.
    static bool get_has_option(VEK_FILE_TYPE type);
    static FIO_EXTENSION_TYPE get_fio_ext_enum(VEK_FILE_TYPE type);
    /// Text added to the base name of the file.
    static std::string get_file_name_suffix(VEK_FILE_TYPE type);
    /// Text added to the base name of the files under this one.
    static std::string get_child_file_name_suffix(VEK_FILE_TYPE type);
    /// The types of the rows under this one.
    static std::vector<VEK_FILE_TYPE> get_secondary_file_type(VEK_FILE_TYPE type);
    /// True: a flash loader device must be chosen.
    static bool get_require_flash_loader(VEK_FILE_TYPE type);
    /// True: as a child the type follows when its parent is ticked.
    static bool get_default_checked_state(VEK_FILE_TYPE type);
    /// True when the type does not exist for the family.
    static bool supports_excluded_family(VEK_FILE_TYPE type, DEV_FAMILY_ENUM family);

    // Configuration modes, 0 to 25.

    /// The word of the mode in the document; the on-chip schemes 15 to 19 stand there as INTERNAL. A mode
    /// that no document can name is an internal error: "mode has a document word".
    static PGM_COMMON_XML_ENUM get_xml_enum(PGMIO_CONFIG_SCHEME mode);
    /// The flash families usable in the mode, ascending; empty when no flash device applies.
    static std::vector<DEV_FAMILY_ENUM> get_config_device_family(PGMIO_CONFIG_SCHEME mode);
    /// Whether the mode offers the type; the illegal scheme offers nothing.
    static bool supports_output_file_type(PGMIO_CONFIG_SCHEME mode, VEK_FILE_TYPE type);

    // Command parameters.

    /// A sentence for labels and tooltips, distinct among the parameters.
    static std::string get_description(PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param);
    /// False removes the parameter from the dialogs.
    static bool get_enabled(PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param);
    /// The families that know the parameter; an empty list means that this test does not apply.
    static std::vector<DEV_FAMILY_ENUM> get_supported_family(PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param);
    static bool supports_supported_family(PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param, DEV_FAMILY_ENUM family);
    /// The families in which the parameter does not apply.
    static std::vector<DEV_FAMILY_ENUM> get_excluded_family(PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param);
    static bool supports_excluded_family(PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param, DEV_FAMILY_ENUM family);
    /// The families in which a parameter otherwise refused is offered under a hidden switch.
    static std::vector<DEV_FAMILY_ENUM> get_hidden_supported_family(PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param);
    static bool supports_hidden_supported_family(PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param,
                                                 DEV_FAMILY_ENUM family);
    /// The kinds of input file that have the parameter; empty means all.
    static std::vector<FIO_FILE_TYPE> get_supported_input_file_type(PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param);
    static bool supports_supported_input_file_type(PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param,
                                                   FIO_FILE_TYPE file_type);
    /// The output types that go with the parameter; empty means all.
    static std::vector<VEK_FILE_TYPE> get_supported_output_file_type(PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param);
    static bool supports_supported_output_file_type(PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param,
                                                    VEK_FILE_TYPE type);
    /// The parameters of which one must be set for this one to be of use, in the order of their tests.
    static std::vector<PGM_COMMON_XML_VEK_CMD_PARAM_ENUM>
    get_dependent_param(PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param);
    static bool supports_dependent_param(PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param,
                                         PGM_COMMON_XML_VEK_CMD_PARAM_ENUM other);
    /// The values of a parent with several values that enable this parameter.
    static std::vector<PGM_COMMON_XML_ENUM>
    get_dependent_param_enum_value(PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param);
    /// True when the two exclude each other; the order does not matter.
    static bool supports_exclusive_param(PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param,
                                         PGM_COMMON_XML_VEK_CMD_PARAM_ENUM other);
};

/// Answers over sets of keys of VEK_DB. Lists of types may hold a type twice.
class VEK_DB_UTIL
{
public:
    /// The tool works with FPGAs of this family.
    static bool is_supported_family(DEV_FAMILY_ENUM family);
    /// A family of configuration devices, not of FPGAs.
    static bool is_configuration_family(DEV_FAMILY_ENUM family);
    /// The modes on offer, in the order of the mode combo.
    static std::vector<PGMIO_CONFIG_SCHEME> get_enabled_config_modes();
    /// Inverse of VEK_DB::get_xml_enum; VEK_INVALID_FILE_TYPE for a word that names no output type.
    static VEK_FILE_TYPE get_vek_file_type_enum(PGM_COMMON_XML_ENUM word);
    /// Inverse of VEK_DB::get_xml_enum for modes, with INTERNAL giving the mode that the combo offers;
    /// PGMIO_CONFIG_SCHEME_ILLEGAL for a word that names no mode.
    static PGMIO_CONFIG_SCHEME get_config_scheme_enum(PGM_COMMON_XML_ENUM word);
    /// Some row lists the type among its secondary file types.
    static bool has_parent(VEK_FILE_TYPE type);
    static bool is_supported_file_category(VEK_FILE_TYPE type, VEK_FILE_CATEGORY category);
    /// Those of `types` that are neither secondary nor virtual, in their order.
    static std::vector<VEK_FILE_TYPE> get_primary_file_types(const std::vector<VEK_FILE_TYPE>& types);
    /// The categories common to all, ascending; empty for an empty list or when there is none.
    static std::vector<VEK_FILE_CATEGORY> get_common_file_categories(const std::vector<VEK_FILE_TYPE>& types);
    /// The kinds of input file that all of them accept, ascending; empty for an empty list.
    static std::vector<FIO_FILE_TYPE> get_common_input_file_types(const std::vector<VEK_FILE_TYPE>& types);
    /// The flash families that all of them can go to, ascending; empty for an empty list.
    static std::vector<DEV_FAMILY_ENUM>
    get_common_config_device_families(const std::vector<VEK_FILE_TYPE>& types);
    /// Whether the configuration leaves the parameter in the dialogs: the key
    /// "vek_param_<option>_<parameter>" in the names of the command line
    /// ("vek_param_bitstream_path_compression") switches one off.
    static bool param_enabled_by_ini(PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param);
};

#endif
