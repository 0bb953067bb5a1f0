#ifndef VEK_TAB_INPUT_FILES_H
#define VEK_TAB_INPUT_FILES_H

#include "fio_types.h"
#include "vek_file_type.h"

#include <QWidget>

#include <memory>
#include <string>
#include <vector>

class FIO_PATH;
class PGM_COMMON_XML_ELEMENT;
class PGM_COMMON_XML_VEK_VEK;
class QPushButton;
class VEK_TREE_INPUT_FILES;
struct VEK_FRAME_WND_CACHE;

/// The second tab: the tree of bitstreams and raw data files, and the buttons that add and remove them and
/// open their properties.
class VEK_TAB_INPUT_FILES : public QWidget
{
    Q_OBJECT
public:
    VEK_TAB_INPUT_FILES(std::shared_ptr<PGM_COMMON_XML_VEK_VEK> vek,
                        std::shared_ptr<VEK_FRAME_WND_CACHE> cache, QWidget* parent, Qt::WindowFlags flags);

    /// Takes another document; does not show it yet.
    void set_vek(std::shared_ptr<PGM_COMMON_XML_VEK_VEK> vek);
    void refresh();
    /// Removes all files from the document, and whatever refers to them.
    void reset();

    /// The kinds of file that all output files of the document take, as update_input_file_types found them.
    const std::vector<FIO_FILE_TYPE>& get_input_file_types() const { return m_input_file_types; }
    /// The first category that the primary output files have in common.
    VEK_FILE_CATEGORY get_file_category() const { return m_file_category; }

signals:
    /// A file has gone or come.
    void input_files_changed();
    /// The session has another device; empty when the last bitstream has gone.
    void device_changed(const QString& device_name);

public slots:
    /// These three ask for a file. Of several that were chosen, the first is added.
    void add_bitstream();
    void add_raw_data();
    void add_file();
    /// Removes what is current, after a question where files hang on it.
    void remove();
    /// Opens the properties of the current file. Internal error when the current row has none.
    void properties();
    /// The document has other output files: finds out anew what they take.
    void update_input_file_types();
    /// A bitstream takes further files in one family alone.
    void update_add_file_button_visible();
    void update_buttons();

private:
    enum class FILE_KIND { BITSTREAM, RAW_DATA };
    QStringList get_name_filters(FILE_KIND kind) const;
    bool ask_for_file(const QString& title, const QStringList& name_filters, FIO_PATH& path);
    PGM_COMMON_XML_ELEMENT* get_current_element() const;
    bool has_properties(const PGM_COMMON_XML_ELEMENT& element) const;
    QPushButton* add_button(const char* name, const QString& text, const char* slot);

    std::shared_ptr<PGM_COMMON_XML_VEK_VEK> m_vek;
    std::shared_ptr<VEK_FRAME_WND_CACHE> m_cache;
    std::vector<FIO_FILE_TYPE> m_input_file_types;
    VEK_FILE_CATEGORY m_file_category = VEK_FILE_CATEGORY_BITSTREAM;
    VEK_TREE_INPUT_FILES* m_input_file_tree = nullptr;
    QPushButton* m_add_bitstream_button = nullptr;
    QPushButton* m_add_raw_data_button = nullptr;
    QPushButton* m_add_file_button = nullptr;
    QPushButton* m_remove_button = nullptr;
    QPushButton* m_properties_button = nullptr;
};

#endif
