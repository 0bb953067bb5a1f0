#ifndef NIVO_DIALOG_MODULES_H
#define NIVO_DIALOG_MODULES_H

#include <QList>
#include <QString>

class QWidget;
struct CONFIG_DEVICE;
struct DSET_OTI_DEV_OPTIONS_INFO;
struct PGM_DEVICE;

/// The entries of the dialog modules. A module is loaded with thr_drl_load at the moment of use; its entry
/// has C linkage and shows one modal dialog.

inline constexpr char NIVO_DEVICES_DLG_MODULE[] = "mod_devices_dlg";
inline constexpr char NIVO_DEVICES_DLG_ENTRY[] = "devices_dlg_show";
/// Lets the user pick one device of the database. `name`: the device to begin with, may be empty. `device`
/// and `accepted` take the answer; they are null and false when the user gives up. `loaders_only`: FPGAs
/// through which a flash loader can work. `all_families`: also devices that are no longer listed.
using NIVO_DEVICES_DLG_SHOW = void (*)(QString name, const PGM_DEVICE** device, bool loaders_only,
                                       bool all_families, bool* accepted);

inline constexpr char NIVO_FLASH_DLG_MODULE[] = "mod_flash_dlg";
inline constexpr char NIVO_FLASH_DLG_ENTRY[] = "flash_dlg_show";
/// Shows the flash database: the devices that suit `config_device`, and the user's own. The name of the
/// device chosen comes back in it. `page`: 0 starts in the list, 1 among the user's own devices. `view`: 0
/// shows the devices that suit, 1 all flash devices. `can_choose`: 0 shows the database without a choice.
using NIVO_FLASH_DLG_SHOW = void (*)(QWidget* parent, CONFIG_DEVICE* config_device, int page, int view,
                                     int can_choose);

inline constexpr char NIVO_OPTIONS_DLG_MODULE[] = "mod_options_dlg";
inline constexpr char NIVO_OPTIONS_DLG_ENTRY[] = "options_dlg_show";
/// Edits the options of on-chip flash in place; nothing changes when the user gives up. `is_editable`: false
/// only shows them. `dual`: there are two images, and so the options of the choice between them. `timing`,
/// `security`: also show the test and the security options. `sectors`: the sectors that user flash can be
/// read from. `summary`, when not null, takes what differs from the initial state, in words. `with_ufm`:
/// also edit the source of the user flash.
using NIVO_OPTIONS_DLG_SHOW = void (*)(QWidget* parent, DSET_OTI_DEV_OPTIONS_INFO* options, bool is_editable,
                                       bool dual, bool timing, bool security, QList<QString> sectors,
                                       QString* summary, bool with_ufm);

#endif
