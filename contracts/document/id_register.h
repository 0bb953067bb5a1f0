#ifndef ID_REGISTER_H
#define ID_REGISTER_H

#include "pgm_common_xml_descriptor.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

/// The ids met so far in a pass over a document, by what they are unique among. The elements must stay as
/// they are during the pass.
class ID_REGISTER
{
public:
    /// False with a part of a sentence in `problem` when the element's id has been met before.
    bool add(const PGM_COMMON_XML_ELEMENT_DESCRIPTOR& descriptor, const PGM_COMMON_XML_ELEMENT& element,
             std::string& problem);

private:
    /// Open addressing, at most half full: a node for each of many thousand ids would cost more than reading
    /// them.
    struct SLOT {
        std::string_view id; ///< empty: free
        std::size_t hash = 0;
    };
    struct TABLE {
        std::vector<SLOT> slots;
        std::size_t used = 0;
        bool insert(std::string_view id);
        void grow();
    };
    static SLOT& find_slot(std::vector<SLOT>& slots, const SLOT& wanted);
    std::map<std::string_view, TABLE> m_ids;
};

#endif
