#include "vek_key_file_assistant.h"

#include "byte_source.h"
#include "vek_msgs.h"

#include <botan/mem_ops.h>
#include <botan/secmem.h>

#include <algorithm>
#include <cerrno>
#include <string_view>
#include <sys/stat.h>

namespace
{

constexpr std::uint64_t FILE_LIMIT = 1024 * 1024;
constexpr std::size_t NAME_LIMIT = 64;
constexpr std::string_view BYTE_ORDER_MARK = "\xEF\xBB\xBF";
constexpr std::string_view BLANKS = " \t";

bool is_name_character(char c)
{
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
}

bool is_hexadecimal_digit(char c)
{
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f');
}

/// Cuts the next word off the line.
std::string_view next_word(std::string_view& line)
{
    line.remove_prefix(std::min(line.find_first_not_of(BLANKS), line.size()));
    const std::string_view word = line.substr(0, std::min(line.find_first_of(BLANKS), line.size()));
    line.remove_prefix(word.size());
    return word;
}

/// Keys in the making, wiped unless they are handed over.
class KEY_TABLE
{
public:
    explicit KEY_TABLE(std::size_t digits) : m_digits(digits) {}
    ~KEY_TABLE() { VEK_KEY_FILE_ASSISTANT::wipe_keys(m_keys); }
    KEY_TABLE(const KEY_TABLE&) = delete;
    KEY_TABLE& operator=(const KEY_TABLE&) = delete;

    /// A refusal tells the place and the rule and never repeats what the line holds, not even the name: who
    /// swaps name and key must not find the key in a log.
    bool take_line(std::string_view line, std::size_t number, std::string& reason);

    void hand_over(std::map<std::string, std::string>& keys) { keys.swap(m_keys); }

private:
    std::size_t m_digits;
    std::map<std::string, std::string> m_keys;
    std::map<std::string, std::size_t> m_lines;
};

bool KEY_TABLE::take_line(std::string_view line, std::size_t number, std::string& reason)
{
    const std::string_view name = next_word(line);
    if (name.empty() || name.front() == '#')
        return true;
    const std::string_view key = next_word(line);
    const std::string_view rest = next_word(line);
    const std::string place = "Line " + std::to_string(number);
    if (name.size() > NAME_LIMIT || !std::all_of(name.begin(), name.end(), is_name_character)) {
        reason = place + " does not begin with a key name of at most " + std::to_string(NAME_LIMIT) +
                 " letters, digits and underscores.";
        return false;
    }
    if (key.empty() || key.front() == '#') {
        reason = place + " has a key name but no key.";
        return false;
    }
    if (!rest.empty() && rest.front() != '#') {
        reason = place + " has more than a name and a key.";
        return false;
    }
    const auto bad = std::find_if_not(key.begin(), key.end(), is_hexadecimal_digit);
    if (bad != key.end()) {
        reason = place + " has a key with a character that is no hexadecimal digit, at place " +
                 std::to_string(bad - key.begin() + 1) + " of the key.";
        return false;
    }
    if (key.size() != m_digits) {
        reason = place + " has a key of " + std::to_string(key.size()) + " digits; this device takes " +
                 std::to_string(m_digits) + ".";
        return false;
    }
    const auto [known, is_new] = m_lines.emplace(name, number);
    if (!is_new) {
        reason = place + " repeats the key name of line " + std::to_string(known->second) + ".";
        return false;
    }
    m_keys[std::string(name)].assign(key);
    return true;
}

bool read_lines(std::string_view text, KEY_TABLE& table, std::string& reason)
{
    if (text.starts_with(BYTE_ORDER_MARK))
        text.remove_prefix(BYTE_ORDER_MARK.size());
    for (std::size_t number = 1; !text.empty(); ++number) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        std::string_view line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        if (line.ends_with('\r'))
            line.remove_suffix(1);
        if (!table.take_line(line, number, reason))
            return false;
    }
    return true;
}

bool is_missing(const std::string& path)
{
    struct stat status;
    return stat(path.c_str(), &status) != 0 && (errno == ENOENT || errno == ENOTDIR);
}

/// The message names the file itself, so only the cause is taken from the sentence.
void report_unreadable(const std::string& path, const std::string& sentence)
{
    const std::size_t cause = sentence.rfind(": ");
    vek_report(MSG_VEK::E::FILE_IO_ERROR(cause == std::string::npos ? path : path + sentence.substr(cause)));
}

} // namespace

bool VEK_KEY_FILE_ASSISTANT::parse_key_file(const std::string& path, unsigned key_bits,
                                            std::map<std::string, std::string>& keys)
{
    if (is_missing(path)) {
        vek_report(MSG_VEK::E::FILE_MISSING(path));
        return false;
    }
    std::string reason;
    const auto file = FILE_SOURCE::open(path, reason);
    if (!file) {
        report_unreadable(path, reason);
        return false;
    }
    if (file->size() > FILE_LIMIT) {
        vek_report(MSG_VEK::E::CORRUPTED_FILE_WITH_REASON(
            path, "It is larger than " + std::to_string(FILE_LIMIT) + " bytes, the limit of a key file."));
        return false;
    }
    Botan::secure_vector<std::uint8_t> bytes(static_cast<std::size_t>(file->size()));
    if (!file->read(0, bytes, reason)) {
        report_unreadable(path, reason);
        return false;
    }
    KEY_TABLE table(key_bits / 4);
    if (!read_lines({reinterpret_cast<const char*>(bytes.data()), bytes.size()}, table, reason)) {
        vek_report(MSG_VEK::E::CORRUPTED_FILE_WITH_REASON(path, reason));
        return false;
    }
    table.hand_over(keys);
    return true;
}

void VEK_KEY_FILE_ASSISTANT::wipe_keys(std::map<std::string, std::string>& keys)
{
    for (auto& [name, key] : keys)
        Botan::secure_scrub_memory(key.data(), key.size());
    keys.clear();
}
