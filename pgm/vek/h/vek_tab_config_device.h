#ifndef VEK_TAB_CONFIG_DEVICE_H
#define VEK_TAB_CONFIG_DEVICE_H

#include <QWidget>

#include <memory>
#include <string>

class PGM_COMMON_XML_VEK_VEK;
class QLineEdit;
class VEK_LIST_VIEW;
struct VEK_FRAME_WND_CACHE;
struct VEK_UTIL_PARTITION_INFO;

/// The third tab: the flash devices of the document with their partitions, and the flash loader.
class VEK_TAB_CONFIG_DEVICE : public QWidget
{
    Q_OBJECT
public:
    VEK_TAB_CONFIG_DEVICE(std::shared_ptr<PGM_COMMON_XML_VEK_VEK> vek,
                          std::shared_ptr<VEK_FRAME_WND_CACHE> cache, QWidget* parent, Qt::WindowFlags flags);

    /// Takes another document; does not show it yet.
    void set_vek(std::shared_ptr<PGM_COMMON_XML_VEK_VEK> vek);
    void refresh();
    /// Removes the flash devices and the flash loader from the document.
    void reset();

public slots:
    /// In the family that is configured from on-chip flash, the flash device follows the device of the
    /// session; the argument is not looked at. With another device all partitions of the old one are lost.
    void update_device(const QString& device_name);
    /// Finds out whether an output file needs a flash loader, and shows the one that the document names. It
    /// stays in the document when no output file needs it any more.
    void update_flash_loader();

signals:
    void config_device_changed();
    void partition_changed();
    void flash_loader_changed();

private:
    void show_flash_devices();
    void add_device(const std::string& device_name);
    void add_reserved_partition(const std::string& device_id, const VEK_UTIL_PARTITION_INFO& partition);
    void remove_device(const std::string& device_id);
    void remove_partition(const std::string& name, const std::string& device_id);

    std::shared_ptr<PGM_COMMON_XML_VEK_VEK> m_vek;
    std::shared_ptr<VEK_FRAME_WND_CACHE> m_cache;
    VEK_LIST_VIEW* m_config_device_tree = nullptr;
    QLineEdit* m_flash_loader_edit = nullptr;
};

#endif
