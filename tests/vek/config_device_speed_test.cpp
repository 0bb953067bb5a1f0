#include "config_device_fixture.h"
#include "pgm_device.h"
#include "vek_tab_config_device.h"
#include "vek_tree_config_device.h"
#include "vek_util.h"

#include <QElapsedTimer>

namespace
{

class VEK_CONFIG_DEVICE_SPEED : public CONFIG_DEVICE_FIXTURE
{
};

} // namespace

TEST_F(VEK_CONFIG_DEVICE_SPEED, a_thousand_partitions_are_checked_and_shown_at_once)
{
    m_cache->family = DEV_FAMILY_BASALT;
    m_cache->current_mode = PGMIO_CONFIG_SCHEME_AS;
    set_mode("ASX1");
    add_output(*m_vek, "RPD", "top", m_directory.path());
    device("F", "MT25QU01G");
    for (int i = 0; i < 1000; ++i) {
        partition("F", "P" + std::to_string(i),
                  i % 2 == 0 ? "auto" : "0x" + QString::number(i * 0x10000, 16).toStdString(),
                  i % 2 == 0 ? "auto" : "0x" + QString::number(i * 0x10000 + 0xFFFF, 16).toStdString());
    }
    VEK_TAB_CONFIG_DEVICE tab(m_vek, m_cache, nullptr, Qt::WindowFlags());
    tab.resize(900, 600);
    tab.show();
    qint64 best = std::numeric_limits<qint64>::max();
    for (int run = 0; run < 3; ++run) {
        QElapsedTimer timer;
        timer.start();
        bool can_save = false;
        bool can_generate = false;
        bool has_warning = false;
        std::string message;
        ASSERT_TRUE(VEK_UTIL::check(m_vek.get(), can_save, can_generate, message, has_warning, true));
        const qint64 checked = timer.elapsed();
        tab.refresh();
        tab.grab();
        RecordProperty("checked_ms", static_cast<int>(checked));
        best = std::min(best, timer.elapsed());
    }
    EXPECT_EQ(
        child<VEK_TREE_CONFIG_DEVICE>(tab, "m_config_device_tree")
            ->model()
            ->rowCount(child<VEK_TREE_CONFIG_DEVICE>(tab, "m_config_device_tree")->model()->index(0, 0)),
        1000);
    RecordProperty("best_ms", static_cast<int>(best));
    std::printf("1,000 partitions checked, laid out and shown in %lld ms\n", static_cast<long long>(best));
    // Quadratic work would take seconds; the bound leaves room for a busy machine and for sanitizers.
    EXPECT_LT(best, 2000);
}

TEST_F(VEK_CONFIG_DEVICE_SPEED, a_setup_with_an_address_that_is_no_number_is_not_opened)
{
    set_mode("ASX1");
    device("F", "W25Q128JV");
    partition("F", "P1", "0x1000", "zebra");
    const std::string path = m_directory / "bad.vek";
    ASSERT_TRUE(VEK_UTIL::save(m_vek.get(), path));
    PGM_COMMON_XML_VEK_VEK* document = nullptr;
    EXPECT_FALSE(VEK_UTIL::parse(&document, path));
    EXPECT_EQ(document, nullptr);
    partition("F", "P1", "0x1000", "1FFF");
    ASSERT_TRUE(VEK_UTIL::save(m_vek.get(), path));
    EXPECT_TRUE(VEK_UTIL::parse(&document, path));
    delete document;
}
