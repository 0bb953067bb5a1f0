#ifndef DEVICES_DLG_H
#define DEVICES_DLG_H

#include "nivo_dialog.h"

#include <vector>

class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QTreeWidget;
class QTreeWidgetItem;
struct PGM_DEVICE;

/// The device browser: the devices of the database by family and by a part of their name, with the details of
/// the current one.
class DEVICES_DLG : public NIVO_DIALOG
{
    Q_OBJECT
public:
    /// `name`: the device to begin with. `loaders_only`: FPGAs alone. `all_families`: also devices that are
    /// no longer listed.
    DEVICES_DLG(const QString& name, bool loaders_only, bool all_families, QWidget* parent);

    /// The current device, or null.
    const PGM_DEVICE* get_device() const;

private slots:
    void update_list();
    void update_details();

private:
    void create_widgets();
    void create_connections();
    void populate_family_combo();
    void select(const QString& name);

    std::vector<const PGM_DEVICE*> m_devices; ///< those that may be chosen, in the order of the index
    QComboBox* m_family_combo;
    QLineEdit* m_filter_edit;
    QTreeWidget* m_device_list;
    QLabel* m_details_label;
    QPushButton* m_ok_button = nullptr;
};

#endif
