#include "config_device_fixture.h"
#include "vek_dlg_puf_partition_properties.h"

#include <QDialogButtonBox>

namespace
{

using DLG = VEK_DLG_PUF_PARTITION_PROPERTIES;

class VEK_PUF_PARTITION : public CONFIG_DEVICE_FIXTURE
{
protected:
    static QComboBox* puf(const DLG& dialog) { return child<QComboBox>(dialog, "m_puf_file_combo"); }
    static QComboBox* wkey(const DLG& dialog) { return child<QComboBox>(dialog, "m_wkey_file_combo"); }
    const PGM_COMMON_XML_ELEMENT* file(const std::string& id) const
    {
        return VEK_FILE_ASSISTANT::get_raw_file_element(m_vek.get(), id);
    }
    void files()
    {
        // The types do not matter: the extension decides.
        raw_file("Raw_File_1", "HEX", "/in/a.puf");
        raw_file("Raw_File_2", "PUF", "/in/b.wkey");
        raw_file("Raw_File_3", "PUF", "/in/c.rbf");
    }
};

} // namespace

TEST_F(VEK_PUF_PARTITION, without_raw_files_there_is_only_none)
{
    DLG dialog(m_vek, "PUF", nullptr);
    EXPECT_EQ(window_title(dialog), QStringLiteral("Edit Partition"));
    EXPECT_FALSE(dialog.windowIcon().isNull());
    for (const QComboBox* const combo : {puf(dialog), wkey(dialog)}) {
        ASSERT_EQ(combo->count(), 1);
        EXPECT_EQ(combo->itemText(0), QStringLiteral("None"));
        EXPECT_EQ(combo->minimumWidth(), 200);
    }
    EXPECT_FALSE(wkey(dialog)->isEnabled());
    EXPECT_EQ(child<QLineEdit>(dialog, "m_name_edit")->text(), QStringLiteral("PUF"));
    EXPECT_FALSE(child<QLineEdit>(dialog, "m_name_edit")->isEnabled());
    QTimer::singleShot(0, dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok), SLOT(click()));
    EXPECT_EQ(dialog.exec(), QDialog::Accepted);
    EXPECT_EQ(dialog.get_puf_file(), nullptr);
    EXPECT_EQ(dialog.get_wkey_file(), nullptr);
}

TEST_F(VEK_PUF_PARTITION, a_file_is_listed_by_its_extension)
{
    files();
    const DLG dialog(m_vek, "PUF", nullptr);
    ASSERT_EQ(puf(dialog)->count(), 2);
    EXPECT_EQ(puf(dialog)->itemText(1), QStringLiteral("a.puf"));
    ASSERT_EQ(wkey(dialog)->count(), 2);
    EXPECT_EQ(wkey(dialog)->itemText(1), QStringLiteral("b.wkey"));
}

TEST_F(VEK_PUF_PARTITION, a_wkey_file_means_something_only_with_a_puf_file)
{
    files();
    DLG dialog(m_vek, "PUF", nullptr);
    dialog.set_puf_file(file("Raw_File_1"));
    EXPECT_TRUE(wkey(dialog)->isEnabled());
    dialog.set_wkey_file(file("Raw_File_2"));
    EXPECT_EQ(dialog.get_puf_file(), file("Raw_File_1"));
    EXPECT_EQ(dialog.get_wkey_file(), file("Raw_File_2"));
    puf(dialog)->setCurrentIndex(0);
    EXPECT_FALSE(wkey(dialog)->isEnabled());
    EXPECT_EQ(dialog.get_wkey_file(), nullptr) << "whatever is selected";
    EXPECT_EQ(wkey(dialog)->currentIndex(), 1);
}

TEST_F(VEK_PUF_PARTITION, a_stored_wkey_file_without_a_puf_file_is_dropped)
{
    files();
    DLG dialog(m_vek, "PUF", nullptr);
    dialog.set_puf_file(nullptr);
    dialog.set_wkey_file(file("Raw_File_2"));
    EXPECT_EQ(wkey(dialog)->currentIndex(), 1);
    EXPECT_EQ(dialog.get_wkey_file(), nullptr);
    dialog.set_wkey_file(file("Raw_File_3"));
    EXPECT_EQ(wkey(dialog)->currentIndex(), 0) << "not among the items";
    puf(dialog)->setCurrentIndex(-1);
    EXPECT_EQ(dialog.get_puf_file(), nullptr);
    puf(dialog)->addItem(QStringLiteral("stray"), 7.5);
    EXPECT_INTERNAL_ERROR(dialog.set_puf_file(nullptr), "data.canConvert<void*>()");
}
