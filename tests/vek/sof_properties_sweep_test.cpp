#include "sof_properties_fixture.h"

#include <algorithm>
#include <sstream>

namespace
{

/// Which rows a file has at first, for every family, kind of input and output. Outputs that give the same
/// rows stand together.
class SOF_PROPERTIES_SWEEP : public SOF_PROPERTIES_FIXTURE
{
protected:
    using OUTPUTS = std::vector<VEK_FILE_TYPE>;

    struct INPUT {
        FIO_FILE_TYPE type;
        const char* name;
    };
    static constexpr INPUT BITSTREAMS[] = {
        {FIO_SOF_FILE, "SOF"}, {FIO_CSOF_FILE, "CSOF"}, {FIO_RSOF_FILE, "RSOF"}, {FIO_PMSF_FILE, "PMSF"}};
    static constexpr INPUT RAW_DATA[] = {{FIO_HEX_FILE, "HEX"},
                                         {FIO_RBF_FILE, "RBF"},
                                         {FIO_BIN_FILE, "BIN"},
                                         {FIO_PUF_FILE, "PUF"},
                                         {FIO_WKEY_FILE, "WKEY"}};
    static constexpr DEV_FAMILY_ENUM FAMILIES[] = {
        DEV_FAMILY_BASALT,   DEV_FAMILY_CALCITE, DEV_FAMILY_DOLOMITE, DEV_FAMILY_FELDSPAR,
        DEV_FAMILY_HEMATITE, DEV_FAMILY_GRANITE, DEV_FAMILY_ZIRCON,   DEV_FAMILY_GYPSUM};

    static std::string rows_of(DEV_FAMILY_ENUM family, FIO_FILE_TYPE input, const OUTPUTS& outputs)
    {
        std::string text;
        for (const PARAM param : make(family, input, outputs)->get_property_ids()) {
            text += " " + short_name(param);
        }
        return text.empty() ? " nothing" : text;
    }
    static std::string word(VEK_FILE_TYPE type)
    {
        return VEK_FILE_ASSISTANT::convert_xml_enum_to_string(VEK_DB::get_xml_enum(type));
    }
    /// The outputs by the rows that they leave, in the order of the first output of each.
    static std::vector<std::pair<std::string, OUTPUTS>> groups_of(DEV_FAMILY_ENUM family, FIO_FILE_TYPE input)
    {
        std::vector<std::pair<std::string, OUTPUTS>> groups;
        for (unsigned number = 0; number <= VEK_RIM_FILE_TYPE; ++number) {
            const auto type = static_cast<VEK_FILE_TYPE>(number);
            const std::string rows = rows_of(family, input, {type});
            const auto found = std::find_if(groups.begin(), groups.end(),
                                            [&rows](const auto& group) { return group.first == rows; });
            if (found == groups.end()) {
                groups.push_back({rows, {type}});
            } else {
                found->second.push_back(type);
            }
        }
        return groups;
    }
    /// The rows that most outputs leave, then those of the outputs that differ. Empty when there are none.
    static std::string text_of(DEV_FAMILY_ENUM family, const INPUT& input)
    {
        const auto groups = groups_of(family, input.type);
        const auto most =
            std::ranges::max_element(groups, {}, [](const auto& group) { return group.second.size(); });
        if (groups.size() == 1 && most->first == " nothing") {
            return {};
        }
        std::string text = (family == DEV_FAMILY_NONE ? "raw" : dstr_get_user_string(family)) + " " +
                           input.name + ":" + most->first + "\n";
        for (auto group = groups.begin(); group != groups.end(); ++group) {
            if (group != most) {
                text += " ";
                for (const VEK_FILE_TYPE type : group->second) {
                    text += " " + word(type);
                }
                text += ":" + group->first + "\n";
            }
        }
        return text;
    }
};

constexpr const char* TABLE = R"(
Basalt SOF: compression
Basalt PMSF: compression
Calcite SOF: ekp_file key1 non_volatile_key compression encryption elk_file key_file1
Calcite PMSF: key1 non_volatile_key compression encryption elk_file key_file1
  PRRBF: key1 non_volatile_key compression encryption elk_file decryption_during_pr decompression_during_pr key_file1
Feldspar SOF: signing finalize_encryption aek_file signing_pem_file fw_source
Feldspar PMSF: signing finalize_encryption aek_file signing_pem_file
Hematite SOF: signing finalize_encryption aek_file signing_pem_file fw_source
  RPD: signing finalize_encryption rsu_upgrade aek_file signing_pem_file fw_source
Hematite PMSF: signing finalize_encryption aek_file signing_pem_file
Granite SOF: ekp_file no_otp_key key1 enhanced_compression non_volatile_key lock_battery_key no_jtag_key no_battery_key no_jtag compression encryption elk_file no_config no_pr epof_only secure no_jtag_ext hps_path no_hps_jtag key_file1
Granite PMSF: key1 enhanced_compression non_volatile_key compression encryption elk_file key_file1
  PRRBF: key1 enhanced_compression non_volatile_key compression encryption elk_file decryption_during_pr decompression_during_pr key_file1
Zircon SOF: signing finalize_encryption aek_file signing_pem_file hps_path fw_source
  RPD: signing finalize_encryption rsu_upgrade aek_file signing_pem_file hps_path fw_source
Zircon PMSF: signing finalize_encryption aek_file signing_pem_file
raw HEX: bitswap
raw RBF: bitswap
raw BIN: bitswap
)";

} // namespace

TEST_F(SOF_PROPERTIES_SWEEP, every_family_input_and_output)
{
    std::string text = "\n";
    for (const DEV_FAMILY_ENUM family : FAMILIES) {
        for (const INPUT& input : BITSTREAMS) {
            text += text_of(family, input);
        }
    }
    for (const INPUT& input : RAW_DATA) {
        text += text_of(DEV_FAMILY_NONE, input);
    }
    EXPECT_EQ(text, TABLE);
}

TEST_F(SOF_PROPERTIES_SWEEP, of_two_outputs_both_have_to_take_a_property)
{
    for (const DEV_FAMILY_ENUM family : FAMILIES) {
        for (const INPUT& input : {BITSTREAMS[0], BITSTREAMS[3]}) {
            const auto groups = groups_of(family, input.type);
            for (const auto& [rows, outputs] : groups) {
                for (const auto& [other_rows, other_outputs] : groups) {
                    std::istringstream words(rows);
                    std::string expected;
                    for (std::string row; words >> row;) {
                        if ((other_rows + " ").find(" " + row + " ") != std::string::npos) {
                            expected += " " + row;
                        }
                    }
                    EXPECT_EQ(rows_of(family, input.type, {outputs.back(), other_outputs.front()}), expected)
                        << input.name << " " << word(outputs.back()) << " " << word(other_outputs.front());
                }
            }
        }
    }
}
