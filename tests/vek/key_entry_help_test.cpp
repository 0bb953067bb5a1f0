#include "key_entry_fixture.h"
#include "thr_drl.h"

#include <filesystem>

namespace
{

namespace fs = std::filesystem;

/// Puts modules beside this program, where the loader looks first.
class KEY_ENTRY_HELP : public KEY_ENTRY_FIXTURE
{
protected:
    KEY_ENTRY_HELP() : m_dialog(nullptr), m_place(fs::read_symlink("/proc/self/exe").parent_path()) {}
    ~KEY_ENTRY_HELP() override { fs::remove(m_place / "libmod_help.so"); }

    void place_module(const std::string& name)
    {
        fs::copy_file(m_place.parent_path() / "lib" / ("lib" + name + ".so"), m_place / "libmod_help.so",
                      fs::copy_options::overwrite_existing);
    }
    void press_f1() { QTest::keyClick(find<VEK_DLG_KEY_EDIT>(m_dialog, "m_key_name_edit"), Qt::Key_F1); }
    std::string internal_error()
    {
        try {
            press_f1();
        } catch (const INTERNAL_ERROR_RAISED& raised) {
            return raised.condition;
        }
        return "none";
    }

    VEK_DLG_KEY_ENTRY m_dialog;
    fs::path m_place;
};

} // namespace

// One test for all, since a module that has been loaded stays.
TEST_F(KEY_ENTRY_HELP, f1_shows_the_topic_with_the_module_that_is_loaded_at_first_use_and_kept)
{
    m_dialog.n_key_bits = 16;
    m_dialog.common_init();
    show_active(m_dialog);

    write_file(m_place / "libmod_help.so", "no module");
    EXPECT_EQ(internal_error().rfind("The module mod_help cannot be loaded: ", 0), 0U) << internal_error();

    place_module("vek_help_empty");
    const auto lookup = [this] {
        const bool named =
            internal_error().rfind("The function help_show_context_impl cannot be found: ", 0) == 0;
        _exit(named ? 0 : 1);
    };
    EXPECT_EXIT(lookup(), testing::ExitedWithCode(0), "");

    place_module("vek_help_sample");
    const THR_DRL_HANDLE module = thr_drl_load("mod_help");
    ASSERT_NE(module, nullptr) << thr_drl_get_error();
    const auto topics =
        reinterpret_cast<const char* (*)()>(thr_drl_find_function(module, "help_sample_topics"));
    press_f1();
    fs::remove(m_place / "libmod_help.so");
    QKeyEvent key(QEvent::KeyPress, Qt::Key_F1, Qt::NoModifier);
    QApplication::sendEvent(&m_dialog, &key);
    EXPECT_FALSE(key.isAccepted()) << "the press goes on to the handler, which leaves it";
    QTest::keyClick(&m_dialog, Qt::Key_F2);

    EXPECT_STREQ(topics(), "SOF File Properties: Bitstream Encryption - Key Entry;"
                           "SOF File Properties: Bitstream Encryption - Key Entry;");
}
