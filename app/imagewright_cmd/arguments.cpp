#include "arguments.h"

#include "byte_source.h"
#include "scheme_words.h"

namespace
{

std::string joined_scheme_words()
{
    std::string text;
    for (const std::string& word : scheme_words()) {
        text += (text.empty() ? "" : ", ") + word;
    }
    return text;
}

} // namespace

std::string scheme_help()
{
    return "Configuration scheme that the data is for: " + joined_scheme_words();
}

bool is_scheme_argument(const std::string& word, std::string& message)
{
    PGMIO_CONFIG_SCHEME scheme = PGMIO_CONFIG_SCHEME_ILLEGAL;
    if (word.empty() || scheme_from_word(word, scheme)) {
        return true;
    }
    message = "\"" + word + "\" is no configuration scheme; use one of " + joined_scheme_words() + ".";
    return false;
}

EXIT_CODE failure_code(const std::string& message, const std::string& output_path)
{
    return message.starts_with(output_path) ? EXIT_CODE_OUTPUT_NOT_WRITTEN : EXIT_CODE_INPUT_UNREADABLE;
}

void report_written_file(const COMMAND_CONTEXT& context, const std::string& path)
{
    std::string message;
    const std::shared_ptr<FILE_SOURCE> file = FILE_SOURCE::open(path, message);
    const std::uint64_t size = file == nullptr ? 0 : file->size();
    context.print(JSON{{"file", path}, {"bytes", size}}, "Wrote " + path + ", " + bytes_text(size) + ".\n");
}
