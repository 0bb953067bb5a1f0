#include "fio_types.h"

#include "fio_path.h"

#include <algorithm>
#include <string_view>

namespace
{

struct FILE_TYPE_ROW {
    FIO_FILE_TYPE type;
    FIO_EXTENSION_TYPE default_extension;
    const char* description;
};

constexpr FILE_TYPE_ROW FILE_TYPES[] = {
    {FIO_RBF_FILE, FIO_EXT_RBF, "Raw Binary Files"},
    {FIO_TTF_FILE, FIO_EXT_TTF, "Tabular Text Files"},
    {FIO_HEX_FILE, FIO_EXT_HEX, "Hexadecimal Files"},
    {FIO_BIN_FILE, FIO_EXT_BIN, "Binary Files"},
    {FIO_PRRBF_FILE, FIO_EXT_PRRBF, "Partial Reconfiguration Raw Binary Files"},
    {FIO_SVF_FILE, FIO_EXT_SVF, "Serial Vector Files"},
    {FIO_JAM_FILE, FIO_EXT_JAM, "JAM Programming Files"},
    {FIO_JBC_FILE, FIO_EXT_JBC, "JBC Byte Code Files"},
    {FIO_JIC_FILE, FIO_EXT_JIC, "JIC Flash Programming Files"},
    {FIO_POF_FILE, FIO_EXT_POF, "POF Flash Programming Files"},
    {FIO_RPD_FILE, FIO_EXT_RPD, "Raw Flash Image Files"},
    {FIO_MAP_FILE, FIO_EXT_MAP, "Flash Layout Files"},
    {FIO_RIM_FILE, FIO_EXT_RIM, "Reference Integrity Manifest Files"},
    {FIO_CCERT_FILE, FIO_EXT_CCERT, "Compact Certificate Files"},
    {FIO_PUF_FILE, FIO_EXT_PUF, "PUF Data Files"},
    {FIO_WKEY_FILE, FIO_EXT_WKEY, "Wrapped Key Files"},
    {FIO_PEM_FILE, FIO_EXT_PEM, "Private Key Files"},
    {FIO_AEK_FILE, FIO_EXT_AEK, "AES Key Files"},
    {FIO_FW_FILE, FIO_EXT_FW, "Co-Signed Firmware Files"},
    {FIO_BRIM_FILE, FIO_EXT_BRIM, "Project Files"},
    {FIO_HPS_BOOTLOADER_FILE, FIO_EXT_HEX, "HPS Bootloader Files"},
    {FIO_SOF_FILE, FIO_EXT_SOF, "SOF Bitstream Files"},
    {FIO_CSOF_FILE, FIO_EXT_CSOF, "Chained Bitstream Files"},
    {FIO_RSOF_FILE, FIO_EXT_RSOF, "Region Bitstream Files"},
    {FIO_PMSF_FILE, FIO_EXT_PMSF, "PMSF Partial Bitstream Files"},
    {FIO_ELK_FILE, FIO_EXT_ELK, "Encryption Lock Files"},
    {FIO_EKP_FILE, FIO_EXT_EKP, "Key Programming Files"},
    {FIO_KEY_FILE, FIO_EXT_KEY, "Encryption Key Files"},
    {FIO_VEK_SETUP_FILE, FIO_EXT_VEK, "Imagewright Setup Files"},
    {FIO_ANY_FILE, FIO_INVALID_EXTENSION, "All Files"},
};

struct EXTENSION_ROW {
    FIO_EXTENSION_TYPE extension;
    const char* text;
    FIO_FILE_TYPE file_type;
};

constexpr EXTENSION_ROW EXTENSIONS[] = {
    {FIO_EXT_HEX, ".hex", FIO_HEX_FILE},       {FIO_EXT_IHEX, ".ihex", FIO_HPS_BOOTLOADER_FILE},
    {FIO_EXT_BIN, ".bin", FIO_BIN_FILE},       {FIO_EXT_SOF, ".sof", FIO_SOF_FILE},
    {FIO_EXT_CSOF, ".csof", FIO_CSOF_FILE},    {FIO_EXT_RSOF, ".rsof", FIO_RSOF_FILE},
    {FIO_EXT_RBF, ".rbf", FIO_RBF_FILE},       {FIO_EXT_PRRBF, ".prrbf", FIO_PRRBF_FILE},
    {FIO_EXT_PMSF, ".pmsf", FIO_PMSF_FILE},    {FIO_EXT_TTF, ".ttf", FIO_TTF_FILE},
    {FIO_EXT_SVF, ".svf", FIO_SVF_FILE},       {FIO_EXT_JAM, ".jam", FIO_JAM_FILE},
    {FIO_EXT_JBC, ".jbc", FIO_JBC_FILE},       {FIO_EXT_JIC, ".jic", FIO_JIC_FILE},
    {FIO_EXT_POF, ".pof", FIO_POF_FILE},       {FIO_EXT_RPD, ".rpd", FIO_RPD_FILE},
    {FIO_EXT_MAP, ".map", FIO_MAP_FILE},       {FIO_EXT_RIM, ".rim", FIO_RIM_FILE},
    {FIO_EXT_CCERT, ".ccert", FIO_CCERT_FILE}, {FIO_EXT_EKP, ".ekp", FIO_EKP_FILE},
    {FIO_EXT_ELK, ".elk", FIO_ELK_FILE},       {FIO_EXT_KEY, ".key", FIO_KEY_FILE},
    {FIO_EXT_VEK, ".vek", FIO_VEK_SETUP_FILE}, {FIO_EXT_BRIM, ".brim", FIO_BRIM_FILE},
    {FIO_EXT_PEM, ".pem", FIO_PEM_FILE},       {FIO_EXT_AEK, ".aek", FIO_AEK_FILE},
    {FIO_EXT_FW, ".fw", FIO_FW_FILE},          {FIO_EXT_PUF, ".puf", FIO_PUF_FILE},
    {FIO_EXT_WKEY, ".wkey", FIO_WKEY_FILE},
};

const FILE_TYPE_ROW* row_of(FIO_FILE_TYPE type)
{
    const auto* const row =
        std::ranges::find_if(FILE_TYPES, [type](const FILE_TYPE_ROW& each) { return each.type == type; });
    return row != std::end(FILE_TYPES) ? row : nullptr;
}

const EXTENSION_ROW* row_of(FIO_EXTENSION_TYPE extension)
{
    const auto* const row = std::ranges::find_if(
        EXTENSIONS, [extension](const EXTENSION_ROW& each) { return each.extension == extension; });
    return row != std::end(EXTENSIONS) ? row : nullptr;
}

bool equal_in_any_case(std::string_view left, std::string_view right)
{
    const auto lower = [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    };
    return std::ranges::equal(left, right,
                              [lower](char one, char other) { return lower(one) == lower(other); });
}

} // namespace

FIO_EXTENSION_TYPE fio_get_extension_type(const std::string& extension)
{
    std::string_view letters = extension;
    if (letters.starts_with('.')) {
        letters.remove_prefix(1);
    }
    for (const EXTENSION_ROW& row : EXTENSIONS) {
        if (equal_in_any_case(std::string_view(row.text).substr(1), letters)) {
            return row.extension;
        }
    }
    return FIO_INVALID_EXTENSION;
}

std::string fio_get_extension_string(FIO_EXTENSION_TYPE extension)
{
    const EXTENSION_ROW* const row = row_of(extension);
    return row != nullptr ? row->text : "";
}

FIO_FILE_TYPE fio_get_file_type(FIO_EXTENSION_TYPE extension)
{
    const EXTENSION_ROW* const row = row_of(extension);
    return row != nullptr ? row->file_type : FIO_INVALID_FILE;
}

FIO_FILE_TYPE fio_get_file_type(const std::string& path)
{
    if (path.starts_with('.')) {
        if (const FIO_EXTENSION_TYPE whole = fio_get_extension_type(path); whole != FIO_INVALID_EXTENSION) {
            return fio_get_file_type(whole);
        }
    }
    return fio_get_file_type(fio_get_extension_type(FIO_PATH(path).extension()));
}

std::string fio_get_file_type_filter(FIO_FILE_TYPE file_type, bool default_extension_only)
{
    const FILE_TYPE_ROW* const row = row_of(file_type);
    if (row == nullptr) {
        return {};
    }
    if (file_type == FIO_ANY_FILE) {
        return std::string(row->description) + " (*)";
    }
    std::string patterns = "*" + fio_get_extension_string(row->default_extension);
    for (const EXTENSION_ROW& extension : EXTENSIONS) {
        if (!default_extension_only && extension.file_type == file_type &&
            extension.extension != row->default_extension) {
            patterns += std::string(" *") + extension.text;
        }
    }
    return std::string(row->description) + " (" + patterns + ")";
}

std::string fio_get_extension_type_filter(FIO_EXTENSION_TYPE extension, bool)
{
    const EXTENSION_ROW* const row = row_of(extension);
    if (row == nullptr) {
        return {};
    }
    return std::string(row_of(row->file_type)->description) + " (*" + row->text + ")";
}

std::string fio_get_default_extension_string(FIO_FILE_TYPE file_type)
{
    const FILE_TYPE_ROW* const row = row_of(file_type);
    return row != nullptr ? fio_get_extension_string(row->default_extension) : std::string();
}

std::vector<FIO_FILE_TYPE> fio_get_all_file_types()
{
    std::vector<FIO_FILE_TYPE> types;
    for (const FILE_TYPE_ROW& row : FILE_TYPES) {
        types.push_back(row.type);
    }
    return types;
}

std::vector<FIO_EXTENSION_TYPE> fio_get_all_extension_types()
{
    std::vector<FIO_EXTENSION_TYPE> extensions;
    for (const EXTENSION_ROW& row : EXTENSIONS) {
        extensions.push_back(row.extension);
    }
    return extensions;
}
