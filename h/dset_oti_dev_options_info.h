#ifndef DSET_OTI_DEV_OPTIONS_INFO_H
#define DSET_OTI_DEV_OPTIONS_INFO_H

#include <cstdint>
#include <string>

/// Internal configuration options of the on-chip flash family. Every user starts from this initial state.
struct DSET_OTI_DEV_OPTIONS_INFO {
    std::uint32_t power_on_scheme = 0;
    bool user_ios_weak_pullup = true;
    bool option_flag_a = true;
    bool not_cfm0_only = true;
    bool isp_source = false;
    bool jtag_security = false;
    bool verify_protect = false;
    bool encrypted_pof_only = false;
    bool watchdog_enabled = false;
    std::uint32_t watchdog_value = 0;
    bool spi_mode = false;
    bool fallback_enabled = false;
    std::uint32_t fallback_address = 0;
    bool force_ssmclk_to_use_ismclk = true;
    std::uint32_t ufm_source = 0; ///< 0 the sector CFM0, 1 the sector CFM1, 2 a file
    std::string ufm_source_file;  ///< the file when ufm_source is 2
    bool option_flag_b = true;
    bool enable_test = false;
    bool disable_test = true;
};

#endif
