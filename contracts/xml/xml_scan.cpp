#include "xml_scan.h"

#include "utf8.h"

#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/framework/XMLPScanToken.hpp>
#include <xercesc/parsers/SAXParser.hpp>
#include <xercesc/sax/AttributeList.hpp>
#include <xercesc/sax/HandlerBase.hpp>
#include <xercesc/sax/Locator.hpp>
#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLException.hpp>
#include <xercesc/util/XMLString.hpp>
#include <xercesc/util/XMLUni.hpp>

#include <vector>

namespace
{

using xercesc::AttributeList;
using xercesc::Locator;
using xercesc::SAXParseException;

/// Leaves the parser, which knows no other way to stop than an exception.
struct READING_STOPPED {
    std::string text;
    XMLFileLoc line = 0;
    XMLFileLoc column = 0;
};

std::string to_utf8(const XMLCh* text)
{
    std::string result;
    append_utf8(result, text, xercesc::XMLString::stringLen(text));
    return result;
}

class SAX_HANDLER final : public xercesc::HandlerBase
{
public:
    SAX_HANDLER(const XML_LIMITS& limits, XML_LISTENER& listener) : m_limits(limits), m_listener(listener) {}

    [[noreturn]] void stop(std::string text) const
    {
        throw READING_STOPPED{std::move(text), m_locator ? m_locator->getLineNumber() : 0,
                              m_locator ? m_locator->getColumnNumber() : 0};
    }

    void setDocumentLocator(const Locator* const locator) override { m_locator = locator; }

    void startElement(const XMLCh* const name, AttributeList& attributes) override
    {
        if (++m_depth > m_limits.depth) {
            stop("the elements are nested more than " + std::to_string(m_limits.depth) + " deep");
        }
        m_used = 0;
        m_ends.clear();
        append(name);
        const XMLSize_t count = attributes.getLength();
        for (XMLSize_t index = 0; index < count; ++index) {
            append(attributes.getName(index));
            append(attributes.getValue(index));
        }
        const std::string_view texts(m_texts.data(), m_used);
        const auto piece = [&](std::size_t index) {
            const std::size_t start = index == 0 ? 0 : m_ends[index - 1];
            return texts.substr(start, m_ends[index] - start);
        };
        m_attributes.clear();
        for (XMLSize_t index = 0; index < count; ++index) {
            m_attributes.push_back({piece(1 + 2 * index), piece(2 + 2 * index)});
            if (m_attributes.back().value.size() > m_limits.value_length) {
                stop("the value of the attribute " + std::string(m_attributes.back().name) +
                     " is longer than " + std::to_string(m_limits.value_length) + " bytes");
            }
        }
        std::string refusal;
        if (!m_listener.start_element(piece(0), m_attributes, refusal)) {
            stop(std::move(refusal));
        }
        m_text_length = 0;
    }

    void endElement(const XMLCh* const) override
    {
        --m_depth;
        m_text_length = 0;
        std::string refusal;
        if (!m_listener.end_element(refusal)) {
            stop(std::move(refusal));
        }
    }

    void characters(const XMLCh* const text, const XMLSize_t length) override
    {
        m_characters.clear();
        append_utf8(m_characters, text, length);
        m_text_length += m_characters.size();
        if (m_text_length > m_limits.value_length) {
            stop("a text is longer than " + std::to_string(m_limits.value_length) + " bytes");
        }
        std::string refusal;
        if (!m_listener.text(m_characters, refusal)) {
            stop(std::move(refusal));
        }
    }

    void ignorableWhitespace(const XMLCh* const text, const XMLSize_t length) override
    {
        characters(text, length);
    }

    xercesc::InputSource* resolveEntity(const XMLCh* const, const XMLCh* const) override
    {
        stop("a reference to another file is not allowed; remove it");
    }

    void error(const SAXParseException& problem) override { fatalError(problem); }

    void fatalError(const SAXParseException& problem) override
    {
        std::string text = to_utf8(problem.getMessage());
        while (!text.empty() && text.back() == '.') {
            text.pop_back();
        }
        throw READING_STOPPED{"the file is damaged or no well-formed XML (" + text + ")",
                              problem.getLineNumber(), problem.getColumnNumber()};
    }

private:
    /// Behind the texts of the event. Most are short and ASCII, and are copied with one look at them.
    void append(const XMLCh* text)
    {
        while (*text != 0 && *text < 0x80 && m_used < m_texts.size()) {
            m_texts[m_used++] = static_cast<char>(*text++);
        }
        if (*text != 0) {
            m_texts.resize(m_used);
            append_utf8(m_texts, text, xercesc::XMLString::stringLen(text));
            m_used = m_texts.size();
            m_texts.resize(2 * m_used);
        }
        m_ends.push_back(m_used);
    }

    const XML_LIMITS& m_limits;
    XML_LISTENER& m_listener;
    const Locator* m_locator = nullptr;
    std::size_t m_depth = 0;
    std::size_t m_text_length = 0;
    std::string m_characters;        ///< those of one event
    std::string m_texts;             ///< begins with the texts of one event, one behind the other
    std::size_t m_used = 0;          ///< how much of it these are
    std::vector<std::size_t> m_ends; ///< where each of them ends
    std::vector<XML_ATTRIBUTE> m_attributes;
};

/// A parser that stops at a DOCTYPE, before anything in it is looked at, if its scanner is one that knows it.
class STRICT_PARSER final : public xercesc::SAXParser
{
public:
    STRICT_PARSER(SAX_HANDLER& handler, const XMLCh* scanner) : m_handler(handler)
    {
        useScanner(scanner);
        setValidationScheme(Val_Never);
        setDoNamespaces(false);
        setDoSchema(false);
        setLoadExternalDTD(false);
        setDisableDefaultEntityResolution(true);
        setExitOnFirstFatalError(true);
        setSecurityManager(nullptr);
        setDocumentHandler(&handler);
        setErrorHandler(&handler);
        setEntityResolver(&handler);
        // Without one the scanner does not report the DOCTYPE.
        setDTDHandler(&handler);
    }

    void doctypeDecl(const xercesc::DTDElementDecl&, const XMLCh* const, const XMLCh* const, const bool,
                     const bool) override
    {
        m_handler.stop("a DOCTYPE is not allowed; remove it");
    }

private:
    SAX_HANDLER& m_handler;
};

void start_xml_platform()
{
    // The library counts its users; it is kept for the life of the process.
    [[maybe_unused]] static const bool started = (xercesc::XMLPlatformUtils::Initialize(), true);
}

} // namespace

bool xml_scan(std::span<const std::uint8_t> bytes, const XML_LIMITS& limits, XML_LISTENER& listener,
              XML_SCAN_FAULT& fault)
{
    start_xml_platform();
    SAX_HANDLER handler(limits, listener);
    // A scanner that looks at nothing but the form of the text is a good deal faster, but passes over a
    // DOCTYPE. One can only stand in front of the elements; so the other scanner reads as far as these first.
    STRICT_PARSER prolog_parser(handler, xercesc::XMLUni::fgIGXMLScanner);
    STRICT_PARSER parser(handler, xercesc::XMLUni::fgWFXMLScanner);
    xercesc::MemBufInputSource source(bytes.data(), bytes.size(), "");
    source.setCopyBufToStream(false);
    try {
        xercesc::XMLPScanToken place;
        prolog_parser.parseFirst(source, place);
        parser.parse(source);
        return true;
    } catch (const READING_STOPPED& stopped) {
        fault = {stopped.text, stopped.line, stopped.column};
    } catch (const xercesc::OutOfMemoryException&) {
        fault.text = "the memory does not suffice to read it";
    } catch (const xercesc::XMLException& problem) {
        fault.text = to_utf8(problem.getMessage());
    } catch (const xercesc::SAXException& problem) {
        fault.text = to_utf8(problem.getMessage());
    }
    return false;
}
