#ifndef XML_SCAN_H
#define XML_SCAN_H

#include "xml_reader.h"

/// Why a scan stopped. Line 0: the fault has no place in the text.
struct XML_SCAN_FAULT {
    std::string text; ///< the end of a sentence, without a period
    std::uint64_t line = 0;
    std::uint64_t column = 0;
};

/// The one function of the module mod_xml: reads XML into the listener, with every door of the parser shut
/// (no DOCTYPE, nothing outside the text). xml_reader.h, which loads the module, is what callers use.
extern "C" __attribute__((visibility("default"))) bool xml_scan(std::span<const std::uint8_t> bytes,
                                                                const XML_LIMITS& limits,
                                                                XML_LISTENER& listener,
                                                                XML_SCAN_FAULT& fault);
using XML_SCAN = decltype(&xml_scan);

#endif
