#ifndef VEK_DLG_OUTPUT_FILE_PROPERTIES_H
#define VEK_DLG_OUTPUT_FILE_PROPERTIES_H

#include "nivo_dialog.h"
#include "vek_file_assistant.h"
#include "vek_file_type.h"

#include <cstdint>
#include <memory>
#include <vector>

class QDialogButtonBox;
class VEK_PROPERTY_BROWSER;

/// The options of one output file or secondary file: SVF, HEX, RPD and secondary RPD have a set each. The
/// dialog builds the rows of all sets, hides what the type does not have, and leaves the document alone: the
/// caller stores what get_params says.
class VEK_DLG_OUTPUT_FILE_PROPERTIES : public NIVO_DIALOG
{
    Q_OBJECT
public:
    /// `parent` and `grandparent` are the types of the rows above, VEK_INVALID_FILE_TYPE where there is none.
    /// A document without the element to be edited is the internal error "file_options != nullptr".
    VEK_DLG_OUTPUT_FILE_PROPERTIES(std::shared_ptr<PGM_COMMON_XML_VEK_VEK> vek, VEK_FILE_TYPE file_type,
                                   VEK_FILE_TYPE parent, VEK_FILE_TYPE grandparent, QWidget* parent_widget,
                                   Qt::WindowFlags flags);

    /// The values of the rows with the keys of their element. A type without options is the internal error
    /// "Invalid file type.".
    VEK_FILE_ASSISTANT::PARAMS get_params() const;
    /// The element that the dialog shows; null when the document has none.
    PGM_COMMON_XML_VEK_FILE_OPTIONS* get_file_options_element() const;
    /// The ids of all rows, hidden ones too.
    std::vector<std::uint32_t> get_all_properties() const;

public slots:
    /// Vectors need a frequency.
    void update_svf_ok_button();
    /// A HEX file needs a start address.
    void update_hex_ok_button();
    /// Relative addresses begin at 0.
    void update_start_address_edit(int state);

private:
    void create_properties();
    void filter_properties();
    void create_set();
    PGM_COMMON_XML_VEK_OUTPUT_FILE* find_output_file(VEK_FILE_TYPE type, VEK_FILE_TYPE group) const;
    PGM_COMMON_XML_VEK_FILE_OPTIONS*
    find_secondary_file_options(const PGM_COMMON_XML_VEK_OUTPUT_FILE* output_file) const;
    void enable_ok_button(bool enabled);

    void populate_operation_combo();
    void populate_voltage_combo();
    void populate_direction_combo();
    void populate_bitswap_combo();
    void populate_sec_bitswap_combo();
    void set_svf_initial_values();
    void set_hex_initial_values();
    void set_rpd_initial_values();
    void set_sec_rpd_initial_values();
    VEK_FILE_ASSISTANT::PARAMS make_svf_params() const;
    VEK_FILE_ASSISTANT::PARAMS make_hex_params() const;
    VEK_FILE_ASSISTANT::PARAMS make_rpd_params() const;
    VEK_FILE_ASSISTANT::PARAMS make_sec_rpd_params() const;

    std::shared_ptr<PGM_COMMON_XML_VEK_VEK> m_vek;
    VEK_FILE_TYPE m_grandparent;
    VEK_FILE_TYPE m_parent;
    VEK_FILE_TYPE m_file_type;
    VEK_PROPERTY_BROWSER* m_properties = nullptr;
    QDialogButtonBox* m_button_box = nullptr;
};

#endif
