// Shows a window, leaves after its first painting, and tells how long that took: once as the tool's window,
// with its module, and once, where WINDOW_START_EMPTY is defined, as a Qt window with nothing in it.

#ifndef WINDOW_START_EMPTY
#include "mok_app.h"
#include "mok_frame_wnd.h"
#include "thr_drl.h"
#endif

#include <QApplication>
#include <QMainWindow>
#include <QTimer>

#include <cstdio>
#include <ctime>

namespace
{

/// CPU time of the process, in milliseconds.
double cpu_time()
{
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) / 1e6;
}

/// Ends the application behind the event in which the window was painted first.
class FIRST_PAINT : public QObject
{
public:
    using QObject::QObject;
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Paint) {
            watched->removeEventFilter(this);
            QTimer::singleShot(0, qApp, [] { QApplication::exit(); });
        }
        return false;
    }
};

QMainWindow* make_window()
{
#ifdef WINDOW_START_EMPTY
    auto* const window = new QMainWindow;
    window->resize(1000, 700);
    return window;
#else
    using CREATE = MOK_FRAME_WND* (*)(MOK_FW_STATE_ENUM, MOK_FRAME_INFO*);
    const THR_DRL_HANDLE module = thr_drl_load("pgm_vek");
    const auto create =
        module == nullptr
            ? nullptr
            : reinterpret_cast<CREATE>(thr_drl_find_function(module, "pgm_vek_create_frame_wnd"));
    if (create == nullptr) {
        std::fprintf(stderr, "%s\n", thr_drl_get_error().c_str());
        return nullptr;
    }
    static MOK_FRAME_INFO info;
    return create(MOK_FW_STATE_MAIN, &info);
#endif
}

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
#ifndef WINDOW_START_EMPTY
    MOK_APP app;
#endif
    QMainWindow* const window = make_window();
    if (window == nullptr) {
        return 1;
    }
    FIRST_PAINT first_paint;
    window->installEventFilter(&first_paint);
    window->show();
    QApplication::exec();
    std::printf("%.1f\n", cpu_time());
    std::fflush(stdout);
    // What the window does when it closes is not measured.
    std::_Exit(0);
}
