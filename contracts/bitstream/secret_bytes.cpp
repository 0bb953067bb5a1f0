#include "secret_bytes.h"

#include "byte_source.h"

#include <botan/mem_ops.h>

#include <algorithm>
#include <sys/stat.h>

namespace
{
constexpr std::size_t PASSWORD_FILE_LIMIT = 4096;
}

bool read_secret_file(const std::string& path, std::size_t limit, const char* kind, SECRET_BYTES& bytes,
                      std::string& message)
{
    const auto file = FILE_SOURCE::open(path, message);
    if (!file)
        return false;
    if (file->size() > limit) {
        message = path + " is larger than " + std::to_string(limit) + " bytes, the limit of " + kind +
                  "; name another file.";
        return false;
    }
    bytes.resize(static_cast<std::size_t>(file->size()));
    return file->read(0, bytes, message);
}

bool is_readable_by_others(const std::string& path)
{
    struct stat facts {
    };
    return stat(path.c_str(), &facts) == 0 && (facts.st_mode & (S_IRGRP | S_IROTH)) != 0;
}

bool read_password_file(const std::string& path, SECRET_BYTES& password, std::string& message)
{
    SECRET_BYTES bytes;
    if (!read_secret_file(path, PASSWORD_FILE_LIMIT, "a password file", bytes, message))
        return false;
    auto end = std::find(bytes.begin(), bytes.end(), '\n');
    if (end != bytes.begin() && end[-1] == '\r')
        --end;
    if (end == bytes.begin()) {
        message = path + " has no password in its first line; write it there.";
        return false;
    }
    password.assign(bytes.begin(), end);
    return true;
}

PASSWORD_TEXT::PASSWORD_TEXT(const SECRET_BYTES& password)
{
    // One piece of memory from the start: text that grows leaves copies behind.
    m_text.resize(password.size());
    std::copy(password.begin(), password.end(), m_text.begin());
}

PASSWORD_TEXT::~PASSWORD_TEXT()
{
    Botan::secure_scrub_memory(m_text.data(), m_text.size());
}
