#ifndef PGM_DEVICE_H
#define PGM_DEVICE_H

#include "dev_family_enum.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// How far a device has come in its life.
enum class DEV_RELEASE : std::uint8_t {
    PRODUCTION,
    SAMPLE,    ///< engineering samples: listed, and marked so that the queries are asked
    WITHDRAWN, ///< known, so that old files can be named, and no longer listed
};

/// A block of on-chip flash: first byte and length, both in bytes. Length 0 when the device has none.
struct DEV_FLASH_SECTOR {
    std::uint32_t start = 0;
    std::uint32_t size = 0;
    bool operator==(const DEV_FLASH_SECTOR&) const = default;
};

/// A read-only record of the device database. What does not concern a device is at zero.
struct PGM_DEVICE {
    std::string name;
    std::string code; ///< short internal code, "kv3" for the device that takes a single bitstream
    DEV_DEVICE_ENUM device = DEV_DEVICE_NONE;
    DEV_FAMILY_ENUM family = DEV_FAMILY_NONE;
    DEV_CLASS_ENUM device_class = DEV_CLASS_NONE;
    std::uint32_t key_bits = 0;  ///< length of the encryption key, 0 when the device has none
    bool ask_not_listed = false; ///< is_dev_not_listed is to be asked
    bool ask_no_pof = false;     ///< is_dev_no_pof is to be asked
    DEV_RELEASE release = DEV_RELEASE::PRODUCTION;
    bool jtag_only = false; ///< programmed over JTAG only, so that no programmer file exists for it

    // FPGAs.
    std::uint32_t idcode = 0;             ///< JTAG IDCODE, IEEE 1149.1
    std::uint32_t instruction_length = 0; ///< bits of the JTAG instruction register
    std::uint32_t periphery_bytes = 0;    ///< configuration data of the periphery
    std::uint32_t core_bytes = 0;         ///< configuration data of the core
    DEV_FLASH_SECTOR cfm0;                ///< on-chip configuration flash, first image
    DEV_FLASH_SECTOR cfm1;                ///< on-chip configuration flash, second image
    DEV_FLASH_SECTOR ufm;                 ///< on-chip user flash
    std::uint32_t missing_modes =
        0; ///< modes of the family that this device has no pins for, bit n for mode n

    // Flash devices, and the on-chip flash of an FPGA.
    std::uint64_t flash_bytes = 0;  ///< capacity
    std::uint32_t sector_bytes = 0; ///< smallest block that is erased by itself
    std::uint32_t page_bytes = 0;   ///< largest block that is written at once
    /// The answer to the command Read Identification: JEDEC manufacturer, memory type, capacity code. All
    /// zero for devices without that command.
    std::array<std::uint8_t, 3> jedec_id{};
    std::uint32_t address_width =
        0;                      ///< bits of an address: 24 or 32 on a serial bus, the pins of a parallel one
    bool sized_in_bits = false; ///< the name gives the capacity in bits
    bool flash_loader = false;  ///< a flash loader can write it through an FPGA
    bool tsu_tessel = false;    ///< one of the special devices of DEV_FAMILY_SPECIAL_FLASH

    bool operator==(const PGM_DEVICE&) const = default;

    bool is_dev_not_listed() const { return release == DEV_RELEASE::WITHDRAWN; }
    bool is_dev_no_pof() const { return jtag_only; }

    /// The name by which users and documents know the device. The parallel flash devices stand in the
    /// database with an upper-case byte suffix and are shown with the last character "b".
    std::string user_name() const;
};

/// The devices that the tool knows: those built in, and behind them those of the custom flash database in
/// force. Records live as long as the process, so that a pointer once given stays valid when the custom
/// directory changes. Safe from any thread.
class PGM_DEVICE_INDEX
{
public:
    static std::vector<const PGM_DEVICE*> get_device_list();

    /// The device of a name, in the database's spelling or as users see it, letter case ignored; null when
    /// there is none.
    static const PGM_DEVICE* find_by_name(const std::string& name);
    /// The device of a number, also one whose custom database is no longer in force; null when there is none.
    static const PGM_DEVICE* find_by_enum(DEV_DEVICE_ENUM device);

    /// Whether a serial configuration device is to be offered. `for_programming`: to be written by a
    /// programmer, which needs a device that is still made. `through_fpga`: to be written through the FPGA,
    /// which needs one that a flash loader knows.
    static bool enable_asc_device(const PGM_DEVICE* device, bool for_programming, bool through_fpga);

    /// Recognises the special devices of DEV_FAMILY_SPECIAL_FLASH; false for any other and unknown ones.
    static bool is_tsu_tessel_device(const std::string& name);
    static bool is_tsu_tessel_device(const PGM_DEVICE* device);

    /// For a host that brings its own list, and for tests: get_device_list then gives `list` as it stands.
    /// nullopt goes back to the database.
    static void override_device_list(std::optional<std::vector<const PGM_DEVICE*>> list);
};

/// Keeps the family tables loaded while an object of it lives. They are constants of the program, so it only
/// marks the scope in which they are read.
class DEV_FAMILY_MANAGER
{
public:
    DEV_FAMILY_MANAGER();

    /// All families by value, flash families included.
    std::vector<DEV_FAMILY_ENUM> families() const { return m_families; }

private:
    std::vector<DEV_FAMILY_ENUM> m_families;
};

#endif
