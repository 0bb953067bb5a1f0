#include "child_process.h"
#include "firmware_archive.h"
#include "inspect.h"
#include "reference_crypto.h"
#include "security_test_support.h"
#include "stream_reader.h"
#include "test_keys.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <map>
#include <set>

using testing::HasSubstr;

namespace
{

constexpr std::size_t MIB = 1024 * 1024;

class stream_encryption : public SECURITY_TEST
{
};
class stream_signature : public SECURITY_TEST
{
};

/// Two and a bit packets of core data, of which one cannot be compressed, and periphery data.
TEST_CONTENT large_content(unsigned seed)
{
    std::mt19937 random(seed);
    TEST_CONTENT content = small_content(redundant_bytes(random, 2 * MIB + 12345));
    const BYTES dense = random_bytes(random, MIB);
    std::copy(dense.begin(), dense.end(), content.data[0].second.begin() + static_cast<std::ptrdiff_t>(MIB));
    content.data.insert(content.data.begin(), {SECTION_PERIPHERY, redundant_bytes(random, 100000)});
    return content;
}

STREAM_FACTS facts_of(const BYTES& stream)
{
    STREAM_FACTS facts;
    std::string message;
    EXPECT_TRUE(read_configuration_stream(MEMORY_SOURCE(stream), true, facts, nullptr, message)) << message;
    if (facts.images.empty())
        facts.images.emplace_back();
    return facts;
}

std::string read_error(const BYTES& stream)
{
    STREAM_FACTS facts;
    std::string message;
    EXPECT_FALSE(read_configuration_stream(MEMORY_SOURCE(stream), true, facts, nullptr, message));
    return message;
}

bool contains(const BYTES& all, std::span<const std::uint8_t> piece)
{
    return std::search(all.begin(), all.end(), piece.begin(), piece.end()) != all.end();
}

} // namespace

TEST_F(stream_encryption, a_device_with_the_key_gets_the_data_whatever_the_compression)
{
    const TEST_CONTENT content = large_content(1);
    const std::string path = add_file("top.sof", content);
    for (const std::size_t size : {16U, 32U}) {
        for (const int method : {0, 1, 2}) {
            const BYTES key = counted_key(size);
            const BYTES stream = build({{.path = path,
                                         .compression = method == 1,
                                         .enhanced_compression = method == 2,
                                         .encryption = encryption_with(key)}});
            const LOADED_STREAM loaded = load(stream, key);
            EXPECT_EQ(loaded.images[0].periphery, content.data[0].second);
            EXPECT_EQ(loaded.images[0].core, content.data[1].second);
            EXPECT_EQ(loaded.images[0].encrypted_packets, 4U);
            EXPECT_EQ(loaded.images[0].plain_packets, method == 0 ? 4U : 1U);
            // Nothing of the data stands in the stream as it is.
            EXPECT_FALSE(contains(stream, std::span(content.data[1].second).subspan(MIB + 1000, 16)));
        }
    }
}

TEST_F(stream_encryption, equal_images_give_equal_bytes_and_a_nonce_comes_back_only_with_its_content)
{
    const std::string one = add_file("one.sof", large_content(1));
    const std::string other = add_file("other.sof", large_content(2));
    const BYTES key = counted_key(32);
    std::map<BYTES, BYTES> packets; // nonce to all else
    std::size_t seen = 0;
    for (const std::string& path : {one, other, one})
        for (const bool compression : {false, true}) {
            const BYTES stream =
                build({{.path = path, .compression = compression, .encryption = encryption_with(key)}});
            EXPECT_EQ(
                stream,
                build({{.path = path, .compression = compression, .encryption = encryption_with(key)}}));
            for (const PACKET_PLACE& packet : packets_of(stream)) {
                if (packet.opcode < 0x18 || packet.opcode > 0x1A)
                    continue;
                const auto at = stream.begin() + static_cast<std::ptrdiff_t>(packet.offset);
                const BYTES nonce(at + 20, at + 32);
                const BYTES rest(at + 32, at + static_cast<std::ptrdiff_t>(packet.size));
                EXPECT_EQ(packets.emplace(nonce, rest).first->second, rest);
                ++seen;
            }
        }
    EXPECT_EQ(seen, 24U);
    EXPECT_EQ(packets.size(), 16U);
}

TEST_F(stream_encryption, the_same_frames_in_two_places_give_different_bytes)
{
    // All zeros: every packet of the core has the same content.
    const std::string path = add_file("zero.sof", small_content(BYTES(3 * MIB)));
    const BYTES stream = build({{.path = path, .encryption = encryption_with(counted_key(32))}});
    std::set<BYTES> contents;
    for (const PACKET_PLACE& packet : packets_of(stream))
        if (packet.opcode == 0x18) {
            const auto at = stream.begin() + static_cast<std::ptrdiff_t>(packet.offset);
            contents.insert(BYTES(at + 20, at + 64));
        }
    EXPECT_EQ(contents.size(), 3U);
}

TEST_F(stream_encryption, no_change_of_an_encrypted_image_gets_past_the_device)
{
    std::mt19937 random(3);
    const std::string path = add_file("top.sof", small_content(random_bytes(random, 2 * MIB)));
    const BYTES key = counted_key(32);
    const BYTES good = build({{.path = path, .encryption = encryption_with(key)}});
    const std::vector<PACKET_PLACE> packets = packets_of(good);
    ASSERT_EQ(packets.size(), 6U); // begin, device, key info, two of frames, end
    EXPECT_EQ(packets[3].opcode, 0x18);

    for (const std::size_t within : {20U, 31U, 40U, 1000U, 1048600U}) {
        BYTES bad = good;
        bad[packets[3].offset + within] ^= 0x10;
        mend_stream(bad);
        EXPECT_EQ(load_error(bad, key), "frames that do not authenticate") << within;
    }
    // What stands before the frames is bound to them: here a fuse option.
    BYTES fuses = good;
    fuses[packets[2].offset + 4 + 4] = 3;
    mend_stream(fuses);
    EXPECT_EQ(load_error(fuses, key), "frames that do not authenticate");
    // So is the order of the packets.
    BYTES swapped = good;
    std::swap_ranges(swapped.begin() + static_cast<std::ptrdiff_t>(packets[3].offset + 20),
                     swapped.begin() + static_cast<std::ptrdiff_t>(packets[4].offset),
                     swapped.begin() + static_cast<std::ptrdiff_t>(packets[4].offset + 20));
    mend_stream(swapped);
    EXPECT_EQ(load_error(swapped, key), "frames that do not authenticate");

    EXPECT_EQ(load_error(good, counted_key(32, 1)), "the device has another key");
    EXPECT_EQ(load_error(good, counted_key(16)), "the device has no key of that length");
}

TEST_F(stream_encryption, the_reader_checks_what_it_can_without_the_key)
{
    std::mt19937 random(3);
    const std::string path = add_file("top.sof", small_content(random_bytes(random, 1000)));
    const auto encryption = std::make_shared<STREAM_ENCRYPTION>(*encryption_with(counted_key(32)));
    encryption->info.place = KEY_PLACE::FUSES;
    encryption->info.during_reconfiguration = true;
    encryption->info.fuse_options = {1, 2, 3, 0, 0, 0, 0, 0, 0, 1, 3};
    const BYTES stream = build({{.path = path, .encryption = encryption}});
    const STREAM_FACTS facts = facts_of(stream);
    ASSERT_TRUE(facts.images[0].key.has_value());
    EXPECT_EQ(*facts.images[0].key, encryption->info);
    EXPECT_EQ(facts.images[0].stored_length[1], 1028U);

    write_file(m_directory / "top.rbf", stream);
    std::string message;
    EXPECT_TRUE(verify_file(m_directory / "top.rbf", message)) << message;
    EXPECT_FALSE(
        extract_from_file(m_directory / "top.rbf", EXTRACTED_PART::CORE, m_directory / "core.bin", message));
    EXPECT_EQ(message,
              (m_directory / "top.rbf") + ": The configuration data is encrypted and cannot be taken out.");
    EXPECT_THAT(m_directory.entries(), testing::Not(testing::Contains("core.bin")));

    // Frames in the clear among encrypted ones, and the other way round.
    BYTES mixed = stream;
    mixed[packets_of(mixed)[3].offset] = 0x10;
    mend_stream(mixed);
    EXPECT_THAT(read_error(mixed), HasSubstr("frames in the clear come in an encrypted image"));
    BYTES unannounced = build({{.path = path}});
    unannounced[packets_of(unannounced)[2].offset] = 0x18;
    mend_stream(unannounced);
    EXPECT_THAT(read_error(unannounced), HasSubstr("encrypted frames come without a key info packet"));
    BYTES short_frames = stream;
    put_number(short_frames, packets_of(stream)[3].offset + 8, 4, 999);
    mend_stream(short_frames);
    EXPECT_THAT(read_error(short_frames), HasSubstr("the encrypted frames have a wrong length"));
}

TEST_F(stream_encryption, each_image_of_a_chain_has_its_own_key)
{
    std::mt19937 random(4);
    const BYTES first = random_bytes(random, 5000);
    const BYTES second = random_bytes(random, 6000);
    const std::string one = add_file("one.sof", small_content(first));
    const std::string two = add_file("two.sof", small_content(second));
    const BYTES key = counted_key(32);
    const BYTES stream = build({{.path = one, .encryption = encryption_with(key)}, {.path = two}});
    const LOADED_STREAM loaded = load(stream, key);
    ASSERT_EQ(loaded.images.size(), 2U);
    EXPECT_EQ(loaded.images[0].core, first);
    EXPECT_EQ(loaded.images[1].core, second);
    EXPECT_TRUE(loaded.images[1].key_info.empty());
}

TEST_F(stream_encryption, another_program_decrypts_a_stream_by_its_documentation)
{
    std::mt19937 random(5);
    const BYTES core = random_bytes(random, MIB + 77);
    const std::string path = add_file("top.sof", small_content(core));
    const BYTES key = counted_key(32);
    write_file(m_directory / "top.rbf", build({{.path = path, .encryption = encryption_with(key)}}));
    const std::string script = R"(
import hashlib, sys
from cryptography.hazmat.primitives.ciphers.aead import AESGCM
from cryptography.hazmat.primitives.hashes import SHA256
from cryptography.hazmat.primitives.kdf.hkdf import HKDF
data = open(sys.argv[1], 'rb').read()
key = bytes(range(32))
cipher = HKDF(SHA256(), 32, b'imagewright configuration stream 1', b'cipher').derive(key)
at, start, chain, core = 4, None, None, b''
while data[at] != 0x7F:
    size = int.from_bytes(data[at + 1:at + 4], 'little')
    payload = data[at + 4:at + 4 + size]
    if data[at] == 0x02:
        start = at
    if data[at] == 0x18:
        chain = chain or hashlib.sha256(data[start:at]).digest()[:16]
        core += AESGCM(cipher).decrypt(payload[16:28], payload[28:], chain + data[at:at + 1] + payload[:16])
        chain = payload[-16:]
    at += size + 8
open(sys.argv[2], 'wb').write(core)
)";
    write_file(m_directory / "decrypt.py", script);
    const CHILD_RESULT result = run_program(
        {"python3", m_directory / "decrypt.py", m_directory / "top.rbf", m_directory / "core.bin"});
    ASSERT_EQ(result.exit_code, 0) << result.err;
    EXPECT_EQ(read_file(m_directory / "core.bin"), core);
}

TEST_F(stream_encryption, a_stream_takes_little_memory_and_leaves_no_file)
{
    std::mt19937 random(6);
    const std::string path = add_file("top.sof", small_content(random_bytes(random, 48 * MIB)));
    const PEAK_MEMORY memory;
    std::string message;
    const auto stream = build_configuration_stream(
        {{.path = path, .encryption = encryption_with(counted_key(32))}}, m_directory.path(), message);
    ASSERT_NE(stream, nullptr) << message;
    EXPECT_LT(memory.kib(), 40U * 1024); // the thread sanitizer takes its part
    EXPECT_THAT(m_directory.entries(), testing::ElementsAre("top.sof"));
}

TEST_F(stream_signature, a_public_program_verifies_the_signature_of_each_curve)
{
    const std::string path = add_file("top.sof", large_content(7));
    for (const std::string curve : {"P-256", "P-384"}) {
        const BYTES stream =
            build({{.path = path, .encryption = encryption_with(counted_key(32)), .signer = signer(curve)}});
        const LOADED_IMAGE image = load(stream, counted_key(32)).images[0];
        EXPECT_EQ(image.signature_curve, curve);
        const auto begin = stream.begin();
        write_file(m_directory / "signed", BYTES(begin + static_cast<std::ptrdiff_t>(image.signed_begin),
                                                 begin + static_cast<std::ptrdiff_t>(image.signed_end)));
        write_file(m_directory / "signature", reference_der_signature(image.signature));
        make_public_pem(m_directory / ("key-" + curve + ".pem"), m_directory / "public.pem");
        EXPECT_EQ(run_openssl("dgst -sha384 -verify '" + (m_directory / "public.pem") + "' -signature '" +
                              (m_directory / "signature") + "' '" + (m_directory / "signed") + "'"),
                  "Verified OK\n");
        // The key in the stream is the public half of the key in the file.
        EXPECT_EQ(reference_public_pem(curve, image.public_key), read_text_file(m_directory / "public.pem"));
        const STREAM_FACTS facts = facts_of(stream);
        ASSERT_TRUE(facts.images[0].signer.has_value());
        EXPECT_EQ(facts.images[0].signer->point, image.public_key);
    }
}

TEST_F(stream_signature, the_same_image_and_key_give_the_same_signature)
{
    const std::string path = add_file("top.sof", large_content(7));
    const auto key = signer("P-384");
    EXPECT_EQ(build({{.path = path, .signer = key}}), build({{.path = path, .signer = key}}));
}

TEST_F(stream_signature, changed_and_missing_signatures_are_found)
{
    std::mt19937 random(8);
    const std::string path = add_file("top.sof", small_content(random_bytes(random, 1000)));
    const BYTES good = build({{.path = path, .signer = signer("P-256")}});
    const std::vector<PACKET_PLACE> packets = packets_of(good);
    ASSERT_EQ(packets.size(), 5U); // begin, device, frames, signature, end
    EXPECT_EQ(packets[3].opcode, 0x20);
    for (const std::size_t at :
         {packets[1].offset + 20, packets[2].offset + 500, packets[3].offset + 20, packets[3].offset + 100}) {
        BYTES bad = good;
        bad[at] ^= 1;
        mend_stream(bad);
        EXPECT_FALSE(read_error(bad).empty());
        EXPECT_FALSE(load_error(bad).empty());
    }
    BYTES stripped = good;
    stripped.erase(stripped.begin() + static_cast<std::ptrdiff_t>(packets[3].offset),
                   stripped.begin() + static_cast<std::ptrdiff_t>(packets[4].offset));
    mend_stream(stripped);
    EXPECT_THAT(read_error(stripped), HasSubstr("image 1 has no signature, which it announces"));
    BYTES unannounced = good;
    unannounced[packets[1].offset + 4] = 0;
    mend_stream(unannounced);
    EXPECT_THAT(read_error(unannounced), HasSubstr("the signature is out of place"));
}

TEST_F(stream_signature, each_image_of_a_chain_is_signed_by_itself)
{
    std::mt19937 random(9);
    const std::string one = add_file("one.sof", small_content(random_bytes(random, 1000)));
    const std::string two = add_file("two.sof", small_content(random_bytes(random, 2000)));
    const auto key = signer("P-256");
    const BYTES both = build({{.path = one, .signer = key}, {.path = two, .signer = key}});
    const LOADED_STREAM loaded = load(both);
    ASSERT_EQ(loaded.images.size(), 2U);
    EXPECT_EQ(loaded.images[1].signature, load(build({{.path = two, .signer = key}})).images[0].signature);
    EXPECT_EQ(facts_of(both).images.size(), 2U);
}

TEST_F(stream_signature, co_signed_firmware_keeps_the_signature_of_its_maker)
{
    std::mt19937 random(10);
    TEST_CONTENT content = small_content(random_bytes(random, 3000));
    content.data.push_back({SECTION_FIRMWARE, random_bytes(random, 100)});
    const std::string path = add_file("top.sof", content);
    const BYTES firmware = random_bytes(random, 70000);
    std::string message;
    ASSERT_TRUE(write_firmware_archive(m_directory / "maker.fw", 48, 7, MEMORY_SOURCE(firmware),
                                       *signer("P-384"), message))
        << message;
    const auto owner = signer("P-256");
    for (const bool encrypted : {false, true}) {
        const BYTES stream = build({{.path = path,
                                     .compression = true,
                                     .firmware_path = m_directory / "maker.fw",
                                     .encryption = encrypted ? encryption_with(counted_key(32)) : nullptr,
                                     .signer = owner}});
        const LOADED_IMAGE image = load(stream, counted_key(32)).images[0];
        EXPECT_EQ(image.firmware, firmware);
        EXPECT_EQ(image.firmware_record.size(), 32U + 4 + 4 * 48);
        EXPECT_EQ(image.signature_curve, "P-256");
        const STREAM_FACTS facts = facts_of(stream);
        ASSERT_TRUE(facts.images[0].firmware.has_value());
        EXPECT_EQ(facts.images[0].firmware->family, 48U);
        EXPECT_EQ(facts.images[0].firmware->release, 7U);
    }
    // Firmware that was changed under a signature of the owner alone.
    BYTES stream = build({{.path = path, .firmware_path = m_directory / "maker.fw"}});
    for (const PACKET_PLACE& packet : packets_of(stream))
        if (packet.opcode == 0x10 && stream[packet.offset + 4] == 2)
            stream[packet.offset + 100] ^= 1;
    mend_stream(stream);
    EXPECT_THAT(read_error(stream), HasSubstr("the signature of the maker does not fit the firmware"));
    EXPECT_EQ(load_error(stream), "firmware that its maker did not sign");

    BYTES damaged = read_file(m_directory / "maker.fw");
    damaged[5000] ^= 1;
    write_file(m_directory / "bad.fw", damaged);
    EXPECT_EQ(refusal({{.path = path, .firmware_path = m_directory / "bad.fw"}}),
              (m_directory / "bad.fw") +
                  " is damaged: the signature of its maker does not fit; take a good copy of it.");
    for_each_mutation(read_file(m_directory / "maker.fw"), 64, [&](const BYTES& bad) {
        write_file(m_directory / "bad.fw", bad);
        FIRMWARE_ARCHIVE archive;
        std::string reason;
        EXPECT_FALSE(open_firmware_archive(m_directory / "bad.fw", true, archive, reason));
        EXPECT_FALSE(reason.empty());
    });
}

TEST_F(stream_signature, a_key_that_is_elsewhere_signs_in_two_steps)
{
    std::mt19937 random(11);
    const std::string path = add_file("top.sof", small_content(random_bytes(random, 1000)));
    for (const std::string curve : {"P-256", "P-384"}) {
        const TEMPORARY_DIRECTORY desk;
        const auto key = signer(curve);
        const auto writer = make_desk_signer(key->public_key(), "top", {.digest_directory = desk.path()});
        build({{.path = path, .signer = writer}});
        ASSERT_EQ(desk.entries().size(), 1U);
        const std::string digest = desk / desk.entries()[0];
        EXPECT_THAT(digest, testing::MatchesRegex(".*/top-[0-9a-f]+\\.sha384"));
        EXPECT_EQ(read_file(digest).size(), 48U);
        const std::string signature = digest.substr(0, digest.size() - 7) + ".sig";

        const auto reader = make_desk_signer(key->public_key(), "top", {.signature_directory = desk.path()});
        EXPECT_THAT(refusal({{.path = path, .signer = reader}}),
                    testing::AllOf(HasSubstr(signature),
                                   HasSubstr("Sign the digest of that name and put the signature there.")));
        const std::string pem = m_directory / ("key-" + curve + ".pem");
        run_openssl("pkeyutl -sign -inkey '" + pem + "' -in '" + digest + "' -out '" + signature + "'");
        const BYTES stream = build({{.path = path, .signer = reader}});
        const LOADED_IMAGE image = load(stream).images[0];
        EXPECT_EQ(image.signature_curve, curve);
        EXPECT_EQ(read_file(digest),
                  reference_digest("SHA384", std::span(stream).subspan(
                                                 image.signed_begin, image.signed_end - image.signed_begin)));
        // The two numbers as they are do as well.
        write_file(signature, image.signature);
        EXPECT_EQ(build({{.path = path, .signer = reader}}), stream);

        BYTES wrong = image.signature;
        wrong[3] ^= 1;
        write_file(signature, wrong);
        EXPECT_EQ(refusal({{.path = path, .signer = reader}}),
                  signature +
                      " is not a signature of the digest of that name by the key that the setup names; "
                      "sign the digest again with that key.");
        make_private_pem(m_directory / "other.pem", curve);
        run_openssl("pkeyutl -sign -inkey '" + (m_directory / "other.pem") + "' -in '" + digest + "' -out '" +
                    signature + "'");
        EXPECT_THAT(refusal({{.path = path, .signer = reader}}),
                    HasSubstr("is not a signature of the digest"));
        write_file(signature, std::string("garbage"));
        EXPECT_EQ(refusal({{.path = path, .signer = reader}}),
                  signature + " holds no " + curve +
                      " signature, neither in DER nor as two numbers; sign the digest of that name again.");
    }
}
