// Rows, columns and refresh of the input files.

#include "input_fixture.h"
#include "msg_debug.h"

#include <QAbstractItemModelTester>
#include <QColor>

#include <filesystem>
#include <sys/stat.h>

namespace
{

class INPUT_MODEL : public INPUT_FIXTURE
{
protected:
    static QVariant cell(const VEK_MODEL_INPUT_FILES& model, int row, int column, int role,
                         const QModelIndex& parent = {})
    {
        return model.data(model.index(row, column, parent), role);
    }
    void add_raw(const std::string& id, const std::string& path)
    {
        set(*m_vek, VEK_CMD_OPT_RAW_FILE,
            {{VEK_CMD_PARAM_RAW_FILE_ID, id}, {VEK_CMD_PARAM_RAW_FILE_RAW_FILE, path}});
    }
    /// Runs a refresh that finds files missing; the box.
    static MODAL_BOX refresh_with_box(VEK_MODEL_INPUT_FILES& model)
    {
        MODAL_ANSWERS answers;
        answers.click(QMessageBox::Ok);
        model.refresh();
        return answers.boxes().value(0);
    }
};

} // namespace

TEST_F(INPUT_MODEL, an_empty_document_has_no_rows_and_a_refresh_says_no_device)
{
    const auto model = make_model();
    EXPECT_EQ(model->rowCount(), 0);
    EXPECT_EQ(model->columnCount(), 5);
    EXPECT_FALSE(model->index(0, 0).isValid());
    QSignalSpy device(model.get(), SIGNAL(device_changed(const QString&)));
    const QSignalSpy changed(model.get(), SIGNAL(input_files_changed()));
    model->refresh();
    ASSERT_EQ(device.count(), 1);
    EXPECT_EQ(device.at(0).at(0).toString(), QString());
    EXPECT_EQ(changed.count(), 1);
}

TEST_F(INPUT_MODEL, bitstreams_stand_before_raw_files_whatever_came_first)
{
    add_raw("Raw_File_1", m_directory / "a.hex");
    add_bitstream(*m_vek, "Bitstream_1", m_directory / "one.sof");
    add_raw("Raw_File_2", m_directory / "b.rbf");
    add_bitstream(*m_vek, "Bitstream_2", m_directory / "two.sof");
    const auto model = make_model();
    const QAbstractItemModelTester tester(model.get());
    EXPECT_EQ(rows(*model), "Bitstream_1||||\n"
                            "  one.sof||Off|Off|\n"
                            "Bitstream_2||||\n"
                            "  two.sof||Off|Off|\n"
                            "a.hex||||\n"
                            "b.rbf||||\n");
    EXPECT_EQ(model->get_top_level_items().size(), 4u);
    const QModelIndex bitstream = model->index(1, 0);
    const QModelIndex path = model->index(0, 3, bitstream);
    EXPECT_EQ(model->parent(path), bitstream);
    EXPECT_FALSE(model->parent(bitstream).isValid());
    EXPECT_FALSE(model->parent(model->index(2, 0)).isValid()) << "a raw file";
    EXPECT_FALSE(model->parent(QModelIndex()).isValid());
    EXPECT_EQ(model->rowCount(path), 0);
    EXPECT_EQ(model->rowCount(model->index(3, 0)), 0);
    EXPECT_EQ(model->flags(bitstream) & Qt::ItemIsEditable, 0);
}

TEST_F(INPUT_MODEL, the_header_has_labels_for_people_alone)
{
    const auto model = make_model();
    QStringList labels;
    for (int section = 0; section < 5; ++section) {
        labels << model->headerData(section, Qt::Horizontal).toString();
    }
    EXPECT_EQ(labels.join('|').toStdString(), "File Path|Device|Compression|Encryption|HPS File");
    EXPECT_FALSE(model->headerData(0, Qt::Vertical).isValid());
    EXPECT_FALSE(model->headerData(0, Qt::Horizontal, Qt::ToolTipRole).isValid());
}

TEST_F(INPUT_MODEL, a_bitstream_shows_its_id_and_nothing_else)
{
    add_bitstream(*m_vek, "Bitstream_1", m_directory / "one.sof");
    const auto model = make_model();
    EXPECT_EQ(cell(*model, 0, 0, Qt::DisplayRole).toString(), QStringLiteral("Bitstream_1"));
    EXPECT_FALSE(cell(*model, 0, 0, Qt::ToolTipRole).isValid());
    EXPECT_EQ(cell(*model, 0, 0, Qt::ForegroundRole).value<QColor>(), QColor(Qt::black));
    EXPECT_FALSE(cell(*model, 0, 0, Qt::DecorationRole).isValid());
    for (int column = 1; column < 5; ++column) {
        EXPECT_FALSE(cell(*model, 0, column, Qt::DisplayRole).isValid()) << column;
    }
}

TEST_F(INPUT_MODEL, a_file_is_black_with_its_path_until_it_disappears)
{
    const std::string path = bitstream("one.sof", "BS1L15");
    add_bitstream(*m_vek, "Bitstream_1", path);
    add_raw("Raw_File_1", m_directory / "data.hex");
    write_file(m_directory / "data.hex", std::string(":00000001FF\n"));
    const auto model = make_model();
    const QModelIndex parent = model->index(0, 0);
    EXPECT_EQ(cell(*model, 0, 0, Qt::ToolTipRole, parent).toString().toStdString(), path);
    EXPECT_EQ(cell(*model, 0, 0, Qt::ForegroundRole, parent).value<QColor>(), QColor(Qt::black));
    EXPECT_EQ(cell(*model, 1, 0, Qt::ForegroundRole).value<QColor>(), QColor(Qt::black));
    EXPECT_EQ(cell(*model, 1, 0, Qt::ToolTipRole).toString().toStdString(), m_directory / "data.hex");

    std::filesystem::remove(path);
    std::filesystem::remove(m_directory / "data.hex");
    for (const QModelIndex& index : {model->index(0, 0, parent), model->index(1, 0)}) {
        EXPECT_EQ(index.data(Qt::ForegroundRole).value<QColor>(), QColor(Qt::red));
        const std::string tip = index.data(Qt::ToolTipRole).toString().toStdString();
        EXPECT_EQ(tip.find(m_directory.path()), std::string::npos) << tip;
        EXPECT_TRUE(tip.ends_with(".")) << tip;
        EXPECT_FALSE(index.data().toString().isEmpty());
    }
}

TEST_F(INPUT_MODEL, what_has_become_no_file_or_another_one_is_red_and_never_waited_for)
{
    const std::string path = bitstream("one.sof", "BS1L15");
    add_bitstream(*m_vek, "Bitstream_1", path);
    const auto model = make_model();
    const QModelIndex index = model->index(0, 0, model->index(0, 0));
    const auto tip_of = [&index] {
        EXPECT_EQ(index.data(Qt::ForegroundRole).value<QColor>(), QColor(Qt::red));
        return index.data(Qt::ToolTipRole).toString().toStdString();
    };
    write_file(path, std::string("no bitstream"));
    EXPECT_EQ(tip_of(), "one.sof is not a bitstream file.");
    std::filesystem::remove(path);
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    EXPECT_TRUE(tip_of().starts_with("one.sof ")) << tip_of();
    std::filesystem::remove(path);
    std::filesystem::create_directory(path);
    EXPECT_TRUE(tip_of().starts_with("one.sof ")) << tip_of();
}

TEST_F(INPUT_MODEL, all_files_show_the_device_of_the_session_in_capitals)
{
    add_bitstream(*m_vek, "Bitstream_1", m_directory / "one.sof");
    add_raw("Raw_File_1", m_directory / "data.hex");
    m_cache->device_name = "bs1l15";
    const auto model = make_model();
    EXPECT_EQ(cell(*model, 0, 1, Qt::DisplayRole, model->index(0, 0)).toString(), QStringLiteral("BS1L15"));
    EXPECT_FALSE(cell(*model, 0, 1, Qt::ToolTipRole, model->index(0, 0)).isValid());
    EXPECT_FALSE(cell(*model, 1, 1, Qt::DisplayRole).isValid());
}

TEST_F(INPUT_MODEL, compression_and_encryption_are_those_of_the_element)
{
    const std::string path = m_directory / "one.sof";
    add_bitstream(*m_vek, "Bitstream_1", path);
    m_cache->family = DEV_FAMILY_BASALT;
    const auto model = make_model();
    EXPECT_EQ(rows(*model), "Bitstream_1||||\n  one.sof||Off|Off|\n");
    set_path_value("Bitstream_1", path, VEK_CMD_PARAM_BITSTREAM_PATH_COMPRESSION, "1");
    set_path_value("Bitstream_1", path, VEK_CMD_PARAM_BITSTREAM_PATH_ENCRYPTION, "1");
    EXPECT_EQ(rows(*model), "Bitstream_1||||\n  one.sof||On|On|\n");
    EXPECT_FALSE(cell(*model, 0, 2, Qt::ToolTipRole, model->index(0, 0)).isValid());
    EXPECT_FALSE(cell(*model, 0, 3, Qt::ToolTipRole, model->index(0, 0)).isValid());
    EXPECT_INTERNAL_ERROR(model->get_encryption_column_data(QModelIndex(), Qt::DisplayRole),
                          "index.isValid()");
}

TEST_F(INPUT_MODEL, a_signing_family_compresses_always_and_asks_the_file_about_encryption)
{
    const std::string path = m_directory / "one.sof";
    add_bitstream(*m_vek, "Bitstream_1", path);
    set_path_value("Bitstream_1", path, VEK_CMD_PARAM_BITSTREAM_PATH_ENCRYPTION, "1");
    m_cache->family = DEV_FAMILY_ZIRCON;
    const auto model = make_model();
    EXPECT_EQ(rows(*model), "Bitstream_1||||\n  one.sof||On|Off|\n") << "the file is not in the map";
    m_cache->sof_encryption_by_path[path] = true;
    EXPECT_EQ(rows(*model), "Bitstream_1||||\n  one.sof||On|On|\n");
}

TEST_F(INPUT_MODEL, a_file_of_no_bitstream_type_has_no_compression_and_leaves_a_debug_line)
{
    add_bitstream(*m_vek, "Bitstream_1", m_directory / "one.csof");
    const auto model = make_model();
    msg_set_debug_level(2);
    EXPECT_FALSE(cell(*model, 0, 3, Qt::DisplayRole, model->index(0, 0)).isValid());
    EXPECT_EQ(messages(), "");
    EXPECT_FALSE(cell(*model, 0, 2, Qt::DisplayRole, model->index(0, 0)).isValid());
    EXPECT_EQ(messages(), "0 unknown input file type 76 (SOF=75, PMSF=94)\n");
    msg_set_debug_level(0);
}

TEST_F(INPUT_MODEL, the_hps_file_shows_its_name_and_tells_its_path)
{
    const std::string path = m_directory / "one.sof";
    add_bitstream(*m_vek, "Bitstream_1", path);
    const auto model = make_model();
    const QModelIndex parent = model->index(0, 0);
    EXPECT_FALSE(cell(*model, 0, 4, Qt::DisplayRole, parent).isValid());
    set_path_value("Bitstream_1", path, VEK_CMD_PARAM_BITSTREAM_PATH_HPS_PATH, "sub/boot.hex");
    EXPECT_EQ(cell(*model, 0, 4, Qt::DisplayRole, parent).toString(), QStringLiteral("boot.hex"));
    EXPECT_EQ(cell(*model, 0, 4, Qt::ToolTipRole, parent).toString(), QStringLiteral("sub/boot.hex"));
    EXPECT_FALSE(cell(*model, 0, 4, Qt::ForegroundRole, parent).isValid());
}

TEST_F(INPUT_MODEL, only_the_first_column_is_written_and_only_as_shown)
{
    add_bitstream(*m_vek, "Bitstream_1", m_directory / "one.sof");
    const auto model = make_model();
    QSignalSpy changed(model.get(), SIGNAL(dataChanged(const QModelIndex&, const QModelIndex&)));
    const QModelIndex path = model->index(0, 0, model->index(0, 0));
    EXPECT_FALSE(model->setData(QModelIndex(), "x", Qt::DisplayRole));
    EXPECT_FALSE(model->setData(path, QVariant(), Qt::DisplayRole));
    EXPECT_FALSE(model->setData(path.siblingAtColumn(1), "x", Qt::DisplayRole));
    EXPECT_FALSE(model->setData(path, "x", Qt::EditRole));
    EXPECT_EQ(changed.count(), 0);
    EXPECT_TRUE(model->setData(path, "/other.sof", Qt::DisplayRole));
    EXPECT_EQ(path.data().toString(), QStringLiteral("other.sof"));
    ASSERT_EQ(changed.count(), 1);
    EXPECT_EQ(changed.at(0).at(0).toModelIndex(), path);
    EXPECT_INTERNAL_ERROR(model->set_file_path_column_data({}, "x", Qt::DisplayRole), "index.isValid()");
    EXPECT_INTERNAL_ERROR(model->set_file_path_column_data(path, {}, Qt::DisplayRole), "value.isValid()");
}

TEST_F(INPUT_MODEL, a_refresh_learns_the_session_from_the_first_files)
{
    add_bitstream(*m_vek, "Bitstream_1", bitstream("one.sof", "FD7X280", "", true));
    add_bitstream(*m_vek, "Bitstream_2", bitstream("two.sof", "FD7X280"));
    const auto model = make_model();
    QStringList order;
    QObject::connect(model.get(), &QAbstractItemModel::modelAboutToBeReset, [&] { order << "begin"; });
    QObject::connect(model.get(), &VEK_MODEL_INPUT_FILES::device_changed,
                     [&](const QString& name) { order << "device " + name; });
    QObject::connect(model.get(), &VEK_MODEL_INPUT_FILES::input_files_changed, [&] { order << "files"; });
    QObject::connect(model.get(), &QAbstractItemModel::modelReset, [&] { order << "end"; });
    model->refresh();
    EXPECT_EQ(order.join(", ").toStdString(), "begin, device FD7X280, files, end");
    EXPECT_EQ(m_cache->family, DEV_FAMILY_FELDSPAR);
    EXPECT_EQ(m_cache->max_bitstreams, 8u);
    EXPECT_TRUE(m_cache->shares_signing_properties);
    EXPECT_EQ(rows(*model), "Bitstream_1||||\n  one.sof|FD7X280|On|On|\n"
                            "Bitstream_2||||\n  two.sof|FD7X280|On|Off|\n");
}

TEST_F(INPUT_MODEL, missing_files_are_named_in_one_box_and_stay_in_the_document)
{
    add_bitstream(*m_vek, "Bitstream_1", "/gone/one.sof");
    add_bitstream(*m_vek, "Bitstream_2", "/gone/two.sof");
    set(*m_vek, VEK_CMD_OPT_BITSTREAM,
        {{VEK_CMD_PARAM_BITSTREAM_ID, "Bitstream_2"}, {VEK_CMD_PARAM_BITSTREAM_PATH, "/gone/further.sof"}});
    add_raw("Raw_File_1", "/gone/data.hex");
    const auto model = make_model();
    const MODAL_BOX box = refresh_with_box(*model);
    EXPECT_EQ(box.text.toStdString(),
              "Cannot find /gone/one.sof /gone/two.sof /gone/data.hex . Make sure the file(s) is located at "
              "the expected location or remove the incorrect file path and add the new file path.");
    EXPECT_EQ(box.icon, QMessageBox::Critical);
    EXPECT_EQ(box.title, QStringLiteral("Imagewright"));
    EXPECT_EQ(model->rowCount(), 3);
    EXPECT_EQ(m_cache->device_name, "");
}

TEST_F(INPUT_MODEL, more_missing_files_than_a_screen_holds_are_told_in_part_and_whole_on_demand)
{
    std::string all;
    for (int number = 1; number <= 40; ++number) {
        const std::string path = "/gone/" + std::to_string(number) + ".sof";
        all += (number == 1 ? "" : "\n") + path;
        add_bitstream(*m_vek, "Bitstream_" + std::to_string(number), path);
    }
    const auto model = make_model();
    MODAL_ANSWERS answers;
    std::string text;
    std::string details;
    answers.run([&](QDialog& dialog) {
        text = dynamic_cast<QMessageBox&>(dialog).text().toStdString();
        details = dynamic_cast<QMessageBox&>(dialog).detailedText().toStdString();
        dialog.accept();
    });
    model->refresh();
    EXPECT_NE(text.find("/gone/15.sof and 25 more. Make sure"), std::string::npos) << text;
    EXPECT_EQ(details, all);
}

TEST_F(INPUT_MODEL, a_relative_raw_file_is_looked_for_in_the_working_directory)
{
    write_file(m_directory / "data.hex", std::string(":00000001FF\n"));
    add_raw("Raw_File_1", "data.hex");
    const MODAL_ANSWERS no_boxes;
    make_model()->refresh();
}

TEST_F(INPUT_MODEL, another_document_leaves_no_index_of_the_old_one)
{
    add_bitstream(*m_vek, "Bitstream_1", "/in/one.sof");
    const auto model = make_model();
    const QPersistentModelIndex kept = model->index(0, 0, model->index(0, 0));
    m_vek = std::make_shared<PGM_COMMON_XML_VEK_VEK>(PGM_COMMON_XML_ENUM_VEK);
    model->set_vek(m_vek);
    EXPECT_FALSE(kept.isValid());
    EXPECT_EQ(model->rowCount(), 0);
}

TEST_F(INPUT_MODEL, names_of_any_kind_are_shown_and_asked_for)
{
    for (const std::string& name : {std::string("with blank.sof"), std::string("it's \"so\".sof"),
                                    std::string("gr\xC3\xBC\xC3\x9F.sof"), std::string("<b>&amp;.sof")}) {
        SCOPED_TRACE(name);
        m_vek = std::make_shared<PGM_COMMON_XML_VEK_VEK>(PGM_COMMON_XML_ENUM_VEK);
        add_bitstream(*m_vek, "Bitstream_1", bitstream(name, "BS1L15"));
        const auto model = make_model();
        const QModelIndex index = model->index(0, 0, model->index(0, 0));
        EXPECT_EQ(index.data().toString(), QString::fromLocal8Bit(name.c_str()));
        EXPECT_EQ(index.data(Qt::ForegroundRole).value<QColor>(), QColor(Qt::black));
    }
}

TEST_F(INPUT_MODEL, a_path_of_4000_characters_is_a_path_like_any_other)
{
    std::string path = m_directory.path();
    while (path.size() < 3990) {
        path += "/" + std::string(std::min<std::size_t>(100, 3990 - path.size()), 'd');
    }
    path += "/x.sof";
    add_bitstream(*m_vek, "Bitstream_1", path);
    const auto model = make_model();
    const QModelIndex index = model->index(0, 0, model->index(0, 0));
    EXPECT_EQ(index.data().toString(), QStringLiteral("x.sof"));
    EXPECT_EQ(index.data(Qt::ForegroundRole).value<QColor>(), QColor(Qt::red));
    EXPECT_TRUE(refresh_with_box(*model).text.contains(QString::fromStdString(path)));
    EXPECT_EQ(model->add_bitstream(FIO_PATH(path)), -1);
    EXPECT_TRUE(messages().starts_with("20653 x.sof"));
}
