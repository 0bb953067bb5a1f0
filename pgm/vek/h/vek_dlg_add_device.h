#ifndef VEK_DLG_ADD_DEVICE_H
#define VEK_DLG_ADD_DEVICE_H

#include "dev_family_enum.h"
#include "nivo_dialog.h"
#include "pgmio_config_scheme.h"

#include <string>
#include <vector>

class QComboBox;

/// Asks for one flash device. The list has the devices of the index that may carry a flash image, in the
/// order of the index; parallel devices under the name with the suffix "b", which is also the name chosen.
class VEK_DLG_ADD_DEVICE : public NIVO_DIALOG
{
    Q_OBJECT
public:
    /// `families`: the flash families to choose from. A null entry in the device index is the internal error
    /// "device != NULL".
    VEK_DLG_ADD_DEVICE(const std::vector<DEV_FAMILY_ENUM>& families, DEV_FAMILY_ENUM family,
                       PGMIO_CONFIG_SCHEME mode, QWidget* parent, Qt::WindowFlags flags = Qt::WindowFlags());

    /// The device chosen; empty when there was none to choose.
    const std::string& get_device_name() const { return m_device_name; }

public slots:
    void set_device_name(const QString& name);

private:
    void populate_device_combo_box();

    QComboBox* m_device_combo;
    std::vector<DEV_FAMILY_ENUM> m_families;
    DEV_FAMILY_ENUM m_family; ///< of the session
    std::string m_device_name;
    PGMIO_CONFIG_SCHEME m_config_mode;
};

#endif
