// Faults and corners of the second tab: files that turn bad, and what the dialogs for files are asked.

#include "input_fixture.h"
#include "nivo_icon.h"
#include "pgm_device.h"
#include "vek_db_double.h"

#include <QHeaderView>
#include <QImage>

#include <filesystem>
#include <unistd.h>

namespace
{

namespace fs = std::filesystem;

/// Makes indexes that the model never gives away.
class OPEN_MODEL : public VEK_MODEL_INPUT_FILES
{
public:
    using VEK_MODEL_INPUT_FILES::createIndex;
    using VEK_MODEL_INPUT_FILES::VEK_MODEL_INPUT_FILES;
};

/// The rights of nobody while it lives.
class AS_NOBODY
{
public:
    AS_NOBODY() : m_user(::geteuid()) { m_is_nobody = ::seteuid(65534) == 0; }
    ~AS_NOBODY()
    {
        if (m_is_nobody && ::seteuid(m_user) != 0) {
            ADD_FAILURE() << "the rights are lost";
        }
    }

private:
    uid_t m_user;
    bool m_is_nobody = false;
};

class INPUT_DETAILS : public INPUT_FIXTURE
{
protected:
    /// The tool tip of the one file of the only bitstream, which is to be red.
    static std::string red_tip(const VEK_MODEL_INPUT_FILES& model)
    {
        const QModelIndex index = model.index(0, 0, model.index(0, 0));
        EXPECT_EQ(index.data(Qt::ForegroundRole).value<QColor>(), QColor(Qt::red));
        EXPECT_EQ(index.data().toString(), QStringLiteral("one.sof"));
        return index.data(Qt::ToolTipRole).toString().toStdString();
    }
    static void click(const VEK_TAB_INPUT_FILES& tab, const char* name) { button(tab, name).click(); }
};

} // namespace

TEST_F(INPUT_DETAILS, a_file_that_turns_bad_tells_how)
{
    const std::string path = bitstream("one.sof", "BS1L15");
    add_bitstream(*m_vek, "Bitstream_1", path);
    const auto model = make_model();
    const std::string good = read_text_file(path);
    write_file(path, good.substr(0, 60));
    EXPECT_TRUE(red_tip(*model).starts_with("one.sof ")) << red_tip(*model);
    write_file(path, std::string());
    EXPECT_TRUE(red_tip(*model).starts_with("one.sof ")) << red_tip(*model);
    fs::remove(path);
    const std::string gone = red_tip(*model);
    EXPECT_TRUE(gone.starts_with("one.sof ")) << gone;
    fs::create_symlink(path, path);
    EXPECT_TRUE(red_tip(*model).starts_with("one.sof ")) << red_tip(*model);
    fs::remove(path);
    write_file(path, good);
    EXPECT_EQ(model->index(0, 0, model->index(0, 0)).data(Qt::ForegroundRole).value<QColor>(),
              QColor(Qt::black))
        << "and back again";
}

TEST_F(INPUT_DETAILS, a_file_that_may_not_be_read_is_red)
{
    const std::string path = bitstream("one.sof", "BS1L15");
    add_bitstream(*m_vek, "Bitstream_1", path);
    const auto model = make_model();
    fs::permissions(m_directory.path(), fs::perms::all);
    fs::permissions(path, fs::perms::none);
    const AS_NOBODY rights;
    const std::string tip = red_tip(*model);
    EXPECT_TRUE(tip.starts_with("one.sof ")) << tip;
    EXPECT_NE(tip.find("ermission"), std::string::npos) << tip;
    EXPECT_TRUE(tip.ends_with(".")) << tip;
}

TEST_F(INPUT_DETAILS, raw_data_need_not_be_a_bitstream)
{
    const std::string path = m_directory / "note.bin";
    write_file(path, std::string("anything"));
    add_bitstream(*m_vek, "Bitstream_1", path);
    set(*m_vek, VEK_CMD_OPT_RAW_FILE,
        {{VEK_CMD_PARAM_RAW_FILE_ID, "Raw_File_1"}, {VEK_CMD_PARAM_RAW_FILE_RAW_FILE, path}});
    const auto model = make_model();
    const QModelIndex file = model->index(0, 0, model->index(0, 0));
    EXPECT_EQ(file.data(Qt::ForegroundRole).value<QColor>(), QColor(Qt::red));
    EXPECT_EQ(file.data(Qt::ToolTipRole).toString(), QStringLiteral("note.bin is not a bitstream file."));
    EXPECT_EQ(model->index(1, 0).data(Qt::ForegroundRole).value<QColor>(), QColor(Qt::black));
}

TEST_F(INPUT_DETAILS, red_can_be_read_on_a_dark_screen)
{
    add_bitstream(*m_vek, "Bitstream_1", "/gone/one.sof");
    VEK_TREE_INPUT_FILES view(m_vek, m_cache, nullptr);
    view.expandAll();
    view.resize(600, 200);
    const auto reds = [&view](const QColor& base) {
        QPalette palette = view.palette();
        palette.setColor(QPalette::Base, base);
        palette.setColor(QPalette::Text, base.lightness() < 128 ? Qt::white : Qt::black);
        view.setPalette(palette);
        const QImage picture = view.viewport()->grab().toImage();
        std::pair<int, int> count;
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x) {
                count.first += picture.pixelColor(x, y) == QColor(Qt::red) ? 1 : 0;
                count.second += picture.pixelColor(x, y) == QColor(255, 110, 110) ? 1 : 0;
            }
        }
        return count;
    };
    const auto light = reds(Qt::white); // the edges of whose letters may have any red
    EXPECT_GT(light.first, 0);
    const auto dark = reds(QColor(35, 35, 35));
    EXPECT_EQ(dark.first, 0);
    EXPECT_GT(dark.second, 0);
}

TEST_F(INPUT_DETAILS, a_refresh_passes_over_a_bitstream_without_files)
{
    set(*m_vek, VEK_CMD_OPT_BITSTREAM, {{VEK_CMD_PARAM_BITSTREAM_ID, "Bitstream_1"}});
    const MODAL_ANSWERS no_boxes;
    const auto model = make_model();
    const QSignalSpy device(model.get(), SIGNAL(device_changed(const QString&)));
    model->refresh();
    EXPECT_EQ(model->rowCount(), 1);
    EXPECT_EQ(model->rowCount(model->index(0, 0)), 0);
    EXPECT_EQ(device.count(), 0) << "a bitstream is there";
}

TEST_F(INPUT_DETAILS, a_refresh_with_raw_data_alone_says_nothing_of_the_device)
{
    write_file(m_directory / "a.hex", std::string(":00000001FF\n"));
    set(*m_vek, VEK_CMD_OPT_RAW_FILE,
        {{VEK_CMD_PARAM_RAW_FILE_ID, "Raw_File_1"}, {VEK_CMD_PARAM_RAW_FILE_RAW_FILE, "a.hex"}});
    const auto model = make_model();
    const QSignalSpy device(model.get(), SIGNAL(device_changed(const QString&)));
    const QSignalSpy changed(model.get(), SIGNAL(input_files_changed()));
    model->refresh();
    EXPECT_EQ(device.count(), 0);
    EXPECT_EQ(changed.count(), 1);
}

TEST_F(INPUT_DETAILS, what_cannot_be_is_an_internal_error_or_nothing)
{
    const OPEN_MODEL model(m_vek, m_cache, nullptr);
    add_bitstream(*m_vek, "Bitstream_1", "/in/one.sof");
    EXPECT_INTERNAL_ERROR(model.get_encryption_column_data(model.createIndex(0, 3, nullptr), Qt::DisplayRole),
                          "element != nullptr");
    const QModelIndex beyond = model.createIndex(0, 5, model.get_top_level_items().at(0));
    EXPECT_FALSE(model.data(beyond, Qt::DisplayRole).isValid());
    EXPECT_FALSE(model.data(QModelIndex(), Qt::DisplayRole).isValid());
    EXPECT_FALSE(model.headerData(5, Qt::Horizontal, Qt::DisplayRole).isValid());
    EXPECT_INTERNAL_ERROR(model.check_config_mode(FIO_PATH("/gone/one.sof")), "status");
    const PGM_DEVICE* const device = PGM_DEVICE_INDEX::get_device_list().front();
    EXPECT_INTERNAL_ERROR(make_model()->update_cache(FIO_PATH("/gone/one.sof"), device), "status");
    EXPECT_TRUE(m_cache->device_name.empty()) << "nothing is learnt by halves";
    EXPECT_INTERNAL_ERROR(OPEN_MODEL(nullptr, m_cache, nullptr).remove_bitstream("Bitstream_1"),
                          "m_vek != nullptr");
    EXPECT_INTERNAL_ERROR(OPEN_MODEL(nullptr, m_cache, nullptr).remove_sof_file("/a.sof", "Bitstream_1"),
                          "m_vek != nullptr");
    EXPECT_INTERNAL_ERROR(OPEN_MODEL(nullptr, m_cache, nullptr).add_bitstream(FIO_PATH("/a.sof")),
                          "m_vek != nullptr");
    EXPECT_INTERNAL_ERROR(OPEN_MODEL(nullptr, m_cache, nullptr).add_raw_data(FIO_PATH("/a.hex")),
                          "m_vek != nullptr");
    EXPECT_INTERNAL_ERROR(OPEN_MODEL(m_vek, nullptr, nullptr).add_sof_file(FIO_PATH("/a.sof"), "Bitstream_1"),
                          "m_cache != nullptr");
    EXPECT_INTERNAL_ERROR(VEK_TAB_INPUT_FILES(nullptr, m_cache, nullptr, Qt::WindowFlags()),
                          "m_vek != nullptr");
    EXPECT_INTERNAL_ERROR(VEK_TAB_INPUT_FILES(m_vek, nullptr, nullptr, Qt::WindowFlags()),
                          "m_cache != nullptr");
    EXPECT_INTERNAL_ERROR(make_tab()->set_vek(nullptr), "vek != nullptr");
}

TEST_F(INPUT_DETAILS, files_with_names_of_any_kind_are_added_and_removed)
{
    const auto model = make_model();
    for (const std::string& name : {std::string("with blank.sof"), std::string("it's \"so\".sof"),
                                    std::string("gr\xC3\xBC\xC3\x9F.sof"), std::string("<b>&amp;.sof"),
                                    std::string("100%1.sof"), std::string(".sof.sof")}) {
        SCOPED_TRACE(name);
        const std::string path = bitstream(name, "BS1L15");
        EXPECT_EQ(model->add_bitstream(FIO_PATH(path)), 0);
        EXPECT_EQ(rows(*model), "Bitstream_1||||\n  " + name + "|BS1L15|Off|Off|\n");
        EXPECT_EQ(messages(), "");
        model->remove_bitstream("Bitstream_1");
        EXPECT_EQ(model->rowCount(), 0);
        write_file(m_directory / name, std::string("rubbish"));
        EXPECT_EQ(model->add_bitstream(FIO_PATH(path)), -1);
        EXPECT_EQ(messages(), "20653 " + name + " is not a bitstream file.\n");
    }
}

TEST_F(INPUT_DETAILS, the_header_and_the_kinds_of_rows_with_properties)
{
    const auto tab = make_tab();
    EXPECT_EQ(tree(*tab).header()->sectionSize(4), 180);
    EXPECT_EQ(tree(*tab).header()->orientation(), Qt::Horizontal);
    const auto properties_of = [&](const std::string& name) {
        m_vek = std::make_shared<PGM_COMMON_XML_VEK_VEK>(PGM_COMMON_XML_ENUM_VEK);
        add_bitstream(*m_vek, "Bitstream_1", bitstream(name, "CA3M050"));
        tab->set_vek(m_vek);
        tab->refresh();
        tree(*tab).setCurrentIndex(tree(*tab).model()->index(0, 0, tree(*tab).model()->index(0, 0)));
        EXPECT_TRUE(button(*tab, "m_remove_button").isEnabled());
        return button(*tab, "m_properties_button").isEnabled();
    };
    EXPECT_TRUE(properties_of("one.sof"));
    EXPECT_TRUE(properties_of("one.pmsf"));
    EXPECT_TRUE(properties_of("ONE.SOF"));
    EXPECT_FALSE(properties_of("one.csof"));
    EXPECT_FALSE(properties_of("one.rsof"));
}

TEST_F(INPUT_DETAILS, each_kind_of_input_opens_its_button)
{
    const auto tab = make_tab();
    const auto live_for = [&tab](std::vector<FIO_FILE_TYPE> types) {
        vek_db_double().common_input_file_types = std::move(types);
        tab->update_input_file_types();
        return live(*tab);
    };
    EXPECT_EQ(live_for({FIO_SOF_FILE}), "B....");
    EXPECT_EQ(live_for({FIO_PMSF_FILE}), "B....");
    EXPECT_EQ(live_for({FIO_CSOF_FILE}), "B....");
    EXPECT_EQ(live_for({FIO_SOF_FILE, FIO_CSOF_FILE, FIO_PMSF_FILE}), "B....");
    EXPECT_EQ(live_for({FIO_HEX_FILE}), ".R...");
    EXPECT_EQ(live_for({FIO_SOF_FILE, FIO_WKEY_FILE}), "BR...");
    EXPECT_EQ(live_for({FIO_RSOF_FILE}), ".R...")
        << "comes in beside others, and is asked for as a bitstream";
    NIVO_NATIVE_FILE_DLG::reject_next();
    tab->add_bitstream();
    EXPECT_EQ(NIVO_NATIVE_FILE_DLG::last_question().name_filters,
              QStringList(QString::fromStdString(fio_get_file_type_filter(FIO_RSOF_FILE, false))));
    NIVO_NATIVE_FILE_DLG::reject_next();
    tab->add_raw_data();
    EXPECT_TRUE(NIVO_NATIVE_FILE_DLG::last_question().name_filters.isEmpty());
    EXPECT_EQ(live_for({}), ".....");
    vek_db_double() = {};
}

TEST_F(INPUT_DETAILS, the_rules_are_looked_through_once_more_for_files_of_bitstreams_alone)
{
    // The rows come to depend on another, which is off, when their values are asked for.
    const auto tab = make_tab();
    const std::string path = bitstream("one.sof", "CA3M050");
    add_bitstream(*m_vek, "Bitstream_1", path);
    write_file(m_directory / "a.hex", std::string(":00000001FF\n"));
    set(*m_vek, VEK_CMD_OPT_RAW_FILE,
        {{VEK_CMD_PARAM_RAW_FILE_ID, "Raw_File_1"}, {VEK_CMD_PARAM_RAW_FILE_RAW_FILE, "a.hex"}});
    tab->refresh();
    VEK_FILE_ASSISTANT_LOG log;
    log.has_queries = true;
    log.refuse = [](const std::string&) {
        vek_db_double().rows[VEK_CMD_PARAM_BITSTREAM_PATH_COMPRESSION] = {
            .parents = {VEK_CMD_PARAM_BITSTREAM_PATH_DECOMPRESSION_DURING_PR}};
        vek_db_double().rows[VEK_CMD_PARAM_RAW_FILE_BITSWAP] = {
            .parents = {VEK_CMD_PARAM_BITSTREAM_PATH_COMPRESSION}};
        return false;
    };
    const auto is_enabled = [&](const QModelIndex& index, const char* row) {
        vek_db_double() = {};
        tree(*tab).setCurrentIndex(index);
        bool enabled = false;
        MODAL_ANSWERS answers;
        answers.run([&](QDialog& dialog) {
            enabled = dialog.findChild<QComboBox*>(QLatin1String(row))->isEnabled();
            dialog.reject();
        });
        tab->properties();
        vek_db_double() = {};
        return enabled;
    };
    const QAbstractItemModel& model = *tree(*tab).model();
    EXPECT_FALSE(is_enabled(model.index(0, 0, model.index(0, 0)), "Enable compression:"));
    EXPECT_TRUE(is_enabled(model.index(1, 0), "Bit swap:"));
}

TEST_F(INPUT_DETAILS, what_the_dialogs_for_files_are_asked)
{
    const auto tab = make_tab();
    add_output(*m_vek, "POF", "top", ".");
    tab->update_input_file_types();
    QStringList filters;
    for (const FIO_FILE_TYPE type : tab->get_input_file_types()) {
        if (type == 75 || type == 76 || type == 82 || type == 85) {
            filters << QString::fromStdString(fio_get_file_type_filter(type, false));
        }
    }
    EXPECT_FALSE(filters.isEmpty());
    const auto expect_question = [&tab](const char* title, const QStringList& name_filters) {
        const NIVO_NATIVE_FILE_DLG::QUESTION& question = NIVO_NATIVE_FILE_DLG::last_question();
        EXPECT_EQ(question.title, QLatin1String(title));
        EXPECT_EQ(question.name_filters, name_filters);
        EXPECT_EQ(question.file_mode, QFileDialog::ExistingFiles);
        EXPECT_EQ(question.accept_mode, QFileDialog::AcceptOpen);
        EXPECT_EQ(question.parent, tab.get());
    };
    VEK_FILE_ASSISTANT_LOG log;
    NIVO_NATIVE_FILE_DLG::reject_next();
    click(*tab, "m_add_bitstream_button");
    expect_question("Add Bitstream", filters);
    EXPECT_EQ(log.take(), "");

    add_bitstream(*m_vek, "Bitstream_1", bitstream("one.sof", "DL2E20"));
    tab->refresh();
    tree(*tab).setCurrentIndex(tree(*tab).model()->index(0, 0));
    log.take();
    NIVO_NATIVE_FILE_DLG::reject_next();
    click(*tab, "m_add_file_button");
    expect_question("Add File", {QString::fromStdString(fio_get_extension_type_filter(FIO_EXT_SOF, false))});
    EXPECT_EQ(log.take(), "");
    NIVO_NATIVE_FILE_DLG::answer_next({QString::fromStdString(bitstream("two.sof", "DL2E20")),
                                       QString::fromStdString(bitstream("three.sof", "DL2E20"))});
    click(*tab, "m_add_file_button");
    EXPECT_EQ(rows(*tree(*tab).model()),
              "Bitstream_1||||\n  one.sof|DL2E20|Off|Off|\n  two.sof|DL2E20|Off|Off|\n")
        << "the first of several";
}

TEST_F(INPUT_DETAILS, raw_data_is_removed_without_a_question)
{
    const auto tab = make_tab();
    write_file(m_directory / "a.hex", std::string(":00000001FF\n"));
    set(*m_vek, VEK_CMD_OPT_RAW_FILE,
        {{VEK_CMD_PARAM_RAW_FILE_ID, "Raw_File_1"}, {VEK_CMD_PARAM_RAW_FILE_RAW_FILE, "a.hex"}});
    tab->refresh();
    tree(*tab).setCurrentIndex(tree(*tab).model()->index(0, 0));
    const MODAL_ANSWERS no_boxes;
    const QSignalSpy resets(tree(*tab).model(), SIGNAL(modelReset()));
    click(*tab, "m_remove_button");
    EXPECT_TRUE(VEK_FILE_ASSISTANT::get_raw_file_ids(m_vek.get()).empty());
    EXPECT_EQ(resets.count(), 1);
}

TEST_F(INPUT_DETAILS, the_properties_are_asked_for_by_the_keys_and_the_visible_rows)
{
    const auto tab = make_tab();
    const std::string path = bitstream("one.sof", "BS1L15");
    add_bitstream(*m_vek, "Bitstream_1", path);
    write_file(m_directory / "a.hex", std::string(":00000001FF\n"));
    set(*m_vek, VEK_CMD_OPT_RAW_FILE,
        {{VEK_CMD_PARAM_RAW_FILE_ID, "Raw_File_1"}, {VEK_CMD_PARAM_RAW_FILE_RAW_FILE, "a.hex"}});
    tab->refresh();
    VEK_FILE_ASSISTANT_LOG log;
    log.has_queries = true;
    const auto query_of = [&](const QModelIndex& index) {
        tree(*tab).setCurrentIndex(index);
        log.take();
        MODAL_ANSWERS answers;
        answers.run([](QDialog& dialog) { dialog.reject(); });
        tab->properties();
        return log.take();
    };
    const auto name = [](PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param) {
        return " " + std::string(PGM_COMMON_XML_VEK_CMD_PARAM.at(param)) + "=";
    };
    const QAbstractItemModel& model = *tree(*tab).model();
    EXPECT_EQ(query_of(model.index(0, 0, model.index(0, 0))),
              "get bitstream" + name(VEK_CMD_PARAM_BITSTREAM_ID) + "Bitstream_1" +
                  name(VEK_CMD_PARAM_BITSTREAM_PATH) + path + name(VEK_CMD_PARAM_BITSTREAM_PATH_COMPRESSION) +
                  "\n");
    EXPECT_EQ(query_of(model.index(1, 0)), "get raw_file" + name(VEK_CMD_PARAM_RAW_FILE_ID) + "Raw_File_1" +
                                               name(VEK_CMD_PARAM_RAW_FILE_RAW_FILE) + "a.hex" +
                                               name(VEK_CMD_PARAM_RAW_FILE_BITSWAP) + "\n");
}
