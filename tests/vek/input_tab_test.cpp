// The second tab: its buttons, its dialogs, and the add in the background.

#include "input_fixture.h"
#include "nivo_busy_dlg.h"
#include "vek_dlg_sof_properties.h"

#include <QGridLayout>
#include <QHeaderView>
#include <QLabel>
#include <QThreadPool>
#include <QVBoxLayout>

#include <filesystem>
#include <future>
#include <thread>

namespace
{

class INPUT_TAB : public INPUT_FIXTURE
{
protected:
    INPUT_TAB() : m_tab(make_tab()) {}

    void accept_outputs(const std::string& type)
    {
        add_output(*m_vek, type, "top", ".");
        m_tab->update_input_file_types();
    }
    void select(const QModelIndex& index) const { tree(*m_tab).setCurrentIndex(index); }
    QModelIndex top(int row) const { return tree(*m_tab).model()->index(row, 0); }
    QModelIndex child(int row, int parent) const { return tree(*m_tab).model()->index(row, 0, top(parent)); }
    void click(const char* name) const { button(*m_tab, name).click(); }

    std::unique_ptr<VEK_TAB_INPUT_FILES> m_tab;
};

/// Counts the paintings of a widget.
class PAINT_COUNTER : public QObject
{
public:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        count += event->type() == QEvent::Paint ? 1 : 0;
        return QObject::eventFilter(watched, event);
    }
    int count = 0;
};

/// The whole window, whose tab adds in the background.
class INPUT_BACKGROUND : public INPUT_FIXTURE
{
protected:
    INPUT_BACKGROUND() : m_frame(make_frame()) { m_frame->show(); }

    PGM_COMMON_XML_VEK_VEK* document() const { return VEK_FRAME_WND_PROBE::document(*m_frame).get(); }
    bool is_enabled() const
    {
        bool is_enabled = m_frame->centralWidget()->isEnabled();
        for (const int entry : {7, 13, 14}) {
            EXPECT_EQ(m_frame->get_menu_record().get_entry(0, entry)->isEnabled(), is_enabled) << entry;
        }
        return is_enabled;
    }
    QList<NIVO_BUSY_DLG*> busy_dialogs() const { return m_frame->findChildren<NIVO_BUSY_DLG*>(); }
    void start(const std::string& path) const { tree(*m_frame).add_bitstream(FIO_PATH(path)); }
    void finish() const
    {
        ASSERT_TRUE(QTest::qWaitFor([this] { return busy_dialogs().isEmpty(); }, 60000));
    }

    std::unique_ptr<VEK_FRAME_WND> m_frame;
};

} // namespace

TEST_F(INPUT_TAB, the_widgets_stand_in_their_places)
{
    const auto* const grid = qobject_cast<QGridLayout*>(m_tab->layout());
    ASSERT_NE(grid, nullptr);
    const auto* const label = qobject_cast<QLabel*>(grid->itemAtPosition(0, 1)->widget());
    EXPECT_EQ(label->text(), QStringLiteral("Specify one or more input files to convert."));
    const auto* const line = qobject_cast<QFrame*>(grid->itemAtPosition(1, 1)->widget());
    EXPECT_EQ(line->frameShape(), QFrame::HLine);
    EXPECT_EQ(line->frameShadow(), QFrame::Sunken);
    EXPECT_EQ(grid->itemAtPosition(2, 0)->widget(), &tree(*m_tab));
    const auto* const column = dynamic_cast<QVBoxLayout*>(grid->itemAtPosition(2, 1));
    ASSERT_NE(column, nullptr);
    QStringList texts;
    for (int row = 0; row < column->count(); ++row) {
        texts << qobject_cast<QPushButton*>(column->itemAt(row)->widget())->text();
    }
    EXPECT_EQ(texts.join('|').toStdString(),
              "Add Bitstream...|Add Raw Data...|Add File...|Remove|Properties...");
    EXPECT_EQ(live(*m_tab), "BR...") << "as built";
    const QHeaderView* const header = tree(*m_tab).header();
    EXPECT_EQ(header->sectionSize(0), 220);
    EXPECT_EQ(header->sectionSize(1), 160);
    EXPECT_EQ(header->sectionSize(2), header->defaultSectionSize());
    EXPECT_EQ(header->sectionSize(3), header->defaultSectionSize());
}

TEST_F(INPUT_TAB, the_outputs_open_the_buttons_that_add)
{
    m_tab->update_input_file_types();
    EXPECT_TRUE(m_tab->get_input_file_types().empty());
    EXPECT_EQ(m_tab->get_file_category(), 0u);
    EXPECT_EQ(live(*m_tab), ".....");
    accept_outputs("POF");
    EXPECT_EQ(m_tab->get_file_category(), VEK_FILE_CATEGORY_FLASH);
    EXPECT_EQ(live(*m_tab), "BR...");
    add_bitstream(*m_vek, "Bitstream_1", "/in/one.sof");
    m_tab->update_buttons();
    EXPECT_EQ(live(*m_tab), ".R...") << "one bitstream is all there may be";
    m_cache->max_bitstreams = 2;
    m_tab->update_buttons();
    EXPECT_EQ(live(*m_tab), "BR...");
}

TEST_F(INPUT_TAB, the_current_row_opens_the_other_buttons)
{
    accept_outputs("POF");
    add_bitstream(*m_vek, "Bitstream_1", bitstream("one.sof", "BS1L15"));
    for (const std::string name : {"a.hex", "b.puf", "c.wkey"}) {
        set(*m_vek, VEK_CMD_OPT_RAW_FILE,
            {{VEK_CMD_PARAM_RAW_FILE_ID, name}, {VEK_CMD_PARAM_RAW_FILE_RAW_FILE, m_directory / name}});
    }
    MODAL_ANSWERS answers;
    answers.click(QMessageBox::Ok);
    m_tab->refresh();
    EXPECT_TRUE(tree(*m_tab).isExpanded(top(0)));
    select(top(0));
    EXPECT_EQ(live(*m_tab), "BRFX.");
    m_cache->max_files_per_bitstream = 1;
    m_tab->update_buttons();
    EXPECT_EQ(live(*m_tab), "BR.X.");
    select(child(0, 0));
    EXPECT_EQ(live(*m_tab), "BR.XP");
    select(top(1));
    EXPECT_EQ(live(*m_tab), "BR.XP") << "a raw file that is not there has properties";
    select(top(2));
    EXPECT_EQ(live(*m_tab), "BR.X.");
    select(top(3));
    EXPECT_EQ(live(*m_tab), "BR.X.");
    std::filesystem::remove(m_directory / "one.sof");
    select(child(0, 0));
    EXPECT_EQ(live(*m_tab), "BR.X.");
    answers.click(QMessageBox::Ok);
    m_tab->refresh();
    EXPECT_EQ(live(*m_tab), "BR...") << "nothing is current after a refresh";
}

TEST_F(INPUT_TAB, a_file_that_has_gone_takes_its_button_away_at_the_press)
{
    add_bitstream(*m_vek, "Bitstream_1", bitstream("one.sof", "BS1L15"));
    m_tab->refresh();
    m_tab->show();
    select(child(0, 0));
    QPushButton& properties = button(*m_tab, "m_properties_button");
    EXPECT_TRUE(properties.isEnabled());
    std::filesystem::remove(m_directory / "one.sof");
    QTest::mouseClick(&properties, Qt::LeftButton);
    EXPECT_FALSE(properties.isEnabled());
    EXPECT_INTERNAL_ERROR(m_tab->properties(), "status");
}

TEST_F(INPUT_TAB, further_files_are_offered_in_one_family)
{
    const QPushButton& add_file = button(*m_tab, "m_add_file_button");
    for (const DEV_FAMILY_ENUM family :
         {DEV_FAMILY_NONE, DEV_FAMILY_MULTI_FILE, DEV_FAMILY_BASALT, DEV_FAMILY_ZIRCON}) {
        m_cache->family = family;
        m_tab->update_add_file_button_visible();
        EXPECT_EQ(add_file.isHidden(), family != DEV_FAMILY_MULTI_FILE) << family;
    }
}

TEST_F(INPUT_TAB, raw_data_is_asked_for_by_kind_and_shown_relative)
{
    accept_outputs("POF");
    NIVO_NATIVE_FILE_DLG::answer_next(
        {QString::fromStdString(m_directory / "a.hex"), QString::fromStdString(m_directory / "b.hex")});
    click("m_add_raw_data_button");
    const NIVO_NATIVE_FILE_DLG::QUESTION& question = NIVO_NATIVE_FILE_DLG::last_question();
    QStringList filters;
    for (const FIO_FILE_TYPE type : m_tab->get_input_file_types()) {
        if (type != 75 && type != 76 && type != 82 && type != 85) {
            filters << QString::fromStdString(fio_get_file_type_filter(type, false));
        }
    }
    EXPECT_EQ(question.name_filters, filters);
    EXPECT_EQ(question.title, QStringLiteral("Add Raw Data"));
    EXPECT_EQ(question.file_mode, QFileDialog::ExistingFiles);
    EXPECT_EQ(question.accept_mode, QFileDialog::AcceptOpen);
    EXPECT_EQ(question.parent, m_tab.get());
    ASSERT_EQ(VEK_FILE_ASSISTANT::get_raw_file_ids(m_vek.get()).size(), 1u) << "the first of several";
    EXPECT_EQ(VEK_FILE_ASSISTANT::get_raw_file_elements(m_vek.get()).at(0)->text, "a.hex");

    NIVO_NATIVE_FILE_DLG::reject_next();
    click("m_add_raw_data_button");
    NIVO_NATIVE_FILE_DLG::answer_next({QString::fromStdString(m_directory / "a.sof")});
    click("m_add_raw_data_button");
    EXPECT_EQ(messages(), "");
    NIVO_NATIVE_FILE_DLG::answer_next({QString::fromStdString(m_directory / "a.doc")});
    click("m_add_raw_data_button");
    EXPECT_EQ(messages(),
              "20653 a.doc is not a raw data file. The name of one ends in .hex, .rbf, .bin, .puf or "
              ".wkey; choose such a file.\n");
    EXPECT_EQ(VEK_FILE_ASSISTANT::get_raw_file_ids(m_vek.get()).size(), 1u);
}

TEST_F(INPUT_TAB, a_further_file_goes_into_the_current_bitstream)
{
    add_bitstream(*m_vek, "Bitstream_1", bitstream("one.sof", "DL2E20"));
    m_tab->refresh();
    m_tab->add_file();
    EXPECT_FALSE(NIVO_NATIVE_FILE_DLG::has_answer()) << "without a current bitstream nothing is asked";
    select(top(0));
    NIVO_NATIVE_FILE_DLG::answer_next({QString::fromStdString(bitstream("two.sof", "DL2E35"))});
    click("m_add_file_button");
    EXPECT_EQ(NIVO_NATIVE_FILE_DLG::last_question().title, QStringLiteral("Add File"));
    EXPECT_EQ(NIVO_NATIVE_FILE_DLG::last_question().name_filters,
              QStringList(QString::fromStdString(fio_get_extension_type_filter(FIO_EXT_SOF, false))));
    EXPECT_EQ(rows(*tree(*m_tab).model()),
              "Bitstream_1||||\n  one.sof|DL2E20|Off|Off|\n  two.sof|DL2E20|Off|Off|\n");
    NIVO_NATIVE_FILE_DLG::answer_next({QString::fromStdString(bitstream("three.pmsf", "DL2E35"))});
    click("m_add_file_button");
    EXPECT_EQ(tree(*m_tab).model()->rowCount(top(0)), 2) << "only SOF files are chained";
}

TEST_F(INPUT_TAB, removing_what_has_children_is_asked_for_first)
{
    const std::string one = bitstream("one.sof", "DL2E20");
    const std::string two = bitstream("two.sof", "DL2E20");
    add_bitstream(*m_vek, "Bitstream_1", one);
    set(*m_vek, VEK_CMD_OPT_BITSTREAM,
        {{VEK_CMD_PARAM_BITSTREAM_ID, "Bitstream_1"}, {VEK_CMD_PARAM_BITSTREAM_PATH, two}});
    m_tab->refresh();
    const QSignalSpy resets(tree(*m_tab).model(), SIGNAL(modelReset()));
    select(top(0));
    MODAL_ANSWERS answers;
    answers.click(QMessageBox::No);
    click("m_remove_button");
    ASSERT_EQ(answers.boxes().size(), 1);
    EXPECT_EQ(answers.boxes().at(0).title, QStringLiteral("Imagewright"));
    EXPECT_EQ(answers.boxes().at(0).text,
              QStringLiteral("Removing this item will remove all of its child items."));
    EXPECT_EQ(answers.boxes().at(0).informative_text, QStringLiteral("Do you want to continue?"));
    EXPECT_EQ(answers.boxes().at(0).icon, QMessageBox::Warning);
    EXPECT_EQ(answers.boxes().at(0).default_button, QMessageBox::No);
    EXPECT_EQ(resets.count(), 1) << "a refresh all the same";
    EXPECT_EQ(tree(*m_tab).model()->rowCount(top(0)), 2);

    select(child(0, 0));
    click("m_remove_button");
    EXPECT_EQ(rows(*tree(*m_tab).model()), "Bitstream_1||||\n  two.sof|DL2E20|Off|Off|\n");
    select(top(0));
    answers.click(QMessageBox::Yes);
    click("m_remove_button");
    EXPECT_EQ(tree(*m_tab).model()->rowCount(), 0);
    EXPECT_EQ(live(*m_tab).substr(2), "...");
    m_tab->remove();
    EXPECT_EQ(resets.count(), 4) << "nothing current: a refresh alone";
}

TEST_F(INPUT_TAB, a_reset_takes_all_files_out_whatever_is_current)
{
    add_output(*m_vek, "POF", "top", ".");
    add_bitstream(*m_vek, "Bitstream_1", bitstream("one.sof", "DL2E20"));
    for (const std::string name : {"two.sof", "three.sof"}) {
        set(*m_vek, VEK_CMD_OPT_BITSTREAM,
            {{VEK_CMD_PARAM_BITSTREAM_ID, "Bitstream_1"},
             {VEK_CMD_PARAM_BITSTREAM_PATH, bitstream(name, "DL2E20")}});
    }
    set(*m_vek, VEK_CMD_OPT_RAW_FILE,
        {{VEK_CMD_PARAM_RAW_FILE_ID, "Raw_File_1"},
         {VEK_CMD_PARAM_RAW_FILE_RAW_FILE, bitstream("data.hex", "DL2E20")}});
    assign("P1", VEK_CMD_PARAM_ASSIGNMENT_BITSTREAM_ID, "Bitstream_1");
    assign("P2", VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID, "Raw_File_1");
    m_tab->refresh();
    m_tab->show();
    select(child(2, 0));
    QTest::mouseClick(tree(*m_tab).viewport(), Qt::LeftButton, Qt::NoModifier,
                      tree(*m_tab).visualRect(child(1, 0)).center());
    const QSignalSpy changed(m_tab.get(), SIGNAL(input_files_changed()));
    const QSignalSpy device(m_tab.get(), SIGNAL(device_changed(const QString&)));
    m_tab->reset();
    EXPECT_EQ(changed.count(), 4) << "one for each file";
    EXPECT_EQ(device.count(), 1);
    EXPECT_EQ(VEK_FILE_ASSISTANT::get_assignment_element(m_vek.get(), "P1"), nullptr);
    EXPECT_EQ(VEK_FILE_ASSISTANT::get_assignment_element(m_vek.get(), "P2"), nullptr);
    EXPECT_TRUE(VEK_FILE_ASSISTANT::get_output_file_elements(m_vek.get()).at(0)->bitstream_id.empty());
    EXPECT_EQ(tree(*m_tab).model()->rowCount(), 0);
    m_tab->grab();
    EXPECT_EQ(live(*m_tab).substr(2), "...");
}

TEST_F(INPUT_TAB, properties_are_read_shown_and_stored_under_the_same_keys)
{
    accept_outputs("RBF");
    const std::string path = bitstream("one.sof", "BS1L15");
    add_bitstream(*m_vek, "Bitstream_1", path);
    m_tab->refresh();
    EXPECT_INTERNAL_ERROR(m_tab->properties(), "Missing properties handler for the selected file.");
    select(top(0));
    EXPECT_INTERNAL_ERROR(m_tab->properties(), "Missing properties handler for the selected file.");
    select(child(0, 0));
    VEK_FILE_ASSISTANT_LOG log;
    MODAL_ANSWERS answers;
    answers.run([](QDialog& dialog) { dialog.reject(); });
    click("m_properties_button");
    EXPECT_EQ(log.take(), "");
    std::string expected;
    answers.run([&expected](QDialog& dialog) {
        auto& properties = dynamic_cast<VEK_DLG_SOF_PROPERTIES&>(dialog);
        properties.set_property_values({{VEK_CMD_PARAM_BITSTREAM_PATH_COMPRESSION, "1"}});
        for (const auto& [param, value] : properties.get_property_values()) {
            expected += std::string(" ") + PGM_COMMON_XML_VEK_CMD_PARAM.at(param) + "=" + value;
        }
        dialog.accept();
    });
    click("m_properties_button");
    EXPECT_EQ(log.take(), std::string("set bitstream ") +
                              PGM_COMMON_XML_VEK_CMD_PARAM.at(VEK_CMD_PARAM_BITSTREAM_ID) + "=Bitstream_1 " +
                              PGM_COMMON_XML_VEK_CMD_PARAM.at(VEK_CMD_PARAM_BITSTREAM_PATH) + "=" + path +
                              expected + "\n");
    EXPECT_EQ(rows(*tree(*m_tab).model()), "Bitstream_1||||\n  one.sof|BS1L15|On|Off|\n");
}

TEST_F(INPUT_TAB, properties_of_raw_data_are_stored_too)
{
    accept_outputs("POF");
    write_file(m_directory / "a.hex", std::string(":00000001FF\n"));
    set(*m_vek, VEK_CMD_OPT_RAW_FILE,
        {{VEK_CMD_PARAM_RAW_FILE_ID, "Raw_File_1"}, {VEK_CMD_PARAM_RAW_FILE_RAW_FILE, "a.hex"}});
    m_tab->refresh();
    select(top(0));
    MODAL_ANSWERS answers;
    answers.run([](QDialog& dialog) {
        dynamic_cast<VEK_DLG_SOF_PROPERTIES&>(dialog).set_property_values(
            {{VEK_CMD_PARAM_RAW_FILE_BITSWAP, "1"}});
        dialog.accept();
    });
    click("m_properties_button");
    EXPECT_EQ(VEK_FILE_ASSISTANT::get_raw_file_elements(m_vek.get()).at(0)->bitswap, "1");
}

TEST_F(INPUT_TAB, the_tree_passes_on_only_what_fits)
{
    add_bitstream(*m_vek, "Bitstream_1", bitstream("one.sof", "DL2E20"));
    m_tab->refresh();
    VEK_FILE_ASSISTANT_LOG log;
    tree(*m_tab).add_sof_file(FIO_PATH(m_directory / "one.hex"), "Bitstream_1");
    tree(*m_tab).add_sof_file(FIO_PATH(m_directory / "one.sof"), "Bitstream_2");
    tree(*m_tab).add_raw_data(FIO_PATH(m_directory / "one.sof"));
    tree(*m_tab).update_bitstream_properties("Bitstream_2", FIO_PATH("/x.sof"), {});
    tree(*m_tab).update_raw_data_properties("Raw_File_1", FIO_PATH("/x.hex"), {});
    EXPECT_EQ(log.take(), "");
    EXPECT_EQ(messages(), "");
    const std::shared_ptr<PGM_COMMON_XML_VEK_VEK> none;
    EXPECT_INTERNAL_ERROR(tree(*m_tab).set_vek(none), "vek != nullptr");
    EXPECT_INTERNAL_ERROR(VEK_TREE_INPUT_FILES(none, m_cache, nullptr), "m_vek != nullptr");
    EXPECT_INTERNAL_ERROR(VEK_TREE_INPUT_FILES(m_vek, nullptr, nullptr), "m_cache != nullptr");
    tree(*m_tab).setModel(nullptr);
    EXPECT_INTERNAL_ERROR(tree(*m_tab).refresh(), "model != nullptr");
}

TEST_F(INPUT_TAB, without_a_window_nothing_is_added_in_the_background)
{
    EXPECT_INTERNAL_ERROR(tree(*m_tab).add_bitstream(FIO_PATH("/in/one.sof")), "main_window");
}

TEST_F(INPUT_BACKGROUND, while_an_add_runs_the_window_is_disabled_behind_a_busy_dialog)
{
    const std::string path = bitstream("one.sof", "BS1L15");
    add_output(*document(), "RBF", "top", ".");
    auto* const tab = m_frame->findChild<VEK_TAB_INPUT_FILES*>();
    tab->update_input_file_types();
    set_working_directory(m_directory.path());
    NIVO_NATIVE_FILE_DLG::answer_next({QStringLiteral("one.sof"), QStringLiteral("two.sof")});
    EXPECT_TRUE(is_enabled());
    tab->add_bitstream();
    EXPECT_EQ(NIVO_NATIVE_FILE_DLG::last_question().title, QStringLiteral("Add Bitstream"));
    EXPECT_TRUE(NIVO_NATIVE_FILE_DLG::last_question().name_filters.contains(
        QString::fromStdString(fio_get_file_type_filter(FIO_SOF_FILE, false))));
    EXPECT_FALSE(is_enabled());
    ASSERT_EQ(busy_dialogs().size(), 1);
    EXPECT_EQ(busy_dialogs().at(0)->windowTitle(), QStringLiteral("Imagewright"));
    EXPECT_EQ(busy_dialogs().at(0)->parent(), m_frame->centralWidget());
    EXPECT_EQ(busy_dialogs().at(0)->findChild<QLabel*>(QStringLiteral("text_label"))->text(),
              QStringLiteral("Please wait while the Imagewright is processing..."));
    finish();
    EXPECT_TRUE(is_enabled());
    const auto& view = tree(*m_frame);
    EXPECT_EQ(rows(*view.model()), "Bitstream_1||||\n  one.sof|BS1L15|Off|Off|\n");
    EXPECT_TRUE(view.isExpanded(view.model()->index(0, 0)));
    EXPECT_EQ(VEK_FILE_ASSISTANT::get_path_elements(document(), "Bitstream_1").at(0)->text, path)
        << "the first of several, absolute";
}

TEST_F(INPUT_BACKGROUND, a_refusal_gives_the_window_back)
{
    write_file(m_directory / "bad.sof", std::string("rubbish"));
    start(m_directory / "bad.sof");
    EXPECT_FALSE(is_enabled());
    finish();
    EXPECT_TRUE(is_enabled());
    EXPECT_NE(messages().find("20653 bad.sof is not a bitstream file.\n"), std::string::npos);
    EXPECT_EQ(tree(*m_frame).model()->rowCount(), 0);
    start(bitstream("good.sof", "BS1L15"));
    finish();
    EXPECT_EQ(tree(*m_frame).model()->rowCount(), 1);
}

TEST_F(INPUT_BACKGROUND, every_step_that_the_window_sees_is_made_on_its_thread)
{
    const std::thread::id gui = std::this_thread::get_id();
    QStringList order;
    const auto note = [&](const char* what) {
        EXPECT_EQ(std::this_thread::get_id(), gui) << what;
        order << what;
    };
    auto* const model = tree(*m_frame).model();
    QObject::connect(
        model, &QAbstractItemModel::rowsAboutToBeInserted, m_frame.get(), [&] { note("begin"); },
        Qt::DirectConnection);
    QObject::connect(
        model, &QAbstractItemModel::rowsInserted, m_frame.get(), [&] { note("end"); }, Qt::DirectConnection);
    QObject::connect(
        &tree(*m_frame), &VEK_TREE_INPUT_FILES::device_changed, m_frame.get(), [&] { note("device"); },
        Qt::DirectConnection);
    QObject::connect(
        &tree(*m_frame), &VEK_TREE_INPUT_FILES::input_files_changed, m_frame.get(), [&] { note("files"); },
        Qt::DirectConnection);
    start(bitstream("one.sof", "BS1L15"));
    finish();
    EXPECT_EQ(order.join(' ').toStdString(), "begin end device begin end files");
}

TEST_F(INPUT_BACKGROUND, a_hundred_adds_while_the_window_is_resized_and_painted)
{
    const std::string good = bitstream("one.sof", "BS1L15");
    write_file(m_directory / "bad.sof", std::string("rubbish"));
    VEK_FRAME_WND_PROBE::cache(*m_frame).max_bitstreams = 100;
    tabs(*m_frame)->setTabEnabled(1, true);
    tabs(*m_frame)->setCurrentIndex(1);
    ASSERT_TRUE(QTest::qWaitForWindowExposed(m_frame.get()));
    PAINT_COUNTER paints;
    tree(*m_frame).viewport()->installEventFilter(&paints);
    for (int number = 0; number < 100; ++number) {
        const int before = paints.count;
        start(number % 4 == 3 ? m_directory / "bad.sof" : good);
        for (int size = 0; !busy_dialogs().isEmpty(); ++size) {
            m_frame->resize(800 + size % 50, 600 + (size + number) % 50);
            tree(*m_frame).viewport()->repaint();
            QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        }
        EXPECT_GT(paints.count, before) << "painted while the add runs";
    }
    EXPECT_EQ(tree(*m_frame).model()->rowCount(), 75);
    EXPECT_TRUE(is_enabled());
}

TEST_F(INPUT_BACKGROUND, a_window_deleted_during_an_add_waits_for_nothing)
{
    const std::string path = bitstream("one.sof", "BS1L15");
    const std::weak_ptr<PGM_COMMON_XML_VEK_VEK> kept = VEK_FRAME_WND_PROBE::document(*m_frame);
    start(path);
    m_frame.reset();
    QThreadPool::globalInstance()->waitForDone();
    EXPECT_TRUE(QTest::qWaitFor(
        [&kept] {
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
            return kept.expired();
        },
        60000));
}

TEST(VEK_GUI_GATE, a_closed_gate_lets_the_waiting_task_go_on_alone)
{
    VEK_GUI_GATE gate;
    std::vector<std::thread::id> steps;
    std::thread task([&] {
        gate.run([&] { steps.push_back(std::this_thread::get_id()); });
        gate.run([&] { steps.push_back(std::this_thread::get_id()); });
    });
    const std::thread::id id = task.get_id();
    gate.close();
    task.join();
    EXPECT_EQ(steps, (std::vector<std::thread::id>{id, id}));
    gate.run([&] { steps.push_back(std::this_thread::get_id()); });
    EXPECT_EQ(steps.back(), std::this_thread::get_id());
}
