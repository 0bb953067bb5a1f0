#include "vek_tab_output_files.h"

#include "fio_file_system.h"
#include "mok_app.h"
#include "mok_ui_mgr.h"
#include "msg_internal_error.h"
#include "nivo_native_file_dlg.h"
#include "nivo_safe_connect.h"
#include "vek_db.h"
#include "vek_dlg_output_file_properties.h"
#include "vek_file_assistant.h"
#include "vek_frame_wnd_cache.h"
#include "vek_gui_util.h"
#include "vek_tree_output_files.h"

#include <QEvent>
#include <QFormLayout>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace
{

std::string get_default_directory()
{
    std::string directory = VEK_GUI_UTIL::get_working_directory();
    if (directory.empty()) {
        directory = FIO_FILE_SYSTEM::get_current_directory();
    }
    const std::string text = VEK_GUI_UTIL::format_path(directory).fullpath();
    return text.empty() ? "." : text;
}

QPushButton* create_button(const QString& text, const QString& name, const QKeySequence& shortcut)
{
    auto* const button = new QPushButton(text);
    button->setObjectName(name);
    button->setShortcut(shortcut);
    button->setToolTip(shortcut.toString(QKeySequence::NativeText));
    return button;
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
    create_connections();
    m_name_edit->installEventFilter(this);
    m_directory_edit->installEventFilter(this);
    m_name_edit->setText(QString::fromLatin1(VEK_DEFAULT_OUTPUT_FILE_NAME));
    m_directory_edit->setText(VEK_GUI_UTIL::from_local(get_default_directory()));
}

void VEK_TAB_OUTPUT_FILES::create_widgets()
{
    m_directory_edit = new QLineEdit;
    m_directory_edit->setObjectName(QStringLiteral("m_directory_edit"));
    m_browse_button =
        create_button(tr("Browse..."), QStringLiteral("m_browse_button"), QStringLiteral("Alt+B"));
    m_name_edit = new QLineEdit;
    m_name_edit->setObjectName(QStringLiteral("m_name_edit"));
    m_file_type_tree = new VEK_TREE_OUTPUT_FILES(m_vek, m_cache, nullptr);
    m_file_type_tree->setObjectName(QStringLiteral("m_file_type_tree"));
    m_file_type_tree->setAccessibleName(tr("Output files"));
    m_edit_button = create_button(tr("Edit..."), QStringLiteral("m_edit_button"), QStringLiteral("Alt+E"));
    m_edit_button->setEnabled(false);

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
    grid->addWidget(m_file_type_tree, 3, 0);
    grid->addWidget(m_edit_button, 3, 1, Qt::AlignTop);

    // A layout within a form row is not the label's buddy by itself.
    qobject_cast<QLabel*>(form->labelForField(directory_box))->setBuddy(m_directory_edit);
    QWidget* const tab_order[] = {m_directory_edit, m_browse_button, m_name_edit, m_file_type_tree,
                                  m_edit_button};
    for (std::size_t next = 1; next < std::size(tab_order); ++next) {
        setTabOrder(tab_order[next - 1], tab_order[next]);
    }
}

void VEK_TAB_OUTPUT_FILES::create_connections()
{
    const char* const text_changed = SIGNAL(textChanged(const QString&));
    const struct {
        QObject* sender;
        const char* signal;
        QObject* receiver;
        const char* slot;
    } connections[] = {
        {m_directory_edit, text_changed, this, SLOT(set_directory(const QString&))},
        {m_browse_button, SIGNAL(clicked()), this, SLOT(browse_directory())},
        {m_name_edit, text_changed, m_file_type_tree, SLOT(update_file_name(const QString&))},
        {m_file_type_tree, SIGNAL(selection_changed()), this, SLOT(update_edit_button())},
        {m_file_type_tree, SIGNAL(check_state_changed()), this, SLOT(update_edit_button())},
        {m_edit_button, SIGNAL(clicked()), this, SLOT(edit())},
        {m_file_type_tree, SIGNAL(check_state_changed()), this, SIGNAL(output_file_check_state_changed())},
    };
    for (const auto& connection : connections) {
        nivo_safe_connect(connection.sender, connection.signal, connection.receiver, connection.slot,
                          Qt::AutoConnection, __FILE__, __LINE__);
    }
}

void VEK_TAB_OUTPUT_FILES::refresh()
{
    const auto output_files = VEK_FILE_ASSISTANT::get_output_file_elements(m_vek.get());
    if (output_files.empty()) {
        m_name_edit->setText(QString::fromLatin1(VEK_DEFAULT_OUTPUT_FILE_NAME));
        m_directory_edit->setText(VEK_GUI_UTIL::from_local(get_default_directory()));
    } else {
        const auto* const first = output_files.front();
        m_name_edit->setText(VEK_GUI_UTIL::from_local(first->name));
        m_directory_edit->setText(
            VEK_GUI_UTIL::from_local(VEK_GUI_UTIL::format_path(first->directory).fullpath()));
    }
    m_file_type_tree->refresh();
}

void VEK_TAB_OUTPUT_FILES::reset()
{
    m_edit_button->setEnabled(false);
}

void VEK_TAB_OUTPUT_FILES::set_vek(std::shared_ptr<PGM_COMMON_XML_VEK_VEK> vek)
{
    VEK_ASSERT(vek != nullptr);
    m_vek = std::move(vek);
    m_file_type_tree->set_vek(m_vek);
}

bool VEK_TAB_OUTPUT_FILES::eventFilter(QObject* object, QEvent* event)
{
    if (event->type() == QEvent::FocusOut) {
        if (object == m_name_edit && m_name_edit->text().isEmpty()) {
            m_name_edit->setText(QString::fromLatin1(VEK_DEFAULT_OUTPUT_FILE_NAME));
        } else if (object == m_directory_edit && m_directory_edit->text().isEmpty()) {
            m_directory_edit->setText(VEK_GUI_UTIL::from_local(get_default_directory()));
        }
    }
    return QObject::eventFilter(object, event);
}

void VEK_TAB_OUTPUT_FILES::refresh_output_file_tree(PGMIO_CONFIG_SCHEME /*mode*/, bool changed)
{
    if (changed) {
        m_file_type_tree->refresh();
    }
}

void VEK_TAB_OUTPUT_FILES::set_directory(const QString& text)
{
    m_cache->output_directory = text.isEmpty() ? std::string(".") : VEK_GUI_UTIL::to_local(text);
    VEK_ASSERT(m_vek != nullptr);
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
    // The process stays in the directory when the dialog closes.
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

void VEK_TAB_OUTPUT_FILES::update_edit_button()
{
    const std::vector<VEK_FILE_TYPE> branch = m_file_type_tree->get_current_file_type();
    if (branch.empty()) {
        m_edit_button->setEnabled(false);
        return;
    }
    const VEK_FILE_TYPE file_type = branch.back();
    VEK_ASSERT(file_type != VEK_INVALID_FILE_TYPE);
    m_edit_button->setEnabled(m_file_type_tree->get_check_state(branch) == Qt::Checked &&
                              VEK_DB::get_has_option(file_type));
}

void VEK_TAB_OUTPUT_FILES::edit()
{
    std::vector<VEK_FILE_TYPE> branch = m_file_type_tree->get_current_file_type();
    VEK_ASSERT(!branch.empty());
    const auto take_last = [&branch] {
        if (branch.empty()) {
            return VEK_INVALID_FILE_TYPE;
        }
        const VEK_FILE_TYPE last = branch.back();
        branch.pop_back();
        return last;
    };
    const VEK_FILE_TYPE file_type = take_last();
    const VEK_FILE_TYPE parent = take_last();
    const VEK_FILE_TYPE grandparent = take_last();
    VEK_DLG_OUTPUT_FILE_PROPERTIES dialog(m_vek, file_type, parent, grandparent, nullptr, Qt::WindowFlags());
    if (dialog.exec() == QDialog::Accepted) {
        const bool success =
            VEK_FILE_ASSISTANT::set(m_vek.get(), VEK_CMD_OPT_OUTPUT_FILE, dialog.get_params());
        VEK_ASSERT(success);
    }
}
