#include "format_test_support.h"
#include "pof_decoder.h"
#include "pof_format.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace
{
const POF_FORMAT POF;

struct FLASH {
    explicit FLASH(BYTES content) : bytes(std::move(content)), source(bytes)
    {
        request.image = &source;
        request.device = "MX25L25645G";
    }
    FLASH(const FLASH&) = delete;
    BYTES bytes;
    MEMORY_SOURCE source;
    FORMAT_REQUEST request;
};

struct SMALL_FLASH : FLASH {
    SMALL_FLASH() : FLASH(content())
    {
        request.regions = {{"BOOT_INFO", 100, 50, 4095, false, 0, "", plain_crc32(bytes.data() + 100, 50)},
                           {"P1", 8192, 808, 8999, true, 3, "top.sof, second.sof", 0x12345678}};
    }
    static BYTES content()
    {
        BYTES bytes(9000, 0xFF);
        const BYTES begin = make_bytes(50);
        std::copy(begin.begin(), begin.end(), bytes.begin() + 100);
        bytes[8999] = 0x7F;
        return bytes;
    }
};

void put(BYTES& bytes, std::uint64_t value, std::size_t size)
{
    for (; size != 0; --size, value >>= 8)
        bytes.push_back(static_cast<std::uint8_t>(value));
}

BYTES chunk(const std::string& tag, const BYTES& payload)
{
    BYTES bytes = bytes_of(tag);
    put(bytes, payload.size(), 4);
    bytes.insert(bytes.end(), payload.begin(), payload.end());
    put(bytes, plain_crc32(bytes.data(), bytes.size()), 4);
    return bytes;
}

BYTES head(std::uint64_t version, std::uint64_t size)
{
    BYTES payload;
    put(payload, version, 2);
    put(payload, 0, 2);
    put(payload, size, 8);
    put(payload, 1, 2);
    payload.push_back('D');
    return chunk("HEAD", payload);
}

BYTES data(std::uint64_t address, const BYTES& bytes)
{
    BYTES payload;
    put(payload, address, 8);
    payload.insert(payload.end(), bytes.begin(), bytes.end());
    return chunk("DATA", payload);
}

BYTES done(const BYTES& image, std::uint64_t data_size)
{
    BYTES payload;
    put(payload, data_size, 8);
    put(payload, plain_crc32(image.data(), image.size()), 4);
    return chunk("DONE", payload);
}

BYTES file_of(const std::vector<BYTES>& chunks)
{
    BYTES file = bytes_of("\x89POF\r\n\x1A\n");
    for (const BYTES& part : chunks)
        file.insert(file.end(), part.begin(), part.end());
    return file;
}

std::string refusal(const BYTES& file)
{
    std::string message;
    decode_format(POF, file, &message);
    EXPECT_NE(message, "");
    return message;
}
} // namespace

TEST(pof_format, the_independent_reader_finds_device_partitions_and_image)
{
    const SMALL_FLASH flash;
    const BYTES file = write_format(POF, flash.request);
    const DECODED_POF pof = decode_pof(file);
    EXPECT_EQ(pof.fault, "");
    EXPECT_EQ(pof.device, "MX25L25645G");
    EXPECT_TRUE(pof.image == flash.bytes);
    EXPECT_EQ(pof.data_chunks, 2u);
    ASSERT_EQ(pof.partitions.size(), 2u);
    EXPECT_EQ(pof.partitions[0].name, "BOOT_INFO");
    EXPECT_EQ(pof.partitions[0].start, 100u);
    EXPECT_EQ(pof.partitions[0].used, 50u);
    EXPECT_EQ(pof.partitions[0].last, 4095u);
    EXPECT_EQ(pof.partitions[0].crc, flash.request.regions[0].crc);
    EXPECT_FALSE(pof.partitions[0].has_page);
    EXPECT_EQ(pof.partitions[0].input, "");
    EXPECT_TRUE(pof.partitions[1].has_page);
    EXPECT_EQ(pof.partitions[1].page, 3u);
    EXPECT_EQ(pof.partitions[1].input, "top.sof, second.sof");
    EXPECT_EQ(verify_format(POF, flash.request, file), "");
    EXPECT_TRUE(decode_format(POF, file) == flash.bytes);
}

TEST(pof_format, images_of_all_shapes_are_read_back)
{
    DICE random(3);
    for (int round = 0; round != 16; ++round) {
        BYTES bytes(random() % 2500000, 0xFF);
        for (unsigned run = random() % 12; run-- != 0 && !bytes.empty();) {
            const BYTES content = make_bytes(random() % (round % 2 ? 1500000 : 5000), random());
            const std::size_t at = random() % bytes.size();
            std::copy_n(content.begin(), std::min(content.size(), bytes.size() - at),
                        bytes.begin() + static_cast<std::ptrdiff_t>(at));
        }
        const FLASH flash(bytes);
        const BYTES file = write_format(POF, flash.request);
        const DECODED_POF pof = decode_pof(file);
        ASSERT_EQ(pof.fault, "");
        ASSERT_TRUE(pof.image == bytes);
        ASSERT_EQ(verify_format(POF, flash.request, file), "");
        ASSERT_TRUE(decode_format(POF, file) == bytes);
    }
}

TEST(pof_format, a_large_device_with_little_content_is_a_small_file)
{
    BYTES bytes(64 * 1024 * 1024, 0xFF);
    bytes[12345678] = 0;
    const FLASH flash(bytes);
    const BYTES file = write_format(POF, flash.request);
    EXPECT_LT(file.size(), 200u);
    EXPECT_EQ(verify_format(POF, flash.request, file), "");
}

TEST(pof_format, an_empty_device_is_a_file_without_data)
{
    const FLASH flash(BYTES(100000, 0xFF));
    const BYTES file = write_format(POF, flash.request);
    EXPECT_EQ(decode_pof(file).data_chunks, 0u);
    EXPECT_TRUE(decode_format(POF, file) == flash.bytes);
}

TEST(pof_format, verify_tells_what_differs)
{
    const SMALL_FLASH flash;
    const auto said = [&](const FORMAT_REQUEST& written) {
        return verify_format(POF, flash.request, write_format(POF, written));
    };
    FORMAT_REQUEST other = flash.request;
    other.device = "W25Q128JV";
    EXPECT_EQ(said(other), "The file is for W25Q128JV with 9000 bytes instead of MX25L25645G with 9000 "
                           "bytes.");
    other = flash.request;
    other.regions[1].page = 4;
    EXPECT_EQ(said(other), "The partition P1 is not as the layout has it.");
    other.regions.pop_back();
    EXPECT_EQ(said(other), "The partition P1 is missing in the file.");

    BYTES changed = flash.bytes;
    changed[110] ^= 1;
    FLASH changed_flash(changed);
    changed_flash.request.regions = flash.request.regions;
    EXPECT_NE(said(changed_flash.request).find("for the image byte at 0x0000006E"), std::string::npos);
    changed = flash.bytes;
    changed[8999] = 0xFF;
    FLASH without(changed);
    without.request.regions = flash.request.regions;
    EXPECT_EQ(said(without.request),
              "The file holds 0xFF for the image byte at 0x00002327, which is 0x7F; it was not "
              "written correctly, generate it again.");
}

TEST(pof_format, wrong_files_are_refused_with_the_place)
{
    const BYTES image(64, 0xFF);
    EXPECT_EQ(refusal({}), "The file does not begin with the signature of a POF.");
    EXPECT_EQ(refusal(bytes_of("\x89POF\n\x1A\n....")),
              "The file does not begin with the signature of a POF.");
    EXPECT_EQ(refusal(file_of({})),
              "The file ends at offset 0x00000008 without its last chunk; it is not complete.");
    EXPECT_EQ(refusal(file_of({done(image, 0)})),
              "The chunk at offset 0x00000008 is not the head of a POF, which comes first.");
    EXPECT_EQ(refusal(file_of({head(2, 64)})),
              "The file has version 2 of the format, which this program cannot read; "
              "it reads version 1.");
    EXPECT_EQ(refusal(file_of({head(1, 64)})),
              "The file ends at offset 0x00000023 without its last chunk; it is not "
              "complete.");
    EXPECT_EQ(refusal(file_of({head(1, 64), head(1, 64)})),
              "The chunk at offset 0x00000023 is a second head.");
    EXPECT_EQ(refusal(file_of({chunk("HEAD", BYTES{1, 0, 0, 0})})),
              "The chunk at offset 0x00000008 has a wrong length for a head.");
    EXPECT_EQ(refusal(file_of({head(1, 0x100000001)})),
              "The chunk at offset 0x00000008 is the head of a device with 4294967297 bytes; the format "
              "reaches 4294967296 bytes.");
    EXPECT_EQ(refusal(file_of({head(1, 64), chunk("WHAT", {})})),
              "The chunk at offset 0x00000023 is of a kind that this version does not know.");
    EXPECT_EQ(refusal(file_of({head(1, 64), data(60, BYTES(5, 0))})),
              "The chunk at offset 0x00000023 has data for 0x0000003C, which is not within the device.");
    EXPECT_EQ(
        refusal(file_of({head(1, 64), data(~std::uint64_t(0), BYTES(5, 0))})),
        "The chunk at offset 0x00000023 has data for 0xFFFFFFFFFFFFFFFF, which is not within the device.");
    EXPECT_EQ(
        refusal(file_of({head(1, 64), data(10, BYTES(5, 0)), data(14, BYTES(5, 0))})),
        "The chunk at offset 0x0000003C has data for 0x0000000E, which other chunks hold or lie behind.");
    EXPECT_EQ(refusal(file_of({head(1, 64), data(10, {})})),
              "The chunk at offset 0x00000023 is data without bytes.");
    EXPECT_EQ(refusal(file_of({head(1, 64), chunk("PART", BYTES(10, 0))})),
              "The chunk at offset 0x00000023 has a wrong length or value for a partition.");
    EXPECT_EQ(refusal(file_of({head(1, 64), done(image, 1)})),
              "The file holds 0 bytes of data instead of 1 byte; chunks are missing.");
    EXPECT_NE(refusal(file_of({head(1, 64), done(BYTES(64, 0), 0)})).find("The image has the checksum 0x"),
              std::string::npos);
    EXPECT_EQ(refusal(file_of({head(1, 64), done(image, 0), done(image, 0)})),
              "There is something behind the last chunk at offset 0x0000003B.");
    EXPECT_EQ(decode_format(POF, file_of({head(1, 64), done(image, 0)})), image);
}

TEST(pof_format, a_partition_that_does_not_fit_the_device_is_refused)
{
    SMALL_FLASH flash;
    flash.request.regions[1].block_end = 9000;
    const std::string said = refusal(write_format(POF, flash.request));
    EXPECT_NE(said.find("places partition P1 (0x00002000 to 0x00002328) where it does not fit."),
              std::string::npos)
        << said;
}

TEST(pof_format, a_length_that_lies_takes_no_memory)
{
    BYTES file = file_of({head(1, 64)});
    const BYTES liar = bytes_of("DATA\xFF\xFF\xFF\x7F....");
    file.insert(file.end(), liar.begin(), liar.end());
    EXPECT_EQ(refusal(file),
              "The chunk at offset 0x00000023 claims 2147483647 bytes, more than any chunk has; the file "
              "is damaged.");
    BYTES cut = file_of({head(1, 64), data(0, BYTES(30, 1))});
    cut.pop_back();
    EXPECT_EQ(refusal(cut), "The chunk at offset 0x00000023 goes beyond the end of the file; the file is not "
                            "complete.");
}

TEST(pof_format, chunks_that_may_be_passed_over_are)
{
    const BYTES image(64, 0xFF);
    EXPECT_EQ(decode_format(POF, file_of({head(1, 64), chunk("note", bytes_of("anything")), done(image, 0)})),
              image);
}

TEST(pof_format, a_device_beyond_4_gib_is_refused)
{
    const PATTERN_SOURCE large(0x100000001);
    FORMAT_REQUEST request;
    request.image = &large;
    request.device = "HUGE";
    MEMORY_SINK sink;
    std::string message;
    EXPECT_FALSE(POF.write(request, sink, message));
    EXPECT_EQ(message, "The device HUGE has 4294967297 bytes, and a POF reaches 4294967296 bytes; choose "
                       "another output type.");
    EXPECT_TRUE(sink.bytes().empty());
}

TEST(pof_format, a_name_that_is_too_long_is_refused)
{
    SMALL_FLASH flash;
    flash.request.regions[0].name = std::string(70000, 'n');
    MEMORY_SINK sink;
    std::string message;
    EXPECT_FALSE(POF.write(flash.request, sink, message));
    EXPECT_EQ(message, "The name \"" + std::string(40, 'n') +
                           "...\" has 70000 bytes; the file holds 65535 at most, choose a shorter one.");
}

TEST(pof_format, inspection_tells_device_partitions_and_ranges)
{
    const SMALL_FLASH flash;
    const FORMAT_FACTS facts = inspect_format(POF, write_format(POF, flash.request));
    EXPECT_EQ(fact(facts, "format"), "flash image for a device programmer");
    EXPECT_EQ(fact(facts, "device"), "MX25L25645G");
    EXPECT_EQ(fact(facts, "image size"), "9000 bytes");
    EXPECT_EQ(fact(facts, "data"), "51 bytes");
    EXPECT_EQ(facts.regions, flash.request.regions);
    EXPECT_EQ(facts.ranges, (std::vector<ADDRESS_RANGE>{{100, 50}, {8999, 1}}));
}

TEST(pof_format, only_files_with_its_signature_are_recognised)
{
    EXPECT_TRUE(POF_FORMAT::recognise(MEMORY_SOURCE(write_format(POF, SMALL_FLASH().request))));
    EXPECT_FALSE(POF_FORMAT::recognise(MEMORY_SOURCE(BYTES{})));
    EXPECT_FALSE(POF_FORMAT::recognise(MEMORY_SOURCE(bytes_of(":020000040000FA\n"))));
}

TEST(jic_format, the_independent_reader_finds_flash_loader_and_image)
{
    const JIC_FORMAT jic;
    SMALL_FLASH flash;
    flash.request.target = {"GR5S027", 0x20F27BC7, 10};
    flash.request.flash = {{0xC2, 0x20, 0x19}, 4, 65536, 256};
    const BYTES file = write_format(jic, flash.request);
    const DECODED_POF decoded = decode_jic(file);
    EXPECT_EQ(decoded.fault, "");
    EXPECT_EQ(decoded.device, "MX25L25645G");
    EXPECT_TRUE(decoded.image == flash.bytes);
    ASSERT_EQ(decoded.partitions.size(), 2u);
    EXPECT_EQ(decoded.loader.name, "GR5S027");
    EXPECT_EQ(decoded.loader.idcode, 0x20F27BC7u);
    EXPECT_EQ(decoded.loader.instruction_length, 10u);
    EXPECT_EQ(decoded.loader.bridge, 0xA8u);
    EXPECT_EQ(decoded.loader.jedec_id, 0xC22019u);
    EXPECT_EQ(decoded.loader.address_bytes, 4u);
    EXPECT_EQ(decoded.loader.sector, 65536u);
    EXPECT_EQ(decoded.loader.page, 256u);
    EXPECT_EQ(decoded.loader.commands, (std::vector<unsigned>{0x9F, 0x05, 0x06, 0x13, 0x12, 0xDC}));
    EXPECT_EQ(verify_format(jic, flash.request, file), "");
    EXPECT_TRUE(decode_format(jic, file) == flash.bytes);
    const FORMAT_FACTS facts = inspect_format(jic, file);
    EXPECT_EQ(fact(facts, "format"), "flash image to be written over JTAG");
    EXPECT_EQ(fact(facts, "flash loader"), "GR5S027");
    EXPECT_EQ(fact(facts, "flash loader IDCODE"), "0x20F27BC7");
    EXPECT_EQ(fact(facts, "JEDEC identification"), "0xC22019");
    EXPECT_TRUE(JIC_FORMAT::recognise(MEMORY_SOURCE(file)));
    EXPECT_FALSE(POF_FORMAT::recognise(MEMORY_SOURCE(file)));
    FORMAT_REQUEST other = flash.request;
    other.target.name = "GR5S066";
    EXPECT_EQ(verify_format(jic, other, file),
              "The flash loader GR5S027 is not as the setup has it, which names GR5S066.");
}

TEST(jic_format, what_cannot_be_reached_over_jtag_is_refused)
{
    const JIC_FORMAT jic;
    SMALL_FLASH flash;
    flash.request.target = {"GR5S027", 0x20F27BC7, 10};
    flash.request.flash = {{}, 2, 65536, 256};
    MEMORY_SINK sink;
    std::string message;
    EXPECT_FALSE(jic.write(flash.request, sink, message));
    EXPECT_EQ(message,
              "MX25L25645G is no serial flash device with addresses of 3 or 4 bytes; choose one that a "
              "flash loader can write.");
}

TEST(jic_format, a_file_without_its_flash_loader_is_refused)
{
    BYTES file = file_of({head(1, 64), done(BYTES(64, 0xFF), 0)});
    file[1] = 'J';
    file[2] = 'I';
    file[3] = 'C';
    std::string message;
    decode_format(JIC_FORMAT(), file, &message);
    EXPECT_EQ(message,
              "The chunk at offset 0x00000023 is not the flash loader, which comes behind the head.");
}
