// Bit swapping against memcpy, from buffer to buffer, for sizes that fit the caches and sizes that do not.

#include "bit_swap.h"

#include <benchmark/benchmark.h>
#include <cstring>
#include <vector>

namespace
{
void copy(benchmark::State& state)
{
    const std::size_t size = static_cast<std::size_t>(state.range(0));
    const std::vector<std::uint8_t> from(size, 0x5A);
    std::vector<std::uint8_t> to(size);
    for (auto _ : state) {
        std::memcpy(to.data(), from.data(), size);
        benchmark::DoNotOptimize(to.data());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.range(0) * state.iterations());
}

void swap(benchmark::State& state)
{
    const std::size_t size = static_cast<std::size_t>(state.range(0));
    const std::vector<std::uint8_t> from(size, 0x5A);
    std::vector<std::uint8_t> to(size);
    for (auto _ : state) {
        swap_bits(from, to);
        benchmark::DoNotOptimize(to.data());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.range(0) * state.iterations());
}

void swap_by(benchmark::State& state, BIT_SWAP_METHOD method)
{
    if (!bit_swap_available(method)) {
        state.SkipWithError("this processor does not have it");
        return;
    }
    const std::size_t size = static_cast<std::size_t>(state.range(0));
    const std::vector<std::uint8_t> from(size, 0x5A);
    std::vector<std::uint8_t> to(size);
    for (auto _ : state) {
        swap_bits_with(method, from.data(), to.data(), size);
        benchmark::DoNotOptimize(to.data());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.range(0) * state.iterations());
}

BENCHMARK(copy)->Arg(128 << 10)->Arg(1 << 20)->Arg(64 << 20);
BENCHMARK(swap)->Arg(128 << 10)->Arg(1 << 20)->Arg(64 << 20);
BENCHMARK_CAPTURE(swap_by, portable, BIT_SWAP_METHOD::PORTABLE)->Arg(1 << 20);
BENCHMARK_CAPTURE(swap_by, ssse3, BIT_SWAP_METHOD::SSSE3)->Arg(1 << 20);
BENCHMARK_CAPTURE(swap_by, avx2, BIT_SWAP_METHOD::AVX2)->Arg(1 << 20);
} // namespace

BENCHMARK_MAIN();
