#ifndef NIVO_NATIVE_FILE_DLG_H
#define NIVO_NATIVE_FILE_DLG_H

#include <QFileDialog>

/// The file dialog of the host. It opens in the current directory of the process. Saving asks before it
/// replaces a file.
///
/// A test answers the dialog in advance: the next exec() then shows nothing, keeps what it was asked, and
/// returns at once. Each answer serves once.
class NIVO_NATIVE_FILE_DLG : public QFileDialog
{
    Q_OBJECT
public:
    enum SPECIAL_MODE : int {
        SPECIAL_MODE_NONE = 0,
        SPECIAL_MODE_OPEN_DOCUMENT = 1, ///< a document of the window; may offer the checkbox
        /// The same for saving. A document is saved with the extension of the first name filter, whatever the
        /// user types, so the file of that name is the one that is asked about.
        SPECIAL_MODE_SAVE_DOCUMENT = 2,
    };

    /// What the dialog was asked when it was answered.
    struct QUESTION {
        QString title;
        QStringList name_filters;
        QFileDialog::FileMode file_mode = QFileDialog::AnyFile;
        QFileDialog::AcceptMode accept_mode = QFileDialog::AcceptOpen;
        QFileDialog::Options options;
        QString directory; ///< absolute
        int special_mode = SPECIAL_MODE_NONE;
        bool has_checkbox = false;
        QWidget* parent = nullptr; ///< to compare only
    };

    explicit NIVO_NATIVE_FILE_DLG(QWidget* parent = nullptr);

    void set_special_mode(int mode);
    int get_special_mode() const { return m_special_mode; }
    /// Offers, in the special modes, the box "Remember in Open Recent". Starts without.
    void enable_checkbox(bool enabled);
    /// True unless the user took the tick off.
    bool is_checkbox_checked() const { return m_checkbox_checked; }

    int exec() override;
    /// As in the base, or what the answer given in advance says.
    QStringList selectedFiles() const;
    QString selectedNameFilter() const;

    /// The next dialog is accepted with these files. `name_filter` empty: the first one of the dialog.
    static void answer_next(const QStringList& files, const QString& name_filter = QString());
    /// The next dialog is rejected.
    static void reject_next();
    /// Whether an answer is still waiting for its dialog.
    static bool has_answer();
    /// Drops all answers that are waiting.
    static void clear_answers();
    /// What the last dialog that was answered in advance had been asked.
    static const QUESTION& last_question();

private:
    void add_checkbox();
    int exec_to_save_document();
    bool may_replace(const QString& path);

    int m_special_mode = SPECIAL_MODE_NONE;
    bool m_has_checkbox = false;
    bool m_checkbox_checked = true;
    bool m_was_answered = false;
    QStringList m_answered_files;
    QString m_answered_name_filter;
};

#endif
