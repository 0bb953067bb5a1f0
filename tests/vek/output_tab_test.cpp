#include "fio_file_system.h"
#include "nivo_safe_connect.h"
#include "output_fixture.h"

#include <QFormLayout>
#include <QGridLayout>
#include <QHeaderView>

#include <sys/stat.h>

namespace
{

class OUTPUT_TAB : public OUTPUT_FIXTURE
{
protected:
    OUTPUT_TAB() { set_working_directory(m_directory.path()); }
};

} // namespace

TEST_F(OUTPUT_TAB, it_is_laid_out_from_directory_to_tree)
{
    const auto tab = make_tab();
    const auto* const grid = qobject_cast<QGridLayout*>(tab->layout());
    ASSERT_NE(grid, nullptr);
    EXPECT_EQ(qobject_cast<QLabel*>(grid->itemAtPosition(0, 0)->widget())->text(),
              QStringLiteral("Specify one or more programming files to generate."));
    EXPECT_EQ(grid->itemAtPosition(0, 0), grid->itemAtPosition(0, 1));
    const auto* const line = qobject_cast<QFrame*>(grid->itemAtPosition(1, 1)->widget());
    EXPECT_EQ(line->frameShape(), QFrame::HLine);
    EXPECT_EQ(line->frameShadow(), QFrame::Sunken);
    const auto* const form = qobject_cast<QFormLayout*>(grid->itemAtPosition(2, 0)->layout());
    ASSERT_NE(form, nullptr);
    EXPECT_EQ(qobject_cast<QLabel*>(form->itemAt(0, QFormLayout::LabelRole)->widget())->text(),
              QStringLiteral("Output directory:"));
    const QLayout* const directory_box = form->itemAt(0, QFormLayout::FieldRole)->layout();
    EXPECT_EQ(directory_box->itemAt(0)->widget(), &edit(*tab, "m_directory_edit"));
    EXPECT_EQ(directory_box->itemAt(1)->widget(), &button(*tab, "m_browse_button"));
    EXPECT_EQ(qobject_cast<QLabel*>(form->itemAt(1, QFormLayout::LabelRole)->widget())->text(),
              QStringLiteral("Name:"));
    EXPECT_EQ(form->itemAt(1, QFormLayout::FieldRole)->widget(), &edit(*tab, "m_name_edit"));
    EXPECT_EQ(grid->itemAtPosition(3, 0)->widget(), &tree(*tab));
    EXPECT_EQ(grid->itemAtPosition(3, 1)->widget(), &button(*tab, "m_edit_button"));
    EXPECT_EQ(grid->itemAtPosition(3, 1)->alignment(), Qt::AlignTop);
    EXPECT_EQ(button(*tab, "m_browse_button").text(), QStringLiteral("Browse..."));
    EXPECT_EQ(button(*tab, "m_edit_button").text(), QStringLiteral("Edit..."));
    EXPECT_FALSE(button(*tab, "m_edit_button").isEnabled());
    EXPECT_EQ(tree(*tab).header()->sectionSize(0), 450);
    EXPECT_EQ(tree(*tab).header()->sectionResizeMode(1), QHeaderView::Stretch);
}

TEST_F(OUTPUT_TAB, its_connections_are_made_in_their_order)
{
    QStringList made;
    nivo_set_connect_watcher([&made](const QObject* sender, const QByteArray& signal, const QObject* receiver,
                                     const QByteArray& slot) {
        const auto name = [](const QObject* object) {
            return object->objectName().isEmpty() ? QString::fromLatin1(object->metaObject()->className())
                                                  : object->objectName();
        };
        made << name(sender) + " " + signal + " > " + name(receiver) + " " + slot;
    });
    const VEK_TAB_OUTPUT_FILES tab(m_vek, m_cache, nullptr, Qt::WindowFlags());
    nivo_set_connect_watcher(nullptr);
    EXPECT_EQ(
        made.join('\n').toStdString(),
        "VEK_MODEL_OUTPUT_FILES check_state_changed(const QModelIndex&) > VEK_TREE_OUTPUT_FILES "
        "check_state_changed()\n"
        "VEK_MODEL_OUTPUT_FILES check_state_changed(const QModelIndex&) > VEK_TREE_OUTPUT_FILES "
        "update_children_visibility(const QModelIndex&)\n"
        "QItemSelectionModel selectionChanged(const QItemSelection&, const QItemSelection&) > "
        "VEK_TREE_OUTPUT_FILES "
        "selection_changed()\n"
        "m_directory_edit textChanged(const QString&) > VEK_TAB_OUTPUT_FILES set_directory(const QString&)\n"
        "m_browse_button clicked() > VEK_TAB_OUTPUT_FILES browse_directory()\n"
        "m_name_edit textChanged(const QString&) > m_file_type_tree update_file_name(const QString&)\n"
        "m_file_type_tree selection_changed() > VEK_TAB_OUTPUT_FILES update_edit_button()\n"
        "m_file_type_tree check_state_changed() > VEK_TAB_OUTPUT_FILES update_edit_button()\n"
        "m_edit_button clicked() > VEK_TAB_OUTPUT_FILES edit()\n"
        "m_file_type_tree check_state_changed() > VEK_TAB_OUTPUT_FILES "
        "output_file_check_state_changed()");
}

TEST_F(OUTPUT_TAB, a_new_tab_puts_its_defaults_into_the_cache)
{
    m_cache->output_name = "other";
    m_cache->output_directory = "/other";
    const VEK_TAB_OUTPUT_FILES tab(m_vek, m_cache, nullptr, Qt::WindowFlags());
    EXPECT_EQ(edit(tab, "m_name_edit").text(), QStringLiteral("output_file"));
    EXPECT_EQ(edit(tab, "m_directory_edit").text(), QStringLiteral("."));
    EXPECT_EQ(m_cache->output_name, "output_file");
    EXPECT_EQ(m_cache->output_directory, ".");
    EXPECT_EQ(tree(tab).model()->rowCount(), 0) << "the rows come with the first refresh";
}

TEST_F(OUTPUT_TAB, without_a_working_directory_the_default_is_where_the_process_is)
{
    set_working_directory("");
    FIO_FILE_SYSTEM::set_current_directory(m_directory.path());
    const VEK_TAB_OUTPUT_FILES tab(m_vek, m_cache, nullptr, Qt::WindowFlags());
    EXPECT_EQ(edit(tab, "m_directory_edit").text().toStdString(), m_directory.path());
}

TEST_F(OUTPUT_TAB, a_refresh_follows_the_first_output_file_and_overwrites_the_others)
{
    const auto tab = make_tab();
    add_output(*m_vek, "POF", "first", m_directory / "out");
    add_output(*m_vek, "RPD", "second", "/out/second");
    add_secondary("POF", "MAP");
    const QSignalSpy announced(tab.get(), SIGNAL(output_file_check_state_changed()));
    tab->refresh();
    EXPECT_EQ(announced.count(), 4) << "one for each tick that comes back";
    EXPECT_EQ(edit(*tab, "m_name_edit").text(), QStringLiteral("first"));
    EXPECT_EQ(edit(*tab, "m_directory_edit").text(), QStringLiteral("out")) << "relative to the host's";
    EXPECT_EQ(document(), "POF name=first dir=out (MAP first_pof)\n"
                          "RPD name=first dir=out (MAP first_rpd)\n");

    tab->set_vek(std::make_shared<PGM_COMMON_XML_VEK_VEK>(PGM_COMMON_XML_ENUM_VEK));
    EXPECT_EQ(edit(*tab, "m_name_edit").text(), QStringLiteral("first")) << "not before the refresh";
    tab->refresh();
    EXPECT_EQ(announced.count(), 4) << "nothing to announce";
    EXPECT_EQ(m_cache->output_name, "output_file");
    EXPECT_EQ(m_cache->output_directory, ".");
    EXPECT_EQ(tree(*tab).get_check_state(BRANCH{VEK_POF_FILE_TYPE}), Qt::Unchecked);
}

TEST_F(OUTPUT_TAB, only_a_change_of_mode_rebuilds_the_tree)
{
    const auto tab = make_tab();
    m_cache->current_mode = PGMIO_CONFIG_SCHEME_PS;
    tab->refresh_output_file_tree(PGMIO_CONFIG_SCHEME_PS, false);
    EXPECT_FALSE(find(*tree(*tab).model(), {VEK_TTF_FILE_TYPE}).isValid());
    tab->refresh_output_file_tree(PGMIO_CONFIG_SCHEME_FPP, true);
    EXPECT_TRUE(find(*tree(*tab).model(), {VEK_TTF_FILE_TYPE}).isValid());
    tree(*tab).clear();
    EXPECT_EQ(tree(*tab).model()->rowCount(), 0);
}

TEST_F(OUTPUT_TAB, an_empty_name_is_legal_while_typing_and_gone_with_the_focus)
{
    const auto tab = make_tab();
    click_box(*tab, {VEK_RPD_FILE_TYPE});
    QLineEdit& name = edit(*tab, "m_name_edit");
    name.setFocus();
    name.selectAll();
    QTest::keyClick(&name, Qt::Key_Backspace);
    EXPECT_EQ(m_cache->output_name, "");
    EXPECT_EQ(document(), "RPD name= dir=. (MAP _rpd)\n");
    QFocusEvent out(QEvent::FocusOut);
    QCoreApplication::sendEvent(&name, &out);
    EXPECT_EQ(name.text(), QStringLiteral("output_file"));
    EXPECT_EQ(document(), "RPD name=output_file dir=. (MAP output_file_rpd)\n");
}

TEST_F(OUTPUT_TAB, every_keystroke_in_the_name_reaches_document_and_tree)
{
    const auto tab = make_tab();
    click_box(*tab, {VEK_POF_FILE_TYPE});
    edit(*tab, "m_name_edit").clear();
    QTest::keyClicks(&edit(*tab, "m_name_edit"), QStringLiteral("top"));
    EXPECT_EQ(document(), "POF name=top dir=. (MAP top_pof)\n");
    EXPECT_EQ(find(*tree(*tab).model(), {VEK_POF_FILE_TYPE}).siblingAtColumn(1).data().toString(),
              QStringLiteral("top.pof"));
}

TEST_F(OUTPUT_TAB, an_empty_directory_is_the_working_directory_and_gone_with_the_focus)
{
    const auto tab = make_tab();
    click_box(*tab, {VEK_RPD_FILE_TYPE});
    QLineEdit& directory = edit(*tab, "m_directory_edit");
    VEK_FILE_ASSISTANT_LOG log;
    directory.setText(QStringLiteral("out"));
    EXPECT_EQ(log.take(), "set output_file type=RPD directory=out\n");
    EXPECT_EQ(m_cache->output_directory, "out");
    QSignalSpy changed(tab.get(), SIGNAL(directory_changed(const QString&)));
    directory.clear();
    EXPECT_EQ(m_cache->output_directory, ".");
    ASSERT_EQ(changed.count(), 1);
    EXPECT_EQ(changed.at(0).at(0).toString(), QString()) << "the text as typed";
    QFocusEvent out(QEvent::FocusOut);
    QCoreApplication::sendEvent(&directory, &out);
    EXPECT_EQ(directory.text(), QStringLiteral("."));
    log.refuse = [](const std::string&) { return true; };
    EXPECT_INTERNAL_ERROR(tab->set_directory(QStringLiteral("x")), "success");
}

TEST_F(OUTPUT_TAB, browsing_for_the_output_directory_starts_at_the_present_one)
{
    ASSERT_EQ(::mkdir((m_directory / "out").c_str(), 0700), 0);
    const auto tab = make_tab();
    QLineEdit& directory = edit(*tab, "m_directory_edit");
    directory.setText(QStringLiteral("out"));
    NIVO_NATIVE_FILE_DLG::reject_next();
    QTest::mouseClick(&button(*tab, "m_browse_button"), Qt::LeftButton);
    const NIVO_NATIVE_FILE_DLG::QUESTION& question = NIVO_NATIVE_FILE_DLG::last_question();
    EXPECT_EQ(question.title, QStringLiteral("Browse"));
    EXPECT_EQ(question.parent, tab.get());
    EXPECT_EQ(question.directory.toStdString(), m_directory / "out");
    EXPECT_EQ(question.file_mode, QFileDialog::Directory);
    EXPECT_EQ(question.accept_mode, QFileDialog::AcceptOpen);
    EXPECT_TRUE(question.options.testFlag(QFileDialog::ShowDirsOnly));
    EXPECT_EQ(directory.text(), QStringLiteral("out"));
    EXPECT_EQ(FIO_FILE_SYSTEM::get_current_directory(), m_directory / "out") << "and stays there";

    NIVO_NATIVE_FILE_DLG::answer_next({QString::fromStdString(m_directory / "out/deeper")});
    tab->browse_directory();
    EXPECT_EQ(directory.text(), QStringLiteral("out/deeper"));
    EXPECT_EQ(m_cache->output_directory, "out/deeper");
    NIVO_NATIVE_FILE_DLG::answer_next({QStringLiteral("/a"), QStringLiteral("/b")});
    EXPECT_INTERNAL_ERROR(tab->browse_directory(), "selected.size() == 1");
}

TEST_F(OUTPUT_TAB, there_is_something_to_edit_on_a_ticked_row_with_options)
{
    const auto tab = make_tab();
    const QPushButton& edit_button = button(*tab, "m_edit_button");
    select(*tab, {VEK_RPD_FILE_TYPE});
    EXPECT_FALSE(edit_button.isEnabled()) << "not ticked";
    click_box(*tab, {VEK_RPD_FILE_TYPE});
    EXPECT_TRUE(edit_button.isEnabled());
    select(*tab, {VEK_RPD_FILE_TYPE, VEK_MAP_FILE_TYPE});
    EXPECT_FALSE(edit_button.isEnabled()) << "no options";
    click_box(*tab, {VEK_POF_FILE_TYPE});
    select(*tab, {VEK_POF_FILE_TYPE, VEK_SEC_RPD_FILE_TYPE});
    EXPECT_FALSE(edit_button.isEnabled());
    click_box(*tab, {VEK_POF_FILE_TYPE, VEK_SEC_RPD_FILE_TYPE});
    EXPECT_TRUE(edit_button.isEnabled());
    click_box(*tab, {VEK_POF_FILE_TYPE, VEK_SEC_RPD_FILE_TYPE});
    EXPECT_FALSE(edit_button.isEnabled()) << "at once with the tick";
    select(*tab, {VEK_RPD_FILE_TYPE});
    EXPECT_TRUE(edit_button.isEnabled());
    tree(*tab).clearSelection();
    EXPECT_FALSE(edit_button.isEnabled());
    select(*tab, {VEK_RPD_FILE_TYPE});
    tab->reset();
    EXPECT_FALSE(edit_button.isEnabled());
}

TEST_F(OUTPUT_TAB, a_rebuilt_tree_has_nothing_selected_and_nothing_to_edit)
{
    const auto tab = make_tab();
    select(*tab, {VEK_RPD_FILE_TYPE});
    click_box(*tab, {VEK_RPD_FILE_TYPE});
    ASSERT_TRUE(button(*tab, "m_edit_button").isEnabled());
    tab->refresh_output_file_tree(PGMIO_CONFIG_SCHEME_AS_X4, true);
    EXPECT_TRUE(tree(*tab).get_current_file_type().empty());
    EXPECT_FALSE(button(*tab, "m_edit_button").isEnabled());
    EXPECT_EQ(tree(*tab).get_check_state(BRANCH{VEK_RPD_FILE_TYPE}), Qt::Checked);
}

TEST_F(OUTPUT_TAB, ticks_open_and_close_rows)
{
    const auto tab = make_tab();
    VEK_TREE_OUTPUT_FILES& view = tree(*tab);
    const auto is_open = [&](const BRANCH& branch) { return view.isExpanded(find(*view.model(), branch)); };
    EXPECT_FALSE(is_open({VEK_JIC_FILE_TYPE}));
    click_box(*tab, {VEK_JIC_FILE_TYPE});
    EXPECT_TRUE(is_open({VEK_JIC_FILE_TYPE}));
    click_box(*tab, {VEK_JIC_FILE_TYPE});
    EXPECT_FALSE(is_open({VEK_JIC_FILE_TYPE}));

    m_cache->family = DEV_FAMILY_GRANITE;
    tab->refresh();
    click_box(*tab, {VEK_CVP_GROUP_FILE_TYPE});
    EXPECT_TRUE(is_open({VEK_CVP_GROUP_FILE_TYPE}));
    EXPECT_TRUE(is_open({VEK_CVP_GROUP_FILE_TYPE, VEK_PERIPH_POF_FILE_TYPE}))
        << "with all that is ticked below";
    EXPECT_FALSE(is_open({VEK_CVP_GROUP_FILE_TYPE, VEK_PERIPH_JIC_FILE_TYPE}));
    view.collapseAll();
    tab->refresh();
    EXPECT_TRUE(is_open({VEK_CVP_GROUP_FILE_TYPE})) << "a rebuilt tree is opened by its ticks";
    EXPECT_TRUE(is_open({VEK_CVP_GROUP_FILE_TYPE, VEK_PERIPH_POF_FILE_TYPE}));
    EXPECT_INTERNAL_ERROR(view.update_children_visibility(QModelIndex()), "data.isValid()");
}

TEST_F(OUTPUT_TAB, the_branch_of_a_row_leads_from_the_top_to_it)
{
    m_cache->family = DEV_FAMILY_GRANITE;
    const auto tab = make_tab();
    const VEK_TREE_OUTPUT_FILES& view = tree(*tab);
    EXPECT_TRUE(view.get_current_file_type().empty());
    click_box(*tab, {VEK_CVP_GROUP_FILE_TYPE});
    const BRANCH branch = {VEK_CVP_GROUP_FILE_TYPE, VEK_PERIPH_POF_FILE_TYPE, VEK_MAP_FILE_TYPE};
    select(*tab, branch);
    EXPECT_EQ(view.get_current_file_type(), branch);
    EXPECT_EQ(view.get_check_state(branch), Qt::Checked);
    EXPECT_EQ(view.get_check_state(BRANCH{}), Qt::Unchecked);
    EXPECT_EQ(view.get_check_state(BRANCH{VEK_TTF_FILE_TYPE}), Qt::Unchecked);
    EXPECT_EQ(view.get_check_state(BRANCH{VEK_CVP_GROUP_FILE_TYPE, VEK_TTF_FILE_TYPE}), Qt::Checked)
        << "a type that is not there leaves the walk where it is";
    EXPECT_EQ(view.get_check_state(VEK_MAP_FILE_TYPE, VEK_PERIPH_POF_FILE_TYPE, VEK_CVP_GROUP_FILE_TYPE),
              Qt::Checked);
    EXPECT_EQ(view.get_check_state(VEK_POF_FILE_TYPE, VEK_INVALID_FILE_TYPE, VEK_INVALID_FILE_TYPE),
              Qt::Unchecked);
    EXPECT_INTERNAL_ERROR(
        view.get_check_state(VEK_TTF_FILE_TYPE, VEK_INVALID_FILE_TYPE, VEK_INVALID_FILE_TYPE),
        "node.isValid()");
}

TEST_F(OUTPUT_TAB, it_can_be_used_by_keyboard_alone)
{
    const auto tab = make_tab();
    tab->activateWindow();
    edit(*tab, "m_directory_edit").setFocus();
    const auto next = [&tab] {
        QTest::keyClick(tab->focusWidget(), Qt::Key_Tab);
        return tab->focusWidget()->objectName();
    };
    EXPECT_EQ(next(), QStringLiteral("m_browse_button"));
    EXPECT_EQ(next(), QStringLiteral("m_name_edit"));
    EXPECT_EQ(next(), QStringLiteral("m_file_type_tree"));
    VEK_TREE_OUTPUT_FILES& view = tree(*tab);
    select(*tab, {VEK_POF_FILE_TYPE});
    QTest::keyClick(&view, Qt::Key_Down);
    EXPECT_EQ(view.get_current_file_type(), BRANCH{VEK_RPD_FILE_TYPE});
    QTest::keyClick(&view, Qt::Key_Space);
    EXPECT_EQ(document(), "RPD name=output_file dir=. (MAP output_file_rpd)\n");
    EXPECT_EQ(next(), QStringLiteral("m_edit_button"));
    view.setCurrentIndex(view.currentIndex().siblingAtColumn(1));
    QTest::keyClick(&view, Qt::Key_Space);
    EXPECT_EQ(document(), "") << "from the name column too";
    select(*tab, {VEK_SVF_FILE_TYPE});
    QTest::keyClick(&view, Qt::Key_Space);
    view.selectionModel()->setCurrentIndex(find(*view.model(), {VEK_RPD_FILE_TYPE}),
                                           QItemSelectionModel::ClearAndSelect);
    QTest::keyClick(&view, Qt::Key_Space);
    EXPECT_EQ(document(), "SVF name=output_file dir=.\n") << "a disabled row cannot be ticked";
    EXPECT_EQ(button(*tab, "m_browse_button").shortcut(), QKeySequence(QStringLiteral("Alt+B")));
    EXPECT_EQ(button(*tab, "m_edit_button").shortcut(), QKeySequence(QStringLiteral("Alt+E")));
}

TEST_F(OUTPUT_TAB, a_click_on_a_disabled_box_changes_nothing)
{
    const auto tab = make_tab();
    click_box(*tab, {VEK_SVF_FILE_TYPE});
    click_box(*tab, {VEK_POF_FILE_TYPE});
    EXPECT_EQ(document(), "SVF name=output_file dir=.\n");
}

TEST_F(OUTPUT_TAB, a_tick_opens_the_input_tab_of_the_window)
{
    const auto frame = make_frame();
    choose_family(*frame, DEV_FAMILY_BASALT);
    choose_mode(*frame, PGMIO_CONFIG_SCHEME_AS_X4);
    EXPECT_FALSE(tabs(*frame)->isTabEnabled(1));
    auto* const tab = frame->findChild<VEK_TAB_OUTPUT_FILES*>();
    frame->show();
    click_box(*tab, {VEK_SVF_FILE_TYPE});
    EXPECT_TRUE(tabs(*frame)->isTabEnabled(1));
    edit(*tab, "m_name_edit").clear();
    click_box(*tab, {VEK_SVF_FILE_TYPE});
    EXPECT_FALSE(tabs(*frame)->isTabEnabled(1));
}

TEST_F(OUTPUT_TAB, a_document_opened_from_a_file_comes_back_with_ticks_names_and_directory)
{
    const auto frame = make_frame();
    open_document(*frame, DEV_FAMILY_BASALT, [](PGM_COMMON_XML_VEK_VEK& document) {
        set(document, VEK_CMD_OPT_SETTINGS, {{VEK_CMD_PARAM_SETTINGS_MODE, "ASX4"}});
        add_output(document, "POF", "flash", "out");
        set(document, VEK_CMD_OPT_OUTPUT_FILE,
            {{VEK_CMD_PARAM_OUTPUT_FILE_TYPE, "POF"},
             {VEK_CMD_PARAM_OUTPUT_FILE_SECONDARY_FILE_TYPE, "MAP"},
             {VEK_CMD_PARAM_OUTPUT_FILE_SECONDARY_FILE_NAME, "flash_pof"}});
    });
    const auto* const tab = frame->findChild<VEK_TAB_OUTPUT_FILES*>();
    EXPECT_EQ(edit(*tab, "m_name_edit").text(), QStringLiteral("flash"));
    EXPECT_EQ(edit(*tab, "m_directory_edit").text(), QStringLiteral("out"));
    EXPECT_EQ(tree(*tab).get_check_state(BRANCH{VEK_POF_FILE_TYPE, VEK_MAP_FILE_TYPE}), Qt::Checked);
    EXPECT_TRUE(tabs(*frame)->isTabEnabled(1));
}
