#include "output_fixture.h"

#include <QStyleOptionViewItem>

namespace
{

std::string word(VEK_FILE_TYPE type)
{
    return VEK_FILE_ASSISTANT::convert_xml_enum_to_string(VEK_DB::get_xml_enum(type));
}

VEK_FILE_TYPE type_of(const QAbstractItemModel& model, const QModelIndex& index)
{
    return dynamic_cast<const VEK_MODEL_OUTPUT_FILES&>(model).get_file_type(index);
}

void append_rows(const QAbstractItemModel& model, const QModelIndex& parent, const std::string& indent,
                 bool names, std::string& text)
{
    for (int row = 0; row < model.rowCount(parent); ++row) {
        const QModelIndex index = model.index(row, 0, parent);
        const bool enabled = model.flags(index).testFlag(Qt::ItemIsEnabled);
        text += indent + (enabled ? "[" : "(") +
                (index.data(Qt::CheckStateRole).toInt() == Qt::Checked ? "x" : " ") +
                (enabled ? "] " : ") ") + word(type_of(model, index));
        if (names) {
            text += " " + index.siblingAtColumn(1).data().toString().toStdString();
        }
        text += "\n";
        append_rows(model, index, indent + "  ", names, text);
    }
}

} // namespace

QModelIndex OUTPUT_FIXTURE::find(const QAbstractItemModel& model, const BRANCH& branch)
{
    QModelIndex current;
    for (const VEK_FILE_TYPE type : branch) {
        QModelIndex found;
        for (int row = 0; row < model.rowCount(current); ++row) {
            if (type_of(model, model.index(row, 0, current)) == type) {
                found = model.index(row, 0, current);
            }
        }
        if (!found.isValid()) {
            return {};
        }
        current = found;
    }
    return current;
}

std::string OUTPUT_FIXTURE::rows(const QAbstractItemModel& model, bool names)
{
    std::string text;
    append_rows(model, QModelIndex(), std::string(), names, text);
    return text;
}

std::string OUTPUT_FIXTURE::document() const
{
    std::string text;
    for (const auto* const output_file : VEK_FILE_ASSISTANT::get_output_file_elements(m_vek.get())) {
        text += output_file->type + " name=" + output_file->name + " dir=" + output_file->directory;
        text += VEK_FILE_ASSISTANT::convert_string_to_bool(output_file->cvp) ? " cvp" : "";
        text += VEK_FILE_ASSISTANT::convert_string_to_bool(output_file->hps) ? " hps" : "";
        for (const auto* const id : output_file->bitstream_id) {
            text += " " + id->text;
        }
        for (const auto* const id : output_file->flash_device_id) {
            text += " " + id->text;
        }
        std::string secondaries;
        for (const auto* const secondary : VEK_FILE_ASSISTANT::get_secondary_file_elements(output_file)) {
            secondaries += (secondaries.empty() ? "" : ", ") + secondary->type + " " + secondary->name;
        }
        text += (secondaries.empty() ? "" : " (" + secondaries + ")") + "\n";
    }
    return text;
}

bool OUTPUT_FIXTURE::tick(QAbstractItemModel& model, const BRANCH& branch, bool ticked)
{
    const QModelIndex index = find(model, branch);
    EXPECT_TRUE(index.isValid());
    return model.setData(index, ticked ? Qt::Checked : Qt::Unchecked, Qt::CheckStateRole);
}

std::unique_ptr<VEK_MODEL_OUTPUT_FILES> OUTPUT_FIXTURE::make_model() const
{
    return std::make_unique<VEK_MODEL_OUTPUT_FILES>(m_vek, m_cache, nullptr);
}

std::unique_ptr<VEK_TAB_OUTPUT_FILES> OUTPUT_FIXTURE::make_tab() const
{
    auto tab = std::make_unique<VEK_TAB_OUTPUT_FILES>(m_vek, m_cache, nullptr, Qt::WindowFlags());
    tab->resize(900, 500);
    tab->refresh();
    tab->show();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(tab.get()));
    return tab;
}

VEK_TREE_OUTPUT_FILES& OUTPUT_FIXTURE::tree(const QWidget& tab)
{
    return *tab.findChild<VEK_TREE_OUTPUT_FILES*>(QStringLiteral("m_file_type_tree"));
}

QLineEdit& OUTPUT_FIXTURE::edit(const QWidget& tab, const char* name)
{
    return *tab.findChild<QLineEdit*>(QLatin1String(name));
}

QPushButton& OUTPUT_FIXTURE::button(const QWidget& tab, const char* name)
{
    return *tab.findChild<QPushButton*>(QLatin1String(name));
}

void OUTPUT_FIXTURE::click_box(const QWidget& tab, const BRANCH& branch)
{
    VEK_TREE_OUTPUT_FILES& view = tree(tab);
    const QModelIndex index = find(*view.model(), branch);
    ASSERT_TRUE(index.isValid());
    view.scrollTo(index);
    QStyleOptionViewItem option;
    option.initFrom(&view);
    option.rect = view.visualRect(index);
    option.features = QStyleOptionViewItem::HasCheckIndicator | QStyleOptionViewItem::HasDisplay;
    const QRect box = view.style()->subElementRect(QStyle::SE_ItemViewItemCheckIndicator, &option, &view);
    QTest::mouseClick(view.viewport(), Qt::LeftButton, Qt::NoModifier, box.center());
}

void OUTPUT_FIXTURE::select(const QWidget& tab, const BRANCH& branch)
{
    const QModelIndex index = find(*tree(tab).model(), branch);
    ASSERT_TRUE(index.isValid());
    tree(tab).setCurrentIndex(index);
}

void OUTPUT_FIXTURE::add_secondary(const std::string& type, const std::string& secondary)
{
    set(*m_vek, VEK_CMD_OPT_OUTPUT_FILE,
        {{VEK_CMD_PARAM_OUTPUT_FILE_TYPE, type},
         {VEK_CMD_PARAM_OUTPUT_FILE_SECONDARY_FILE_TYPE, secondary},
         {VEK_CMD_PARAM_OUTPUT_FILE_SECONDARY_FILE_NAME, "any"}});
}

void OUTPUT_FIXTURE::add_flash_device(const std::string& id)
{
    set(*m_vek, VEK_CMD_OPT_FLASH_DEVICE,
        {{VEK_CMD_PARAM_FLASH_DEVICE_ID, id}, {VEK_CMD_PARAM_FLASH_DEVICE_TYPE, "W25Q128JV"}});
}
