#include "sof_properties_fixture.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QLabel>

#include <algorithm>

const PGM_DEVICE* SOF_PROPERTIES_FIXTURE::device_of(DEV_FAMILY_ENUM family)
{
    const std::vector<const PGM_DEVICE*> devices = PGM_DEVICE_INDEX::get_device_list();
    const auto found = std::ranges::find_if(
        devices, [family](const PGM_DEVICE* device) { return device->family == family; });
    return found == devices.end() ? nullptr : *found;
}

SOF_PROPERTIES_FIXTURE::DIALOG SOF_PROPERTIES_FIXTURE::make(DEV_FAMILY_ENUM family, FIO_FILE_TYPE file_type,
                                                            std::vector<VEK_FILE_TYPE> outputs)
{
    const PGM_DEVICE* const device = device_of(family);
    EXPECT_EQ(device == nullptr, family == DEV_FAMILY_NONE);
    return std::make_unique<VEK_DLG_SOF_PROPERTIES>(device, file_type, std::move(outputs), nullptr,
                                                    Qt::WindowFlags());
}

VEK_PROPERTY_BROWSER* SOF_PROPERTIES_FIXTURE::browser(const VEK_DLG_SOF_PROPERTIES& dialog)
{
    return dialog.findChild<VEK_PROPERTY_BROWSER*>(QStringLiteral("m_properties"));
}

QWidget* SOF_PROPERTIES_FIXTURE::editor(const VEK_DLG_SOF_PROPERTIES& dialog, PARAM param)
{
    return browser(dialog)->get_widget(param);
}

QLabel* SOF_PROPERTIES_FIXTURE::label(const VEK_DLG_SOF_PROPERTIES& dialog, PARAM param)
{
    return qobject_cast<QLabel*>(browser(dialog)->get_property(param).label);
}

QPushButton* SOF_PROPERTIES_FIXTURE::ok_button(const VEK_DLG_SOF_PROPERTIES& dialog)
{
    return dialog.findChild<QDialogButtonBox*>(QStringLiteral("m_button_box"), Qt::FindDirectChildrenOnly)
        ->button(QDialogButtonBox::Ok);
}

bool SOF_PROPERTIES_FIXTURE::is_visible(const VEK_DLG_SOF_PROPERTIES& dialog, PARAM param)
{
    const std::vector<PARAM> ids = dialog.get_property_ids();
    return std::ranges::find(ids, param) != ids.end();
}

bool SOF_PROPERTIES_FIXTURE::is_enabled(const VEK_DLG_SOF_PROPERTIES& dialog, PARAM param)
{
    return editor(dialog, param)->isEnabled();
}

void SOF_PROPERTIES_FIXTURE::choose(const VEK_DLG_SOF_PROPERTIES& dialog, PARAM param, int index)
{
    qobject_cast<QComboBox*>(editor(dialog, param))->setCurrentIndex(index);
}

std::string SOF_PROPERTIES_FIXTURE::value(VEK_DLG_SOF_PROPERTIES& dialog, PARAM param)
{
    for (const auto& [id, text] : dialog.get_property_values()) {
        if (id == param) {
            return text;
        }
    }
    return "(no value)";
}

std::string SOF_PROPERTIES_FIXTURE::short_name(PARAM param)
{
    std::string name = PGM_COMMON_XML_VEK_CMD_PARAM.at(param);
    for (const std::string head : {"path_", "security_opt_"}) {
        if (name.starts_with(head)) {
            name.erase(0, head.size());
        }
    }
    return name;
}
