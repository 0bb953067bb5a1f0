#ifndef VEK_DLG_SOF_PROPERTIES_H
#define VEK_DLG_SOF_PROPERTIES_H

#include "fio_types.h"
#include "nivo_dialog.h"
#include "pgm_common_xml_enum.h"
#include "pgm_common_xml_vek_cmd_enum.h"
#include "vek_file_type.h"
#include "vek_property_browser.h"

#include <string>
#include <utility>
#include <vector>

class QCheckBox;
class QDialogButtonBox;
class QTextEdit;
struct PGM_DEVICE;

/// The properties of an input file: of a file of a bitstream, or of raw data. What exists stands in the
/// settings groups; what of it the file has, and what the user may touch at the moment, is asked of VEK_DB. A
/// property that does not apply is hidden for good and takes no part in anything. The dialog writes nothing
/// to the document and does not validate: its caller sets the values, runs it and takes them back.
class VEK_DLG_SOF_PROPERTIES : public NIVO_DIALOG
{
    Q_OBJECT
public:
    using VALUES = std::vector<std::pair<PGM_COMMON_XML_VEK_CMD_PARAM_ENUM, std::string>>;

    /// `device` is null for raw data and has to outlive the dialog otherwise.
    VEK_DLG_SOF_PROPERTIES(const PGM_DEVICE* device, FIO_FILE_TYPE file_type,
                           std::vector<VEK_FILE_TYPE> output_file_types, QWidget* parent,
                           Qt::WindowFlags flags);

    /// The visible properties, ascending.
    std::vector<PGM_COMMON_XML_VEK_CMD_PARAM_ENUM> get_property_ids() const;
    /// Shows values of the document, in the order given. Keys and key files are passed over, so that they are
    /// never shown again; so are the parameters that name the file. Any other parameter without a property is
    /// an internal error.
    void set_property_values(VALUES values);
    /// The values of the visible properties, those disabled included, by ascending parameter. The value of
    /// the key row is the name of the key.
    VALUES get_property_values();
    /// Enables and disables all visible properties by the values of those on which they depend.
    void check_dependent_properties();

public slots:
    void on_change_bool_property(int index);
    void on_change_combo_property(int index);
    void on_change_file_edit_property(const QString& value);
    void on_change_line_edit_property(const QString& value);
    void on_change_key_edit_property(const QString& value);
    void on_change_legal_checkbox();

private:
    using PROPERTY = VEK_PROPERTY_BROWSER::PROPERTY;

    // What exists.
    void init_general_settings();
    void init_hps_settings();
    void init_signing_settings();
    void init_security_settings();
    void init_encryption_settings();
    void add_group(const QString& title, const std::vector<PROPERTY>& properties);

    // What the file has of it.
    void filter_property();
    void filter_property_group();
    bool is_offered(PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param) const;
    bool is_offered_in_family(PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param) const;

    // What the user may touch.
    void check_dependent_property(unsigned int id, bool enabled);
    void check_combo_dependent_property(unsigned int id, PGM_COMMON_XML_ENUM value);
    void check_exclusive_property(unsigned int id, bool enabled);
    bool is_parent_set(const PROPERTY& parent, PGM_COMMON_XML_VEK_CMD_PARAM_ENUM child);
    unsigned int get_sender_id() const;

    void add_legal_block();
    void connect_property_signal();
    void enable_ok();

    const PGM_DEVICE* m_device;
    FIO_FILE_TYPE m_file_type;
    std::vector<VEK_FILE_TYPE> m_output_file_types;
    VEK_PROPERTY_BROWSER* m_properties = nullptr;
    QCheckBox* m_legal_checkbox = nullptr; ///< null unless the file has security settings
    QTextEdit* m_legal_text = nullptr;     ///< null unless the file has security settings
    QDialogButtonBox* m_button_box = nullptr;
};

#endif
