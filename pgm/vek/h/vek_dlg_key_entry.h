#ifndef VEK_DLG_KEY_ENTRY_H
#define VEK_DLG_KEY_ENTRY_H

#include "nivo_dialog.h"
#include "vek_dlg_key_edit.h"

#include <QString>

#include <array>

class QCheckBox;
class QComboBox;
class QDialogButtonBox;
class QGroupBox;
class QLabel;
class QLayout;
class QPushButton;

/// Takes an encryption key from the user, by an on-screen keypad or by the keyboard. No digit goes through
/// the text entry of an edit: each comes here as a character, this dialog holds the real strings and their
/// counts, and the edits show them. The key has key bits / 4 digits, and so has its confirmation.
///
/// One object serves many runs: set name, key, show flag, key bits and confirmation, call common_init(), run
/// it, and take the name and key when it was accepted. The chosen entry method stays for the next run. The
/// texts are overwritten when they are replaced and when the dialog goes.
class VEK_DLG_KEY_ENTRY : public NIVO_DIALOG
{
    Q_OBJECT
public:
    static constexpr const char* KEY_ENTRY_OSKEYPAD = "On-screen Keypad";
    static constexpr const char* KEY_ENTRY_KEYBOARD = "Keyboard";
    static constexpr const char* OSKEYPAD_INSTRUCTION =
        "Use the on-screen keypad for entering the encryption key";
    static constexpr const char* KEYBOARD_INSTRUCTION = "Use the keyboard for entering the encryption key";

    explicit VEK_DLG_KEY_ENTRY(QWidget* parent);
    ~VEK_DLG_KEY_ENTRY() override;

    // Before common_init().
    void set_key_name(QString name);
    void set_key(QString key);
    void set_confirm(QString confirm);
    void set_show_key(bool show_key);
    void common_init();

    QString get_key_name() const;
    /// Copies, which the caller wipes.
    QString get_key() const;
    QString get_confirm() const;
    bool is_show_key() const;

    /// A digit, or backspace, for the edit that is current.
    void set_key_char(char character);
    /// A character, or backspace, for the name.
    void update_key_name(char character);
    /// Enables or disables the sixteen digit buttons.
    void set_keypad_state(bool enabled);
    void enable_ok();
    /// Sets what can be used from where the focus is.
    void enable_entry_method();
    void set_focus_key_edit();

public slots:
    void on_click_0();
    void on_click_1();
    void on_click_2();
    void on_click_3();
    void on_click_4();
    void on_click_5();
    void on_click_6();
    void on_click_7();
    void on_click_8();
    void on_click_9();
    void on_click_a();
    void on_click_b();
    void on_click_c();
    void on_click_d();
    void on_click_e();
    void on_click_f();
    void on_click_clear();
    void on_click_show_key();
    void on_select_entry_method();
    void on_keypress_key_name_edit(const QString& text);
    void on_keypress_key_edit(const QString& text);
    void on_keypress_confirm_edit(const QString& text);
    void on_click_key_edit();
    void on_click_confirm_edit();
    void on_killfocus_key_edit();
    void OnOK();

public:
    /// Length of the key in bits; the owner sets it before common_init().
    unsigned int n_key_bits = 0;

protected:
    /// F1 opens the help.
    bool event(QEvent* event) override;

private:
    enum CURRENT_EDIT : int { CURRENT_KEY = 0, CURRENT_CONFIRM = 2 };

    QLayout* create_keypad();
    void connect_signals();
    int get_digits() const;
    VEK_DLG_KEY_EDIT* get_current_edit() const;
    int get_current_count() const;
    void enable_confirm(bool enabled);

    CURRENT_EDIT m_current_edit = CURRENT_KEY;
    QLabel* m_instruction_label = nullptr;
    QLabel* m_key_label = nullptr;
    QLabel* m_confirm_label = nullptr;
    QComboBox* m_entry_method_cbx = nullptr;
    QString m_entry_method;
    QCheckBox* m_show_key_checkbox = nullptr;
    QString m_key_name;
    VEK_DLG_KEY_EDIT* m_key_name_edit = nullptr;
    VEK_DLG_KEY_EDIT* m_key_edit = nullptr;
    QLineEdit* m_key_counter = nullptr;
    VEK_DLG_KEY_EDIT* m_confirm_edit = nullptr;
    QLineEdit* m_confirm_counter = nullptr;
    QString m_key;
    int m_key_count = 0; ///< kept beside the key; the two agree
    QString m_confirm;
    int m_confirm_count = 0;
    QDialogButtonBox* m_button_box = nullptr;
    std::array<QPushButton*, 16> m_keypad_buttons{};
    QPushButton* m_clear_button = nullptr;
    QGroupBox* m_key_entry_group = nullptr;
    bool m_show_key = false;
    QString m_instruction_text;
};

#endif
