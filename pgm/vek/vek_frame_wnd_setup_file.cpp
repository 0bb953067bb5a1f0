// Opening and saving a setup. Its paths are absolute in memory and relative to the host's working directory
// in the file.

#include "cfg.h"
#include "fio_path.h"
#include "fio_types.h"
#include "gfpdb_mgr.h"
#include "msg_internal_error.h"
#include "nivo_native_file_dlg.h"
#include "pgm_common_xml_vek_auto_export.h"
#include "vek_file_assistant.h"
#include "vek_frame_wnd.h"
#include "vek_gui_util.h"
#include "vek_util.h"

#include <QComboBox>
#include <QMessageBox>
#include <QTabWidget>

#include <array>

namespace
{

constexpr std::array PATH_ATTRIBUTES{"hps_path",  "signing_pem_file", "skc_file",  "aek_file",
                                     "fw_source", "ekp_file",         "key_file1", "key_file2"};

using PATH_CONVERSION = FIO_PATH (*)(const FIO_PATH&);

void convert_attribute(PGM_COMMON_XML_ELEMENT* element, const char* name, PATH_CONVERSION convert)
{
    element->write_attribute_string(name, convert(element->read_attribute_string(name)).fullpath());
}

void convert_attribute_unless_empty(PGM_COMMON_XML_ELEMENT* element, const char* name,
                                    PATH_CONVERSION convert)
{
    if (!element->is_attribute_empty(name)) {
        convert_attribute(element, name, convert);
    }
}

void convert_text(PGM_COMMON_XML_ELEMENT* element, PATH_CONVERSION convert)
{
    element->write_string(convert(element->read_string()).fullpath());
}

/// Passes every path of the document through `convert`.
void convert_paths(PGM_COMMON_XML_VEK_VEK* object, PATH_CONVERSION convert)
{
    VEK_ASSERT(object != nullptr);
    for (PGM_COMMON_XML_ELEMENT* const output_file : VEK_FILE_ASSISTANT::get_output_file_elements(object)) {
        convert_attribute(output_file, "directory", convert);
    }
    for (const PGM_COMMON_XML_VEK_BITSTREAM* const bitstream :
         VEK_FILE_ASSISTANT::get_bitstream_elements(object)) {
        for (PGM_COMMON_XML_ELEMENT* const path :
             VEK_FILE_ASSISTANT::get_path_elements(object, bitstream->id)) {
            convert_text(path, convert);
            for (const char* const attribute : PATH_ATTRIBUTES) {
                convert_attribute_unless_empty(path, attribute, convert);
            }
        }
    }
    for (PGM_COMMON_XML_ELEMENT* const raw_file : VEK_FILE_ASSISTANT::get_raw_file_elements(object)) {
        convert_text(raw_file, convert);
    }
    for (PGM_COMMON_XML_ELEMENT* const flash_device : VEK_FILE_ASSISTANT::get_flash_device_elements(object)) {
        convert_attribute_unless_empty(flash_device, "ufm_source_file", convert);
    }
}

void make_paths_absolute(PGM_COMMON_XML_VEK_VEK* document)
{
    convert_paths(document, VEK_GUI_UTIL::make_path_absolute);
}

void make_paths_relative(PGM_COMMON_XML_VEK_VEK* document)
{
    convert_paths(document, VEK_GUI_UTIL::format_path);
}

QString get_setup_file_filter()
{
    return VEK_GUI_UTIL::from_local(fio_get_file_type_filter(FIO_VEK_SETUP_FILE, false));
}

} // namespace

void VEK_FRAME_WND::on_open_action()
{
    NIVO_NATIVE_FILE_DLG dialog(this);
    dialog.setNameFilters({get_setup_file_filter()});
    dialog.setFileMode(QFileDialog::ExistingFile);
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    dialog.setWindowTitle(tr("Open"));
    if (dialog.exec() != QDialog::Accepted) {
        return;
    }
    const FIO_PATH path = VEK_GUI_UTIL::to_local(dialog.selectedFiles().constFirst());
    const QString full_path = VEK_GUI_UTIL::from_local(path.fullpath());
    if (find_open_file(full_path, true)) {
        return;
    }
    open_file(full_path, 0, 0, 0, true, true);
}

bool VEK_FRAME_WND::open_file(const QString& path)
{
    PGM_COMMON_XML_VEK_VEK* parsed = nullptr;
    if (!VEK_UTIL::parse(&parsed, VEK_GUI_UTIL::to_local(path))) {
        return false;
    }
    std::shared_ptr<PGM_COMMON_XML_VEK_VEK> document(parsed);
    make_paths_absolute(document.get());

    std::string custom_db_dir;
    if (VEK_FILE_ASSISTANT::get_custom_db_dir(document.get(), custom_db_dir) && !custom_db_dir.empty()) {
        GFPDB_MGR::set_db_custom_dir(custom_db_dir);
        GFPDB_MGR::save_custom_dir_to_ini(custom_db_dir, false);
    }
    set_family(VEK_UTIL::get_family(document.get()));
    PGMIO_CONFIG_SCHEME mode = PGMIO_CONFIG_SCHEME_ILLEGAL;
    VEK_FILE_ASSISTANT::get_config_mode(document.get(), mode);
    m_mode_combo->setCurrentIndex(m_mode_combo->findData(static_cast<int>(mode)));
    m_tab_widget->setCurrentIndex(0);
    // The slots of the combos replace the document in force, so the one from the file takes over behind them.
    m_vek = std::move(document);
    refresh();
    return MOK_FRAME_WND::open_file(path);
}

bool VEK_FRAME_WND::save_file(const QString& path)
{
    bool can_save = false;
    bool can_generate = false;
    bool has_warning = false;
    std::string message;
    set_custom_db_dir();
    VEK_UTIL::check(m_vek.get(), can_save, can_generate, message, has_warning, true);
    if (can_save || cfg_is_on("VEK_ALWAYS_ALLOW_SAVE_FILE", false)) {
        make_paths_relative(m_vek.get());
        const bool was_saved = VEK_UTIL::save(m_vek.get(), VEK_GUI_UTIL::to_local(path));
        make_paths_absolute(m_vek.get());
        if (was_saved) {
            MOK_FRAME_WND::save_file(path);
            return true;
        }
    }
    show_failure("Failed to save setting file. %s", message);
    return true;
}

bool VEK_FRAME_WND::save_as(const FIO_PATH& /*path*/)
{
    NIVO_NATIVE_FILE_DLG dialog(this);
    dialog.set_special_mode(NIVO_NATIVE_FILE_DLG::SPECIAL_MODE_SAVE_DOCUMENT);
    dialog.enable_checkbox(false);
    dialog.setNameFilters({get_setup_file_filter()});
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setWindowTitle(tr("Save As"));
    if (dialog.exec() != QDialog::Accepted) {
        return false;
    }
    FIO_PATH chosen = VEK_GUI_UTIL::to_local(dialog.selectedFiles().constFirst());
    chosen.extension(fio_get_default_extension_string(FIO_VEK_SETUP_FILE), std::string());
    return save_file(VEK_GUI_UTIL::from_local(chosen.fullpath()));
}

void VEK_FRAME_WND::show_failure(const char* format, const std::string& message)
{
    // More than this does not fit on a small screen: the rest is there on demand.
    constexpr int MAX_LINES = 15;
    const QStringList lines = VEK_GUI_UTIL::from_local(message).split(QLatin1Char('\n'));
    QString shown = lines.mid(0, MAX_LINES).join(QLatin1Char('\n'));
    if (lines.size() > MAX_LINES) {
        shown += tr("\n... and %1 more").arg(lines.size() - MAX_LINES);
    }
    QString text = QString::fromLatin1(format);
    text.replace(QStringLiteral("%s"), shown);
    QMessageBox box(QMessageBox::Critical, tr("Imagewright"), tr(text.toUtf8().constData()), QMessageBox::Ok,
                    this);
    // A file name may look like markup.
    box.setTextFormat(Qt::PlainText);
    if (lines.size() > MAX_LINES) {
        box.setDetailedText(lines.join(QLatin1Char('\n')));
    }
    box.exec();
}
