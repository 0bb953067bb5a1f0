#include "vek_dlg_add_device.h"

#include "cfg.h"
#include "msg_internal_error.h"
#include "nivo_icon.h"
#include "nivo_safe_connect.h"
#include "pgm_device.h"
#include "vek_gui_util.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QVBoxLayout>

#include <algorithm>

namespace
{

constexpr char ALLOW_CFI_4G_KEY[] = "pgm_allow_cfi4g";
constexpr char ALLOW_KELT_KEY[] = "PGM_ALLOW_KELT_DEVICE";
constexpr char ALLOW_TESSEL_KEY[] = "PGM_ALLOW_TESSEL_DEVICE";

/// Whether a serial flash device is offered. The two keys of the special family look crossed; hosts rely on
/// them as they are.
bool offers_serial_device(const PGM_DEVICE& device)
{
    if (device.device_class != DEV_CLASS_CONFIG_FLASH) {
        return false;
    }
    const bool special = PGM_DEVICE_INDEX::is_tsu_tessel_device(&device);
    if (device.family == DEV_FAMILY_SERIAL_A || device.family == DEV_FAMILY_SERIAL_B) {
        return true;
    }
    if (device.family == DEV_FAMILY_ASC_SERIAL) {
        return PGM_DEVICE_INDEX::enable_asc_device(&device, true, true);
    }
    if (device.family == DEV_FAMILY_SPECIAL_FLASH) {
        return (cfg_is_on(ALLOW_KELT_KEY, true) && special) ||
               (cfg_is_on(ALLOW_TESSEL_KEY, false) && !special);
    }
    return false;
}

} // namespace

VEK_DLG_ADD_DEVICE::VEK_DLG_ADD_DEVICE(const std::vector<DEV_FAMILY_ENUM>& families, DEV_FAMILY_ENUM family,
                                       PGMIO_CONFIG_SCHEME mode, QWidget* parent, Qt::WindowFlags flags)
    : NIVO_DIALOG(parent, flags), m_device_combo(new QComboBox), m_families(families), m_family(family),
      m_config_mode(mode)
{
    setWindowTitle(tr("Add Device"));
    setWindowIcon(nivo_get_icon(NIVO_ICON_IMAGEWRIGHT));
    setSizeGripEnabled(false);
    m_device_combo->setObjectName(QStringLiteral("m_device_combo"));
    auto* const form = new QFormLayout;
    form->addRow(tr("Device"), m_device_combo);
    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    auto* const layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(buttons);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    nivo_safe_connect(m_device_combo, SIGNAL(currentIndexChanged(const QString&)), this,
                      SLOT(set_device_name(const QString&)), Qt::AutoConnection, __FILE__, __LINE__);
    nivo_safe_connect(buttons, SIGNAL(accepted()), this, SLOT(accept()), Qt::AutoConnection, __FILE__,
                      __LINE__);
    nivo_safe_connect(buttons, SIGNAL(rejected()), this, SLOT(reject()), Qt::AutoConnection, __FILE__,
                      __LINE__);
    populate_device_combo_box();
}

void VEK_DLG_ADD_DEVICE::set_device_name(const QString& name)
{
    m_device_name = VEK_GUI_UTIL::to_local(name);
}

void VEK_DLG_ADD_DEVICE::populate_device_combo_box()
{
    const DEV_FAMILY_MANAGER family_manager;
    for (const PGM_DEVICE* const device : PGM_DEVICE_INDEX::get_device_list()) {
        VEK_ASSERT_TEXT(device != nullptr, "device != NULL");
        if ((device->ask_not_listed && device->is_dev_not_listed()) ||
            (device->ask_no_pof && device->is_dev_no_pof()) ||
            std::find(m_families.begin(), m_families.end(), device->family) == m_families.end()) {
            continue;
        }
        std::string label = device->name;
        if (device->family == DEV_FAMILY_CFI_FLASH) {
            if (device->device == DEV_DEVICE_CFI_4G && !cfg_is_on(ALLOW_CFI_4G_KEY, false)) {
                continue;
            }
            label.back() = 'b';
        } else if (!offers_serial_device(*device)) {
            continue;
        }
        m_device_combo->insertItem(m_device_combo->count(), QIcon(), VEK_GUI_UTIL::from_local(label),
                                   QVariant());
    }
}
