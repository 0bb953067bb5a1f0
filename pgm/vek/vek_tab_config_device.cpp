#include "vek_tab_config_device.h"

#include "fio_path.h"
#include "msg_internal_error.h"
#include "vek_db.h"
#include "vek_file_assistant.h"
#include "vek_frame_wnd_cache.h"
#include "vek_gui_util.h"
#include "vek_list_view.h"
#include "vek_util.h"

#include <QFormLayout>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>

#include <algorithm>
#include <unordered_map>

namespace
{

constexpr char FLASH_DEVICE_ID_PREFIX[] = "Flash_Device_";

QString get_address_text(const std::string& address)
{
    return address == "auto" ? QStringLiteral("<auto>") : VEK_GUI_UTIL::from_local(address);
}

QString get_filename(const std::string& path)
{
    return VEK_GUI_UTIL::from_local(FIO_PATH(path).filename());
}

/// The inputs of the partitions, looked up once: a setup may have ten thousand of them.
class PARTITION_INPUTS
{
public:
    explicit PARTITION_INPUTS(const PGM_COMMON_XML_VEK_VEK& document)
    {
        for (const auto* const bitstream : VEK_FILE_ASSISTANT::get_bitstream_elements(&document)) {
            QStringList names;
            for (const auto* const path : bitstream->path) {
                names.append(get_filename(path->text));
            }
            m_names[bitstream->id] = names.join(QStringLiteral(", "));
        }
        for (const auto* const raw_file : VEK_FILE_ASSISTANT::get_raw_file_elements(&document)) {
            m_names[raw_file->id] = get_filename(raw_file->text);
        }
        for (const auto* const group : document.assignments) {
            for (const auto* const assignment : group->assignment) {
                m_assignments[assignment->partition_id] = assignment;
            }
        }
    }

    QString get_page(const std::string& partition_id) const
    {
        const auto found = m_assignments.find(partition_id);
        return found == m_assignments.end() ? QString() : VEK_GUI_UTIL::from_local(found->second->page);
    }

    QString get_text(const std::string& partition_id) const
    {
        QStringList names;
        const auto found = m_assignments.find(partition_id);
        if (found != m_assignments.end()) {
            for (const auto* const id : found->second->bitstream_id) {
                append_name(names, id->text);
            }
            for (const auto* const id : found->second->raw_file_id) {
                append_name(names, id->text);
            }
        }
        return names.isEmpty() ? VEK_TAB_CONFIG_DEVICE::tr("None") : names.join(QStringLiteral(", "));
    }

private:
    void append_name(QStringList& names, const std::string& input_id) const
    {
        const auto found = m_names.find(input_id);
        if (found != m_names.end()) {
            names.append(found->second);
        }
    }

    std::unordered_map<std::string, QString> m_names; ///< by the id of the input
    std::unordered_map<std::string, const PGM_COMMON_XML_VEK_ASSIGNMENT*> m_assignments;
};

} // namespace

VEK_TAB_CONFIG_DEVICE::VEK_TAB_CONFIG_DEVICE(std::shared_ptr<PGM_COMMON_XML_VEK_VEK> vek,
                                             std::shared_ptr<VEK_FRAME_WND_CACHE> cache, QWidget* parent,
                                             Qt::WindowFlags flags)
    : QWidget(parent, flags), m_vek(std::move(vek)), m_cache(std::move(cache))
{
    VEK_ASSERT(m_vek != nullptr);
    VEK_ASSERT(m_cache != nullptr);
    m_config_device_tree =
        new VEK_LIST_VIEW({tr("Device"), tr("Start"), tr("End"), tr("Page"), tr("Input File")}, nullptr);
    m_config_device_tree->setObjectName(QStringLiteral("m_config_device_tree"));
    m_config_device_tree->setAccessibleName(tr("Flash devices and their partitions"));
    m_flash_loader_edit = new QLineEdit;
    m_flash_loader_edit->setObjectName(QStringLiteral("m_flash_loader_edit"));
    m_flash_loader_edit->setReadOnly(true);

    auto* const line = new QFrame;
    line->setFrameShape(QFrame::HLine);
    line->setFrameShadow(QFrame::Sunken);
    auto* const form = new QFormLayout;
    form->addRow(tr("Flash loader:"), m_flash_loader_edit);
    auto* const label = new QLabel(
        tr("Specify the partition layout of the flash image. Specify the flash loader if required."));
    label->setWordWrap(true);
    auto* const grid = new QGridLayout(this);
    grid->addWidget(label, 0, 0);
    grid->addWidget(line, 1, 0);
    grid->addWidget(m_config_device_tree, 2, 0);
    grid->addLayout(form, 3, 0);
}

void VEK_TAB_CONFIG_DEVICE::set_vek(std::shared_ptr<PGM_COMMON_XML_VEK_VEK> vek)
{
    VEK_ASSERT(vek != nullptr);
    m_vek = std::move(vek);
}

void VEK_TAB_CONFIG_DEVICE::refresh()
{
    show_flash_devices();
    update_flash_loader();
}

void VEK_TAB_CONFIG_DEVICE::reset()
{
    for (const std::string& id : VEK_FILE_ASSISTANT::get_flash_device_ids(m_vek.get())) {
        remove_device(id);
    }
    const auto flash_loaders = VEK_FILE_ASSISTANT::get_flash_loader_elements(m_vek.get());
    if (!flash_loaders.empty()) {
        const std::string name = flash_loaders.front()->text;
        const bool success = VEK_FILE_ASSISTANT::remove(m_vek.get(), VEK_CMD_OPT_FLASH_LOADER,
                                                        {{VEK_CMD_PARAM_FLASH_LOADER_FLASH_LOADER, name}});
        VEK_ASSERT(success);
    }
    show_flash_devices();
    update_flash_loader();
}

void VEK_TAB_CONFIG_DEVICE::update_device(const QString& /*device_name*/)
{
    if (m_cache->family != DEV_FAMILY_ONCHIP_FLASH) {
        return;
    }
    const auto flash_devices = VEK_FILE_ASSISTANT::get_flash_device_elements(m_vek.get());
    const std::string present = flash_devices.empty() ? std::string() : flash_devices.front()->type;
    if (present == m_cache->device_name) {
        return;
    }
    for (const std::string& id : VEK_FILE_ASSISTANT::get_flash_device_ids(m_vek.get())) {
        remove_device(id);
    }
    add_device(m_cache->device_name);
    show_flash_devices();
}

void VEK_TAB_CONFIG_DEVICE::update_flash_loader()
{
    VEK_ASSERT(m_vek != nullptr);
    const std::vector<VEK_FILE_TYPE> types = VEK_FILE_ASSISTANT::get_output_file_types(m_vek.get());
    m_cache->flash_loader_required =
        std::any_of(types.begin(), types.end(), VEK_DB::get_require_flash_loader);
    const auto flash_loaders = VEK_FILE_ASSISTANT::get_flash_loader_elements(m_vek.get());
    m_flash_loader_edit->setText(
        flash_loaders.empty() ? QString() : VEK_GUI_UTIL::from_local(flash_loaders.front()->text));
    m_flash_loader_edit->setPlaceholderText(m_cache->flash_loader_required ? tr("Required")
                                                                           : tr("Not required"));
    emit flash_loader_changed();
}

void VEK_TAB_CONFIG_DEVICE::show_flash_devices()
{
    m_config_device_tree->clear();
    const PARTITION_INPUTS inputs(*m_vek);
    const auto add_partition = [this, &inputs](QStandardItem* parent,
                                               const PGM_COMMON_XML_VEK_PARTITION& partition) {
        m_config_device_tree->add_row(parent,
                                      {VEK_GUI_UTIL::from_local(partition.id),
                                       get_address_text(partition.s_addr), get_address_text(partition.e_addr),
                                       inputs.get_page(partition.id), inputs.get_text(partition.id)});
    };
    for (const auto* const flash_device : VEK_FILE_ASSISTANT::get_flash_device_elements(m_vek.get())) {
        QStandardItem* const row =
            m_config_device_tree->add_row(nullptr, {VEK_GUI_UTIL::from_local(flash_device->type)});
        for (const auto* const partition : flash_device->partition) {
            add_partition(row, *partition);
        }
        for (const auto* const mbr : flash_device->mbr) {
            QStandardItem* const mbr_row =
                m_config_device_tree->add_row(row, {VEK_GUI_UTIL::from_local(mbr->id)});
            for (const auto* const partition : mbr->partition) {
                add_partition(mbr_row, *partition);
            }
        }
    }
    m_config_device_tree->show_rows();
}

void VEK_TAB_CONFIG_DEVICE::add_device(const std::string& device_name)
{
    std::string id;
    unsigned number = 1;
    do {
        id = FLASH_DEVICE_ID_PREFIX + std::to_string(number++);
    } while (VEK_FILE_ASSISTANT::get_flash_device_element(m_vek.get(), id) != nullptr);
    const bool success = VEK_FILE_ASSISTANT::set(
        m_vek.get(), VEK_CMD_OPT_FLASH_DEVICE,
        {{VEK_CMD_PARAM_FLASH_DEVICE_ID, id}, {VEK_CMD_PARAM_FLASH_DEVICE_TYPE, device_name}});
    VEK_ASSERT(success);
    for (const VEK_FILE_TYPE type : VEK_FILE_ASSISTANT::get_output_file_types(m_vek.get(), true)) {
        VEK_FILE_ASSISTANT::set(m_vek.get(), VEK_CMD_OPT_OUTPUT_FILE,
                                {{VEK_CMD_PARAM_OUTPUT_FILE_TYPE,
                                  VEK_FILE_ASSISTANT::convert_xml_enum_to_string(VEK_DB::get_xml_enum(type))},
                                 {VEK_CMD_PARAM_OUTPUT_FILE_FLASH_DEVICE_ID, id}});
    }
    emit config_device_changed();

    const bool two_bitstreams = VEK_FILE_ASSISTANT::get_bitstream_elements(m_vek.get()).size() >= 2;
    const auto raw_files = VEK_FILE_ASSISTANT::get_raw_file_elements(m_vek.get());
    const bool has_puf = std::any_of(raw_files.begin(), raw_files.end(), [](const auto* raw_file) {
        return VEK_FILE_ASSISTANT::convert_string_to_xml_enum(raw_file->type) == PGM_COMMON_XML_ENUM_PUF;
    });
    for (const VEK_UTIL_PARTITION_INFO& partition :
         VEK_UTIL::get_reserved_partitions(m_cache->config_mode, m_cache->family, m_cache->device,
                                           two_bitstreams && m_cache->partition_rule_flag_a,
                                           has_puf && m_cache->partition_rule_flag_b, FIO_INVALID_FILE)) {
        add_reserved_partition(id, partition);
    }
}

void VEK_TAB_CONFIG_DEVICE::add_reserved_partition(const std::string& device_id,
                                                   const VEK_UTIL_PARTITION_INFO& partition)
{
    const auto to_text = VEK_FILE_ASSISTANT::convert_bool_to_string;
    VEK_FILE_ASSISTANT::PARAMS params{
        {VEK_CMD_PARAM_FLASH_DEVICE_ID, device_id},
        {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_ID, partition.name},
        {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_RESERVED, to_text(true)},
        {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_FIXED_S_ADDR, to_text(partition.fixed_start)},
        {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_FIXED_E_ADDR, to_text(partition.fixed_end)},
        {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_S_ADDR, partition.start},
        {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_E_ADDR, partition.end},
        {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_SIZE,
         VEK_FILE_ASSISTANT::convert_dword_to_string(partition.size)}};
    if (partition.extra_space != 0) {
        params.emplace_back(VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_EXTRA_SPACE,
                            VEK_FILE_ASSISTANT::convert_dword_to_string(partition.extra_space));
    }
    const bool success = VEK_FILE_ASSISTANT::set(m_vek.get(), VEK_CMD_OPT_FLASH_DEVICE, params);
    VEK_ASSERT(success);
    emit partition_changed();
}

void VEK_TAB_CONFIG_DEVICE::remove_device(const std::string& device_id)
{
    std::vector<std::string> names;
    const auto* const flash_device = VEK_FILE_ASSISTANT::get_flash_device_element(m_vek.get(), device_id);
    for (const auto* const partition : flash_device->partition) {
        names.push_back(partition->id);
    }
    for (const std::string& name : names) {
        remove_partition(name, device_id);
    }
    const bool success = VEK_FILE_ASSISTANT::remove(m_vek.get(), VEK_CMD_OPT_FLASH_DEVICE,
                                                    {{VEK_CMD_PARAM_FLASH_DEVICE_ID, device_id}});
    VEK_ASSERT(success);
    // An output that names a device that is gone could not be saved any more.
    VEK_FILE_ASSISTANT::remove(m_vek.get(), VEK_CMD_OPT_OUTPUT_FILE,
                               {{VEK_CMD_PARAM_OUTPUT_FILE_FLASH_DEVICE_ID, device_id}});
    emit config_device_changed();
}

void VEK_TAB_CONFIG_DEVICE::remove_partition(const std::string& name, const std::string& device_id)
{
    bool success = VEK_FILE_ASSISTANT::remove(
        m_vek.get(), VEK_CMD_OPT_FLASH_DEVICE,
        {{VEK_CMD_PARAM_FLASH_DEVICE_ID, device_id}, {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_ID, name}});
    VEK_ASSERT(success);
    success = VEK_FILE_ASSISTANT::remove(m_vek.get(), VEK_CMD_OPT_ASSIGNMENT,
                                         {{VEK_CMD_PARAM_ASSIGNMENT_PARTITION_ID, name}});
    VEK_ASSERT(success);
    emit partition_changed();
}
