#include "config_device_fixture.h"
#include "nivo_hex_edit.h"
#include "vek_dlg_partition_properties.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>

namespace
{

using DLG = VEK_DLG_PARTITION_PROPERTIES;

class VEK_PARTITION_PROPERTIES : public CONFIG_DEVICE_FIXTURE
{
protected:
    VEK_PARTITION_PROPERTIES()
    {
        m_cache->max_bitstreams = 8;
        device("F1", "W25Q128JV");
        device("F2", "W25Q32JV");
        partition("F1", "P1");
        partition("F2", "Other");
        bitstream("Bitstream_1", {"/in/a.sof", "/in/b.sof"});
        raw_file("Raw_File_1", "HEX", "/in/a.hex");
        raw_file("Raw_File_2", "PUF", "/in/a.puf");
        raw_file("Raw_File_3", "RBF", "/in/a.rbf");
        raw_file("Raw_File_4", "WKEY", "/in/a.wkey");
    }
    std::unique_ptr<DLG> make(DLG::DLG_TYPE type, const std::string& name,
                              const std::string& device_id = "F1")
    {
        return std::make_unique<DLG>(type, m_vek, m_cache, name, device_id, nullptr);
    }
    static QComboBox* mode(const DLG& dialog) { return child<QComboBox>(dialog, "m_address_mode_combo"); }
    static QComboBox* input(const DLG& dialog) { return child<QComboBox>(dialog, "m_input_file_combo"); }
    static QComboBox* page(const DLG& dialog) { return child<QComboBox>(dialog, "m_page_combo"); }
    static QLineEdit* name(const DLG& dialog) { return child<QLineEdit>(dialog, "m_name_edit"); }
    static QLineEdit* start(const DLG& dialog) { return child<QLineEdit>(dialog, "m_start_addr_edit"); }
    static QLineEdit* end(const DLG& dialog) { return child<QLineEdit>(dialog, "m_end_addr_edit"); }
    static QPushButton* ok(const DLG& dialog)
    {
        return dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok);
    }
    static std::string items(const QComboBox& combo)
    {
        QStringList texts;
        for (int index = 0; index < combo.count(); ++index) {
            texts << combo.itemText(index);
        }
        return texts.join('|').toStdString();
    }
    static bool label_enabled(const QWidget& field)
    {
        for (auto* const form : field.window()->findChildren<QFormLayout*>()) {
            if (const QWidget* const label = form->labelForField(const_cast<QWidget*>(&field))) {
                return label->isEnabled();
            }
        }
        ADD_FAILURE() << "no label";
        return false;
    }
    /// Types a name and presses Ok. Whether the dialog was accepted; a refusal goes to `answers`.
    bool accepts(DLG::DLG_TYPE type, const std::string& old_name, const std::string& new_name)
    {
        const auto dialog = make(type, old_name);
        name(*dialog)->setText(QString::fromStdString(new_name));
        dialog->show();
        ok(*dialog)->click();
        const bool accepted = !dialog->isVisible() && dialog->result() == QDialog::Accepted;
        if (!accepted) {
            EXPECT_EQ(name(*dialog)->selectedText().toStdString(), new_name);
        }
        return accepted;
    }
    void expect_refused(DLG::DLG_TYPE type, const std::string& old_name, const std::string& new_name,
                        const std::string& reason)
    {
        MODAL_ANSWERS answers;
        answers.click(QMessageBox::Ok);
        EXPECT_FALSE(accepts(type, old_name, new_name)) << new_name;
        ASSERT_EQ(answers.boxes().size(), 1) << new_name;
        const MODAL_BOX& box = answers.boxes().at(0);
        EXPECT_EQ(box.title, QStringLiteral("Imagewright"));
        EXPECT_EQ(box.text.toStdString(), reason);
        EXPECT_EQ(box.informative_text, QStringLiteral("Choose a different name."));
        EXPECT_EQ(box.icon, QMessageBox::Warning);
    }
    static PARAMS reserved(bool fixed_start, bool fixed_end)
    {
        return {{VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_RESERVED, "1"},
                {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_FIXED_S_ADDR, fixed_start ? "1" : "0"},
                {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_FIXED_E_ADDR, fixed_end ? "1" : "0"}};
    }
};

} // namespace

TEST_F(VEK_PARTITION_PROPERTIES, a_new_partition_opens_in_auto_with_grey_addresses)
{
    const auto dialog = make(DLG::DLG_TYPE_ADD, "P2");
    EXPECT_EQ(dialog->windowTitle(), QStringLiteral("Add Partition"));
    EXPECT_FALSE(dialog->windowIcon().isNull());
    EXPECT_EQ(items(*mode(*dialog)), "Auto|Block|Start");
    EXPECT_EQ(mode(*dialog)->currentIndex(), 0);
    EXPECT_EQ(start(*dialog)->text(), QStringLiteral("0x00000000"));
    EXPECT_EQ(end(*dialog)->text(), QStringLiteral("0xFFFFFFFF"));
    for (const QWidget* const edit : {start(*dialog), end(*dialog)}) {
        EXPECT_FALSE(edit->isEnabled());
        EXPECT_FALSE(label_enabled(*edit));
    }
    EXPECT_EQ(dialog->get_start_address(), "auto");
    EXPECT_EQ(dialog->get_end_address(), "auto");
    EXPECT_EQ(dialog->get_name(), "P2");
    EXPECT_EQ(dialog->get_input_file(), nullptr);
    EXPECT_EQ(dialog->get_page(), 0U);
    EXPECT_TRUE(ok(*dialog)->isEnabled());
    EXPECT_EQ(items(*page(*dialog)), "0|1|2|3|4|5|6|7");
    EXPECT_EQ(dialog->findChild<QGroupBox*>()->title(), QStringLiteral("Address"));
    for (const auto type : {DLG::DLG_TYPE_EDIT, DLG::DLG_TYPE_UFM, DLG::DLG_TYPE_CFM}) {
        EXPECT_EQ(make(type, "P1")->windowTitle(), QStringLiteral("Edit Partition"));
    }
}

TEST_F(VEK_PARTITION_PROPERTIES, the_mode_decides_which_addresses_are_asked)
{
    const auto dialog = make(DLG::DLG_TYPE_ADD, "P2");
    mode(*dialog)->setCurrentIndex(1);
    EXPECT_TRUE(start(*dialog)->isEnabled());
    EXPECT_TRUE(label_enabled(*end(*dialog)));
    EXPECT_EQ(dialog->get_start_address(), "0x00000000");
    EXPECT_EQ(dialog->get_end_address(), "0xFFFFFFFF");
    end(*dialog)->clear();
    EXPECT_FALSE(ok(*dialog)->isEnabled());
    mode(*dialog)->setCurrentIndex(2);
    EXPECT_TRUE(ok(*dialog)->isEnabled()) << "no end is needed";
    EXPECT_EQ(dialog->get_end_address(), "auto");
    EXPECT_FALSE(end(*dialog)->isEnabled());
    start(*dialog)->clear();
    EXPECT_FALSE(ok(*dialog)->isEnabled());
    mode(*dialog)->setCurrentIndex(0);
    EXPECT_TRUE(ok(*dialog)->isEnabled());
    name(*dialog)->clear();
    EXPECT_FALSE(ok(*dialog)->isEnabled());
}

TEST_F(VEK_PARTITION_PROPERTIES, an_address_that_is_no_number_cannot_be_typed)
{
    const auto dialog = make(DLG::DLG_TYPE_ADD, "P2");
    dialog->show();
    mode(*dialog)->setCurrentIndex(2);
    start(*dialog)->clear();
    QTest::keyClicks(start(*dialog), QStringLiteral("zebra -1"));
    EXPECT_EQ(dialog->get_start_address(), "eba1") << "only the digits arrive";
    start(*dialog)->clear();
    QTest::keyClicks(start(*dialog), QStringLiteral("0x1234567890"));
    EXPECT_EQ(dialog->get_start_address(), "0x12345678");
    start(*dialog)->clear();
    QTest::keyClicks(start(*dialog), QStringLiteral("0x"));
    QFocusEvent out(QEvent::FocusOut);
    QCoreApplication::sendEvent(start(*dialog), &out);
    EXPECT_FALSE(ok(*dialog)->isEnabled()) << "a bare 0x is no number";
}

TEST_F(VEK_PARTITION_PROPERTIES, an_edited_partition_opens_in_the_mode_of_its_addresses)
{
    const struct {
        const char* from;
        const char* to;
        int mode;
        const char* start;
        const char* end;
    } cases[] = {
        {"auto", "auto", 0, "0x00000000", "0xFFFFFFFF"},
        {"0x1000", "0x1FFF", 1, "0x1000", "0x1FFF"},
        {"0x1000", "auto", 2, "0x1000", "0xFFFFFFFF"},
        {"auto", "0x1FFF", 0, "", ""},
    };
    for (const auto& row : cases) {
        partition("F1", "P1", row.from, row.to);
        const auto dialog = make(DLG::DLG_TYPE_EDIT, "P1");
        EXPECT_EQ(mode(*dialog)->currentIndex(), row.mode) << row.from << row.to;
        EXPECT_EQ(start(*dialog)->text(), QLatin1String(row.start));
        EXPECT_EQ(end(*dialog)->text(), QLatin1String(row.end));
        EXPECT_EQ(start(*dialog)->isEnabled(), row.mode != 0);
        EXPECT_EQ(end(*dialog)->isEnabled(), row.mode == 1);
    }
    EXPECT_INTERNAL_ERROR(make(DLG::DLG_TYPE_EDIT, "P1", "F2"), "partition != nullptr");
}

TEST_F(VEK_PARTITION_PROPERTIES, a_reserved_partition_with_a_fixed_start_lets_only_its_end_be_set)
{
    partition("F1", "FACTORY_IMAGE", "0x00240000", "auto", reserved(true, false));
    const auto dialog = make(DLG::DLG_TYPE_EDIT, "FACTORY_IMAGE");
    EXPECT_FALSE(name(*dialog)->isEnabled());
    EXPECT_FALSE(label_enabled(*name(*dialog)));
    EXPECT_FALSE(page(*dialog)->isEnabled());
    EXPECT_TRUE(input(*dialog)->isEnabled());
    EXPECT_EQ(mode(*dialog)->currentIndex(), 0);
    EXPECT_TRUE(mode(*dialog)->isEnabled());
    EXPECT_FALSE(start(*dialog)->isEnabled());
    EXPECT_EQ(dialog->get_start_address(), "0x00240000") << "the fixed text, also in auto";
    EXPECT_EQ(dialog->get_end_address(), "auto");
    mode(*dialog)->setCurrentIndex(1);
    EXPECT_FALSE(start(*dialog)->isEnabled());
    EXPECT_TRUE(end(*dialog)->isEnabled());
    mode(*dialog)->setCurrentIndex(2);
    EXPECT_FALSE(start(*dialog)->isEnabled());
    EXPECT_FALSE(end(*dialog)->isEnabled());
}

TEST_F(VEK_PARTITION_PROPERTIES, a_reserved_partition_with_both_addresses_fixed_keeps_them)
{
    partition("F1", "BOOT_INFO", "0x00000000", "0x001FFFFF", reserved(true, true));
    const auto dialog = make(DLG::DLG_TYPE_EDIT, "BOOT_INFO");
    for (const QWidget* const field :
         {static_cast<QWidget*>(mode(*dialog)), static_cast<QWidget*>(start(*dialog)),
          static_cast<QWidget*>(end(*dialog))}) {
        EXPECT_FALSE(field->isEnabled());
        EXPECT_FALSE(label_enabled(*field));
    }
    EXPECT_EQ(dialog->get_start_address(), "0x00000000");
    EXPECT_EQ(dialog->get_end_address(), "auto") << "a fixed end is not written anyway";
}

TEST_F(VEK_PARTITION_PROPERTIES, options_takes_no_input_file_and_may_be_moved)
{
    partition("F1", "OPTIONS", "0x00000000", "auto", reserved(false, false));
    const auto dialog = make(DLG::DLG_TYPE_EDIT, "OPTIONS");
    EXPECT_FALSE(input(*dialog)->isEnabled());
    EXPECT_FALSE(label_enabled(*input(*dialog)));
    EXPECT_EQ(mode(*dialog)->currentIndex(), 2);
    EXPECT_TRUE(start(*dialog)->isEnabled());
}

TEST_F(VEK_PARTITION_PROPERTIES, the_type_decides_which_inputs_are_offered)
{
    partition("F1", "CFM0", "0x0", "0xFFFF");
    partition("F1", "CFM1", "0x0", "0xFFFF");
    partition("F2", "CFM2", "0x0", "0xFFFF");
    EXPECT_EQ(items(*input(*make(DLG::DLG_TYPE_ADD, "P9"))), "None|Bitstream_1 (a.sof, b.sof)|a.hex|a.rbf");
    EXPECT_EQ(items(*input(*make(DLG::DLG_TYPE_EDIT, "P1"))), "None|Bitstream_1 (a.sof, b.sof)|a.hex|a.rbf");
    EXPECT_EQ(items(*input(*make(DLG::DLG_TYPE_CFM, "CFM0"))), "None|Bitstream_1 (a.sof, b.sof)");
    EXPECT_EQ(items(*input(*make(DLG::DLG_TYPE_UFM, "UFM"))), "CFM0|CFM1|a.hex|a.rbf");
}

TEST_F(VEK_PARTITION_PROPERTIES, on_chip_partitions_let_only_the_input_be_changed)
{
    partition("F1", "CFM0", "0x100", "0xFFFF");
    for (const auto type : {DLG::DLG_TYPE_CFM, DLG::DLG_TYPE_UFM}) {
        const auto dialog = make(type, "CFM0");
        EXPECT_FALSE(name(*dialog)->isEnabled());
        EXPECT_FALSE(label_enabled(*name(*dialog)));
        EXPECT_FALSE(page(*dialog)->isEnabled());
        EXPECT_FALSE(label_enabled(*page(*dialog)));
        EXPECT_FALSE(dialog->findChild<QGroupBox*>()->isEnabled());
        EXPECT_TRUE(input(*dialog)->isEnabled());
        EXPECT_EQ(dialog->get_start_address(), "auto") << "no address is read from the document";
        EXPECT_EQ(dialog->get_end_address(), "auto");
    }
}

TEST_F(VEK_PARTITION_PROPERTIES, a_page_belongs_to_bitstreams_alone)
{
    m_cache->max_bitstreams = 1;
    const auto dialog = make(DLG::DLG_TYPE_ADD, "P2");
    EXPECT_EQ(items(*page(*dialog)), "0");
    EXPECT_FALSE(page(*dialog)->isEnabled());
    input(*dialog)->setCurrentIndex(1);
    EXPECT_TRUE(page(*dialog)->isEnabled()) << "even with one page";
    EXPECT_TRUE(label_enabled(*page(*dialog)));
    m_cache->max_bitstreams = 4;
    const auto other = make(DLG::DLG_TYPE_ADD, "P2");
    input(*other)->setCurrentIndex(1);
    page(*other)->setCurrentIndex(3);
    input(*other)->setCurrentIndex(2);
    EXPECT_FALSE(page(*other)->isEnabled());
    EXPECT_EQ(other->get_page(), 3U) << "the old one";
    m_cache->max_bitstreams = 0;
    EXPECT_EQ(make(DLG::DLG_TYPE_ADD, "P2")->get_page(), 0U);
}

TEST_F(VEK_PARTITION_PROPERTIES, an_edited_partition_begins_with_its_page)
{
    assign("P1",
           {{VEK_CMD_PARAM_ASSIGNMENT_PAGE, "5"}, {VEK_CMD_PARAM_ASSIGNMENT_BITSTREAM_ID, "Bitstream_1"}});
    EXPECT_EQ(make(DLG::DLG_TYPE_EDIT, "P1")->get_page(), 5U);
    EXPECT_EQ(make(DLG::DLG_TYPE_CFM, "P1")->get_page(), 5U);
    EXPECT_EQ(make(DLG::DLG_TYPE_ADD, "P1")->get_page(), 0U);
    EXPECT_EQ(make(DLG::DLG_TYPE_UFM, "P1")->get_page(), 0U);
}

TEST_F(VEK_PARTITION_PROPERTIES, the_input_is_a_document_element)
{
    const auto dialog = make(DLG::DLG_TYPE_EDIT, "P1");
    const auto* const raw = VEK_FILE_ASSISTANT::get_raw_file_element(m_vek.get(), "Raw_File_3");
    dialog->set_input_file(raw);
    EXPECT_EQ(input(*dialog)->currentText(), QStringLiteral("a.rbf"));
    EXPECT_EQ(dialog->get_input_file(), raw);
    dialog->set_input_file(VEK_FILE_ASSISTANT::get_raw_file_element(m_vek.get(), "Raw_File_2"));
    EXPECT_EQ(input(*dialog)->currentIndex(), 0) << "not among the items";
    dialog->set_input_file(raw);
    dialog->set_input_file(nullptr);
    EXPECT_EQ(dialog->get_input_file(), nullptr);
    input(*dialog)->addItem(QStringLiteral("stray"), QStringLiteral("no pointer"));
    EXPECT_INTERNAL_ERROR(input(*dialog)->setCurrentIndex(input(*dialog)->count() - 1),
                          "data.canConvert<void*>()");
    EXPECT_INTERNAL_ERROR(dialog->get_input_file(), "data.canConvert<void*>()");
    input(*dialog)->setCurrentIndex(-1);
    EXPECT_EQ(dialog->get_input_file(), nullptr);
}

TEST_F(VEK_PARTITION_PROPERTIES, reserved_names_are_refused_for_new_names)
{
    for (const char* const name :
         {"BOOT_INFO", "FACTORY_IMAGE", "OPTIONS", "UFM", "PUF", "SPT0", "CPB", "CFM7"}) {
        expect_refused(DLG::DLG_TYPE_ADD, "P9", name, "Partition name is reserved.");
        expect_refused(DLG::DLG_TYPE_EDIT, "P1", name, "Partition name is reserved.");
    }
    for (const char* const name : {"UFM2", "PUF1", "BOOT_INFO2", "P 9", "spt0"}) {
        EXPECT_TRUE(accepts(DLG::DLG_TYPE_ADD, "P9", name)) << name;
        EXPECT_TRUE(accepts(DLG::DLG_TYPE_EDIT, "P1", name)) << name;
    }
}

TEST_F(VEK_PARTITION_PROPERTIES, a_name_is_unique_over_all_devices)
{
    expect_refused(DLG::DLG_TYPE_ADD, "P9", "Other", "Partition name already exists.");
    expect_refused(DLG::DLG_TYPE_ADD, "P9", "P1", "Partition name already exists.");
    expect_refused(DLG::DLG_TYPE_ADD, "P1", "P1", "Partition name already exists.");
    expect_refused(DLG::DLG_TYPE_EDIT, "P1", "Other", "Partition name already exists.");
    EXPECT_TRUE(accepts(DLG::DLG_TYPE_EDIT, "P1", "P1"));
}

TEST_F(VEK_PARTITION_PROPERTIES, a_reserved_name_may_be_kept)
{
    partition("F1", "SPT0", "auto", "auto");
    partition("F1", "CFM0", "0x0", "0xFF");
    EXPECT_TRUE(accepts(DLG::DLG_TYPE_EDIT, "SPT0", "SPT0"));
    EXPECT_TRUE(accepts(DLG::DLG_TYPE_CFM, "CFM0", "CFM0"));
    EXPECT_TRUE(accepts(DLG::DLG_TYPE_CFM, "CFM0", "CFM9")) << "no reserved check here";
    const auto dialog = make(DLG::DLG_TYPE_UFM, "CFM0");
    name(*dialog)->setText(QStringLiteral("Other"));
    dialog->show();
    MODAL_ANSWERS answers;
    ok(*dialog)->click();
    EXPECT_TRUE(dialog->isVisible()) << "stays open without a word";
    EXPECT_TRUE(answers.boxes().isEmpty());
}
