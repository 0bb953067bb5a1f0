#ifndef SECRET_BYTES_H
#define SECRET_BYTES_H

#include <botan/secmem.h>

#include <cstddef>
#include <cstdint>
#include <string>

/// Bytes that must not outlive their use: in locked memory where there is some, and overwritten on release.
using SECRET_BYTES = Botan::secure_vector<std::uint8_t>;

/// Reads a whole file of at most `limit` bytes. `kind` names it in the sentence: "a key file". False with a
/// whole sentence in `message` when it cannot be read or is larger.
bool read_secret_file(const std::string& path, std::size_t limit, const char* kind, SECRET_BYTES& bytes,
                      std::string& message);

/// Whether others than the owner may read the file; false for one that is not there.
bool is_readable_by_others(const std::string& path);

/// Reads a password: the first line of a file of at most 4096 bytes, without its line end. False with a whole
/// sentence in `message` when the file cannot be read or its first line is empty.
bool read_password_file(const std::string& path, SECRET_BYTES& password, std::string& message);

/// A password in the form that the crypto library asks for, overwritten at the end.
class PASSWORD_TEXT
{
public:
    explicit PASSWORD_TEXT(const SECRET_BYTES& password);
    ~PASSWORD_TEXT();
    PASSWORD_TEXT(const PASSWORD_TEXT&) = delete;
    PASSWORD_TEXT& operator=(const PASSWORD_TEXT&) = delete;
    const std::string& text() const { return m_text; }

private:
    std::string m_text;
};

#endif
