#include "cfg.h"
#include "pgm_common_ini.h"
#include "sof_properties_fixture.h"

#include <QComboBox>

#include <algorithm>
#include <map>
#include <set>

namespace
{

/// What the parameter table means on the screen, family by family, through the dialog itself.
class SOF_PROPERTIES_TABLE : public SOF_PROPERTIES_FIXTURE
{
protected:
    struct SCENE {
        DEV_FAMILY_ENUM family;
        FIO_FILE_TYPE input;
        std::vector<VEK_FILE_TYPE> outputs;
    };

    static std::string name_of(const SCENE& scene)
    {
        std::string text =
            dstr_get_user_string(scene.family) + (scene.input == FIO_SOF_FILE ? " SOF" : " PMSF");
        for (const VEK_FILE_TYPE type : scene.outputs) {
            text += " " + VEK_FILE_ASSISTANT::convert_xml_enum_to_string(VEK_DB::get_xml_enum(type));
        }
        return text;
    }

    static std::vector<SCENE> all_scenes()
    {
        std::vector<SCENE> scenes;
        for (const DEV_FAMILY_ENUM family :
             {DEV_FAMILY_BASALT, DEV_FAMILY_CALCITE, DEV_FAMILY_DOLOMITE, DEV_FAMILY_FELDSPAR,
              DEV_FAMILY_HEMATITE, DEV_FAMILY_GRANITE, DEV_FAMILY_ZIRCON, DEV_FAMILY_GYPSUM}) {
            for (const auto& outputs : std::vector<std::vector<VEK_FILE_TYPE>>{
                     {VEK_RBF_FILE_TYPE}, {VEK_RPD_FILE_TYPE}, {VEK_RPD_FILE_TYPE, VEK_POF_FILE_TYPE}, {}}) {
                scenes.push_back({family, FIO_SOF_FILE, outputs});
            }
            scenes.push_back({family, FIO_PMSF_FILE, {VEK_PRRBF_FILE_TYPE}});
        }
        return scenes;
    }

    static std::map<PARAM, bool> enabled_of(const VEK_DLG_SOF_PROPERTIES& dialog)
    {
        std::map<PARAM, bool> enabled;
        for (const PARAM param : dialog.get_property_ids()) {
            enabled[param] = is_enabled(dialog, param);
        }
        return enabled;
    }

    /// The visible parameters, those disabled in brackets.
    static std::string state_text(const VEK_DLG_SOF_PROPERTIES& dialog)
    {
        std::string text;
        for (const auto& [param, enabled] : enabled_of(dialog)) {
            text += enabled ? " " + short_name(param) : " (" + short_name(param) + ")";
        }
        return text.empty() ? " nothing" : text;
    }

    /// The visible switches: bool rows and combos of two words that start with one that is off.
    static std::vector<PARAM> switches_of(const VEK_DLG_SOF_PROPERTIES& dialog)
    {
        std::vector<PARAM> params = dialog.get_property_ids();
        std::erase_if(params, [&dialog](PARAM param) {
            const auto type = browser(dialog)->get_property(param).type;
            return type != VEK_PROPERTY_BROWSER::TYPE_BOOL_COMBO &&
                   param != VEK_CMD_PARAM_BITSTREAM_PATH_SIGNING;
        });
        return params;
    }

    /// What turning a switch on opens (+) and closes (-).
    static std::string change_text(const VEK_DLG_SOF_PROPERTIES& dialog, PARAM param)
    {
        const std::map<PARAM, bool> before = enabled_of(dialog);
        choose(dialog, param, 1);
        std::string text;
        for (const auto& [other, enabled] : enabled_of(dialog)) {
            if (enabled != before.at(other)) {
                text += (enabled ? " +" : " -") + short_name(other);
            }
        }
        return text;
    }

    /// Line by line: what is there at first, and what each switch in reach does to it.
    static std::string scene_text(const SCENE& scene)
    {
        const DIALOG first = make(scene.family, scene.input, scene.outputs);
        std::string text = "\n" + name_of(scene) + ":" + state_text(*first);
        for (const PARAM param : switches_of(*first)) {
            const DIALOG dialog = make(scene.family, scene.input, scene.outputs);
            if (!is_enabled(*dialog, param) && is_visible(*dialog, VEK_CMD_PARAM_BITSTREAM_PATH_SIGNING)) {
                choose(*dialog, VEK_CMD_PARAM_BITSTREAM_PATH_SIGNING, 1);
            }
            const std::string change = change_text(*dialog, param);
            text += change.empty() ? "" : "\n    " + short_name(param) + ":" + change;
        }
        return text;
    }
};

constexpr const char* TABLE = R"(
Basalt SOF RBF: compression
Basalt SOF RPD: compression
Basalt SOF RPD POF: compression
Basalt SOF: compression
Basalt PMSF PRRBF: compression
Calcite SOF RBF: (ekp_file) (key1) (non_volatile_key) compression encryption (elk_file) (key_file1)
    encryption: +ekp_file +key1 +non_volatile_key +elk_file +key_file1
Calcite SOF RPD: (ekp_file) (key1) (non_volatile_key) compression encryption (elk_file) (key_file1)
    encryption: +ekp_file +key1 +non_volatile_key +elk_file +key_file1
Calcite SOF RPD POF: (ekp_file) (key1) (non_volatile_key) compression encryption (elk_file) (key_file1)
    encryption: +ekp_file +key1 +non_volatile_key +elk_file +key_file1
Calcite SOF: (ekp_file) (key1) (non_volatile_key) compression encryption (elk_file) (key_file1)
    encryption: +ekp_file +key1 +non_volatile_key +elk_file +key_file1
Calcite PMSF PRRBF: (key1) (non_volatile_key) compression encryption (elk_file) (decryption_during_pr) (decompression_during_pr) (key_file1)
    compression: +decompression_during_pr
    encryption: +key1 +non_volatile_key +elk_file +decryption_during_pr +key_file1
Dolomite SOF RBF: nothing
Dolomite SOF RPD: nothing
Dolomite SOF RPD POF: nothing
Dolomite SOF: nothing
Dolomite PMSF PRRBF: nothing
Feldspar SOF RBF: signing (finalize_encryption) (aek_file) (signing_pem_file) (fw_source)
    signing: +finalize_encryption +signing_pem_file +fw_source
    finalize_encryption: +aek_file
Feldspar SOF RPD: signing (finalize_encryption) (aek_file) (signing_pem_file) (fw_source)
    signing: +finalize_encryption +signing_pem_file +fw_source
    finalize_encryption: +aek_file
Feldspar SOF RPD POF: signing (finalize_encryption) (aek_file) (signing_pem_file) (fw_source)
    signing: +finalize_encryption +signing_pem_file +fw_source
    finalize_encryption: +aek_file
Feldspar SOF: signing (finalize_encryption) (aek_file) (signing_pem_file) (fw_source)
    signing: +finalize_encryption +signing_pem_file +fw_source
    finalize_encryption: +aek_file
Feldspar PMSF PRRBF: signing (finalize_encryption) (aek_file) (signing_pem_file)
    signing: +finalize_encryption +signing_pem_file
    finalize_encryption: +aek_file
Hematite SOF RBF: signing (finalize_encryption) (aek_file) (signing_pem_file) (fw_source)
    signing: +finalize_encryption +signing_pem_file +fw_source
    finalize_encryption: +aek_file
Hematite SOF RPD: signing (finalize_encryption) rsu_upgrade (aek_file) (signing_pem_file) (fw_source)
    signing: +finalize_encryption +signing_pem_file +fw_source
    finalize_encryption: +aek_file
Hematite SOF RPD POF: signing (finalize_encryption) (aek_file) (signing_pem_file) (fw_source)
    signing: +finalize_encryption +signing_pem_file +fw_source
    finalize_encryption: +aek_file
Hematite SOF: signing (finalize_encryption) rsu_upgrade (aek_file) (signing_pem_file) (fw_source)
    signing: +finalize_encryption +signing_pem_file +fw_source
    finalize_encryption: +aek_file
Hematite PMSF PRRBF: signing (finalize_encryption) (aek_file) (signing_pem_file)
    signing: +finalize_encryption +signing_pem_file
    finalize_encryption: +aek_file
Granite SOF RBF: (ekp_file) (no_otp_key) (key1) enhanced_compression (non_volatile_key) (lock_battery_key) (no_jtag_key) (no_battery_key) (no_jtag) compression encryption (elk_file) (no_config) (no_pr) (epof_only) (secure) (no_jtag_ext) hps_path (no_hps_jtag) (key_file1)
    enhanced_compression: -compression
    compression: -enhanced_compression
    encryption: +ekp_file +no_otp_key +key1 +non_volatile_key +lock_battery_key +no_jtag_key +no_battery_key +no_jtag +elk_file +no_config +no_pr +epof_only +secure +no_jtag_ext +no_hps_jtag +key_file1
Granite SOF RPD: (ekp_file) (no_otp_key) (key1) enhanced_compression (non_volatile_key) (lock_battery_key) (no_jtag_key) (no_battery_key) (no_jtag) compression encryption (elk_file) (no_config) (no_pr) (epof_only) (secure) (no_jtag_ext) hps_path (no_hps_jtag) (key_file1)
    enhanced_compression: -compression
    compression: -enhanced_compression
    encryption: +ekp_file +no_otp_key +key1 +non_volatile_key +lock_battery_key +no_jtag_key +no_battery_key +no_jtag +elk_file +no_config +no_pr +epof_only +secure +no_jtag_ext +no_hps_jtag +key_file1
Granite SOF RPD POF: (ekp_file) (no_otp_key) (key1) enhanced_compression (non_volatile_key) (lock_battery_key) (no_jtag_key) (no_battery_key) (no_jtag) compression encryption (elk_file) (no_config) (no_pr) (epof_only) (secure) (no_jtag_ext) hps_path (no_hps_jtag) (key_file1)
    enhanced_compression: -compression
    compression: -enhanced_compression
    encryption: +ekp_file +no_otp_key +key1 +non_volatile_key +lock_battery_key +no_jtag_key +no_battery_key +no_jtag +elk_file +no_config +no_pr +epof_only +secure +no_jtag_ext +no_hps_jtag +key_file1
Granite SOF: (ekp_file) (no_otp_key) (key1) enhanced_compression (non_volatile_key) (lock_battery_key) (no_jtag_key) (no_battery_key) (no_jtag) compression encryption (elk_file) (no_config) (no_pr) (epof_only) (secure) (no_jtag_ext) hps_path (no_hps_jtag) (key_file1)
    enhanced_compression: -compression
    compression: -enhanced_compression
    encryption: +ekp_file +no_otp_key +key1 +non_volatile_key +lock_battery_key +no_jtag_key +no_battery_key +no_jtag +elk_file +no_config +no_pr +epof_only +secure +no_jtag_ext +no_hps_jtag +key_file1
Granite PMSF PRRBF: (key1) enhanced_compression (non_volatile_key) compression encryption (elk_file) (decryption_during_pr) (decompression_during_pr) (key_file1)
    enhanced_compression: -compression +decompression_during_pr
    compression: -enhanced_compression +decompression_during_pr
    encryption: +key1 +non_volatile_key +elk_file +decryption_during_pr +key_file1
Zircon SOF RBF: signing (finalize_encryption) (aek_file) (signing_pem_file) hps_path (fw_source)
    signing: +finalize_encryption +signing_pem_file +fw_source
    finalize_encryption: +aek_file
Zircon SOF RPD: signing (finalize_encryption) rsu_upgrade (aek_file) (signing_pem_file) hps_path (fw_source)
    signing: +finalize_encryption +signing_pem_file +fw_source
    finalize_encryption: +aek_file
Zircon SOF RPD POF: signing (finalize_encryption) (aek_file) (signing_pem_file) hps_path (fw_source)
    signing: +finalize_encryption +signing_pem_file +fw_source
    finalize_encryption: +aek_file
Zircon SOF: signing (finalize_encryption) rsu_upgrade (aek_file) (signing_pem_file) hps_path (fw_source)
    signing: +finalize_encryption +signing_pem_file +fw_source
    finalize_encryption: +aek_file
Zircon PMSF PRRBF: signing (finalize_encryption) (aek_file) (signing_pem_file)
    signing: +finalize_encryption +signing_pem_file
    finalize_encryption: +aek_file
Gypsum SOF RBF: nothing
Gypsum SOF RPD: nothing
Gypsum SOF RPD POF: nothing
Gypsum SOF: nothing
Gypsum PMSF PRRBF: nothing
)";

TEST_F(SOF_PROPERTIES_TABLE, every_file_shows_and_opens_what_stands_here)
{
    std::string text;
    std::string last;
    for (const SCENE& scene : all_scenes()) {
        text += scene_text(scene);
    }
    EXPECT_EQ(text + "\n", TABLE);
}

TEST_F(SOF_PROPERTIES_TABLE, a_second_full_pass_changes_nothing_and_everything_visible_can_be_reached)
{
    for (const bool hidden_switch : {false, true}) {
        cfg_override(PGM_COMMON_INI::encrypted_boolean_key(PGM_COMMON_INI::HIDDEN_PARAMETERS),
                     hidden_switch ? "on" : "off");
        for (const SCENE& scene : all_scenes()) {
            const DIALOG dialog = make(scene.family, scene.input, scene.outputs);
            const std::vector<PARAM> switches = switches_of(*dialog);
            ASSERT_LT(switches.size(), 8U);
            std::set<PARAM> reached;
            for (unsigned choice = 0; choice < 1U << switches.size(); ++choice) {
                for (std::size_t i = 0; i < switches.size(); ++i) {
                    choose(*dialog, switches[i], (choice >> i & 1U) != 0 ? 1 : 0);
                }
                dialog->check_dependent_properties();
                const std::map<PARAM, bool> first = enabled_of(*dialog);
                dialog->check_dependent_properties();
                EXPECT_EQ(enabled_of(*dialog), first) << name_of(scene) << " " << choice;
                for (const auto& [param, enabled] : first) {
                    if (enabled) {
                        reached.insert(param);
                    }
                }
            }
            EXPECT_EQ(reached.size(), dialog->get_property_ids().size()) << name_of(scene);
        }
    }
}

TEST_F(SOF_PROPERTIES_TABLE, a_loaded_file_stands_as_if_the_user_had_set_it)
{
    for (const SCENE& scene : all_scenes()) {
        const DIALOG clicked = make(scene.family, scene.input, scene.outputs);
        const std::vector<PARAM> switches = switches_of(*clicked);
        for (unsigned choice = 0; choice < 1U << switches.size(); ++choice) {
            const DIALOG loaded = make(scene.family, scene.input, scene.outputs);
            VEK_DLG_SOF_PROPERTIES::VALUES values;
            for (std::size_t i = 0; i < switches.size(); ++i) {
                const bool on = (choice >> i & 1U) != 0;
                const bool is_signing = switches[i] == VEK_CMD_PARAM_BITSTREAM_PATH_SIGNING;
                values.emplace_back(switches[i], is_signing ? (on ? "ON" : "OFF") : (on ? "1" : "0"));
                choose(*clicked, switches[i], on ? 1 : 0);
            }
            loaded->set_property_values(values);
            loaded->check_dependent_properties();
            clicked->check_dependent_properties();
            for (const auto& [param, enabled] : enabled_of(*loaded)) {
                // Of two that exclude each other and are both on, the order of the clicks decides.
                if (!VEK_DB::supports_exclusive_param(param, VEK_CMD_PARAM_BITSTREAM_PATH_COMPRESSION) &&
                    !VEK_DB::supports_exclusive_param(param,
                                                      VEK_CMD_PARAM_BITSTREAM_PATH_ENHANCED_COMPRESSION)) {
                    EXPECT_EQ(enabled, is_enabled(*clicked, param))
                        << name_of(scene) << " " << short_name(param);
                }
            }
        }
    }
}

} // namespace
