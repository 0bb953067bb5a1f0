#include "xml_reader.h"

#include "byte_source.h"
#include "thr_drl.h"
#include "xml_scan.h"

#include <cstring>
#include <vector>

namespace
{

/// The parser, loaded at its first use and kept: its library brings dozens of others along, which would make
/// every start of a program wait. Null with the end of a sentence in `reason`.
XML_SCAN load_scan(std::string& reason)
{
    static const THR_DRL_HANDLE module = thr_drl_load("mod_xml");
    static const auto scan =
        module != nullptr ? reinterpret_cast<XML_SCAN>(thr_drl_find_function(module, "xml_scan")) : nullptr;
    if (scan == nullptr) {
        reason =
            "the module mod_xml cannot be used; install the program again, with all files of its package";
    }
    return scan;
}

/// The parser holds one piece of markup at a time, in a form several times as large, so the pieces are
/// bounded before it sees them.
bool has_oversized_markup(std::span<const std::uint8_t> bytes, std::size_t limit)
{
    std::span<const std::uint8_t> rest = bytes;
    while (rest.size() > limit) {
        const void* next = std::memchr(rest.data() + 1, '<', limit);
        if (!next) {
            return true;
        }
        rest = rest.subspan(static_cast<std::size_t>(static_cast<const std::uint8_t*>(next) - rest.data()));
    }
    return false;
}

bool check_size(std::uint64_t size, const std::string& name, const XML_LIMITS& limits, std::string& message)
{
    if (size == 0) {
        message = name + " is empty.";
        return false;
    }
    if (size > limits.file_size) {
        message = name + " is " + std::to_string(size) + " bytes long; a file of this kind has at most " +
                  std::to_string(limits.file_size) + " bytes.";
        return false;
    }
    return true;
}

} // namespace

bool read_xml_bytes(std::span<const std::uint8_t> bytes, const std::string& name, const XML_LIMITS& limits,
                    XML_LISTENER& listener, std::string& message)
{
    if (!check_size(bytes.size(), name, limits, message)) {
        return false;
    }
    if (has_oversized_markup(bytes, limits.markup_length)) {
        message = name + " has more than " + std::to_string(limits.markup_length) +
                  " bytes without a tag; it is damaged or no file of this kind.";
        return false;
    }
    XML_SCAN_FAULT fault;
    const XML_SCAN scan = load_scan(fault.text);
    if (scan != nullptr && scan(bytes, limits, listener, fault)) {
        return true;
    }
    message = fault.line == 0 ? name + " cannot be read: " + fault.text + "."
                              : name + ", line " + std::to_string(fault.line) + ", column " +
                                    std::to_string(fault.column) + ": " + fault.text + ".";
    return false;
}

bool read_xml_file(const std::string& path, const XML_LIMITS& limits, XML_LISTENER& listener,
                   std::string& message)
{
    const std::shared_ptr<FILE_SOURCE> source = FILE_SOURCE::open(path, message);
    if (!source || !check_size(source->size(), path, limits, message)) {
        return false;
    }
    std::vector<std::uint8_t> bytes(source->size());
    if (!source->read(0, bytes, message)) {
        return false;
    }
    return read_xml_bytes(bytes, path, limits, listener, message);
}
