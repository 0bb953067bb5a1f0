// The second tab with many files: painting the tree, and adding a bitstream of a hundred megabytes.

#include "mok_app.h"
#include "pack.h"
#include "vek_file_assistant.h"
#include "vek_frame_wnd_cache.h"
#include "vek_model_input_files.h"
#include "vek_tree_input_files.h"

#include <QApplication>

#include <benchmark/benchmark.h>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>

namespace
{

constexpr int FILE_COUNT = 1000;

std::string directory;

std::string make_bitstream(const std::string& name, const std::string& device, std::uintmax_t core_size)
{
    PACK_REQUEST request;
    request.device = device;
    request.core_path = directory + "/core";
    request.output_path = directory + "/" + name;
    std::ofstream(request.core_path).put('\0');
    std::filesystem::resize_file(request.core_path, core_size);
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

/// One frame: every visible cell, at each scroll position in turn.
void paint_tree_of_1000_files(benchmark::State& state)
{
    const std::string source = make_bitstream("source.sof", "BS1L15", 4096);
    const SESSION session;
    for (int number = 1; number <= FILE_COUNT; ++number) {
        const std::string path = directory + "/" + std::to_string(number) + ".sof";
        std::filesystem::copy_file(source, path, std::filesystem::copy_options::overwrite_existing);
        VEK_FILE_ASSISTANT::set(session.vek.get(), VEK_CMD_OPT_BITSTREAM,
                                {{VEK_CMD_PARAM_BITSTREAM_ID, "Bitstream_" + std::to_string(number)},
                                 {VEK_CMD_PARAM_BITSTREAM_PATH, path}});
    }
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
BENCHMARK(paint_tree_of_1000_files)->Unit(benchmark::kMillisecond);

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

void add_bitstream_of_80_mib(benchmark::State& state)
{
    const std::string path = make_bitstream("large.sof", "ZR9A041", 83'886'080);
    for (auto _ : state) {
        const SESSION session;
        VEK_MODEL_INPUT_FILES model(session.vek, session.cache, nullptr);
        if (model.add_bitstream(FIO_PATH(path)) != 0) {
            state.SkipWithError("refused");
        }
    }
}
BENCHMARK(add_bitstream_of_80_mib)->Unit(benchmark::kMillisecond);

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
