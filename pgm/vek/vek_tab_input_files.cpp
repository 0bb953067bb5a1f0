#include "vek_tab_input_files.h"

#include "fio_path.h"
#include "msg_internal_error.h"
#include "vek_db.h"
#include "vek_file_assistant.h"
#include "vek_frame_wnd_cache.h"
#include "vek_gui_util.h"
#include "vek_list_view.h"

#include <QGridLayout>
#include <QLabel>

namespace
{

QString get_filename(const std::string& path)
{
    return VEK_GUI_UTIL::from_local(FIO_PATH(path).filename());
}

QString get_shown_directory(const std::string& path)
{
    return VEK_GUI_UTIL::from_local(VEK_GUI_UTIL::format_path(path).full_directory());
}

QString get_switch_word(const std::string& text)
{
    return VEK_FILE_ASSISTANT::convert_string_to_bool(text) ? QStringLiteral("On") : QStringLiteral("Off");
}

} // namespace

VEK_TAB_INPUT_FILES::VEK_TAB_INPUT_FILES(std::shared_ptr<PGM_COMMON_XML_VEK_VEK> vek,
                                         std::shared_ptr<VEK_FRAME_WND_CACHE> cache, QWidget* parent,
                                         Qt::WindowFlags flags)
    : QWidget(parent, flags), m_vek(std::move(vek)), m_cache(std::move(cache))
{
    VEK_ASSERT(m_vek != nullptr);
    VEK_ASSERT(m_cache != nullptr);
    m_input_file_tree = new VEK_LIST_VIEW(
        {tr("File Path"), tr("Type"), tr("Compression"), tr("Encryption"), tr("Directory")}, nullptr);
    m_input_file_tree->setObjectName(QStringLiteral("m_input_file_tree"));
    m_input_file_tree->setAccessibleName(tr("Input files"));
    m_file_types_label = new QLabel;
    m_file_types_label->setObjectName(QStringLiteral("m_file_types_label"));
    m_file_types_label->setWordWrap(true);
    m_multi_file_label =
        new QLabel(tr("A bitstream of this family may hold several files, which are chained."));
    m_multi_file_label->setObjectName(QStringLiteral("m_multi_file_label"));
    m_multi_file_label->setWordWrap(true);
    m_multi_file_label->setVisible(false);

    auto* const line = new QFrame;
    line->setFrameShape(QFrame::HLine);
    line->setFrameShadow(QFrame::Sunken);
    auto* const grid = new QGridLayout(this);
    grid->addWidget(new QLabel(tr("Specify one or more input files to convert.")), 0, 0);
    grid->addWidget(line, 1, 0);
    grid->addWidget(m_input_file_tree, 2, 0);
    grid->addWidget(m_file_types_label, 3, 0);
    grid->addWidget(m_multi_file_label, 4, 0);
}

void VEK_TAB_INPUT_FILES::set_vek(std::shared_ptr<PGM_COMMON_XML_VEK_VEK> vek)
{
    VEK_ASSERT(vek != nullptr);
    m_vek = std::move(vek);
}

void VEK_TAB_INPUT_FILES::refresh()
{
    m_input_file_tree->clear();
    for (const auto* const bitstream : VEK_FILE_ASSISTANT::get_bitstream_elements(m_vek.get())) {
        QStandardItem* const row =
            m_input_file_tree->add_row(nullptr, {VEK_GUI_UTIL::from_local(bitstream->id), tr("Bitstream")});
        for (const auto* const path : VEK_FILE_ASSISTANT::get_path_elements(m_vek.get(), bitstream->id)) {
            m_input_file_tree->add_row(row,
                                       {get_filename(path->text),
                                        VEK_GUI_UTIL::from_local(FIO_PATH(path->text).extension()).toUpper(),
                                        get_switch_word(path->compression), get_switch_word(path->encryption),
                                        get_shown_directory(path->text)});
        }
    }
    for (const auto* const raw_file : VEK_FILE_ASSISTANT::get_raw_file_elements(m_vek.get())) {
        m_input_file_tree->add_row(nullptr,
                                   {get_filename(raw_file->text), VEK_GUI_UTIL::from_local(raw_file->type),
                                    QString(), QString(), get_shown_directory(raw_file->text)});
    }
    m_input_file_tree->show_rows();
}

void VEK_TAB_INPUT_FILES::reset()
{
    const std::vector<std::string> bitstream_ids = VEK_FILE_ASSISTANT::get_bitstream_ids(m_vek.get());
    const std::vector<std::string> raw_file_ids = VEK_FILE_ASSISTANT::get_raw_file_ids(m_vek.get());
    for (const std::string& id : bitstream_ids) {
        remove_bitstream(id);
    }
    for (const std::string& id : raw_file_ids) {
        remove_raw_data(id);
    }
    refresh();
}

void VEK_TAB_INPUT_FILES::update_input_file_types()
{
    VEK_ASSERT(m_vek != nullptr);
    const std::vector<VEK_FILE_TYPE> types = VEK_FILE_ASSISTANT::get_output_file_types(m_vek.get());
    m_input_file_types = VEK_DB_UTIL::get_common_input_file_types(types);
    const std::vector<VEK_FILE_CATEGORY> categories =
        VEK_DB_UTIL::get_common_file_categories(VEK_DB_UTIL::get_primary_file_types(types));
    m_file_category = categories.empty() ? VEK_FILE_CATEGORY_BITSTREAM : categories.front();

    QStringList extensions;
    for (const FIO_FILE_TYPE type : m_input_file_types) {
        extensions.append(VEK_GUI_UTIL::from_local(fio_get_default_extension_string(type)));
    }
    m_file_types_label->setText(
        extensions.isEmpty() ? QString()
                             : tr("The output files take: %1").arg(extensions.join(QStringLiteral(", "))));
}

void VEK_TAB_INPUT_FILES::update_add_file_button_visible()
{
    VEK_ASSERT(m_cache != nullptr);
    m_multi_file_label->setVisible(m_cache->family == DEV_FAMILY_MULTI_FILE);
}

void VEK_TAB_INPUT_FILES::remove_bitstream(const std::string& id)
{
    std::vector<std::string> paths;
    for (const auto* const path : VEK_FILE_ASSISTANT::get_path_elements(m_vek.get(), id)) {
        paths.push_back(path->text);
    }
    for (const std::string& path : paths) {
        remove_sof_file(path, id);
    }
    // What had no file has not gone with its last one.
    if (VEK_FILE_ASSISTANT::get_bitstream_element(m_vek.get(), id) != nullptr) {
        const bool success = VEK_FILE_ASSISTANT::remove(m_vek.get(), VEK_CMD_OPT_BITSTREAM,
                                                        {{VEK_CMD_PARAM_BITSTREAM_ID, id}});
        VEK_ASSERT(success);
        VEK_FILE_ASSISTANT::remove(m_vek.get(), VEK_CMD_OPT_OUTPUT_FILE,
                                   {{VEK_CMD_PARAM_OUTPUT_FILE_BITSTREAM_ID, id}});
    }
}

void VEK_TAB_INPUT_FILES::remove_sof_file(const std::string& path, const std::string& id)
{
    const bool is_last = VEK_FILE_ASSISTANT::get_path_elements(m_vek.get(), id).size() == 1;
    bool success =
        VEK_FILE_ASSISTANT::remove(m_vek.get(), VEK_CMD_OPT_BITSTREAM,
                                   {{VEK_CMD_PARAM_BITSTREAM_ID, id}, {VEK_CMD_PARAM_BITSTREAM_PATH, path}});
    VEK_ASSERT(success);
    if (is_last) {
        success = VEK_FILE_ASSISTANT::remove(m_vek.get(), VEK_CMD_OPT_BITSTREAM,
                                             {{VEK_CMD_PARAM_BITSTREAM_ID, id}});
        VEK_ASSERT(success);
        success = VEK_FILE_ASSISTANT::remove(m_vek.get(), VEK_CMD_OPT_OUTPUT_FILE,
                                             {{VEK_CMD_PARAM_OUTPUT_FILE_BITSTREAM_ID, id}});
        VEK_ASSERT(success);
        for (const std::string& partition :
             VEK_FILE_ASSISTANT::get_partition_ids(m_vek.get(), id, std::string())) {
            VEK_FILE_ASSISTANT::remove(m_vek.get(), VEK_CMD_OPT_ASSIGNMENT,
                                       {{VEK_CMD_PARAM_ASSIGNMENT_PARTITION_ID, partition}});
        }
        if (VEK_FILE_ASSISTANT::get_bitstream_elements(m_vek.get()).empty()) {
            m_cache->family = DEV_FAMILY_NONE;
            m_cache->device = DEV_DEVICE_NONE;
            m_cache->device_name.clear();
            m_cache->config_mode = PGMIO_CONFIG_SCHEME_ILLEGAL;
            emit device_changed(QString());
        }
    }
    emit input_files_changed();
}

void VEK_TAB_INPUT_FILES::remove_raw_data(const std::string& id)
{
    const bool success =
        VEK_FILE_ASSISTANT::remove(m_vek.get(), VEK_CMD_OPT_RAW_FILE, {{VEK_CMD_PARAM_RAW_FILE_ID, id}});
    VEK_ASSERT(success);
    for (const std::string& partition :
         VEK_FILE_ASSISTANT::get_partition_ids(m_vek.get(), std::string(), id)) {
        VEK_FILE_ASSISTANT::remove(m_vek.get(), VEK_CMD_OPT_ASSIGNMENT,
                                   {{VEK_CMD_PARAM_ASSIGNMENT_PARTITION_ID, partition}});
    }
    emit input_files_changed();
}
