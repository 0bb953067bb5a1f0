#include "aek_file.h"
#include "firmware_archive.h"
#include "lock_file.h"
#include "map_decoder.h"
#include "security_fixture.h"

#include <filesystem>

namespace
{

using testing::HasSubstr;
using testing::Not;

LOADED_STREAM load(const BYTES& bytes, const BYTES& key = {}, std::size_t offset = 0)
{
    LOADED_STREAM stream;
    std::string error;
    EXPECT_TRUE(load_configuration_stream(std::span(bytes).subspan(offset), stream, error, key)) << error;
    if (stream.images.empty()) {
        stream.images.emplace_back();
    }
    return stream;
}

bool loads(const BYTES& bytes, const BYTES& key)
{
    LOADED_STREAM stream;
    std::string error;
    return load_configuration_stream(bytes, stream, error, key);
}

bool holds(const BYTES& bytes, const BYTES& part)
{
    return std::search(bytes.begin(), bytes.end(), part.begin(), part.end()) != bytes.end();
}

void finalise(SIGNED& setup)
{
    const BYTES key = key_of(KEY_DIGITS);
    const SECRET_BYTES password(SIGNED::PASSWORD.begin(), SIGNED::PASSWORD.end());
    std::string message;
    ASSERT_TRUE(
        write_aek_file(setup.path("key.aek"), SECRET_BYTES(key.begin(), key.end()), &password, message))
        << message;
    PGM_COMMON_XML_VEK_PATH& file = file_of(setup);
    file.finalize_encryption = "1";
    file.aek_file = setup.path("key.aek");
}

/// The openssl program on the signature of an image.
void expect_openssl_verifies(SIGNED& setup, const BYTES& stream, const LOADED_IMAGE& image)
{
    const auto begin = stream.begin();
    write_file(setup.path("signed"), BYTES(begin + static_cast<std::ptrdiff_t>(image.signed_begin),
                                           begin + static_cast<std::ptrdiff_t>(image.signed_end)));
    write_file(setup.path("signature"), reference_der_signature(image.signature));
    run_openssl("pkey -in '" + setup.path("key.pem") + "' -passin 'file:" + setup.path("password") +
                "' -pubout -out '" + setup.path("public.pem") + "'");
    EXPECT_EQ(run_openssl("dgst -sha384 -verify '" + setup.path("public.pem") + "' -signature '" +
                          setup.path("signature") + "' '" + setup.path("signed") + "'"),
              "Verified OK\n");
}

std::string digits_of(const BYTES& bytes)
{
    std::string digits;
    for (const std::uint8_t byte : bytes) {
        digits += "0123456789abcdef"[byte / 16];
        digits += "0123456789abcdef"[byte % 16];
    }
    return digits;
}

/// The packets between DEVICE and the first frames.
BYTES records_of(const BYTES& stream)
{
    BYTES records;
    for (std::size_t at = 4; at + 8 <= stream.size();) {
        const std::size_t size = 8 + stream[at + 1] + stream[at + 2] * 256U + stream[at + 3] * 65536U;
        if (stream[at] >= 0x10) {
            break;
        }
        if (stream[at] > 0x02 && stream[at] != 0x08) {
            records.insert(records.end(), stream.begin() + static_cast<std::ptrdiff_t>(at),
                           stream.begin() + static_cast<std::ptrdiff_t>(at + size));
        }
        at += size;
    }
    return records;
}

std::string line_of(const std::string& text, const std::string& words)
{
    const std::size_t at = text.find("\n" + words);
    return at == std::string::npos
               ? "(none)"
               : text.substr(at + 1 + words.size(), text.find('\n', at + 1) - at - 1 - words.size());
}

} // namespace

TEST(encryption, an_encrypted_stream_gives_the_input_to_the_key_and_nothing_to_another)
{
    for (const char* compression : {"0", "1"}) {
        ENCRYPTED setup;
        file_of(setup).compression = compression;
        setup.output("RBF", {"Bitstream_1"});
        expect_written(setup);
        const BYTES stream = read_file(setup.path("out.rbf"));
        EXPECT_EQ(load(stream, key_of(KEY_DIGITS)).images[0].configuration(),
                  configuration_of(setup.content));
        EXPECT_FALSE(loads(stream, key_of(OTHER_DIGITS)));
        EXPECT_FALSE(loads(stream, {}));
        const BYTES plain = configuration_of(setup.content);
        EXPECT_FALSE(holds(stream, BYTES(plain.begin() + 2000, plain.begin() + 2032)));
    }
}

TEST(encryption, equal_input_gives_equal_bytes_and_another_key_other_bytes)
{
    ENCRYPTED setup;
    setup.output("RBF", {"Bitstream_1"});
    expect_written(setup);
    const BYTES first = read_file(setup.path("out.rbf"));
    expect_written(setup);
    EXPECT_EQ(read_file(setup.path("out.rbf")), first);
    file_of(setup).key1 = "first";
    expect_written(setup);
    EXPECT_NE(read_file(setup.path("out.rbf")), first);
}

TEST(encryption, the_options_of_the_setup_reach_the_key_record)
{
    ENCRYPTED setup;
    setup.output("RBF", {"Bitstream_1"});
    expect_written(setup);
    const BYTES plain = load(read_file(setup.path("out.rbf")), key_of(KEY_DIGITS)).images[0].key_info;
    PGM_COMMON_XML_VEK_PATH& file = file_of(setup);
    file.non_volatile_key = "1";
    file.security_opt_no_pr = "3";
    file.security_opt_secure = "2";
    file.decryption_during_pr = "1";
    expect_written(setup);
    const BYTES record = load(read_file(setup.path("out.rbf")), key_of(KEY_DIGITS)).images[0].key_info;
    ASSERT_EQ(record.size(), plain.size());
    BYTES expected = plain;
    std::size_t differences = 0;
    for (std::size_t i = 0; i < record.size(); ++i) {
        differences += record[i] != expected[i] ? 1 : 0;
    }
    // Place, during reconfiguration, and the two fuse options.
    EXPECT_EQ(differences, 4U) << digits_of(plain) << " " << digits_of(record);
}

TEST(encryption, a_lock_file_encrypts_as_its_key_does)
{
    ENCRYPTED setup;
    setup.output("RBF", {"Bitstream_1"});
    expect_written(setup);
    const BYTES by_key = read_file(setup.path("out.rbf"));
    const BYTES key = key_of(KEY_DIGITS);
    std::string message;
    ASSERT_TRUE(write_lock_file(setup.path("device.elk"),
                                {"CA3M050", false, STREAM_KEY::derive(SECRET_BYTES(key.begin(), key.end()))},
                                message))
        << message;
    PGM_COMMON_XML_VEK_PATH& file = file_of(setup);
    file.key_file1 = file.key1 = "";
    file.elk_file = setup.path("device.elk");
    expect_written(setup);
    EXPECT_EQ(read_file(setup.path("out.rbf")), by_key);
}

TEST(encryption, a_key_programming_file_holds_the_key_for_its_owner_alone)
{
    ENCRYPTED setup;
    file_of(setup).ekp_file = setup.path("own.ekp");
    setup.output("EKP", {"Bitstream_1"});
    setup.output("RBF", {"Bitstream_1"});
    expect_written(setup);
    for (const char* name : {"out.ekp", "own.ekp"}) {
        const BYTES file = read_file(setup.path(name));
        EXPECT_TRUE(holds(file, key_of(KEY_DIGITS)));
        EXPECT_FALSE(holds(file, key_of(OTHER_DIGITS)));
        EXPECT_TRUE(
            holds(file, load(read_file(setup.path("out.rbf")), key_of(KEY_DIGITS)).images[0].key_info));
        EXPECT_EQ(std::filesystem::status(setup.path(name)).permissions(),
                  std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
    }
    EXPECT_EQ(read_file(setup.path("out.ekp")), read_file(setup.path("own.ekp")));
}

TEST(encryption, an_image_in_a_flash_device_is_encrypted_too)
{
    ENCRYPTED setup("ASX4");
    setup.flash("F", "W25Q32JV");
    setup.partition("F", "P1", "0x00010000", "0x0007FFFF");
    setup.assign("P1", "Bitstream_1", "0");
    setup.output("RPD", {}, "F");
    expect_written(setup);
    const BYTES image = read_file(setup.path("out.rpd"));
    EXPECT_EQ(load(image, key_of(KEY_DIGITS), 0x10000).images[0].configuration(),
              configuration_of(setup.content));
}

TEST(signing, the_signature_verifies_and_the_openssl_program_agrees)
{
    SIGNED setup;
    finalise(setup);
    setup.output("RBF", {"Bitstream_1"});
    expect_written(setup);
    const BYTES stream = read_file(setup.path("out.rbf"));
    const LOADED_IMAGE image = load(stream, key_of(KEY_DIGITS)).images[0];
    EXPECT_EQ(image.configuration(), configuration_of(setup.content));
    EXPECT_EQ(image.firmware, noise(5000, setup.content.seed + 1000));
    EXPECT_GT(image.encrypted_packets, 0U);
    EXPECT_EQ(image.signature_curve, "P-384");
    expect_openssl_verifies(setup, stream, image);
    expect_written(setup);
    EXPECT_EQ(read_file(setup.path("out.rbf")), stream);
}

TEST(signing, an_encrypted_and_signed_image_stands_in_a_flash_device)
{
    SIGNED setup("ASX4");
    finalise(setup);
    setup.flash("F", "W25Q128JV");
    setup.reserved("F", false, false);
    setup.partition("F", "P1");
    setup.assign("P1", "Bitstream_1", "0");
    setup.output("RPD", {}, "F", {"MAP"});
    const SECURE_RUN run = run_generation(setup);
    ASSERT_TRUE(run.success) << run.messages;
    const DECODED_MAP map = decode_map(read_file(setup.path("out_secondary.map")));
    const auto row = std::find_if(map.rows.begin(), map.rows.end(),
                                  [](const auto& candidate) { return candidate.at("Partition") == "P1"; });
    ASSERT_NE(row, map.rows.end());
    const BYTES image = read_file(setup.path("out.rpd"));
    const auto start = static_cast<std::ptrdiff_t>(std::stoull(row->at("Start"), nullptr, 16));
    const BYTES stream(image.begin() + start, image.end());
    const LOADED_IMAGE loaded = load(stream, key_of(KEY_DIGITS)).images[0];
    EXPECT_EQ(loaded.configuration(), configuration_of(setup.content));
    expect_openssl_verifies(setup, stream, loaded);
}

TEST(signing, co_signed_firmware_takes_the_place_of_the_firmware_of_the_bitstream)
{
    SIGNED setup;
    make_private_pem(setup.path("maker.pem"), "P-256");
    PEM_KEY maker;
    std::string message;
    ASSERT_TRUE(load_pem_key(setup.path("maker.pem"), nullptr, maker, message)) << message;
    ASSERT_TRUE(write_firmware_archive(setup.path("maker.fw"), DEV_FAMILY_ZIRCON, 7,
                                       MEMORY_SOURCE(noise(3000, 99)), *maker.signer, message))
        << message;
    file_of(setup).fw_source = setup.path("maker.fw");
    setup.output("RBF", {"Bitstream_1"});
    expect_written(setup);
    const LOADED_IMAGE image = load(read_file(setup.path("out.rbf"))).images[0];
    EXPECT_EQ(image.firmware, noise(3000, 99));
    EXPECT_FALSE(image.firmware_record.empty());
    ASSERT_TRUE(write_firmware_archive(setup.path("maker.fw"), DEV_FAMILY_HEMATITE, 7,
                                       MEMORY_SOURCE(noise(3000, 99)), *maker.signer, message));
    FINDINGS findings;
    check_setup(setup.document(), true, "", findings);
    EXPECT_THAT(findings.message(), HasSubstr("is not for the family Zircon; name firmware for it."));
}

TEST(signing, boot_information_takes_the_co_signed_firmware_too_and_refuses_a_forged_one)
{
    SIGNED setup("ASX4");
    setup.bitstream("Bitstream_2", setup.content);
    setup.flash("Flash", "W25Q256JV");
    setup.reserved("Flash", true, false);
    setup.assign("FACTORY_IMAGE", "Bitstream_1", "0");
    setup.partition("Flash", "P1");
    setup.assign("P1", "Bitstream_2", "1");
    setup.output("RPD", {}, "Flash");
    make_private_pem(setup.path("maker.pem"), "P-256");
    PEM_KEY maker;
    std::string message;
    ASSERT_TRUE(load_pem_key(setup.path("maker.pem"), nullptr, maker, message)) << message;
    const BYTES firmware = noise(3000, 99);
    ASSERT_TRUE(write_firmware_archive(setup.path("maker.fw"), DEV_FAMILY_ZIRCON, 7, MEMORY_SOURCE(firmware),
                                       *maker.signer, message))
        << message;
    file_of(setup).fw_source = setup.path("maker.fw");
    expect_written(setup);
    const BYTES image = read_file(setup.path("out.rpd"));
    constexpr std::ptrdiff_t FIRMWARE = 128;
    EXPECT_EQ(image.at(12) + 256U * image.at(13), firmware.size());
    EXPECT_EQ(BYTES(image.begin() + FIRMWARE, image.begin() + FIRMWARE + 3000), firmware);

    BYTES forged = read_file(setup.path("maker.fw"));
    forged.at(forged.size() / 2) ^= 1;
    write_file(setup.path("maker.fw"), forged);
    FINDINGS findings;
    check_setup(setup.document(), true, "", findings);
    EXPECT_FALSE(findings.can_generate());
    EXPECT_THAT(findings.message(),
                HasSubstr("PARTITION \"BOOT_INFO\": " + setup.path("maker.fw") +
                          " is damaged: the signature of its maker does not fit; take a good copy of it."));
}

TEST(signing, a_manifest_holds_the_measurements_and_a_signature_that_verifies)
{
    SIGNED setup;
    finalise(setup);
    setup.output("RBF", {"Bitstream_1"});
    setup.output("RIM", {"Bitstream_1"});
    expect_written(setup);
    const std::string text = read_text_file(setup.path("out.rim"));
    const BYTES stream = read_file(setup.path("out.rbf"));
    EXPECT_EQ(line_of(text, "device "), "ZR9A012 0x11212BC7");
    EXPECT_EQ(line_of(text, "kind "), "full");
    EXPECT_EQ(line_of(text, "firmware sha384 "),
              digits_of(reference_digest("SHA384", noise(5000, setup.content.seed + 1000))));
    EXPECT_EQ(line_of(text, "bootloader sha384 "), "(none)");
    EXPECT_EQ(line_of(text, "design sha384 "),
              digits_of(reference_digest("SHA384", configuration_of(setup.content))));
    EXPECT_EQ(line_of(text, "options sha384 "), digits_of(reference_digest("SHA384", records_of(stream))));
    const std::string key = line_of(text, "key ");
    ASSERT_TRUE(key.starts_with("P-384 ")) << key;
    const LOADED_IMAGE image = load(stream, key_of(KEY_DIGITS)).images[0];
    EXPECT_EQ(key_of(key.substr(6)), image.public_key);
    const std::size_t end = text.find("signature ");
    const BYTES signed_text(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(end));
    const BYTES signature = key_of(line_of(text, "signature "));
    EXPECT_TRUE(reference_ecdsa_verify("P-384", image.public_key, signature, signed_text));
    BYTES other = signed_text;
    other[30] ^= 1;
    EXPECT_FALSE(reference_ecdsa_verify("P-384", image.public_key, signature, other));
}

TEST(signing, a_manifest_of_an_unsigned_bitstream_ends_with_the_measurements)
{
    SIGNED setup;
    file_of(setup).signing = "OFF";
    setup.output("RIM", {"Bitstream_1"});
    expect_written(setup);
    const std::string text = read_text_file(setup.path("out.rim"));
    EXPECT_THAT(text, Not(HasSubstr("\nsignature ")));
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 7);
}

TEST(stream_flags, a_factory_update_and_decompression_during_reconfiguration_are_told)
{
    SIGNED update;
    file_of(update).signing = "OFF";
    update.output("RBF", {"Bitstream_1"});
    expect_written(update);
    EXPECT_FALSE(load(read_file(update.path("out.rbf"))).images[0].replaces_factory);
    file_of(update).rsu_upgrade = "1";
    expect_written(update);
    EXPECT_TRUE(load(read_file(update.path("out.rbf"))).images[0].replaces_factory);
    EXPECT_FALSE(load(read_file(update.path("out.rbf"))).images[0].decompression_during_pr);

    SETUP_BUILDER partial("PS");
    SMALL_BITSTREAM content;
    content.device = "CA3M050";
    content.periphery = 0;
    content.partial = true;
    partial.bitstream("Bitstream_1", content);
    file_of(partial).compression = "1";
    file_of(partial).decompression_during_pr = "1";
    partial.output("PRRBF", {"Bitstream_1"});
    expect_written(partial);
    const LOADED_IMAGE image = load(read_file(partial.path("out.prrbf"))).images[0];
    EXPECT_TRUE(image.decompression_during_pr);
    EXPECT_FALSE(image.replaces_factory);
}

TEST(secrets, no_message_and_no_other_file_of_a_generation_holds_a_key_or_a_password)
{
    ENCRYPTED encrypted;
    encrypted.output("RBF", {"Bitstream_1"});
    SIGNED with_password;
    finalise(with_password);
    with_password.output("RBF", {"Bitstream_1"});
    with_password.output("RIM", {"Bitstream_1"});
    const BYTES key = key_of(KEY_DIGITS);
    const BYTES password(SIGNED::PASSWORD.begin(), SIGNED::PASSWORD.end());
    for (SETUP_BUILDER* setup :
         {static_cast<SETUP_BUILDER*>(&encrypted), static_cast<SETUP_BUILDER*>(&with_password)}) {
        const SECURE_RUN run = run_generation(*setup);
        EXPECT_TRUE(run.success) << run.messages;
        // A run that fails says more than one that does not.
        file_of(*setup).key1 = "third";
        file_of(*setup).text += "x";
        const SECURE_RUN failed = run_generation(*setup);
        EXPECT_FALSE(failed.success);
        ASSERT_TRUE(VEK_UTIL::save(&setup->document(), setup->path("setup.vek")));
        std::vector<BYTES> texts = {BYTES(run.messages.begin(), run.messages.end()),
                                    BYTES(failed.messages.begin(), failed.messages.end())};
        for (const char* name : {"out.rbf", "out.rim", "setup.vek"}) {
            if (std::filesystem::exists(setup->path(name))) {
                texts.push_back(read_file(setup->path(name)));
            }
        }
        for (const BYTES& text : texts) {
            EXPECT_FALSE(holds(text, key));
            EXPECT_FALSE(holds(text, BYTES(KEY_DIGITS.begin(), KEY_DIGITS.begin() + 12)));
            EXPECT_FALSE(holds(text, password));
        }
        for (const std::string& name : setup->directory().entries()) {
            EXPECT_FALSE(name.ends_with(".tmp")) << name;
        }
    }
}
