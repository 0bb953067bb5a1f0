#ifndef PARAMETER_CALL_H
#define PARAMETER_CALL_H

#include "pgm_common_xml_descriptor.h"
#include "vek_file_assistant.h"

#include <cstddef>
#include <string>
#include <vector>

/// One call of the parameter interface: which elements its pairs address. A pair addresses the owner of its
/// parameter, reached from the element that the option works on through keys that other pairs give.
class PARAMETER_CALL
{
public:
    PARAMETER_CALL(PGM_COMMON_XML_VEK_CMD_OPT_ENUM option, const VEK_FILE_ASSISTANT::PARAMS& params)
        : m_option(option), m_params(params)
    {
    }

    /// The option exists and all parameters belong to it.
    bool has_known_parameters() const;
    /// Every element that a pair passes through has its key, and so has the option's element itself. A
    /// reference passes without one when `references_may_be_open`.
    bool has_keys(bool references_may_be_open) const;

    const VEK_FILE_ASSISTANT::PARAMS& params() const { return m_params; }
    const PGM_COMMON_XML_VEK_CMD_PARAM_DESCRIPTOR& parameter(std::size_t pair) const;
    /// The value of the pair is the key of its owner.
    bool is_key(std::size_t pair) const;
    /// The owner of the pair's parameter is a reference to another element.
    bool is_reference(std::size_t pair) const;

    /// The option's group under the root, which is the root itself where there is none. Null when it does not
    /// exist and is not to be created.
    PGM_COMMON_XML_ELEMENT* group(PGM_COMMON_XML_VEK_VEK& document, bool create) const;
    /// The option's element, found by its key.
    PGM_COMMON_XML_ELEMENT* record(PGM_COMMON_XML_VEK_VEK& document, bool create) const;
    /// The owner of the pair's parameter under the option's element.
    PGM_COMMON_XML_ELEMENT* owner(PGM_COMMON_XML_ELEMENT& record, std::size_t pair, bool create) const;
    /// The same, with all references where no id picks one.
    std::vector<PGM_COMMON_XML_ELEMENT*> owners(PGM_COMMON_XML_ELEMENT& record, std::size_t pair) const;

private:
    enum class KEY { NONE, GIVEN, MISSING };
    /// The text by which the element at `level` of the pair's path is picked.
    KEY key_of_level(std::size_t pair, std::size_t level, const std::string*& text) const;
    KEY key_of_record(const std::string*& text) const;
    const std::string* last_text(PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param) const;
    const std::string* nearest_text(PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param, std::size_t pair) const;

    PGM_COMMON_XML_VEK_CMD_OPT_ENUM m_option;
    const VEK_FILE_ASSISTANT::PARAMS& m_params;
};

/// Whether elements of the kind hold the id of another element as their text and key.
bool is_reference_kind(PGM_COMMON_XML_ENUM kind);

#endif
