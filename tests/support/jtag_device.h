#ifndef IMAGEWRIGHT_TESTS_JTAG_DEVICE_H
#define IMAGEWRIGHT_TESTS_JTAG_DEVICE_H

#include <cstdint>
#include <string>
#include <vector>

using BITS = std::vector<bool>; ///< in the order in which they are shifted

BITS bits_of(std::uint64_t value, std::size_t count);
std::uint64_t value_of(const BITS& bits);

/// An FPGA as docs/formats/jtag-programming.md describes it, behind the test access port of IEEE 1149.1: it
/// sees TMS and TDI, clock by clock, and nothing else.
class JTAG_DEVICE
{
public:
    JTAG_DEVICE(std::uint32_t idcode, unsigned instruction_length);

    /// One cycle of TCK. The value of TDO before the rising edge.
    bool clock(bool tms, bool tdi);
    /// What stands on TDO now.
    bool tdo() const;
    /// Time passes in the state in which the device is.
    void pass(double seconds) { m_waited += seconds; }

    std::vector<std::uint8_t> stream; ///< what it has been sent; also what it gives when it is read
    std::size_t expected_size = 0;    ///< bytes of a complete stream
    bool refuses_streams = false;     ///< reports an error instead of success
    bool watches_time = true;         ///< complains when it is not waited for
    bool in_operation = false;        ///< started after a complete stream
    unsigned erasures = 0;
    std::vector<std::string> complaints; ///< what a real device would not have forgiven
    std::size_t longest_scan = 0;        ///< bits of the longest pass through Shift-DR

private:
    enum STATE {
        RESET,
        IDLE,
        SELECT_DR,
        CAPTURE_DR,
        SHIFT_DR,
        EXIT1_DR,
        PAUSE_DR,
        EXIT2_DR,
        UPDATE_DR,
        SELECT_IR,
        CAPTURE_IR,
        SHIFT_IR,
        EXIT1_IR,
        PAUSE_IR,
        EXIT2_IR,
        UPDATE_IR
    };
    void capture_data();
    void update_data();
    void load_instruction();
    void finish_wait();
    std::uint8_t status() const;

    const std::uint32_t m_idcode;
    const unsigned m_instruction_length;
    STATE m_state = RESET;
    std::uint64_t m_instruction;
    std::uint64_t m_shift_ir = 0;
    BITS m_register; ///< what shifts out next comes first
    std::size_t m_head = 0;
    BITS m_taken; ///< what was shifted in
    std::size_t m_read_at = 0;
    bool m_enabled = false;
    bool m_erasing = false;
    double m_waited = 0;
    double m_needed = 0; ///< seconds in Run-Test/Idle that the last instruction asks for
};

/// Drives the port of a device as players do.
class JTAG_PORT
{
public:
    explicit JTAG_PORT(JTAG_DEVICE& device) : m_device(device) {}
    void reset();
    /// Each goes from Run-Test/Idle to Run-Test/Idle.
    BITS shift_instruction(const BITS& bits) { return shift(bits, true); }
    BITS shift_data(const BITS& bits) { return shift(bits, false); }
    void idle(unsigned cycles, double seconds);

private:
    BITS shift(const BITS& bits, bool instruction);
    JTAG_DEVICE& m_device;
};

#endif
