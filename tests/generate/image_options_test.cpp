// Options of update images, application images, parts of images, two keys and encryption that is completed
// later.

#include "aek_file.h"
#include "key_making.h"
#include "pof_decoder.h"
#include "security_fixture.h"

#include <filesystem>

namespace
{

using testing::HasSubstr;

const std::string LABEL = "BITSTREAM \"Bitstream_1\" / PATH \"Bitstream_1.sof\": ";

LOADED_STREAM load(const BYTES& bytes, const BYTES& key = {})
{
    LOADED_STREAM stream;
    std::string error;
    EXPECT_TRUE(load_configuration_stream(bytes, stream, error, key)) << error;
    if (stream.images.empty()) {
        stream.images.emplace_back();
    }
    return stream;
}

/// A bitstream of a secure family that is not signed, to RBF.
struct SECURE : SETUP_BUILDER {
    explicit SECURE(const std::string& mode = "LNKSX8") : SETUP_BUILDER(mode)
    {
        content.device = "ZR9A012";
        content.firmware = 5000;
        bitstream("Bitstream_1", content);
    }
    PGM_COMMON_XML_VEK_OUTPUT_FILE& output_file(std::size_t i = 0)
    {
        return *document().output_files[0]->output_file[i];
    }
    BYTES written(const std::string& name = "out.rbf")
    {
        expect_written(*this);
        return read_file(path(name));
    }
    SMALL_BITSTREAM content;
};

void expect_refused(SETUP_BUILDER& setup, FINDING_KIND kind, const std::string& sentence)
{
    FINDINGS findings;
    check_setup(setup.document(), true, "", findings);
    ASSERT_EQ(findings.all().size(), 1U) << findings.message();
    EXPECT_EQ(findings.all()[0].kind, kind) << findings.all()[0].row().name;
    EXPECT_EQ(findings.message(), sentence);
}

/// RFC 5869 over both keys, by the other crypto library.
BYTES mixed(const std::string& first, const std::string& second)
{
    BYTES both = key_of(first);
    const BYTES more = key_of(second);
    both.insert(both.end(), more.begin(), more.end());
    return reference_hkdf_sha256(both, "imagewright two keys 1", "device key", more.size());
}

} // namespace

TEST(two_keys, the_device_has_the_key_that_is_mixed_from_both)
{
    for (const bool in_file_of_its_own : {false, true}) {
        ENCRYPTED setup;
        setup.output("RBF", {"Bitstream_1"});
        setup.output("EKP", {"Bitstream_1"});
        PGM_COMMON_XML_VEK_PATH& file = file_of(setup);
        file.key1 = "first";
        file.key2 = "second";
        if (in_file_of_its_own) {
            write_secret(setup.path("more.key"), "second " + KEY_DIGITS + "\n");
            file.key_file2 = setup.path("more.key");
        }
        expect_written(setup);
        const BYTES stream = read_file(setup.path("out.rbf"));
        const BYTES key = mixed(OTHER_DIGITS, KEY_DIGITS);
        EXPECT_EQ(load(stream, key).images[0].configuration(), configuration_of(setup.content));
        LOADED_STREAM none;
        std::string error;
        for (const BYTES& other :
             {key_of(OTHER_DIGITS), key_of(KEY_DIGITS), mixed(KEY_DIGITS, OTHER_DIGITS)}) {
            EXPECT_FALSE(load_configuration_stream(stream, none, error, other));
            EXPECT_EQ(error, "the device has another key");
        }
        const BYTES programming = read_file(setup.path("out.ekp"));
        EXPECT_NE(std::search(programming.begin(), programming.end(), key.begin(), key.end()),
                  programming.end());
    }
}

TEST(two_keys, a_second_key_that_cannot_be_had_is_refused)
{
    ENCRYPTED setup;
    setup.output("RBF", {"Bitstream_1"});
    PGM_COMMON_XML_VEK_PATH& file = file_of(setup);
    file.key2 = "third";
    expect_refused(setup, FINDING_KEY_NAME,
                   LABEL + "The key file \"" + file.key_file1 +
                       "\" has no key \"third\"; choose one of its keys.");
    file.key2 = file.key1;
    expect_refused(setup, FINDING_OPTION_CONFLICT,
                   LABEL + "The first and the second key are the same; name two different ones.");
    file.key_file2 = setup.path("none.key");
    expect_refused(setup, FINDING_KEY_FILE,
                   LABEL + setup.path("none.key") + " cannot be opened: no such file.");
    write_secret(file.key_file2, file.key2 + " 00\n");
    expect_refused(setup, FINDING_KEY_FILE,
                   LABEL + "The key file \"" + file.key_file2 +
                       "\" is refused; give it one key of 256 bits a line.");
}

TEST(firmware_only, an_image_of_the_firmware_alone_has_no_design)
{
    SECURE setup;
    setup.output("RBF", {"Bitstream_1"});
    const BYTES whole = setup.written();
    file_of(setup).firmware_only = "1";
    const BYTES alone = setup.written();
    EXPECT_LT(alone.size() + 100000, whole.size());
    const LOADED_IMAGE image = load(alone).images[0];
    EXPECT_EQ(image.firmware, noise(5000, setup.content.seed + 1000));
    EXPECT_TRUE(image.configuration().empty());
    EXPECT_TRUE(image.bootloader.empty());
    write_bitstream(setup.path("Bitstream_1.sof"), {.device = "ZR9A012"});
    expect_refused(setup, FINDING_OPTION_CONFLICT,
                   LABEL +
                       "The attribute \"firmware_only\" asks for the firmware of the bitstream, which has "
                       "none; compile it with firmware or take the attribute away.");
}

TEST(update_images, the_version_and_the_boot_information_stand_before_the_frames)
{
    SECURE setup;
    setup.output("RBF", {"Bitstream_1"});
    PGM_COMMON_XML_VEK_PATH& file = file_of(setup);
    file.rsu_upgrade = "1";
    const BYTES plain = setup.written();
    EXPECT_TRUE(load(plain).images[0].update_record.empty());
    file.rsu_version = "305419896";
    const BYTES versioned = setup.written();
    EXPECT_EQ(load(versioned).images[0].update_record, (BYTES{0x78, 0x56, 0x34, 0x12, 0, 0, 0, 0}));
    EXPECT_EQ(versioned.size(), plain.size() + 16);
    file.rsu_boot_info = "1";
    EXPECT_EQ(load(setup.written()).images[0].update_record, (BYTES{0x78, 0x56, 0x34, 0x12, 1, 0, 0, 0}));
    file.rsu_version = "";
    EXPECT_EQ(load(setup.written()).images[0].update_record, (BYTES{0, 0, 0, 0, 1, 0, 0, 0}));
}

TEST(update_images, what_no_update_image_can_have_is_refused)
{
    SECURE setup;
    setup.output("RBF", {"Bitstream_1"});
    PGM_COMMON_XML_VEK_PATH& file = file_of(setup);
    for (const std::string attribute : {"rsu_boot_info", "rsu_version"}) {
        file.write_attribute_string(attribute, "1");
        expect_refused(
            setup, FINDING_OPTION_CONFLICT,
            LABEL + "The attribute \"" + attribute +
                "\" describes an update image, and the image is none; switch \"rsu_upgrade\" on or "
                "take the attribute away.");
    }
    file.rsu_upgrade = "1";
    file.rsu_version = "4294967295";
    write_bitstream(setup.path("Bitstream_1.sof"), {.device = "ZR9A012"});
    expect_refused(setup, FINDING_OPTION_CONFLICT,
                   LABEL +
                       "The attribute \"rsu_boot_info\" asks for the firmware of the bitstream, which has "
                       "none; compile it with firmware or take the attribute away.");
}

TEST(update_images, other_families_have_no_such_options)
{
    for (const auto& [attribute, value] :
         {std::pair<std::string, std::string>{"firmware_only", "1"}, {"app_image", "x.sof"}}) {
        SETUP_BUILDER setup;
        setup.bitstream("Bitstream_1", {.firmware = 100});
        setup.output("RBF", {"Bitstream_1"});
        file_of(setup).write_attribute_string(attribute, value);
        FINDINGS findings;
        check_setup(setup.document(), true, "", findings);
        EXPECT_THAT(findings.message(), HasSubstr(LABEL + "The family Basalt has no option \"" + attribute +
                                                  "\"; take it away."));
    }
}

TEST(application_images, the_application_follows_its_factory_image_or_stands_alone)
{
    SECURE setup;
    setup.output("RBF", {"Bitstream_1"});
    const SMALL_BITSTREAM application{.device = "ZR9A012", .core = 60000, .seed = 7};
    write_bitstream(setup.path("app.sof"), application);
    write_file(setup.path("app.bin"), noise(3000, 70));
    write_file(setup.path("boot.bin"), noise(2000, 71));
    PGM_COMMON_XML_VEK_PATH& file = file_of(setup);
    file.hps_path = setup.path("boot.bin");
    file.app_image = setup.path("app.sof");
    file.app_image_hps_path = setup.path("app.bin");
    const LOADED_STREAM both = load(setup.written());
    ASSERT_EQ(both.images.size(), 2U);
    EXPECT_EQ(both.images[0].configuration(), configuration_of(setup.content));
    EXPECT_EQ(both.images[0].bootloader, noise(2000, 71));
    EXPECT_FALSE(both.images[0].application);
    EXPECT_EQ(both.images[1].configuration(), configuration_of(application));
    EXPECT_EQ(both.images[1].bootloader, noise(3000, 70));
    EXPECT_TRUE(both.images[1].application);
    file.app_image_only = "1";
    const LOADED_STREAM alone = load(setup.written());
    ASSERT_EQ(alone.images.size(), 1U);
    EXPECT_EQ(alone.images[0].configuration(), configuration_of(application));
    EXPECT_TRUE(alone.images[0].application);
}

TEST(application_images, both_images_are_encrypted_and_signed)
{
    SIGNED setup;
    const BYTES key = key_of(KEY_DIGITS);
    std::string message;
    ASSERT_TRUE(
        write_aek_file(setup.path("key.aek"), SECRET_BYTES(key.begin(), key.end()), nullptr, message));
    file_of(setup).finalize_encryption = "1";
    file_of(setup).password = "";
    file_of(setup).signing_pem_file = setup.path("open.pem");
    make_private_pem(setup.path("open.pem"), "P-256");
    ASSERT_EQ(chmod(setup.path("open.pem").c_str(), 0600), 0);
    file_of(setup).aek_file = setup.path("key.aek");
    write_bitstream(setup.path("app.sof"), {.device = "ZR9A012", .core = 60000, .seed = 7});
    file_of(setup).app_image = setup.path("app.sof");
    setup.output("RBF", {"Bitstream_1"});
    expect_written(setup);
    const LOADED_STREAM both = load(read_file(setup.path("out.rbf")), key);
    ASSERT_EQ(both.images.size(), 2U);
    for (const LOADED_IMAGE& image : both.images) {
        EXPECT_GT(image.encrypted_packets, 0U);
        EXPECT_EQ(image.signature_curve, "P-256");
    }
}

TEST(application_images, files_that_cannot_be_one_are_refused)
{
    SECURE setup;
    setup.output("RBF", {"Bitstream_1"});
    PGM_COMMON_XML_VEK_PATH& file = file_of(setup);
    const std::string label = "BITSTREAM \"Bitstream_1\" / PATH \"Bitstream_1.sof\" / APP_IMAGE: ";
    file.app_image_only = "1";
    expect_refused(setup, FINDING_OPTION_CONFLICT,
                   LABEL + "The attribute \"app_image_only\" is for an application image, and \"app_image\" "
                           "names none; name one or take the attribute away.");
    file.app_image_only = "0";
    file.app_image = setup.path("app.sof");
    expect_refused(setup, FINDING_INPUT_REFUSED,
                   label + setup.path("app.sof") + " cannot be opened: no such file.");
    write_bitstream(file.app_image, {.device = "ZR9A028"});
    expect_refused(setup, FINDING_INPUT_REFUSED,
                   label + "The file \"" + file.app_image +
                       "\" is for the device ZR9A028, and the factory image is for ZR9A012; name a file for "
                       "that device.");
    write_bitstream(file.app_image, {.device = "ZR9A012", .periphery = 0, .partial = true});
    expect_refused(setup, FINDING_INPUT_REFUSED,
                   label + "The file \"" + file.app_image +
                       "\" is a partial bitstream, and an application image is a complete one; name another "
                       "file.");
    write_bitstream(file.app_image, {.device = "ZR9A012"});
    file.firmware_only = "1";
    expect_refused(setup, FINDING_OPTION_CONFLICT,
                   LABEL + "Firmware alone and an application image exclude each other; switch "
                           "\"firmware_only\" off or take \"app_image\" away.");
}

TEST(sections, the_boot_loader_alone_goes_into_a_file_and_into_a_partition)
{
    SECURE setup("ASX4");
    write_file(setup.path("boot.bin"), noise(3000, 70));
    file_of(setup).hps_path = setup.path("boot.bin");
    setup.flash("F", "W25Q128JV");
    setup.partition("F", "WHOLE", "0x00100000", "0x0017FFFF");
    setup.assign("WHOLE", "Bitstream_1", "0");
    setup.partition("F", "LOADER", "0x00200000", "0x0020FFFF");
    setup.assign("LOADER", "Bitstream_1", "1");
    setup.document().assignments[0]->assignment[1]->bitstream_id[0]->section = "HPS";
    setup.output("RPD", {}, "F");
    const BYTES flash = setup.written("out.rpd");
    const LOADED_IMAGE whole = load(BYTES(flash.begin() + 0x100000, flash.end())).images[0];
    EXPECT_EQ(whole.configuration(), configuration_of(setup.content));
    EXPECT_EQ(whole.bootloader, noise(3000, 70));
    const LOADED_IMAGE loader = load(BYTES(flash.begin() + 0x200000, flash.end())).images[0];
    EXPECT_TRUE(loader.configuration().empty());
    EXPECT_TRUE(loader.firmware.empty());
    EXPECT_EQ(loader.bootloader, noise(3000, 70));

    SECURE stream;
    write_file(stream.path("boot.bin"), noise(3000, 70));
    file_of(stream).hps_path = stream.path("boot.bin");
    stream.output("RBF", {"Bitstream_1"});
    stream.output_file().bitstream_id[0]->section = "HPS";
    const LOADED_IMAGE alone = load(stream.written()).images[0];
    EXPECT_TRUE(alone.configuration().empty());
    EXPECT_EQ(alone.bootloader, noise(3000, 70));
    file_of(stream).hps_path = "";
    expect_refused(
        stream, FINDING_OPTION_CONFLICT,
        "OUTPUT_FILE \"RBF\" / BITSTREAM_ID \"Bitstream_1\": The section HPS is the boot loader of "
        "the processor, and \"Bitstream_1.sof\" has none; name one in \"hps_path\" or choose the "
        "section ALL.");
    stream.output_file().bitstream_id[0]->section = "ALL";
    EXPECT_EQ(load(stream.written()).images[0].configuration(), configuration_of(stream.content));
}

TEST(boot_data, an_output_of_the_boot_data_has_the_tables_of_the_whole_image_and_no_image)
{
    SECURE setup("ASX4");
    setup.bitstream("Bitstream_2", {.device = "ZR9A012", .seed = 5});
    setup.flash("F", "W25Q256JV");
    setup.reserved("F", true, false);
    setup.partition("F", "P1");
    setup.assign("FACTORY_IMAGE", "Bitstream_1", "0");
    setup.assign("P1", "Bitstream_2", "1");
    setup.output("RPD", {}, "F");
    const BYTES whole = setup.written("out.rpd");
    setup.output_file().rsu_boot = "1";
    BYTES boot = setup.written("out.rpd");
    // The boot data ends where the whole image goes on; erased bytes behind it may be left out.
    boot.resize(whole.size(), 0xFF);
    std::size_t used = 0;
    std::size_t erased = 0;
    for (std::size_t i = 0; i < whole.size(); ++i) {
        ASSERT_TRUE(boot[i] == whole[i] || boot[i] == 0xFF) << i;
        used += boot[i] != 0xFF ? 1U : 0U;
        erased += boot[i] != whole[i] ? 1U : 0U;
    }
    EXPECT_GT(used, 5000U);     // the firmware and five tables
    EXPECT_GT(erased, 200000U); // two images
    const BYTES firmware = noise(5000, setup.content.seed + 1000);
    EXPECT_NE(std::search(boot.begin(), boot.end(), firmware.begin(), firmware.end()), boot.end());

    SETUP_BUILDER plain("ASX4");
    plain.bitstream("Bitstream_1");
    plain.flash("F", "W25Q32JV");
    plain.partition("F", "P1");
    plain.assign("P1", "Bitstream_1", "0");
    plain.output("RPD", {}, "F");
    plain.document().output_files[0]->output_file[0]->rsu_boot = "1";
    expect_refused(
        plain, FINDING_OPTION_CONFLICT,
        "OUTPUT_FILE \"RPD\": The output file is to hold boot data alone (\"rsu_boot\"), and there is "
        "none in it; choose a flash device with boot partitions or take the attribute away.");
}

namespace
{

/// A setup that leaves the encryption for later, and what completes it.
struct LATER : SIGNED {
    LATER()
    {
        const BYTES key = key_of(KEY_DIGITS);
        const SECRET_BYTES password(PASSWORD.begin(), PASSWORD.end());
        std::string message;
        EXPECT_TRUE(
            write_aek_file(path("key.aek"), SECRET_BYTES(key.begin(), key.end()), &password, message));
        file().finalize_encryption = "1";
        file().aek_file = path("key.aek");
        file().key_storage = "EFUSE_WRAPPED_AES_KEY";
        file().compression = "0";
        output("RBF", {"Bitstream_1"});
    }
    PGM_COMMON_XML_VEK_PATH& file() { return file_of(*this); }
    FINALIZATION_REQUEST request() const
    {
        return {path("prepared.rbf"), path("key.aek"), path("key.pem"), path("password"), path("final.rbf")};
    }
};

} // namespace

TEST(finalised_later, the_completed_stream_has_the_bytes_of_one_that_was_encrypted_at_once)
{
    LATER setup;
    write_bitstream(setup.path("app.sof"), {.device = "ZR9A012", .core = 3000000, .seed = 7});
    setup.file().app_image = setup.path("app.sof");
    expect_written(setup);
    const BYTES at_once = read_file(setup.path("out.rbf"));
    setup.file().finalize_encryption_later = "1";
    // Neither key is needed, nor looked at.
    setup.file().aek_file = setup.file().signing_pem_file = setup.file().password = "";
    expect_written(setup);
    const BYTES prepared = read_file(setup.path("out.rbf"));
    const LOADED_STREAM clear = load(prepared);
    ASSERT_EQ(clear.images.size(), 2U);
    for (const LOADED_IMAGE& image : clear.images) {
        EXPECT_TRUE(image.prepared_for_encryption);
        EXPECT_EQ(image.encrypted_packets, 0U);
        EXPECT_TRUE(image.signature.empty());
        EXPECT_EQ(BYTES(image.key_info.begin() + 16, image.key_info.end()), BYTES(8, 0));
        EXPECT_EQ(image.key_info[2], 1); // in fuses
    }
    std::filesystem::rename(setup.path("out.rbf"), setup.path("prepared.rbf"));
    std::string message;
    ASSERT_TRUE(finalize_stream_file(setup.request(), message)) << message;
    EXPECT_EQ(read_file(setup.path("final.rbf")), at_once);
    EXPECT_EQ(load(at_once, key_of(KEY_DIGITS)).images[0].configuration(), configuration_of(setup.content));
}

TEST(finalised_later, what_cannot_be_completed_is_refused)
{
    LATER setup;
    setup.file().finalize_encryption_later = "1";
    expect_written(setup);
    std::filesystem::rename(setup.path("out.rbf"), setup.path("prepared.rbf"));
    std::string message;
    FINALIZATION_REQUEST request = setup.request();
    request.output_path = request.input_path;
    EXPECT_FALSE(finalize_stream_file(request, message));
    EXPECT_EQ(message, request.output_path + " is also an input; choose another name for the stream.");
    ASSERT_TRUE(finalize_stream_file(setup.request(), message)) << message;
    request = setup.request();
    request.input_path = setup.path("final.rbf");
    request.output_path = setup.path("twice.rbf");
    EXPECT_FALSE(finalize_stream_file(request, message));
    EXPECT_EQ(message, request.input_path + ": The stream has no image whose encryption is to be completed.");
    EXPECT_FALSE(std::filesystem::exists(request.output_path));
    BYTES damaged = read_file(setup.path("prepared.rbf"));
    damaged[damaged.size() / 2] ^= 4;
    write_file(setup.path("prepared.rbf"), damaged);
    request.input_path = setup.path("prepared.rbf");
    EXPECT_FALSE(finalize_stream_file(request, message));
    EXPECT_THAT(message,
                testing::StartsWith(request.input_path + ": The configuration stream is damaged at offset "));
    make_public_pem(setup.path("key.pem") + "' -passin 'file:" + setup.path("password"),
                    setup.path("public.pem"));
    request.pem_path = setup.path("public.pem");
    EXPECT_FALSE(finalize_stream_file(request, message));
    EXPECT_EQ(message, request.pem_path + " holds a public key alone; name the private key.");
}

TEST(finalised_later, other_outputs_than_rbf_and_a_missing_switch_are_refused)
{
    LATER setup;
    setup.file().finalize_encryption_later = "1";
    setup.output("HEX", {"Bitstream_1"});
    expect_refused(
        setup, FINDING_OPTION_CONFLICT,
        "OUTPUT_FILE \"HEX\": The encryption of \"Bitstream_1.sof\" is to be finalised later, which "
        "can be done to an RBF file alone; remove this output file or finalise the encryption now.");
    LATER chained;
    chained.file().finalize_encryption_later = "1";
    chained.file().skc_file = chained.path("any.skc");
    expect_refused(chained, FINDING_OPTION_CONFLICT,
                   LABEL +
                       "The encryption is to be finalised later, and so is the signature, which cannot name "
                       "a key chain then; take \"skc_file\" away or finalise the encryption now.");
    LATER without;
    without.file().finalize_encryption_later = "1";
    without.file().finalize_encryption = "0";
    expect_refused(without, FINDING_OPTION_CONFLICT,
                   LABEL + "The encryption is to be finalised later, and it is not to be finalised at all; "
                           "switch \"finalize_encryption\" on as well.");
}
