// What holds for every output type that is switched on: a flipped bit is found, and little memory is taken.

#include "generate_job.h"
#include "security_fixture.h"
#include "vek_db.h"

#include <algorithm>
#include <filesystem>
#include <malloc.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

constexpr std::size_t SMALL_CORE = 40000;

/// A setup that generates the type.
struct OUTPUT_CASE {
    VEK_FILE_TYPE type;
    const char* word;
    const char* mode;
    const char* device;
    std::unique_ptr<SETUP_BUILDER> (*make)(const OUTPUT_CASE& one, std::size_t core);
};

void PrintTo(const OUTPUT_CASE& one, std::ostream* stream)
{
    *stream << one.word;
}

SMALL_BITSTREAM content_of(const OUTPUT_CASE& one, std::size_t core)
{
    SMALL_BITSTREAM content;
    content.device = one.device;
    content.core = core;
    content.periphery = 3000;
    return content;
}

using SETUP = std::unique_ptr<SETUP_BUILDER>;

SETUP from_stream(const OUTPUT_CASE& one, std::size_t core)
{
    auto setup = std::make_unique<SETUP_BUILDER>(one.mode);
    setup->bitstream("Bitstream_1", content_of(one, core));
    setup->output(one.word, {"Bitstream_1"});
    return setup;
}

SETUP from_partial_stream(const OUTPUT_CASE& one, std::size_t core)
{
    auto setup = std::make_unique<SETUP_BUILDER>(one.mode);
    SMALL_BITSTREAM content = content_of(one, core);
    content.partial = true;
    content.periphery = 0;
    setup->bitstream("Bitstream_1", content);
    setup->output(one.word, {"Bitstream_1"});
    return setup;
}

SETUP from_keys(const OUTPUT_CASE& one, std::size_t)
{
    auto setup = std::make_unique<ENCRYPTED>(one.mode);
    setup->output(one.word, {"Bitstream_1"});
    return setup;
}

SETUP from_measurements(const OUTPUT_CASE& one, std::size_t core)
{
    auto setup = std::make_unique<SETUP_BUILDER>(one.mode);
    SMALL_BITSTREAM content = content_of(one, core);
    content.firmware = 5000;
    setup->bitstream("Bitstream_1", content);
    make_private_pem(setup->path("key.pem"), "P-384");
    file_of(*setup).signing = "ON";
    file_of(*setup).signing_pem_file = setup->path("key.pem");
    setup->output(one.word, {"Bitstream_1"});
    return setup;
}

void set_group(SETUP_BUILDER& setup, const std::string& type, const std::string& device)
{
    setup.set(
        VEK_CMD_OPT_OUTPUT_FILE,
        {{VEK_CMD_PARAM_OUTPUT_FILE_TYPE, type},
         {device.starts_with("ZR") ? VEK_CMD_PARAM_OUTPUT_FILE_HPS : VEK_CMD_PARAM_OUTPUT_FILE_CVP, "1"}});
}

SETUP with_flash(const OUTPUT_CASE& one, std::size_t core)
{
    auto setup = std::make_unique<SETUP_BUILDER>(one.mode);
    setup->bitstream("Bitstream_1", content_of(one, core));
    setup->flash("F", core == SMALL_CORE ? "W25Q16JV" : "W25Q256JV");
    setup->partition("F", "P1");
    setup->assign("P1", "Bitstream_1", "0");
    setup->set(VEK_CMD_OPT_FLASH_LOADER, {{VEK_CMD_PARAM_FLASH_LOADER_FLASH_LOADER, one.device}});
    return setup;
}

SETUP from_flash(const OUTPUT_CASE& one, std::size_t core)
{
    auto setup = with_flash(one, core);
    setup->output(one.word, {}, "F");
    return setup;
}

SETUP beside_flash(const OUTPUT_CASE& one, std::size_t core)
{
    auto setup = with_flash(one, core);
    setup->output("POF", {}, "F", {one.word});
    return setup;
}

SETUP periphery_from_stream(const OUTPUT_CASE& one, std::size_t core)
{
    auto setup = from_stream(one, core);
    set_group(*setup, one.word, one.device);
    return setup;
}

SETUP periphery_from_flash(const OUTPUT_CASE& one, std::size_t core)
{
    auto setup = from_flash(one, core);
    set_group(*setup, one.word, one.device);
    return setup;
}

SETUP core_beside_periphery(const OUTPUT_CASE& one, std::size_t core)
{
    auto setup = with_flash(one, core);
    setup->output("PERIPH_RPD", {}, "F", {one.word});
    set_group(*setup, "PERIPH_RPD", one.device);
    return setup;
}

const OUTPUT_CASE CASES[] = {
    {VEK_RBF_FILE_TYPE, "RBF", "PS", "GR5S027", from_stream},
    {VEK_TTF_FILE_TYPE, "TTF", "PS", "GR5S027", from_stream},
    {VEK_HEX_FILE_TYPE, "HEX", "PS", "GR5S027", from_stream},
    {VEK_SVF_FILE_TYPE, "SVF", "PS", "GR5S027", from_stream},
    {VEK_JAM_FILE_TYPE, "JAM", "PS", "GR5S027", from_stream},
    {VEK_JBC_FILE_TYPE, "JBC", "PS", "GR5S027", from_stream},
    {VEK_EKP_FILE_TYPE, "EKP", "PS", "CA3M050", from_keys},
    {VEK_PRRBF_FILE_TYPE, "PRRBF", "PS", "GR5S027", from_partial_stream},
    {VEK_RIM_FILE_TYPE, "RIM", "LNKSX8", "ZR9A012", from_measurements},
    {VEK_POF_FILE_TYPE, "POF", "ASX4", "GR5S027", from_flash},
    {VEK_JIC_FILE_TYPE, "JIC", "ASX4", "GR5S027", from_flash},
    {VEK_RPD_FILE_TYPE, "RPD", "ASX4", "GR5S027", from_flash},
    {VEK_MAP_FILE_TYPE, "MAP", "ASX4", "GR5S027", beside_flash},
    {VEK_SEC_RPD_FILE_TYPE, "SEC_RPD", "ASX4", "GR5S027", beside_flash},
    {VEK_PERIPH_RBF_FILE_TYPE, "PERIPH_RBF", "PS", "GR5S027", periphery_from_stream},
    {VEK_PERIPH_POF_FILE_TYPE, "PERIPH_POF", "ASX4", "GR5S027", periphery_from_flash},
    {VEK_PERIPH_JIC_FILE_TYPE, "PERIPH_JIC", "ASX4", "GR5S027", periphery_from_flash},
    {VEK_PERIPH_RPD_FILE_TYPE, "PERIPH_RPD", "ASX4", "GR5S027", periphery_from_flash},
    {VEK_CVP_CORE_RBF_FILE_TYPE, "CVP_CORE_RBF", "ASX4", "GR5S027", core_beside_periphery},
    {VEK_HPS_CORE_RBF_FILE_TYPE, "HPS_CORE_RBF", "ASX4", "ZR9A012", core_beside_periphery},
};

class every_output : public testing::TestWithParam<OUTPUT_CASE>
{
};

/// What verification says about the file, "" for nothing.
std::string verdict_of(const SETUP_BUILDER& setup, const std::string& path)
{
    VERIFY_OPTIONS options;
    options.file = path;
    std::vector<OUTPUT_VERDICT> verdicts;
    const MSG_SINK_SCOPE sink([](const MSG_RECORD& record) { ADD_FAILURE() << record.text; });
    EXPECT_TRUE(verify_outputs(setup.document(), options, verdicts));
    EXPECT_EQ(verdicts.size(), 1U);
    return verdicts.empty() ? "no verdict" : verdicts[0].problem;
}

std::string written_path(const std::vector<WRITTEN_FILE>& written, VEK_FILE_TYPE type)
{
    for (const WRITTEN_FILE& file : written) {
        if (file.type == type) {
            return file.path;
        }
    }
    return "";
}

/// Places in the file: its first bytes, its middle, its end, and some that the seed chooses.
std::vector<std::size_t> places_in(std::size_t size)
{
    std::vector<std::size_t> places = {0, std::min<std::size_t>(11, size - 1), size / 2, size - 1};
    const BYTES random = noise(24, 77);
    for (std::size_t i = 0; i + 4 <= random.size(); i += 4) {
        const std::size_t number = random[i] + random[i + 1] * 256U + random[i + 2] * 65536U;
        places.push_back(number % size);
    }
    return places;
}

} // namespace

TEST(every_output_type, that_is_switched_on_has_a_case)
{
    std::vector<std::string> missing;
    for (const VEK_FILE_TYPE type : VEK_DB::get_all_output_file_type_keys()) {
        const bool has_case = std::any_of(std::begin(CASES), std::end(CASES),
                                          [type](const OUTPUT_CASE& one) { return one.type == type; });
        if (VEK_DB::get_enabled(type) && !VEK_DB::get_virtual_type(type) && !has_case) {
            missing.push_back(VEK_DB::get_description(type));
        }
    }
    EXPECT_THAT(missing, testing::IsEmpty());
}

TEST_P(every_output, verify_finds_a_single_flipped_bit_and_names_the_file)
{
    const auto setup = GetParam().make(GetParam(), SMALL_CORE);
    std::vector<WRITTEN_FILE> written;
    ASSERT_TRUE(generate_document(setup->document(), {}, written));
    const std::string path = written_path(written, GetParam().type);
    ASSERT_NE(path, "");
    EXPECT_EQ(verdict_of(*setup, path), "");
    const BYTES good = read_file(path);
    unsigned bit = 0;
    for (const std::size_t place : places_in(good.size())) {
        BYTES bad = good;
        bad[place] = static_cast<std::uint8_t>(bad[place] ^ (1U << bit));
        write_file(path, bad);
        const std::string problem = verdict_of(*setup, path);
        EXPECT_THAT(problem, testing::StartsWith(path + ": ")) << "offset " << place << " bit " << bit;
        EXPECT_THAT(problem, testing::EndsWith("."));
        bit = (bit + 3) % 8;
    }
    write_file(path, good);
    EXPECT_EQ(verdict_of(*setup, path), "");
}

TEST_P(every_output, peak_memory_stays_below_64_mib_and_the_bitstream)
{
    constexpr std::size_t CORE = 11'000'000;
    const auto setup = GetParam().make(GetParam(), CORE);
    // What tests before this one have left in the heap would count as the child's.
    ::malloc_trim(0);
    const pid_t child = ::fork();
    if (child == 0) {
        std::vector<WRITTEN_FILE> written;
        ::_exit(generate_document(setup->document(), {}, written) ? 0 : 1);
    }
    ASSERT_GT(child, 0);
    int status = 0;
    rusage usage{};
    ASSERT_EQ(::wait4(child, &status, 0, &usage), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    RecordProperty("peak_kib", static_cast<int>(usage.ru_maxrss));
    std::printf("%s: peak memory %.1f MiB\n", GetParam().word, static_cast<double>(usage.ru_maxrss) / 1024);
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
    EXPECT_LT(usage.ru_maxrss, 64 * 1024 + static_cast<long>(CORE / 1024));
#endif
}

INSTANTIATE_TEST_SUITE_P(of_the_table, every_output, testing::ValuesIn(CASES),
                         [](const auto& one) { return std::string(one.param.word); });
