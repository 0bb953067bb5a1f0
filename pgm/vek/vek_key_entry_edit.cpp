#include "vek_key_entry_edit.h"

#include "msg_internal_error.h"
#include "nivo_wait_cursor.h"
#include "vek_gui_util.h"
#include "vek_key_file_assistant.h"
#include "vek_key_text.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QHBoxLayout>
#include <QMessageBox>
#include <QScrollBar>
#include <QToolButton>

#include <algorithm>
#include <memory>

VEK_KEY_ENTRY_EDIT::VEK_KEY_ENTRY_EDIT(unsigned int key_bits, QString, QWidget* parent)
    : QWidget(parent), m_key_entry_dialog(this), m_n_key_bits(key_bits)
{
    VEK_ASSERT_TEXT((key_bits % 4) == 0, "(n_key_bits % 4) == 0");
    m_key_combo = new QComboBox(this);
    m_key_combo->setObjectName(QStringLiteral("m_key_combo"));
    setFocusProxy(m_key_combo);
    m_add_button = create_button("m_add_button", tr("Add"), true);
    m_edit_button = create_button("m_edit_button", tr("Edit"), false);
    m_delete_button = create_button("m_delete_button", tr("Delete"), false);
    m_show_button = create_button("m_show_button", tr("Show"), false);

    auto* const layout = new QHBoxLayout(this);
    layout->setSpacing(0);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_key_combo);
    layout->addWidget(m_add_button);
    layout->addWidget(m_edit_button);
    layout->addWidget(m_delete_button);
    layout->addWidget(m_show_button);

    QObject::connect(m_key_combo, SIGNAL(currentIndexChanged(int)), this, SLOT(do_key_change(int)));
    QObject::connect(m_add_button, SIGNAL(clicked()), this, SLOT(do_add()));
    QObject::connect(m_edit_button, SIGNAL(clicked()), this, SLOT(do_edit()));
    QObject::connect(m_delete_button, SIGNAL(clicked()), this, SLOT(do_delete()));
    QObject::connect(m_show_button, SIGNAL(clicked()), this, SLOT(do_show()));
}

VEK_KEY_ENTRY_EDIT::~VEK_KEY_ENTRY_EDIT()
{
    QObject::disconnect(m_key_combo, nullptr, this, nullptr);
    clear_combo();
    for (KEY_ITEM& item : m_key_items) {
        VEK_KEY_TEXT::wipe(item.key);
    }
}

QToolButton* VEK_KEY_ENTRY_EDIT::create_button(const char* name, const QString& text, bool enabled)
{
    auto* const button = new QToolButton(this);
    button->setObjectName(QString::fromLatin1(name));
    button->setText(text);
    button->setFocusPolicy(Qt::StrongFocus);
    button->setEnabled(enabled);
    return button;
}

void VEK_KEY_ENTRY_EDIT::clear_combo()
{
    for (int row = 0; row < m_key_combo->count(); ++row) {
        VEK_KEY_TEXT::wipe_row(*m_key_combo, row);
    }
    m_key_combo->clear();
}

void VEK_KEY_ENTRY_EDIT::update_button()
{
    const bool has_key = m_key_combo->count() > 0 && m_key_combo->currentIndex() >= 0;
    m_edit_button->setEnabled(has_key);
    m_delete_button->setEnabled(has_key);
    m_show_button->setEnabled(has_key);
}

bool VEK_KEY_ENTRY_EDIT::is_key_exist(QString name)
{
    return std::ranges::any_of(m_key_items, [&name](const KEY_ITEM& item) { return item.name == name; });
}

bool VEK_KEY_ENTRY_EDIT::add_key(QString name, QString key)
{
    if (is_key_exist(name)) {
        VEK_KEY_TEXT::wipe(key);
        QMessageBox box(this);
        box.setIcon(QMessageBox::Critical);
        box.setText(
            tr("Fail to add key %s because it has already existed.").replace(QLatin1String("%s"), name));
        box.exec();
        return false;
    }
    m_key_items.push_back({QString(), name, VEK_KEY_TEXT::copy(key)});
    VEK_KEY_TEXT::wipe(key);
    m_key_combo->addItem(VEK_KEY_TEXT::copy(name));
    m_key_combo->setCurrentIndex(m_key_combo->count() - 1);
    return true;
}

QString VEK_KEY_ENTRY_EDIT::get_key()
{
    QString name;
    QString key;
    get_key(m_key_combo->currentIndex(), name, key);
    return name;
}

bool VEK_KEY_ENTRY_EDIT::get_key(int index, QString& name, QString& key)
{
    int current_index = index;
    if (index < 0 || index >= m_key_combo->count()) {
        if (m_key_combo->count() == 0) {
            return false;
        }
        current_index = m_key_combo->currentIndex();
        if (current_index < 0) {
            return false;
        }
    }
    const std::size_t row = static_cast<std::size_t>(current_index);
    VEK_ASSERT_TEXT(m_key_items.size() > row, "m_key_items.size() > current_index");
    name = m_key_items[row].name;
    key = m_key_items[row].key;
    return true;
}

void VEK_KEY_ENTRY_EDIT::prepare_dialog(const QString& name, const QString& key)
{
    m_key_entry_dialog.set_key_name(name);
    m_key_entry_dialog.set_key(key);
    m_key_entry_dialog.set_show_key(m_show_key);
    m_key_entry_dialog.n_key_bits = m_n_key_bits;
    m_key_entry_dialog.set_confirm(QString());
    m_key_entry_dialog.common_init();
}

void VEK_KEY_ENTRY_EDIT::do_add()
{
    auto wait_cursor = std::make_unique<NIVO_WAIT_CURSOR>();
    prepare_dialog(QString(), QString());
    wait_cursor.reset();
    if (m_key_entry_dialog.exec() != QDialog::Accepted) {
        return;
    }
    wait_cursor = std::make_unique<NIVO_WAIT_CURSOR>();
    add_key(m_key_entry_dialog.get_key_name(), m_key_entry_dialog.get_key());
    if (m_key_entry_dialog.is_show_key() != m_show_key) {
        do_show();
    }
    wait_cursor.reset();
    update_button();
}

void VEK_KEY_ENTRY_EDIT::do_edit()
{
    const int index = m_key_combo->currentIndex();
    QString name;
    QString key;
    get_key(index, name, key);
    auto wait_cursor = std::make_unique<NIVO_WAIT_CURSOR>();
    prepare_dialog(name, key);
    key = QString(); // the list must be the sole owner of its key again
    wait_cursor.reset();
    if (m_key_entry_dialog.exec() != QDialog::Accepted) {
        return;
    }
    wait_cursor = std::make_unique<NIVO_WAIT_CURSOR>();
    VEK_ASSERT_TEXT(index >= 0 && m_key_items.size() > static_cast<std::size_t>(index),
                    "m_key_items.size() > current_index");
    KEY_ITEM& item = m_key_items[static_cast<std::size_t>(index)];
    item.name = m_key_entry_dialog.get_key_name();
    VEK_KEY_TEXT::wipe(item.key);
    item.key = m_key_entry_dialog.get_key();
    if (m_key_entry_dialog.is_show_key() != m_show_key) {
        do_show();
    }
}

void VEK_KEY_ENTRY_EDIT::do_delete()
{
    const int row = m_key_combo->currentIndex();
    VEK_ASSERT_TEXT(row >= 0 && m_key_items.size() > static_cast<std::size_t>(row),
                    "m_key_items.size() > current_index");
    const auto item = m_key_items.begin() + row;
    VEK_KEY_TEXT::wipe(item->key);
    m_key_items.erase(item);
    VEK_KEY_TEXT::wipe_row(*m_key_combo, row);
    m_key_combo->removeItem(row);
    m_key_combo->setCurrentIndex(-1);
    update_button();
}

void VEK_KEY_ENTRY_EDIT::do_show()
{
    const int current_index = m_key_combo->currentIndex();
    m_show_key = !m_show_key;
    clear_combo();
    for (const KEY_ITEM& item : m_key_items) {
        m_key_combo->addItem(m_show_key ? QStringLiteral("%1 (%2)").arg(item.name, item.key)
                                        : VEK_KEY_TEXT::copy(item.name));
    }
    // The row is too short for a key; the list that it opens shall not be.
    QAbstractItemView& list = *m_key_combo->view();
    list.setMinimumWidth(m_show_key ? list.sizeHintForColumn(0) + list.verticalScrollBar()->sizeHint().width()
                                    : 0);
    m_key_combo->setCurrentIndex(current_index);
}

void VEK_KEY_ENTRY_EDIT::do_key_change(int index)
{
    update_button();
    QString name;
    QString key;
    get_key(index, name, key);
    emit keyEntryEditChanged(key);
}

std::vector<VEK_KEY_ENTRY_EDIT::KEY_ITEM> VEK_KEY_ENTRY_EDIT::keys_exclude_key_file(QString key_file)
{
    std::vector<KEY_ITEM> items = m_key_items;
    std::erase_if(items, [&key_file](const KEY_ITEM& item) { return item.key_file == key_file; });
    return items;
}

void VEK_KEY_ENTRY_EDIT::populate_key_combo(QString key_file)
{
    struct FILE_KEYS {
        std::map<std::string, std::string> keys;
        ~FILE_KEYS() { VEK_KEY_FILE_ASSISTANT::wipe_keys(keys); }
    } file;
    if (!VEK_KEY_FILE_ASSISTANT::parse_key_file(VEK_GUI_UTIL::to_local(key_file), m_n_key_bits, file.keys) ||
        file.keys.empty()) {
        return;
    }
    // A key that is there already is never overwritten by a file, not even by the file it came from.
    if (std::ranges::any_of(file.keys, [this](const auto& entry) {
            return is_key_exist(VEK_GUI_UTIL::from_local(entry.first));
        })) {
        return;
    }
    std::vector<KEY_ITEM> items = keys_exclude_key_file(key_file);
    for (const auto& [name, key] : file.keys) {
        items.push_back({key_file, VEK_GUI_UTIL::from_local(name),
                         QString::fromLatin1(key.data(), static_cast<int>(key.size()))});
    }
    // The old list goes last one to own what the new one has not taken over.
    m_key_items.swap(items);
    clear_combo();
    for (const KEY_ITEM& item : m_key_items) {
        m_key_combo->addItem(VEK_KEY_TEXT::copy(item.name));
    }
    for (KEY_ITEM& item : items) {
        VEK_KEY_TEXT::wipe(item.key);
    }
    VEK_KEY_TEXT::wipe_stack();
    m_key_combo->setCurrentIndex(0);
    update_button();
    do_key_change(0);
}
