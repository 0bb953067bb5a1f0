#ifndef XML_READER_H
#define XML_READER_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

/// What an XML file of ours may be at most. The sizes bound the memory that a hostile file can take.
struct XML_LIMITS {
    std::uint64_t file_size = 64U * 1024 * 1024; ///< bytes
    std::size_t markup_length = 8 * 1024 * 1024; ///< bytes from one "<" to the next
    std::size_t value_length = 16 * 1024;        ///< bytes of an attribute or of a text, in UTF-8
    std::size_t depth = 16;                      ///< elements within each other
};

struct XML_ATTRIBUTE {
    std::string_view name;
    std::string_view value;
};

/// Takes an XML file as it is read. All texts are UTF-8 and live for the time of the call. An operation that
/// returns false stops the reading; `refusal` then says what is wrong with the place and what to do, without
/// a period.
class XML_LISTENER
{
public:
    virtual ~XML_LISTENER() = default;
    virtual bool start_element(std::string_view name, std::span<const XML_ATTRIBUTE> attributes,
                               std::string& refusal) = 0;
    /// The text in front of the end tag or of a child's start tag comes before this, possibly in pieces.
    virtual bool text(std::string_view text, std::string& refusal) = 0;
    virtual bool end_element(std::string& refusal) = 0;
};

/// Reads the regular file `path` into the listener. No DOCTYPE is accepted, hence no entity of the file's
/// own, and nothing outside the file is ever opened. False with a whole sentence in `message`: "PATH, line L,
/// column C: ...".
bool read_xml_file(const std::string& path, const XML_LIMITS& limits, XML_LISTENER& listener,
                   std::string& message);

/// The same from memory; `name` stands for the file in messages.
bool read_xml_bytes(std::span<const std::uint8_t> bytes, const std::string& name, const XML_LIMITS& limits,
                    XML_LISTENER& listener, std::string& message);

#endif
