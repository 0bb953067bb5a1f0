#ifndef VEK_TAB_OUTPUT_FILES_H
#define VEK_TAB_OUTPUT_FILES_H

#include "pgmio_config_scheme.h"

#include <QWidget>

#include <memory>

class PGM_COMMON_XML_VEK_VEK;
class QLineEdit;
class QPushButton;
class VEK_LIST_VIEW;
struct VEK_FRAME_WND_CACHE;

/// The first tab: output directory, base name, and the output files of the document.
///
/// There is one base name and one directory for all output files: what the edits say goes into the cache and
/// into every output file of the document. On a refresh they follow the first one.
class VEK_TAB_OUTPUT_FILES : public QWidget
{
    Q_OBJECT
public:
    VEK_TAB_OUTPUT_FILES(std::shared_ptr<PGM_COMMON_XML_VEK_VEK> vek,
                         std::shared_ptr<VEK_FRAME_WND_CACHE> cache, QWidget* parent, Qt::WindowFlags flags);

    /// Takes another document; does not show it yet.
    void set_vek(std::shared_ptr<PGM_COMMON_XML_VEK_VEK> vek);
    /// Shows the document, and announces each of its output files.
    void refresh();
    /// Takes the selection away.
    void reset();

    /// A field left empty gets its default back when it loses the focus.
    bool eventFilter(QObject* object, QEvent* event) override;

public slots:
    /// Shows the document anew if `changed`; the mode is not looked at.
    void refresh_output_file_tree(PGMIO_CONFIG_SCHEME mode, bool changed);
    void set_directory(const QString& text);
    void browse_directory();
    void update_file_name(const QString& name);

signals:
    /// With the text as typed.
    void directory_changed(const QString& directory);
    /// The document has another set of output files, or has been read anew: once for each of them.
    void output_file_check_state_changed();

private:
    void create_widgets();
    void refresh_tree();
    void show_output_files();

    std::shared_ptr<PGM_COMMON_XML_VEK_VEK> m_vek;
    std::shared_ptr<VEK_FRAME_WND_CACHE> m_cache;
    QLineEdit* m_name_edit = nullptr;
    QLineEdit* m_directory_edit = nullptr;
    QPushButton* m_browse_button = nullptr;
    VEK_LIST_VIEW* m_file_type_tree = nullptr;
};

#endif
