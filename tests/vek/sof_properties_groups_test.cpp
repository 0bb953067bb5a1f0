#include "sof_properties_fixture.h"
#include "vek_db.h"
#include "vek_file_edit.h"
#include "vek_key_entry_edit.h"

#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QToolButton>
#include <QVBoxLayout>

namespace
{

class SOF_PROPERTIES_GROUPS : public SOF_PROPERTIES_FIXTURE
{
protected:
    /// How a row looks: its number, label, and what can be chosen.
    static std::string row_text(VEK_PROPERTY_BROWSER& rows, const QGridLayout& grid, int row)
    {
        const auto* const label = qobject_cast<QLabel*>(grid.itemAtPosition(row, 0)->widget());
        QWidget* const widget = grid.itemAtPosition(row, 1)->widget();
        const std::uint32_t id = rows.get_id_by_widget(widget);
        EXPECT_EQ(label->toolTip().toStdString(), VEK_DB::get_description(static_cast<PARAM>(id)));
        std::string text = std::to_string(id) + " " + label->text().toStdString();
        if (const auto* const combo = qobject_cast<QComboBox*>(widget)) {
            text += rows.get_property(id).type == VEK_PROPERTY_BROWSER::TYPE_BOOL_COMBO ? " bool" : "";
            for (int item = 0; item < combo->count(); ++item) {
                text += " | " + combo->itemText(item).toStdString();
            }
        } else if (auto* const edit = qobject_cast<VEK_FILE_EDIT*>(widget)) {
            NIVO_NATIVE_FILE_DLG::reject_next();
            edit->browse();
            const NIVO_NATIVE_FILE_DLG::QUESTION& question = NIVO_NATIVE_FILE_DLG::last_question();
            text += " file " + question.name_filters.join(QStringLiteral("; ")).toStdString() +
                    (question.file_mode == QFileDialog::AnyFile ? " any" : "") +
                    (question.file_mode == QFileDialog::ExistingFile ? " existing" : "");
        } else if (qobject_cast<VEK_KEY_ENTRY_EDIT*>(widget) != nullptr) {
            text += " key";
        }
        return text;
    }

    static std::string groups_text(const VEK_DLG_SOF_PROPERTIES& dialog)
    {
        std::string text;
        VEK_PROPERTY_BROWSER* const rows = browser(dialog);
        for (int entry = 0; entry < rows->layout()->count(); ++entry) {
            const auto* const group = qobject_cast<QGroupBox*>(rows->layout()->itemAt(entry)->widget());
            text += "\n" + group->title().toStdString();
            const auto* const grid = qobject_cast<QGridLayout*>(group->layout());
            for (int row = 1; row < grid->rowCount(); ++row) {
                text += "\n  " + row_text(*rows, *grid, row);
            }
        }
        return text + "\n";
    }
};

constexpr const char* GENERAL = R"(
General settings
  117 Enable compression: bool | Off | On
  107 Enable enhanced compression: bool | Off | On
  133 Enable decompression during partial reconfiguration: bool | Off | On
  121 Generate RSU factory update image: bool | Off | On
  2 Bit swap: bool | Off | On
)";

#define FUSE                                                                                                 \
    " | 0: Off (unless by the OTP fuse option) | 1: Turns on until the next full configuration"              \
    " | 2: Turns on until the next Power-On-Reset event | 3: Turns on by blowing the corresponding fuses\n"

const std::string ALL =
    std::string(GENERAL) +
    R"(HPS settings
  136 Bootloader: file HPS Bootloader Files (*.hex) existing
Signing tool settings
  100 Enable signing tool: | Off | On
  134 Private key file: file Private Key Files (*.pem) existing
  139 Co-signed firmware: file Co-Signed Firmware Files (*.fw) existing
Security settings
  118 Enable encryption: bool | Off | On
  123 Enable decryption during partial reconfiguration: bool | Off | On
  108 Enable non volatile key: bool | Off | On
  101 Key programming file: file Key Programming Files (*.ekp) any
  119 Encryption lock file: file Encryption Lock Files (*.elk) existing
  138 Key file: file Encryption Key Files (*.key) existing
  104 Key: key
)"
    "  127 Only allow encrypted, authenticated POFs:" FUSE "  124 Disable external full-configuration:" FUSE
    "  126 Disable external partial reconfiguration:" FUSE "  110 Disable key-related JTAG instructions:" FUSE
    "  132 Disable other extended JTAG instructions:" FUSE
    "  115 Force the external JTAG pins into BYPASS mode:" FUSE
    "  137 Force the internal HPS JTAG into BYPASS mode:" FUSE
    "  102 Disable use of the non-volatile OTP fuse key:" FUSE
    "  111 Disable use of the battery-backed key:" FUSE
    "  109 Prevent the battery-backed key from being changed:" FUSE
    R"(  128 Enable other security measures: | 2: Turns on until the next Power-On-Reset event | 3: Turns on by blowing the corresponding fuses
Encryption settings
  113 Finalize encryption: bool | Off | On
  130 Encryption key file: file AES Key Files (*.aek) existing
)";

TEST_F(SOF_PROPERTIES_GROUPS, every_device_has_all_groups_and_rows_of_which_some_are_hidden)
{
    EXPECT_EQ(groups_text(*make(DEV_FAMILY_BASALT, FIO_SOF_FILE)), ALL);
    EXPECT_EQ(groups_text(*make(DEV_FAMILY_GRANITE, FIO_SOF_FILE)), ALL);
}

TEST_F(SOF_PROPERTIES_GROUPS, without_a_device_there_are_general_settings_alone)
{
    for (const FIO_FILE_TYPE type : {FIO_HEX_FILE, FIO_RBF_FILE, FIO_SOF_FILE}) {
        EXPECT_EQ(groups_text(*make(DEV_FAMILY_NONE, type)), GENERAL);
    }
}

TEST_F(SOF_PROPERTIES_GROUPS, a_combo_gives_the_word_of_its_option)
{
    const DIALOG granite = make(DEV_FAMILY_GRANITE, FIO_SOF_FILE);
    constexpr auto EPOF_ONLY = VEK_CMD_PARAM_BITSTREAM_PATH_SECURITY_OPT_EPOF_ONLY;
    constexpr auto SECURE = VEK_CMD_PARAM_BITSTREAM_PATH_SECURITY_OPT_SECURE;
    for (int item = 0; item < 4; ++item) {
        choose(*granite, EPOF_ONLY, item);
        EXPECT_EQ(value(*granite, EPOF_ONLY), std::to_string(item));
    }
    EXPECT_EQ(value(*granite, SECURE), "2") << "there is no off state";
    choose(*granite, SECURE, 1);
    EXPECT_EQ(value(*granite, SECURE), "3");
    const DIALOG zircon = make(DEV_FAMILY_ZIRCON, FIO_SOF_FILE);
    EXPECT_EQ(value(*zircon, VEK_CMD_PARAM_BITSTREAM_PATH_SIGNING), "OFF");
    choose(*zircon, VEK_CMD_PARAM_BITSTREAM_PATH_SIGNING, 1);
    EXPECT_EQ(value(*zircon, VEK_CMD_PARAM_BITSTREAM_PATH_SIGNING), "ON");
}

TEST_F(SOF_PROPERTIES_GROUPS, the_key_row_takes_the_key_length_of_the_device)
{
    PGM_DEVICE device = *device_of(DEV_FAMILY_CALCITE);
    device.key_bits = 128;
    VEK_DLG_SOF_PROPERTIES dialog(&device, FIO_SOF_FILE, {}, nullptr, Qt::WindowFlags());
    auto* const key_edit =
        qobject_cast<VEK_KEY_ENTRY_EDIT*>(editor(dialog, VEK_CMD_PARAM_BITSTREAM_PATH_KEY1));
    write_file(m_directory / "a.key", "alpha " + std::string(32, 'A') + "\n");
    key_edit->populate_key_combo(QString::fromStdString(m_directory / "a.key"));
    EXPECT_EQ(key_edit->get_key(), QStringLiteral("alpha"));
    device.key_bits = 127;
    EXPECT_INTERNAL_ERROR(VEK_DLG_SOF_PROPERTIES(&device, FIO_SOF_FILE, {}, nullptr, Qt::WindowFlags()),
                          "(n_key_bits % 4) == 0");
}

} // namespace
