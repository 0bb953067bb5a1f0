#ifndef INGREDIENTS_H
#define INGREDIENTS_H

#include "configuration_stream.h"
#include "core_dump_guard.h"
#include "flash_plan.h"
#include "format.h"
#include "generate_job.h"
#include "output_plan.h"
#include "setup_security.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

/// What the outputs of one run are made from: configuration streams, flash images and measurements, each made
/// once for all outputs that want it. `setup`, `options` and `plans` must outlive it and stay as they are.
class INGREDIENTS
{
public:
    INGREDIENTS(const SETUP_VIEW& setup, const GENERATE_OPTIONS& options,
                const std::vector<OUTPUT_PLAN>& plans);

    /// Reads all keys. False when one cannot be had, which has been reported. Must come first.
    bool load_keys();

    /// Finds out what the outputs want. Large pieces are put beside the files of `temporary_directory`.
    void collect(const std::string& temporary_directory);

    /// Bytes of all input files that the streams read, known after collect.
    std::uint64_t input_bytes() const { return m_input_bytes; }

    /// Builds the streams, in parallel, and measures the images of the manifests. What fails is told by
    /// make_request.
    void build_streams();

    /// Lays out and fills the flash images. False when a layout cannot be used, which has been reported.
    bool build_flash_contents();

    /// Lets all streams and manifests leave their digests at the signing desk. False when one failed, which
    /// has been reported. After build_streams.
    bool report_digests() const;

    /// The request of an output, without checksums of regions; false with the reason, a sentence, when what
    /// it is made from is not there.
    bool make_request(const OUTPUT_PLAN& plan, FORMAT_REQUEST& request, std::string& failure) const;

    /// Puts the checksums of its regions into the request of an output whose format tells them. False with
    /// the reason when an input cannot be read.
    bool add_checksums(const OUTPUT_PLAN& plan, FORMAT_REQUEST& request, std::string& failure) const;

    /// The image of a request, read by one that helps to find the checksums; null for other images.
    std::unique_ptr<const BYTE_SOURCE> listening_image(const OUTPUT_PLAN& plan) const;

private:
    /// Something made once for several outputs.
    template <class CONTENT>
    struct INGREDIENT {
        CONTENT content;
        std::string failure; ///< empty when the content is there
    };
    using STREAM = INGREDIENT<std::shared_ptr<const BYTE_SOURCE>>;
    using MEASUREMENTS = INGREDIENT<std::vector<IMAGE_MEASUREMENTS>>;

    struct FLASH {
        FLASH_CONTENT content;
        FLASH_CONTENT boot; ///< the boot data of the content
        std::string boot_failure;
        const PGM_DEVICE* device = nullptr;
        std::string failure;
    };
    using FLASH_KEY = std::pair<FORMAT_PART, std::string>;

    struct STREAM_JOB {
        FORMAT_PART part;
        std::vector<STREAM_INPUT> inputs;
        STREAM* stream;
    };

    static FLASH_KEY flash_key(const OUTPUT_PLAN& plan);
    std::vector<BITSTREAM_PICK> picks_of(const OUTPUT_PLAN& plan) const;
    std::string options_of(const FLASH_KEY& key) const;
    void want_stream(FORMAT_PART part, const std::vector<BITSTREAM_PICK>& picks,
                     const std::string& options_of = "");
    std::vector<STREAM_INPUT> inputs_of(const std::vector<BITSTREAM_PICK>& picks,
                                        const std::string& options_of) const;
    STREAM_PROVIDER provider(FORMAT_PART part, const std::string& options_of) const;
    const FLASH_CONTENT& content_of(const OUTPUT_PLAN& plan) const;
    void measure();
    bool request_flash(const OUTPUT_PLAN& plan, FORMAT_REQUEST& request, std::string& failure) const;
    bool request_stream(const OUTPUT_PLAN& plan, FORMAT_REQUEST& request, std::string& failure) const;
    bool request_measurements(const OUTPUT_PLAN& plan, FORMAT_REQUEST& request, std::string& failure) const;

    const SETUP_VIEW& m_setup;
    const GENERATE_OPTIONS& m_options;
    const std::vector<OUTPUT_PLAN>& m_plans;
    SETUP_FACTS m_facts;
    std::string m_temporary_directory;
    std::uint64_t m_input_bytes = 0;
    std::map<std::string, STREAM> m_streams;
    std::vector<STREAM_JOB> m_stream_jobs;
    std::map<FLASH_KEY, FLASH> m_flash;
    std::map<const OUTPUT_PLAN*, MEASUREMENTS> m_measurements;
    std::optional<CORE_DUMP_GUARD> m_guard; ///< before the keys, so that it outlives them
    SETUP_SECURITY m_security;
};

#endif
