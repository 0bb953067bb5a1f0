#ifndef PGM_COMMON_XML_DESCRIPTOR_H
#define PGM_COMMON_XML_DESCRIPTOR_H

#include "pgm_common_xml_export.h"
#include "pgm_common_xml_vek_cmd_enum.h"

#include <algorithm>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

/// The setup document as tables. The rows are generated from tools/document_schema.json together with the
/// element classes; the assistant, the reader and the writer interpret them.

enum PGM_COMMON_XML_COUNT : std::uint8_t {
    PGM_COMMON_XML_COUNT_ANY,
    PGM_COMMON_XML_COUNT_ONE,    ///< one at most
    PGM_COMMON_XML_COUNT_ALWAYS, ///< one at most, which comes into being with its parent
};

struct PGM_COMMON_XML_CHILD_DESCRIPTOR {
    PGM_COMMON_XML_ENUM kind;
    PGM_COMMON_XML_COUNT count;
    /// Moves the child to the end of the vector of its kind, where group_child can remove it.
    void (*bring_to_end)(PGM_COMMON_XML_ELEMENT& parent, const PGM_COMMON_XML_ELEMENT& child);
};

/// Stands in place of an attribute's index for the text content, and for the key of an element that has none.
inline constexpr int PGM_COMMON_XML_TEXT = -1;
inline constexpr int PGM_COMMON_XML_NO_KEY = -2;

struct PGM_COMMON_XML_ELEMENT_DESCRIPTOR {
    PGM_COMMON_XML_ENUM kind;
    std::string_view tag;
    PGM_XML_TYPE text_type; ///< PGM_XML_TYPE_NONE: no text
    int key;                ///< the attribute that tells the element from its siblings: index, TEXT or NO_KEY
    std::string_view unique; ///< what the key occurs once among in a document; empty: only among its siblings
    std::span<const PGM_COMMON_XML_ATTRIBUTE_DESCRIPTOR> attributes;
    std::span<const PGM_COMMON_XML_CHILD_DESCRIPTOR> children;
    std::unique_ptr<PGM_COMMON_XML_ELEMENT> (*create)();
};

/// Where a parameter of the document interface lives.
struct PGM_COMMON_XML_VEK_CMD_PARAM_DESCRIPTOR {
    PGM_COMMON_XML_VEK_CMD_OPT_ENUM option;
    /// The elements from the one that the option works on down to the owner of the value.
    std::span<const PGM_COMMON_XML_ENUM> elements;
    int attribute; ///< index in the owner's attributes, or PGM_COMMON_XML_TEXT
};

struct PGM_COMMON_XML_VEK_CMD_OPT_DESCRIPTOR {
    PGM_COMMON_XML_ENUM group; ///< INVALID for an element that hangs directly under the root
    PGM_COMMON_XML_ENUM element;
};

/// Null for a row of the vocabulary that is no element.
const PGM_COMMON_XML_ELEMENT_DESCRIPTOR* pgm_common_xml_vek_find_element(PGM_COMMON_XML_ENUM kind);
/// Null for a tag that no element has.
const PGM_COMMON_XML_ELEMENT_DESCRIPTOR* pgm_common_xml_vek_find_element(std::string_view tag);
/// All elements, in the order of the vocabulary.
std::span<const PGM_COMMON_XML_ELEMENT_DESCRIPTOR> pgm_common_xml_vek_elements();
/// `param` from 1 to 142.
const PGM_COMMON_XML_VEK_CMD_PARAM_DESCRIPTOR&
pgm_common_xml_vek_param(PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param);
/// `option` from 1 to 7.
const PGM_COMMON_XML_VEK_CMD_OPT_DESCRIPTOR&
pgm_common_xml_vek_option(PGM_COMMON_XML_VEK_CMD_OPT_ENUM option);

/// Null when `kind` may not stand under the element.
const PGM_COMMON_XML_CHILD_DESCRIPTOR*
pgm_common_xml_find_child(const PGM_COMMON_XML_ELEMENT_DESCRIPTOR& element, PGM_COMMON_XML_ENUM kind);

/// The value of an attribute by its index, or of the text content by PGM_COMMON_XML_TEXT.
const std::string& pgm_common_xml_read(const PGM_COMMON_XML_ELEMENT& element, int attribute);
void pgm_common_xml_write(PGM_COMMON_XML_ELEMENT& element, int attribute, std::string_view text);

/// Adds a new element of the kind behind the children of `parent`; its parent owns it. A kind that may not
/// stand there is the internal error of group_child. Children that always come along are not added yet.
PGM_COMMON_XML_ELEMENT& pgm_common_xml_add_child(PGM_COMMON_XML_ELEMENT& parent, PGM_COMMON_XML_ENUM kind);
/// Adds the children that come into being with the element and are not there.
void pgm_common_xml_complete(PGM_COMMON_XML_ELEMENT& element);
/// Takes a child out of its parent, which must be `parent`, wherever it stands.
std::unique_ptr<PGM_COMMON_XML_ELEMENT> pgm_common_xml_take_child(PGM_COMMON_XML_ELEMENT& parent,
                                                                  PGM_COMMON_XML_ELEMENT& child);

/// What the attribute rows hold in member.
template <typename CLASS, std::string CLASS::*MEMBER>
std::string& pgm_common_xml_member(PGM_COMMON_XML_ELEMENT& element)
{
    return static_cast<CLASS&>(element).*MEMBER;
}

/// What the descriptor rows hold in bring_to_end, for the vector `MEMBER` of the class `PARENT`.
template <typename PARENT, auto MEMBER>
void pgm_common_xml_bring_to_end(PGM_COMMON_XML_ELEMENT& parent, const PGM_COMMON_XML_ELEMENT& child)
{
    auto& group = static_cast<PARENT&>(parent).*MEMBER;
    const auto found = std::find(group.begin(), group.end(), &child);
    if (found != group.end()) {
        std::rotate(found, found + 1, group.end());
    }
}

#endif
