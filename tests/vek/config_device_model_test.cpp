#include "config_device_fixture.h"
#include "vek_model_config_device.h"
#include "vek_tree_config_device.h"

#include <QHeaderView>

namespace
{

class VEK_CONFIG_DEVICE_MODEL : public CONFIG_DEVICE_FIXTURE
{
protected:
    VEK_CONFIG_DEVICE_MODEL() : m_model(m_vek, m_cache, nullptr) {}
    VEK_MODEL_CONFIG_DEVICE m_model;
};

} // namespace

TEST_F(VEK_CONFIG_DEVICE_MODEL, a_document_without_flash_devices_has_no_rows)
{
    EXPECT_EQ(m_model.rowCount(), 0);
    EXPECT_FALSE(m_model.index(0, 0).isValid());
    EXPECT_FALSE(m_model.parent(QModelIndex()).isValid());
    EXPECT_EQ(m_model.get_device(0), "");
    EXPECT_EQ(m_model.columnCount(QModelIndex()), 4);
    EXPECT_FALSE(m_model.data(QModelIndex(), Qt::DisplayRole).isValid());
}

TEST_F(VEK_CONFIG_DEVICE_MODEL, the_headers_stand_for_display_and_horizontally_only)
{
    QStringList labels;
    for (int column = 0; column < 4; ++column) {
        labels << m_model.headerData(column, Qt::Horizontal).toString();
        EXPECT_FALSE(m_model.headerData(column, Qt::Vertical).isValid());
        EXPECT_FALSE(m_model.headerData(column, Qt::Horizontal, Qt::ToolTipRole).isValid());
    }
    EXPECT_EQ(labels, QStringList({"Device", "Start", "End", "Input File"}));
    EXPECT_FALSE(m_model.headerData(4, Qt::Horizontal).isValid());
}

TEST_F(VEK_CONFIG_DEVICE_MODEL, a_device_has_its_partitions_and_behind_them_its_mbrs)
{
    device("Flash_Device_1", "W25Q128JV");
    mbr("Flash_Device_1", "MBR1", "Inner");
    partition("Flash_Device_1", "P1", "auto", "0x3FFFF");
    partition("Flash_Device_1", "P2", "1F", "auto");
    device("Flash_Device_2", "W25Q32JV");
    EXPECT_EQ(rows(m_model), "W25Q128JV|||\n"
                             "  P1|<auto>|0x0003FFFF|None\n"
                             "  P2|0x0000001F|<auto>|None\n"
                             "  MBR1|||\n"
                             "    Inner|<auto>|<auto>|None\n"
                             "W25Q32JV|||\n");
    EXPECT_EQ(m_model.get_device(0), "W25Q128JV");
    EXPECT_EQ(m_model.get_device(1), "W25Q32JV");
    EXPECT_EQ(m_model.get_device(2), "");
    const QModelIndex first = m_model.index(0, 0);
    EXPECT_FALSE(m_model.index(3, 0, first).isValid());
    EXPECT_FALSE(m_model.index(0, 4, first).isValid());
    EXPECT_FALSE(m_model.index(0, 0, m_model.index(0, 0, first)).isValid()) << "a partition has no rows";
    EXPECT_EQ(m_model.parent(m_model.index(1, 2, first)), first);
    EXPECT_EQ(m_model.parent(m_model.index(2, 0, first)), first);
    EXPECT_FALSE(m_model.parent(first).isValid());
}

TEST_F(VEK_CONFIG_DEVICE_MODEL, the_mbr_above_a_partition_counts_among_all_children_of_its_device)
{
    device("Flash_Device_1", "W25Q128JV");
    mbr("Flash_Device_1", "MBR1", "Inner");
    partition("Flash_Device_1", "P1");
    const QModelIndex mbr_row = m_model.index(1, 0, m_model.index(0, 0));
    ASSERT_EQ(mbr_row.data().toString(), QStringLiteral("MBR1"));
    const QModelIndex above = m_model.parent(m_model.index(0, 0, mbr_row));
    EXPECT_EQ(above.internalPointer(), mbr_row.internalPointer());
    EXPECT_EQ(above.row(), 0) << "it stands in front of the partition in the document";
}

TEST_F(VEK_CONFIG_DEVICE_MODEL, only_the_display_role_is_answered)
{
    device("Flash_Device_1", "W25Q128JV");
    partition("Flash_Device_1", "P1");
    const QModelIndex first = m_model.index(0, 0);
    for (const int role : {Qt::DecorationRole, Qt::ToolTipRole, Qt::EditRole, Qt::CheckStateRole}) {
        for (int column = 0; column < 4; ++column) {
            EXPECT_FALSE(m_model.index(0, column).data(role).isValid());
            EXPECT_FALSE(m_model.index(0, column, first).data(role).isValid());
        }
    }
    EXPECT_FALSE(m_model.flags(first).testFlag(Qt::ItemIsEditable));
    EXPECT_FALSE(m_model.setData(first, QStringLiteral("other")));
}

TEST_F(VEK_CONFIG_DEVICE_MODEL, a_column_of_no_index_is_an_internal_error)
{
    const QModelIndex none;
    EXPECT_INTERNAL_ERROR(m_model.get_device_column_data(none, 0), "index.isValid()");
    EXPECT_INTERNAL_ERROR(m_model.get_start_addr_column_data(none, 0), "index.isValid()");
    EXPECT_INTERNAL_ERROR(m_model.get_end_addr_column_data(none, 0), "index.isValid()");
    EXPECT_INTERNAL_ERROR(m_model.get_input_file_column_data(none, 0), "index.isValid()");
    EXPECT_INTERNAL_ERROR(m_model.set_vek(nullptr), "vek != nullptr");
}

TEST_F(VEK_CONFIG_DEVICE_MODEL, an_address_is_read_up_to_the_first_character_that_is_no_digit)
{
    device("Flash_Device_1", "W25Q128JV");
    partition("Flash_Device_1", "P1", "0x10zebra", "1FFFFFFFF");
    const QModelIndex first = m_model.index(0, 0);
    errno = EEXIST;
    EXPECT_EQ(m_model.index(0, 1, first).data().toString(), QStringLiteral("0x00000010"));
    EXPECT_EQ(m_model.index(0, 2, first).data().toString(), QStringLiteral("0xFFFFFFFF")) << "cut to 32 bits";
    EXPECT_EQ(errno, EEXIST);
}

TEST_F(VEK_CONFIG_DEVICE_MODEL, an_address_that_is_no_number_raises_an_exception)
{
    device("Flash_Device_1", "W25Q128JV");
    partition("Flash_Device_1", "P1", "zebra", "10000000000000000");
    const QModelIndex first = m_model.index(0, 0);
    try {
        m_model.index(0, 1, first).data();
        ADD_FAILURE();
    } catch (const std::invalid_argument& error) {
        EXPECT_STREQ(error.what(), "stoul");
    }
    try {
        m_model.index(0, 2, first).data();
        ADD_FAILURE();
    } catch (const std::out_of_range& error) {
        EXPECT_STREQ(error.what(), "stoul");
    }
}

TEST_F(VEK_CONFIG_DEVICE_MODEL, a_bitstream_shows_its_files_and_its_page_where_it_has_one)
{
    m_cache->family = DEV_FAMILY_BASALT;
    m_cache->current_mode = PGMIO_CONFIG_SCHEME_AS;
    device("Flash_Device_1", "W25Q128JV");
    partition("Flash_Device_1", "P1");
    partition("Flash_Device_1", "P2");
    bitstream("Bitstream_1", {"/in/one.sof", "/in/two.sof"});
    bitstream("Bitstream_2", {"/in/part.pmsf"});
    assign("P1",
           {{VEK_CMD_PARAM_ASSIGNMENT_PAGE, "3"}, {VEK_CMD_PARAM_ASSIGNMENT_BITSTREAM_ID, "Bitstream_1"}});
    assign("P2",
           {{VEK_CMD_PARAM_ASSIGNMENT_PAGE, "1"}, {VEK_CMD_PARAM_ASSIGNMENT_BITSTREAM_ID, "Bitstream_2"}});
    EXPECT_EQ(m_model.get_partition_input_file_column_data("P1").toString(),
              QStringLiteral("Bitstream_1 (one.sof, two.sof at page 3)"));
    EXPECT_EQ(m_model.get_partition_input_file_column_data("P2").toString(),
              QStringLiteral("Bitstream_2 (part.pmsf)"))
        << "neither SOF nor RBF";
}

TEST_F(VEK_CONFIG_DEVICE_MODEL, whether_a_partition_shows_a_page_goes_by_the_current_mode)
{
    m_cache->family = DEV_FAMILY_ONCHIP_FLASH;
    m_cache->config_mode = PGMIO_CONFIG_SCHEME_DUAL_COMPRESSED_IMAGES;
    m_cache->current_mode = PGMIO_CONFIG_SCHEME_SINGLE_IMAGE;
    device("Flash_Device_1", "GY1M16");
    partition("Flash_Device_1", "CFM0", "0x0", "0xFFFF");
    bitstream("Bitstream_1", {"/in/one.sof"});
    assign("CFM0",
           {{VEK_CMD_PARAM_ASSIGNMENT_PAGE, "0"}, {VEK_CMD_PARAM_ASSIGNMENT_BITSTREAM_ID, "Bitstream_1"}});
    EXPECT_EQ(m_model.get_partition_input_file_column_data("CFM0").toString(),
              QStringLiteral("Bitstream_1 (one.sof)"));
    m_cache->current_mode = PGMIO_CONFIG_SCHEME_DUAL_COMPRESSED_IMAGES;
    EXPECT_EQ(m_model.get_partition_input_file_column_data("CFM0").toString(),
              QStringLiteral("Bitstream_1 (one.sof at page 0)"));
}

TEST_F(VEK_CONFIG_DEVICE_MODEL, raw_files_are_shown_by_name_without_a_page)
{
    device("Flash_Device_1", "W25Q128JV");
    partition("Flash_Device_1", "PUF");
    raw_file("Raw_File_1", "PUF", "/in/a.puf");
    raw_file("Raw_File_2", "WKEY", "/in/b.wkey");
    assign("PUF", {{VEK_CMD_PARAM_ASSIGNMENT_PAGE, "1"},
                   {VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID, "Raw_File_1"},
                   {VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID, "Raw_File_2"}});
    EXPECT_EQ(m_model.get_partition_input_file_column_data("PUF").toString(),
              QStringLiteral("a.puf, b.wkey"));
}

TEST_F(VEK_CONFIG_DEVICE_MODEL, an_input_that_has_gone_is_shown_by_its_id)
{
    device("Flash_Device_1", "W25Q128JV");
    partition("Flash_Device_1", "P1");
    partition("Flash_Device_1", "P2");
    assign("P1", {{VEK_CMD_PARAM_ASSIGNMENT_BITSTREAM_ID, "Bitstream_9"}});
    assign("P2", {{VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID, "Raw_File_9"}});
    EXPECT_EQ(rows(m_model), "W25Q128JV|||\n"
                             "  P1|<auto>|<auto>|Bitstream_9 ()\n"
                             "  P2|<auto>|<auto>|Raw_File_9\n");
}

TEST_F(VEK_CONFIG_DEVICE_MODEL, user_flash_shows_its_source_from_the_first_device)
{
    const auto source = [this](const std::string& value) {
        set(*m_vek, VEK_CMD_OPT_FLASH_DEVICE,
            {{VEK_CMD_PARAM_FLASH_DEVICE_ID, "Flash_Device_1"},
             {VEK_CMD_PARAM_FLASH_DEVICE_UFM_SOURCE, value},
             {VEK_CMD_PARAM_FLASH_DEVICE_UFM_SOURCE_FILE, "/in/ufm.hex"}});
        return m_model.index(0, 3, m_model.index(1, 0)).data().toString();
    };
    device("Flash_Device_1", "GY1M16");
    device("Flash_Device_2", "GY1M16");
    partition("Flash_Device_2", "UFM_2", "0x0", "0xFF");
    EXPECT_EQ(source("0"), QStringLiteral("CFM0"));
    EXPECT_EQ(source("1"), QStringLiteral("CFM1"));
    EXPECT_EQ(source("2"), QStringLiteral("ufm.hex"));
    EXPECT_EQ(source("7"), QStringLiteral("CFM0"));
}

TEST_F(VEK_CONFIG_DEVICE_MODEL, a_refresh_announces_both_within_the_reset)
{
    std::string events;
    QObject::connect(&m_model, &QAbstractItemModel::modelAboutToBeReset, [&events] { events += "begin "; });
    QObject::connect(&m_model, &VEK_MODEL_CONFIG_DEVICE::config_device_changed,
                     [&events] { events += "device "; });
    QObject::connect(&m_model, &VEK_MODEL_CONFIG_DEVICE::partition_changed,
                     [&events] { events += "partition "; });
    QObject::connect(&m_model, &QAbstractItemModel::modelReset, [&events] { events += "end"; });
    m_model.refresh();
    EXPECT_EQ(events, "begin device partition end");
    m_model.set_vek(std::make_shared<PGM_COMMON_XML_VEK_VEK>(PGM_COMMON_XML_ENUM_VEK));
    EXPECT_EQ(events, "begin device partition end") << "another document is shown with the next refresh";
}

TEST_F(VEK_CONFIG_DEVICE_MODEL, the_tree_is_open_after_a_refresh_and_for_a_new_device)
{
    VEK_TREE_CONFIG_DEVICE tree(m_vek, m_cache, nullptr);
    EXPECT_EQ(tree.header()->sectionSize(0), 160);
    EXPECT_EQ(tree.header()->sectionSize(3), 240);
    EXPECT_EQ(tree.header()->sectionSize(1), tree.header()->defaultSectionSize());
    EXPECT_INTERNAL_ERROR(tree.set_vek(nullptr), "vek != nullptr");
    tree.refresh();
    EXPECT_EQ(tree.model()->rowCount(), 0);

    device("Flash_Device_1", "W25Q128JV");
    partition("Flash_Device_1", "P1");
    mbr("Flash_Device_1", "MBR1", "Inner");
    tree.refresh();
    const QModelIndex first = tree.model()->index(0, 0);
    EXPECT_TRUE(tree.isExpanded(first));
    EXPECT_TRUE(tree.isExpanded(tree.model()->index(1, 0, first)));
    EXPECT_EQ(tree.parent(tree.model()->index(0, 0, first)), first);

    m_cache->config_mode = PGMIO_CONFIG_SCHEME_FPP;
    tree.add_device("CFI_128Mb", false);
    const QModelIndex second = tree.model()->index(1, 0);
    EXPECT_TRUE(tree.isExpanded(second)) << "its partitions can be seen at once";
    EXPECT_EQ(tree.model()->index(0, 0, second).data().toString(), QStringLiteral("OPTIONS"));
    tree.collapse(second);
    tree.add_partition("P2", false, "auto", "auto", "", "Flash_Device_2", false, false, true, 0);
    EXPECT_FALSE(tree.isExpanded(second)) << "a later partition leaves it as it is";
    EXPECT_EQ(find("P2")->size, "0");
    EXPECT_EQ(find("P2")->extra_space, "0");
}

TEST_F(VEK_CONFIG_DEVICE_MODEL, a_tree_without_its_model_is_an_internal_error)
{
    VEK_TREE_CONFIG_DEVICE tree(m_vek, m_cache, nullptr);
    tree.setModel(nullptr);
    EXPECT_INTERNAL_ERROR(tree.clear(), "model != nullptr");
    EXPECT_INTERNAL_ERROR(tree.refresh(), "model != nullptr");
    EXPECT_INTERNAL_ERROR(tree.get_device(0), "model != nullptr");
    EXPECT_INTERNAL_ERROR(tree.add_device("x", false), "model != nullptr");
    EXPECT_INTERNAL_ERROR(tree.update_device("x", {}), "model != nullptr");
    EXPECT_INTERNAL_ERROR(tree.remove_device("x"), "model != nullptr");
    EXPECT_INTERNAL_ERROR(tree.remove_partition("x", "y"), "model != nullptr");
    EXPECT_INTERNAL_ERROR(tree.remove_mbr_partition("x", "y", "z"), "model != nullptr");
    EXPECT_INTERNAL_ERROR(tree.update_partition("x", "y", {}), "model != nullptr");
    EXPECT_INTERNAL_ERROR(tree.set_vek(m_vek), "model != nullptr");
}
