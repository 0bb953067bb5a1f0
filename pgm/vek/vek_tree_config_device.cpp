#include "vek_tree_config_device.h"

#include "msg_internal_error.h"
#include "nivo_safe_connect.h"
#include "vek_model_config_device.h"

#include <QHeaderView>

#include <algorithm>

namespace
{

constexpr int DEVICE_COLUMN_WIDTH = 160;
constexpr int INPUT_FILE_COLUMN_WIDTH = 240;
constexpr int CELL_MARGIN = 12;

} // namespace

VEK_TREE_CONFIG_DEVICE::VEK_TREE_CONFIG_DEVICE(std::shared_ptr<PGM_COMMON_XML_VEK_VEK> vek,
                                               std::shared_ptr<VEK_FRAME_WND_CACHE> cache, QWidget* parent)
    : NIVO_TREE_VIEW(parent, FLAG_NONE), m_vek(std::move(vek)), m_cache(std::move(cache))
{
    auto* const model = new VEK_MODEL_CONFIG_DEVICE(m_vek, m_cache, this);
    setModel(model);
    auto* const header = new QHeaderView(Qt::Horizontal);
    header->setModel(model);
    // Large fonts would cut the addresses.
    header->setDefaultSectionSize(
        std::max(header->defaultSectionSize(),
                 fontMetrics().horizontalAdvance(QStringLiteral("0x00000000")) + CELL_MARGIN));
    header->resizeSection(0, DEVICE_COLUMN_WIDTH);
    header->resizeSection(3, INPUT_FILE_COLUMN_WIDTH);
    header->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    setHeader(header);
    nivo_safe_connect(selectionModel(), SIGNAL(currentChanged(const QModelIndex&, const QModelIndex&)), this,
                      SIGNAL(current_changed(const QModelIndex&, const QModelIndex&)), Qt::AutoConnection,
                      __FILE__, __LINE__);
    nivo_safe_connect(model, SIGNAL(config_device_changed()), this, SIGNAL(config_device_changed()),
                      Qt::AutoConnection, __FILE__, __LINE__);
    nivo_safe_connect(model, SIGNAL(partition_changed()), this, SIGNAL(partition_changed()),
                      Qt::AutoConnection, __FILE__, __LINE__);
}

VEK_MODEL_CONFIG_DEVICE& VEK_TREE_CONFIG_DEVICE::get_model() const
{
    auto* const model = qobject_cast<VEK_MODEL_CONFIG_DEVICE*>(this->model());
    VEK_ASSERT(model != nullptr);
    return *model;
}

void VEK_TREE_CONFIG_DEVICE::clear()
{
    get_model().clear();
}

void VEK_TREE_CONFIG_DEVICE::add_device(const std::string& device_name, bool unused)
{
    VEK_MODEL_CONFIG_DEVICE& model = get_model();
    const int row = model.add_device(device_name, unused);
    expand(model.index(row, 0));
}

void VEK_TREE_CONFIG_DEVICE::update_device(const std::string& device_id,
                                           const DSET_OTI_DEV_OPTIONS_INFO& options)
{
    get_model().update_device(device_id, options);
}

std::string VEK_TREE_CONFIG_DEVICE::get_device(int row) const
{
    return get_model().get_device(row);
}

void VEK_TREE_CONFIG_DEVICE::add_partition(const std::string& name, bool is_reserved,
                                           const std::string& start, const std::string& end,
                                           const std::string& input_id, const std::string& device_id,
                                           bool fixed_start, bool fixed_end, bool has_page, unsigned page)
{
    get_model().add_partition(name, is_reserved, start, end, input_id, device_id, 0, 0, fixed_start,
                              fixed_end, has_page, page);
}

void VEK_TREE_CONFIG_DEVICE::add_mbr_partition(const std::string& name, bool is_reserved,
                                               const std::string& start, const std::string& end,
                                               const std::string& input_id, const std::string& mbr_id,
                                               const std::string& device_id, bool fixed_start, bool fixed_end)
{
    get_model().add_mbr_partition(name, is_reserved, start, end, input_id, mbr_id, device_id, fixed_start,
                                  fixed_end);
}

void VEK_TREE_CONFIG_DEVICE::update_partition(const std::string& name, const std::string& device_id,
                                              const std::vector<std::string>& raw_ids)
{
    get_model().update_partition(name, device_id, raw_ids);
}

void VEK_TREE_CONFIG_DEVICE::update_partition(const std::string& new_name, const std::string& start,
                                              const std::string& end, const std::string& input_id,
                                              const std::string& old_name, const std::string& device_id,
                                              bool fixed_start, bool fixed_end, bool has_page, unsigned page)
{
    get_model().update_partition(new_name, start, end, input_id, old_name, device_id, fixed_start, fixed_end,
                                 has_page, page);
}

void VEK_TREE_CONFIG_DEVICE::remove_device(const std::string& device_id)
{
    get_model().remove_device(device_id);
}

void VEK_TREE_CONFIG_DEVICE::remove_partition(const std::string& name, const std::string& device_id)
{
    get_model().remove_partition(name, device_id);
}

void VEK_TREE_CONFIG_DEVICE::remove_mbr_partition(const std::string& name, const std::string& mbr_id,
                                                  const std::string& device_id)
{
    get_model().remove_mbr_partition(name, mbr_id, device_id);
}

QModelIndex VEK_TREE_CONFIG_DEVICE::parent(const QModelIndex& index) const
{
    return model()->parent(index);
}

void VEK_TREE_CONFIG_DEVICE::set_vek(std::shared_ptr<PGM_COMMON_XML_VEK_VEK> vek)
{
    VEK_ASSERT(vek != nullptr);
    m_vek = std::move(vek);
    get_model().set_vek(m_vek);
}

void VEK_TREE_CONFIG_DEVICE::refresh()
{
    VEK_MODEL_CONFIG_DEVICE& model = get_model();
    model.refresh();
    for (int row = 0; row < model.rowCount(); ++row) {
        recursive_expand(model.index(row, 0));
    }
}

void VEK_TREE_CONFIG_DEVICE::recursive_expand(const QModelIndex& index)
{
    expand(index);
    for (int row = 0; row < model()->rowCount(index); ++row) {
        recursive_expand(model()->index(row, 0, index));
    }
}
