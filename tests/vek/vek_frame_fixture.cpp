#include "vek_frame_fixture.h"

#include "brim_manager.h"
#include "cfg.h"
#include "fio_file_system.h"
#include "gfpdb_mgr.h"
#include "mok_ui_mgr.h"
#include "msg_service.h"
#include "nivo_busy_dlg.h"
#include "pgm_device.h"
#include "tst_mode.h"

QWidget* VEK_FRAME_WND_PROBE::busy_dialog(VEK_FRAME_WND& frame)
{
    return frame.m_busy_dlg;
}

VEK_FRAME_FIXTURE::VEK_FRAME_FIXTURE()
    : m_old_directory(FIO_FILE_SYSTEM::get_current_directory()), m_old_config(qgetenv("XDG_CONFIG_HOME"))
{
    qputenv("XDG_CONFIG_HOME", (m_directory / "config").c_str());
    vek_util_double() = {};
    MSG_SERVICE::instance().clear_history();
    m_app = std::make_unique<MOK_APP>();
}

VEK_FRAME_FIXTURE::~VEK_FRAME_FIXTURE()
{
    EXPECT_FALSE(NIVO_NATIVE_FILE_DLG::has_answer());
    NIVO_NATIVE_FILE_DLG::clear_answers();
    m_app.reset();
    vek_util_double() = {};
    cfg_clear_overrides();
    tst_set_regtest_mode(false);
    BRIM_MANAGER::get_brim_manager()->close_project();
    PGM_DEVICE_INDEX::override_device_list(std::nullopt);
    GFPDB_MGR::set_db_custom_dir(std::string());
    FIO_FILE_SYSTEM::set_current_directory(m_old_directory);
    qputenv("XDG_CONFIG_HOME", m_old_config);
}

std::unique_ptr<VEK_FRAME_WND> VEK_FRAME_FIXTURE::make_frame(MOK_FW_STATE_ENUM state)
{
    return std::make_unique<VEK_FRAME_WND>(nullptr, state, nullptr, Qt::WindowFlags());
}

void VEK_FRAME_FIXTURE::set_working_directory(const std::string& directory)
{
    m_app->get_ui_mgr()->set_working_directory(directory);
}

QComboBox* VEK_FRAME_FIXTURE::family_combo(const VEK_FRAME_WND& frame)
{
    return frame.findChild<QComboBox*>(QStringLiteral("m_family_combo"));
}

QComboBox* VEK_FRAME_FIXTURE::mode_combo(const VEK_FRAME_WND& frame)
{
    return frame.findChild<QComboBox*>(QStringLiteral("m_mode_combo"));
}

QTabWidget* VEK_FRAME_FIXTURE::tabs(const VEK_FRAME_WND& frame)
{
    return frame.findChild<QTabWidget*>(QStringLiteral("m_tab_widget"));
}

void VEK_FRAME_FIXTURE::choose_family(const VEK_FRAME_WND& frame, DEV_FAMILY_ENUM family)
{
    const int index = family_combo(frame)->findData(static_cast<int>(family));
    ASSERT_GE(index, 0);
    family_combo(frame)->setCurrentIndex(index);
}

void VEK_FRAME_FIXTURE::choose_mode(const VEK_FRAME_WND& frame, PGMIO_CONFIG_SCHEME mode)
{
    const int index = mode_combo(frame)->findData(static_cast<int>(mode));
    ASSERT_GE(index, 0);
    mode_combo(frame)->setCurrentIndex(index);
}

void VEK_FRAME_FIXTURE::set(PGM_COMMON_XML_VEK_VEK& document, PGM_COMMON_XML_VEK_CMD_OPT_ENUM option,
                            const VEK_FILE_ASSISTANT::PARAMS& params)
{
    ASSERT_TRUE(VEK_FILE_ASSISTANT::set(&document, option, params));
}

std::string VEK_FRAME_FIXTURE::mode_of(const PGM_COMMON_XML_VEK_VEK& document)
{
    return document.settings.empty() ? std::string() : document.settings.front()->mode;
}

void VEK_FRAME_FIXTURE::add_output(PGM_COMMON_XML_VEK_VEK& document, const std::string& type,
                                   const std::string& name, const std::string& directory)
{
    set(document, VEK_CMD_OPT_OUTPUT_FILE,
        {{VEK_CMD_PARAM_OUTPUT_FILE_DIRECTORY, directory},
         {VEK_CMD_PARAM_OUTPUT_FILE_NAME, name},
         {VEK_CMD_PARAM_OUTPUT_FILE_TYPE, type}});
}

void VEK_FRAME_FIXTURE::add_bitstream(PGM_COMMON_XML_VEK_VEK& document, const std::string& id,
                                      const std::string& path)
{
    set(document, VEK_CMD_OPT_BITSTREAM,
        {{VEK_CMD_PARAM_BITSTREAM_ID, id}, {VEK_CMD_PARAM_BITSTREAM_PATH, path}});
    for (const auto* const output_file : VEK_FILE_ASSISTANT::get_output_file_elements(&document)) {
        set(document, VEK_CMD_OPT_OUTPUT_FILE,
            {{VEK_CMD_PARAM_OUTPUT_FILE_TYPE, output_file->type},
             {VEK_CMD_PARAM_OUTPUT_FILE_BITSTREAM_ID, id}});
    }
}

void VEK_FRAME_FIXTURE::open_document(VEK_FRAME_WND& frame, DEV_FAMILY_ENUM family,
                                      const std::function<void(PGM_COMMON_XML_VEK_VEK&)>& fill)
{
    vek_util_double().get_family = [family](const PGM_COMMON_XML_VEK_VEK*) { return family; };
    vek_util_double().parse = [&fill](PGM_COMMON_XML_VEK_VEK** document, const std::string&) {
        *document = new PGM_COMMON_XML_VEK_VEK(PGM_COMMON_XML_ENUM_VEK);
        fill(**document);
        return true;
    };
    ASSERT_TRUE(frame.open_file(QStringLiteral("setup.vek")));
    vek_util_double().parse = nullptr;
    vek_util_double().get_family = nullptr;
}
