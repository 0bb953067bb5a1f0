#include "password_files.h"

#include "secret_bytes.h"
#include "vek_file_assistant.h"

bool apply_password_file(PGM_COMMON_XML_VEK_VEK& document, const std::string& text, std::string& message)
{
    const std::size_t equal = text.find('=');
    const std::string id = text.substr(0, equal);
    const bool for_one =
        equal != std::string::npos && VEK_FILE_ASSISTANT::get_bitstream_element(&document, id) != nullptr;
    const std::string path = for_one ? text.substr(equal + 1) : text;
    SECRET_BYTES password;
    if (!read_password_file(path, password, message)) {
        return false;
    }
    if (is_readable_by_others(path)) {
        message = path + " can be read by others; take the right from them (chmod go-rwx).";
        return false;
    }
    const std::string_view word(reinterpret_cast<const char*>(password.data()), password.size());
    for (PGM_COMMON_XML_VEK_BITSTREAM* bitstream : VEK_FILE_ASSISTANT::get_bitstream_elements(&document)) {
        for (PGM_COMMON_XML_VEK_PATH* file : bitstream->path) {
            const bool names_key_file = !file->signing_pem_file.empty() || !file->aek_file.empty();
            if (names_key_file && (!for_one || bitstream->id == id)) {
                file->write_attribute_string("password", word);
            }
        }
    }
    return true;
}
