#ifndef VEK_MODEL_CONFIG_DEVICE_H
#define VEK_MODEL_CONFIG_DEVICE_H

#include "dset_oti_dev_options_info.h"
#include "pgm_common_xml_enum.h"
#include "vek_file_assistant.h"

#include <QAbstractItemModel>

#include <memory>
#include <string>
#include <vector>

struct VEK_FRAME_WND_CACHE;

/// The flash devices of the document with their partitions and MBRs, as a tree. It has no rows of its own:
/// an index points at a document element, and every read goes back to the document. Element pointers in
/// indexes hold until the next change, so each change is made by an operation of this class, between the
/// begin and end calls of the base.
///
/// The tree is read only. An operation that the document refuses is the internal error "success"; what was
/// written before it stays.
class VEK_MODEL_CONFIG_DEVICE : public QAbstractItemModel
{
    Q_OBJECT
public:
    VEK_MODEL_CONFIG_DEVICE(std::shared_ptr<PGM_COMMON_XML_VEK_VEK> vek,
                            std::shared_ptr<VEK_FRAME_WND_CACHE> cache, QObject* parent);

    QModelIndex index(int row, int column, const QModelIndex& parent = QModelIndex()) const override;
    using QObject::parent;
    /// The row of an MBR, as the parent of a partition, is its position among all children of its device,
    /// while `index` counts the partitions first. In a device whose MBRs stand behind its partitions, which
    /// is how they are written, the two are the same.
    QModelIndex parent(const QModelIndex& index) const override;
    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

    /// Takes another document, which is shown with the next refresh. Null is the internal error
    /// "vek != nullptr".
    void set_vek(std::shared_ptr<PGM_COMMON_XML_VEK_VEK> vek);
    void refresh();

    /// The name of the device in that row, empty when there is none.
    std::string get_device(int row) const;

    // The columns. An invalid index is the internal error "index.isValid()".

    QVariant get_device_column_data(const QModelIndex& index, int role) const;
    /// Throws std::invalid_argument or std::out_of_range when the document has a text there that is neither
    /// "auto" nor begins like a hexadecimal number. Setups with such a text are not opened.
    QVariant get_start_addr_column_data(const QModelIndex& index, int role) const;
    /// As get_start_addr_column_data.
    QVariant get_end_addr_column_data(const QModelIndex& index, int role) const;
    QVariant get_input_file_column_data(const QModelIndex& index, int role) const;
    /// The input of a partition: a bitstream with its files, and the page where both partition and files have
    /// one, or the files of its raw data.
    QVariant get_partition_input_file_column_data(const std::string& partition_id) const;
    /// What the user flash of an on-chip device is filled with.
    QVariant get_ufm_input_file_column_data(const std::string& device_id) const;

    // Changes.

    /// Adds a device under the lowest free id, links it to the outputs that take flash devices, and gives it
    /// the partitions that it brings along. The row of the device. The flag plays no part.
    int add_device(const std::string& device_name, bool unused);
    /// Stores the options of an on-chip device. Nothing is announced: the next refresh shows them.
    void update_device(const std::string& device_id, const DSET_OTI_DEV_OPTIONS_INFO& options);
    /// Adds a partition behind those of the device, with the input of that id unless it is empty. Without
    /// such a device nothing happens.
    void add_partition(const std::string& name, bool reserved, const std::string& start,
                       const std::string& end, const std::string& input_id, const std::string& device_id,
                       unsigned size, unsigned extra_space, bool fixed_start, bool fixed_end, bool has_page,
                       unsigned page);
    /// Changes name, addresses and input; a fixed address is not written. On an on-chip device, asks whether
    /// the options of a bitstream that has other ones are to replace those of the device.
    void update_partition(const std::string& new_name, const std::string& start, const std::string& end,
                          const std::string& input_id, const std::string& old_name,
                          const std::string& device_id, bool fixed_start, bool fixed_end, bool has_page,
                          unsigned page);
    /// Replaces the raw files of a partition; none removes its assignment.
    void update_partition(const std::string& name, const std::string& device_id,
                          const std::vector<std::string>& raw_ids);
    void remove_partition(const std::string& name, const std::string& device_id);
    void remove_device(const std::string& device_id);
    /// Removes all devices.
    void clear();
    /// Partitions within an MBR are not written; this only announces.
    void add_mbr_partition(const std::string& name, bool reserved, const std::string& start,
                           const std::string& end, const std::string& input_id, const std::string& mbr_id,
                           const std::string& device_id, bool fixed_start, bool fixed_end);
    void remove_mbr_partition(const std::string& name, const std::string& mbr_id,
                              const std::string& device_id);

signals:
    void config_device_changed();
    void partition_changed();

private:
    PGM_COMMON_XML_ELEMENT* get_element(const QModelIndex& index) const;
    QVariant get_address_column_data(const QModelIndex& index, int role,
                                     std::string PGM_COMMON_XML_VEK_PARTITION::*address) const;
    QModelIndex get_device_index(const std::string& device_id) const;
    int get_partition_row(const std::string& name, const std::string& device_id) const;

    void add_reserved_partitions(const std::string& device_id);
    PGM_COMMON_XML_ENUM get_input_kind(const std::string& input_id) const;
    void set_params(PGM_COMMON_XML_VEK_CMD_OPT_ENUM option, const VEK_FILE_ASSISTANT::PARAMS& params);
    void remove_params(PGM_COMMON_XML_VEK_CMD_OPT_ENUM option, const VEK_FILE_ASSISTANT::PARAMS& params);
    void announce_partition(const std::string& name, const std::string& device_id);
    void check_options(const std::string& partition_id, const std::string& device_id);

    std::shared_ptr<PGM_COMMON_XML_VEK_VEK> m_vek;
    /// The document before set_vek, kept until the views have forgotten its elements.
    std::shared_ptr<PGM_COMMON_XML_VEK_VEK> m_shown_vek;
    std::shared_ptr<VEK_FRAME_WND_CACHE> m_cache;
};

#endif
