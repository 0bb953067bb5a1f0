// How the key entry dialog is built, and its keypad.

#include "nivo_icon.h"
#include "vek_dlg_key_entry.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace
{

constexpr int KEY_EDIT_WIDTH = 250;
constexpr int NARROW_WIDTH = 50;
constexpr int KEYPAD_COLUMNS = 4;
constexpr const char* DIGITS = "0123456789ABCDEF";

QLineEdit* create_counter(const char* name)
{
    auto* const counter = new QLineEdit(QStringLiteral("0"));
    counter->setObjectName(QString::fromLatin1(name));
    counter->setAccessibleName(VEK_DLG_KEY_ENTRY::tr("Number of digits"));
    counter->setReadOnly(true);
    counter->setFixedWidth(NARROW_WIDTH);
    return counter;
}

QLayout* side_by_side(QWidget* left, QWidget* right)
{
    auto* const layout = new QHBoxLayout;
    layout->addWidget(left);
    layout->addWidget(right);
    return layout;
}

} // namespace

VEK_DLG_KEY_ENTRY::VEK_DLG_KEY_ENTRY(QWidget* parent)
    : NIVO_DIALOG(parent, Qt::MSWindowsFixedSizeDialogHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                              Qt::WindowCloseButtonHint),
      m_entry_method(QString::fromLatin1(KEY_ENTRY_OSKEYPAD))
{
    setWindowTitle(tr("Encryption Key Entry"));
    setWindowIcon(nivo_get_icon(NIVO_ICON_KEY));
    setSizeGripEnabled(false);

    m_entry_method_cbx = new QComboBox;
    m_entry_method_cbx->setObjectName(QStringLiteral("m_entry_method_cbx"));
    m_instruction_label = new QLabel;
    m_instruction_label->setObjectName(QStringLiteral("m_instruction_label"));
    m_show_key_checkbox = new QCheckBox(tr("Show entered keys"));
    m_show_key_checkbox->setObjectName(QStringLiteral("m_show_key_checkbox"));
    m_key_name_edit = new VEK_DLG_KEY_EDIT(this);
    m_key_name_edit->setObjectName(QStringLiteral("m_key_name_edit"));
    m_key_label = new QLabel;
    m_key_label->setObjectName(QStringLiteral("m_key_label"));
    m_key_edit = new VEK_DLG_KEY_EDIT(this);
    m_key_edit->setObjectName(QStringLiteral("m_key_edit"));
    m_key_edit->setFixedWidth(KEY_EDIT_WIDTH);
    m_key_counter = create_counter("m_key_counter");
    m_confirm_label = new QLabel;
    m_confirm_label->setObjectName(QStringLiteral("m_confirm_label"));
    m_confirm_edit = new VEK_DLG_KEY_EDIT(this);
    m_confirm_edit->setObjectName(QStringLiteral("m_confirm_edit"));
    m_confirm_edit->setFixedWidth(KEY_EDIT_WIDTH);
    m_confirm_counter = create_counter("m_confirm_counter");

    m_key_entry_group = new QGroupBox(tr("Key entry"));
    m_key_entry_group->setObjectName(QStringLiteral("m_key_entry_group"));
    auto* const form = new QFormLayout(m_key_entry_group);
    form->setRowWrapPolicy(QFormLayout::DontWrapRows);
    form->setFormAlignment(Qt::AlignHCenter | Qt::AlignTop);
    form->setLabelAlignment(Qt::AlignLeft);
    form->addRow(tr("Key Entry Method:"), m_entry_method_cbx);
    form->addRow(m_instruction_label);
    form->addRow(m_show_key_checkbox);
    form->addRow(tr("Key Name (alphanumeric):"), m_key_name_edit);
    form->addRow(m_key_label, side_by_side(m_key_edit, m_key_counter));
    form->addRow(m_confirm_label, side_by_side(m_confirm_edit, m_confirm_counter));
    form->addRow(create_keypad());
    m_key_label->setBuddy(m_key_edit);
    m_confirm_label->setBuddy(m_confirm_edit);

    m_button_box = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    m_button_box->setObjectName(QStringLiteral("m_button_box"));
    auto* const layout = new QVBoxLayout(this);
    layout->addWidget(m_key_entry_group);
    layout->addWidget(m_button_box);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    setTabOrder(m_show_key_checkbox, m_key_name_edit);
    setTabOrder(m_key_name_edit, m_key_edit);
    setTabOrder(m_key_edit, m_key_counter);
    setTabOrder(m_key_counter, m_confirm_edit);
    setTabOrder(m_confirm_edit, m_confirm_counter);
    connect_signals();
}

QLayout* VEK_DLG_KEY_ENTRY::create_keypad()
{
    auto* const grid = new QGridLayout;
    for (int digit = 0; digit < static_cast<int>(m_keypad_buttons.size()); ++digit) {
        const QChar character = QLatin1Char(DIGITS[digit]);
        auto* const button = new QPushButton(character);
        button->setObjectName(QStringLiteral("m_button_") + character.toLower());
        button->setFixedWidth(NARROW_WIDTH);
        button->setAutoDefault(false);
        grid->addWidget(button, digit / KEYPAD_COLUMNS, digit % KEYPAD_COLUMNS, Qt::AlignHCenter);
        m_keypad_buttons.at(static_cast<std::size_t>(digit)) = button;
    }
    m_clear_button = new QPushButton(tr("Clear"));
    m_clear_button->setObjectName(QStringLiteral("m_clear_button"));
    m_clear_button->setAutoDefault(false);
    grid->addWidget(m_clear_button, 4, 0, 1, 2);

    auto* const keypad = new QHBoxLayout;
    keypad->addStretch();
    keypad->addLayout(grid);
    keypad->addStretch();
    return keypad;
}

void VEK_DLG_KEY_ENTRY::connect_signals()
{
    const std::array<const char*, 16> keypad_slots{
        SLOT(on_click_0()), SLOT(on_click_1()), SLOT(on_click_2()), SLOT(on_click_3()),
        SLOT(on_click_4()), SLOT(on_click_5()), SLOT(on_click_6()), SLOT(on_click_7()),
        SLOT(on_click_8()), SLOT(on_click_9()), SLOT(on_click_a()), SLOT(on_click_b()),
        SLOT(on_click_c()), SLOT(on_click_d()), SLOT(on_click_e()), SLOT(on_click_f())};
    for (std::size_t digit = 0; digit < keypad_slots.size(); ++digit) {
        QObject::connect(m_keypad_buttons.at(digit), SIGNAL(clicked()), this, keypad_slots.at(digit));
    }
    QObject::connect(m_clear_button, SIGNAL(clicked()), this, SLOT(on_click_clear()));
    QObject::connect(m_show_key_checkbox, SIGNAL(clicked()), this, SLOT(on_click_show_key()));
    QObject::connect(m_key_name_edit, SIGNAL(key_press(const QString&)), this,
                     SLOT(on_keypress_key_name_edit(const QString&)));
    QObject::connect(m_key_edit, SIGNAL(key_press(const QString&)), this,
                     SLOT(on_keypress_key_edit(const QString&)));
    QObject::connect(m_confirm_edit, SIGNAL(key_press(const QString&)), this,
                     SLOT(on_keypress_confirm_edit(const QString&)));
    QObject::connect(m_key_edit, SIGNAL(selectionChanged()), this, SLOT(on_click_key_edit()));
    QObject::connect(m_key_edit, SIGNAL(mouse_click()), this, SLOT(on_click_key_edit()));
    QObject::connect(m_confirm_edit, SIGNAL(selectionChanged()), this, SLOT(on_click_confirm_edit()));
    QObject::connect(m_confirm_edit, SIGNAL(mouse_click()), this, SLOT(on_click_confirm_edit()));
    QObject::connect(m_key_edit, SIGNAL(editingFinished()), this, SLOT(on_killfocus_key_edit()));
    QObject::connect(m_confirm_edit, SIGNAL(editingFinished()), this, SLOT(on_killfocus_key_edit()));
    QObject::connect(m_entry_method_cbx, SIGNAL(activated(int)), this, SLOT(on_select_entry_method()));
    QObject::connect(m_button_box, SIGNAL(accepted()), this, SLOT(OnOK()));
    QObject::connect(m_button_box, SIGNAL(rejected()), this, SLOT(reject()));
}

void VEK_DLG_KEY_ENTRY::on_click_0()
{
    set_key_char('0');
}

void VEK_DLG_KEY_ENTRY::on_click_1()
{
    set_key_char('1');
}

void VEK_DLG_KEY_ENTRY::on_click_2()
{
    set_key_char('2');
}

void VEK_DLG_KEY_ENTRY::on_click_3()
{
    set_key_char('3');
}

void VEK_DLG_KEY_ENTRY::on_click_4()
{
    set_key_char('4');
}

void VEK_DLG_KEY_ENTRY::on_click_5()
{
    set_key_char('5');
}

void VEK_DLG_KEY_ENTRY::on_click_6()
{
    set_key_char('6');
}

void VEK_DLG_KEY_ENTRY::on_click_7()
{
    set_key_char('7');
}

void VEK_DLG_KEY_ENTRY::on_click_8()
{
    set_key_char('8');
}

void VEK_DLG_KEY_ENTRY::on_click_9()
{
    set_key_char('9');
}

void VEK_DLG_KEY_ENTRY::on_click_a()
{
    set_key_char('A');
}

void VEK_DLG_KEY_ENTRY::on_click_b()
{
    set_key_char('B');
}

void VEK_DLG_KEY_ENTRY::on_click_c()
{
    set_key_char('C');
}

void VEK_DLG_KEY_ENTRY::on_click_d()
{
    set_key_char('D');
}

void VEK_DLG_KEY_ENTRY::on_click_e()
{
    set_key_char('E');
}

void VEK_DLG_KEY_ENTRY::on_click_f()
{
    set_key_char('F');
}
