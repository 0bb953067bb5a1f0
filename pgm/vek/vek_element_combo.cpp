#include "vek_element_combo.h"

#include "msg_internal_error.h"
#include "pgm_common_xml_export.h"

#include <QComboBox>

void VEK_ELEMENT_COMBO::add(QComboBox& combo, const QString& text, PGM_COMMON_XML_ELEMENT* element)
{
    combo.addItem(text, QVariant::fromValue(static_cast<void*>(element)));
}

void VEK_ELEMENT_COMBO::set_current(QComboBox& combo, const PGM_COMMON_XML_ELEMENT* element)
{
    int found = 0;
    for (int index = 0; index < combo.count(); ++index) {
        if (get(combo, index) == element) {
            found = index;
        }
    }
    combo.setCurrentIndex(found);
}

const PGM_COMMON_XML_ELEMENT* VEK_ELEMENT_COMBO::get(const QComboBox& combo, int index)
{
    if (index < 0) {
        return nullptr;
    }
    const QVariant data = combo.itemData(index);
    VEK_ASSERT(data.canConvert<void*>());
    return static_cast<const PGM_COMMON_XML_ELEMENT*>(data.value<void*>());
}
