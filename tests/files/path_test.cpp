#include "fio_file_system.h"
#include "fio_path.h"
#include "fio_types.h"
#include "in_child.h"
#include "temporary_directory.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <set>

namespace
{

std::string absolute(const std::string& path, const std::string& base)
{
    FIO_PATH result = path;
    result.become_absolute(base);
    return result.fullpath();
}

TEST(path, has_a_directory_a_file_name_and_an_extension)
{
    struct ROW {
        const char* path;
        const char* directory;
        const char* filename;
        const char* extension;
    };
    const ROW rows[] = {
        {"/data/top.sof", "/data", "top.sof", "sof"},
        {"top.tar.gz", "", "top.tar.gz", "gz"},
        {"sub/top", "sub", "top", ""},
        {"/top.sof", "/", "top.sof", "sof"},
        {"dir.d/top", "dir.d", "top", ""},
        {".hidden", "", ".hidden", ""},
        {".hidden.sof", "", ".hidden.sof", "sof"},
        {"top.", "", "top.", ""},
        {"out/", "out", "", ""},
        {"//", "/", "", ""},
        {"..", "..", "", ""},
        {"a/.", "a/.", "", ""},
        {"", "", "", ""},
        {"J\xFCrgen/\xE6\x97\xA5.SOF", "J\xFCrgen", "\xE6\x97\xA5.SOF", "SOF"},
    };
    for (const ROW& row : rows) {
        const FIO_PATH path(row.path);
        EXPECT_EQ(path.fullpath(), row.path);
        EXPECT_EQ(path.full_directory(), row.directory) << row.path;
        EXPECT_EQ(path.filename(), row.filename) << row.path;
        EXPECT_EQ(path.extension(), row.extension) << row.path;
    }
}

TEST(path, is_a_value_made_from_texts)
{
    const char* const none = nullptr;
    EXPECT_TRUE(FIO_PATH(none).is_empty());
    FIO_PATH path;
    EXPECT_TRUE(path.is_empty());
    path = "a/b";
    path = std::string("/c");
    EXPECT_TRUE(path.is_absolute());
    const FIO_PATH copy = path;
    path = "d";
    EXPECT_EQ(copy.fullpath(), "/c");
    const std::string text = path;
    EXPECT_EQ(text, "d");
}

TEST(path, becomes_absolute_against_a_base)
{
    EXPECT_EQ(absolute("top.sof", "/base"), "/base/top.sof");
    EXPECT_EQ(absolute("../data/./top.sof", "/base/one"), "/base/data/top.sof");
    EXPECT_EQ(absolute("../../../top.sof", "/base"), "/top.sof");
    EXPECT_EQ(absolute("out//sub/", "/base/"), "/base/out/sub");
    EXPECT_EQ(absolute("/data/../x/top.sof", "/base"), "/x/top.sof");
    EXPECT_EQ(absolute(".", "/base"), "/base");
    EXPECT_EQ(absolute("..", "/"), "/");
    EXPECT_EQ(absolute("...", "/base"), "/base/...");
}

TEST(path, an_empty_path_becomes_the_base_as_a_directory)
{
    FIO_PATH path;
    path.become_absolute("/base/one");
    EXPECT_EQ(path.fullpath(), "/base/one");
    EXPECT_EQ(path.full_directory(), "/base/one");
    EXPECT_EQ(path.filename(), "");
}

TEST(path, a_directory_keeps_being_one_when_it_becomes_absolute)
{
    for (const char* const text : {".", "", "./", "../one/"}) {
        FIO_PATH path(text);
        path.become_absolute("/base/one");
        EXPECT_EQ(path.full_directory(), "/base/one") << text;
    }
}

TEST(path, takes_an_empty_or_relative_base_against_the_current_directory)
{
    const TEMPORARY_DIRECTORY directory;
    const std::string answer = in_child([&directory]() -> std::string {
        if (!FIO_FILE_SYSTEM::set_current_directory(directory.path())) {
            return "(no directory)";
        }
        const std::string here = FIO_FILE_SYSTEM::get_current_directory();
        EXPECT_EQ(here, std::filesystem::canonical(directory.path()));
        EXPECT_EQ(FIO_PATH(here + "/sub/top.sof").get_relative_to("sub"), "top.sof");
        return absolute("top.sof", "").substr(here.size()) + absolute("top.sof", "sub").substr(here.size());
    });
    EXPECT_EQ(answer, "/top.sof/sub/top.sof");
}

TEST(path, stays_relative_when_the_current_directory_is_gone)
{
    const TEMPORARY_DIRECTORY directory;
    std::filesystem::create_directory(directory / "gone");
    EXPECT_EQ(in_child([&directory]() -> std::string {
                  FIO_FILE_SYSTEM::set_current_directory(directory / "gone");
                  std::filesystem::remove(directory / "gone");
                  return "[" + FIO_FILE_SYSTEM::get_current_directory() + "]" + absolute("top.sof", "");
              }),
              "[]top.sof");
}

TEST(path, is_shown_relative_to_a_base)
{
    struct ROW {
        const char* path;
        const char* base;
        const char* relative;
    };
    const ROW rows[] = {
        {"/base/top.sof", "/base", "top.sof"},
        {"/base/out/top.rbf", "/base/", "out/top.rbf"},
        {"/data/top.sof", "/base/one", "../../data/top.sof"},
        {"/base/onetwo/top.sof", "/base/one", "../onetwo/top.sof"},
        {"/base/one/../two/top.sof", "/base/./one", "../two/top.sof"},
        {"/base", "/base", "."},
        {"/base/", "/base", "."},
        {"/", "/base", ".."},
        {"/base/top.sof", "/", "base/top.sof"},
        {"top.sof", "/base", "top.sof"},
        {"", "/base", ""},
        {"/base/top.sof", "", "/base/top.sof"},
    };
    for (const ROW& row : rows) {
        EXPECT_EQ(FIO_PATH(row.path).get_relative_to(row.base), row.relative)
            << row.path << " to " << row.base;
    }
}

TEST(path, finds_back_from_relative_to_absolute)
{
    const std::string longest = "/" + std::string(2000, 'a') + "/" + std::string(1990, 'b') + "/c.sof";
    for (const std::string& path :
         {std::string("/base/one/top.sof"), std::string("/data/x/top.sof"), std::string("/base"),
          std::string("/"), std::string("/base/one/J\xFCrgen.sof"), longest}) {
        for (const char* const base : {"/base/one", "/base/one/two", "/", "/data"}) {
            EXPECT_EQ(absolute(FIO_PATH(path).get_relative_to(base), base), path) << base;
        }
    }
}

TEST(path, compares_by_where_it_leads)
{
    EXPECT_TRUE(FIO_PATH("/base/./one//top.sof") == FIO_PATH("/base/one/two/../top.sof"));
    EXPECT_TRUE(FIO_PATH("/base/") == FIO_PATH("/base"));
    EXPECT_TRUE(FIO_PATH("./top.sof") == std::string("top.sof"));
    EXPECT_FALSE(FIO_PATH("/base/top.sof") == FIO_PATH("/base/Top.sof"));
    EXPECT_FALSE(FIO_PATH("top.sof") == FIO_PATH("/top.sof"));
    EXPECT_FALSE(FIO_PATH("") == FIO_PATH("."));
    EXPECT_TRUE(FIO_PATH("") == FIO_PATH());
    EXPECT_FALSE(FIO_PATH("../a") == FIO_PATH("a"));
}

TEST(path, takes_another_extension)
{
    struct ROW {
        const char* path;
        const char* extension;
        const char* suffix;
        const char* result;
    };
    const ROW rows[] = {
        {"/data/top.sof", ".vek", "", "/data/top.vek"},
        {"/data/top", ".vek", "", "/data/top.vek"},
        {"/data/top.vek", ".vek", "", "/data/top.vek"},
        {"dir.d/top", "vek", "", "dir.d/top.vek"},
        {"top.v1.sof", ".vek", "", "top.v1.vek"},
        {"top.", ".vek", "", "top.vek"},
        {".vek", ".vek", "", ".vek.vek"},
        {"top.sof", ".jam", "_a", "top_a.jam"},
        {"top.sof", "", "", "top.sof"},
        {"top.sof", ".", "", "top.sof"},
        {"dir/", ".vek", "", "dir/"},
        {"", ".vek", "", ""},
    };
    for (const ROW& row : rows) {
        FIO_PATH path(row.path);
        path.extension(row.extension, row.suffix);
        EXPECT_EQ(path.fullpath(), row.result) << row.path;
    }
}

TEST(path, takes_another_directory)
{
    FIO_PATH path("/data/top.sof");
    path.directory("/base");
    EXPECT_EQ(path.fullpath(), "/base/top.sof");
    path.directory("/");
    EXPECT_EQ(path.fullpath(), "/top.sof");
    path.directory("");
    EXPECT_EQ(path.fullpath(), "top.sof");
    FIO_PATH folder;
    folder.directory("/base/out");
    EXPECT_EQ(folder.fullpath(), "/base/out");
    EXPECT_EQ(folder.filename(), "");
    EXPECT_EQ(folder.full_directory(), "/base/out");
    EXPECT_EQ(folder.get_relative_to("/base"), "out");
}

TEST(file_system, enters_directories_that_are_there)
{
    EXPECT_EQ(in_child([]() -> std::string {
                  const std::string before = FIO_FILE_SYSTEM::get_current_directory();
                  const bool empty = FIO_FILE_SYSTEM::set_current_directory("");
                  const bool absent = FIO_FILE_SYSTEM::set_current_directory("/no/such/directory");
                  const bool same = before == FIO_FILE_SYSTEM::get_current_directory();
                  const bool root = FIO_FILE_SYSTEM::set_current_directory("/");
                  return std::string(empty ? "1" : "0") + (absent ? "1" : "0") + (same ? "1" : "0") +
                         (root ? "1" : "0") + FIO_FILE_SYSTEM::get_current_directory();
              }),
              "0011/");
}

TEST(file_types, keep_their_numbers)
{
    EXPECT_EQ(fio_get_extension_string(FIO_EXTENSION_TYPE(49)), ".hex");
    EXPECT_EQ(fio_get_extension_string(FIO_EXTENSION_TYPE(63)), ".bin");
    EXPECT_EQ(fio_get_extension_string(FIO_EXTENSION_TYPE(84)), ".sof");
    EXPECT_EQ(fio_get_extension_string(FIO_EXTENSION_TYPE(91)), ".rbf");
    EXPECT_EQ(fio_get_extension_string(FIO_EXTENSION_TYPE(94)), ".pmsf");
    EXPECT_EQ(fio_get_extension_string(FIO_EXTENSION_TYPE(243)), ".pem");
    EXPECT_EQ(fio_get_extension_string(FIO_EXTENSION_TYPE(245)), ".aek");
    EXPECT_EQ(fio_get_extension_string(FIO_EXTENSION_TYPE(247)), ".fw");
    EXPECT_EQ(fio_get_extension_string(FIO_EXTENSION_TYPE(250)), ".puf");
    EXPECT_EQ(fio_get_extension_string(FIO_EXTENSION_TYPE(251)), ".wkey");
    EXPECT_EQ(fio_get_file_type(FIO_EXTENSION_TYPE(84)), 75);
    EXPECT_EQ(fio_get_file_type(FIO_EXTENSION_TYPE(94)), 85);
    EXPECT_EQ(fio_get_file_type("a.csof"), 76);
    EXPECT_EQ(fio_get_file_type("a.rsof"), 82);
    EXPECT_EQ(fio_get_default_extension_string(FIO_FILE_TYPE(211)), ".vek");
    EXPECT_EQ(fio_get_default_extension_string(FIO_FILE_TYPE(40)), ".hex");
    EXPECT_EQ(fio_get_default_extension_string(FIO_FILE_TYPE(89)), ".elk");
    EXPECT_EQ(fio_get_default_extension_string(FIO_FILE_TYPE(103)), ".ekp");
    EXPECT_EQ(fio_get_default_extension_string(FIO_FILE_TYPE(185)), ".key");
    EXPECT_EQ(sizeof(FIO_FILE_TYPE), 2u);
    EXPECT_EQ(sizeof(FIO_EXTENSION_TYPE), 2u);
}

TEST(file_types, take_extensions_in_any_case_with_or_without_the_dot)
{
    for (const char* const text : {".sof", "sof", "SOF", ".Sof"}) {
        EXPECT_EQ(fio_get_extension_type(text), FIO_EXT_SOF) << text;
    }
    for (const char* const text : {"", ".", "so", "soff", "..sof", "top.sof"}) {
        EXPECT_EQ(fio_get_extension_type(text), FIO_INVALID_EXTENSION) << text;
    }
    EXPECT_EQ(fio_get_extension_string(FIO_INVALID_EXTENSION), "");
    EXPECT_EQ(fio_get_file_type(FIO_INVALID_EXTENSION), FIO_INVALID_FILE);
}

TEST(file_types, are_found_by_path)
{
    EXPECT_EQ(fio_get_file_type("/data/top.SOF"), FIO_SOF_FILE);
    EXPECT_EQ(fio_get_file_type("./top.rbf"), FIO_RBF_FILE);
    EXPECT_EQ(fio_get_file_type(".vek"), FIO_VEK_SETUP_FILE);
    EXPECT_EQ(fio_get_file_type("boot.ihex"), FIO_HPS_BOOTLOADER_FILE);
    EXPECT_EQ(fio_get_file_type("sof"), FIO_INVALID_FILE);
    EXPECT_EQ(fio_get_file_type("top.sof/readme"), FIO_INVALID_FILE);
    EXPECT_EQ(fio_get_file_type(""), FIO_INVALID_FILE);
}

TEST(file_types, have_filters_for_dialogs)
{
    EXPECT_EQ(fio_get_file_type_filter(FIO_VEK_SETUP_FILE, false), "Imagewright Setup Files (*.vek)");
    EXPECT_EQ(fio_get_file_type_filter(FIO_HPS_BOOTLOADER_FILE, false),
              "HPS Bootloader Files (*.hex *.ihex)");
    EXPECT_EQ(fio_get_file_type_filter(FIO_HPS_BOOTLOADER_FILE, true), "HPS Bootloader Files (*.hex)");
    EXPECT_EQ(fio_get_file_type_filter(FIO_ANY_FILE, true), "All Files (*)");
    EXPECT_EQ(fio_get_file_type_filter(FIO_INVALID_FILE, false), "");
    EXPECT_EQ(fio_get_extension_type_filter(FIO_EXT_SOF, false), "SOF Bitstream Files (*.sof)");
    EXPECT_EQ(fio_get_extension_type_filter(FIO_INVALID_EXTENSION, false), "");
}

TEST(file_types, are_consistent_in_every_row)
{
    std::set<std::string> filters;
    std::set<std::string> defaults_only;
    for (const FIO_FILE_TYPE type : fio_get_all_file_types()) {
        EXPECT_TRUE(filters.insert(fio_get_file_type_filter(type, false)).second) << type;
        EXPECT_TRUE(defaults_only.insert(fio_get_file_type_filter(type, true)).second) << type;
        if (type != FIO_ANY_FILE) {
            const std::string extension = fio_get_default_extension_string(type);
            EXPECT_EQ(extension[0], '.') << type;
            EXPECT_NE(fio_get_extension_type(extension), FIO_INVALID_EXTENSION) << type;
        }
    }
    EXPECT_EQ(fio_get_default_extension_string(FIO_ANY_FILE), "");
    std::set<std::string> texts;
    std::set<FIO_EXTENSION_TYPE> numbers;
    for (const FIO_EXTENSION_TYPE extension : fio_get_all_extension_types()) {
        const std::string text = fio_get_extension_string(extension);
        EXPECT_TRUE(texts.insert(text).second) << text;
        EXPECT_TRUE(numbers.insert(extension).second) << text;
        EXPECT_EQ(fio_get_extension_type(text), extension);
        EXPECT_NE(fio_get_extension_type_filter(extension, false), "") << text;
        const auto types = fio_get_all_file_types();
        EXPECT_NE(std::find(types.begin(), types.end(), fio_get_file_type(extension)), types.end()) << text;
    }
}

} // namespace
