#ifndef IMAGEWRIGHT_TESTS_VEK_FRAME_FIXTURE_H
#define IMAGEWRIGHT_TESTS_VEK_FRAME_FIXTURE_H

#include "internal_error_trap.h"
#include "modal_answers.h"
#include "mok_app.h"
#include "nivo_native_file_dlg.h"
#include "temporary_directory.h"
#include "vek_file_assistant.h"
#include "vek_frame_wnd.h"
#include "vek_frame_wnd_cache.h"
#include "vek_util_double.h"

#include <QComboBox>
#include <QPushButton>
#include <QTabWidget>

#include <memory>
#include <string>

/// Document and cache of a frame.
struct VEK_FRAME_WND_PROBE {
    static std::shared_ptr<PGM_COMMON_XML_VEK_VEK>& document(VEK_FRAME_WND& frame) { return frame.m_vek; }
    static VEK_FRAME_WND_CACHE& cache(VEK_FRAME_WND& frame) { return *frame.m_cache; }
    static QWidget* busy_dialog(VEK_FRAME_WND& frame);
    static void reset_cache(VEK_FRAME_WND& frame) { frame.reset_cache(); }
    static void select_family(VEK_FRAME_WND& frame, DEV_FAMILY_ENUM family) { frame.set_family(family); }
};

/// A host application with a working directory of its own, and what outlives a window put back afterwards.
class VEK_FRAME_FIXTURE : public testing::Test
{
protected:
    VEK_FRAME_FIXTURE();
    ~VEK_FRAME_FIXTURE() override;

    /// A window of the tool that runs by itself, unless another state is asked for.
    std::unique_ptr<VEK_FRAME_WND> make_frame(MOK_FW_STATE_ENUM state = MOK_FW_STATE_MAIN);
    void set_working_directory(const std::string& directory);

    static QComboBox* family_combo(const VEK_FRAME_WND& frame);
    static QComboBox* mode_combo(const VEK_FRAME_WND& frame);
    static QTabWidget* tabs(const VEK_FRAME_WND& frame);
    static void choose_family(const VEK_FRAME_WND& frame, DEV_FAMILY_ENUM family);
    static void choose_mode(const VEK_FRAME_WND& frame, PGMIO_CONFIG_SCHEME mode);

    static void set(PGM_COMMON_XML_VEK_VEK& document, PGM_COMMON_XML_VEK_CMD_OPT_ENUM option,
                    const VEK_FILE_ASSISTANT::PARAMS& params);
    static std::string mode_of(const PGM_COMMON_XML_VEK_VEK& document);
    /// Adds an output file, as a tick on its row does.
    static void add_output(PGM_COMMON_XML_VEK_VEK& document, const std::string& type, const std::string& name,
                           const std::string& directory);
    /// Adds a bitstream with one file to the document and to all its output files.
    static void add_bitstream(PGM_COMMON_XML_VEK_VEK& document, const std::string& id,
                              const std::string& path);
    /// Makes the window show the document as if it had been opened from a file.
    static void open_document(VEK_FRAME_WND& frame, DEV_FAMILY_ENUM family,
                              const std::function<void(PGM_COMMON_XML_VEK_VEK&)>& fill);

    TEMPORARY_DIRECTORY m_directory;
    std::unique_ptr<MOK_APP> m_app;

private:
    std::string m_old_directory;
    QByteArray m_old_config;
};

#endif
