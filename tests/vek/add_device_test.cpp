#include "cfg.h"
#include "config_device_fixture.h"
#include "pgm_device.h"
#include "vek_dlg_add_device.h"

#include <QDialogButtonBox>

namespace
{

class VEK_ADD_DEVICE : public CONFIG_DEVICE_FIXTURE
{
protected:
    static PGM_DEVICE record(const std::string& name, DEV_FAMILY_ENUM family,
                             DEV_CLASS_ENUM device_class = DEV_CLASS_CONFIG_FLASH)
    {
        PGM_DEVICE device;
        device.name = name;
        device.family = family;
        device.device_class = device_class;
        return device;
    }
    std::string offered(const std::vector<DEV_FAMILY_ENUM>& families)
    {
        const VEK_DLG_ADD_DEVICE dialog(families, DEV_FAMILY_BASALT, PGMIO_CONFIG_SCHEME_AS, nullptr);
        const auto* const combo = child<QComboBox>(dialog, "m_device_combo");
        QStringList names;
        for (int index = 0; index < combo->count(); ++index) {
            names << combo->itemText(index);
        }
        return names.join(' ').toStdString();
    }
    void use(const std::vector<PGM_DEVICE>& devices)
    {
        m_records = devices;
        std::vector<const PGM_DEVICE*> list;
        for (const PGM_DEVICE& device : m_records) {
            list.push_back(&device);
        }
        PGM_DEVICE_INDEX::override_device_list(list);
    }

    std::vector<PGM_DEVICE> m_records;
};

} // namespace

TEST_F(VEK_ADD_DEVICE, the_first_device_is_chosen_from_the_start)
{
    VEK_DLG_ADD_DEVICE dialog({DEV_FAMILY_SERIAL_A}, DEV_FAMILY_BASALT, PGMIO_CONFIG_SCHEME_AS, nullptr);
    EXPECT_EQ(window_title(dialog), QStringLiteral("Add Device"));
    EXPECT_FALSE(dialog.windowIcon().isNull());
    EXPECT_FALSE(dialog.isSizeGripEnabled());
    auto* const combo = child<QComboBox>(dialog, "m_device_combo");
    ASSERT_GT(combo->count(), 1);
    EXPECT_EQ(dialog.get_device_name(), combo->itemText(0).toStdString());
    combo->setCurrentIndex(1);
    EXPECT_EQ(dialog.get_device_name(), combo->itemText(1).toStdString());
    EXPECT_FALSE(combo->itemData(1).isValid());
    QTimer::singleShot(0, dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok), SLOT(click()));
    EXPECT_EQ(dialog.exec(), QDialog::Accepted);
}

TEST_F(VEK_ADD_DEVICE, an_empty_list_can_be_accepted_and_gives_an_empty_name)
{
    VEK_DLG_ADD_DEVICE dialog({}, DEV_FAMILY_BASALT, PGMIO_CONFIG_SCHEME_AS, nullptr);
    EXPECT_EQ(child<QComboBox>(dialog, "m_device_combo")->count(), 0);
    EXPECT_EQ(dialog.get_device_name(), "");
    EXPECT_TRUE(dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok)->isEnabled());
}

TEST_F(VEK_ADD_DEVICE, a_null_device_is_an_internal_error)
{
    PGM_DEVICE_INDEX::override_device_list(std::vector<const PGM_DEVICE*>{nullptr});
    EXPECT_INTERNAL_ERROR(VEK_DLG_ADD_DEVICE({}, DEV_FAMILY_BASALT, PGMIO_CONFIG_SCHEME_AS, nullptr),
                          "device != NULL");
}

TEST_F(VEK_ADD_DEVICE, the_order_of_the_index_stands_and_nothing_is_dropped_twice)
{
    use({record("Z", DEV_FAMILY_SERIAL_B), record("A", DEV_FAMILY_SERIAL_A),
         record("Z", DEV_FAMILY_SERIAL_A)});
    EXPECT_EQ(offered({DEV_FAMILY_SERIAL_A, DEV_FAMILY_SERIAL_B}), "Z A Z");
    EXPECT_EQ(offered({DEV_FAMILY_SERIAL_B}), "Z");
}

TEST_F(VEK_ADD_DEVICE, a_serial_device_has_to_be_made_for_configuration)
{
    use({record("Data", DEV_FAMILY_SERIAL_A, DEV_CLASS_DATA_FLASH), record("Config", DEV_FAMILY_SERIAL_A)});
    EXPECT_EQ(offered({DEV_FAMILY_SERIAL_A}), "Config");
}

TEST_F(VEK_ADD_DEVICE, a_family_that_carries_no_image_offers_nothing)
{
    use({record("Fpga", DEV_FAMILY_BASALT), record("Config", DEV_FAMILY_SERIAL_A)});
    EXPECT_EQ(offered({DEV_FAMILY_BASALT, DEV_FAMILY_GYPSUM}), "");
}

TEST_F(VEK_ADD_DEVICE, the_flags_decide_whether_the_queries_count)
{
    std::vector<PGM_DEVICE> devices(4, record("x", DEV_FAMILY_SERIAL_A));
    devices[0].name = "withdrawn";
    devices[0].release = DEV_RELEASE::WITHDRAWN;
    devices[1] = devices[0];
    devices[1].name = "withdrawn_and_asked";
    devices[1].ask_not_listed = true;
    devices[2].name = "jtag";
    devices[2].jtag_only = true;
    devices[3] = devices[2];
    devices[3].name = "jtag_and_asked";
    devices[3].ask_no_pof = true;
    use(devices);
    EXPECT_EQ(offered({DEV_FAMILY_SERIAL_A}), "withdrawn jtag");
}

TEST_F(VEK_ADD_DEVICE, parallel_flash_ends_in_a_small_b_and_the_largest_needs_its_key)
{
    std::vector<PGM_DEVICE> devices{record("CFI_1GB", DEV_FAMILY_CFI_FLASH, DEV_CLASS_PARALLEL_FLASH),
                                    record("CFI_4GB", DEV_FAMILY_CFI_FLASH, DEV_CLASS_PARALLEL_FLASH)};
    devices[1].device = DEV_DEVICE_CFI_4G;
    use(devices);
    EXPECT_EQ(offered({DEV_FAMILY_CFI_FLASH}), "CFI_1Gb");
    cfg_override("pgm_allow_cfi4g", "on");
    EXPECT_EQ(offered({DEV_FAMILY_CFI_FLASH}), "CFI_1Gb CFI_4Gb");
}

TEST_F(VEK_ADD_DEVICE, the_keys_of_the_special_family_are_crossed)
{
    std::vector<PGM_DEVICE> devices{record("special", DEV_FAMILY_SPECIAL_FLASH),
                                    record("plain", DEV_FAMILY_SPECIAL_FLASH)};
    devices[0].tsu_tessel = true;
    use(devices);
    EXPECT_EQ(offered({DEV_FAMILY_SPECIAL_FLASH}), "special");
    cfg_override("PGM_ALLOW_KELT_DEVICE", "off");
    EXPECT_EQ(offered({DEV_FAMILY_SPECIAL_FLASH}), "");
    cfg_override("PGM_ALLOW_TESSEL_DEVICE", "on");
    EXPECT_EQ(offered({DEV_FAMILY_SPECIAL_FLASH}), "plain");
    cfg_override("PGM_ALLOW_KELT_DEVICE", "on");
    EXPECT_EQ(offered({DEV_FAMILY_SPECIAL_FLASH}), "special plain");
}

TEST_F(VEK_ADD_DEVICE, a_small_serial_device_is_offered_when_it_is_made_and_a_loader_knows_it)
{
    std::vector<PGM_DEVICE> devices{record("known", DEV_FAMILY_ASC_SERIAL),
                                    record("unknown", DEV_FAMILY_ASC_SERIAL),
                                    record("old", DEV_FAMILY_ASC_SERIAL)};
    devices[0].flash_loader = true;
    devices[2].flash_loader = true;
    devices[2].release = DEV_RELEASE::WITHDRAWN;
    use(devices);
    EXPECT_EQ(offered({DEV_FAMILY_ASC_SERIAL}), "known");
}
