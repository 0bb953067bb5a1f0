#include "vek_tab_output_files.h"

#include "fio_file_system.h"
#include "msg_internal_error.h"
#include "nivo_native_file_dlg.h"
#include "nivo_safe_connect.h"
#include "vek_db.h"
#include "vek_file_assistant.h"
#include "vek_frame_wnd_cache.h"
#include "vek_gui_util.h"
#include "vek_list_view.h"

#include <QEvent>
#include <QFormLayout>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace
{

QString get_default_directory()
{
    std::string directory = VEK_GUI_UTIL::get_working_directory();
    if (directory.empty()) {
        directory = FIO_FILE_SYSTEM::get_current_directory();
    }
    const std::string text = VEK_GUI_UTIL::format_path(directory).fullpath();
    return text.empty() ? QStringLiteral(".") : VEK_GUI_UTIL::from_local(text);
}

VEK_FILE_TYPE get_file_type(const std::string& word)
{
    return VEK_DB_UTIL::get_vek_file_type_enum(VEK_FILE_ASSISTANT::convert_string_to_xml_enum(word));
}

std::string get_extension(VEK_FILE_TYPE type)
{
    return fio_get_extension_string(VEK_DB::get_fio_ext_enum(type));
}

/// A secondary file carries the extension of its parent in its name, so that those of two parents stay apart.
std::string get_secondary_name(const std::string& base_name, VEK_FILE_TYPE parent)
{
    const std::string extension = get_extension(parent);
    return base_name + "_" + (extension.empty() ? extension : extension.substr(1));
}

/// The child suffix of the group through which the output file was chosen.
std::string get_group_suffix(const PGM_COMMON_XML_VEK_OUTPUT_FILE& output_file)
{
    if (VEK_FILE_ASSISTANT::convert_string_to_bool(output_file.cvp)) {
        return VEK_DB::get_child_file_name_suffix(VEK_CVP_GROUP_FILE_TYPE);
    }
    if (VEK_FILE_ASSISTANT::convert_string_to_bool(output_file.hps)) {
        return VEK_DB::get_child_file_name_suffix(VEK_HPS_GROUP_FILE_TYPE);
    }
    return {};
}

QStringList make_row(VEK_FILE_TYPE type, const std::string& file_name)
{
    return {VEK_GUI_UTIL::from_local(VEK_DB::get_description(type)), VEK_GUI_UTIL::from_local(file_name)};
}

} // namespace

VEK_TAB_OUTPUT_FILES::VEK_TAB_OUTPUT_FILES(std::shared_ptr<PGM_COMMON_XML_VEK_VEK> vek,
                                           std::shared_ptr<VEK_FRAME_WND_CACHE> cache, QWidget* parent,
                                           Qt::WindowFlags flags)
    : QWidget(parent, flags), m_vek(std::move(vek)), m_cache(std::move(cache))
{
    VEK_ASSERT(m_vek != nullptr);
    VEK_ASSERT(m_cache != nullptr);
    create_widgets();
    nivo_safe_connect(m_directory_edit, SIGNAL(textChanged(const QString&)), this,
                      SLOT(set_directory(const QString&)), Qt::AutoConnection, __FILE__, __LINE__);
    nivo_safe_connect(m_browse_button, SIGNAL(clicked()), this, SLOT(browse_directory()), Qt::AutoConnection,
                      __FILE__, __LINE__);
    nivo_safe_connect(m_name_edit, SIGNAL(textChanged(const QString&)), this,
                      SLOT(update_file_name(const QString&)), Qt::AutoConnection, __FILE__, __LINE__);
    m_name_edit->installEventFilter(this);
    m_directory_edit->installEventFilter(this);
    m_name_edit->setText(QString::fromLatin1(VEK_DEFAULT_OUTPUT_FILE_NAME));
    m_directory_edit->setText(get_default_directory());
}

void VEK_TAB_OUTPUT_FILES::create_widgets()
{
    m_directory_edit = new QLineEdit;
    m_directory_edit->setObjectName(QStringLiteral("m_directory_edit"));
    m_browse_button = new QPushButton(tr("Browse..."));
    m_browse_button->setObjectName(QStringLiteral("m_browse_button"));
    m_name_edit = new QLineEdit;
    m_name_edit->setObjectName(QStringLiteral("m_name_edit"));
    m_file_type_tree = new VEK_LIST_VIEW({tr("Description"), tr("File Name")}, nullptr);
    m_file_type_tree->setObjectName(QStringLiteral("m_file_type_tree"));
    m_file_type_tree->setAccessibleName(tr("Output files"));

    auto* const line = new QFrame;
    line->setFrameShape(QFrame::HLine);
    line->setFrameShadow(QFrame::Sunken);
    auto* const directory_box = new QHBoxLayout;
    directory_box->addWidget(m_directory_edit);
    directory_box->addWidget(m_browse_button);
    auto* const form = new QFormLayout;
    form->addRow(tr("Output directory:"), directory_box);
    form->addRow(tr("Name:"), m_name_edit);
    auto* const grid = new QGridLayout(this);
    grid->addWidget(new QLabel(tr("Specify one or more programming files to generate.")), 0, 0, 1, 2);
    grid->addWidget(line, 1, 0, 1, 2);
    grid->addLayout(form, 2, 0, 1, 2);
    grid->addWidget(m_file_type_tree, 3, 0, 1, 2);
}

void VEK_TAB_OUTPUT_FILES::set_vek(std::shared_ptr<PGM_COMMON_XML_VEK_VEK> vek)
{
    VEK_ASSERT(vek != nullptr);
    m_vek = std::move(vek);
}

void VEK_TAB_OUTPUT_FILES::refresh()
{
    const auto output_files = VEK_FILE_ASSISTANT::get_output_file_elements(m_vek.get());
    if (output_files.empty()) {
        m_name_edit->setText(QString::fromLatin1(VEK_DEFAULT_OUTPUT_FILE_NAME));
        m_directory_edit->setText(get_default_directory());
    } else {
        const std::string directory = output_files.front()->directory;
        m_name_edit->setText(VEK_GUI_UTIL::from_local(output_files.front()->name));
        m_directory_edit->setText(VEK_GUI_UTIL::from_local(VEK_GUI_UTIL::format_path(directory).fullpath()));
    }
    refresh_tree();
}

void VEK_TAB_OUTPUT_FILES::reset()
{
    m_file_type_tree->clearSelection();
}

bool VEK_TAB_OUTPUT_FILES::eventFilter(QObject* object, QEvent* event)
{
    if (event->type() == QEvent::FocusOut) {
        if (object == m_name_edit && m_name_edit->text().isEmpty()) {
            m_name_edit->setText(QString::fromLatin1(VEK_DEFAULT_OUTPUT_FILE_NAME));
        }
        if (object == m_directory_edit && m_directory_edit->text().isEmpty()) {
            m_directory_edit->setText(get_default_directory());
        }
    }
    return QWidget::eventFilter(object, event);
}

void VEK_TAB_OUTPUT_FILES::refresh_output_file_tree(PGMIO_CONFIG_SCHEME /*mode*/, bool changed)
{
    if (changed) {
        refresh_tree();
    }
}

void VEK_TAB_OUTPUT_FILES::set_directory(const QString& text)
{
    VEK_ASSERT(m_vek != nullptr);
    m_cache->output_directory = text.isEmpty() ? std::string(".") : VEK_GUI_UTIL::to_local(text);
    for (const auto* const output_file : VEK_FILE_ASSISTANT::get_output_file_elements(m_vek.get())) {
        const bool success =
            VEK_FILE_ASSISTANT::set(m_vek.get(), VEK_CMD_OPT_OUTPUT_FILE,
                                    {{VEK_CMD_PARAM_OUTPUT_FILE_TYPE, output_file->type},
                                     {VEK_CMD_PARAM_OUTPUT_FILE_DIRECTORY, m_cache->output_directory}});
        VEK_ASSERT(success);
    }
    emit directory_changed(text);
}

void VEK_TAB_OUTPUT_FILES::browse_directory()
{
    FIO_PATH directory = VEK_GUI_UTIL::to_local(m_directory_edit->text());
    const std::string base = VEK_GUI_UTIL::get_working_directory();
    if (!base.empty()) {
        FIO_FILE_SYSTEM::set_current_directory(base);
    }
    directory.become_absolute(std::string());
    // The dialog opens where the process is, so this stays changed when it closes.
    FIO_FILE_SYSTEM::set_current_directory(directory.fullpath());

    NIVO_NATIVE_FILE_DLG dialog(this);
    dialog.setFileMode(QFileDialog::Directory);
    dialog.setOption(QFileDialog::ShowDirsOnly, true);
    dialog.setDirectory(VEK_GUI_UTIL::from_local(directory.fullpath()));
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    dialog.setWindowTitle(tr("Browse"));
    if (dialog.exec() != QDialog::Accepted) {
        return;
    }
    const QStringList selected = dialog.selectedFiles();
    VEK_ASSERT(selected.size() == 1);
    FIO_PATH chosen;
    chosen.directory(VEK_GUI_UTIL::to_local(selected.constFirst()));
    m_directory_edit->setText(VEK_GUI_UTIL::from_local(VEK_GUI_UTIL::format_path(chosen).fullpath()));
}

void VEK_TAB_OUTPUT_FILES::update_file_name(const QString& name)
{
    m_cache->output_name = VEK_GUI_UTIL::to_local(name);
    for (const auto* const output_file : VEK_FILE_ASSISTANT::get_output_file_elements(m_vek.get())) {
        bool success = VEK_FILE_ASSISTANT::set(m_vek.get(), VEK_CMD_OPT_OUTPUT_FILE,
                                               {{VEK_CMD_PARAM_OUTPUT_FILE_TYPE, output_file->type},
                                                {VEK_CMD_PARAM_OUTPUT_FILE_NAME, m_cache->output_name}});
        VEK_ASSERT(success);
        const std::string secondary_name =
            get_secondary_name(m_cache->output_name, get_file_type(output_file->type));
        for (const auto* const secondary : VEK_FILE_ASSISTANT::get_secondary_file_elements(output_file)) {
            success =
                VEK_FILE_ASSISTANT::set(m_vek.get(), VEK_CMD_OPT_OUTPUT_FILE,
                                        {{VEK_CMD_PARAM_OUTPUT_FILE_TYPE, output_file->type},
                                         {VEK_CMD_PARAM_OUTPUT_FILE_SECONDARY_FILE_TYPE, secondary->type},
                                         {VEK_CMD_PARAM_OUTPUT_FILE_SECONDARY_FILE_NAME, secondary_name}});
            VEK_ASSERT(success);
        }
    }
    show_output_files();
}

void VEK_TAB_OUTPUT_FILES::refresh_tree()
{
    show_output_files();
    const std::size_t count = VEK_FILE_ASSISTANT::get_output_file_elements(m_vek.get()).size();
    for (std::size_t announced = 0; announced < count; ++announced) {
        emit output_file_check_state_changed();
    }
}

void VEK_TAB_OUTPUT_FILES::show_output_files()
{
    m_file_type_tree->clear();
    for (const auto* const output_file : VEK_FILE_ASSISTANT::get_output_file_elements(m_vek.get())) {
        const VEK_FILE_TYPE type = get_file_type(output_file->type);
        const std::string suffix = VEK_DB::get_file_name_suffix(type);
        QStandardItem* const row = m_file_type_tree->add_row(
            nullptr, make_row(type, output_file->name + suffix + get_group_suffix(*output_file) +
                                        get_extension(type)));
        for (const auto* const secondary : VEK_FILE_ASSISTANT::get_secondary_file_elements(output_file)) {
            const VEK_FILE_TYPE secondary_type = get_file_type(secondary->type);
            m_file_type_tree->add_row(row,
                                      make_row(secondary_type, secondary->name + suffix +
                                                                   VEK_DB::get_child_file_name_suffix(type) +
                                                                   get_extension(secondary_type)));
        }
    }
    m_file_type_tree->show_rows();
}
