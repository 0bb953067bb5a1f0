#include "jtag_device.h"

#include <algorithm>

/// All ones, in every device, whatever the length of its instructions.
static constexpr std::uint64_t BYPASS = ~std::uint64_t{0};

BITS bits_of(std::uint64_t value, std::size_t count)
{
    BITS bits(count);
    for (std::size_t i = 0; i != count; ++i)
        bits[i] = i < 64 && (value >> i & 1) != 0;
    return bits;
}

std::uint64_t value_of(const BITS& bits)
{
    std::uint64_t value = 0;
    for (std::size_t i = 0; i != bits.size(); ++i)
        value |= std::uint64_t{bits[i]} << i;
    return value;
}

JTAG_DEVICE::JTAG_DEVICE(std::uint32_t idcode, unsigned instruction_length)
    : m_idcode(idcode), m_instruction_length(instruction_length), m_instruction(0xA0)
{
}

std::uint8_t JTAG_DEVICE::status() const
{
    const bool done = expected_size != 0 && stream.size() == expected_size && !refuses_streams;
    return static_cast<std::uint8_t>((stream.empty() ? 1 : 0) | (done ? 2 : 0) |
                                     (!stream.empty() && refuses_streams ? 4 : 0));
}

void JTAG_DEVICE::finish_wait()
{
    if (watches_time && m_waited < m_needed * 0.999999)
        complaints.push_back("not waited long enough");
    if (m_erasing)
        stream.clear();
    m_erasing = false;
    m_needed = m_waited = 0;
}

void JTAG_DEVICE::load_instruction()
{
    finish_wait();
    m_instruction = m_shift_ir;
    if (m_instruction == BYPASS >> (64 - m_instruction_length))
        return;
    const bool needs_enable = m_instruction >= 0xA2 && m_instruction <= 0xA6;
    if (needs_enable && !m_enabled)
        complaints.push_back("not enabled");
    switch (m_instruction) {
    case 0xA1:
        m_enabled = true;
        in_operation = false;
        m_needed = 0.001;
        break;
    case 0xA2:
        in_operation = (status() & 2) != 0;
        m_enabled = false;
        m_needed = 0.001;
        break;
    case 0xA3:
        m_erasing = true;
        ++erasures;
        m_needed = 0.1;
        break;
    case 0xA4:
        if (!stream.empty())
            complaints.push_back("programmed without erasing");
        break;
    case 0xA5:
        m_read_at = 0;
        break;
    case 0xA0:
    case 0xA6:
        break;
    default:
        complaints.push_back("unknown instruction");
    }
}

void JTAG_DEVICE::capture_data()
{
    m_register.clear();
    m_taken.clear();
    m_head = 0;
    if (m_instruction == 0xA0)
        m_register = bits_of(m_idcode, 32);
    else if (m_instruction == 0xA6)
        m_register = bits_of(status(), 8);
}

void JTAG_DEVICE::update_data()
{
    longest_scan = std::max(longest_scan, m_taken.size());
    if (m_instruction == 0xA5)
        m_read_at += m_taken.size();
    if (m_instruction != 0xA4)
        return;
    if (m_taken.size() % 8 != 0)
        complaints.push_back("part of a byte");
    for (std::size_t i = 0; i + 8 <= m_taken.size(); i += 8)
        stream.push_back(
            static_cast<std::uint8_t>(value_of(BITS(m_taken.begin() + static_cast<std::ptrdiff_t>(i),
                                                    m_taken.begin() + static_cast<std::ptrdiff_t>(i) + 8))));
    m_needed = 0.01;
}

bool JTAG_DEVICE::tdo() const
{
    if (m_state == SHIFT_IR)
        return (m_shift_ir & 1) != 0;
    if (m_state != SHIFT_DR)
        return true;
    // One bit late, whatever the length of the scan.
    if (m_instruction == BYPASS >> (64 - m_instruction_length))
        return !m_taken.empty() && m_taken.back();
    if (m_instruction == 0xA5) {
        const std::size_t bit = m_read_at + m_taken.size();
        return bit / 8 < stream.size() && (stream[bit / 8] >> bit % 8 & 1) != 0;
    }
    return m_head == m_register.size() || m_register[m_head];
}

bool JTAG_DEVICE::clock(bool tms, bool tdi)
{
    static constexpr STATE NEXT[][2] = {
        {IDLE, RESET},         {IDLE, SELECT_DR},     {CAPTURE_DR, SELECT_IR}, {SHIFT_DR, EXIT1_DR},
        {SHIFT_DR, EXIT1_DR},  {PAUSE_DR, UPDATE_DR}, {PAUSE_DR, EXIT2_DR},    {SHIFT_DR, UPDATE_DR},
        {IDLE, SELECT_DR},     {CAPTURE_IR, RESET},   {SHIFT_IR, EXIT1_IR},    {SHIFT_IR, EXIT1_IR},
        {PAUSE_IR, UPDATE_IR}, {PAUSE_IR, EXIT2_IR},  {SHIFT_IR, UPDATE_IR},   {IDLE, SELECT_DR}};
    const bool out = tdo();
    if (m_state == SHIFT_IR) {
        m_shift_ir = m_shift_ir >> 1 | std::uint64_t{tdi} << (m_instruction_length - 1);
    } else if (m_state == SHIFT_DR) {
        if (m_instruction != 0xA5 && m_head != m_register.size())
            ++m_head;
        m_taken.push_back(tdi);
    }
    m_state = NEXT[m_state][tms ? 1 : 0];
    switch (m_state) {
    case RESET:
        finish_wait();
        m_instruction = 0xA0;
        m_enabled = false;
        break;
    case CAPTURE_IR:
        m_shift_ir = 1; // the two bits that the standard fixes
        break;
    case UPDATE_IR:
        load_instruction();
        break;
    case CAPTURE_DR:
        if (m_instruction != 0xA4)
            finish_wait();
        capture_data();
        break;
    case UPDATE_DR:
        update_data();
        break;
    default:
        break;
    }
    return out;
}

void JTAG_PORT::reset()
{
    for (int i = 0; i != 5; ++i)
        m_device.clock(true, false);
    m_device.clock(false, false);
}

void JTAG_PORT::idle(unsigned cycles, double seconds)
{
    for (unsigned i = 0; i != cycles; ++i)
        m_device.clock(false, false);
    m_device.pass(seconds);
}

BITS JTAG_PORT::shift(const BITS& bits, bool instruction)
{
    m_device.clock(true, false);
    if (instruction)
        m_device.clock(true, false);
    m_device.clock(false, false);
    m_device.clock(false, false);
    BITS out;
    out.reserve(bits.size());
    for (std::size_t i = 0; i != bits.size(); ++i)
        out.push_back(m_device.clock(i + 1 == bits.size(), bits[i]));
    m_device.clock(true, false);
    m_device.clock(false, false);
    return out;
}
