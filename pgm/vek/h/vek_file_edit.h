#ifndef VEK_FILE_EDIT_H
#define VEK_FILE_EDIT_H

#include "fio_path.h"
#include "fio_types.h"

#include <QFileDialog>
#include <QWidget>

#include <vector>

class QLineEdit;
class QToolButton;

/// The path field of the dialogs: a line edit with a browse button. It shows paths relative to the host's
/// working directory and gives them back absolute.
class VEK_FILE_EDIT : public QWidget
{
    Q_OBJECT
public:
    explicit VEK_FILE_EDIT(QWidget* parent = nullptr);

    /// Absolute where the host has a working directory, else as typed; empty for a field of blanks.
    FIO_PATH get_path() const;
    /// Fires no signal.
    void set_path(const FIO_PATH& path);

    QLineEdit* get_line_edit() const { return m_line_edit; }
    QToolButton* get_browse_button() const { return m_browse_button; }
    /// One name filter of the browse dialog each, in this order. Starts with FIO_ANY_FILE alone.
    void set_file_types(std::vector<FIO_FILE_TYPE> file_types) { m_file_types = std::move(file_types); }
    /// What the browse dialog lets the user pick. Starts with any file.
    void set_file_mode(QFileDialog::FileMode file_mode) { m_file_mode = file_mode; }

public slots:
    /// Asks for a file. The dialog opens in the directory of the present text, which becomes that of the
    /// process and stays so. The file chosen gets the default extension of the chosen filter.
    void browse();

signals:
    /// The user has chosen another file with the browse button. Typing fires nothing.
    void fileEditTextChanged(const QString& text);

private:
    FIO_FILE_TYPE get_file_type(const QString& name_filter) const;

    QLineEdit* m_line_edit = nullptr;
    QToolButton* m_browse_button = nullptr;
    std::vector<FIO_FILE_TYPE> m_file_types{FIO_ANY_FILE};
    QFileDialog::FileMode m_file_mode = QFileDialog::AnyFile;
};

#endif
