#ifndef PGM_COMMON_XML_EXPORT_H
#define PGM_COMMON_XML_EXPORT_H

#include "pgm_common_xml_enum.h"

#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// What a value means. All values are held as text.
enum PGM_XML_TYPE : std::uint8_t {
    PGM_XML_TYPE_NONE = 0,     ///< an element without text
    PGM_XML_TYPE_TEXT = 1,     ///< any text
    PGM_XML_TYPE_PATH = 2,     ///< a file or a directory
    PGM_XML_TYPE_ID = 3,       ///< a name by which elements refer to each other
    PGM_XML_TYPE_DECIMAL = 4,  ///< an unsigned number
    PGM_XML_TYPE_RESERVED = 5, ///< one of the three reserved attributes
    PGM_XML_TYPE_BOOL = 6,     ///< "1" or "0"
    PGM_XML_TYPE_ADDRESS = 7,  ///< "auto" or a hexadecimal number
    PGM_XML_TYPE_WORD = 8,     ///< a row of PGM_COMMON_XML_ENUM_STRING
    PGM_XML_TYPE_KEY_NAME = 9, ///< the name of a key in a key file, never the key
    PGM_XML_TYPE_SECRET = 10,  ///< in memory only: never written to a file, wiped when it goes
    PGM_XML_TYPE_INVALID = 11,
};

/// Whether a value must be there.
enum PGM_XML_EXIST : std::uint8_t {
    PGM_XML_EXIST_OPTIONAL = 0, ///< the default stands for it when it is absent
    PGM_XML_EXIST_HIDDEN = 1,   ///< never in a file
    PGM_XML_EXIST_REQUIRED = 2,
    PGM_XML_EXIST_INVALID = 3,
};

class PGM_COMMON_XML_ELEMENT;

/// What all elements of a class share about one attribute.
struct PGM_COMMON_XML_ATTRIBUTE_DESCRIPTOR {
    std::string_view name; ///< lower case, as in the file
    PGM_XML_TYPE type;
    PGM_XML_EXIST exist;
    std::string_view default_value;
    std::span<const PGM_COMMON_XML_ENUM> words; ///< what an attribute of type WORD may hold
    std::string& (*member)(PGM_COMMON_XML_ELEMENT& element);
};

/// Overwrites the memory of a text that was a secret and empties it.
void pgm_common_xml_wipe(std::string& secret);

/// One attribute of one element. Name, default and second text must outlive the record, as literals do.
class PGM_COMMON_XML_ATTRIBUTE_INFO
{
public:
    /// Internal errors, tested in this order: "name.size()", "type < PGM_XML_TYPE_INVALID",
    /// "exist < PGM_XML_EXIST_INVALID", and "ptr == NULL" for "__if_continue__", "__if_skip__" and
    /// "__hidden__", "ptr != NULL" for every other name. `ptr` is the std::string that holds the text.
    PGM_COMMON_XML_ATTRIBUTE_INFO(std::string_view name, std::uint8_t type, std::uint8_t exist,
                                  std::string_view default_value, std::string_view second_text, void* ptr);

    std::string_view m_name;
    std::string m_value;
    std::string_view m_default_value; ///< stands for the text of an absent attribute
    std::string_view m_second_text;
    std::uint8_t m_type;
    std::uint8_t m_exist;
    void* m_ptr; ///< the std::string that holds the text; null for a reserved attribute
};

/// Base of all elements of a document.
///
/// An element owns the elements of its general list of children: its destructor destroys them, so that
/// destroying the root frees the tree. group_child hands an element over (adding) or back (removing). The
/// vectors of the typed classes only point.
class PGM_COMMON_XML_ELEMENT
{
public:
    /// Internal errors: "class_type != PGM_COMMON_XML_ENUM__INVALID__ && class_type <=
    /// PGM_COMMON_XML_ENUM__MAX__", "type < PGM_XML_TYPE_INVALID", "exist < PGM_XML_EXIST_INVALID". `ptr` is
    /// the std::string that holds the text content, or null.
    PGM_COMMON_XML_ELEMENT(PGM_COMMON_XML_ENUM class_type, PGM_COMMON_XML_ENUM sub_class_type,
                           std::uint8_t type, std::uint8_t exist, std::string_view default_value,
                           std::string_view second_text, void* ptr);
    virtual ~PGM_COMMON_XML_ELEMENT();
    PGM_COMMON_XML_ELEMENT(const PGM_COMMON_XML_ELEMENT&) = delete;
    PGM_COMMON_XML_ELEMENT& operator=(const PGM_COMMON_XML_ELEMENT&) = delete;

    /// Runs the class's check_count for each kind of child that is limited. The base has none.
    virtual void check_child_count();

    /// The classes empty their vectors and nothing else: the children stay in the general list and stay
    /// owned. The base operation destroys the children and empties the general list.
    virtual void clear_childs();

    /// Adds `child` to the general list, at its end or its front, and becomes its parent and owner; or, with
    /// `remove`, takes it out of the list and gives it back to the caller. The classes first do the same with
    /// the vector of the child's kind, where removing drops the entry at the end asked for, whatever the
    /// child, and a class that may not stand here is the internal error
    /// `Element "%s" does not support child element "%s"`. Null is the internal error "child != nullptr".
    virtual void group_child(PGM_COMMON_XML_ELEMENT* child, bool remove, bool at_end);

    /// The children of a kind (kind PGM_COMMON_XML_ENUM__INVALID__: of any kind) in document order. `own`
    /// asks for this element's own children; false walks the whole tree below it.
    std::vector<PGM_COMMON_XML_ELEMENT*> get_childs(PGM_COMMON_XML_ENUM kind, bool own) const;
    unsigned get_child_count(PGM_COMMON_XML_ENUM kind, bool own) const;
    /// Null when there are not that many.
    PGM_COMMON_XML_ELEMENT* get_element(PGM_COMMON_XML_ENUM kind, unsigned index, bool own) const;
    /// The parent of `element`, or of this element when that is null; null at the root.
    PGM_COMMON_XML_ELEMENT* get_parent(const PGM_COMMON_XML_ELEMENT* element = nullptr) const;
    PGM_COMMON_XML_ENUM get_sub_class_type() const { return m_sub_class_type; }

    /// The attributes in declaration order, the reserved three first. What the elements of a class have in
    /// common is stored once, and an element of many attributes would else be mostly records of them; so the
    /// list is made when somebody asks. The bound members are those of this element.
    std::vector<PGM_COMMON_XML_ATTRIBUTE_INFO> attribute_infos() const;

    /// An attribute by its lower-case name; one that the element does not have is the internal error
    /// `Element "%s" has no attribute "%s"`.
    const std::string& read_attribute_string(std::string_view name) const;
    void write_attribute_string(std::string_view name, std::string_view text);
    bool is_attribute_empty(std::string_view name) const;

    /// The text content.
    const std::string& read_string() const;
    void write_string(std::string_view text);
    void append_string(std::string_view text);

    /// Checks the list of attributes; to be run at the end of each constructor. A table that has passed is
    /// not walked again. Internal errors: those of PGM_COMMON_XML_ATTRIBUTE_INFO, and
    /// `Element "%s" has two attributes "%s"`.
    void init_check() const;

    /// Internal error `Element "%s" has %u child elements "%s"` unless the number of children of the kind is
    /// allowed. Each list of `allowed` is one number, or the first and the last of a range.
    void check_count(PGM_COMMON_XML_ENUM kind, const std::vector<std::vector<unsigned>>& allowed) const;

    std::span<const PGM_COMMON_XML_ATTRIBUTE_DESCRIPTOR> m_attributes; ///< set by the class's constructor
    PGM_COMMON_XML_ENUM m_class_type;
    PGM_COMMON_XML_ENUM m_sub_class_type; ///< the name under which the element stands in its parent
    std::string m_value;                  ///< the text content of an element without a bound member
    std::string_view m_default_value;
    std::string_view m_second_text;
    std::uint8_t m_type;
    std::uint8_t m_exist;
    void* m_ptr; ///< the std::string with the text content
    PGM_COMMON_XML_ELEMENT* m_parent = nullptr;
    std::vector<PGM_COMMON_XML_ELEMENT*> m_childs; ///< all children, owned, in document order

protected:
    /// What group_child of the typed classes does with the vector of one kind. `empty_condition` is the text
    /// of the internal error when there is nothing to remove.
    template <typename ELEMENT>
    static void group(std::vector<ELEMENT*>& group, PGM_COMMON_XML_ELEMENT* child, bool remove, bool at_end,
                      const char* empty_condition)
    {
        if (remove) {
            require_entry(!group.empty(), empty_condition);
            group.erase(at_end ? group.end() - 1 : group.begin());
        } else {
            group.insert(at_end ? group.end() : group.begin(), static_cast<ELEMENT*>(child));
        }
    }
    [[noreturn]] void report_unsupported_child(const PGM_COMMON_XML_ELEMENT& child) const;

private:
    static void require_entry(bool has_entry, const char* condition);
    std::string* find_text(std::string_view name, bool& is_secret) const;
    void collect(PGM_COMMON_XML_ENUM kind, bool own, std::vector<PGM_COMMON_XML_ELEMENT*>& found) const;

    /// The texts of the reserved attributes, of which nobody has made use so far.
    mutable std::unique_ptr<std::array<std::string, 3>> m_reserved;
};

#endif
