#ifndef SETUP_VIEW_H
#define SETUP_VIEW_H

#include "dev_family_enum.h"
#include "id_table.h"
#include "pgm_common_xml_vek_auto_export.h"
#include "pgmio_config_scheme.h"
#include "vek_file_type.h"

#include <cstdint>
#include <string>
#include <vector>

/// Elements of one kind in document order, found by id in constant time. With two of one id the first counts.
/// The elements keep the ids.
template <class ELEMENT>
class ELEMENT_INDEX
{
public:
    /// Makes room for so many more.
    void reserve(std::size_t count)
    {
        m_all.reserve(m_all.size() + count);
        m_first.reserve(m_all.size() + count);
        m_ids.reserve(m_all.size() + count);
    }
    void add(const std::string& id, const ELEMENT* element)
    {
        m_all.push_back(element);
        if (m_ids.insert(id)) {
            m_first.push_back(element);
        }
    }
    const ELEMENT* find(const std::string& id) const
    {
        const auto number = m_ids.find(id);
        return number ? m_first[*number] : nullptr;
    }
    const std::vector<const ELEMENT*>& all() const { return m_all; }

private:
    std::vector<const ELEMENT*> m_all;
    std::vector<const ELEMENT*> m_first; ///< those without the later ones of an id
    ID_TABLE m_ids;
};

/// A setup document as the check and the generation read it: every element at hand by its id, so that a setup
/// of ten thousand partitions is walked and not searched. The document must outlive the view and stay as it
/// is.
class SETUP_VIEW
{
public:
    explicit SETUP_VIEW(const PGM_COMMON_XML_VEK_VEK& document);

    const PGM_COMMON_XML_VEK_VEK& document() const { return m_document; }
    /// The mode of the settings; PGMIO_CONFIG_SCHEME_ILLEGAL when there is none.
    PGMIO_CONFIG_SCHEME mode() const { return m_mode; }

    const ELEMENT_INDEX<PGM_COMMON_XML_VEK_BITSTREAM>& bitstreams() const { return m_bitstreams; }
    const ELEMENT_INDEX<PGM_COMMON_XML_VEK_RAW_FILE>& raw_files() const { return m_raw_files; }
    const ELEMENT_INDEX<PGM_COMMON_XML_VEK_FLASH_DEVICE>& flash_devices() const { return m_flash_devices; }
    /// Partitions of all devices; those within a master boot record are not among them.
    const ELEMENT_INDEX<PGM_COMMON_XML_VEK_PARTITION>& partitions() const { return m_partitions; }
    /// By partition id.
    const ELEMENT_INDEX<PGM_COMMON_XML_VEK_ASSIGNMENT>& assignments() const { return m_assignments; }
    const std::vector<const PGM_COMMON_XML_VEK_OUTPUT_FILE*>& output_files() const { return m_output_files; }
    /// Empty when none is chosen.
    const std::string& flash_loader() const { return m_flash_loader; }

private:
    const PGM_COMMON_XML_VEK_VEK& m_document;
    PGMIO_CONFIG_SCHEME m_mode;
    ELEMENT_INDEX<PGM_COMMON_XML_VEK_BITSTREAM> m_bitstreams;
    ELEMENT_INDEX<PGM_COMMON_XML_VEK_RAW_FILE> m_raw_files;
    ELEMENT_INDEX<PGM_COMMON_XML_VEK_FLASH_DEVICE> m_flash_devices;
    ELEMENT_INDEX<PGM_COMMON_XML_VEK_PARTITION> m_partitions;
    ELEMENT_INDEX<PGM_COMMON_XML_VEK_ASSIGNMENT> m_assignments;
    std::vector<const PGM_COMMON_XML_VEK_OUTPUT_FILE*> m_output_files;
    std::string m_flash_loader;
};

/// The output type of a word of the document; VEK_INVALID_FILE_TYPE for any other text.
VEK_FILE_TYPE output_type_of(const std::string& word);

/// Whether the type is made from bitstreams, or else from a flash device.
bool takes_bitstreams(VEK_FILE_TYPE type);
bool takes_flash_device(VEK_FILE_TYPE type);

/// An unsigned decimal number, the whole text. False when it is none or does not fit.
bool parse_decimal(const std::string& text, std::uint64_t& value);

/// The path made absolute against the current directory.
std::string absolute_path(const std::string& path);

#endif
