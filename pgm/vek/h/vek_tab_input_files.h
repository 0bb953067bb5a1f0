#ifndef VEK_TAB_INPUT_FILES_H
#define VEK_TAB_INPUT_FILES_H

#include "fio_types.h"
#include "vek_file_type.h"

#include <QWidget>

#include <memory>
#include <string>
#include <vector>

class PGM_COMMON_XML_VEK_VEK;
class QLabel;
class VEK_LIST_VIEW;
struct VEK_FRAME_WND_CACHE;

/// The second tab: the bitstreams with their files, and the raw data files of the document.
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

public slots:
    /// The document has other output files: finds out anew what they take.
    void update_input_file_types();
    /// Tells, in the family where that is so, that a bitstream may hold several files.
    void update_add_file_button_visible();

signals:
    /// A file has gone or come.
    void input_files_changed();
    /// The session has another device; empty when the last bitstream has gone.
    void device_changed(const QString& device_name);

private:
    void remove_bitstream(const std::string& id);
    void remove_sof_file(const std::string& path, const std::string& id);
    void remove_raw_data(const std::string& id);

    std::shared_ptr<PGM_COMMON_XML_VEK_VEK> m_vek;
    std::shared_ptr<VEK_FRAME_WND_CACHE> m_cache;
    std::vector<FIO_FILE_TYPE> m_input_file_types;
    VEK_FILE_CATEGORY m_file_category = VEK_FILE_CATEGORY_BITSTREAM;
    VEK_LIST_VIEW* m_input_file_tree = nullptr;
    QLabel* m_file_types_label = nullptr;
    QLabel* m_multi_file_label = nullptr;
};

#endif
