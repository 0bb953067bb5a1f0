#include "mok_app.h"
#include "vek_db.h"
#include "vek_file_assistant.h"
#include "vek_frame_wnd_cache.h"
#include "vek_model_output_files.h"
#include "vek_tab_output_files.h"
#include "vek_tree_output_files.h"

#include <QApplication>
#include <QLineEdit>

#include <benchmark/benchmark.h>
#include <cstdlib>

// What a user does in the output files tab with a large setup: all rows that can go together are ticked, and
// the document holds 1,000 bitstreams. Each must answer within a frame of 16 ms, painting included.

namespace
{

constexpr int BITSTREAMS = 1000;

class SESSION
{
public:
    SESSION(DEV_FAMILY_ENUM family, PGMIO_CONFIG_SCHEME mode)
        : m_vek(std::make_shared<PGM_COMMON_XML_VEK_VEK>(PGM_COMMON_XML_ENUM_VEK)),
          m_cache(std::make_shared<VEK_FRAME_WND_CACHE>())
    {
        m_cache->family = family;
        m_cache->current_mode = mode;
        for (int number = 1; number <= BITSTREAMS; ++number) {
            const std::string id = "Bitstream_" + std::to_string(number);
            VEK_FILE_ASSISTANT::set(
                m_vek.get(), VEK_CMD_OPT_BITSTREAM,
                {{VEK_CMD_PARAM_BITSTREAM_ID, id}, {VEK_CMD_PARAM_BITSTREAM_PATH, "/in/" + id + ".sof"}});
        }
        m_tab = std::make_unique<VEK_TAB_OUTPUT_FILES>(m_vek, m_cache, nullptr, Qt::WindowFlags());
        m_tab->resize(1000, 800);
        m_tab->show();
        m_tab->refresh();
        settle();
    }

    void tick(VEK_FILE_TYPE type, Qt::CheckState state)
    {
        QAbstractItemModel& model = *tree().model();
        for (int row = 0; row < model.rowCount(); ++row) {
            const QModelIndex index = model.index(row, 0);
            if (dynamic_cast<VEK_MODEL_OUTPUT_FILES&>(model).get_file_type(index) == type) {
                model.setData(index, state, Qt::CheckStateRole);
            }
        }
        settle();
    }
    /// Ticks all rows that take bitstreams.
    void tick_all()
    {
        QAbstractItemModel& model = *tree().model();
        for (int row = 0; row < model.rowCount(); ++row) {
            const QModelIndex index = model.index(row, 0);
            const VEK_FILE_TYPE type = dynamic_cast<VEK_MODEL_OUTPUT_FILES&>(model).get_file_type(index);
            if (VEK_DB_UTIL::is_supported_file_category(type, VEK_FILE_CATEGORY_BITSTREAM)) {
                model.setData(index, Qt::Checked, Qt::CheckStateRole);
            }
        }
        settle();
    }
    void change_mode(PGMIO_CONFIG_SCHEME mode)
    {
        m_cache->current_mode = mode;
        m_tab->refresh_output_file_tree(mode, true);
        settle();
    }
    void type_name(const QString& name)
    {
        m_tab->findChild<QLineEdit*>(QStringLiteral("m_name_edit"))->setText(name);
        settle();
    }
    int rows(const QModelIndex& parent = {}) const
    {
        const QAbstractItemModel& model = *tree().model();
        int count = model.rowCount(parent);
        for (int row = 0; row < model.rowCount(parent); ++row) {
            count += rows(model.index(row, 0, parent));
        }
        return count;
    }

private:
    static void settle() { QCoreApplication::processEvents(); }
    VEK_TREE_OUTPUT_FILES& tree() const { return *m_tab->findChild<VEK_TREE_OUTPUT_FILES*>(); }

    std::shared_ptr<PGM_COMMON_XML_VEK_VEK> m_vek;
    std::shared_ptr<VEK_FRAME_WND_CACHE> m_cache;
    std::unique_ptr<VEK_TAB_OUTPUT_FILES> m_tab;
};

void tick_of_a_bitstream_type(benchmark::State& state)
{
    SESSION session(DEV_FAMILY_NONE, PGMIO_CONFIG_SCHEME_PS);
    session.tick_all();
    session.tick(VEK_RBF_FILE_TYPE, Qt::Unchecked);
    for ([[maybe_unused]] const auto _ : state) {
        session.tick(VEK_RBF_FILE_TYPE, Qt::Checked);
        state.PauseTiming();
        session.tick(VEK_RBF_FILE_TYPE, Qt::Unchecked);
        state.ResumeTiming();
    }
    state.counters["rows"] = session.rows();
}
BENCHMARK(tick_of_a_bitstream_type)->Unit(benchmark::kMillisecond);

void untick_of_a_bitstream_type(benchmark::State& state)
{
    SESSION session(DEV_FAMILY_NONE, PGMIO_CONFIG_SCHEME_PS);
    session.tick_all();
    for ([[maybe_unused]] const auto _ : state) {
        session.tick(VEK_RBF_FILE_TYPE, Qt::Unchecked);
        state.PauseTiming();
        session.tick(VEK_RBF_FILE_TYPE, Qt::Checked);
        state.ResumeTiming();
    }
}
BENCHMARK(untick_of_a_bitstream_type)->Unit(benchmark::kMillisecond);

/// All that was ticked goes along from mode to mode.
void change_of_mode(benchmark::State& state)
{
    SESSION session(DEV_FAMILY_NONE, PGMIO_CONFIG_SCHEME_PS);
    session.tick_all();
    bool is_parallel = false;
    for ([[maybe_unused]] const auto _ : state) {
        is_parallel = !is_parallel;
        session.change_mode(is_parallel ? PGMIO_CONFIG_SCHEME_FPP : PGMIO_CONFIG_SCHEME_PS);
    }
    state.counters["rows"] = session.rows();
}
BENCHMARK(change_of_mode)->Unit(benchmark::kMillisecond);

void keystroke_in_the_name(benchmark::State& state)
{
    SESSION session(DEV_FAMILY_NONE, PGMIO_CONFIG_SCHEME_PS);
    session.tick_all();
    bool is_long = false;
    for ([[maybe_unused]] const auto _ : state) {
        is_long = !is_long;
        session.type_name(is_long ? QStringLiteral("output_files") : QStringLiteral("output_file"));
    }
}
BENCHMARK(keystroke_in_the_name)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    ::setenv("QT_QPA_PLATFORM", "offscreen", 0);
    benchmark::Initialize(&argc, argv);
    const QApplication application(argc, argv);
    const MOK_APP app;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
