#include "vek_dlg_add_device.h"

#include "flash_offer.h"
#include "msg_internal_error.h"
#include "nivo_help.h"
#include "nivo_icon.h"
#include "nivo_safe_connect.h"
#include "pgm_device.h"
#include "vek_gui_util.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QVBoxLayout>

VEK_DLG_ADD_DEVICE::VEK_DLG_ADD_DEVICE(const std::vector<DEV_FAMILY_ENUM>& families, DEV_FAMILY_ENUM family,
                                       PGMIO_CONFIG_SCHEME mode, QWidget* parent, Qt::WindowFlags flags)
    : NIVO_DIALOG(parent, flags), m_device_combo(new QComboBox), m_families(families), m_family(family),
      m_config_mode(mode)
{
    setWindowTitle(tr("Add Device"));
    nivo_set_help_topic(*this, NIVO_HELP_FLASH_DEVICES);
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
        if (!flash_device_is_offered(*device, m_families)) {
            continue;
        }
        std::string label = device->name;
        if (device->family == DEV_FAMILY_CFI_FLASH) {
            label.back() = 'b';
        }
        m_device_combo->insertItem(m_device_combo->count(), QIcon(), VEK_GUI_UTIL::from_local(label),
                                   QVariant());
    }
}
