#ifndef VEK_TAB_OUTPUT_FILES_H
#define VEK_TAB_OUTPUT_FILES_H

#include "pgmio_config_scheme.h"

#include <QWidget>

#include <memory>

class PGM_COMMON_XML_VEK_VEK;
class QLineEdit;
class QPushButton;
class VEK_TREE_OUTPUT_FILES;
struct VEK_FRAME_WND_CACHE;

/// The first tab: output directory, base name, and the tree of output file types.
///
/// There is one base name and one directory for all output files: what the edits say goes into the cache and
/// into every output file of the document. On a refresh they follow the first one.
class VEK_TAB_OUTPUT_FILES : public QWidget
{
    Q_OBJECT
public:
    VEK_TAB_OUTPUT_FILES(std::shared_ptr<PGM_COMMON_XML_VEK_VEK> vek,
                         std::shared_ptr<VEK_FRAME_WND_CACHE> cache, QWidget* parent, Qt::WindowFlags flags);

    /// Shows the document. Each of its output files is announced as if it had just been ticked.
    void refresh();
    /// Puts the edit button out of use.
    void reset();
    /// Takes another document; does not show it yet.
    void set_vek(std::shared_ptr<PGM_COMMON_XML_VEK_VEK> vek);

    /// A field left empty gets its default back when it loses the focus.
    bool eventFilter(QObject* object, QEvent* event) override;

public slots:
    /// Rebuilds the tree if `changed`; the mode is that of the cache.
    void refresh_output_file_tree(PGMIO_CONFIG_SCHEME mode, bool changed);
    void set_directory(const QString& text);
    void browse_directory();
    /// There is something to edit when the current row is ticked and its type has options.
    void update_edit_button();
    /// Asks for the options of the current row.
    void edit();

signals:
    /// With the text as typed.
    void directory_changed(const QString& directory);
    /// A row has been ticked or unticked, or ticked again on a refresh.
    void output_file_check_state_changed();

private:
    void create_widgets();
    void create_connections();

    std::shared_ptr<PGM_COMMON_XML_VEK_VEK> m_vek;
    std::shared_ptr<VEK_FRAME_WND_CACHE> m_cache;
    QLineEdit* m_name_edit = nullptr;
    QLineEdit* m_directory_edit = nullptr;
    QPushButton* m_browse_button = nullptr;
    VEK_TREE_OUTPUT_FILES* m_file_type_tree = nullptr;
    QPushButton* m_edit_button = nullptr;
};

#endif
