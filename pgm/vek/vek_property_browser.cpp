#include "vek_property_browser.h"

#include "msg_internal_error.h"
#include "vek_file_assistant.h"
#include "vek_file_edit.h"
#include "vek_gui_util.h"
#include "vek_key_entry_edit.h"

#include <QCheckBox>
#include <QComboBox>
#include <QEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>

#include <algorithm>
#include <cstring>
#include <new>

namespace
{

/// Makes a label look as live as its editor: on a dark screen an empty field alone does not tell.
class LABEL_STATE : public QObject
{
public:
    LABEL_STATE(QWidget& label, QWidget& editor) : QObject(&label), m_label(label), m_editor(editor)
    {
        m_editor.installEventFilter(this);
        update();
    }
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::EnabledChange) {
            update();
        }
        return QObject::eventFilter(watched, event);
    }

private:
    void update() { m_label.setEnabled(m_editor.isEnabledTo(m_editor.parentWidget())); }

    QWidget& m_label;
    QWidget& m_editor;
};

template <typename EDITOR>
EDITOR& editor_of(const VEK_PROPERTY_BROWSER::PROPERTY& property)
{
    auto* const editor = qobject_cast<EDITOR*>(property.widget);
    VEK_ASSERT(editor != nullptr);
    return *editor;
}

QVariant get_current_data(const QComboBox& combo)
{
    const int index = combo.currentIndex();
    VEK_ASSERT(index != -1);
    const QVariant data = combo.itemData(index);
    VEK_ASSERT(data.isValid());
    return data;
}

bool get_current_bool(const QComboBox& combo)
{
    const QVariant data = get_current_data(combo);
    VEK_ASSERT(data.canConvert<bool>());
    return data.toBool();
}

PGM_COMMON_XML_ENUM get_current_word(const QComboBox& combo)
{
    const QVariant data = get_current_data(combo);
    VEK_ASSERT(data.canConvert<int>());
    return static_cast<PGM_COMMON_XML_ENUM>(data.toInt());
}

/// Without an item for the word the selection stays.
void select_word(QComboBox& combo, const std::string& word)
{
    const int value = static_cast<int>(VEK_FILE_ASSISTANT::convert_string_to_xml_enum(word));
    for (int index = 0; index < combo.count(); ++index) {
        if (combo.itemData(index).toInt() == value) {
            combo.setCurrentIndex(index);
            return;
        }
    }
}

} // namespace

VEK_PROPERTY_BROWSER::VEK_PROPERTY_BROWSER(QWidget* parent) : QWidget(parent)
{
    m_main_layout = new QVBoxLayout(this);
    m_main_layout->setContentsMargins(0, 0, 0, 0);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

QLabel* VEK_PROPERTY_BROWSER::create_label(const char* label, const char* tooltip)
{
    auto* const prop_label = new (std::nothrow) QLabel(tr(label));
    VEK_ASSERT(prop_label);
    prop_label->setToolTip(QString::fromLocal8Bit(tooltip));
    return prop_label;
}

void VEK_PROPERTY_BROWSER::populate_boolean_combo(QComboBox& combo)
{
    combo.addItem(tr("Off"), false);
    combo.addItem(tr("On"), true);
}

VEK_PROPERTY_BROWSER::PROPERTY VEK_PROPERTY_BROWSER::create_bool_property(std::uint32_t id, const char* label,
                                                                          const char* tooltip)
{
    auto* const prop_label = create_label(label, tooltip);
    auto* const prop_combo = new (std::nothrow) QComboBox;
    VEK_ASSERT(prop_combo);
    prop_combo->setObjectName(QString::fromLocal8Bit(label));
    populate_boolean_combo(*prop_combo);
    return {prop_label, prop_combo, id, TYPE_BOOL_COMBO};
}

VEK_PROPERTY_BROWSER::PROPERTY
VEK_PROPERTY_BROWSER::create_combo_property(std::uint32_t id, const char* label, const char* tooltip,
                                            const std::map<unsigned, QString>& items)
{
    auto* const prop_label = create_label(label, tooltip);
    auto* const prop_combo = new (std::nothrow) QComboBox;
    VEK_ASSERT(prop_combo);
    prop_combo->setObjectName(QString::fromLocal8Bit(label));
    for (const auto& [value, text] : items) {
        prop_combo->addItem(text, value);
    }
    return {prop_label, prop_combo, id, TYPE_COMBO};
}

VEK_PROPERTY_BROWSER::PROPERTY
VEK_PROPERTY_BROWSER::create_line_edit_property(std::uint32_t id, const char* label, const char* tooltip)
{
    auto* const prop_label = create_label(label, tooltip);
    auto* const prop_edit = new QLineEdit;
    prop_edit->setObjectName(QString::fromLocal8Bit(label));
    return {prop_label, prop_edit, id, TYPE_LINE};
}

VEK_PROPERTY_BROWSER::PROPERTY
VEK_PROPERTY_BROWSER::create_check_property(std::uint32_t id, const char* label, const char* tooltip)
{
    auto* const prop_check = new (std::nothrow) QCheckBox(tr(label));
    VEK_ASSERT(prop_check);
    prop_check->setObjectName(QString::fromLocal8Bit(label));
    prop_check->setToolTip(QString::fromLocal8Bit(tooltip));
    return {nullptr, prop_check, id, TYPE_CHECK};
}

VEK_PROPERTY_BROWSER::PROPERTY
VEK_PROPERTY_BROWSER::create_file_edit_property(std::uint32_t id, const char* label, const char* tooltip,
                                                const std::vector<FIO_FILE_TYPE>& file_types,
                                                QFileDialog::FileMode file_mode)
{
    auto* const prop_label = create_label(label, tooltip);
    auto* const prop_file_edit = new (std::nothrow) VEK_FILE_EDIT;
    VEK_ASSERT(prop_file_edit);
    prop_file_edit->set_file_types(file_types);
    prop_file_edit->set_file_mode(file_mode);
    prop_file_edit->get_line_edit()->setObjectName(QString::fromLocal8Bit(label));
    return {prop_label, prop_file_edit, id, TYPE_FILE};
}

VEK_PROPERTY_BROWSER::PROPERTY
VEK_PROPERTY_BROWSER::create_key_entry_edit_property(std::uint32_t id, const char* label, const char* tooltip,
                                                     unsigned int key_bits, const QString& text)
{
    auto* const prop_label = create_label(label, tooltip);
    auto* const prop_key_entry_edit = new (std::nothrow) VEK_KEY_ENTRY_EDIT(key_bits, text, nullptr);
    VEK_ASSERT(prop_key_entry_edit);
    prop_key_entry_edit->setObjectName(QString::fromLocal8Bit(label));
    return {prop_label, prop_key_entry_edit, id, TYPE_KEY};
}

void VEK_PROPERTY_BROWSER::add_property_to_layout(const PROPERTY& property, QGridLayout& grid)
{
    // An empty grid reports one row, so that the rows of every grid begin at 1.
    const int row = grid.rowCount();
    if (property.type == TYPE_CHECK) {
        grid.addWidget(property.widget, row, 0, 1, -1);
    } else {
        grid.addWidget(property.label, row, 0);
        grid.addWidget(property.widget, row, 1);
        grid.setColumnStretch(1, 1);
    }
    if (std::strncmp(property.widget->metaObject()->className(), "QCheckBox", 9) == 0) {
        grid.setAlignment(property.widget, Qt::AlignLeft);
    }
    if (auto* const label = qobject_cast<QLabel*>(property.label)) {
        label->setBuddy(property.widget); // gives the editor its name for assistive technology
        new LABEL_STATE(*label, *property.widget);
    }
    if (property.id != NO_ID) {
        m_properties[property.id] = property;
    }
}

bool VEK_PROPERTY_BROWSER::add_property(const PROPERTY& property)
{
    if (m_properties.count(property.id) != 0) {
        return false;
    }
    QGridLayout* grid = nullptr;
    if (m_main_layout->count() != 0) {
        grid = qobject_cast<QGridLayout*>(m_main_layout->itemAt(m_main_layout->count() - 1)->layout());
    }
    if (grid == nullptr) {
        grid = new QGridLayout;
        m_main_layout->addLayout(grid);
    }
    add_property_to_layout(property, *grid);
    return true;
}

bool VEK_PROPERTY_BROWSER::add_property_group(const QString& title, const std::vector<PROPERTY>& properties)
{
    std::vector<std::uint32_t> ids;
    for (const PROPERTY& property : properties) {
        if (property.id != NO_ID) {
            ids.push_back(property.id);
        }
    }
    std::sort(ids.begin(), ids.end());
    if (std::adjacent_find(ids.begin(), ids.end()) != ids.end() ||
        std::any_of(ids.begin(), ids.end(),
                    [this](std::uint32_t id) { return m_properties.count(id) != 0; })) {
        return false;
    }
    auto* const grid_layout = new (std::nothrow) QGridLayout;
    VEK_ASSERT(grid_layout);
    for (const PROPERTY& property : properties) {
        add_property_to_layout(property, *grid_layout);
    }
    auto* const group = new (std::nothrow) QGroupBox(title);
    VEK_ASSERT(group);
    group->setLayout(grid_layout);
    m_main_layout->addWidget(group);
    return true;
}

VEK_PROPERTY_BROWSER::PROPERTY VEK_PROPERTY_BROWSER::get_property(std::uint32_t id) const
{
    const auto found = m_properties.find(id);
    return found == m_properties.end() ? PROPERTY{} : found->second;
}

std::vector<VEK_PROPERTY_BROWSER::PROPERTY> VEK_PROPERTY_BROWSER::get_properties(bool include_hidden) const
{
    std::vector<PROPERTY> properties;
    for (const auto& [id, property] : m_properties) {
        if (include_hidden || !property.widget->isHidden()) {
            properties.push_back(property);
        }
    }
    return properties;
}

std::vector<std::uint32_t> VEK_PROPERTY_BROWSER::get_ids(bool include_hidden) const
{
    std::vector<std::uint32_t> ids;
    for (const PROPERTY& property : get_properties(include_hidden)) {
        ids.push_back(property.id);
    }
    return ids;
}

QWidget* VEK_PROPERTY_BROWSER::get_widget(std::uint32_t id) const
{
    return get_property(id).widget;
}

std::uint32_t VEK_PROPERTY_BROWSER::get_id_by_widget(const QWidget* widget) const
{
    const auto found = std::find_if(m_properties.begin(), m_properties.end(),
                                    [widget](const auto& entry) { return entry.second.widget == widget; });
    return found == m_properties.end() ? NO_ID : found->first;
}

QString VEK_PROPERTY_BROWSER::get_widget_value(std::uint32_t id) const
{
    const PROPERTY property = get_property(id);
    const QWidget* const widget = property.widget;
    VEK_ASSERT(widget);
    switch (property.type) {
    case TYPE_BOOL_COMBO:
        return VEK_GUI_UTIL::from_local(
            VEK_FILE_ASSISTANT::convert_bool_to_string(get_current_bool(editor_of<QComboBox>(property))));
    case TYPE_COMBO:
        return VEK_GUI_UTIL::from_local(
            VEK_FILE_ASSISTANT::convert_xml_enum_to_string(get_current_word(editor_of<QComboBox>(property))));
    case TYPE_FILE:
        return VEK_GUI_UTIL::from_local(editor_of<VEK_FILE_EDIT>(property).get_path().fullpath());
    case TYPE_LINE:
        return editor_of<QLineEdit>(property).text();
    case TYPE_KEY:
        return editor_of<VEK_KEY_ENTRY_EDIT>(property).get_key();
    case TYPE_CHECK:
        return VEK_GUI_UTIL::from_local(
            VEK_FILE_ASSISTANT::convert_bool_to_string(editor_of<QCheckBox>(property).isChecked()));
    case TYPE_INVALID:
        break;
    }
    MSG_INTERNAL_ERROR::report("Unrecognized property type in get function", "VEK", __FILE__, __LINE__);
}

bool VEK_PROPERTY_BROWSER::set_widget_value(std::uint32_t id, const QString& value)
{
    const PROPERTY property = get_property(id);
    if (property.widget == nullptr) {
        return false;
    }
    switch (property.type) {
    case TYPE_BOOL_COMBO:
        editor_of<QComboBox>(property).setCurrentIndex(
            VEK_FILE_ASSISTANT::convert_string_to_bool(VEK_GUI_UTIL::to_local(value)) ? 1 : 0);
        return true;
    case TYPE_COMBO:
        select_word(editor_of<QComboBox>(property), VEK_GUI_UTIL::to_local(value));
        return true;
    case TYPE_FILE:
        editor_of<VEK_FILE_EDIT>(property).set_path(FIO_PATH(VEK_GUI_UTIL::to_local(value)));
        return true;
    case TYPE_LINE:
        editor_of<QLineEdit>(property).setText(value);
        return true;
    case TYPE_KEY:
        MSG_INTERNAL_ERROR::report("Should not set key entry property due to security concern", "VEK",
                                   __FILE__, __LINE__);
    case TYPE_CHECK:
        editor_of<QCheckBox>(property).setCheckState(
            VEK_FILE_ASSISTANT::convert_string_to_bool(VEK_GUI_UTIL::to_local(value)) ? Qt::Checked
                                                                                      : Qt::Unchecked);
        return true;
    case TYPE_INVALID:
        break;
    }
    MSG_INTERNAL_ERROR::report("Unrecognized property type in set function", "VEK", __FILE__, __LINE__);
}

QGridLayout* VEK_PROPERTY_BROWSER::get_grid(int entry, QGroupBox*& group) const
{
    group = nullptr;
    QLayoutItem* const item = m_main_layout->itemAt(entry);
    if (item->layout() != nullptr) {
        return qobject_cast<QGridLayout*>(item->layout());
    }
    group = qobject_cast<QGroupBox*>(item->widget());
    VEK_ASSERT(group != nullptr);
    auto* const grid_layout = qobject_cast<QGridLayout*>(group->layout());
    VEK_ASSERT(grid_layout != nullptr);
    return grid_layout;
}

bool VEK_PROPERTY_BROWSER::hide_property(std::uint32_t id)
{
    QWidget* const widget = get_widget(id);
    if (widget == nullptr) {
        return false;
    }
    for (int entry = 0; entry < m_main_layout->count(); ++entry) {
        QGroupBox* group = nullptr;
        QGridLayout* const grid = get_grid(entry, group);
        const int index = grid->indexOf(widget);
        if (index == -1) {
            continue;
        }
        int row = 0;
        int column = 0;
        int row_span = 0;
        int column_span = 0;
        grid->getItemPosition(index, &row, &column, &row_span, &column_span);
        QLayoutItem* const label = column > 0 ? grid->itemAtPosition(row, column - 1) : nullptr;
        if (label != nullptr && label->widget() != nullptr) {
            label->widget()->hide();
        }
        widget->hide();
        widget->setEnabled(false);
        break;
    }
    return true;
}

void VEK_PROPERTY_BROWSER::hide_property_group()
{
    for (int entry = 0; entry < m_main_layout->count(); ++entry) {
        QGroupBox* group = nullptr;
        const QGridLayout* const grid = get_grid(entry, group);
        if (group == nullptr) {
            continue;
        }
        int hidden_rows = 0;
        for (int row = 1; row < grid->rowCount(); ++row) {
            const QLayoutItem* layout_item = grid->itemAtPosition(row, 0);
            if (layout_item == nullptr) {
                layout_item = grid->itemAtPosition(row, 1);
            }
            VEK_ASSERT(layout_item != nullptr);
            const QWidget* const widget = const_cast<QLayoutItem*>(layout_item)->widget();
            VEK_ASSERT(widget != nullptr);
            hidden_rows += widget->isHidden() ? 1 : 0;
        }
        if (hidden_rows == grid->rowCount() - 1) {
            group->hide();
        }
    }
}

bool VEK_PROPERTY_BROWSER::is_property_group_hidden(const QString& title) const
{
    for (int entry = 0; entry < m_main_layout->count(); ++entry) {
        QGroupBox* group = nullptr;
        get_grid(entry, group);
        if (group != nullptr && group->title() == title) {
            return group->isHidden();
        }
    }
    return false;
}
