#include "document_compare.h"
#include "setup_reader.h"
#include "setup_writer.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

/// Whatever the reader accepts can be written, and comes back the same.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::unique_ptr<PGM_COMMON_XML_VEK_VEK> document;
    std::string message;
    if (!read_setup_bytes({data, size}, "setup", document, message)) {
        return 0;
    }
    std::string text;
    std::unique_ptr<PGM_COMMON_XML_VEK_VEK> again;
    if (!write_setup_text(*document, text, message) ||
        !read_setup_bytes({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()}, "setup", again,
                          message) ||
        !documents_equal(*document, *again, message)) {
        std::abort();
    }
    return 0;
}
