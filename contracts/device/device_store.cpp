#include "device_store.h"

#include "flash_table.h"
#include "fpga_table.h"

#include <algorithm>

namespace
{

PGM_DEVICE make_device(const FPGA_ROW& row)
{
    PGM_DEVICE device;
    device.name = row.name;
    device.code = row.code;
    device.device = static_cast<DEV_DEVICE_ENUM>(row.number);
    device.family = row.family;
    device.device_class = DEV_CLASS_FPGA;
    device.key_bits = row.key_bits;
    device.release = row.release;
    device.jtag_only = row.jtag_only;
    device.idcode = row.idcode;
    device.instruction_length = row.instruction_length;
    device.periphery_bytes = row.periphery_bytes;
    device.core_bytes = row.core_bytes;
    device.missing_modes = row.missing_modes;
    device.cfm0 = row.cfm0;
    device.cfm1 = row.cfm1;
    device.ufm = row.ufm;
    for (const DEV_FLASH_SECTOR& sector : {row.cfm0, row.cfm1, row.ufm}) {
        device.flash_bytes = std::max<std::uint64_t>(device.flash_bytes, sector.start + sector.size);
    }
    if (device.flash_bytes != 0) {
        device.sector_bytes = ONCHIP_SECTOR_BYTES;
        device.page_bytes = ONCHIP_PAGE_BYTES;
    }
    return device;
}

PGM_DEVICE make_device(const FLASH_ROW& row)
{
    PGM_DEVICE device;
    device.name = row.name;
    device.device = static_cast<DEV_DEVICE_ENUM>(row.number);
    device.family = row.family;
    device.device_class = row.device_class;
    device.release = row.release;
    device.jtag_only = row.jtag_only;
    device.flash_bytes = row.bytes;
    device.sector_bytes = row.sector_bytes;
    device.page_bytes = row.page_bytes;
    device.jedec_id = row.jedec_id;
    device.address_width = row.address_width;
    device.sized_in_bits = row.sized_in_bits;
    device.flash_loader = row.flash_loader;
    device.tsu_tessel = row.tsu_tessel;
    return device;
}

} // namespace

std::string fold_device_name(const std::string& name)
{
    std::string folded = name;
    for (char& character : folded) {
        if (character >= 'a' && character <= 'z') {
            character = static_cast<char>(character - 'a' + 'A');
        }
    }
    return folded;
}

DEVICE_STORE& DEVICE_STORE::instance()
{
    // Not destroyed, so that records stay valid for objects that outlive the statics.
    static DEVICE_STORE* const store = new DEVICE_STORE;
    return *store;
}

DEVICE_STORE::DEVICE_STORE()
{
    m_built_in.reserve(FPGA_TABLE.size() + FLASH_TABLE.size());
    for (const FPGA_ROW& row : FPGA_TABLE) {
        m_built_in.push_back(make_device(row));
    }
    for (const FLASH_ROW& row : FLASH_TABLE) {
        m_built_in.push_back(make_device(row));
    }
    for (PGM_DEVICE& device : m_built_in) {
        device.ask_not_listed = device.release != DEV_RELEASE::PRODUCTION;
        device.ask_no_pof = device.jtag_only;
        m_built_in_by_name.emplace(fold_device_name(device.name), &device);
        m_built_in_by_number.emplace(device.device, &device);
    }
}

std::vector<const PGM_DEVICE*> DEVICE_STORE::list() const
{
    const std::lock_guard lock(m_mutex);
    if (m_override) {
        return *m_override;
    }
    std::vector<const PGM_DEVICE*> devices;
    devices.reserve(m_built_in.size() + m_custom_in_force.size());
    for (const PGM_DEVICE& device : m_built_in) {
        devices.push_back(&device);
    }
    devices.insert(devices.end(), m_custom_in_force.begin(), m_custom_in_force.end());
    return devices;
}

void DEVICE_STORE::override_list(std::optional<std::vector<const PGM_DEVICE*>> list)
{
    const std::lock_guard lock(m_mutex);
    m_override = std::move(list);
}

const PGM_DEVICE* DEVICE_STORE::find_built_in(const std::string& name) const
{
    const auto found = m_built_in_by_name.find(fold_device_name(name));
    return found != m_built_in_by_name.end() ? found->second : nullptr;
}

const PGM_DEVICE* DEVICE_STORE::find_by_name(const std::string& name) const
{
    if (const PGM_DEVICE* device = find_built_in(name)) {
        return device;
    }
    const std::lock_guard lock(m_mutex);
    const auto found = m_custom_by_name.find(fold_device_name(name));
    return found != m_custom_by_name.end() ? found->second : nullptr;
}

const PGM_DEVICE* DEVICE_STORE::find_by_enum(DEV_DEVICE_ENUM device) const
{
    if (device < DEV_DEVICE_CUSTOM_FIRST) {
        const auto found = m_built_in_by_number.find(device);
        return found != m_built_in_by_number.end() ? found->second : nullptr;
    }
    const std::lock_guard lock(m_mutex);
    const std::size_t place = device - DEV_DEVICE_CUSTOM_FIRST;
    return place < m_custom.size() ? &m_custom[place] : nullptr;
}

void DEVICE_STORE::set_custom_devices(std::vector<PGM_DEVICE> devices)
{
    const std::lock_guard lock(m_mutex);
    m_custom_in_force.clear();
    m_custom_by_name.clear();
    for (PGM_DEVICE& device : devices) {
        const PGM_DEVICE* known = nullptr;
        for (const PGM_DEVICE& candidate : m_custom) {
            device.device = candidate.device;
            if (device == candidate) {
                known = &candidate;
                break;
            }
        }
        if (known == nullptr) {
            device.device = static_cast<DEV_DEVICE_ENUM>(DEV_DEVICE_CUSTOM_FIRST + m_custom.size());
            known = &m_custom.emplace_back(std::move(device));
        }
        m_custom_in_force.push_back(known);
        m_custom_by_name.emplace(fold_device_name(known->name), known);
    }
}
