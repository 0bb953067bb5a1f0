// What the formats cost without any file: a source in memory, a sink that takes everything.

#include "bit_swap.h"
#include "format_registry.h"
#include "intel_hex_reader.h"

#include <benchmark/benchmark.h>
#include <random>

namespace
{
constexpr std::size_t SIZE = 16 * 1024 * 1024;

const MEMORY_SOURCE& stream()
{
    static const MEMORY_SOURCE source([] {
        std::mt19937_64 random(1);
        std::vector<std::uint8_t> bytes(SIZE);
        for (std::uint8_t& byte : bytes)
            byte = static_cast<std::uint8_t>(random());
        return bytes;
    }());
    return source;
}

class NOWHERE final : public BYTE_SINK
{
public:
    bool write(std::span<const std::uint8_t> bytes, std::string&) override
    {
        benchmark::DoNotOptimize(bytes.data());
        return true;
    }
};

FORMAT_REQUEST request()
{
    FORMAT_REQUEST result;
    result.image = &stream();
    result.device = "bench";
    result.target = {"bench", 0x10A15BC7, 10};
    return result;
}

void write_format(benchmark::State& state, VEK_FILE_TYPE type)
{
    const FORMAT_REQUEST what = request();
    NOWHERE sink;
    std::string message;
    for (auto _ : state)
        if (!find_format(type)->write(what, sink, message))
            state.SkipWithError(message.c_str());
    state.SetBytesProcessed(static_cast<std::int64_t>(SIZE) * state.iterations());
}

MEMORY_SOURCE written(VEK_FILE_TYPE type)
{
    MEMORY_SINK sink;
    std::string message;
    find_format(type)->write(request(), sink, message);
    return MEMORY_SOURCE(sink.take());
}

void verify_format(benchmark::State& state, VEK_FILE_TYPE type)
{
    const FORMAT_REQUEST what = request();
    const MEMORY_SOURCE file = written(type);
    std::string message;
    for (auto _ : state)
        if (!find_format(type)->verify(what, file, message))
            state.SkipWithError(message.c_str());
    state.SetBytesProcessed(static_cast<std::int64_t>(SIZE) * state.iterations());
}

void index_intel_hex(benchmark::State& state)
{
    const MEMORY_SOURCE file = written(VEK_HEX_FILE_TYPE);
    std::string message;
    for (auto _ : state) {
        INTEL_HEX_FILE contents;
        if (!INTEL_HEX_FILE::read(file, contents, message))
            state.SkipWithError(message.c_str());
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(SIZE) * state.iterations());
}

BENCHMARK_CAPTURE(write_format, rbf, VEK_RBF_FILE_TYPE);
BENCHMARK_CAPTURE(write_format, ttf, VEK_TTF_FILE_TYPE);
BENCHMARK_CAPTURE(write_format, hex, VEK_HEX_FILE_TYPE);
BENCHMARK_CAPTURE(write_format, svf, VEK_SVF_FILE_TYPE);
BENCHMARK_CAPTURE(write_format, jam, VEK_JAM_FILE_TYPE);
BENCHMARK_CAPTURE(write_format, jbc, VEK_JBC_FILE_TYPE);
BENCHMARK_CAPTURE(write_format, rpd, VEK_RPD_FILE_TYPE);
BENCHMARK_CAPTURE(write_format, pof, VEK_POF_FILE_TYPE);
BENCHMARK_CAPTURE(verify_format, rbf, VEK_RBF_FILE_TYPE);
BENCHMARK_CAPTURE(verify_format, ttf, VEK_TTF_FILE_TYPE);
BENCHMARK_CAPTURE(verify_format, hex, VEK_HEX_FILE_TYPE);
BENCHMARK_CAPTURE(verify_format, svf, VEK_SVF_FILE_TYPE);
BENCHMARK_CAPTURE(verify_format, jam, VEK_JAM_FILE_TYPE);
BENCHMARK_CAPTURE(verify_format, jbc, VEK_JBC_FILE_TYPE);
BENCHMARK_CAPTURE(verify_format, rpd, VEK_RPD_FILE_TYPE);
BENCHMARK_CAPTURE(verify_format, pof, VEK_POF_FILE_TYPE);
BENCHMARK(index_intel_hex);
} // namespace

BENCHMARK_MAIN();
