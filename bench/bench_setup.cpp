#include "check.h"
#include "setup_reader.h"
#include "setup_view.h"
#include "setup_writer.h"
#include "temporary_directory.h"

#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/parsers/SAXParser.hpp>
#include <xercesc/sax/HandlerBase.hpp>
#include <xercesc/util/PlatformUtils.hpp>

#include <benchmark/benchmark.h>
#include <map>
#include <string>
#include <vector>

// A setup of many raw files, each in a partition of its own: read, structure checked, written. The bare pass
// is what the XML parser itself takes over the same bytes. Doubling the size may take at most 2.3 times as
// long.

namespace
{

using BYTES = std::vector<std::uint8_t>;

BYTES make_setup(int count)
{
    std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<VEK version=\"1\">\n"
                       "  <SETTINGS mode=\"ASX1\"/>\n  <FLASH_DEVICES>\n"
                       "    <FLASH_DEVICE type=\"MT25QU01G\" id=\"Flash_Device_1\">\n";
    const auto for_each_number = [count, &text](const auto& line) {
        for (int number = 1; number <= count; ++number) {
            text += line(std::to_string(number));
        }
    };
    for_each_number([](const std::string& number) { return "      <PARTITION id=\"P" + number + "\"/>\n"; });
    text += "    </FLASH_DEVICE>\n  </FLASH_DEVICES>\n  <RAW_FILES>\n";
    for_each_number([](const std::string& number) {
        return "    <RAW_FILE type=\"RBF\" id=\"Raw_File_" + number + "\">inputs/unit_" + number +
               ".rbf</RAW_FILE>\n";
    });
    text += "  </RAW_FILES>\n  <ASSIGNMENTS>\n";
    for_each_number([](const std::string& number) {
        return "    <ASSIGNMENT partition_id=\"P" + number + "\">\n      <RAW_FILE_ID>Raw_File_" + number +
               "</RAW_FILE_ID>\n    </ASSIGNMENT>\n";
    });
    text += "  </ASSIGNMENTS>\n  <OUTPUT_FILES>\n    <OUTPUT_FILE type=\"RPD\">\n"
            "      <FLASH_DEVICE_ID>Flash_Device_1</FLASH_DEVICE_ID>\n    </OUTPUT_FILE>\n  </OUTPUT_FILES>\n"
            "</VEK>\n";
    return {text.begin(), text.end()};
}

/// The setup with `count` raw files: its bytes, and the document as it is read from them.
struct SETUP {
    explicit SETUP(int count) : bytes(make_setup(count))
    {
        std::string message;
        if (!read_setup_bytes(bytes, "setup", document, message)) {
            std::fprintf(stderr, "%s\n", message.c_str());
            std::exit(1);
        }
    }
    TEMPORARY_DIRECTORY directory;
    BYTES bytes;
    std::unique_ptr<PGM_COMMON_XML_VEK_VEK> document;
};

/// Made once for each size.
const SETUP& setup_of(const benchmark::State& state)
{
    static std::map<std::int64_t, SETUP> setups;
    return setups.try_emplace(state.range(0), static_cast<int>(state.range(0))).first->second;
}

void bare_parser(benchmark::State& state)
{
    const SETUP& setup = setup_of(state);
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
    const SETUP& setup = setup_of(state);
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
    const SETUP& setup = setup_of(state);
    for (auto _ : state) {
        FINDINGS findings;
        check_structure(SETUP_VIEW(*setup.document), findings);
        benchmark::DoNotOptimize(findings);
    }
}

void write_setup(benchmark::State& state)
{
    const SETUP& setup = setup_of(state);
    for (auto _ : state) {
        std::string message;
        if (!write_setup_file(*setup.document, setup.directory / "again.vek", message)) {
            state.SkipWithError(message.c_str());
        }
    }
}

BENCHMARK(bare_parser)->Arg(10000)->Arg(20000)->Unit(benchmark::kMillisecond);
BENCHMARK(read_setup)->Arg(10000)->Arg(20000)->Unit(benchmark::kMillisecond);
BENCHMARK(check_structure_of_setup)
    ->Arg(5000)
    ->Arg(10000)
    ->Arg(20000)
    ->Arg(40000)
    ->Arg(80000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(write_setup)->Arg(10000)->Arg(20000)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
