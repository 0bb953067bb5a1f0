#include "id_register.h"

bool ID_REGISTER::add(const PGM_COMMON_XML_ELEMENT_DESCRIPTOR& descriptor,
                      const PGM_COMMON_XML_ELEMENT& element, std::string& problem)
{
    if (descriptor.unique.empty()) {
        return true;
    }
    const std::string& id = pgm_common_xml_read(element, descriptor.key);
    // An id that is missing is the business of whoever asks for it.
    if (id.empty()) {
        return true;
    }
    if (m_last == nullptr || m_last->first != descriptor.unique) {
        m_last = &*m_ids.try_emplace(descriptor.unique).first;
    }
    if (m_last->second.insert(id)) {
        return true;
    }
    problem = std::string(descriptor.attributes[static_cast<std::size_t>(descriptor.key)].name) + " \"" + id +
              "\" of " + PGM_COMMON_XML_ENUM_STRING[descriptor.kind] + " stands in another " +
              std::string(descriptor.unique) + " already; each needs its own";
    return false;
}
