#ifndef POF_FORMAT_H
#define POF_FORMAT_H

#include "format.h"
#include "pof_layout.h"

/// A flash image as the parts of it that are not 0xFF, with the name and the size of the device, the
/// partitions, and checksums over every byte. docs/formats/pof.md tells the file to the byte. It grows with
/// what the device holds, not with the device.
class FLASH_FILE_FORMAT : public FORMAT
{
public:
    bool write(const FORMAT_REQUEST& request, BYTE_SINK& sink, std::string& message) const final;
    bool verify(const FORMAT_REQUEST& request, const BYTE_SOURCE& file, std::string& message) const final;
    /// Gives the whole device.
    bool decode(const BYTE_SOURCE& file, BYTE_SINK& sink, std::string& message) const final;
    bool inspect(const BYTE_SOURCE& file, FORMAT_FACTS& facts, std::string& message) const final;
    bool tells_checksums() const final { return true; }

protected:
    explicit FLASH_FILE_FORMAT(const pof::KIND& kind) : m_kind(kind) {}
    static bool recognise(const pof::KIND& kind, const BYTE_SOURCE& file);

private:
    const pof::KIND& m_kind;
};

/// POF: a flash image for a device programmer.
class POF_FORMAT final : public FLASH_FILE_FORMAT
{
public:
    POF_FORMAT() : FLASH_FILE_FORMAT(pof::POF) {}
    /// Whether the file begins as a POF does.
    static bool recognise(const BYTE_SOURCE& file) { return FLASH_FILE_FORMAT::recognise(pof::POF, file); }
};

/// JIC: a flash image with the flash loader, the FPGA through which JTAG reaches the flash.
/// docs/formats/jic.md tells what it has beyond a POF.
class JIC_FORMAT final : public FLASH_FILE_FORMAT
{
public:
    JIC_FORMAT() : FLASH_FILE_FORMAT(pof::JIC) {}
    /// Whether the file begins as a JIC does.
    static bool recognise(const BYTE_SOURCE& file) { return FLASH_FILE_FORMAT::recognise(pof::JIC, file); }
};

#endif
