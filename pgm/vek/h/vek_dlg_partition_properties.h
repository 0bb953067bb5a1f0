#ifndef VEK_DLG_PARTITION_PROPERTIES_H
#define VEK_DLG_PARTITION_PROPERTIES_H

#include "nivo_dialog.h"

#include <memory>
#include <string>

class NIVO_HEX_EDIT;
class PGM_COMMON_XML_ELEMENT;
class PGM_COMMON_XML_VEK_PARTITION;
class PGM_COMMON_XML_VEK_VEK;
class QComboBox;
class QFormLayout;
class QGroupBox;
class QLineEdit;
class QPushButton;
struct VEK_FRAME_WND_CACHE;

/// Name, input file, page and addresses of a partition. The dialog writes nothing: the caller reads the
/// values when it has been accepted. Addresses are not judged here beyond their being numbers; the check of
/// the setup does that, which sees all partitions.
class VEK_DLG_PARTITION_PROPERTIES : public NIVO_DIALOG
{
    Q_OBJECT
public:
    enum DLG_TYPE {
        DLG_TYPE_ADD,  ///< a new partition
        DLG_TYPE_EDIT, ///< an ordinary partition
        DLG_TYPE_UFM,  ///< user flash of an on-chip device: only the input can be changed
        DLG_TYPE_CFM,  ///< configuration flash of an on-chip device: only the input can be changed
    };

    /// `name`: that of the partition, or the one to offer. An edited partition that the device does not have
    /// is the internal error "partition != nullptr".
    VEK_DLG_PARTITION_PROPERTIES(DLG_TYPE type, std::shared_ptr<PGM_COMMON_XML_VEK_VEK> vek,
                                 std::shared_ptr<VEK_FRAME_WND_CACHE> cache, const std::string& name,
                                 const std::string& device_id, QWidget* parent,
                                 Qt::WindowFlags flags = Qt::WindowFlags());

    std::string get_name() const;
    /// "auto", or the text of the edit. A fixed start is given although it cannot be edited.
    std::string get_start_address() const;
    std::string get_end_address() const;
    unsigned get_page() const;

    /// Makes the element current that an item stands for: a bitstream, a raw file, or a partition for user
    /// flash. Null, and an element without an item, make the first item current.
    void set_input_file(const PGM_COMMON_XML_ELEMENT* element);
    /// Null for none. An item without an element pointer is the internal error "data.canConvert<void*>()".
    const PGM_COMMON_XML_ELEMENT* get_input_file() const;

private slots:
    void update_page_combo(int index);
    void update_address_edits(int index);
    void update_ok_button();
    void validate_and_close();

private:
    void create_widgets();
    void create_connections();
    void populate_address_combo();
    void populate_input_file_combo();
    void populate_page_combo();
    void set_initial_address();
    void filter_options();
    const PGM_COMMON_XML_VEK_PARTITION& get_partition() const;
    void refuse_name(const QString& reason);

    DLG_TYPE m_type;
    std::shared_ptr<PGM_COMMON_XML_VEK_VEK> m_vek;
    std::shared_ptr<VEK_FRAME_WND_CACHE> m_cache;
    std::string m_name;
    std::string m_device_id;
    bool m_fixed_start = false;
    bool m_fixed_end = false;
    QFormLayout* m_form = nullptr;
    QFormLayout* m_address_form = nullptr;
    QGroupBox* m_address_group = nullptr;
    QLineEdit* m_name_edit = nullptr;
    QComboBox* m_input_file_combo = nullptr;
    QComboBox* m_page_combo = nullptr;
    QComboBox* m_address_mode_combo = nullptr;
    NIVO_HEX_EDIT* m_start_addr_edit = nullptr;
    NIVO_HEX_EDIT* m_end_addr_edit = nullptr;
    QPushButton* m_ok_button = nullptr;
};

#endif
