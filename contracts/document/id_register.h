#ifndef ID_REGISTER_H
#define ID_REGISTER_H

#include "id_table.h"
#include "pgm_common_xml_descriptor.h"

#include <map>
#include <string>
#include <string_view>
#include <utility>

/// The ids met so far in a pass over a document, by what they are unique among. The elements must stay as
/// they are during the pass.
class ID_REGISTER
{
public:
    /// False with a part of a sentence in `problem` when the element's id has been met before.
    bool add(const PGM_COMMON_XML_ELEMENT_DESCRIPTOR& descriptor, const PGM_COMMON_XML_ELEMENT& element,
             std::string& problem);

private:
    std::map<std::string_view, ID_TABLE> m_ids;
    /// The last one asked for: elements of one kind follow each other in their thousands.
    std::pair<const std::string_view, ID_TABLE>* m_last = nullptr;
};

#endif
