// The rows and columns of the input files.

#include "vek_model_input_files.h"

#include "fio_types.h"
#include "msg_internal_error.h"
#include "msgs/vek_msgs.h"
#include "vek_frame_wnd_cache.h"
#include "vek_gui_util.h"
#include "vek_util.h"

#include <QColor>

#include <algorithm>

namespace
{

const QStringList COLUMN_LABELS = {QStringLiteral("File Path"), QStringLiteral("Device"),
                                   QStringLiteral("Compression"), QStringLiteral("Encryption"),
                                   QStringLiteral("HPS File")};

FIO_FILE_TYPE get_file_type(const std::string& path)
{
    return fio_get_file_type(fio_get_extension_type(FIO_PATH(path).extension()));
}

const PGM_COMMON_XML_VEK_PATH* get_path_element(const QModelIndex& index)
{
    const PGM_COMMON_XML_ELEMENT* const element = VEK_MODEL_INPUT_FILES::get_element(index);
    return element != nullptr && element->m_class_type == PGM_COMMON_XML_ENUM_PATH
               ? static_cast<const PGM_COMMON_XML_VEK_PATH*>(element)
               : nullptr;
}

/// The entry of the vector, -1 when it is not among them.
template <typename ELEMENT>
int find_row(const std::vector<ELEMENT*>& elements, const PGM_COMMON_XML_ELEMENT* element)
{
    const auto found = std::find(elements.begin(), elements.end(), element);
    return found == elements.end() ? -1 : static_cast<int>(found - elements.begin());
}

} // namespace

VEK_MODEL_INPUT_FILES::VEK_MODEL_INPUT_FILES(std::shared_ptr<PGM_COMMON_XML_VEK_VEK> vek,
                                             std::shared_ptr<VEK_FRAME_WND_CACHE> cache, QObject* parent)
    : QAbstractItemModel(parent), m_vek(std::move(vek)), m_cache(std::move(cache))
{
}

void VEK_MODEL_INPUT_FILES::set_vek(std::shared_ptr<PGM_COMMON_XML_VEK_VEK> vek)
{
    beginResetModel();
    m_vek = std::move(vek);
    endResetModel();
}

PGM_COMMON_XML_ELEMENT* VEK_MODEL_INPUT_FILES::get_element(const QModelIndex& index)
{
    return static_cast<PGM_COMMON_XML_ELEMENT*>(index.internalPointer());
}

std::vector<PGM_COMMON_XML_ELEMENT*> VEK_MODEL_INPUT_FILES::get_top_level_items() const
{
    const auto bitstreams = VEK_FILE_ASSISTANT::get_bitstream_elements(document());
    const auto raw_files = VEK_FILE_ASSISTANT::get_raw_file_elements(document());
    std::vector<PGM_COMMON_XML_ELEMENT*> items(bitstreams.begin(), bitstreams.end());
    items.insert(items.end(), raw_files.begin(), raw_files.end());
    return items;
}

QModelIndex VEK_MODEL_INPUT_FILES::index(int row, int column, const QModelIndex& parent) const
{
    if (!hasIndex(row, column, parent)) {
        return {};
    }
    const PGM_COMMON_XML_ELEMENT* const element = get_element(parent);
    std::vector<PGM_COMMON_XML_ELEMENT*> candidates;
    if (element == nullptr) {
        candidates = get_top_level_items();
    } else if (element->m_class_type == PGM_COMMON_XML_ENUM_BITSTREAM) {
        candidates = element->get_childs(PGM_COMMON_XML_ENUM_PATH, true);
    }
    const auto position = static_cast<std::size_t>(row);
    return position < candidates.size() ? createIndex(row, column, candidates[position]) : QModelIndex();
}

QModelIndex VEK_MODEL_INPUT_FILES::parent(const QModelIndex& child) const
{
    const PGM_COMMON_XML_VEK_PATH* const element = get_path_element(child);
    PGM_COMMON_XML_ELEMENT* const bitstream = element == nullptr ? nullptr : element->get_parent();
    const int row = bitstream == nullptr
                        ? -1
                        : find_row(VEK_FILE_ASSISTANT::get_bitstream_elements(document()), bitstream);
    return row < 0 ? QModelIndex() : createIndex(row, 0, bitstream);
}

int VEK_MODEL_INPUT_FILES::rowCount(const QModelIndex& parent) const
{
    const PGM_COMMON_XML_ELEMENT* const element = get_element(parent);
    if (element == nullptr) {
        return static_cast<int>(get_top_level_items().size());
    }
    return element->m_class_type == PGM_COMMON_XML_ENUM_BITSTREAM
               ? static_cast<int>(element->get_child_count(PGM_COMMON_XML_ENUM__INVALID__, true))
               : 0;
}

int VEK_MODEL_INPUT_FILES::columnCount(const QModelIndex& /*parent*/) const
{
    return COLUMN_COUNT;
}

QVariant VEK_MODEL_INPUT_FILES::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 || section >= COLUMN_COUNT) {
        return {};
    }
    return COLUMN_LABELS.at(section);
}

QVariant VEK_MODEL_INPUT_FILES::data(const QModelIndex& index, int role) const
{
    if (!index.isValid()) {
        return {};
    }
    switch (index.column()) {
    case COLUMN_FILE_PATH:
        return get_file_path_column_data(index, role);
    case COLUMN_DEVICE:
        return get_device_column_data(index, role);
    case COLUMN_COMPRESSION:
        return get_compression_column_data(index, role);
    case COLUMN_ENCRYPTION:
        return get_encryption_column_data(index, role);
    case COLUMN_HPS_FILE:
        return get_hps_file_column_data(index, role);
    default:
        return {};
    }
}

QVariant VEK_MODEL_INPUT_FILES::get_file_path_column_data(const QModelIndex& index, int role) const
{
    const PGM_COMMON_XML_ELEMENT* const element = get_element(index);
    const bool is_bitstream = element->m_class_type == PGM_COMMON_XML_ENUM_BITSTREAM;
    std::string name;
    std::string path;
    if (is_bitstream) {
        name = static_cast<const PGM_COMMON_XML_VEK_BITSTREAM*>(element)->id;
    } else {
        path = element->read_string();
    }
    // An empty path would become the working directory.
    const FIO_PATH full_path = path.empty() ? FIO_PATH() : VEK_GUI_UTIL::make_path_absolute(path);
    bool is_usable = false;
    std::string message;
    if (!full_path.is_empty()) {
        const PGM_DEVICE* device = nullptr;
        std::string device_name;
        is_usable = VEK_UTIL::precheck_input_file(full_path, &device, device_name, message,
                                                  element->m_class_type == PGM_COMMON_XML_ENUM_PATH);
    }
    switch (role) {
    case Qt::DisplayRole:
        if (!name.empty()) {
            return VEK_GUI_UTIL::from_local(name);
        }
        return full_path.is_empty() ? QVariant() : VEK_GUI_UTIL::from_local(full_path.filename());
    case Qt::ToolTipRole:
        if (full_path.is_empty()) {
            return {};
        }
        return VEK_GUI_UTIL::from_local(is_usable ? full_path.fullpath() : message);
    case Qt::ForegroundRole:
        return QColor(is_usable || full_path.is_empty() ? Qt::black : Qt::red);
    default:
        return {};
    }
}

QVariant VEK_MODEL_INPUT_FILES::get_device_column_data(const QModelIndex& index, int role) const
{
    if (role != Qt::DisplayRole || get_path_element(index) == nullptr) {
        return {};
    }
    return VEK_GUI_UTIL::from_local(m_cache->device_name).toUpper();
}

QVariant VEK_MODEL_INPUT_FILES::get_compression_column_data(const QModelIndex& index, int role) const
{
    const PGM_COMMON_XML_VEK_PATH* const element = get_path_element(index);
    if (role != Qt::DisplayRole || element == nullptr) {
        return {};
    }
    const FIO_FILE_TYPE type = get_file_type(element->text);
    if (type != FIO_SOF_FILE && type != FIO_PMSF_FILE) {
        msg_vdebug_impl(MSG_D_LEVEL_2, "unknown input file type %d (SOF=%d, PMSF=%d)", static_cast<int>(type),
                        static_cast<int>(FIO_SOF_FILE), static_cast<int>(FIO_EXT_PMSF));
        return {};
    }
    const bool is_on = dev_family_is_secure(m_cache->family) ||
                       VEK_FILE_ASSISTANT::convert_string_to_bool(element->compression);
    return is_on ? tr("On") : tr("Off");
}

QVariant VEK_MODEL_INPUT_FILES::get_encryption_column_data(const QModelIndex& index, int role) const
{
    VEK_ASSERT(index.isValid());
    const PGM_COMMON_XML_ELEMENT* const element = get_element(index);
    VEK_ASSERT(element != nullptr);
    const PGM_COMMON_XML_VEK_PATH* const path = get_path_element(index);
    if (role != Qt::DisplayRole || path == nullptr) {
        return {};
    }
    const FIO_FILE_TYPE type = get_file_type(path->text);
    if (type != FIO_SOF_FILE && type != FIO_PMSF_FILE) {
        return {};
    }
    bool is_on = false;
    if (dev_family_is_secure(m_cache->family)) {
        // What the compiled file says, not what the user has set.
        const auto found =
            m_cache->sof_encryption_by_path.find(VEK_GUI_UTIL::make_path_absolute(path->text).fullpath());
        is_on = found != m_cache->sof_encryption_by_path.end() && found->second;
    } else {
        is_on = VEK_FILE_ASSISTANT::convert_string_to_bool(path->encryption);
    }
    return is_on ? tr("On") : tr("Off");
}

QVariant VEK_MODEL_INPUT_FILES::get_hps_file_column_data(const QModelIndex& index, int role) const
{
    const PGM_COMMON_XML_VEK_PATH* const element = get_path_element(index);
    if (element == nullptr || element->hps_path.empty()) {
        return {};
    }
    switch (role) {
    case Qt::DisplayRole:
        return VEK_GUI_UTIL::from_local(FIO_PATH(element->hps_path).filename());
    case Qt::ToolTipRole:
        return VEK_GUI_UTIL::from_local(element->hps_path);
    default:
        return {};
    }
}

bool VEK_MODEL_INPUT_FILES::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (!index.isValid() || !value.isValid() || index.column() != COLUMN_FILE_PATH ||
        !set_file_path_column_data(index, value, role)) {
        return false;
    }
    emit dataChanged(index, index);
    return true;
}

bool VEK_MODEL_INPUT_FILES::set_file_path_column_data(const QModelIndex& index, const QVariant& value,
                                                      int role)
{
    VEK_ASSERT(index.isValid());
    VEK_ASSERT(value.isValid());
    if (role != Qt::DisplayRole || !value.canConvert<QString>()) {
        return false;
    }
    PGM_COMMON_XML_ELEMENT* const element = get_element(index);
    switch (element->m_class_type) {
    case PGM_COMMON_XML_ENUM_BITSTREAM:
    case PGM_COMMON_XML_ENUM_PATH:
    case PGM_COMMON_XML_ENUM_RAW_FILE:
        element->write_string(VEK_GUI_UTIL::to_local(value.toString()));
        return true;
    default:
        return false;
    }
}
