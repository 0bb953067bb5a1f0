// The generation run of the frame.

#include "fio_file_system.h"
#include "nivo_background.h"
#include "nivo_busy_dlg.h"
#include "nivo_safe_connect.h"
#include "pgm_common_xml_vek_auto_export.h"
#include "vek_frame_wnd.h"
#include "vek_gui_util.h"
#include "vek_util.h"

#include <QMessageBox>

void VEK_FRAME_WND::generate()
{
    const std::string directory = VEK_GUI_UTIL::get_working_directory();
    if (!directory.empty()) {
        FIO_FILE_SYSTEM::set_current_directory(directory);
    }
    set_custom_db_dir();

    bool can_save = false;
    bool can_generate = false;
    bool has_warning = false;
    std::string message;
    const bool was_checked = VEK_UTIL::check(m_vek.get(), can_save, can_generate, message, has_warning, true);
    if (!was_checked || !can_generate) {
        show_failure("Failed to generate output file(s). %s", message);
        return;
    }

    m_central_widget->setEnabled(false);
    set_file_actions_enabled(false);
    m_busy_dlg = new NIVO_BUSY_DLG(tr("Please wait while the Imagewright is processing..."),
                                   tr("Imagewright"), m_central_widget);
    nivo_safe_connect(&m_future_watcher, SIGNAL(finished()), this, SLOT(generate_finished()),
                      Qt::UniqueConnection, __FILE__, __LINE__);
    // The window may be deleted while this runs, so the task holds the document as well.
    m_future_watcher.setFuture(
        nivo_run_in_background([document = m_vek] { return VEK_UTIL::generate(document.get()); }));
}

void VEK_FRAME_WND::generate_finished()
{
    nivo_pass_hand_over_point();
    m_central_widget->setEnabled(true);
    set_file_actions_enabled(true);
    delete m_busy_dlg;
    m_busy_dlg = nullptr;

    const bool success = m_future_watcher.future().resultAt(0);
    QMessageBox box(success ? QMessageBox::Information : QMessageBox::Critical, tr("Imagewright"),
                    success ? tr("Successfully generated output file(s).")
                            : tr("Failed to generate output file(s)."),
                    QMessageBox::Ok, this);
    box.exec();
}
