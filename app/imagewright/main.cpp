#include "imagewright_version.h"
#include "mok_app.h"
#include "mok_frame_wnd.h"
#include "mok_ui_mgr.h"
#include "open_file_limit.h"
#include "thr_drl.h"

#include <QApplication>
#include <QDir>
#include <QMessageBox>
#include <QTimer>

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

namespace
{
enum EXIT_CODE { EXIT_OK = 0, EXIT_NO_MODULE = 1, EXIT_USAGE = 2, EXIT_INPUT = 3, EXIT_OUTPUT = 4 };

constexpr const char* USAGE =
    R"(Usage: imagewright [options] [SETUP.vek]

Turns compiled configuration data into programming files for boards and
configuration flash devices.

Options:
  -C, --directory DIR  Work in DIR: relative paths, in the setup too, start there.
                       Without it they start where the program is started.
  --screenshot FILE    Draw the window into FILE (PNG) and leave.
  --version            Print the version and leave.
  --help               Print this text and leave.
  --                   What follows is the setup, also if it begins with a dash.
)";

struct ARGUMENTS {
    std::string directory;
    std::string screenshot;
    std::string setup;
};

int usage_error(const std::string& problem)
{
    std::fprintf(stderr, "imagewright: %s. See imagewright --help.\n", problem.c_str());
    return EXIT_USAGE;
}

/// Reads the arguments that Qt has left. An exit code, or -1 to go on.
int read_arguments(int argc, char** argv, ARGUMENTS& arguments)
{
    bool only_setup = false;
    for (int i = 1; i < argc; ++i) {
        const std::string_view argument = argv[i];
        const bool is_directory = argument == "-C" || argument == "--directory";
        if (!only_setup && argument == "--") {
            only_setup = true;
        } else if (!only_setup && (is_directory || argument == "--screenshot")) {
            if (++i == argc) {
                return usage_error(std::string(argument) + " needs a value");
            }
            (is_directory ? arguments.directory : arguments.screenshot) = argv[i];
        } else if (!only_setup && argument.size() > 1 && argument.front() == '-') {
            return usage_error("unknown option " + std::string(argument));
        } else if (!arguments.setup.empty()) {
            return usage_error("there is more than one setup: " + arguments.setup + " and " +
                               std::string(argument));
        } else {
            arguments.setup = argument;
        }
    }
    return -1;
}

int module_error(const std::string& reason)
{
    const std::string text = "The module pgm_vek cannot be used. " + reason +
                             " Install the program again, with all files of its package.";
    std::fprintf(stderr, "imagewright: %s\n", text.c_str());
    const QString platform = QApplication::platformName();
    if (platform != QLatin1String("offscreen") && platform != QLatin1String("minimal")) {
        QMessageBox::critical(nullptr, QStringLiteral("Imagewright"), QString::fromLocal8Bit(text.c_str()));
    }
    return EXIT_NO_MODULE;
}

int run(QApplication& application, const ARGUMENTS& arguments)
{
    if (!arguments.directory.empty() &&
        !QDir::setCurrent(QString::fromLocal8Bit(arguments.directory.c_str()))) {
        return usage_error("cannot work in directory " + arguments.directory);
    }
    MOK_APP app;
    app.get_ui_mgr()->set_working_directory(QDir::currentPath().toLocal8Bit().toStdString());

    const THR_DRL_HANDLE module = thr_drl_load("pgm_vek");
    if (module == nullptr) {
        return module_error(thr_drl_get_error());
    }
    using CREATE = MOK_FRAME_WND* (*)(MOK_FW_STATE_ENUM, MOK_FRAME_INFO*);
    const auto create = reinterpret_cast<CREATE>(thr_drl_find_function(module, "pgm_vek_create_frame_wnd"));
    if (create == nullptr) {
        return module_error(thr_drl_get_error());
    }
    MOK_FRAME_INFO info;
    const std::unique_ptr<MOK_FRAME_WND> frame(create(MOK_FW_STATE_MAIN, &info));
    frame->show();

    // The window is there before its file is read, and a problem with the file has a window to appear in.
    int result = EXIT_OK;
    if (!arguments.setup.empty()) {
        const QString path =
            QDir::current().absoluteFilePath(QString::fromLocal8Bit(arguments.setup.c_str()));
        QTimer::singleShot(0, frame.get(), [&frame, &result, path] {
            result = frame->open_and_remember(path) ? EXIT_OK : EXIT_INPUT;
        });
    }
    if (!arguments.screenshot.empty()) {
        QTimer::singleShot(0, frame.get(), [&application, &arguments, &frame, &result] {
            application.processEvents();
            const QString path = QString::fromLocal8Bit(arguments.screenshot.c_str());
            if (!frame->grab().save(path, "PNG")) {
                std::fprintf(stderr, "imagewright: Cannot write the picture %s.\n",
                             arguments.screenshot.c_str());
                result = EXIT_OUTPUT;
            }
            application.exit(result);
        });
    }
    const int exit_code = QApplication::exec();
    return arguments.screenshot.empty() ? exit_code : result;
}
} // namespace

int main(int argc, char** argv)
{
    // These two answer without a display.
    for (int i = 1; i < argc && std::string_view(argv[i]) != "--"; ++i) {
        if (std::string_view(argv[i]) == "--version") {
            std::printf("imagewright %s\n", IMAGEWRIGHT_VERSION);
            return EXIT_OK;
        }
        if (std::string_view(argv[i]) == "--help") {
            std::fputs(USAGE, stdout);
            return EXIT_OK;
        }
    }
    raise_open_file_limit();
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("imagewright"));
    QApplication::setApplicationVersion(QLatin1String(IMAGEWRIGHT_VERSION));
    QApplication::setDesktopFileName(QStringLiteral("imagewright"));

    ARGUMENTS arguments;
    const int exit_code = read_arguments(argc, argv, arguments);
    return exit_code >= 0 ? exit_code : run(application, arguments);
}
