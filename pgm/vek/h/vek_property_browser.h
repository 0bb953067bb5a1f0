#ifndef VEK_PROPERTY_BROWSER_H
#define VEK_PROPERTY_BROWSER_H

#include "fio_types.h"

#include <QFileDialog>
#include <QWidget>

#include <cstdint>
#include <map>
#include <vector>

class QComboBox;
class QGridLayout;
class QGroupBox;
class QLabel;
class QVBoxLayout;

/// The rows of a dialog: a label and an editor each, loose or in titled groups, found by a number and read
/// and written as text. The number is as a rule a command parameter, so that a dialog can store a row
/// straight into a parameter list.
///
/// A dialog makes a row with one of the `create_` operations, fills it, and places it with `add_property` or
/// `add_property_group`.
class VEK_PROPERTY_BROWSER : public QWidget
{
    Q_OBJECT
public:
    /// The kind of a row says which editor it has and how its value becomes a text.
    enum TYPE : unsigned {
        TYPE_BOOL_COMBO = 0, ///< QComboBox with "Off" and "On"
        TYPE_COMBO = 1,      ///< QComboBox; the data of an item is a word of the document vocabulary
        TYPE_FILE = 2,       ///< VEK_FILE_EDIT
        TYPE_LINE = 3,       ///< QLineEdit
        TYPE_KEY = 4,        ///< VEK_KEY_ENTRY_EDIT
        TYPE_CHECK = 5,      ///< QCheckBox, which carries its own text and has no label
        TYPE_INVALID = 6,
    };

    /// The id of rows that are only shown and never found again.
    static constexpr std::uint32_t NO_ID = 0xFFFFFFFFu;

    /// The widgets belong to the layout in which they stand.
    struct PROPERTY {
        QWidget* label = nullptr;
        QWidget* widget = nullptr;
        std::uint32_t id = NO_ID;
        TYPE type = TYPE_INVALID;
    };

    explicit VEK_PROPERTY_BROWSER(QWidget* parent = nullptr);

    // New rows, not yet placed. The label, which is translated for the eye, is the object name of the editor;
    // the tooltip goes on the label, or on a check box.

    static PROPERTY create_bool_property(std::uint32_t id, const char* label, const char* tooltip);
    /// One item for each entry in the order of the keys: the text is shown, the key is the item's data.
    static PROPERTY create_combo_property(std::uint32_t id, const char* label, const char* tooltip,
                                          const std::map<unsigned, QString>& items);
    static PROPERTY create_line_edit_property(std::uint32_t id, const char* label, const char* tooltip);
    static PROPERTY create_check_property(std::uint32_t id, const char* label, const char* tooltip);
    /// The object name goes on the line edit within the VEK_FILE_EDIT.
    static PROPERTY create_file_edit_property(std::uint32_t id, const char* label, const char* tooltip,
                                              const std::vector<FIO_FILE_TYPE>& file_types,
                                              QFileDialog::FileMode file_mode);
    /// A key has `key_bits` / 4 digits. The text is not used.
    static PROPERTY create_key_entry_edit_property(std::uint32_t id, const char* label, const char* tooltip,
                                                   unsigned int key_bits, const QString& text);

    /// Adds a loose row; rows that follow each other share a grid. False when the id is taken.
    bool add_property(const PROPERTY& property);
    /// Adds a titled box with the rows in their order. False, and nothing added, when an id is taken or
    /// occurs twice.
    bool add_property_group(const QString& title, const std::vector<PROPERTY>& properties);

    /// A record with null widgets when no row has the id.
    PROPERTY get_property(std::uint32_t id) const;
    /// In the order of the ids. `include_hidden` asks for the hidden rows too.
    std::vector<PROPERTY> get_properties(bool include_hidden) const;
    std::vector<std::uint32_t> get_ids(bool include_hidden) const;
    /// Null when no row has the id.
    QWidget* get_widget(std::uint32_t id) const;
    /// NO_ID when the widget is the editor of no row.
    std::uint32_t get_id_by_widget(const QWidget* widget) const;

    /// The text that the parameter interface takes. A combo without a current item, and an id that no row
    /// has, are internal errors.
    QString get_widget_value(std::uint32_t id) const;
    /// Takes a text of the parameter interface. A combo without such an item keeps its selection. False when
    /// no row has the id. A key is never put into a row: that is an internal error.
    bool set_widget_value(std::uint32_t id, const QString& value);

    /// Hides label and editor and disables the editor; the row can still be found. False when no row has the
    /// id.
    bool hide_property(std::uint32_t id);
    /// Hides every group of which all rows are hidden; to be called after the last hide_property.
    void hide_property_group();
    /// Looks at the first group with the title; false when there is none.
    bool is_property_group_hidden(const QString& title) const;

private:
    static QLabel* create_label(const char* label, const char* tooltip);
    static void populate_boolean_combo(QComboBox& combo);
    void add_property_to_layout(const PROPERTY& property, QGridLayout& grid);
    /// The grid of an entry of the main layout, loose or in a group; `group` is null for a loose one.
    QGridLayout* get_grid(int entry, QGroupBox*& group) const;

    QVBoxLayout* m_main_layout = nullptr;
    std::map<std::uint32_t, PROPERTY> m_properties;
};

#endif
