// The properties that an input file can have, group by group. What applies to the file at hand is decided
// afterwards, so that all are created for any device.

#include "msg_internal_error.h"
#include "pgm_device.h"
#include "vek_db.h"
#include "vek_dlg_sof_properties.h"

#include <map>

namespace
{

using BROWSER = VEK_PROPERTY_BROWSER;
using PARAM = PGM_COMMON_XML_VEK_CMD_PARAM_ENUM;
using OPTIONS = std::map<unsigned int, QString>;

BROWSER::PROPERTY create_bool(PARAM param, const char* label)
{
    return BROWSER::create_bool_property(param, label, VEK_DB::get_description(param).c_str());
}

BROWSER::PROPERTY create_combo(PARAM param, const char* label, const OPTIONS& options)
{
    return BROWSER::create_combo_property(param, label, VEK_DB::get_description(param).c_str(), options);
}

BROWSER::PROPERTY create_file_edit(PARAM param, const char* label, FIO_FILE_TYPE file_type,
                                   QFileDialog::FileMode file_mode)
{
    return BROWSER::create_file_edit_property(param, label, VEK_DB::get_description(param).c_str(),
                                              {file_type}, file_mode);
}

} // namespace

void VEK_DLG_SOF_PROPERTIES::add_group(const QString& title, const std::vector<PROPERTY>& properties)
{
    const bool success = m_properties->add_property_group(title, properties);
    VEK_ASSERT_TEXT(success, "success");
}

void VEK_DLG_SOF_PROPERTIES::init_general_settings()
{
    add_group(tr("General settings"),
              {create_bool(VEK_CMD_PARAM_BITSTREAM_PATH_COMPRESSION, "Enable compression:"),
               create_bool(VEK_CMD_PARAM_BITSTREAM_PATH_ENHANCED_COMPRESSION, "Enable enhanced compression:"),
               create_bool(VEK_CMD_PARAM_BITSTREAM_PATH_DECOMPRESSION_DURING_PR,
                           "Enable decompression during partial reconfiguration:"),
               create_bool(VEK_CMD_PARAM_BITSTREAM_PATH_RSU_UPGRADE, "Generate RSU factory update image:"),
               create_bool(VEK_CMD_PARAM_RAW_FILE_BITSWAP, "Bit swap:")});
}

void VEK_DLG_SOF_PROPERTIES::init_hps_settings()
{
    add_group(tr("HPS settings"), {create_file_edit(VEK_CMD_PARAM_BITSTREAM_PATH_HPS_PATH, "Bootloader:",
                                                    FIO_HPS_BOOTLOADER_FILE, QFileDialog::ExistingFile)});
}

void VEK_DLG_SOF_PROPERTIES::init_signing_settings()
{
    const OPTIONS signing_options{{PGM_COMMON_XML_ENUM_OFF, tr("Off")}, {PGM_COMMON_XML_ENUM_ON, tr("On")}};
    add_group(
        tr("Signing tool settings"),
        {create_combo(VEK_CMD_PARAM_BITSTREAM_PATH_SIGNING, "Enable signing tool:", signing_options),
         create_file_edit(VEK_CMD_PARAM_BITSTREAM_PATH_SIGNING_PEM_FILE,
                          "Private key file:", fio_get_file_type(FIO_EXT_PEM), QFileDialog::ExistingFile),
         create_file_edit(VEK_CMD_PARAM_BITSTREAM_PATH_FW_SOURCE,
                          "Co-signed firmware:", fio_get_file_type(FIO_EXT_FW), QFileDialog::ExistingFile)});
}

void VEK_DLG_SOF_PROPERTIES::init_security_settings()
{
    // What a fuse has blown for good has no off state.
    const OPTIONS lasting_fuse_options{
        {PGM_COMMON_XML_ENUM_2, tr("2: Turns on until the next Power-On-Reset event")},
        {PGM_COMMON_XML_ENUM_3, tr("3: Turns on by blowing the corresponding fuses")}};
    OPTIONS fuse_options = lasting_fuse_options;
    fuse_options[PGM_COMMON_XML_ENUM_0] = tr("0: Off (unless by the OTP fuse option)");
    fuse_options[PGM_COMMON_XML_ENUM_1] = tr("1: Turns on until the next full configuration");

    std::vector<PROPERTY> properties{
        create_bool(VEK_CMD_PARAM_BITSTREAM_PATH_ENCRYPTION, "Enable encryption:"),
        create_bool(VEK_CMD_PARAM_BITSTREAM_PATH_DECRYPTION_DURING_PR,
                    "Enable decryption during partial reconfiguration:"),
        create_bool(VEK_CMD_PARAM_BITSTREAM_PATH_NON_VOLATILE_KEY, "Enable non volatile key:"),
        create_file_edit(VEK_CMD_PARAM_BITSTREAM_PATH_EKP_FILE, "Key programming file:", FIO_EKP_FILE,
                         QFileDialog::AnyFile),
        create_file_edit(VEK_CMD_PARAM_BITSTREAM_PATH_ELK_FILE, "Encryption lock file:", FIO_ELK_FILE,
                         QFileDialog::ExistingFile),
        create_file_edit(VEK_CMD_PARAM_BITSTREAM_PATH_KEY_FILE1, "Key file:", FIO_KEY_FILE,
                         QFileDialog::ExistingFile),
        BROWSER::create_key_entry_edit_property(
            VEK_CMD_PARAM_BITSTREAM_PATH_KEY1,
            "Key:", VEK_DB::get_description(VEK_CMD_PARAM_BITSTREAM_PATH_KEY1).c_str(), m_device->key_bits,
            QString())};
    const std::vector<std::pair<PARAM, const char*>> fuse_rows{
        {VEK_CMD_PARAM_BITSTREAM_PATH_SECURITY_OPT_EPOF_ONLY, "Only allow encrypted, authenticated POFs:"},
        {VEK_CMD_PARAM_BITSTREAM_PATH_SECURITY_OPT_NO_CONFIG, "Disable external full-configuration:"},
        {VEK_CMD_PARAM_BITSTREAM_PATH_SECURITY_OPT_NO_PR, "Disable external partial reconfiguration:"},
        {VEK_CMD_PARAM_BITSTREAM_PATH_SECURITY_OPT_NO_JTAG_KEY, "Disable key-related JTAG instructions:"},
        {VEK_CMD_PARAM_BITSTREAM_PATH_SECURITY_OPT_NO_JTAG_EXT, "Disable other extended JTAG instructions:"},
        {VEK_CMD_PARAM_BITSTREAM_PATH_SECURITY_OPT_NO_JTAG, "Force the external JTAG pins into BYPASS mode:"},
        {VEK_CMD_PARAM_BITSTREAM_PATH_SECURITY_OPT_NO_HPS_JTAG,
         "Force the internal HPS JTAG into BYPASS mode:"},
        {VEK_CMD_PARAM_BITSTREAM_PATH_SECURITY_OPT_NO_OTP_KEY,
         "Disable use of the non-volatile OTP fuse key:"},
        {VEK_CMD_PARAM_BITSTREAM_PATH_SECURITY_OPT_NO_BATTERY_KEY, "Disable use of the battery-backed key:"},
        {VEK_CMD_PARAM_BITSTREAM_PATH_SECURITY_OPT_LOCK_BATTERY_KEY,
         "Prevent the battery-backed key from being changed:"}};
    for (const auto& [param, label] : fuse_rows) {
        properties.push_back(create_combo(param, label, fuse_options));
    }
    properties.push_back(create_combo(VEK_CMD_PARAM_BITSTREAM_PATH_SECURITY_OPT_SECURE,
                                      "Enable other security measures:", lasting_fuse_options));
    add_group(tr("Security settings"), properties);
}

void VEK_DLG_SOF_PROPERTIES::init_encryption_settings()
{
    add_group(tr("Encryption settings"),
              {create_bool(VEK_CMD_PARAM_BITSTREAM_PATH_FINALIZE_ENCRYPTION, "Finalize encryption:"),
               create_file_edit(VEK_CMD_PARAM_BITSTREAM_PATH_AEK_FILE, "Encryption key file:",
                                fio_get_file_type(FIO_EXT_AEK), QFileDialog::ExistingFile)});
}
