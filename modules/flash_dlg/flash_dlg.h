#ifndef FLASH_DLG_H
#define FLASH_DLG_H

#include "config_device.h"
#include "nivo_dialog.h"

#include <vector>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QTreeWidget;
class QTreeWidgetItem;
struct PGM_DEVICE;

/// The flash database: the devices that suit a mode, found by name or JEDEC id and by capacity, and the
/// user's own devices, which can be added and removed here.
class FLASH_DLG : public NIVO_DIALOG
{
    Q_OBJECT
public:
    FLASH_DLG(const CONFIG_DEVICE& wanted, bool start_with_custom, bool show_all, bool can_choose,
              QWidget* parent);

    /// The current device, or null.
    const PGM_DEVICE* get_device() const;

private slots:
    void update_list();
    void update_buttons();
    void choose_directory();
    void add_custom_device();
    void remove_custom_device();

private:
    void create_widgets(bool can_choose);
    void create_connections();
    void populate_families(const CONFIG_DEVICE& wanted, bool show_all);
    void read_devices();
    void show_directory();
    bool is_shown(const PGM_DEVICE& device) const;
    void select(const QString& name);
    void refuse(const QString& reason);

    std::vector<DEV_FAMILY_ENUM> m_families;
    std::vector<const PGM_DEVICE*> m_devices; ///< those of the families, in the order of the index
    QLineEdit* m_search_edit;
    QComboBox* m_capacity_combo;
    QCheckBox* m_custom_check;
    QTreeWidget* m_device_list;
    QLabel* m_directory_label;
    QPushButton* m_directory_button;
    QPushButton* m_add_button;
    QPushButton* m_remove_button;
    QPushButton* m_ok_button = nullptr; ///< null when nothing can be chosen
};

#endif
