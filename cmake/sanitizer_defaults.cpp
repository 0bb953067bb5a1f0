// What the sanitizers pass over, built into every program of a sanitizer build: so a program behaves the same whether
// CTest, another program or a person starts it.

extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __tsan_default_suppressions();
extern "C" const char* __lsan_default_options();
extern "C" const char* __tsan_default_options();
extern "C" const char* __asan_default_options();

const char* __lsan_default_suppressions()
{
    // Allocations that the platform libraries keep for the life of the process; the display plugin and the screens that
    // Qt makes for it are never given back.
    return "leak:libfontconfig.so\n"
           "leak:libQt5XcbQpa.so\n"
           "leak:libglib-2.0.so\n"
           "leak:libqoffscreen.so\n"
           "leak:libQt5Gui.so\n"
           "leak:libQt5Core.so\n";
}

const char* __tsan_default_suppressions()
{
    // Debian's Qt is not instrumented: what it synchronises inside is invisible to the sanitizer. Only calls made from
    // within the library are passed over, and what its headers compile into our programs: the result and the functor
    // of a task. So a race in our own code is still found. Nor is Debian's Botan: whoever comes second to its pool of
    // locked memory reads the guard of a static there, which the sanitizer does not see.
    return "called_from_lib:libQt5Core.so\n"
           "called_from_lib:libQt5Widgets.so\n"
           "called_from_lib:libglib-2.0.so\n"
           "race_top:QtConcurrent::\n"
           "race_top:QFuture<\n"
           "race_top:QFutureInterface\n"
           "race_top:QtPrivate::Result\n"
           "race:QtPrivate::ResultStoreBase\n"
           "race_top:qtconcurrentstoredfunctioncall.h\n"
           "race_top:nivo_background.h\n"
           "race:thunk to QtConcurrent::Stored*::~Stored\n"
           "race_top:qobjectdefs_impl.h\n"
           "race:Botan::Memory_Pool::\n"
           "race:Botan::mlock_allocator::\n";
}

const char* __lsan_default_options()
{
    return "print_suppressions=0";
}

const char* __tsan_default_options()
{
    return "halt_on_error=1";
}

const char* __asan_default_options()
{
    return "detect_stack_use_after_return=1";
}
