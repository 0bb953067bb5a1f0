#ifndef PGMIO_DEVICE_FILE_READER_H
#define PGMIO_DEVICE_FILE_READER_H

#include "dset_oti_dev_options_info.h"
#include "fio_path.h"
#include "pgmio_config_scheme.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

struct PGM_DEVICE;

/// What a bitstream file says about itself, without its configuration data.
class PGMIO_BITFIELD
{
public:
    PGMIO_BITFIELD(PGMIO_CONFIG_SCHEME scheme, std::uint32_t option_word,
                   const DSET_OTI_DEV_OPTIONS_INFO& options)
        : m_scheme(scheme), m_option_word(option_word), m_options(options)
    {
    }

    /// The configuration scheme that the file was compiled for; PGMIO_CONFIG_SCHEME 25 when it is tied to
    /// none.
    PGMIO_CONFIG_SCHEME get_config_scheme() const { return m_scheme; }

    /// Whether the file carries device options of the on-chip flash family.
    bool has_option_block() const { return m_option_word != 0; }

    /// Fills `options` from the option block. False, with `options` untouched, when the file has none.
    bool read_oti_icb_data_for_sof(DSET_OTI_DEV_OPTIONS_INFO* options) const;

private:
    PGMIO_CONFIG_SCHEME m_scheme;
    std::uint32_t m_option_word;
    DSET_OTI_DEV_OPTIONS_INFO m_options;
};

/// A part of the device that a partial bitstream rewrites.
struct PGMIO_REGION {
    std::string name;
    std::uint64_t offset = 0; ///< in the device's core configuration memory, bytes
    std::uint64_t length = 0; ///< bytes
};

/// Reader of bitstream files (SOF, PMSF). Stateless; any thread may call it.
class PGMIO_DEVICE_FILE_READER
{
public:
    /// Reads the file at `path`. Each output may be null.
    ///
    /// `configuration_bits`: length of the configuration data in bits. `bitfield`: a new object that the
    /// caller owns. `device`: the record of the device index. `shown_path`: how messages name the file; empty
    /// for `path` itself. `message`: takes the sentence of a failure; when null, the failure is reported
    /// through the message service. `verify_contents`: also read the data and check every checksum.
    /// `regions`: the regions of a partial bitstream.
    /// On false no output but `message` is written.
    static bool read_file(const FIO_PATH& path, long* configuration_bits, PGMIO_BITFIELD** bitfield,
                          const PGM_DEVICE** device, const FIO_PATH& shown_path = FIO_PATH(""),
                          std::string* message = nullptr, bool verify_contents = false,
                          std::vector<PGMIO_REGION>* regions = nullptr);
};

/// One device of a configuration chain, with the options that its bitstream file was compiled with.
class PGM_CHAIN_ELEMENT
{
public:
    explicit PGM_CHAIN_ELEMENT(const PGM_DEVICE* device) : m_device(device) {}

    void set_path(const FIO_PATH& path) { m_path = path; }
    const FIO_PATH& get_path() const { return m_path; }
    const PGM_DEVICE* get_device() const { return m_device; }

    /// Options by name, such as "sof_option_encryption"; empty before create_chain_element.
    const std::map<std::string, bool>& get_option_map() const { return m_option_map; }

    /// Fills the option map of `chain` from its file. False, with the map empty, when the file cannot be read
    /// or is for another device.
    ///
    /// `read_options`: whether to read the file at all; false leaves the map empty and answers true.
    /// `message`: takes the sentence of a failure, may be null. `check_device`: whether the file must be for
    /// the element's device. `image`: which image of the file; a bitstream file has one, image 0.
    /// `verify_contents`: also read the data and check every checksum. `enabled_only`: leave out options
    /// that are off.
    static bool create_chain_element(PGM_CHAIN_ELEMENT* chain, bool read_options, std::string* message,
                                     bool check_device, unsigned image, bool verify_contents,
                                     bool enabled_only);

private:
    const PGM_DEVICE* m_device;
    FIO_PATH m_path{""};
    std::map<std::string, bool> m_option_map;
};

#endif
