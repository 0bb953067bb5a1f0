#include "fio_file_system.h"
#include "vek_frame_fixture.h"
#include "vek_list_view.h"
#include "vek_tab_config_device.h"
#include "vek_tab_input_files.h"
#include "vek_tab_output_files.h"

#include <QLineEdit>

#include <sys/stat.h>

namespace
{

using DOCUMENT = std::shared_ptr<PGM_COMMON_XML_VEK_VEK>;

class VEK_TABS : public VEK_FRAME_FIXTURE
{
protected:
    VEK_TABS()
        : m_vek(std::make_shared<PGM_COMMON_XML_VEK_VEK>(PGM_COMMON_XML_ENUM_VEK)),
          m_cache(std::make_shared<VEK_FRAME_WND_CACHE>())
    {
    }

    template <typename TAB>
    TAB make() const
    {
        return TAB(m_vek, m_cache, nullptr, Qt::WindowFlags());
    }

    /// The rows of a tree, one a line, children indented, columns divided by "|".
    static std::string rows(const QWidget& tab)
    {
        const auto* const tree = tab.findChild<VEK_LIST_VIEW*>();
        return rows(*tree->model(), QModelIndex(), std::string());
    }
    static std::string rows(const QAbstractItemModel& model, const QModelIndex& parent,
                            const std::string& indent)
    {
        std::string text;
        for (int row = 0; row < model.rowCount(parent); ++row) {
            QStringList columns;
            for (int column = 0; column < model.columnCount(); ++column) {
                columns << model.index(row, column, parent).data().toString();
            }
            text += indent + columns.join('|').toStdString() + "\n";
            text += rows(model, model.index(row, 0, parent), indent + "  ");
        }
        return text;
    }
    static QLineEdit* edit(const QWidget& tab, const char* name)
    {
        return tab.findChild<QLineEdit*>(QLatin1String(name));
    }
    void add_secondary(const std::string& type, const std::string& secondary)
    {
        set(*m_vek, VEK_CMD_OPT_OUTPUT_FILE,
            {{VEK_CMD_PARAM_OUTPUT_FILE_TYPE, type},
             {VEK_CMD_PARAM_OUTPUT_FILE_SECONDARY_FILE_TYPE, secondary},
             {VEK_CMD_PARAM_OUTPUT_FILE_SECONDARY_FILE_NAME, "any"}});
    }
    void add_partition(const std::string& name, const std::string& start, const std::string& end)
    {
        set(*m_vek, VEK_CMD_OPT_FLASH_DEVICE,
            {{VEK_CMD_PARAM_FLASH_DEVICE_ID, "Flash_Device_1"},
             {VEK_CMD_PARAM_FLASH_DEVICE_TYPE, "W25Q128JV"},
             {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_ID, name},
             {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_S_ADDR, start},
             {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_E_ADDR, end}});
    }

    DOCUMENT m_vek;
    std::shared_ptr<VEK_FRAME_WND_CACHE> m_cache;
};

} // namespace

TEST_F(VEK_TABS, a_tab_without_a_document_or_a_cache_is_an_internal_error)
{
    const DOCUMENT no_document;
    const std::shared_ptr<VEK_FRAME_WND_CACHE> no_cache;
    EXPECT_INTERNAL_ERROR(VEK_TAB_OUTPUT_FILES(no_document, m_cache, nullptr, {}), "m_vek != nullptr");
    EXPECT_INTERNAL_ERROR(VEK_TAB_OUTPUT_FILES(m_vek, no_cache, nullptr, {}), "m_cache != nullptr");
    EXPECT_INTERNAL_ERROR(VEK_TAB_INPUT_FILES(no_document, m_cache, nullptr, {}), "m_vek != nullptr");
    EXPECT_INTERNAL_ERROR(VEK_TAB_INPUT_FILES(m_vek, no_cache, nullptr, {}), "m_cache != nullptr");
    EXPECT_INTERNAL_ERROR(VEK_TAB_CONFIG_DEVICE(no_document, m_cache, nullptr, {}), "m_vek != nullptr");
    EXPECT_INTERNAL_ERROR(VEK_TAB_CONFIG_DEVICE(m_vek, no_cache, nullptr, {}), "m_cache != nullptr");
    auto output_tab = make<VEK_TAB_OUTPUT_FILES>();
    EXPECT_INTERNAL_ERROR(output_tab.set_vek(nullptr), "vek != nullptr");
    auto input_tab = make<VEK_TAB_INPUT_FILES>();
    EXPECT_INTERNAL_ERROR(input_tab.set_vek(nullptr), "vek != nullptr");
    auto device_tab = make<VEK_TAB_CONFIG_DEVICE>();
    EXPECT_INTERNAL_ERROR(device_tab.set_vek(nullptr), "vek != nullptr");
}

TEST_F(VEK_TABS, a_new_output_tab_puts_its_defaults_into_the_cache)
{
    set_working_directory(m_directory.path());
    m_cache->output_name = "other";
    m_cache->output_directory = "/other";
    const auto tab = make<VEK_TAB_OUTPUT_FILES>();
    EXPECT_EQ(edit(tab, "m_name_edit")->text(), QStringLiteral("output_file"));
    EXPECT_EQ(edit(tab, "m_directory_edit")->text(), QStringLiteral("."));
    EXPECT_EQ(m_cache->output_name, "output_file");
    EXPECT_EQ(m_cache->output_directory, ".");
}

TEST_F(VEK_TABS, without_a_working_directory_the_default_is_where_the_process_is)
{
    FIO_FILE_SYSTEM::set_current_directory(m_directory.path());
    const auto tab = make<VEK_TAB_OUTPUT_FILES>();
    EXPECT_EQ(edit(tab, "m_directory_edit")->text().toStdString(), m_directory.path());
}

TEST_F(VEK_TABS, a_refresh_follows_the_first_output_file_and_announces_each)
{
    auto tab = make<VEK_TAB_OUTPUT_FILES>();
    add_output(*m_vek, "POF", "first", "/out/first");
    add_output(*m_vek, "RPD", "second", "/out/second");
    add_secondary("POF", "MAP");
    const QSignalSpy announced(&tab, SIGNAL(output_file_check_state_changed()));
    tab.refresh();
    EXPECT_EQ(announced.count(), 2);
    EXPECT_EQ(m_cache->output_name, "first");
    EXPECT_EQ(m_cache->output_directory, "/out/first");
    const auto output_files = VEK_FILE_ASSISTANT::get_output_file_elements(m_vek.get());
    EXPECT_EQ(output_files.at(1)->name, "first") << "there is one name for all";
    EXPECT_EQ(output_files.at(1)->directory, "/out/first");
    EXPECT_EQ(VEK_FILE_ASSISTANT::get_secondary_file_elements(output_files.at(0)).at(0)->name, "first_pof");
    const std::string text = rows(tab);
    EXPECT_NE(text.find("|first.pof\n"), std::string::npos) << text;
    EXPECT_NE(text.find("|first_pof.map\n"), std::string::npos) << text;
    EXPECT_NE(text.find("|first.rpd\n"), std::string::npos) << text;

    tab.set_vek(std::make_shared<PGM_COMMON_XML_VEK_VEK>(PGM_COMMON_XML_ENUM_VEK));
    tab.refresh();
    EXPECT_EQ(announced.count(), 2) << "nothing to announce";
    EXPECT_EQ(m_cache->output_name, "output_file");
    EXPECT_EQ(rows(tab), "");
}

TEST_F(VEK_TABS, only_a_change_of_mode_shows_the_outputs_anew)
{
    auto tab = make<VEK_TAB_OUTPUT_FILES>();
    add_output(*m_vek, "RBF", "output_file", ".");
    tab.refresh_output_file_tree(PGMIO_CONFIG_SCHEME_PS, false);
    EXPECT_EQ(rows(tab), "");
    tab.refresh_output_file_tree(PGMIO_CONFIG_SCHEME_PS, true);
    EXPECT_NE(rows(tab).find("output_file.rbf"), std::string::npos);
}

TEST_F(VEK_TABS, an_empty_name_is_legal_while_typing_and_gone_with_the_focus)
{
    auto tab = make<VEK_TAB_OUTPUT_FILES>();
    add_output(*m_vek, "RBF", "top", ".");
    tab.refresh();
    edit(tab, "m_name_edit")->clear();
    EXPECT_EQ(m_cache->output_name, "");
    EXPECT_EQ(VEK_FILE_ASSISTANT::get_output_file_elements(m_vek.get()).at(0)->name, "");
    QFocusEvent out(QEvent::FocusOut);
    QCoreApplication::sendEvent(edit(tab, "m_name_edit"), &out);
    EXPECT_EQ(m_cache->output_name, "output_file");
}

TEST_F(VEK_TABS, an_empty_directory_is_the_working_directory_and_gone_with_the_focus)
{
    set_working_directory(m_directory.path());
    auto tab = make<VEK_TAB_OUTPUT_FILES>();
    edit(tab, "m_directory_edit")->setText(QStringLiteral("out"));
    EXPECT_EQ(m_cache->output_directory, "out");
    QSignalSpy changed(&tab, SIGNAL(directory_changed(const QString&)));
    edit(tab, "m_directory_edit")->clear();
    EXPECT_EQ(m_cache->output_directory, ".");
    ASSERT_EQ(changed.count(), 1);
    EXPECT_EQ(changed.at(0).at(0).toString(), QString()) << "the text as typed";
    QFocusEvent out(QEvent::FocusOut);
    QCoreApplication::sendEvent(edit(tab, "m_directory_edit"), &out);
    EXPECT_EQ(edit(tab, "m_directory_edit")->text(), QStringLiteral("."));
}

TEST_F(VEK_TABS, browsing_for_the_output_directory_starts_at_the_present_one)
{
    set_working_directory(m_directory.path());
    ASSERT_EQ(::mkdir((m_directory / "out").c_str(), 0700), 0);
    auto tab = make<VEK_TAB_OUTPUT_FILES>();
    edit(tab, "m_directory_edit")->setText(QStringLiteral("out"));
    NIVO_NATIVE_FILE_DLG::reject_next();
    tab.browse_directory();
    const NIVO_NATIVE_FILE_DLG::QUESTION& question = NIVO_NATIVE_FILE_DLG::last_question();
    EXPECT_EQ(question.title, QStringLiteral("Browse"));
    EXPECT_EQ(question.directory.toStdString(), m_directory / "out");
    EXPECT_EQ(question.file_mode, QFileDialog::Directory);
    EXPECT_TRUE(question.options.testFlag(QFileDialog::ShowDirsOnly));
    EXPECT_EQ(edit(tab, "m_directory_edit")->text(), QStringLiteral("out"));
    EXPECT_EQ(FIO_FILE_SYSTEM::get_current_directory(), m_directory / "out");

    NIVO_NATIVE_FILE_DLG::answer_next({QString::fromStdString(m_directory / "out/deeper")});
    tab.browse_directory();
    EXPECT_EQ(edit(tab, "m_directory_edit")->text(), QStringLiteral("out/deeper"));
    EXPECT_EQ(m_cache->output_directory, "out/deeper");
}

TEST_F(VEK_TABS, the_input_tab_shows_bitstreams_with_their_files_and_raw_files_behind_them)
{
    set_working_directory("/base");
    auto tab = make<VEK_TAB_INPUT_FILES>();
    set(*m_vek, VEK_CMD_OPT_RAW_FILE,
        {{VEK_CMD_PARAM_RAW_FILE_ID, "Raw_File_1"},
         {VEK_CMD_PARAM_RAW_FILE_TYPE, "HEX"},
         {VEK_CMD_PARAM_RAW_FILE_RAW_FILE, "/base/in/data.hex"}});
    add_bitstream(*m_vek, "Bitstream_1", "/base/in/top.sof");
    set(*m_vek, VEK_CMD_OPT_BITSTREAM,
        {{VEK_CMD_PARAM_BITSTREAM_ID, "Bitstream_1"},
         {VEK_CMD_PARAM_BITSTREAM_PATH, "/base/in/top.sof"},
         {VEK_CMD_PARAM_BITSTREAM_PATH_COMPRESSION, "1"}});
    tab.refresh();
    EXPECT_EQ(rows(tab), "Bitstream_1|Bitstream|||\n"
                         "  top.sof|SOF|On|Off|in\n"
                         "data.hex|HEX|||in\n");
}

TEST_F(VEK_TABS, resetting_the_input_tab_takes_files_links_and_assignments_out)
{
    auto tab = make<VEK_TAB_INPUT_FILES>();
    add_output(*m_vek, "POF", "top", ".");
    add_bitstream(*m_vek, "Bitstream_1", "/in/top.sof");
    set(*m_vek, VEK_CMD_OPT_BITSTREAM,
        {{VEK_CMD_PARAM_BITSTREAM_ID, "Bitstream_1"}, {VEK_CMD_PARAM_BITSTREAM_PATH, "/in/more.sof"}});
    set(*m_vek, VEK_CMD_OPT_RAW_FILE,
        {{VEK_CMD_PARAM_RAW_FILE_ID, "Raw_File_1"}, {VEK_CMD_PARAM_RAW_FILE_RAW_FILE, "/in/data.hex"}});
    add_partition("P1", "auto", "auto");
    add_partition("P2", "auto", "auto");
    set(*m_vek, VEK_CMD_OPT_ASSIGNMENT,
        {{VEK_CMD_PARAM_ASSIGNMENT_PARTITION_ID, "P1"},
         {VEK_CMD_PARAM_ASSIGNMENT_BITSTREAM_ID, "Bitstream_1"}});
    set(*m_vek, VEK_CMD_OPT_ASSIGNMENT,
        {{VEK_CMD_PARAM_ASSIGNMENT_PARTITION_ID, "P2"},
         {VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID, "Raw_File_1"}});
    m_cache->family = DEV_FAMILY_CALCITE;
    m_cache->device = static_cast<DEV_DEVICE_ENUM>(21);
    m_cache->device_name = "CA3M050";
    m_cache->config_mode = PGMIO_CONFIG_SCHEME_AS;
    m_cache->max_bitstreams = 8;
    const QSignalSpy changed(&tab, SIGNAL(input_files_changed()));
    QSignalSpy device(&tab, SIGNAL(device_changed(const QString&)));

    tab.reset();
    EXPECT_TRUE(VEK_FILE_ASSISTANT::get_bitstream_ids(m_vek.get()).empty());
    EXPECT_TRUE(VEK_FILE_ASSISTANT::get_raw_file_ids(m_vek.get()).empty());
    EXPECT_TRUE(VEK_FILE_ASSISTANT::get_output_file_elements(m_vek.get()).at(0)->bitstream_id.empty());
    EXPECT_EQ(VEK_FILE_ASSISTANT::get_assignment_element(m_vek.get(), "P1"), nullptr);
    EXPECT_EQ(VEK_FILE_ASSISTANT::get_assignment_element(m_vek.get(), "P2"), nullptr);
    EXPECT_NE(VEK_FILE_ASSISTANT::get_partition_element(m_vek.get(), "P1"), nullptr) << "partitions stay";
    EXPECT_EQ(changed.count(), 3) << "one for each file";
    ASSERT_EQ(device.count(), 1);
    EXPECT_EQ(device.at(0).at(0).toString(), QString());
    EXPECT_EQ(m_cache->family, DEV_FAMILY_NONE);
    EXPECT_EQ(m_cache->device, DEV_DEVICE_NONE);
    EXPECT_EQ(m_cache->device_name, "");
    EXPECT_EQ(m_cache->config_mode, PGMIO_CONFIG_SCHEME_ILLEGAL);
    EXPECT_EQ(m_cache->max_bitstreams, 8u) << "limits stay";
    EXPECT_EQ(rows(tab), "");
}

TEST_F(VEK_TABS, removing_a_bitstream_without_files_tells_nobody_and_spares_the_cache)
{
    auto tab = make<VEK_TAB_INPUT_FILES>();
    set(*m_vek, VEK_CMD_OPT_BITSTREAM, {{VEK_CMD_PARAM_BITSTREAM_ID, "Bitstream_1"}});
    m_cache->family = DEV_FAMILY_CALCITE;
    const QSignalSpy changed(&tab, SIGNAL(input_files_changed()));
    tab.reset();
    EXPECT_TRUE(VEK_FILE_ASSISTANT::get_bitstream_ids(m_vek.get()).empty());
    EXPECT_EQ(changed.count(), 0);
    EXPECT_EQ(m_cache->family, DEV_FAMILY_CALCITE);
}

TEST_F(VEK_TABS, the_input_tab_knows_what_all_outputs_take)
{
    auto tab = make<VEK_TAB_INPUT_FILES>();
    tab.update_input_file_types();
    EXPECT_TRUE(tab.get_input_file_types().empty());
    EXPECT_EQ(tab.get_file_category(), 0u);
    add_output(*m_vek, "POF", "top", ".");
    tab.update_input_file_types();
    const std::vector<FIO_FILE_TYPE>& types = tab.get_input_file_types();
    EXPECT_NE(std::find(types.begin(), types.end(), FIO_SOF_FILE), types.end());
    EXPECT_NE(std::find(types.begin(), types.end(), FIO_HEX_FILE), types.end());
    EXPECT_EQ(tab.get_file_category(), VEK_FILE_CATEGORY_FLASH);
    EXPECT_TRUE(tab.findChild<QLabel*>(QStringLiteral("m_file_types_label"))
                    ->text()
                    .contains(QStringLiteral(".sof")));
}
