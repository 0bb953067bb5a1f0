#include "intel_hex_decoder.h"

#include <gtest/gtest.h>

#include <sstream>

std::vector<std::uint8_t> DECODED_INTEL_HEX::contiguous() const
{
    std::vector<std::uint8_t> result;
    for (const auto& [address, byte] : bytes) {
        if (address != bytes.begin()->first + result.size()) {
            ADD_FAILURE() << "gap before address " << address;
            break;
        }
        result.push_back(byte);
    }
    return result;
}

DECODED_INTEL_HEX decode_intel_hex(const std::vector<std::uint8_t>& file)
{
    DECODED_INTEL_HEX result;
    std::istringstream lines(std::string(file.begin(), file.end()));
    std::string line;
    std::uint64_t base = 0;
    bool ended = false;
    for (unsigned number = 1; std::getline(lines, line); ++number) {
        const auto fail = [&](const std::string& reason) {
            result.fault = "line " + std::to_string(number) + ": " + reason;
            return result;
        };
        if (ended)
            return fail("behind the end");
        if (line.size() < 11 || line.size() % 2 == 0 || line[0] != ':')
            return fail("no record");
        if (line.find_first_not_of("0123456789ABCDEF", 1) != std::string::npos)
            return fail("no digit");
        std::vector<unsigned> record;
        unsigned sum = 0;
        for (std::size_t i = 1; i < line.size(); i += 2) {
            record.push_back(static_cast<unsigned>(std::stoul(line.substr(i, 2), nullptr, 16)));
            sum += record.back();
        }
        if (sum % 256 != 0)
            return fail("checksum");
        if (record.size() != record[0] + 5)
            return fail("length");
        const unsigned address = record[1] * 256 + record[2];
        result.types.push_back(record[3]);
        if (record[3] == 0) {
            result.lengths.push_back(record[0]);
            result.addresses.push_back(base + address);
            if (address + record[0] > 0x10000)
                return fail("crosses 64 KiB");
            for (unsigned i = 0; i != record[0]; ++i)
                if (!result.bytes.emplace(base + address + i, static_cast<std::uint8_t>(record[4 + i]))
                         .second)
                    return fail("overlap");
        } else if (record[3] == 1) {
            ended = true;
        } else if (record[3] == 4) {
            base = (std::uint64_t(record[4]) * 256 + record[5]) * 65536;
        } else {
            return fail("type");
        }
    }
    if (!ended)
        result.fault = "no end record";
    return result;
}
