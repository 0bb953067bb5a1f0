#include "vek_model_output_files.h"

#include "msg_internal_error.h"
#include "vek_db.h"
#include "vek_file_assistant.h"
#include "vek_file_type_tree_node.h"
#include "vek_frame_wnd_cache.h"
#include "vek_gui_util.h"

namespace
{

const std::vector<const char*> COLUMN_LABELS = {
    QT_TRANSLATE_NOOP("VEK_MODEL_OUTPUT_FILES", "Description"),
    QT_TRANSLATE_NOOP("VEK_MODEL_OUTPUT_FILES", "File Name"),
};

} // namespace

VEK_MODEL_OUTPUT_FILES::VEK_MODEL_OUTPUT_FILES(std::shared_ptr<PGM_COMMON_XML_VEK_VEK> vek,
                                               std::shared_ptr<VEK_FRAME_WND_CACHE> cache, QObject* parent)
    : QAbstractItemModel(parent), m_vek(std::move(vek)), m_cache(std::move(cache))
{
    VEK_ASSERT(m_vek != nullptr);
    VEK_ASSERT(m_cache != nullptr);
    VEK_ASSERT(NUMBER_OF_COLUMN == COLUMN_LABELS.size());
    replace_tree();
}

VEK_MODEL_OUTPUT_FILES::~VEK_MODEL_OUTPUT_FILES() = default;

VEK_FILE_TYPE_TREE_NODE* VEK_MODEL_OUTPUT_FILES::get_node(const QModelIndex& index) const
{
    return index.isValid() ? static_cast<NODE*>(index.internalPointer()) : m_root_node;
}

QModelIndex VEK_MODEL_OUTPUT_FILES::get_index(NODE* node) const
{
    return createIndex(node->get_index(), COLUMN_FILE_DESCRIPTION, node);
}

QModelIndex VEK_MODEL_OUTPUT_FILES::index(int row, int column, const QModelIndex& parent) const
{
    if (!hasIndex(row, column, parent)) {
        return {};
    }
    const NODE* const parent_node = get_node(parent);
    VEK_ASSERT(parent_node != nullptr);
    NODE* const child = parent_node->get_child(row);
    return child == nullptr ? QModelIndex() : createIndex(row, column, child);
}

QModelIndex VEK_MODEL_OUTPUT_FILES::parent(const QModelIndex& index) const
{
    if (!index.isValid()) {
        return {};
    }
    const NODE* const node = get_node(index);
    VEK_ASSERT(node != nullptr);
    NODE* const parent_node = node->get_parent();
    if (parent_node == nullptr || parent_node->get_file_type() == VEK_INVALID_FILE_TYPE) {
        return {};
    }
    return get_index(parent_node);
}

int VEK_MODEL_OUTPUT_FILES::rowCount(const QModelIndex& parent) const
{
    const NODE* const parent_node = get_node(parent);
    VEK_ASSERT(parent_node != nullptr);
    return static_cast<int>(parent_node->get_children().size());
}

int VEK_MODEL_OUTPUT_FILES::columnCount(const QModelIndex& /*parent*/) const
{
    return NUMBER_OF_COLUMN;
}

QVariant VEK_MODEL_OUTPUT_FILES::data(const QModelIndex& index, int role) const
{
    if (!index.isValid()) {
        return {};
    }
    switch (index.column()) {
    case COLUMN_FILE_DESCRIPTION:
        return get_file_description_column_data(index, role);
    case COLUMN_FILE_NAME:
        return get_file_name_column_data(index, role);
    default:
        return {};
    }
}

QVariant VEK_MODEL_OUTPUT_FILES::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 ||
        section >= NUMBER_OF_COLUMN) {
        return {};
    }
    return tr(COLUMN_LABELS[static_cast<std::size_t>(section)]);
}

Qt::ItemFlags VEK_MODEL_OUTPUT_FILES::flags(const QModelIndex& index) const
{
    if (!index.isValid()) {
        return Qt::NoItemFlags;
    }
    Qt::ItemFlags item_flags = Qt::ItemIsSelectable;
    if (index.column() == COLUMN_FILE_DESCRIPTION) {
        item_flags |= Qt::ItemIsUserCheckable;
    }
    if (get_node(index)->get_enabled()) {
        item_flags |= Qt::ItemIsEnabled;
    }
    return item_flags;
}

QVariant VEK_MODEL_OUTPUT_FILES::get_file_description_column_data(const QModelIndex& index, int role) const
{
    VEK_ASSERT(index.isValid());
    VEK_ASSERT(index.column() == COLUMN_FILE_DESCRIPTION);
    const NODE* const node = get_node(index);
    VEK_ASSERT(node != nullptr);
    const VEK_FILE_TYPE file_type = node->get_file_type();
    switch (role) {
    case Qt::DisplayRole:
        return file_type == VEK_INVALID_FILE_TYPE
                   ? QStringLiteral("Root")
                   : VEK_GUI_UTIL::from_local(VEK_DB::get_description(file_type));
    case Qt::CheckStateRole:
        return static_cast<int>(node->get_check_state());
    case Qt::ToolTipRole:
        return VEK_GUI_UTIL::from_local(VEK_DB::get_tooltip(file_type));
    default:
        return {};
    }
}

VEK_FILE_TYPE VEK_MODEL_OUTPUT_FILES::get_file_type(const QModelIndex& index) const
{
    return index.isValid() ? get_node(index)->get_file_type() : VEK_INVALID_FILE_TYPE;
}

int VEK_MODEL_OUTPUT_FILES::get_check_state(const QModelIndex& index) const
{
    if (!index.isValid()) {
        return Qt::Unchecked;
    }
    const QVariant data = get_file_description_column_data(index, Qt::CheckStateRole);
    VEK_ASSERT(data.isValid());
    return data.toInt();
}

void VEK_MODEL_OUTPUT_FILES::set_vek(std::shared_ptr<PGM_COMMON_XML_VEK_VEK> vek)
{
    VEK_ASSERT(vek != nullptr);
    m_vek = std::move(vek);
}
