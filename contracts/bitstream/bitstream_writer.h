#ifndef BITSTREAM_WRITER_H
#define BITSTREAM_WRITER_H

#include "bitstream_file.h"

/// Puts a bitstream file together. Equal contents give equal bytes: the sections stand in the order in which
/// they were added, the device first.
class BITSTREAM_WRITER
{
public:
    BITSTREAM_WRITER(BITSTREAM_KIND kind, const BITSTREAM_DEVICE& device);

    void set_scheme(std::uint32_t scheme);
    void set_options(const BITSTREAM_OPTIONS& options);
    void set_option_block(const DSET_OTI_DEV_OPTIONS_INFO& options);
    void set_regions(const std::vector<BITSTREAM_REGION>& regions);

    /// Adds a section of any tag; each tag once (internal error "no section has this tag yet"). The source is
    /// read twice by write(), for the checksum and for the file.
    void add_section(const SECTION_TAG& tag, std::shared_ptr<const BYTE_SOURCE> content);

    /// Writes the whole file. False with a whole sentence in `message` when a source cannot be read, the sink
    /// cannot be written, or the sections make no legal file (no core data, say).
    bool write(BYTE_SINK& sink, std::string& message) const;

private:
    struct SECTION {
        SECTION_TAG tag;
        std::shared_ptr<const BYTE_SOURCE> content;
    };
    /// Asks the reader whether it would take the file.
    bool check(std::vector<std::uint8_t> first_bytes, std::uint64_t size, std::string& message) const;

    BITSTREAM_KIND m_kind;
    std::vector<SECTION> m_sections;
};

#endif
