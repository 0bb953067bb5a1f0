// What is left of a key in the memory of the process when its widgets are gone.

#include "key_entry_fixture.h"
#include "memory_scan.h"
#include "msg_service.h"
#include "pgm_device.h"
#include "vek_dlg_sof_properties.h"
#include "vek_file_edit.h"
#include "vek_key_text.h"
#include "vek_property_browser.h"

#include <QClipboard>
#include <QDialogButtonBox>
#include <QToolButton>

#include <fcntl.h>
#include <unistd.h>

namespace
{

class KEY_ENTRY_MEMORY : public KEY_ENTRY_FIXTURE
{
protected:
    /// The digits of a key that stands nowhere in this program; typed in one by one.
    const SECRET_DIGITS m_secret{0x6b8f27c1a4d39e05ULL};

    static std::unique_ptr<VEK_DLG_SOF_PROPERTIES> make_dialog()
    {
        auto dialog = std::make_unique<VEK_DLG_SOF_PROPERTIES>(PGM_DEVICE_INDEX::find_by_name("CA3M050"),
                                                               FIO_SOF_FILE, std::vector<VEK_FILE_TYPE>(),
                                                               nullptr, Qt::WindowFlags());
        show_active(*dialog);
        browser(*dialog)->set_widget_value(VEK_CMD_PARAM_BITSTREAM_PATH_ENCRYPTION, QStringLiteral("1"));
        return dialog;
    }
    static VEK_PROPERTY_BROWSER* browser(const VEK_DLG_SOF_PROPERTIES& dialog)
    {
        return dialog.findChild<VEK_PROPERTY_BROWSER*>();
    }
    static VEK_KEY_ENTRY_EDIT& key_row(const VEK_DLG_SOF_PROPERTIES& dialog)
    {
        return *dialog.findChild<VEK_KEY_ENTRY_EDIT*>();
    }

    void type_digits(VEK_DLG_KEY_EDIT* edit) const
    {
        QTest::mouseClick(edit, Qt::LeftButton);
        for (int place = 0; place < SECRET_DIGITS::COUNT; ++place) {
            QTest::keyClick(edit, m_secret.digit(place));
        }
    }
    void press_digits(const VEK_DLG_KEY_ENTRY& dialog, VEK_DLG_KEY_EDIT* edit) const
    {
        QTest::mouseClick(edit, Qt::LeftButton);
        for (int place = 0; place < SECRET_DIGITS::COUNT; ++place) {
            QTest::mouseClick(keypad_button(dialog, QLatin1Char(m_secret.digit(place))), Qt::LeftButton);
        }
    }
    static void finish(VEK_DLG_KEY_ENTRY& dialog)
    {
        type(find<VEK_DLG_KEY_EDIT>(dialog, "m_key_name_edit"), QStringLiteral("board"));
        QTest::mouseClick(button(dialog, QDialogButtonBox::Ok), Qt::LeftButton);
    }
};

} // namespace

TEST_F(KEY_ENTRY_MEMORY, the_scan_finds_a_key_that_is_held_and_none_that_is_wiped)
{
    QString text = VEK_KEY_TEXT::copy(QString(), SECRET_DIGITS::COUNT);
    std::string bytes;
    bytes.reserve(SECRET_DIGITS::COUNT);
    for (int place = 0; place < SECRET_DIGITS::COUNT; ++place) {
        VEK_KEY_TEXT::append(text, QLatin1Char(m_secret.digit(place)));
        bytes.push_back(m_secret.digit(place));
    }
    EXPECT_EQ(count_in_memory(m_secret), 2);
    explicit_bzero(bytes.data(), bytes.size());
    EXPECT_EQ(count_in_memory(m_secret), 1);
    VEK_KEY_TEXT::wipe(text);
    EXPECT_EQ(count_in_memory(m_secret), 0);
}

TEST_F(KEY_ENTRY_MEMORY, nothing_is_left_of_a_key_typed_with_the_keyboard)
{
    auto properties = make_dialog();
    run_dialog(key_row(*properties), "m_add_button", [this](VEK_DLG_KEY_ENTRY& dialog) {
        choose_method(dialog, 1);
        type_digits(find<VEK_DLG_KEY_EDIT>(dialog, "m_key_edit"));
        type_digits(find<VEK_DLG_KEY_EDIT>(dialog, "m_confirm_edit"));
        finish(dialog);
    });
    EXPECT_EQ(key_row(*properties).get_key(), QStringLiteral("board"));
    EXPECT_GT(count_in_memory(m_secret), 0) << "while the row holds it";
    properties.reset();
    EXPECT_EQ(count_in_memory(m_secret), 0);
}

TEST_F(KEY_ENTRY_MEMORY, nothing_is_left_of_a_key_entered_with_the_keypad)
{
    auto properties = make_dialog();
    run_dialog(key_row(*properties), "m_add_button", [this](VEK_DLG_KEY_ENTRY& dialog) {
        press_digits(dialog, find<VEK_DLG_KEY_EDIT>(dialog, "m_key_edit"));
        press_digits(dialog, find<VEK_DLG_KEY_EDIT>(dialog, "m_confirm_edit"));
        finish(dialog);
    });
    EXPECT_EQ(key_row(*properties).get_key(), QStringLiteral("board"));
    properties.reset();
    EXPECT_EQ(count_in_memory(m_secret), 0);
}

TEST_F(KEY_ENTRY_MEMORY, nothing_is_left_of_a_key_that_was_cancelled_cleared_edited_or_deleted)
{
    auto properties = make_dialog();
    VEK_KEY_ENTRY_EDIT& row = key_row(*properties);
    const auto enter = [this](VEK_DLG_KEY_ENTRY& dialog) {
        choose_method(dialog, 1);
        type_digits(find<VEK_DLG_KEY_EDIT>(dialog, "m_key_edit"));
        type_digits(find<VEK_DLG_KEY_EDIT>(dialog, "m_confirm_edit"));
    };
    run_dialog(row, "m_add_button", [&enter](VEK_DLG_KEY_ENTRY& dialog) {
        enter(dialog);
        QTest::mouseClick(find<QPushButton>(dialog, "m_clear_button"), Qt::LeftButton);
        dialog.reject();
    });
    run_dialog(row, "m_add_button", [&enter](VEK_DLG_KEY_ENTRY& dialog) {
        enter(dialog);
        finish(dialog);
    });
    run_dialog(row, "m_edit_button", [](VEK_DLG_KEY_ENTRY& dialog) {
        type_key(dialog, QStringLiteral("board"), QString(64, QLatin1Char('7')));
    });
    EXPECT_EQ(count_in_memory(m_secret), 0) << "the list has another key";
    run_dialog(row, "m_add_button", [&enter](VEK_DLG_KEY_ENTRY& dialog) {
        enter(dialog);
        type(find<VEK_DLG_KEY_EDIT>(dialog, "m_key_name_edit"), QStringLiteral("second"));
        QTest::mouseClick(button(dialog, QDialogButtonBox::Ok), Qt::LeftButton);
    });
    find<QToolButton>(row, "m_delete_button")->click();
    properties.reset();
    EXPECT_EQ(count_in_memory(m_secret), 0);
}

TEST_F(KEY_ENTRY_MEMORY, nothing_is_left_of_the_keys_of_a_file)
{
    // Past the buffers of the library, which would keep a copy.
    const std::string path = m_directory / "board.key";
    const int file = ::open(path.c_str(), O_WRONLY | O_CREAT, 0600);
    ASSERT_EQ(::write(file, "board ", 6), 6);
    for (int place = 0; place < SECRET_DIGITS::COUNT; ++place) {
        const char digit = m_secret.digit(place);
        ASSERT_EQ(::write(file, &digit, 1), 1);
    }
    ::close(file);
    auto properties = make_dialog();
    NIVO_NATIVE_FILE_DLG::answer_next({QString::fromStdString(path)});
    qobject_cast<VEK_FILE_EDIT*>(browser(*properties)->get_widget(VEK_CMD_PARAM_BITSTREAM_PATH_KEY_FILE1))
        ->browse();
    EXPECT_EQ(key_row(*properties).get_key(), QStringLiteral("board"));
    EXPECT_GT(count_in_memory(m_secret), 0);
    properties.reset();
    EXPECT_EQ(count_in_memory(m_secret), 0);
}

TEST_F(KEY_ENTRY_MEMORY, a_key_that_was_shown_leaves_no_more_than_what_is_written_down)
{
    auto properties = make_dialog();
    VEK_KEY_ENTRY_EDIT& row = key_row(*properties);
    run_dialog(row, "m_add_button", [this](VEK_DLG_KEY_ENTRY& dialog) {
        find<QCheckBox>(dialog, "m_show_key_checkbox")->click();
        choose_method(dialog, 1);
        type_digits(find<VEK_DLG_KEY_EDIT>(dialog, "m_key_edit"));
        EXPECT_FALSE(dialog.grab().isNull());
        finish(dialog);
    });
    EXPECT_FALSE(properties->grab().isNull());
    properties.reset();
    RecordProperty("copies_left", count_in_memory(m_secret));
    EXPECT_LE(count_in_memory(m_secret), 2);
}

TEST_F(KEY_ENTRY_MEMORY, no_digit_reaches_the_values_a_message_or_the_clipboard)
{
    QGuiApplication::clipboard()->setText(QStringLiteral("before"));
    auto properties = make_dialog();
    const QString key(64, QLatin1Char('7'));
    run_dialog(key_row(*properties), "m_add_button",
               [&key](VEK_DLG_KEY_ENTRY& dialog) { type_key(dialog, QStringLiteral("board"), key); });
    find<QToolButton>(key_row(*properties), "m_show_button")->click();
    for (const auto& [param, text] : properties->get_property_values()) {
        EXPECT_EQ(text.find("7777"), std::string::npos) << param;
    }
    EXPECT_TRUE(MSG_SERVICE::instance().history().empty());
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("before"));
}
