#ifndef VEK_DLG_PUF_PARTITION_PROPERTIES_H
#define VEK_DLG_PUF_PARTITION_PROPERTIES_H

#include "fio_types.h"
#include "nivo_dialog.h"

#include <memory>
#include <string>

class PGM_COMMON_XML_ELEMENT;
class PGM_COMMON_XML_VEK_VEK;
class QComboBox;
class QLineEdit;

/// The two raw files of a PUF partition: a PUF file, and a WKEY file that means something only with it. The
/// dialog writes nothing: the caller reads the two when it has been accepted.
class VEK_DLG_PUF_PARTITION_PROPERTIES : public NIVO_DIALOG
{
    Q_OBJECT
public:
    VEK_DLG_PUF_PARTITION_PROPERTIES(std::shared_ptr<PGM_COMMON_XML_VEK_VEK> vek, const std::string& name,
                                     QWidget* parent, Qt::WindowFlags flags = Qt::WindowFlags());

    /// An element without an item selects "None". Items without an element pointer are the internal error
    /// "data.canConvert<void*>()".
    void set_puf_file(const PGM_COMMON_XML_ELEMENT* element);
    void set_wkey_file(const PGM_COMMON_XML_ELEMENT* element);
    const PGM_COMMON_XML_ELEMENT* get_puf_file() const;
    /// Null without a PUF file, whatever is selected.
    const PGM_COMMON_XML_ELEMENT* get_wkey_file() const;

private slots:
    void update_wkey_file_combo(int index);

private:
    void populate_puf_file_combo();
    void populate_wkey_file_combo();
    void populate_combo(QComboBox& combo, FIO_EXTENSION_TYPE extension) const;

    std::shared_ptr<PGM_COMMON_XML_VEK_VEK> m_vek;
    std::string m_name;
    QLineEdit* m_name_edit;
    QComboBox* m_puf_file_combo;
    QComboBox* m_wkey_file_combo;
};

#endif
