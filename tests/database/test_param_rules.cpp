#include "database_words.h"
#include "vek_db.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>

namespace
{

using PARAM = PGM_COMMON_XML_VEK_CMD_PARAM_ENUM;

/// A file whose properties are looked at.
struct SCENE {
    const FAMILY_ROW* family; ///< null for raw data
    FIO_FILE_TYPE input;
    std::vector<VEK_FILE_TYPE> outputs;
    bool hidden_switch = false;
};

bool is_bitstream_param(PARAM param)
{
    return pgm_common_xml_vek_cmd_opt_of(param) == VEK_CMD_OPT_BITSTREAM;
}

bool passes_family(PARAM param, const SCENE& scene)
{
    if (scene.family == nullptr) {
        return true;
    }
    const DEV_FAMILY_ENUM family = scene.family->family;
    const bool listed = VEK_DB::get_supported_family(param).empty()
                            ? !VEK_DB::supports_excluded_family(param, family)
                            : VEK_DB::supports_supported_family(param, family);
    return listed || (scene.hidden_switch && VEK_DB::supports_hidden_supported_family(param, family));
}

/// Whether the properties dialog shows the parameter, by its rules.
bool is_shown(PARAM param, const SCENE& scene)
{
    const bool has_property = scene.family != nullptr
                                  ? is_bitstream_param(param) || param == VEK_CMD_PARAM_RAW_FILE_BITSWAP
                                  : param == VEK_CMD_PARAM_RAW_FILE_BITSWAP ||
                                        param == VEK_CMD_PARAM_BITSTREAM_PATH_COMPRESSION ||
                                        param == VEK_CMD_PARAM_BITSTREAM_PATH_ENHANCED_COMPRESSION ||
                                        param == VEK_CMD_PARAM_BITSTREAM_PATH_DECOMPRESSION_DURING_PR ||
                                        param == VEK_CMD_PARAM_BITSTREAM_PATH_RSU_UPGRADE;
    if (!has_property || !VEK_DB::get_enabled(param) || !VEK_DB_UTIL::param_enabled_by_ini(param) ||
        !passes_family(param, scene)) {
        return false;
    }
    if (!VEK_DB::get_supported_input_file_type(param).empty() &&
        !VEK_DB::supports_supported_input_file_type(param, scene.input)) {
        return false;
    }
    return VEK_DB::get_supported_output_file_type(param).empty() ||
           std::ranges::all_of(scene.outputs, [param](VEK_FILE_TYPE type) {
               return VEK_DB::supports_supported_output_file_type(param, type);
           });
}

std::vector<PARAM> shown_params(const SCENE& scene)
{
    std::vector<PARAM> params = all_params();
    std::erase_if(params, [&scene](PARAM param) { return !is_shown(param, scene); });
    return params;
}

/// The parameters as text, those of the security options that only differ in their tail by the tail.
std::string shown_text(const SCENE& scene)
{
    std::string text;
    for (const PARAM param : shown_params(scene)) {
        std::string name = word(param);
        for (const std::string head : {"path_", "security_opt_"}) {
            if (name.starts_with(head)) {
                name.erase(0, head.size());
            }
        }
        text += " " + name;
    }
    return text.empty() ? " nothing" : text;
}

const std::vector<std::vector<VEK_FILE_TYPE>> OUTPUT_SETS{
    {VEK_RBF_FILE_TYPE}, {VEK_RPD_FILE_TYPE}, {VEK_RPD_FILE_TYPE, VEK_POF_FILE_TYPE}, {VEK_PRRBF_FILE_TYPE}};

std::vector<SCENE> all_scenes()
{
    std::vector<SCENE> scenes;
    for (const FAMILY_ROW* family : fpga_rows()) {
        for (const FIO_FILE_TYPE input : {FIO_SOF_FILE, FIO_PMSF_FILE}) {
            for (const std::vector<VEK_FILE_TYPE>& outputs : OUTPUT_SETS) {
                for (const bool hidden_switch : {false, true}) {
                    scenes.push_back({family, input, outputs, hidden_switch});
                }
            }
        }
    }
    return scenes;
}

std::string name_of(const SCENE& scene)
{
    return std::string(scene.family->name) + (scene.hidden_switch ? "*" : "") +
           (scene.input == FIO_SOF_FILE ? " SOF " : " PMSF ") + joined(scene.outputs);
}

// What the properties dialog shows for each family, input and set of outputs. A star marks the hidden switch;
// its line stands only where it makes a difference.
constexpr const char* SHOWN = R"(
Basalt SOF RBF: compression
Basalt SOF RPD: compression
Basalt SOF RPD POF: compression
Basalt PMSF PRRBF: compression
Calcite SOF RBF: ekp_file key1 non_volatile_key compression encryption elk_file key_file1
Calcite* SOF RBF: ekp_file no_otp_key key1 non_volatile_key lock_battery_key no_jtag_key no_battery_key no_jtag compression encryption elk_file no_config no_pr epof_only secure no_jtag_ext key_file1
Calcite SOF RPD: ekp_file key1 non_volatile_key compression encryption elk_file key_file1
Calcite* SOF RPD: ekp_file no_otp_key key1 non_volatile_key lock_battery_key no_jtag_key no_battery_key no_jtag compression encryption elk_file no_config no_pr epof_only secure no_jtag_ext key_file1
Calcite SOF RPD POF: ekp_file key1 non_volatile_key compression encryption elk_file key_file1
Calcite* SOF RPD POF: ekp_file no_otp_key key1 non_volatile_key lock_battery_key no_jtag_key no_battery_key no_jtag compression encryption elk_file no_config no_pr epof_only secure no_jtag_ext key_file1
Calcite PMSF PRRBF: key1 non_volatile_key compression encryption elk_file decryption_during_pr decompression_during_pr key_file1
Dolomite SOF RBF: nothing
Dolomite SOF RPD: nothing
Dolomite SOF RPD POF: nothing
Dolomite PMSF PRRBF: nothing
Feldspar SOF RBF: signing finalize_encryption aek_file signing_pem_file fw_source
Feldspar SOF RPD: signing finalize_encryption aek_file signing_pem_file fw_source
Feldspar* SOF RPD: signing finalize_encryption rsu_upgrade aek_file signing_pem_file fw_source
Feldspar SOF RPD POF: signing finalize_encryption aek_file signing_pem_file fw_source
Feldspar PMSF PRRBF: signing finalize_encryption aek_file signing_pem_file
Hematite SOF RBF: signing finalize_encryption aek_file signing_pem_file fw_source
Hematite* SOF RBF: signing finalize_encryption aek_file signing_pem_file hps_path fw_source
Hematite SOF RPD: signing finalize_encryption rsu_upgrade aek_file signing_pem_file fw_source
Hematite* SOF RPD: signing finalize_encryption rsu_upgrade aek_file signing_pem_file hps_path fw_source
Hematite SOF RPD POF: signing finalize_encryption aek_file signing_pem_file fw_source
Hematite* SOF RPD POF: signing finalize_encryption aek_file signing_pem_file hps_path fw_source
Hematite PMSF PRRBF: signing finalize_encryption aek_file signing_pem_file
Granite SOF RBF: ekp_file no_otp_key key1 enhanced_compression non_volatile_key lock_battery_key no_jtag_key no_battery_key no_jtag compression encryption elk_file no_config no_pr epof_only secure no_jtag_ext hps_path no_hps_jtag key_file1
Granite SOF RPD: ekp_file no_otp_key key1 enhanced_compression non_volatile_key lock_battery_key no_jtag_key no_battery_key no_jtag compression encryption elk_file no_config no_pr epof_only secure no_jtag_ext hps_path no_hps_jtag key_file1
Granite SOF RPD POF: ekp_file no_otp_key key1 enhanced_compression non_volatile_key lock_battery_key no_jtag_key no_battery_key no_jtag compression encryption elk_file no_config no_pr epof_only secure no_jtag_ext hps_path no_hps_jtag key_file1
Granite PMSF PRRBF: key1 enhanced_compression non_volatile_key compression encryption elk_file decryption_during_pr decompression_during_pr key_file1
Onyx SOF RBF: compression
Onyx SOF RPD: compression
Onyx SOF RPD POF: compression
Onyx PMSF PRRBF: compression
Zircon SOF RBF: signing finalize_encryption aek_file signing_pem_file hps_path fw_source
Zircon SOF RPD: signing finalize_encryption rsu_upgrade aek_file signing_pem_file hps_path fw_source
Zircon SOF RPD POF: signing finalize_encryption aek_file signing_pem_file hps_path fw_source
Zircon PMSF PRRBF: signing finalize_encryption aek_file signing_pem_file
Gypsum SOF RBF: nothing
Gypsum SOF RPD: nothing
Gypsum SOF RPD POF: nothing
Gypsum PMSF PRRBF: nothing
)";

TEST(param_rules, every_file_shows_the_properties_that_stand_here)
{
    std::string text;
    std::string without_switch;
    for (const SCENE& scene : all_scenes()) {
        const bool partial = scene.outputs.front() == VEK_PRRBF_FILE_TYPE;
        if (partial != (scene.input == FIO_PMSF_FILE)) {
            continue; // no output takes both
        }
        const std::string shown = shown_text(scene);
        if (!scene.hidden_switch) {
            without_switch = shown;
        } else if (shown == without_switch) {
            continue;
        }
        text += "\n" + name_of(scene) + ":" + shown;
    }
    EXPECT_EQ(text + "\n", SHOWN);
}

TEST(param_rules, raw_data_shows_the_bit_swap_alone)
{
    for (const FIO_FILE_TYPE input : {FIO_HEX_FILE, FIO_RBF_FILE, FIO_BIN_FILE}) {
        EXPECT_EQ(shown_text({nullptr, input, {VEK_POF_FILE_TYPE}}), " bitswap");
    }
    EXPECT_EQ(shown_text({nullptr, FIO_PUF_FILE, {VEK_POF_FILE_TYPE}}), " nothing");
}

TEST(param_rules, a_bitstream_has_no_bit_swap)
{
    for (const SCENE& scene : all_scenes()) {
        EXPECT_FALSE(is_shown(VEK_CMD_PARAM_RAW_FILE_BITSWAP, scene)) << name_of(scene);
    }
}

TEST(param_rules, every_parameter_of_the_dialog_is_shown_somewhere_without_a_hidden_switch)
{
    for (const PARAM param : all_params()) {
        if (is_bitstream_param(param) && VEK_DB::get_enabled(param)) {
            const std::vector<SCENE> scenes = all_scenes();
            EXPECT_TRUE(std::ranges::any_of(scenes, [param](const SCENE& scene) {
                return !scene.hidden_switch && is_shown(param, scene);
            })) << word(param);
        }
    }
}

TEST(param_rules, what_is_shown_can_be_reached_through_a_parent_that_is_shown)
{
    for (const SCENE& scene : all_scenes()) {
        for (const PARAM param : shown_params(scene)) {
            const std::vector<PARAM> parents = VEK_DB::get_dependent_param(param);
            EXPECT_TRUE(
                parents.empty() ||
                std::ranges::any_of(parents, [&scene](PARAM parent) { return is_shown(parent, scene); }))
                << name_of(scene) << " " << word(param);
        }
    }
}

/// The dialog's full pass over the dependencies, on values that a user has set.
class DEPENDENCY_PASS
{
public:
    DEPENDENCY_PASS(const SCENE& scene, std::set<PARAM> set)
        : m_shown(shown_params(scene)), m_set(std::move(set))
    {
        for (const PARAM param : m_shown) {
            m_enabled[param] = true;
        }
    }

    void run()
    {
        for (const PARAM param : m_shown) {
            const std::vector<PARAM> parents = VEK_DB::get_dependent_param(param);
            if (parents.empty()) {
                continue;
            }
            PARAM last = parents.front();
            bool state = false;
            for (const PARAM parent : parents) {
                last = parent;
                state = is_set(parent);
                if (state) {
                    break;
                }
            }
            for (const PARAM child : children_of(last)) {
                set_enabled(child, state);
            }
        }
    }

    const std::map<PARAM, bool>& enabled() const { return m_enabled; }

    /// What the user should meet: a property is open when one of its parents is set and itself open.
    bool should_be_enabled(PARAM param) const
    {
        const std::vector<PARAM> parents = VEK_DB::get_dependent_param(param);
        return parents.empty() || std::ranges::any_of(parents, [this](PARAM parent) {
                   return is_set(parent) && should_be_enabled(parent);
               });
    }

private:
    bool is_set(PARAM param) const
    {
        return std::ranges::find(m_shown, param) != m_shown.end() && m_set.contains(param);
    }

    std::vector<PARAM> children_of(PARAM parent) const
    {
        std::vector<PARAM> children = m_shown;
        std::erase_if(children,
                      [parent](PARAM param) { return !VEK_DB::supports_dependent_param(param, parent); });
        return children;
    }

    void set_enabled(PARAM param, bool enabled)
    {
        m_enabled[param] = enabled;
        if (!enabled) {
            for (const PARAM child : children_of(param)) {
                set_enabled(child, false);
            }
        }
    }

    std::vector<PARAM> m_shown;
    std::set<PARAM> m_set;
    std::map<PARAM, bool> m_enabled;
};

TEST(param_rules, one_full_pass_settles_and_gives_what_the_parents_allow)
{
    const std::vector<PARAM> parents{
        VEK_CMD_PARAM_BITSTREAM_PATH_COMPRESSION, VEK_CMD_PARAM_BITSTREAM_PATH_ENHANCED_COMPRESSION,
        VEK_CMD_PARAM_BITSTREAM_PATH_ENCRYPTION, VEK_CMD_PARAM_BITSTREAM_PATH_SIGNING,
        VEK_CMD_PARAM_BITSTREAM_PATH_FINALIZE_ENCRYPTION};
    for (const PARAM param : all_params()) {
        for (const PARAM parent : VEK_DB::get_dependent_param(param)) {
            ASSERT_NE(std::ranges::find(parents, parent), parents.end()) << word(parent);
        }
    }
    for (const SCENE& scene : all_scenes()) {
        for (unsigned choice = 0; choice < 1U << parents.size(); ++choice) {
            std::set<PARAM> set;
            for (unsigned i = 0; i < parents.size(); ++i) {
                if ((choice >> i & 1U) != 0) {
                    set.insert(parents[i]);
                }
            }
            DEPENDENCY_PASS pass(scene, set);
            pass.run();
            const std::map<PARAM, bool> first = pass.enabled();
            for (const auto& [param, enabled] : first) {
                EXPECT_EQ(enabled, pass.should_be_enabled(param))
                    << name_of(scene) << " " << word(param) << " " << choice;
            }
            pass.run();
            EXPECT_EQ(pass.enabled(), first) << name_of(scene) << " " << choice;
        }
    }
}

} // namespace
