#ifndef OPTIONS_DLG_H
#define OPTIONS_DLG_H

#include "dset_oti_dev_options_info.h"
#include "nivo_dialog.h"

#include <QList>
#include <QString>

class NIVO_HEX_EDIT;
class QCheckBox;
class QComboBox;
class QFormLayout;
class QLineEdit;
class QPushButton;
class QVBoxLayout;

/// The options of a device that is configured from on-chip flash.
class OPTIONS_DLG : public NIVO_DIALOG
{
    Q_OBJECT
public:
    struct CONTENT {
        bool is_editable = true;
        bool dual = false;     ///< two images, with the choice between them
        bool timing = false;   ///< the test options
        bool security = false; ///< the security options
        bool spi = false;      ///< the options of the SPI mode
        bool with_ufm = true;  ///< the source of the user flash
        QList<QString> sectors;
    };

    OPTIONS_DLG(const DSET_OTI_DEV_OPTIONS_INFO& options, const CONTENT& content, QWidget* parent);

    /// The options as edited; what the dialog does not show is as it was.
    DSET_OTI_DEV_OPTIONS_INFO get_options() const;

    /// What differs from the initial state, one option a line.
    static QString summarise(const DSET_OTI_DEV_OPTIONS_INFO& options);

private slots:
    void update_enabled();
    void browse_ufm_file();

private:
    QCheckBox* add_check_box(QFormLayout& form, const QString& text, const char* name, bool checked);
    QFormLayout* add_group(QVBoxLayout& layout, const QString& title);
    void create_configuration_group(QVBoxLayout& layout);
    void create_security_group(QVBoxLayout& layout);
    void create_spi_group(QVBoxLayout& layout);
    void create_test_group(QVBoxLayout& layout);
    void create_ufm_group(QVBoxLayout& layout);
    bool reads_ufm_file() const;

    DSET_OTI_DEV_OPTIONS_INFO m_options;
    CONTENT m_content;
    QComboBox* m_power_on_combo = nullptr;
    QCheckBox* m_weak_pullup_check = nullptr;
    QCheckBox* m_cfm0_only_check = nullptr;
    QCheckBox* m_isp_source_check = nullptr;
    QCheckBox* m_watchdog_check = nullptr;
    NIVO_HEX_EDIT* m_watchdog_edit = nullptr;
    QCheckBox* m_verify_protect_check = nullptr;
    QCheckBox* m_encrypted_only_check = nullptr;
    QCheckBox* m_jtag_security_check = nullptr;
    QCheckBox* m_spi_mode_check = nullptr;
    QCheckBox* m_fallback_check = nullptr;
    NIVO_HEX_EDIT* m_fallback_edit = nullptr;
    QCheckBox* m_ssmclk_check = nullptr;
    QCheckBox* m_enable_test_check = nullptr;
    QCheckBox* m_disable_test_check = nullptr;
    QComboBox* m_ufm_source_combo = nullptr;
    QLineEdit* m_ufm_file_edit = nullptr;
    QPushButton* m_ufm_browse_button = nullptr;
    QPushButton* m_ok_button = nullptr;
};

#endif
