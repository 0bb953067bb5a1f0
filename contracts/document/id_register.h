#ifndef ID_REGISTER_H
#define ID_REGISTER_H

#include "pgm_common_xml_descriptor.h"

#include <map>
#include <string>
#include <string_view>
#include <unordered_set>

/// The ids met so far in a pass over a document, by what they are unique among.
class ID_REGISTER
{
public:
    /// False with a part of a sentence in `problem` when the element's id has been met before.
    bool add(const PGM_COMMON_XML_ELEMENT_DESCRIPTOR& descriptor, const PGM_COMMON_XML_ELEMENT& element,
             std::string& problem)
    {
        if (descriptor.unique.empty()) {
            return true;
        }
        const std::string& id = pgm_common_xml_read(element, descriptor.key);
        if (m_ids[descriptor.unique].insert(id).second) {
            return true;
        }
        problem = std::string(descriptor.attributes[static_cast<std::size_t>(descriptor.key)].name) + " \"" +
                  id + "\" of " + PGM_COMMON_XML_ENUM_STRING[descriptor.kind] + " stands in another " +
                  std::string(descriptor.unique) + " already; each needs its own";
        return false;
    }

private:
    std::map<std::string_view, std::unordered_set<std::string>> m_ids;
};

#endif
