#include "vek_frame_fixture.h"
#include "vek_list_view.h"
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

    /// The rows of a tree, one a line, children indented, columns divided by "|".
    static std::string rows(const QWidget& tab)
    {
        const auto* const tree = tab.findChild<VEK_LIST_VIEW*>();
        return rows(*tree->model(), QModelIndex(), std::string());
    }
    static std::string rows(const QAbstractItemModel& model, const QModelIndex& parent,
                            const std::string& indent)
    {
        std::string text;
        for (int row = 0; row < model.rowCount(parent); ++row) {
            QStringList columns;
            for (int column = 0; column < model.columnCount(); ++column) {
                columns << model.index(row, column, parent).data().toString();
            }
            text += indent + columns.join('|').toStdString() + "\n";
            text += rows(model, model.index(row, 0, parent), indent + "  ");
        }
        return text;
    }
    void add_partition(const std::string& name, const std::string& start, const std::string& end)
    {
        set(*m_vek, VEK_CMD_OPT_FLASH_DEVICE,
            {{VEK_CMD_PARAM_FLASH_DEVICE_ID, "Flash_Device_1"},
             {VEK_CMD_PARAM_FLASH_DEVICE_TYPE, "W25Q128JV"},
             {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_ID, name},
             {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_S_ADDR, start},
             {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_E_ADDR, end}});
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
