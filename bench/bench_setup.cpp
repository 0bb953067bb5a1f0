#include "check.h"
#include "setup_reader.h"
#include "setup_view.h"
#include "setup_writer.h"
#include "temporary_directory.h"
#include "vek_file_assistant.h"

#include <benchmark/benchmark.h>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/parsers/SAXParser.hpp>
#include <xercesc/sax/HandlerBase.hpp>
#include <xercesc/util/PlatformUtils.hpp>

// A setup of many raw files, each in a partition of its own: read, structure checked, written. The bare pass is what
// the XML parser itself takes over the same bytes. Doubling the size may take at most 2.3 times as long.

namespace
{

using BYTES = std::vector<std::uint8_t>;

void build(PGM_COMMON_XML_VEK_VEK& document, int count)
{
    VEK_FILE_ASSISTANT::set(&document, VEK_CMD_OPT_SETTINGS, {{VEK_CMD_PARAM_SETTINGS_MODE, "ASX1"}});
    VEK_FILE_ASSISTANT::set(&document, VEK_CMD_OPT_FLASH_DEVICE,
                            {{VEK_CMD_PARAM_FLASH_DEVICE_ID, "Flash_Device_1"},
                             {VEK_CMD_PARAM_FLASH_DEVICE_TYPE, "MT25QU01G"}});
    for (int number = 1; number <= count; ++number) {
        const std::string text = std::to_string(number);
        VEK_FILE_ASSISTANT::set(&document, VEK_CMD_OPT_RAW_FILE,
                                {{VEK_CMD_PARAM_RAW_FILE_ID, "Raw_File_" + text},
                                 {VEK_CMD_PARAM_RAW_FILE_TYPE, "RBF"},
                                 {VEK_CMD_PARAM_RAW_FILE_RAW_FILE, "inputs/unit_" + text + ".rbf"}});
        VEK_FILE_ASSISTANT::set(&document, VEK_CMD_OPT_FLASH_DEVICE,
                                {{VEK_CMD_PARAM_FLASH_DEVICE_ID, "Flash_Device_1"},
                                 {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_ID, "P" + text},
                                 {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_S_ADDR, "auto"},
                                 {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_E_ADDR, "auto"}});
        VEK_FILE_ASSISTANT::set(&document, VEK_CMD_OPT_ASSIGNMENT,
                                {{VEK_CMD_PARAM_ASSIGNMENT_PARTITION_ID, "P" + text},
                                 {VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID, "Raw_File_" + text}});
    }
    VEK_FILE_ASSISTANT::set(&document, VEK_CMD_OPT_OUTPUT_FILE,
                            {{VEK_CMD_PARAM_OUTPUT_FILE_TYPE, "RPD"},
                             {VEK_CMD_PARAM_OUTPUT_FILE_FLASH_DEVICE_ID, "Flash_Device_1"}});
}

/// The setup with `count` raw files, and its bytes.
struct SETUP {
    explicit SETUP(int count) : document(PGM_COMMON_XML_ENUM_VEK)
    {
        build(document, count);
        std::string message;
        if (!write_setup_file(document, directory / "setup.vek", message)) {
            std::fprintf(stderr, "%s\n", message.c_str());
            std::exit(1);
        }
        std::ifstream file(directory / "setup.vek", std::ios::binary);
        bytes.assign(std::istreambuf_iterator<char>(file), {});
    }
    TEMPORARY_DIRECTORY directory;
    PGM_COMMON_XML_VEK_VEK document;
    BYTES bytes;
};

void bare_parser(benchmark::State& state)
{
    const SETUP setup(static_cast<int>(state.range(0)));
    xercesc::XMLPlatformUtils::Initialize();
    for (auto _ : state) {
        xercesc::SAXParser parser;
        xercesc::HandlerBase handler;
        parser.setDocumentHandler(&handler);
        const xercesc::MemBufInputSource source(setup.bytes.data(), setup.bytes.size(), "setup");
        parser.parse(source);
    }
    xercesc::XMLPlatformUtils::Terminate();
}

void read_setup(benchmark::State& state)
{
    const SETUP setup(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        std::unique_ptr<PGM_COMMON_XML_VEK_VEK> document;
        std::string message;
        if (!read_setup_bytes(setup.bytes, "setup", document, message)) {
            state.SkipWithError(message.c_str());
        }
        benchmark::DoNotOptimize(document);
    }
}

void check_structure_of_setup(benchmark::State& state)
{
    const SETUP setup(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        FINDINGS findings;
        check_structure(SETUP_VIEW(setup.document), findings);
        benchmark::DoNotOptimize(findings);
    }
}

void write_setup(benchmark::State& state)
{
    const SETUP setup(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        std::string message;
        if (!write_setup_file(setup.document, setup.directory / "again.vek", message)) {
            state.SkipWithError(message.c_str());
        }
    }
}

BENCHMARK(bare_parser)->Arg(10000)->Arg(20000)->Unit(benchmark::kMillisecond);
BENCHMARK(read_setup)->Arg(10000)->Arg(20000)->Unit(benchmark::kMillisecond);
BENCHMARK(check_structure_of_setup)->Arg(5000)->Arg(10000)->Arg(20000)->Unit(benchmark::kMillisecond);
BENCHMARK(write_setup)->Arg(10000)->Arg(20000)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
