// Encrypted streams beside what the crypto library does at best: GCM alone, and the keyed hash that makes the
// nonces from the content with it.

#include "atomic_file.h"
#include "bitstream_writer.h"
#include "configuration_stream.h"
#include "frame_sealer.h"
#include "stream_key.h"

#include <botan/aead.h>
#include <botan/mac.h>

#include <benchmark/benchmark.h>
#include <filesystem>
#include <random>

namespace
{

constexpr std::size_t PACKET = std::size_t{1024} * 1024;
constexpr std::size_t PACKETS = 256;

std::vector<std::uint8_t> noise(std::size_t size)
{
    std::mt19937 random(1);
    std::vector<std::uint8_t> bytes(size);
    for (std::uint8_t& byte : bytes)
        byte = static_cast<std::uint8_t>(random());
    return bytes;
}

SECRET_BYTES some_key()
{
    return SECRET_BYTES(32, 0x5A);
}

/// The primitives, one packet at a time: encryption, and with `keyed` the hash too.
void primitives(benchmark::State& state, bool keyed)
{
    const auto cipher = Botan::AEAD_Mode::create_or_throw("AES-256/GCM", Botan::ENCRYPTION);
    const auto hash = Botan::MessageAuthenticationCode::create_or_throw("HMAC(SHA-256)");
    cipher->set_key(some_key());
    hash->set_key(some_key());
    const std::vector<std::uint8_t> plain = noise(PACKET);
    const std::vector<std::uint8_t> nonce(12);
    SECRET_BYTES buffer;
    for (auto _ : state) {
        if (keyed) {
            hash->update(plain);
            benchmark::DoNotOptimize(hash->final());
        }
        buffer.assign(plain.begin(), plain.end());
        cipher->start(nonce);
        cipher->finish(buffer);
        benchmark::DoNotOptimize(buffer.data());
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(PACKET) * state.iterations());
}

void sealer(benchmark::State& state)
{
    const auto key = STREAM_KEY::derive(some_key());
    FRAME_SEALER sealer(*key, {});
    const std::vector<std::uint8_t> plain = noise(PACKET);
    const std::vector<std::uint8_t> header(17);
    SECRET_BYTES sealed;
    for (auto _ : state) {
        sealer.seal(header, plain, sealed);
        benchmark::DoNotOptimize(sealed.data());
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(PACKET) * state.iterations());
}

/// A whole stream, from the file to the spool.
void stream(benchmark::State& state, bool encrypted)
{
    const std::string directory = std::filesystem::temp_directory_path().string();
    const std::string path = directory + "/bench_encryption.sof";
    std::string message;
    BITSTREAM_WRITER writer(BITSTREAM_KIND::SOF, {"CA3M050", 0x20B05BC7});
    writer.add_section(SECTION_CORE, std::make_shared<MEMORY_SOURCE>(noise(PACKETS * PACKET)));
    const auto file = ATOMIC_FILE::create(path, 0600, message);
    if (!file || !writer.write(*file, message) || !file->commit(message)) {
        state.SkipWithError(message.c_str());
        return;
    }
    STREAM_INPUT input{.path = path};
    if (encrypted) {
        const auto encryption = std::make_shared<STREAM_ENCRYPTION>();
        encryption->key = STREAM_KEY::derive(some_key());
        encryption->info.id = encryption->key->id();
        input.encryption = encryption;
    }
    for (auto _ : state) {
        if (!build_configuration_stream({input}, directory, message)) {
            state.SkipWithError(message.c_str());
            break;
        }
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(PACKETS * PACKET) * state.iterations());
    std::filesystem::remove(path);
}

} // namespace

BENCHMARK_CAPTURE(primitives, gcm, false);
BENCHMARK_CAPTURE(primitives, gcm_and_keyed_hash, true);
BENCHMARK(sealer);
BENCHMARK_CAPTURE(stream, plain, false)->UseRealTime();
BENCHMARK_CAPTURE(stream, encrypted, true)->UseRealTime();

BENCHMARK_MAIN();
