#include "vek_frame_fixture.h"
#include "vek_tab_config_device.h"
#include "vek_tab_input_files.h"
#include "vek_tab_output_files.h"

namespace
{

using DOCUMENT = std::shared_ptr<PGM_COMMON_XML_VEK_VEK>;

class VEK_TABS : public VEK_FRAME_FIXTURE
{
protected:
    VEK_TABS()
        : m_vek(std::make_shared<PGM_COMMON_XML_VEK_VEK>(PGM_COMMON_XML_ENUM_VEK)),
          m_cache(std::make_shared<VEK_FRAME_WND_CACHE>())
    {
    }

    template <typename TAB>
    TAB make() const
    {
        return TAB(m_vek, m_cache, nullptr, Qt::WindowFlags());
    }

    DOCUMENT m_vek;
    std::shared_ptr<VEK_FRAME_WND_CACHE> m_cache;
};

} // namespace

TEST_F(VEK_TABS, a_tab_without_a_document_or_a_cache_is_an_internal_error)
{
    const DOCUMENT no_document;
    const std::shared_ptr<VEK_FRAME_WND_CACHE> no_cache;
    EXPECT_INTERNAL_ERROR(VEK_TAB_OUTPUT_FILES(no_document, m_cache, nullptr, {}), "m_vek != nullptr");
    EXPECT_INTERNAL_ERROR(VEK_TAB_OUTPUT_FILES(m_vek, no_cache, nullptr, {}), "m_cache != nullptr");
    EXPECT_INTERNAL_ERROR(VEK_TAB_INPUT_FILES(no_document, m_cache, nullptr, {}), "m_vek != nullptr");
    EXPECT_INTERNAL_ERROR(VEK_TAB_INPUT_FILES(m_vek, no_cache, nullptr, {}), "m_cache != nullptr");
    EXPECT_INTERNAL_ERROR(VEK_TAB_CONFIG_DEVICE(no_document, m_cache, nullptr, {}), "m_vek != nullptr");
    EXPECT_INTERNAL_ERROR(VEK_TAB_CONFIG_DEVICE(m_vek, no_cache, nullptr, {}), "m_cache != nullptr");
    auto output_tab = make<VEK_TAB_OUTPUT_FILES>();
    EXPECT_INTERNAL_ERROR(output_tab.set_vek(nullptr), "vek != nullptr");
    auto input_tab = make<VEK_TAB_INPUT_FILES>();
    EXPECT_INTERNAL_ERROR(input_tab.set_vek(nullptr), "vek != nullptr");
    auto device_tab = make<VEK_TAB_CONFIG_DEVICE>();
    EXPECT_INTERNAL_ERROR(device_tab.set_vek(nullptr), "vek != nullptr");
}
