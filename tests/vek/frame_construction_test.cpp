#include "child_process.h"
#include "gfpdb_mgr.h"
#include "nivo_safe_connect.h"
#include "vek_frame_fixture.h"

#include <QFormLayout>
#include <QFrame>

#include <sstream>
#include <sys/stat.h>

extern "C" MOK_FRAME_WND* pgm_vek_create_frame_wnd(MOK_FW_STATE_ENUM state, MOK_FRAME_INFO* info);

namespace
{

using VEK_FRAME_CONSTRUCTION = VEK_FRAME_FIXTURE;

QString name_of(const QObject* object)
{
    return object->objectName().isEmpty() ? QString::fromLatin1(object->metaObject()->className())
                                          : object->objectName();
}

} // namespace

TEST_F(VEK_FRAME_CONSTRUCTION, the_entry_creates_a_window_that_the_host_owns)
{
    MOK_FRAME_INFO info;
    info.application_name = QStringLiteral("Tool");
    const std::unique_ptr<MOK_FRAME_WND> frame(pgm_vek_create_frame_wnd(MOK_FW_STATE_MAIN, &info));
    ASSERT_NE(dynamic_cast<VEK_FRAME_WND*>(frame.get()), nullptr);
    EXPECT_EQ(frame->parent(), nullptr);
    EXPECT_TRUE(frame->is_main_window());
    EXPECT_EQ(frame->windowTitle(), QStringLiteral("Tool[*]"));
    EXPECT_EQ(frame->get_clsid(), NIVO_CLSID_VEK_DEFAULT_DOC);
}

TEST_F(VEK_FRAME_CONSTRUCTION, the_entry_is_all_that_the_module_exports)
{
    const std::string module = IMAGEWRIGHT_BINARY_DIR "/lib/libpgm_vek.so";
    std::vector<std::string> command{"nm", "--dynamic", "--defined-only", "--format=posix"};
    command.push_back(module);
    const CHILD_RESULT result = run_program(command);
    ASSERT_EQ(result.exit_code, 0) << result.err;
    std::vector<std::string> names;
    std::istringstream lines(result.out);
    for (std::string line; std::getline(lines, line);) {
        names.push_back(line.substr(0, line.find(' ')));
    }
    EXPECT_EQ(names, std::vector<std::string>{"pgm_vek_create_frame_wnd"});
}

TEST_F(VEK_FRAME_CONSTRUCTION, the_widgets_have_their_names_texts_and_places)
{
    const auto frame = make_frame();
    const auto* const form = frame->findChild<QFormLayout*>(QStringLiteral("m_form_layout"));
    ASSERT_NE(form, nullptr);
    ASSERT_EQ(form->rowCount(), 2);
    EXPECT_EQ(qobject_cast<QLabel*>(form->labelForField(family_combo(*frame)))->text(),
              QStringLiteral("Device family:"));
    EXPECT_EQ(qobject_cast<QLabel*>(form->labelForField(mode_combo(*frame)))->text(),
              QStringLiteral("Configuration mode:"));
    const auto* const bar = qobject_cast<QFrame*>(form->parentWidget());
    ASSERT_NE(bar, nullptr);
    EXPECT_EQ(bar->frameShape(), QFrame::Box);
    EXPECT_EQ(bar->frameShadow(), QFrame::Sunken);
    EXPECT_EQ(bar->lineWidth(), 1);
    EXPECT_EQ(bar->midLineWidth(), 0);

    const QTabWidget* const widget = tabs(*frame);
    ASSERT_EQ(widget->count(), 3);
    EXPECT_EQ(widget->tabText(0), QStringLiteral("&Output Files"));
    EXPECT_EQ(widget->tabText(1), QStringLiteral("&Input Files"));
    EXPECT_EQ(widget->tabText(2), QStringLiteral("&Configuration Device"));
    EXPECT_EQ(widget->widget(0)->objectName(), QStringLiteral("m_output_files"));
    EXPECT_EQ(widget->widget(1)->objectName(), QStringLiteral("m_input_files"));
    EXPECT_EQ(widget->widget(2)->objectName(), QStringLiteral("m_config_device"));

    const auto* const reset_button = frame->findChild<QPushButton*>(QStringLiteral("m_reset_button"));
    const auto* const generate_button = frame->findChild<QPushButton*>(QStringLiteral("m_generate_button"));
    ASSERT_TRUE(reset_button != nullptr && generate_button != nullptr);
    EXPECT_EQ(reset_button->text(), QStringLiteral("&Reset"));
    EXPECT_EQ(generate_button->text(), QStringLiteral("&Generate"));
    EXPECT_TRUE(generate_button->isEnabled());

    frame->show();
    const auto top = [&frame](const QWidget* child) { return child->mapTo(frame.get(), QPoint()); };
    EXPECT_LT(top(bar).y(), top(widget).y());
    EXPECT_LT(top(widget).y(), top(reset_button).y());
    EXPECT_EQ(top(reset_button).y(), top(generate_button).y());
    EXPECT_LT(top(reset_button).x(), top(generate_button).x());
    EXPECT_GT(top(reset_button).x(), frame->width() / 2);
}

TEST_F(VEK_FRAME_CONSTRUCTION, the_tab_key_goes_from_top_to_bottom)
{
    const auto frame = make_frame();
    QStringList order;
    const QWidget* widget = family_combo(*frame);
    do {
        if (widget->objectName().startsWith(QLatin1String("m_")) &&
            (widget->focusPolicy() & Qt::TabFocus) != 0) {
            order << widget->objectName();
        }
        widget = widget->nextInFocusChain();
    } while (widget != family_combo(*frame));
    EXPECT_EQ(
        order.join(' ').toStdString(),
        "m_family_combo m_mode_combo m_tab_widget m_directory_edit m_browse_button m_name_edit "
        "m_file_type_tree m_edit_button "
        "m_input_file_tree m_add_bitstream_button m_add_raw_data_button m_add_file_button m_remove_button "
        "m_properties_button m_config_device_tree m_add_device_button m_add_partition_button "
        "m_edit_button m_remove_button m_flash_loader_edit m_select_button m_reset_button m_generate_button");
}

TEST_F(VEK_FRAME_CONSTRUCTION, the_sixteen_connections_are_made_in_their_order)
{
    QStringList made;
    nivo_set_connect_watcher([&made](const QObject* sender, const QByteArray& signal, const QObject* receiver,
                                     const QByteArray& slot) {
        static const QStringList SENDERS{"m_family_combo", "m_mode_combo",   "m_output_files",
                                         "m_input_files",  "m_reset_button", "m_generate_button"};
        const QByteArray normalized = QMetaObject::normalizedSignature(signal);
        if (SENDERS.contains(name_of(sender)) || normalized.startsWith("mode_changed(")) {
            made << name_of(sender) + ' ' + normalized + " > " + name_of(receiver) + ' ' +
                        QMetaObject::normalizedSignature(slot);
        }
    });
    const auto frame = make_frame();
    nivo_set_connect_watcher(nullptr);

    const QStringList expected{
        "m_family_combo currentIndexChanged(int) > VEK_FRAME_WND set_family(int)",
        "m_family_combo currentIndexChanged(int) > m_input_files update_add_file_button_visible()",
        "m_mode_combo currentIndexChanged(int) > VEK_FRAME_WND set_mode(int)",
        "m_mode_combo currentIndexChanged(int) > VEK_FRAME_WND emit_mode_changed_signal(int)",
        "VEK_FRAME_WND mode_changed(PGMIO_CONFIG_SCHEME,bool) > m_output_files "
        "refresh_output_file_tree(PGMIO_CONFIG_SCHEME,bool)",
        "m_output_files output_file_check_state_changed() > VEK_FRAME_WND update_input_files_tab()",
        "m_output_files output_file_check_state_changed() > m_config_device update_flash_loader()",
        "m_output_files output_file_check_state_changed() > m_input_files update_input_file_types()",
        "m_output_files output_file_check_state_changed() > VEK_FRAME_WND update_config_device_tab()",
        "VEK_FRAME_WND mode_changed(PGMIO_CONFIG_SCHEME,bool) > VEK_FRAME_WND update_input_files_tab()",
        "VEK_FRAME_WND mode_changed(PGMIO_CONFIG_SCHEME,bool) > VEK_FRAME_WND "
        "reset_config_device_tab(PGMIO_CONFIG_SCHEME,bool)",
        "m_input_files input_files_changed() > VEK_FRAME_WND update_cache()",
        "m_input_files input_files_changed() > VEK_FRAME_WND update_config_device_tab()",
        "m_input_files device_changed(QString) > m_config_device update_device(QString)",
        "m_reset_button clicked() > VEK_FRAME_WND user_reset()",
        "m_generate_button clicked() > VEK_FRAME_WND generate()",
    };
    EXPECT_EQ(made.join('\n').toStdString(), expected.join('\n').toStdString());
}

TEST_F(VEK_FRAME_CONSTRUCTION, the_signal_and_the_slots_stand_in_their_order)
{
    const QMetaObject& meta = VEK_FRAME_WND::staticMetaObject;
    QStringList methods;
    for (int index = meta.methodOffset(); index < meta.methodCount(); ++index) {
        methods << QString::fromLatin1(meta.method(index).methodSignature());
    }
    EXPECT_EQ(methods.join(' ').toStdString(),
              "mode_changed(PGMIO_CONFIG_SCHEME,bool) on_open_action() set_family(int) set_mode(int) "
              "set_custom_db_dir() emit_mode_changed_signal(int) update_input_files_tab() "
              "update_config_device_tab() reset_config_device_tab(PGMIO_CONFIG_SCHEME,bool) user_reset() "
              "update_cache() generate() generate_finished()");
}

TEST_F(VEK_FRAME_CONSTRUCTION, a_new_window_stands_on_its_first_tab_with_the_others_closed)
{
    const auto frame = make_frame();
    EXPECT_EQ(tabs(*frame)->currentIndex(), 0);
    EXPECT_TRUE(tabs(*frame)->isTabEnabled(0));
    EXPECT_FALSE(tabs(*frame)->isTabEnabled(1));
    EXPECT_FALSE(tabs(*frame)->isTabEnabled(2));
}

TEST_F(VEK_FRAME_CONSTRUCTION, the_stored_flash_database_directory_comes_into_force)
{
    ASSERT_EQ(::mkdir((m_directory / "flash").c_str(), 0700), 0);
    ASSERT_TRUE(GFPDB_MGR::save_custom_dir_to_ini(m_directory / "flash", false));
    ASSERT_EQ(GFPDB_MGR::get_db_custom_dir(), "");
    const auto frame = make_frame();
    EXPECT_EQ(GFPDB_MGR::get_db_custom_dir(), m_directory / "flash");
}

TEST_F(VEK_FRAME_CONSTRUCTION, a_slot_of_the_combo_takes_the_family_before_the_input_tab_looks_at_it)
{
    const auto frame = make_frame();
    const auto* const button = frame->findChild<QPushButton*>(QStringLiteral("m_add_file_button"));
    EXPECT_TRUE(button->isHidden());
    choose_family(*frame, DEV_FAMILY_MULTI_FILE);
    EXPECT_FALSE(button->isHidden());
    choose_family(*frame, DEV_FAMILY_BASALT);
    EXPECT_TRUE(button->isHidden());
}

TEST_F(VEK_FRAME_CONSTRUCTION, deleting_the_window_neither_asks_nor_waits)
{
    const MODAL_ANSWERS no_questions;
    auto frame = make_frame();
    add_output(*VEK_FRAME_WND_PROBE::document(*frame), "RBF", "top", ".");
    frame->set_modified(true);
    const std::weak_ptr<PGM_COMMON_XML_VEK_VEK> document = VEK_FRAME_WND_PROBE::document(*frame);
    frame.reset();
    EXPECT_TRUE(document.expired());
}
