#include "fio_file_system.h"
#include "mok_ui_mgr.h"
#include "vek_file_edit.h"
#include "vek_frame_fixture.h"
#include "vek_gui_util.h"

#include <QToolButton>

#include <sys/stat.h>

namespace
{

class VEK_FILE_EDIT_TEST : public VEK_FRAME_FIXTURE
{
protected:
    VEK_FILE_EDIT_TEST() : m_spy(&m_edit, SIGNAL(fileEditTextChanged(const QString&)))
    {
        ::mkdir((m_directory / "in").c_str(), 0700);
    }
    QString text() const { return m_edit.get_line_edit()->text(); }
    void type(const std::string& typed) { m_edit.get_line_edit()->setText(QString::fromStdString(typed)); }
    QString filter(FIO_FILE_TYPE file_type) const
    {
        return QString::fromStdString(fio_get_file_type_filter(file_type, true));
    }
    void browse() { m_edit.get_browse_button()->click(); }

    VEK_FILE_EDIT m_edit;
    QSignalSpy m_spy;
};

} // namespace

TEST_F(VEK_FILE_EDIT_TEST, paths_are_relative_to_the_working_directory_outside_and_absolute_inside)
{
    set_working_directory("/base/files");
    EXPECT_EQ(VEK_GUI_UTIL::format_path(FIO_PATH("/base/files/in/top.sof")).fullpath(), "in/top.sof");
    EXPECT_EQ(VEK_GUI_UTIL::format_path(FIO_PATH("/base/top.sof")).fullpath(), "../top.sof");
    EXPECT_EQ(VEK_GUI_UTIL::make_path_absolute(FIO_PATH("in/top.sof")).fullpath(), "/base/files/in/top.sof");
    EXPECT_EQ(VEK_GUI_UTIL::make_path_absolute(FIO_PATH("/other/top.sof")).fullpath(), "/other/top.sof");
}

TEST_F(VEK_FILE_EDIT_TEST, without_a_working_directory_paths_stay_as_they_are)
{
    EXPECT_EQ(VEK_GUI_UTIL::format_path(FIO_PATH("/base/top.sof")).fullpath(), "/base/top.sof");
    EXPECT_EQ(VEK_GUI_UTIL::make_path_absolute(FIO_PATH("in/top.sof")).fullpath(), "in/top.sof");
}

TEST_F(VEK_FILE_EDIT_TEST, a_missing_application_or_manager_is_an_internal_error)
{
    m_app.reset();
    EXPECT_INTERNAL_ERROR(VEK_GUI_UTIL::format_path(FIO_PATH("a")), "app != nullptr");
    EXPECT_INTERNAL_ERROR(m_edit.set_path(FIO_PATH("a")), "app != nullptr");
    m_app = std::make_unique<MOK_APP>(std::unique_ptr<MOK_UI_MGR>());
    EXPECT_INTERNAL_ERROR(VEK_GUI_UTIL::make_path_absolute(FIO_PATH("a")), "ui_mgr != nullptr");
    EXPECT_INTERNAL_ERROR(m_edit.browse(), "ui_mgr != nullptr");
}

TEST_F(VEK_FILE_EDIT_TEST, the_field_is_a_line_edit_with_a_button_beside_it)
{
    EXPECT_EQ(m_edit.get_browse_button()->text(), QStringLiteral("..."));
    ASSERT_NE(m_edit.layout(), nullptr);
    EXPECT_EQ(m_edit.layout()->spacing(), 0);
    EXPECT_TRUE(m_edit.layout()->contentsMargins().isNull());
    EXPECT_EQ(m_edit.layout()->itemAt(0)->widget(), m_edit.get_line_edit());
    EXPECT_EQ(m_edit.layout()->itemAt(1)->widget(), m_edit.get_browse_button());
}

TEST_F(VEK_FILE_EDIT_TEST, a_field_of_blanks_has_an_empty_path)
{
    set_working_directory("/base");
    type("   \t ");
    EXPECT_TRUE(m_edit.get_path().is_empty());
    EXPECT_EQ(m_edit.get_path().fullpath(), "");
}

TEST_F(VEK_FILE_EDIT_TEST, the_path_is_trimmed_and_made_absolute)
{
    type("  in/top.sof ");
    EXPECT_EQ(m_edit.get_path().fullpath(), "in/top.sof") << "without a base it stays relative";
    set_working_directory("/base");
    EXPECT_EQ(m_edit.get_path().fullpath(), "/base/in/top.sof");
}

TEST_F(VEK_FILE_EDIT_TEST, a_path_is_shown_relative_and_neither_setting_nor_typing_fires)
{
    m_edit.set_path(FIO_PATH("/base/in/top.sof"));
    EXPECT_EQ(text(), QStringLiteral("/base/in/top.sof"));
    set_working_directory("/base");
    m_edit.set_path(FIO_PATH("/base/in/top.sof"));
    EXPECT_EQ(text(), QStringLiteral("in/top.sof"));
    QTest::keyClicks(m_edit.get_line_edit(), QStringLiteral("x"));
    EXPECT_EQ(text(), QStringLiteral("in/top.sofx"));
    EXPECT_EQ(m_spy.count(), 0);
}

TEST_F(VEK_FILE_EDIT_TEST, a_chosen_file_gets_the_extension_of_the_chosen_filter)
{
    set_working_directory(m_directory.path());
    m_edit.set_file_types({FIO_SOF_FILE, FIO_PEM_FILE});
    NIVO_NATIVE_FILE_DLG::answer_next({QString::fromStdString(m_directory / "in/key.txt")},
                                      filter(FIO_PEM_FILE));
    browse();
    EXPECT_EQ(text(), QStringLiteral("in/key.pem"));
    ASSERT_EQ(m_spy.count(), 1);
    EXPECT_EQ(m_spy.at(0).at(0).toString(), text());
}

TEST_F(VEK_FILE_EDIT_TEST, a_type_with_several_extensions_is_filtered_by_its_default_one)
{
    ASSERT_NE(filter(FIO_HPS_BOOTLOADER_FILE).toStdString(),
              fio_get_file_type_filter(FIO_HPS_BOOTLOADER_FILE, false));
    m_edit.set_file_types({FIO_HPS_BOOTLOADER_FILE});
    NIVO_NATIVE_FILE_DLG::answer_next({QStringLiteral("/in/boot.ihex")});
    browse();
    EXPECT_EQ(NIVO_NATIVE_FILE_DLG::last_question().name_filters,
              QStringList{filter(FIO_HPS_BOOTLOADER_FILE)});
    EXPECT_EQ(text(), QStringLiteral("/in/boot.hex"));
}

TEST_F(VEK_FILE_EDIT_TEST, the_dialog_is_asked_for_what_the_field_takes)
{
    set_working_directory(m_directory.path());
    type("in/top.sof");
    m_edit.set_file_types({FIO_SOF_FILE, FIO_PEM_FILE});
    m_edit.set_file_mode(QFileDialog::ExistingFile);
    NIVO_NATIVE_FILE_DLG::reject_next();
    browse();
    const NIVO_NATIVE_FILE_DLG::QUESTION& question = NIVO_NATIVE_FILE_DLG::last_question();
    EXPECT_EQ(question.title, QStringLiteral("Browse"));
    EXPECT_EQ(question.name_filters, (QStringList{filter(FIO_SOF_FILE), filter(FIO_PEM_FILE)}));
    EXPECT_EQ(question.file_mode, QFileDialog::ExistingFile);
    EXPECT_EQ(question.parent, &m_edit);
    EXPECT_EQ(question.directory.toStdString(), m_directory / "in");
}

TEST_F(VEK_FILE_EDIT_TEST, a_field_starts_with_any_file)
{
    NIVO_NATIVE_FILE_DLG::answer_next({QStringLiteral("/in/key.txt")});
    browse();
    EXPECT_EQ(NIVO_NATIVE_FILE_DLG::last_question().name_filters, QStringList{filter(FIO_ANY_FILE)});
    EXPECT_EQ(NIVO_NATIVE_FILE_DLG::last_question().file_mode, QFileDialog::AnyFile);
    EXPECT_EQ(text(), QStringLiteral("/in/key.txt"));
}

TEST_F(VEK_FILE_EDIT_TEST, without_file_types_the_chosen_file_stays_as_it_is)
{
    m_edit.set_file_types({});
    NIVO_NATIVE_FILE_DLG::answer_next({QStringLiteral("/in/key.txt")});
    browse();
    EXPECT_EQ(text(), QStringLiteral("/in/key.txt"));
    EXPECT_EQ(m_spy.count(), 1);
}

TEST_F(VEK_FILE_EDIT_TEST, a_filter_of_no_type_is_an_internal_error)
{
    NIVO_NATIVE_FILE_DLG::answer_next({QStringLiteral("/in/key.txt")}, QStringLiteral("Pictures (*.png)"));
    EXPECT_INTERNAL_ERROR(m_edit.browse(), "selected_file_type != FIO_INVALID_FILE");
}

TEST_F(VEK_FILE_EDIT_TEST, a_cancelled_dialog_keeps_the_text_and_leaves_the_process_where_it_went)
{
    set_working_directory(m_directory.path());
    type("in/top.sof");
    NIVO_NATIVE_FILE_DLG::reject_next();
    browse();
    EXPECT_EQ(text(), QStringLiteral("in/top.sof"));
    EXPECT_EQ(m_spy.count(), 0);
    EXPECT_EQ(FIO_FILE_SYSTEM::get_current_directory(), m_directory / "in");
}

TEST_F(VEK_FILE_EDIT_TEST, without_a_working_directory_the_text_alone_says_where_the_dialog_opens)
{
    type(m_directory / "in/top.sof");
    NIVO_NATIVE_FILE_DLG::reject_next();
    browse();
    EXPECT_EQ(FIO_FILE_SYSTEM::get_current_directory(), m_directory / "in");
    type("top.sof");
    NIVO_NATIVE_FILE_DLG::reject_next();
    browse();
    EXPECT_EQ(FIO_FILE_SYSTEM::get_current_directory(), m_directory / "in")
        << "a bare name names no directory";
}

TEST_F(VEK_FILE_EDIT_TEST, an_empty_field_opens_the_dialog_in_the_working_directory)
{
    set_working_directory(m_directory.path());
    NIVO_NATIVE_FILE_DLG::reject_next();
    browse();
    EXPECT_EQ(NIVO_NATIVE_FILE_DLG::last_question().directory.toStdString(), m_directory.path());
}
