#ifndef CUSTOM_DEVICE_DLG_H
#define CUSTOM_DEVICE_DLG_H

#include "custom_devices.h"
#include "nivo_dialog.h"

class QComboBox;
class QLineEdit;

/// Asks for a flash device of the user's own, and writes its file when it is accepted.
class CUSTOM_DEVICE_DLG : public NIVO_DIALOG
{
    Q_OBJECT
public:
    explicit CUSTOM_DEVICE_DLG(QWidget* parent);

    /// The name of the device that has been added.
    QString get_name() const;

private slots:
    void add_and_close();

private:
    /// False when a number is none, which is told.
    bool read(CUSTOM_DEVICE& device);
    void refuse(const QString& reason);

    QLineEdit* m_name_edit = nullptr;
    QComboBox* m_type_combo;
    QLineEdit* m_size_edit = nullptr;
    QLineEdit* m_sector_size_edit = nullptr;
    QLineEdit* m_page_size_edit = nullptr;
    QComboBox* m_address_width_combo;
    QLineEdit* m_jedec_id_edit = nullptr;
};

#endif
