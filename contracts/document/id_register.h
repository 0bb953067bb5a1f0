#ifndef ID_REGISTER_H
#define ID_REGISTER_H

#include "pgm_common_xml_descriptor.h"

#include <map>
#include <string>
#include <string_view>
#include <utility>
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
        const std::string* id = nullptr; ///< null: free
        std::size_t hash = 0;
    };
    struct TABLE {
        std::vector<SLOT> slots;
        std::size_t used = 0;
        bool insert(const std::string& id);
        void grow();
    };
    static SLOT& find_slot(std::vector<SLOT>& slots, const SLOT& wanted);
    std::map<std::string_view, TABLE> m_ids;
    /// The last one asked for: elements of one kind follow each other in their thousands.
    std::pair<const std::string_view, TABLE>* m_last = nullptr;
};

#endif
