#include "nivo_native_file_dlg.h"

#include "fio_path.h"
#include "msg_internal_error.h"

#include <QCheckBox>
#include <QDir>
#include <QFileInfo>
#include <QGridLayout>
#include <QMessageBox>
#include <QRegularExpression>

#include <deque>

namespace
{
struct ANSWER {
    bool accepted = false;
    QStringList files;
    QString name_filter;
};

std::deque<ANSWER>& waiting_answers()
{
    static std::deque<ANSWER> answers;
    return answers;
}

NIVO_NATIVE_FILE_DLG::QUESTION& kept_question()
{
    static NIVO_NATIVE_FILE_DLG::QUESTION question;
    return question;
}

/// "vek" of "Setups (*.vek)"; empty for a filter without an extension.
QString extension_of(const QString& name_filter)
{
    static const QRegularExpression pattern(QStringLiteral("\\(\\*\\.([^\\s\\)]+)"));
    return pattern.match(name_filter).captured(1);
}

/// Where a document goes that the user wants under `path`.
QString document_path(const QString& path, const QString& extension)
{
    FIO_PATH document(path.toLocal8Bit().toStdString());
    document.extension(extension.toLocal8Bit().toStdString(), std::string());
    return QString::fromLocal8Bit(document.fullpath().c_str());
}
} // namespace

NIVO_NATIVE_FILE_DLG::NIVO_NATIVE_FILE_DLG(QWidget* parent)
    // Without a directory the dialog would go to the one that it was left in.
    : QFileDialog(parent, QString(), QDir::currentPath())
{
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
}

void NIVO_NATIVE_FILE_DLG::set_special_mode(int mode)
{
    VEK_ASSERT_TEXT(mode >= SPECIAL_MODE_NONE && mode <= SPECIAL_MODE_SAVE_DOCUMENT,
                    "the file dialog knows the special mode");
    m_special_mode = mode;
}

void NIVO_NATIVE_FILE_DLG::enable_checkbox(bool enabled)
{
    m_has_checkbox = enabled;
}

int NIVO_NATIVE_FILE_DLG::exec()
{
    m_was_answered = false;
    std::deque<ANSWER>& answers = waiting_answers();
    if (answers.empty()) {
        if (m_has_checkbox && m_special_mode != SPECIAL_MODE_NONE) {
            add_checkbox();
        }
        return m_special_mode == SPECIAL_MODE_SAVE_DOCUMENT ? exec_to_save_document() : QFileDialog::exec();
    }
    const ANSWER answer = answers.front();
    answers.pop_front();
    kept_question() = {windowTitle(),  nameFilters(),  fileMode(),
                       acceptMode(),   options(),      directory().absolutePath(),
                       m_special_mode, m_has_checkbox, parentWidget()};
    m_was_answered = true;
    m_answered_files = answer.files;
    m_answered_name_filter = answer.name_filter.isEmpty() ? nameFilters().value(0) : answer.name_filter;
    setResult(answer.accepted ? Accepted : Rejected);
    return result();
}

QStringList NIVO_NATIVE_FILE_DLG::selectedFiles() const
{
    return m_was_answered ? m_answered_files : QFileDialog::selectedFiles();
}

QString NIVO_NATIVE_FILE_DLG::selectedNameFilter() const
{
    return m_was_answered ? m_answered_name_filter : QFileDialog::selectedNameFilter();
}

int NIVO_NATIVE_FILE_DLG::exec_to_save_document()
{
    const QString extension = extension_of(nameFilters().value(0));
    setDefaultSuffix(extension);
    for (;;) {
        if (QFileDialog::exec() != Accepted) {
            return Rejected;
        }
        // The dialog itself has asked about the file that was typed.
        const QString typed = QFileDialog::selectedFiles().value(0);
        const QString document = document_path(typed, extension);
        if (document == typed || !QFileInfo::exists(document) || may_replace(document)) {
            return Accepted;
        }
    }
}

bool NIVO_NATIVE_FILE_DLG::may_replace(const QString& path)
{
    QMessageBox box(QMessageBox::Warning, windowTitle(),
                    tr("%1 already exists.\nDo you want to replace it?").arg(QFileInfo(path).fileName()),
                    QMessageBox::Yes | QMessageBox::No, parentWidget());
    box.setTextFormat(Qt::PlainText);
    box.setDefaultButton(QMessageBox::No);
    return box.exec() == QMessageBox::Yes;
}

void NIVO_NATIVE_FILE_DLG::add_checkbox()
{
    if (findChild<QCheckBox*>(QStringLiteral("remember_checkbox")) != nullptr) {
        return;
    }
    // Only the dialog that Qt draws itself has room for a widget of ours.
    setOption(QFileDialog::DontUseNativeDialog);
    QGridLayout* const grid = qobject_cast<QGridLayout*>(layout());
    VEK_ASSERT_TEXT(grid != nullptr, "grid != nullptr");
    QCheckBox* const checkbox = new QCheckBox(tr("&Remember in Open Recent"), this);
    checkbox->setObjectName(QStringLiteral("remember_checkbox"));
    checkbox->setChecked(m_checkbox_checked);
    connect(checkbox, &QCheckBox::toggled, this, [this](bool checked) { m_checkbox_checked = checked; });
    grid->addWidget(checkbox, grid->rowCount(), 0, 1, -1);
}

void NIVO_NATIVE_FILE_DLG::answer_next(const QStringList& files, const QString& name_filter)
{
    waiting_answers().push_back({true, files, name_filter});
}

void NIVO_NATIVE_FILE_DLG::reject_next()
{
    waiting_answers().push_back({});
}

bool NIVO_NATIVE_FILE_DLG::has_answer()
{
    return !waiting_answers().empty();
}

void NIVO_NATIVE_FILE_DLG::clear_answers()
{
    waiting_answers().clear();
}

const NIVO_NATIVE_FILE_DLG::QUESTION& NIVO_NATIVE_FILE_DLG::last_question()
{
    return kept_question();
}
