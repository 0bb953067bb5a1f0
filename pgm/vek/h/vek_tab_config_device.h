#ifndef VEK_TAB_CONFIG_DEVICE_H
#define VEK_TAB_CONFIG_DEVICE_H

#include "fio_types.h"
#include "pgmio_config_scheme.h"

#include <QWidget>

#include <memory>
#include <string>

class PGM_COMMON_XML_ELEMENT;
class PGM_COMMON_XML_VEK_FLASH_DEVICE;
class PGM_COMMON_XML_VEK_PARTITION;
class PGM_COMMON_XML_VEK_VEK;
class QLineEdit;
class QPushButton;
class VEK_DLG_PARTITION_PROPERTIES;
class VEK_TREE_CONFIG_DEVICE;
struct DSET_OTI_DEV_OPTIONS_INFO;
struct VEK_FRAME_WND_CACHE;

/// The third tab, where the flash image is laid out: the flash devices with their partitions, and the flash
/// loader. On the family that is configured from on-chip flash the device is the FPGA itself, so its row
/// follows the bitstream and its partitions can only be edited.
class VEK_TAB_CONFIG_DEVICE : public QWidget
{
    Q_OBJECT
public:
    VEK_TAB_CONFIG_DEVICE(std::shared_ptr<PGM_COMMON_XML_VEK_VEK> vek,
                          std::shared_ptr<VEK_FRAME_WND_CACHE> cache, QWidget* parent, Qt::WindowFlags flags);

    /// Takes another document; does not show it yet.
    void set_vek(std::shared_ptr<PGM_COMMON_XML_VEK_VEK> vek);
    /// Shows the document. The selection is gone afterwards, and the buttons follow with the next turn of the
    /// event loop.
    void refresh();
    /// Removes the flash devices and the flash loader from the document.
    void reset();

public slots:
    /// From the flash database for a programmer file in an active serial mode, else from the device list.
    /// Without an output file in the document it throws std::out_of_range: the tab is closed then.
    void add_device();
    void add_partition();
    void edit();
    /// Asks before it removes a device or an MBR that has rows of its own.
    void remove();
    /// Without the module that shows the devices, nothing happens.
    void select_flash_loader();
    /// In the family that is configured from on-chip flash, the flash device follows the device of the
    /// session; the argument is not looked at. With another device all partitions of the old one are lost.
    void update_device(const QString& device_name);
    void update_buttons();
    /// Finds out whether an output file needs a flash loader, and shows the one that the document names. It
    /// stays in the document when no output file needs it any more.
    void update_flash_loader();

signals:
    void config_device_changed();
    void partition_changed();
    void flash_loader_changed();

private:
    void create_widgets();
    void create_connections();
    PGM_COMMON_XML_ELEMENT* get_current_element() const;
    FIO_FILE_TYPE get_first_file_type() const;
    void enable_buttons(bool add_partition, bool edit, bool remove);

    std::string ask_flash_database(PGMIO_CONFIG_SCHEME mode);
    void edit_flash_device(const PGM_COMMON_XML_VEK_FLASH_DEVICE& flash_device);
    void edit_partition(const PGM_COMMON_XML_VEK_PARTITION* partition);
    void edit_ufm_partition(const PGM_COMMON_XML_VEK_PARTITION* ufm_partition);
    void edit_generic_partition(const PGM_COMMON_XML_VEK_PARTITION* partition);
    void edit_puf_partition(const PGM_COMMON_XML_VEK_PARTITION* partition);
    const PGM_COMMON_XML_ELEMENT* get_ufm_source(const DSET_OTI_DEV_OPTIONS_INFO& options,
                                                 const std::string& device_id) const;
    bool accepts_boot_info(const std::string& bitstream_id);

    std::shared_ptr<PGM_COMMON_XML_VEK_VEK> m_vek;
    std::shared_ptr<VEK_FRAME_WND_CACHE> m_cache;
    VEK_TREE_CONFIG_DEVICE* m_config_device_tree = nullptr;
    QPushButton* m_add_device_button = nullptr;
    QPushButton* m_add_partition_button = nullptr;
    QPushButton* m_edit_button = nullptr;
    QPushButton* m_remove_button = nullptr;
    QPushButton* m_select_button = nullptr;
    QLineEdit* m_flash_loader_edit = nullptr;
};

#endif
