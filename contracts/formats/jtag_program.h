#ifndef JTAG_PROGRAM_H
#define JTAG_PROGRAM_H

#include "format.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

/// How an FPGA is configured over JTAG, as data that the JTAG formats (SVF, JAM, JBC) write each in its own
/// language. docs/formats/jtag-programming.md tells it in words. The flow follows in-system configuration as
/// IEEE 1532 has it: enable, erase, program, read, disable.
namespace jtag
{
/// Instruction codes, zero-extended to the length of the instruction register.
enum INSTRUCTION : std::uint32_t {
    IDCODE = 0xA0,       ///< 32 bit identification of IEEE 1149.1
    ENABLE = 0xA1,       ///< takes the device out of operation, so that it can be configured
    DISABLE = 0xA2,      ///< starts the device, or leaves it as it is when it holds no complete stream
    ERASE = 0xA3,        ///< clears the configuration
    PROGRAM = 0xA4,      ///< each pass through Shift-DR appends its bits to the stream
    READ = 0xA5,         ///< each pass through Shift-DR gives the next bits of the stream, from its begin
    STATUS = 0xA6,       ///< the 8 status bits
    FLASH_BRIDGE = 0xA8, ///< Shift-DR passes through to the serial flash behind the device
};

/// Bits of the status register.
inline constexpr std::uint8_t STATUS_BLANK = 0x01; ///< no configuration
inline constexpr std::uint8_t STATUS_DONE = 0x02;  ///< a stream has been taken to its end and found right
inline constexpr std::uint8_t STATUS_ERROR = 0x04; ///< a stream has been refused
inline constexpr unsigned STATUS_BITS = 8;
inline constexpr unsigned IDCODE_BITS = 32;

/// Instruction registers that the codes fit.
inline constexpr unsigned LEAST_INSTRUCTION_LENGTH = 8;
inline constexpr unsigned MOST_INSTRUCTION_LENGTH = 32;

/// Bytes of the stream in one pass through Shift-DR; the last pass takes what is left. Small enough for
/// players with little memory.
inline constexpr std::size_t SCAN_BYTES = 1024;

enum class STEP_KIND : std::uint8_t {
    INSTRUCTION,   ///< load `value`
    WAIT,          ///< stay in Run-Test/Idle for at least `value` microseconds
    CHECK_IDCODE,  ///< scan the identification and compare all of it
    CHECK_STATUS,  ///< scan the status and compare it with `value` where `mask` has ones
    SEND_STREAM,   ///< scan the stream in
    COMPARE_STREAM ///< scan the stream out and compare it
};

struct STEP {
    STEP_KIND kind;
    std::uint32_t value = 0;
    std::uint8_t mask = 0;
    std::uint8_t failure = 0; ///< exit code of JESD71 when the comparison fails
};

struct PROCEDURE {
    const char* name; ///< as STAPL has it
    const char* words;
    std::span<const STEP> steps;
};

enum PROCEDURE_NUMBER : std::uint8_t {
    CHECK_DEVICE,
    ENTER,
    ERASE_DEVICE,
    BLANK_CHECK,
    PROGRAM_DEVICE,
    VERIFY_DEVICE,
    LEAVE,
    PROCEDURE_COUNT
};

/// In the order of PROCEDURE_NUMBER.
std::span<const PROCEDURE> procedures();

struct ACTION {
    const char* name; ///< as STAPL has it
    const char* words;
    std::span<const PROCEDURE_NUMBER> steps;
};

/// Everything a file with several actions offers.
std::span<const ACTION> actions();

/// The action of an operation.
const ACTION& action_of(JTAG_OPERATION operation);

/// Whether the instruction codes fit the device. False with a sentence in `message`.
bool fits(const JTAG_TARGET& target, std::string& message);
} // namespace jtag

#endif
