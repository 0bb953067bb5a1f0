#ifndef VEK_TREE_CONFIG_DEVICE_H
#define VEK_TREE_CONFIG_DEVICE_H

#include "dset_oti_dev_options_info.h"
#include "nivo_tree_view.h"

#include <memory>
#include <string>
#include <vector>

class PGM_COMMON_XML_VEK_VEK;
class VEK_MODEL_CONFIG_DEVICE;
struct VEK_FRAME_WND_CACHE;

/// The tree of flash devices and partitions. It owns its model, hands the operations of the tab on to it, and
/// is open after every refresh. Without its model an operation is the internal error "model != nullptr".
class VEK_TREE_CONFIG_DEVICE : public NIVO_TREE_VIEW
{
    Q_OBJECT
public:
    VEK_TREE_CONFIG_DEVICE(std::shared_ptr<PGM_COMMON_XML_VEK_VEK> vek,
                           std::shared_ptr<VEK_FRAME_WND_CACHE> cache, QWidget* parent);

    // What VEK_MODEL_CONFIG_DEVICE does under these names.

    void clear();
    /// Opens the new device, so that the partitions that it brings along can be seen.
    void add_device(const std::string& device_name, bool unused);
    void update_device(const std::string& device_id, const DSET_OTI_DEV_OPTIONS_INFO& options);
    std::string get_device(int row) const;
    /// A partition of the user's own: it has neither a size nor extra space.
    void add_partition(const std::string& name, bool is_reserved, const std::string& start,
                       const std::string& end, const std::string& input_id, const std::string& device_id,
                       bool fixed_start, bool fixed_end, bool has_page, unsigned page);
    void add_mbr_partition(const std::string& name, bool is_reserved, const std::string& start,
                           const std::string& end, const std::string& input_id, const std::string& mbr_id,
                           const std::string& device_id, bool fixed_start, bool fixed_end);
    void update_partition(const std::string& name, const std::string& device_id,
                          const std::vector<std::string>& raw_ids);
    void update_partition(const std::string& new_name, const std::string& start, const std::string& end,
                          const std::string& input_id, const std::string& old_name,
                          const std::string& device_id, bool fixed_start, bool fixed_end, bool has_page,
                          unsigned page);
    void remove_device(const std::string& device_id);
    void remove_partition(const std::string& name, const std::string& device_id);
    void remove_mbr_partition(const std::string& name, const std::string& mbr_id,
                              const std::string& device_id);

    using QObject::parent;
    QModelIndex parent(const QModelIndex& index) const;
    /// Takes another document, which is shown with the next refresh. Null is the internal error
    /// "vek != nullptr".
    void set_vek(std::shared_ptr<PGM_COMMON_XML_VEK_VEK> vek);
    void refresh();

signals:
    void current_changed(const QModelIndex& current, const QModelIndex& previous);
    void config_device_changed();
    void partition_changed();

private:
    VEK_MODEL_CONFIG_DEVICE& get_model() const;
    void recursive_expand(const QModelIndex& index);

    std::shared_ptr<PGM_COMMON_XML_VEK_VEK> m_vek;
    std::shared_ptr<VEK_FRAME_WND_CACHE> m_cache;
};

#endif
