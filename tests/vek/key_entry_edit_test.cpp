#include "key_entry_fixture.h"
#include "msg_service.h"
#include "vek_property_browser.h"

#include <QAbstractItemView>
#include <QHBoxLayout>
#include <QLabel>
#include <QSignalSpy>
#include <QToolButton>

namespace
{

/// A row for keys of 16 bits.
class KEY_ENTRY_EDIT : public KEY_ENTRY_FIXTURE
{
protected:
    KEY_ENTRY_EDIT()
        : m_edit(16, QStringLiteral("not used"), nullptr),
          m_spy(&m_edit, SIGNAL(keyEntryEditChanged(QString)))
    {
    }

    QComboBox* combo() { return find<QComboBox>(m_edit, "m_key_combo"); }
    QToolButton* tool(const char* name) { return find<QToolButton>(m_edit, name); }
    /// Rows of the combo, the current one in brackets.
    std::string rows()
    {
        std::string text;
        for (int row = 0; row < combo()->count(); ++row) {
            const std::string name = combo()->itemText(row).toStdString();
            text += (text.empty() ? "" : " ") + (row == combo()->currentIndex() ? "[" + name + "]" : name);
        }
        return text;
    }
    /// Names and keys of the list, with the rows that the combo lacks.
    std::string items()
    {
        std::string text;
        for (const auto& item : m_edit.keys_exclude_key_file(QStringLiteral("no such file"))) {
            text += (text.empty() ? "" : " ") + item.name.toStdString() + "=" + item.key.toStdString();
        }
        return text;
    }
    std::string last_signal()
    {
        return m_spy.isEmpty() ? "none" : m_spy.last().at(0).toString().toStdString();
    }
    bool are_row_buttons(bool enabled)
    {
        return tool("m_add_button")->isEnabled() && tool("m_edit_button")->isEnabled() == enabled &&
               tool("m_delete_button")->isEnabled() == enabled &&
               tool("m_show_button")->isEnabled() == enabled;
    }
    void add(const char* name, const char* key)
    {
        EXPECT_TRUE(m_edit.add_key(QString::fromLatin1(name), QString::fromLatin1(key)));
    }
    QString key_file(const std::string& name, const std::string& text)
    {
        write_file(m_directory / name, text);
        return QString::fromStdString(m_directory / name);
    }
    static std::size_t messages() { return MSG_SERVICE::instance().history().size(); }

    VEK_KEY_ENTRY_EDIT m_edit;
    QSignalSpy m_spy;
};

} // namespace

TEST_F(KEY_ENTRY_EDIT, the_row_is_a_combo_with_four_buttons)
{
    auto* const layout = qobject_cast<QHBoxLayout*>(m_edit.layout());
    ASSERT_NE(layout, nullptr);
    EXPECT_EQ(layout->spacing(), 0);
    EXPECT_TRUE(layout->contentsMargins().isNull());
    ASSERT_EQ(layout->count(), 5);
    EXPECT_EQ(layout->itemAt(0)->widget(), combo());
    const std::vector<std::pair<const char*, const char*>> buttons{{"m_add_button", "Add"},
                                                                   {"m_edit_button", "Edit"},
                                                                   {"m_delete_button", "Delete"},
                                                                   {"m_show_button", "Show"}};
    for (int place = 0; place < 4; ++place) {
        const auto& [name, text] = buttons.at(static_cast<std::size_t>(place));
        EXPECT_EQ(layout->itemAt(place + 1)->widget(), tool(name));
        EXPECT_EQ(tool(name)->text(), QString::fromLatin1(text));
    }
    EXPECT_TRUE(are_row_buttons(false));
    EXPECT_EQ(m_edit.get_key(), QString());
}

TEST_F(KEY_ENTRY_EDIT, a_length_that_is_no_number_of_digits_is_an_internal_error)
{
    EXPECT_INTERNAL_ERROR(VEK_KEY_ENTRY_EDIT(18, QString(), nullptr), "(n_key_bits % 4) == 0");
    const VEK_KEY_ENTRY_EDIT none(0, QString(), nullptr);
    EXPECT_EQ(none.findChild<QComboBox*>(QStringLiteral("m_key_combo"))->count(), 0);
}

TEST_F(KEY_ENTRY_EDIT, a_key_added_becomes_current_and_its_digits_are_announced)
{
    add("one", "1111");
    EXPECT_EQ(rows(), "[one]");
    add("two", "2222");
    EXPECT_EQ(rows(), "one [two]");
    EXPECT_EQ(last_signal(), "2222");
    EXPECT_EQ(m_edit.get_key(), QStringLiteral("two")) << "the name, not the digits";
    EXPECT_TRUE(are_row_buttons(true));
    QString name;
    QString key;
    EXPECT_TRUE(m_edit.get_key(0, name, key));
    EXPECT_EQ(name + QLatin1Char('=') + key, QStringLiteral("one=1111"));
    EXPECT_TRUE(m_edit.get_key(7, name, key)) << "a row that is not there gives the current one";
    EXPECT_EQ(name, QStringLiteral("two"));
}

TEST_F(KEY_ENTRY_EDIT, a_name_that_exists_is_refused_with_a_message)
{
    add("one", "1111");
    add("two", "2222");
    combo()->setCurrentIndex(0);
    MODAL_ANSWERS answers;
    answers.click(QMessageBox::Ok);
    EXPECT_FALSE(m_edit.add_key(QStringLiteral("two"), QStringLiteral("3333")));
    ASSERT_EQ(answers.boxes().size(), 1);
    EXPECT_EQ(answers.boxes().at(0).text,
              QStringLiteral("Fail to add key two because it has already existed."));
    EXPECT_EQ(answers.boxes().at(0).icon, QMessageBox::Critical);
    EXPECT_EQ(answers.boxes().at(0).title, QString());
    EXPECT_EQ(rows(), "[one] two");
    EXPECT_EQ(items(), "one=1111 two=2222");
}

TEST_F(KEY_ENTRY_EDIT, names_that_differ_in_case_are_different_keys)
{
    add("one", "1111");
    add("ONE", "2222");
    EXPECT_TRUE(m_edit.is_key_exist(QStringLiteral("one")));
    EXPECT_FALSE(m_edit.is_key_exist(QStringLiteral("One")));
    EXPECT_EQ(rows(), "one [ONE]");
}

TEST_F(KEY_ENTRY_EDIT, deleting_the_last_key_disables_the_buttons_and_announces_nothing_left)
{
    add("one", "1111");
    tool("m_delete_button")->click();
    EXPECT_EQ(rows(), "");
    EXPECT_EQ(last_signal(), "");
    EXPECT_TRUE(are_row_buttons(false));
    QString name;
    QString key;
    EXPECT_FALSE(m_edit.get_key(0, name, key));
}

TEST_F(KEY_ENTRY_EDIT, after_a_deletion_nothing_is_selected_even_with_keys_left)
{
    add("one", "1111");
    add("two", "2222");
    add("three", "3333");
    combo()->setCurrentIndex(1);
    tool("m_delete_button")->click();
    EXPECT_EQ(rows(), "one three");
    EXPECT_EQ(items(), "one=1111 three=3333");
    EXPECT_TRUE(are_row_buttons(false));
    EXPECT_EQ(m_edit.get_key(), QString());
    EXPECT_EQ(last_signal(), "");
}

TEST_F(KEY_ENTRY_EDIT, showing_twice_gives_the_same_list_and_row_as_before)
{
    add("one", "1111");
    add("two", "2222");
    combo()->setCurrentIndex(0);
    tool("m_show_button")->click();
    EXPECT_EQ(rows(), "[one (1111)] two (2222)");
    EXPECT_EQ(tool("m_show_button")->text(), QStringLiteral("Show"));
    EXPECT_EQ(m_edit.get_key(), QStringLiteral("one"));
    add("three", "3333");
    EXPECT_EQ(rows(), "one (1111) two (2222) [three]") << "until the next toggle";
    combo()->setCurrentIndex(0);
    tool("m_show_button")->click();
    EXPECT_EQ(rows(), "[one] two three");
    EXPECT_EQ(last_signal(), "1111");
}

TEST_F(KEY_ENTRY_EDIT, a_key_that_is_shown_can_be_read_in_the_list)
{
    add("one", "1111");
    const auto width = [this] { return combo()->view()->minimumWidth(); };
    EXPECT_EQ(width(), 0);
    tool("m_show_button")->click();
    EXPECT_GT(width(), combo()->fontMetrics().horizontalAdvance(QStringLiteral("one (1111)")));
    tool("m_show_button")->click();
    EXPECT_EQ(width(), 0);
}

TEST_F(KEY_ENTRY_EDIT, an_internal_error_ends_a_list_that_lost_a_key)
{
    combo()->blockSignals(true);
    combo()->addItem(QStringLiteral("stray"));
    combo()->blockSignals(false);
    QString name;
    QString key;
    EXPECT_INTERNAL_ERROR(m_edit.get_key(0, name, key), "m_key_items.size() > current_index");
    EXPECT_INTERNAL_ERROR(m_edit.do_delete(), "m_key_items.size() > current_index");
    combo()->clear();
    EXPECT_INTERNAL_ERROR(m_edit.do_delete(), "m_key_items.size() > current_index");
}

// The dialog

TEST_F(KEY_ENTRY_EDIT, a_key_is_added_through_the_dialog)
{
    show_active(m_edit);
    run_dialog(m_edit, "m_add_button", [](VEK_DLG_KEY_ENTRY& dialog) {
        EXPECT_EQ(QApplication::overrideCursor(), nullptr) << "no wait cursor while the dialog is open";
        type_key(dialog, QStringLiteral("one"), QStringLiteral("1a2B"));
    });
    EXPECT_EQ(rows(), "[one]");
    EXPECT_EQ(items(), "one=1a2B");
    EXPECT_EQ(last_signal(), "1a2B");
    EXPECT_TRUE(are_row_buttons(true));
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
    run_dialog(m_edit, "m_add_button", [](VEK_DLG_KEY_ENTRY& dialog) {
        EXPECT_EQ(dialog.get_key(), QString()) << "nothing of the last run";
        EXPECT_EQ(dialog.get_key_name(), QString());
        EXPECT_EQ(dialog.focusWidget()->objectName(), QStringLiteral("m_entry_method_cbx"));
        dialog.reject();
    });
    EXPECT_EQ(rows(), "[one]");
}

TEST_F(KEY_ENTRY_EDIT, the_show_box_of_the_dialog_turns_the_list_over)
{
    show_active(m_edit);
    add("one", "1111");
    run_dialog(m_edit, "m_add_button", [](VEK_DLG_KEY_ENTRY& dialog) {
        find<QCheckBox>(dialog, "m_show_key_checkbox")->click();
        type_key(dialog, QStringLiteral("two"), QStringLiteral("2222"));
    });
    EXPECT_EQ(rows(), "one (1111) [two (2222)]");
    run_dialog(m_edit, "m_edit_button", [](VEK_DLG_KEY_ENTRY& dialog) {
        EXPECT_TRUE(dialog.is_show_key());
        EXPECT_EQ(dialog.get_key(), QStringLiteral("2222"));
        QTest::mouseClick(button(dialog, QDialogButtonBox::Ok), Qt::LeftButton);
    });
    EXPECT_EQ(rows(), "one (1111) [two (2222)]") << "no difference, no toggle";
}

TEST_F(KEY_ENTRY_EDIT, a_duplicate_from_the_dialog_loses_what_was_typed)
{
    show_active(m_edit);
    add("one", "1111");
    MODAL_ANSWERS answers;
    answers.run([](QDialog& dialog) {
        EXPECT_TRUE(wait_for_focus(dialog));
        type_key(*qobject_cast<VEK_DLG_KEY_ENTRY*>(&dialog), QStringLiteral("one"), QStringLiteral("2222"));
    });
    answers.click(QMessageBox::Ok);
    tool("m_add_button")->click();
    EXPECT_EQ(items(), "one=1111");
    EXPECT_EQ(rows(), "[one]");
}

TEST_F(KEY_ENTRY_EDIT, an_edit_changes_the_key_and_neither_the_text_on_screen_nor_the_announcement)
{
    show_active(m_edit);
    add("one", "1111");
    m_spy.clear();
    run_dialog(m_edit, "m_edit_button", [](VEK_DLG_KEY_ENTRY& dialog) {
        EXPECT_EQ(dialog.get_key_name(), QStringLiteral("one"));
        EXPECT_EQ(dialog.get_key(), QStringLiteral("1111"));
        EXPECT_EQ(dialog.get_confirm(), QString());
        EXPECT_FALSE(button(dialog, QDialogButtonBox::Ok)->isEnabled()) << "to be typed again";
        type_key(dialog, QStringLiteral("other"), QStringLiteral("2222"));
    });
    EXPECT_EQ(items(), "other=2222");
    EXPECT_EQ(rows(), "[one]") << "the old text";
    EXPECT_EQ(m_spy.count(), 0);
    EXPECT_EQ(m_edit.get_key(), QStringLiteral("other"));
    add("one", "3333");
    EXPECT_EQ(rows(), "one [one]") << "the old name is free again";
    m_edit.do_show();
    m_edit.do_show();
    EXPECT_EQ(rows(), "other [one]");
}

TEST_F(KEY_ENTRY_EDIT, an_edit_may_take_a_name_that_exists)
{
    show_active(m_edit);
    add("one", "1111");
    add("two", "2222");
    run_dialog(m_edit, "m_edit_button", [](VEK_DLG_KEY_ENTRY& dialog) {
        type_key(dialog, QStringLiteral("one"), QStringLiteral("3333"));
    });
    EXPECT_EQ(items(), "one=1111 one=3333");
}

TEST_F(KEY_ENTRY_EDIT, a_cancelled_dialog_changes_nothing)
{
    show_active(m_edit);
    add("one", "1111");
    run_dialog(m_edit, "m_edit_button", [](VEK_DLG_KEY_ENTRY& dialog) {
        choose_method(dialog, 1);
        type(find<VEK_DLG_KEY_EDIT>(dialog, "m_key_edit"), QStringLiteral("22"));
        dialog.reject();
    });
    EXPECT_EQ(items(), "one=1111");
}

// Key files

TEST_F(KEY_ENTRY_EDIT, the_keys_of_a_file_come_in_by_name_behind_those_that_were_there)
{
    add("typed", "1111");
    m_edit.populate_key_combo(
        key_file("a.key", "\xEF\xBB\xBF# board\r\nzeta 2222\r\n\r\nalpha 3333 # two\r\n"));
    EXPECT_EQ(rows(), "[typed] alpha zeta");
    EXPECT_EQ(items(), "typed=1111 alpha=3333 zeta=2222");
    EXPECT_EQ(last_signal(), "1111");
    EXPECT_TRUE(are_row_buttons(true));
    EXPECT_EQ(m_edit.keys_exclude_key_file(QString::fromStdString(m_directory / "a.key")).size(), 1U);
}

TEST_F(KEY_ENTRY_EDIT, the_first_key_is_announced_when_the_keys_of_a_file_are_all_in)
{
    std::vector<std::pair<int, QString>> announced;
    QObject::connect(&m_edit, &VEK_KEY_ENTRY_EDIT::keyEntryEditChanged, &m_edit,
                     [&](const QString& key) { announced.emplace_back(combo()->count(), key); });
    m_edit.populate_key_combo(key_file("a.key", "zeta 2222\nalpha 3333\n"));
    ASSERT_FALSE(announced.empty());
    EXPECT_EQ(announced.back(), std::make_pair(2, QStringLiteral("3333")));
}

TEST_F(KEY_ENTRY_EDIT, the_wait_cursor_shows_before_and_after_the_dialog)
{
    show_active(m_edit);
    bool waits_before = false;
    bool waits_after = false;
    const auto& methods = *m_edit.findChild<VEK_DLG_KEY_ENTRY*>()->findChild<QComboBox*>();
    const auto preparing =
        QObject::connect(&methods, qOverload<int>(&QComboBox::currentIndexChanged), &m_edit,
                         [&] { waits_before = QApplication::overrideCursor() != nullptr; });
    QObject::connect(&m_edit, &VEK_KEY_ENTRY_EDIT::keyEntryEditChanged, &m_edit,
                     [&] { waits_after = QApplication::overrideCursor() != nullptr; });
    run_dialog(m_edit, "m_add_button", [&](VEK_DLG_KEY_ENTRY& dialog) {
        EXPECT_TRUE(waits_before);
        QObject::disconnect(preparing);
        EXPECT_EQ(QApplication::overrideCursor(), nullptr);
        type_key(dialog, QStringLiteral("one"), QStringLiteral("1111"));
    });
    EXPECT_TRUE(waits_after);
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

TEST_F(KEY_ENTRY_EDIT, the_names_alone_show_after_a_file_even_with_the_keys_shown)
{
    add("typed", "1111");
    tool("m_show_button")->click();
    m_edit.populate_key_combo(key_file("a.key", "alpha 3333\n"));
    EXPECT_EQ(rows(), "[typed] alpha");
}

TEST_F(KEY_ENTRY_EDIT, a_file_read_again_changes_nothing_and_leaves_the_current_row)
{
    const QString file = key_file("a.key", "alpha 1111\nbeta 2222\n");
    m_edit.populate_key_combo(file);
    combo()->setCurrentIndex(1);
    m_edit.populate_key_combo(file);
    EXPECT_EQ(rows(), "alpha [beta]");
    key_file("a.key", "alpha 1111\nbeta 4444\ngamma 3333\n");
    m_edit.populate_key_combo(file);
    EXPECT_EQ(items(), "alpha=1111 beta=2222") << "one name in common is enough";
    key_file("a.key", "gamma 3333\n");
    m_edit.populate_key_combo(file);
    EXPECT_EQ(items(), "gamma=3333") << "the old keys of this file go";
    EXPECT_EQ(rows(), "[gamma]");
}

TEST_F(KEY_ENTRY_EDIT, a_second_file_adds_to_the_first)
{
    m_edit.populate_key_combo(key_file("a.key", "alpha 1111\n"));
    m_edit.populate_key_combo(key_file("b.key", "beta 2222\n"));
    EXPECT_EQ(rows(), "[alpha] beta");
}

TEST_F(KEY_ENTRY_EDIT, a_file_never_overwrites_a_typed_key_and_says_nothing)
{
    add("alpha", "1111");
    MODAL_ANSWERS answers;
    m_edit.populate_key_combo(key_file("a.key", "alpha 2222\nbeta 3333\n"));
    EXPECT_EQ(items(), "alpha=1111");
    EXPECT_TRUE(answers.boxes().isEmpty());
    EXPECT_EQ(messages(), 0U);
}

TEST_F(KEY_ENTRY_EDIT, a_file_without_keys_changes_nothing)
{
    add("one", "1111");
    m_edit.populate_key_combo(key_file("a.key", "# nothing yet\n"));
    EXPECT_EQ(rows(), "[one]");
    EXPECT_EQ(messages(), 0U);
}

TEST_F(KEY_ENTRY_EDIT, a_refused_file_changes_nothing_and_its_message_holds_no_digit_of_a_key)
{
    m_edit.populate_key_combo(key_file("a.key", "alpha 1111\n"));
    const std::vector<std::pair<std::string, std::string>> files{
        {"beta 12G4\n",
         "Line 1 has a key with a character that is no hexadecimal digit, at place 3 of the key."},
        {"beta 7777\ngamma 88888\n", "Line 2 has a key of 5 digits; this device takes 4."},
        {"beta 7777\n\nbeta 8888\n", "Line 3 repeats the key name of line 1."},
        {std::string(10 * 1024 * 1024, '7'), "It is larger than 1048576 bytes, the limit of a key file."},
    };
    for (const auto& [text, reason] : files) {
        MSG_SERVICE::instance().clear_history();
        m_edit.populate_key_combo(key_file("b.key", text));
        ASSERT_EQ(messages(), 1U) << reason;
        const std::string message = MSG_SERVICE::instance().history().front().text;
        EXPECT_NE(message.find(reason), std::string::npos) << message;
        EXPECT_EQ(message.find("7777"), std::string::npos) << message;
        EXPECT_EQ(message.find("8888"), std::string::npos) << message;
        EXPECT_EQ(rows(), "[alpha]");
    }
    MSG_SERVICE::instance().clear_history();
    m_edit.populate_key_combo(QString::fromStdString(m_directory / "missing.key"));
    EXPECT_EQ(messages(), 1U);
    EXPECT_EQ(rows(), "[alpha]");
}

// The row of the property browser

TEST_F(KEY_ENTRY_EDIT, the_browser_has_a_row_of_this_kind)
{
    VEK_PROPERTY_BROWSER browser;
    const auto property =
        VEK_PROPERTY_BROWSER::create_key_entry_edit_property(104, "Key:", "Help", 16, QString());
    EXPECT_EQ(property.type, 4U);
    EXPECT_EQ(property.id, 104U);
    auto* const edit = qobject_cast<VEK_KEY_ENTRY_EDIT*>(property.widget);
    ASSERT_NE(edit, nullptr);
    EXPECT_EQ(edit->objectName(), QStringLiteral("Key:"));
    EXPECT_EQ(qobject_cast<QLabel*>(property.label)->text(), QStringLiteral("Key:"));
    EXPECT_EQ(property.label->toolTip(), QStringLiteral("Help"));
    ASSERT_TRUE(browser.add_property(property));
    EXPECT_EQ(browser.get_widget_value(104), QString());
    edit->add_key(QStringLiteral("one"), QStringLiteral("1111"));
    EXPECT_EQ(browser.get_widget_value(104), QStringLiteral("one"));
    EXPECT_INTERNAL_ERROR(browser.set_widget_value(104, QStringLiteral("one")),
                          "Should not set key entry property due to security concern");
}
