#ifndef VEK_KEY_ENTRY_EDIT_H
#define VEK_KEY_ENTRY_EDIT_H

#include "core_dump_guard.h"
#include "vek_dlg_key_entry.h"

#include <QWidget>

#include <cstdint>
#include <vector>

class QComboBox;
class QToolButton;

/// A row of named encryption keys: those that the user typed and those read from a key file. The keys live in
/// this widget alone, are overwritten when they go, and are shown in clear only when the user asks for it.
class VEK_KEY_ENTRY_EDIT : public QWidget
{
    Q_OBJECT
public:
    struct KEY_ITEM {
        QString key_file; ///< empty for a key that was typed in
        QString name;     ///< unique in the list, letter case counts
        QString key;      ///< n_key_bits / 4 hexadecimal digits
    };

    /// `key_bits` is a multiple of 4. The text is not used.
    VEK_KEY_ENTRY_EDIT(unsigned int key_bits, QString, QWidget* parent);
    ~VEK_KEY_ENTRY_EDIT() override;

    /// Takes in the keys of a file, in place of those that came from this file before, and selects the first
    /// key of the list. A file that cannot be read, has no keys, or brings a name that is in the list already
    /// changes nothing.
    void populate_key_combo(QString key_file);
    /// The keys that did not come from the file.
    std::vector<KEY_ITEM> keys_exclude_key_file(QString key_file);
    bool is_key_exist(QString name);
    /// False, after a message to the user, when the name is in the list already.
    bool add_key(QString name, QString key);
    /// The name of the current key; empty without one.
    QString get_key();
    /// Name and key of a row, or of the current one when there is no such row; false without any.
    bool get_key(int index, QString& name, QString& key);
    void update_button();

public slots:
    void do_add();
    void do_edit();
    void do_delete();
    /// Shows the keys beside their names, or hides them again.
    void do_show();
    void do_key_change(int index);

signals:
    /// The digits of the new current key, not its name; empty without one.
    void keyEntryEditChanged(const QString& key);

private:
    QToolButton* create_button(const char* name, const QString& text, bool enabled);
    void prepare_dialog(const QString& name, const QString& key);
    /// Empties the combo without leaving keys behind.
    void clear_combo();

    CORE_DUMP_GUARD m_core_dump_guard;
    QComboBox* m_key_combo = nullptr;
    QToolButton* m_add_button = nullptr;
    QToolButton* m_edit_button = nullptr;
    QToolButton* m_delete_button = nullptr;
    QToolButton* m_show_button = nullptr;
    VEK_DLG_KEY_ENTRY m_key_entry_dialog;
    bool m_show_key = false;
    std::uint32_t m_n_key_bits;
    std::vector<KEY_ITEM> m_key_items; ///< item i stands in row i of the combo
};

#endif
