#include "vek_file_edit.h"

#include "fio_file_system.h"
#include "msg_internal_error.h"
#include "nivo_native_file_dlg.h"
#include "nivo_safe_connect.h"
#include "vek_gui_util.h"

#include <QHBoxLayout>
#include <QLineEdit>
#include <QToolButton>

namespace
{

/// Enough of a path to tell it from another.
constexpr int PATH_CHARACTERS = 32;

} // namespace

VEK_FILE_EDIT::VEK_FILE_EDIT(QWidget* parent) : QWidget(parent)
{
    m_line_edit = new QLineEdit(this);
    m_line_edit->setMinimumWidth(PATH_CHARACTERS * m_line_edit->fontMetrics().averageCharWidth());
    m_browse_button = new QToolButton(this);
    m_browse_button->setText(QStringLiteral("..."));
    m_browse_button->setToolTip(tr("Browse"));
    m_browse_button->setAccessibleName(tr("Browse"));
    m_browse_button->setFocusPolicy(Qt::StrongFocus);
    setFocusProxy(m_line_edit);

    auto* const layout = new QHBoxLayout(this);
    layout->setSpacing(0);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_line_edit);
    layout->addWidget(m_browse_button);

    nivo_safe_connect(m_browse_button, SIGNAL(clicked()), this, SLOT(browse()), Qt::AutoConnection, __FILE__,
                      __LINE__);
}

FIO_PATH VEK_FILE_EDIT::get_path() const
{
    const QString text = m_line_edit->text().trimmed();
    if (text.isEmpty()) {
        return {};
    }
    return VEK_GUI_UTIL::make_path_absolute(VEK_GUI_UTIL::to_local(text));
}

void VEK_FILE_EDIT::set_path(const FIO_PATH& path)
{
    m_line_edit->setText(VEK_GUI_UTIL::from_local(VEK_GUI_UTIL::format_path(path).fullpath()));
}

void VEK_FILE_EDIT::browse()
{
    FIO_PATH present = VEK_GUI_UTIL::to_local(m_line_edit->text());
    const std::string base = VEK_GUI_UTIL::get_working_directory();
    if (!base.empty()) {
        FIO_FILE_SYSTEM::set_current_directory(base);
        present.become_absolute(std::string());
    }
    // The dialog opens where the process is, so this stays changed when it closes.
    FIO_FILE_SYSTEM::set_current_directory(present.full_directory());

    NIVO_NATIVE_FILE_DLG dialog(this);
    dialog.setFileMode(m_file_mode);
    QStringList name_filters;
    for (const FIO_FILE_TYPE type : m_file_types) {
        name_filters.append(VEK_GUI_UTIL::from_local(fio_get_file_type_filter(type, true)));
    }
    dialog.setNameFilters(name_filters);
    dialog.setWindowTitle(tr("Browse"));
    if (dialog.exec() != QDialog::Accepted) {
        return;
    }

    FIO_PATH chosen = VEK_GUI_UTIL::to_local(dialog.selectedFiles().constFirst());
    if (!m_file_types.empty()) {
        const FIO_FILE_TYPE selected_file_type = get_file_type(dialog.selectedNameFilter());
        VEK_ASSERT(selected_file_type != FIO_INVALID_FILE);
        chosen.extension(fio_get_default_extension_string(selected_file_type), std::string());
    }
    const QString text = VEK_GUI_UTIL::from_local(VEK_GUI_UTIL::format_path(chosen).fullpath());
    m_line_edit->setText(text);
    emit fileEditTextChanged(text);
}

FIO_FILE_TYPE VEK_FILE_EDIT::get_file_type(const QString& name_filter) const
{
    FIO_FILE_TYPE match = FIO_INVALID_FILE;
    for (const FIO_FILE_TYPE type : m_file_types) {
        if (VEK_GUI_UTIL::from_local(fio_get_file_type_filter(type, true)) == name_filter) {
            match = type;
        }
    }
    return match;
}
