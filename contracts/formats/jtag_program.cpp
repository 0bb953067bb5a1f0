#include "jtag_program.h"

namespace jtag
{
namespace
{
using enum STEP_KIND;

constexpr STEP CHECK_DEVICE_STEPS[] = {{INSTRUCTION, IDCODE}, {CHECK_IDCODE, 0, 0, 6}};
constexpr STEP ENTER_STEPS[] = {{INSTRUCTION, ENABLE}, {WAIT, 1000}};
constexpr STEP ERASE_STEPS[] = {{INSTRUCTION, ERASE},
                                {WAIT, 100000},
                                {INSTRUCTION, STATUS},
                                {CHECK_STATUS, STATUS_BLANK, STATUS_BLANK, 8}};
constexpr STEP BLANK_STEPS[] = {{INSTRUCTION, STATUS}, {CHECK_STATUS, STATUS_BLANK, STATUS_BLANK, 9}};
constexpr STEP PROGRAM_STEPS[] = {{INSTRUCTION, PROGRAM},
                                  {SEND_STREAM},
                                  {WAIT, 10000},
                                  {INSTRUCTION, STATUS},
                                  {CHECK_STATUS, STATUS_DONE, STATUS_DONE | STATUS_ERROR, 10}};
constexpr STEP VERIFY_STEPS[] = {{INSTRUCTION, READ}, {COMPARE_STREAM, 0, 0, 11}};
constexpr STEP LEAVE_STEPS[] = {{INSTRUCTION, DISABLE}, {WAIT, 1000}};

constexpr PROCEDURE PROCEDURES[] = {
    {"CHECK_DEVICE", "Check the identification of the device", CHECK_DEVICE_STEPS},
    {"ENTER", "Take the device out of operation", ENTER_STEPS},
    {"ERASE_DEVICE", "Clear the configuration", ERASE_STEPS},
    {"BLANK_CHECK", "Check that the device is blank", BLANK_STEPS},
    {"PROGRAM_DEVICE", "Send the configuration stream", PROGRAM_STEPS},
    {"VERIFY_DEVICE", "Compare the configuration stream", VERIFY_STEPS},
    {"LEAVE", "Put the device into operation", LEAVE_STEPS},
};
static_assert(std::size(PROCEDURES) == PROCEDURE_COUNT);

constexpr PROCEDURE_NUMBER TO_PROGRAM[] = {CHECK_DEVICE, ENTER, ERASE_DEVICE, PROGRAM_DEVICE, LEAVE};
constexpr PROCEDURE_NUMBER TO_VERIFY[] = {CHECK_DEVICE, ENTER, VERIFY_DEVICE, LEAVE};
constexpr PROCEDURE_NUMBER TO_CHECK_AND_PROGRAM[] = {CHECK_DEVICE, ENTER, BLANK_CHECK, PROGRAM_DEVICE, LEAVE};
constexpr PROCEDURE_NUMBER TO_CHECK_BLANK[] = {CHECK_DEVICE, ENTER, BLANK_CHECK, LEAVE};
constexpr PROCEDURE_NUMBER TO_ERASE[] = {CHECK_DEVICE, ENTER, ERASE_DEVICE, LEAVE};

constexpr ACTION ACTIONS[] = {
    {"PROGRAM", "Program", TO_PROGRAM},
    {"VERIFY", "Verify", TO_VERIFY},
    {"BLANKCHECK_PROGRAM", "Blank-check and program", TO_CHECK_AND_PROGRAM},
    {"BLANKCHECK", "Blank-check", TO_CHECK_BLANK},
    {"ERASE", "Erase", TO_ERASE},
};
} // namespace

std::span<const PROCEDURE> procedures()
{
    return PROCEDURES;
}

std::span<const ACTION> actions()
{
    return ACTIONS;
}

const ACTION& action_of(JTAG_OPERATION operation)
{
    switch (operation) {
    case JTAG_OPERATION::PROGRAM:
        return ACTIONS[0];
    case JTAG_OPERATION::VERIFY:
        return ACTIONS[1];
    case JTAG_OPERATION::BLANK_CHECK_AND_PROGRAM:
        break;
    }
    return ACTIONS[2];
}

bool fits(const JTAG_TARGET& target, std::string& message)
{
    if (target.instruction_length >= LEAST_INSTRUCTION_LENGTH &&
        target.instruction_length <= MOST_INSTRUCTION_LENGTH && target.idcode != 0)
        return true;
    message = "The device \"" + target.name +
              "\" cannot be reached over JTAG: its instruction register has " +
              std::to_string(target.instruction_length) +
              " bits and the tool needs 8 to 32, and an IDCODE; choose another device.";
    return false;
}
} // namespace jtag
