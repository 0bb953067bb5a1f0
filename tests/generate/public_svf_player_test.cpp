// Vector files in the hands of a player that everybody has, openocd, with a simulated device on the other
// side of its pins.

#include "bitbang_server.h"
#include "child_process.h"
#include "security_fixture.h"

#include <chrono>

namespace
{

using testing::HasSubstr;
using testing::IsEmpty;

constexpr std::uint32_t IDCODE = 0x10A15BC7;

/// A setup with the stream as it is and as vectors.
struct VECTORS : SETUP_BUILDER {
    explicit VECTORS(const std::string& operation)
    {
        SMALL_BITSTREAM content;
        content.periphery = 300;
        content.core = 2000;
        bitstream("Bitstream_1", content);
        output("RBF", {"Bitstream_1"});
        output("SVF", {"Bitstream_1"});
        set(VEK_CMD_OPT_OUTPUT_FILE, {{VEK_CMD_PARAM_OUTPUT_FILE_TYPE, "SVF"},
                                      {VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_OPERATION, operation}});
        expect_written(*this);
    }
    BYTES stream() const { return read_file(path("out.rbf")); }

    CHILD_RESULT play_into(JTAG_DEVICE& device) const
    {
        // The player keeps what it sends until its buffer is full or it wants an answer, and waits meanwhile.
        device.watches_time = false;
        BITBANG_SERVER server(device);
        CHILD_RESULT result = run_program({"openocd",
                                           "-c",
                                           "adapter driver remote_bitbang",
                                           "-c",
                                           "remote_bitbang host 127.0.0.1",
                                           "-c",
                                           "remote_bitbang port " + std::to_string(server.port()),
                                           "-c",
                                           "jtag newtap fpga tap -irlen 10 -expected-id 0x10A15BC7",
                                           "-c",
                                           "gdb_port disabled",
                                           "-c",
                                           "telnet_port disabled",
                                           "-c",
                                           "tcl_port disabled",
                                           "-c",
                                           "init",
                                           "-c",
                                           "svf " + path("out.svf") + " quiet",
                                           "-c",
                                           "shutdown"});
        EXPECT_EQ(server.finish(), "");
        return result;
    }
};

} // namespace

TEST(public_svf_player, puts_into_the_device_what_the_raw_file_holds)
{
    for (const std::string operation : {"P", "PB"}) {
        const VECTORS setup(operation);
        JTAG_DEVICE device(IDCODE, 10);
        device.expected_size = setup.stream().size();
        const auto start = std::chrono::steady_clock::now();
        const CHILD_RESULT result = setup.play_into(device);
        // Enabling 1 ms, erasing 100 ms, programming 10 ms.
        EXPECT_GE(std::chrono::steady_clock::now() - start,
                  std::chrono::milliseconds(operation == "P" ? 111 : 11));
        EXPECT_EQ(result.exit_code, 0) << result.err;
        EXPECT_THAT(result.err, testing::Not(HasSubstr("Error:")));
        EXPECT_THAT(result.err, HasSubstr("svf file programmed successfully"));
        EXPECT_EQ(device.stream, setup.stream()) << operation;
        EXPECT_THAT(device.complaints, IsEmpty());
        EXPECT_TRUE(device.in_operation);
    }
}

TEST(public_svf_player, finds_the_bit_in_which_a_device_differs)
{
    const VECTORS setup("V");
    for (const bool differs : {false, true}) {
        JTAG_DEVICE device(IDCODE, 10);
        device.stream = setup.stream();
        device.expected_size = device.stream.size();
        device.stream[1500] ^= differs ? 0x10 : 0;
        const CHILD_RESULT result = setup.play_into(device);
        EXPECT_EQ(result.exit_code == 0, !differs) << result.err;
        if (differs) {
            EXPECT_THAT(result.err, HasSubstr("tdo check error"));
        }
        EXPECT_THAT(device.complaints, IsEmpty());
    }
}

TEST(public_svf_player, stops_when_the_device_refuses_the_stream)
{
    const VECTORS setup("P");
    JTAG_DEVICE device(IDCODE, 10);
    device.expected_size = setup.stream().size();
    device.refuses_streams = true;
    const CHILD_RESULT result = setup.play_into(device);
    EXPECT_NE(result.exit_code, 0);
    EXPECT_THAT(result.err, HasSubstr("tdo check error"));
    EXPECT_FALSE(device.in_operation);
}
