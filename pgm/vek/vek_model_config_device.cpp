#include "vek_model_config_device.h"

#include "fio_path.h"
#include "fio_types.h"
#include "msg_internal_error.h"
#include "vek_frame_wnd_cache.h"
#include "vek_gui_util.h"
#include "vek_util.h"

#include <QStringList>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <iterator>

namespace
{

constexpr std::array<const char*, 4> COLUMN_LABELS{"Device", "Start", "End", "Input File"};
constexpr char AUTO_ADDRESS[] = "auto";
constexpr char UFM_PREFIX[] = "UFM";

enum COLUMN { COLUMN_DEVICE, COLUMN_START, COLUMN_END, COLUMN_INPUT_FILE };

/// Hexadecimal digits, "0x" allowed, up to the first character that is none; cut to 32 bits.
std::string format_address_string(const std::string& text)
{
    const auto address = static_cast<unsigned>(std::stoul(text, nullptr, 16));
    char formatted[11];
    std::snprintf(formatted, sizeof formatted, "0x%08X", address);
    return formatted;
}

bool is_kind(const PGM_COMMON_XML_ELEMENT* element, PGM_COMMON_XML_ENUM kind)
{
    return element != nullptr && element->m_class_type == kind;
}

template <typename ELEMENT>
int find_position(const std::vector<ELEMENT*>& elements, const PGM_COMMON_XML_ELEMENT* element)
{
    return static_cast<int>(std::find(elements.begin(), elements.end(), element) - elements.begin());
}

template <typename ELEMENT>
int find_position(const std::vector<ELEMENT*>& elements, const std::string& id)
{
    const auto found = std::find_if(elements.begin(), elements.end(),
                                    [&id](const auto* element) { return element->id == id; });
    return static_cast<int>(found - elements.begin());
}

int count(std::size_t number)
{
    return static_cast<int>(number);
}

int count_rows(const PGM_COMMON_XML_ELEMENT* element)
{
    if (is_kind(element, PGM_COMMON_XML_ENUM_FLASH_DEVICES)) {
        return count(static_cast<const PGM_COMMON_XML_VEK_FLASH_DEVICES*>(element)->flash_device.size());
    }
    if (is_kind(element, PGM_COMMON_XML_ENUM_FLASH_DEVICE)) {
        const auto& device = *static_cast<const PGM_COMMON_XML_VEK_FLASH_DEVICE*>(element);
        return count(device.partition.size() + device.mbr.size());
    }
    if (is_kind(element, PGM_COMMON_XML_ENUM_MBR)) {
        return count(static_cast<const PGM_COMMON_XML_VEK_MBR*>(element)->partition.size());
    }
    return 0;
}

/// The element of a row that is there.
PGM_COMMON_XML_ELEMENT* get_row(const PGM_COMMON_XML_ELEMENT& element, std::size_t row)
{
    if (is_kind(&element, PGM_COMMON_XML_ENUM_FLASH_DEVICES)) {
        return static_cast<const PGM_COMMON_XML_VEK_FLASH_DEVICES&>(element).flash_device[row];
    }
    if (is_kind(&element, PGM_COMMON_XML_ENUM_MBR)) {
        return static_cast<const PGM_COMMON_XML_VEK_MBR&>(element).partition[row];
    }
    const auto& device = static_cast<const PGM_COMMON_XML_VEK_FLASH_DEVICE&>(element);
    if (row < device.partition.size()) {
        return device.partition[row];
    }
    return device.mbr[row - device.partition.size()];
}

unsigned to_number(const std::string& text)
{
    unsigned number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

QString get_filename(const std::string& path)
{
    return VEK_GUI_UTIL::from_local(FIO_PATH(path).filename());
}

} // namespace

VEK_MODEL_CONFIG_DEVICE::VEK_MODEL_CONFIG_DEVICE(std::shared_ptr<PGM_COMMON_XML_VEK_VEK> vek,
                                                 std::shared_ptr<VEK_FRAME_WND_CACHE> cache, QObject* parent)
    : QAbstractItemModel(parent), m_vek(std::move(vek)), m_shown_vek(m_vek), m_cache(std::move(cache))
{
}

QModelIndex VEK_MODEL_CONFIG_DEVICE::index(int row, int column, const QModelIndex& parent) const
{
    if (!hasIndex(row, column, parent)) {
        return {};
    }
    const PGM_COMMON_XML_ELEMENT* const element = get_element(parent);
    return createIndex(row, column, get_row(*element, static_cast<std::size_t>(row)));
}

QModelIndex VEK_MODEL_CONFIG_DEVICE::parent(const QModelIndex& index) const
{
    if (!index.isValid()) {
        return {};
    }
    const PGM_COMMON_XML_ELEMENT* const element = get_element(index);
    const bool is_partition = is_kind(element, PGM_COMMON_XML_ENUM_PARTITION);
    if (!is_partition && !is_kind(element, PGM_COMMON_XML_ENUM_MBR)) {
        return {};
    }
    PGM_COMMON_XML_ELEMENT* const parent = element->get_parent();
    int row = 0;
    if (is_kind(parent, PGM_COMMON_XML_ENUM_FLASH_DEVICE)) {
        row = find_position(VEK_FILE_ASSISTANT::get_flash_device_elements(m_vek.get()), parent);
    } else if (is_kind(parent, PGM_COMMON_XML_ENUM_MBR)) {
        row = find_position(parent->get_parent()->m_childs, parent);
    }
    return createIndex(row, 0, parent);
}

int VEK_MODEL_CONFIG_DEVICE::rowCount(const QModelIndex& parent) const
{
    return count_rows(get_element(parent));
}

int VEK_MODEL_CONFIG_DEVICE::columnCount(const QModelIndex& /*parent*/) const
{
    return count(COLUMN_LABELS.size());
}

QVariant VEK_MODEL_CONFIG_DEVICE::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 ||
        section >= count(COLUMN_LABELS.size())) {
        return {};
    }
    return QString::fromLatin1(COLUMN_LABELS[static_cast<std::size_t>(section)]);
}

QVariant VEK_MODEL_CONFIG_DEVICE::data(const QModelIndex& index, int role) const
{
    if (!index.isValid()) {
        return {};
    }
    switch (index.column()) {
    case COLUMN_DEVICE:
        return get_device_column_data(index, role);
    case COLUMN_START:
        return get_start_addr_column_data(index, role);
    case COLUMN_END:
        return get_end_addr_column_data(index, role);
    case COLUMN_INPUT_FILE:
        return get_input_file_column_data(index, role);
    default:
        return {};
    }
}

void VEK_MODEL_CONFIG_DEVICE::set_vek(std::shared_ptr<PGM_COMMON_XML_VEK_VEK> vek)
{
    VEK_ASSERT(vek != nullptr);
    m_vek = std::move(vek);
}

void VEK_MODEL_CONFIG_DEVICE::refresh()
{
    beginResetModel();
    emit config_device_changed();
    emit partition_changed();
    endResetModel();
    m_shown_vek = m_vek;
}

std::string VEK_MODEL_CONFIG_DEVICE::get_device(int row) const
{
    const QVariant text = data(index(row, COLUMN_DEVICE), Qt::DisplayRole);
    return text.isValid() && text.canConvert<QString>() ? VEK_GUI_UTIL::to_local(text.toString())
                                                        : std::string();
}

QVariant VEK_MODEL_CONFIG_DEVICE::get_device_column_data(const QModelIndex& index, int role) const
{
    VEK_ASSERT(index.isValid());
    if (role != Qt::DisplayRole) {
        return {};
    }
    const PGM_COMMON_XML_ELEMENT* const element = get_element(index);
    if (is_kind(element, PGM_COMMON_XML_ENUM_FLASH_DEVICE)) {
        return VEK_GUI_UTIL::from_local(static_cast<const PGM_COMMON_XML_VEK_FLASH_DEVICE*>(element)->type);
    }
    if (is_kind(element, PGM_COMMON_XML_ENUM_PARTITION)) {
        return VEK_GUI_UTIL::from_local(static_cast<const PGM_COMMON_XML_VEK_PARTITION*>(element)->id);
    }
    if (is_kind(element, PGM_COMMON_XML_ENUM_MBR)) {
        return VEK_GUI_UTIL::from_local(static_cast<const PGM_COMMON_XML_VEK_MBR*>(element)->id);
    }
    return {};
}

QVariant VEK_MODEL_CONFIG_DEVICE::get_start_addr_column_data(const QModelIndex& index, int role) const
{
    VEK_ASSERT(index.isValid());
    return get_address_column_data(index, role, &PGM_COMMON_XML_VEK_PARTITION::s_addr);
}

QVariant VEK_MODEL_CONFIG_DEVICE::get_end_addr_column_data(const QModelIndex& index, int role) const
{
    VEK_ASSERT(index.isValid());
    return get_address_column_data(index, role, &PGM_COMMON_XML_VEK_PARTITION::e_addr);
}

QVariant
VEK_MODEL_CONFIG_DEVICE::get_address_column_data(const QModelIndex& index, int role,
                                                 std::string PGM_COMMON_XML_VEK_PARTITION::*address) const
{
    const PGM_COMMON_XML_ELEMENT* const element = get_element(index);
    if (role != Qt::DisplayRole || !is_kind(element, PGM_COMMON_XML_ENUM_PARTITION)) {
        return {};
    }
    const std::string& text = static_cast<const PGM_COMMON_XML_VEK_PARTITION*>(element)->*address;
    return VEK_GUI_UTIL::from_local(text == AUTO_ADDRESS ? "<" + text + ">" : format_address_string(text));
}

QVariant VEK_MODEL_CONFIG_DEVICE::get_input_file_column_data(const QModelIndex& index, int role) const
{
    VEK_ASSERT(index.isValid());
    const PGM_COMMON_XML_ELEMENT* const element = get_element(index);
    if (role != Qt::DisplayRole || !is_kind(element, PGM_COMMON_XML_ENUM_PARTITION)) {
        return {};
    }
    const std::string& id = static_cast<const PGM_COMMON_XML_VEK_PARTITION*>(element)->id;
    if (id.starts_with(UFM_PREFIX)) {
        // User flash exists on an on-chip device alone, which is the only one of its document.
        const auto devices = VEK_FILE_ASSISTANT::get_flash_device_elements(m_vek.get());
        return get_ufm_input_file_column_data(devices.front()->id);
    }
    return get_partition_input_file_column_data(id);
}

QVariant VEK_MODEL_CONFIG_DEVICE::get_ufm_input_file_column_data(const std::string& device_id) const
{
    const auto* const device = VEK_FILE_ASSISTANT::get_flash_device_element(m_vek.get(), device_id);
    VEK_ASSERT_TEXT(device != nullptr, "flash_device != nullptr");
    switch (to_number(device->ufm_source)) {
    case 1:
        return QStringLiteral("CFM1");
    case 2:
        return get_filename(device->ufm_source_file);
    default:
        return QStringLiteral("CFM0");
    }
}

QVariant VEK_MODEL_CONFIG_DEVICE::get_partition_input_file_column_data(const std::string& partition_id) const
{
    const PGM_COMMON_XML_VEK_VEK* const document = m_vek.get();
    const auto* const bitstream_id = VEK_FILE_ASSISTANT::get_bitstream_id_element(document, partition_id);
    QStringList names;
    if (bitstream_id == nullptr) {
        const auto raw_ids = VEK_FILE_ASSISTANT::get_raw_file_id_elements(document, partition_id);
        if (raw_ids.empty()) {
            return tr("None");
        }
        for (const auto* const raw_id : raw_ids) {
            const auto* const raw_file = VEK_FILE_ASSISTANT::get_raw_file_element(document, raw_id->text);
            // A setup may name a file that it does not have; its check says so.
            names << (raw_file != nullptr ? get_filename(raw_file->text)
                                          : VEK_GUI_UTIL::from_local(raw_id->text));
        }
        return names.join(QStringLiteral(", "));
    }

    const std::string& bitstream = bitstream_id->text;
    const auto paths = VEK_FILE_ASSISTANT::get_path_elements(document, bitstream);
    bool pageable = false;
    for (const auto* const path : paths) {
        names << get_filename(path->text);
        const FIO_EXTENSION_TYPE extension = fio_get_extension_type(FIO_PATH(path->text).extension());
        pageable = pageable || extension == FIO_EXT_SOF || extension == FIO_EXT_RBF;
    }
    const auto* const partition = VEK_FILE_ASSISTANT::get_partition_element(document, partition_id);
    VEK_ASSERT(partition != nullptr);
    const FIO_FILE_TYPE file_type = paths.empty() ? FIO_INVALID_FILE : fio_get_file_type(paths.front()->text);
    const bool has_page = VEK_UTIL::partition_has_page(partition->id, m_cache->current_mode, m_cache->family,
                                                       m_cache->device, m_cache->partition_rule_flag_a,
                                                       m_cache->partition_rule_flag_b, file_type);
    const QString id = VEK_GUI_UTIL::from_local(bitstream);
    const QString joined = names.join(QStringLiteral(", "));
    if (!has_page || !pageable) {
        return QStringLiteral("%1 (%2)").arg(id, joined);
    }
    const auto* const assignment = VEK_FILE_ASSISTANT::get_assignment_element(document, partition_id);
    const std::string page = VEK_FILE_ASSISTANT::convert_dword_to_string(to_number(assignment->page));
    return QStringLiteral("%1 (%2 at page %3)").arg(id, joined, VEK_GUI_UTIL::from_local(page));
}

/// The element behind an index; behind the invalid one stands the group of the devices, null while the
/// document has none.
PGM_COMMON_XML_ELEMENT* VEK_MODEL_CONFIG_DEVICE::get_element(const QModelIndex& index) const
{
    if (index.isValid()) {
        return static_cast<PGM_COMMON_XML_ELEMENT*>(index.internalPointer());
    }
    return m_vek->flash_devices.empty() ? nullptr : m_vek->flash_devices.front();
}

QModelIndex VEK_MODEL_CONFIG_DEVICE::get_device_index(const std::string& device_id) const
{
    return index(find_position(VEK_FILE_ASSISTANT::get_flash_device_elements(m_vek.get()), device_id),
                 COLUMN_DEVICE);
}

/// For a name that is no partition of the device, the row behind its partitions: that of its first MBR.
int VEK_MODEL_CONFIG_DEVICE::get_partition_row(const std::string& name, const std::string& device_id) const
{
    return find_position(VEK_FILE_ASSISTANT::get_partition_elements(m_vek.get(), device_id), name);
}
