#include "rim_format.h"

#include "bitstream_records.h"
#include "format_text.h"
#include "stream_signer.h"

#include <botan/hash.h>

#include <algorithm>
#include <charconv>
#include <string_view>

namespace
{

constexpr std::string_view FIRST_LINE = "imagewright-rim 1\n";
constexpr std::uint64_t FILE_LIMIT = 64 * 1024 * 1024;

std::string encode(const std::vector<IMAGE_MEASUREMENTS>& images)
{
    std::string text(FIRST_LINE);
    text += "images " + std::to_string(images.size()) + "\n";
    for (const IMAGE_MEASUREMENTS& image : images) {
        text += "device " + image.device + " " + hex_text(image.idcode) + "\n";
        text += std::string("kind ") + (image.partial ? "partial" : "full") + "\n";
        if (image.firmware)
            text += "firmware sha384 " + hexadecimal_text(*image.firmware) + "\n";
        if (image.bootloader)
            text += "bootloader sha384 " + hexadecimal_text(*image.bootloader) + "\n";
        text += "design sha384 " + hexadecimal_text(image.design) + "\n";
        text += "options sha384 " + hexadecimal_text(image.options) + "\n";
    }
    return text;
}

SHA384_DIGEST digest_of(std::string_view text)
{
    const auto hash = Botan::HashFunction::create_or_throw("SHA-384");
    hash->update(reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
    SHA384_DIGEST digest;
    hash->final(digest.data());
    return digest;
}

bool encode_signed(const FORMAT_REQUEST& request, std::string& text, std::string& message)
{
    text = encode(request.measurements);
    if (request.signer == nullptr)
        return true;
    const ECDSA_PUBLIC_KEY& key = request.signer->public_key();
    text += std::string("key ") + ecdsa_curve_name(key.curve) + " " + hexadecimal_text(key.point) + "\n";
    std::vector<std::uint8_t> signature;
    if (!request.signer->sign(digest_of(text), signature, message))
        return false;
    text += "signature " + hexadecimal_text(signature) + "\n";
    return true;
}

bool parse_hexadecimal(std::string_view digits, std::span<std::uint8_t> bytes)
{
    if (digits.size() != 2 * bytes.size())
        return false;
    for (std::size_t i = 0; i < digits.size(); ++i) {
        const char c = digits[i];
        const int value = c >= '0' && c <= '9' ? c - '0' : c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
        if (value < 0)
            return false;
        bytes[i / 2] = static_cast<std::uint8_t>(i % 2 == 0 ? value << 4 : bytes[i / 2] | value);
    }
    return true;
}

/// A manifest taken apart.
struct DECODED {
    std::vector<IMAGE_MEASUREMENTS> images;
    std::optional<ECDSA_PUBLIC_KEY> key;
};

/// Reads a manifest line by line; only the spelling of the writer passes.
class PARSER
{
public:
    PARSER(std::string_view text, DECODED& decoded) : m_text(text), m_decoded(decoded) {}

    bool run(std::string& message)
    {
        m_good = m_text.starts_with(FIRST_LINE) && m_text.ends_with('\n');
        if (m_good) {
            m_at = FIRST_LINE.size();
            m_line = 2;
            images();
        }
        if (m_good && m_at != m_text.size())
            seal();
        if (m_good && m_at == m_text.size())
            return true;
        message = m_reason.empty() ? "The manifest is damaged in line " + std::to_string(m_line) + "."
                                   : "The manifest is damaged: " + m_reason + ".";
        return false;
    }

private:
    /// What stands in the line behind `words`; m_good tells whether it has them.
    std::string_view line(std::string_view words)
    {
        const std::size_t end = m_text.find('\n', m_at);
        if (!m_good || end == std::string_view::npos || !m_text.substr(m_at, end - m_at).starts_with(words)) {
            m_good = false;
            return {};
        }
        const std::string_view rest = m_text.substr(m_at + words.size(), end - m_at - words.size());
        m_at = end + 1;
        ++m_line;
        return rest;
    }
    bool next_is(std::string_view words) const { return m_text.substr(m_at).starts_with(words); }
    void fail_before()
    {
        m_good = false;
        --m_line;
    }

    void digest(std::string_view words, SHA384_DIGEST& digest)
    {
        const std::string_view digits = line(words);
        if (m_good && !parse_hexadecimal(digits, digest))
            fail_before();
    }

    void images()
    {
        const std::string_view number = line("images ");
        unsigned count = 0;
        const auto parsed = std::from_chars(number.data(), number.data() + number.size(), count);
        if (m_good &&
            (parsed.ec != std::errc() || std::to_string(count) != number || count == 0 || count > UINT16_MAX))
            fail_before();
        for (unsigned i = 0; m_good && i < count; ++i)
            image(m_decoded.images.emplace_back());
    }

    void image(IMAGE_MEASUREMENTS& image)
    {
        const std::string_view device = line("device ");
        const std::size_t blank = device.find(' ');
        image.device = device.substr(0, blank);
        const std::string_view idcode = blank == std::string_view::npos ? "" : device.substr(blank + 1);
        if (m_good && idcode.starts_with("0x"))
            std::from_chars(idcode.data() + 2, idcode.data() + idcode.size(), image.idcode, 16);
        if (m_good && (!is_bitstream_name(image.device) || hex_text(image.idcode) != idcode))
            fail_before();
        const std::string_view kind = line("kind ");
        image.partial = kind == "partial";
        if (m_good && kind != "partial" && kind != "full")
            fail_before();
        if (next_is("firmware "))
            digest("firmware sha384 ", image.firmware.emplace());
        if (next_is("bootloader "))
            digest("bootloader sha384 ", image.bootloader.emplace());
        digest("design sha384 ", image.design);
        digest("options sha384 ", image.options);
    }

    void seal()
    {
        ECDSA_PUBLIC_KEY key;
        const std::string_view words = line("key ");
        key.curve = words.starts_with("P-384 ") ? ECDSA_CURVE::P384 : ECDSA_CURVE::P256;
        key.point.resize(2 * ecdsa_size(key.curve));
        if (m_good && (!words.starts_with(ecdsa_curve_name(key.curve)) || words.size() < 6 ||
                       words[5] != ' ' || !parse_hexadecimal(words.substr(6), key.point)))
            fail_before();
        const std::size_t end = m_at;
        const std::string_view digits = line("signature ");
        std::vector<std::uint8_t> signature(2 * ecdsa_size(key.curve));
        if (m_good && !parse_hexadecimal(digits, signature))
            fail_before();
        if (m_good && !ecdsa_verify(key, digest_of(m_text.substr(0, end)), signature)) {
            m_good = false;
            m_reason = "its signature does not fit";
        }
        m_decoded.key = key;
    }

    std::string_view m_text;
    DECODED& m_decoded;
    std::size_t m_at = 0;
    std::size_t m_line = 1;
    bool m_good = false;
    std::string m_reason;
};

bool read_text(const BYTE_SOURCE& file, std::string& text, std::string& message)
{
    if (file.size() > FILE_LIMIT) {
        message = "The manifest is larger than " + std::to_string(FILE_LIMIT) + " bytes.";
        return false;
    }
    text.resize(static_cast<std::size_t>(file.size()));
    return file.read(0, {reinterpret_cast<std::uint8_t*>(text.data()), text.size()}, message);
}

} // namespace

bool RIM_FORMAT::write(const FORMAT_REQUEST& request, BYTE_SINK& sink, std::string& message) const
{
    std::string text;
    return encode_signed(request, text, message) &&
           sink.write({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()}, message);
}

bool RIM_FORMAT::verify(const FORMAT_REQUEST& request, const BYTE_SOURCE& file, std::string& message) const
{
    std::string text;
    std::string wanted;
    DECODED decoded;
    if (!read_text(file, text, message) || !PARSER(text, decoded).run(message) ||
        !encode_signed(request, wanted, message))
        return false;
    if (text == wanted)
        return true;
    message = "The manifest holds other measurements than those of the bitstreams.";
    return false;
}

bool RIM_FORMAT::decode(const BYTE_SOURCE&, BYTE_SINK&, std::string& message) const
{
    message = "A manifest carries measurements and no image.";
    return false;
}

bool RIM_FORMAT::inspect(const BYTE_SOURCE& file, FORMAT_FACTS& facts, std::string& message) const
{
    std::string text;
    DECODED decoded;
    if (!read_text(file, text, message) || !PARSER(text, decoded).run(message))
        return false;
    facts.facts.push_back({"format", "reference integrity manifest"});
    for (std::size_t number = 0; number < decoded.images.size(); ++number) {
        const IMAGE_MEASUREMENTS& image = decoded.images[number];
        const std::string suffix = number == 0 ? "" : " " + std::to_string(number + 1);
        const auto add = [&](const std::string& name, const std::string& value) {
            facts.facts.push_back({name + suffix, value});
        };
        add("device", image.device);
        add("IDCODE", hex_text(image.idcode));
        add("image", image.partial ? "partial" : "full");
        if (image.firmware)
            add("firmware SHA-384", hexadecimal_text(*image.firmware));
        if (image.bootloader)
            add("bootloader SHA-384", hexadecimal_text(*image.bootloader));
        add("design SHA-384", hexadecimal_text(image.design));
        add("options SHA-384", hexadecimal_text(image.options));
    }
    facts.facts.push_back(
        {"signed", decoded.key ? std::string("yes, ") + ecdsa_curve_name(decoded.key->curve) : "no"});
    return true;
}
