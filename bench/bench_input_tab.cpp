// The second tab with many files: painting the tree, and adding a bitstream of a hundred megabytes.

#include "mok_app.h"
#include "pack.h"
#include "vek_file_assistant.h"
#include "vek_frame_wnd.h"
#include "vek_frame_wnd_cache.h"
#include "vek_model_input_files.h"
#include "vek_tree_input_files.h"

#include <QApplication>
#include <QTabWidget>

#include <benchmark/benchmark.h>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>

namespace
{

constexpr int FILE_COUNT = 1000;
/// The core of the largest device, and firmware up to a hundred megabytes.
constexpr std::uintmax_t CORE_SIZE = 80 * 1024 * 1024;
constexpr std::uintmax_t FIRMWARE_SIZE = 20 * 1024 * 1024;

std::string directory;

std::string make_hole(const std::string& name, std::uintmax_t size)
{
    const std::string path = directory + "/" + name;
    std::ofstream(path).put('\0');
    std::filesystem::resize_file(path, size);
    return path;
}

std::string make_bitstream(const std::string& name, const std::string& device, std::uintmax_t core_size,
                           std::uintmax_t firmware_size = 0)
{
    PACK_REQUEST request;
    request.device = device;
    request.core_path = make_hole("core", core_size);
    if (firmware_size > 0) {
        request.firmware_path = make_hole("firmware", firmware_size);
    }
    request.output_path = directory + "/" + name;
    std::string message;
    if (!pack_bitstream(request, message)) {
        std::cerr << message << "\n";
        std::exit(1);
    }
    return request.output_path;
}

struct SESSION {
    std::shared_ptr<PGM_COMMON_XML_VEK_VEK> vek =
        std::make_shared<PGM_COMMON_XML_VEK_VEK>(PGM_COMMON_XML_ENUM_VEK);
    std::shared_ptr<VEK_FRAME_WND_CACHE> cache = std::make_shared<VEK_FRAME_WND_CACHE>();
};

void add_files(const SESSION& session, bool are_raw)
{
    const std::string source = make_bitstream("source.sof", "BS1L15", 4096);
    for (int number = 1; number <= FILE_COUNT; ++number) {
        const std::string path = directory + "/" + std::to_string(number) + (are_raw ? ".bin" : ".sof");
        std::filesystem::copy_file(source, path, std::filesystem::copy_options::overwrite_existing);
        if (are_raw) {
            VEK_FILE_ASSISTANT::set(session.vek.get(), VEK_CMD_OPT_RAW_FILE,
                                    {{VEK_CMD_PARAM_RAW_FILE_ID, "Raw_File_" + std::to_string(number)},
                                     {VEK_CMD_PARAM_RAW_FILE_RAW_FILE, path}});
        } else {
            VEK_FILE_ASSISTANT::set(session.vek.get(), VEK_CMD_OPT_BITSTREAM,
                                    {{VEK_CMD_PARAM_BITSTREAM_ID, "Bitstream_" + std::to_string(number)},
                                     {VEK_CMD_PARAM_BITSTREAM_PATH, path}});
        }
    }
}

/// One frame: every visible cell, at each scroll position in turn.
void paint_tree(benchmark::State& state, bool are_raw)
{
    const SESSION session;
    add_files(session, are_raw);
    VEK_TREE_INPUT_FILES tree(session.vek, session.cache, nullptr);
    tree.resize(1000, 800);
    tree.refresh();
    tree.show();
    QCoreApplication::processEvents();
    int row = 0;
    for (auto _ : state) {
        row = (row + 37) % FILE_COUNT;
        tree.scrollTo(tree.model()->index(row, 0), QAbstractItemView::PositionAtTop);
        tree.viewport()->repaint();
    }
}
BENCHMARK_CAPTURE(paint_tree, of_1000_bitstreams, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(paint_tree, of_1000_raw_files, true)->Unit(benchmark::kMillisecond);

void refresh_1000_files(benchmark::State& state)
{
    const std::string source = make_bitstream("source.sof", "BS1L15", 4096);
    const SESSION session;
    for (int number = 1; number <= FILE_COUNT; ++number) {
        VEK_FILE_ASSISTANT::set(session.vek.get(), VEK_CMD_OPT_BITSTREAM,
                                {{VEK_CMD_PARAM_BITSTREAM_ID, "Bitstream_" + std::to_string(number)},
                                 {VEK_CMD_PARAM_BITSTREAM_PATH, source}});
    }
    VEK_TREE_INPUT_FILES tree(session.vek, session.cache, nullptr);
    for (auto _ : state) {
        tree.refresh();
    }
}
BENCHMARK(refresh_1000_files)->Unit(benchmark::kMillisecond);

std::string make_large_bitstream()
{
    return make_bitstream("large.sof", "ZR9A041", CORE_SIZE, FIRMWARE_SIZE);
}

void add_bitstream_of_100_mib(benchmark::State& state)
{
    const std::string path = make_large_bitstream();
    for (auto _ : state) {
        const SESSION session;
        VEK_MODEL_INPUT_FILES model(session.vek, session.cache, nullptr);
        if (model.add_bitstream(FIO_PATH(path)) != 0) {
            state.SkipWithError("refused");
        }
    }
    state.counters["MiB"] = static_cast<double>(std::filesystem::file_size(path)) / (1024 * 1024);
}
BENCHMARK(add_bitstream_of_100_mib)->Unit(benchmark::kMillisecond);

/// From the choice of the file until the window can be used again, with the row in it: both threads.
void add_bitstream_of_100_mib_in_the_window(benchmark::State& state)
{
    const std::string path = make_large_bitstream();
    VEK_FRAME_WND frame(nullptr, MOK_FW_STATE_MAIN, nullptr, Qt::WindowFlags());
    frame.resize(1000, 800);
    frame.show();
    auto& tabs = *frame.findChild<QTabWidget*>(QStringLiteral("m_tab_widget"));
    tabs.setTabEnabled(1, true);
    tabs.setCurrentIndex(1);
    auto& tree = *frame.findChild<VEK_TREE_INPUT_FILES*>();
    QCoreApplication::processEvents();
    for (auto _ : state) {
        tree.add_bitstream(FIO_PATH(path));
        while (!frame.centralWidget()->isEnabled()) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
        tree.viewport()->repaint();
        state.PauseTiming();
        if (tree.model()->rowCount() != 1) {
            state.SkipWithError("refused");
        }
        tree.remove_bitstream("Bitstream_1");
        tree.refresh();
        QCoreApplication::processEvents();
        state.ResumeTiming();
    }
}
BENCHMARK(add_bitstream_of_100_mib_in_the_window)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    const MOK_APP host;
    std::string name = (std::filesystem::temp_directory_path() / "bench_input_XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) {
        return 1;
    }
    directory = name;
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    std::filesystem::remove_all(directory);
    return 0;
}
