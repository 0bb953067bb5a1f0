#ifndef VEK_ELEMENT_COMBO_H
#define VEK_ELEMENT_COMBO_H

class PGM_COMMON_XML_ELEMENT;
class QComboBox;
class QString;

/// A combo whose items stand for document elements, null for "None". The data of an item is a void* variant.
/// Data of another kind is the internal error "data.canConvert<void*>()".
class VEK_ELEMENT_COMBO
{
public:
    static void add(QComboBox& combo, const QString& text, PGM_COMMON_XML_ELEMENT* element);
    /// The last item of the element becomes current, or the first item of the combo when there is none.
    static void set_current(QComboBox& combo, const PGM_COMMON_XML_ELEMENT* element);
    /// The element of an item; null for index -1.
    static const PGM_COMMON_XML_ELEMENT* get(const QComboBox& combo, int index);
};

#endif
