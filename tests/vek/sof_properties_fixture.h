#ifndef IMAGEWRIGHT_TESTS_SOF_PROPERTIES_FIXTURE_H
#define IMAGEWRIGHT_TESTS_SOF_PROPERTIES_FIXTURE_H

#include "nivo_screen_room.h"
#include "pgm_device.h"
#include "vek_db_double.h"
#include "vek_dlg_sof_properties.h"
#include "vek_frame_fixture.h"
#include "vek_property_browser.h"

#include <memory>
#include <string>
#include <vector>

/// Makes the dialog and looks into it.
class SOF_PROPERTIES_FIXTURE : public VEK_FRAME_FIXTURE
{
protected:
    using PARAM = PGM_COMMON_XML_VEK_CMD_PARAM_ENUM;
    using DIALOG = std::unique_ptr<VEK_DLG_SOF_PROPERTIES>;

    /// On a screen that has room for every dialog.
    SOF_PROPERTIES_FIXTURE() { nivo_override_screen_room(QSize(4000, 4000)); }
    ~SOF_PROPERTIES_FIXTURE() override
    {
        nivo_override_screen_room(QSize());
        vek_db_double() = {};
    }

    static const PGM_DEVICE* device_of(DEV_FAMILY_ENUM family);
    /// DEV_FAMILY_NONE for raw data.
    static DIALOG make(DEV_FAMILY_ENUM family, FIO_FILE_TYPE file_type,
                       std::vector<VEK_FILE_TYPE> outputs = {VEK_RBF_FILE_TYPE});
    static VEK_PROPERTY_BROWSER* browser(const VEK_DLG_SOF_PROPERTIES& dialog);
    static QWidget* editor(const VEK_DLG_SOF_PROPERTIES& dialog, PARAM param);
    static QLabel* label(const VEK_DLG_SOF_PROPERTIES& dialog, PARAM param);
    static QPushButton* ok_button(const VEK_DLG_SOF_PROPERTIES& dialog);
    static bool is_visible(const VEK_DLG_SOF_PROPERTIES& dialog, PARAM param);
    static bool is_enabled(const VEK_DLG_SOF_PROPERTIES& dialog, PARAM param);
    /// As the user does at a combo.
    static void choose(const VEK_DLG_SOF_PROPERTIES& dialog, PARAM param, int index);
    static std::string value(VEK_DLG_SOF_PROPERTIES& dialog, PARAM param);
    /// The name of the parameter on the command line, without what all have in front.
    static std::string short_name(PARAM param);
};

#endif
