#ifndef VEK_FRAME_WND_H
#define VEK_FRAME_WND_H

#include "dev_family_enum.h"
#include "mok_frame_wnd.h"
#include "pgmio_config_scheme.h"

#include <QFutureWatcher>

#include <memory>
#include <string>

class NIVO_BUSY_DLG;
class PGM_COMMON_XML_VEK_VEK;
class QComboBox;
class QFormLayout;
class QPushButton;
class QTabWidget;
class VEK_TAB_CONFIG_DEVICE;
class VEK_TAB_INPUT_FILES;
class VEK_TAB_OUTPUT_FILES;
struct VEK_FRAME_WND_CACHE;

/// The main window of the module: family and mode bar, three tabs, Reset and Generate. It owns the setup
/// document and the session cache, and wires the tabs together.
///
/// Family and mode are chosen in two combos that stay connected while they are filled. So a refill of the
/// mode combo runs the mode slots, and each refill that ends with an entry replaces the document, also when
/// the first mode on offer is the one that was chosen before.
class VEK_FRAME_WND : public MOK_FRAME_WND
{
    Q_OBJECT
public:
    VEK_FRAME_WND(const MOK_FRAME_INFO* info, MOK_FW_STATE_ENUM state, QWidget* parent,
                  Qt::WindowFlags flags);
    /// Neither asks about unsaved work nor waits for a running generation, which keeps its document alive.
    ~VEK_FRAME_WND() override;

    /// A main window has the categories of the base. Another window has "Attached/Detached" alone, and that
    /// only where the host's main frame has an MDI area.
    QMap<QString, QList<QAction*>> get_toolbar_categories() const override;

    using MOK_FRAME_WND::open_file;
    /// Reads a setup file and puts it in force: the combos follow the family and the mode of the file, its
    /// paths become absolute, its flash database directory becomes that of the process and is stored. False,
    /// and everything as before, when the file cannot be read; the problem has then been reported.
    bool open_file(const QString& path) override;
    /// Writes the setup with its paths relative to the host's working directory. A failure is told in a
    /// dialog. Always true: the host keeps no books about failed saves.
    bool save_file(const QString& path) override;
    /// Asks for a path and saves there. The argument plays no part. False when the user gives up.
    bool save_as(const FIO_PATH& path) override;

    /// File entries open, save and save as. A background task disables them together with the central widget,
    /// since the document must not change under it.
    void set_file_actions_enabled(bool enabled);

public slots:
    void on_open_action() override;
    /// Follows the family combo; the index is not looked at.
    void set_family(int index);
    /// Applies the mode at this index of the mode combo. Within the LNKS group the document stays; any other
    /// mode starts a new one.
    void set_mode(int index);
    /// Copies the flash database directory of the process into the document.
    void set_custom_db_dir();
    /// Announces the mode of the mode combo; the index is not looked at, and an empty combo counts as mode 0.
    void emit_mode_changed_signal(int index);
    /// Opens the second tab when the document has an output file type and the output name is not empty.
    /// Otherwise closes and resets it.
    void update_input_files_tab();
    /// Opens the third tab when the mode has flash families, the document has an input, and its output file
    /// types have a flash family in common. Otherwise closes and resets it.
    void update_config_device_tab();
    /// Closes and resets the third tab if `changed`; the mode is not looked at.
    void reset_config_device_tab(PGMIO_CONFIG_SCHEME mode, bool changed);
    /// Asks, and starts over with an empty document.
    void user_reset();
    /// After a change of the input files: without any bitstream the family of the combo counts again.
    void update_cache();
    /// Checks the document and generates in the background behind a busy dialog.
    void generate();
    void generate_finished();

signals:
    /// `changed`: the mode is another one, and not just another width of the LNKS group.
    void mode_changed(PGMIO_CONFIG_SCHEME mode, bool changed);

private:
    friend struct VEK_FRAME_WND_PROBE; ///< by which the tests see document and cache

    static std::shared_ptr<PGM_COMMON_XML_VEK_VEK> create_document();
    void start_new_setup();
    void create_menus();
    void create_file_menu();
    void create_toolbars();
    void create_main_frame();
    void create_connections();

    void reset_cache();
    void reset_cache_family_device(bool repopulate);
    void set_family(DEV_FAMILY_ENUM family);
    void load_project_device_family();
    void populate_family_combo();
    void repopulate_mode_combo();
    bool is_config_mode_changed(bool value) const;
    void refresh();
    void reset();
    void close_tabs();
    /// Shows `format` with `message` in place of its "%s", a long message with its end among the details.
    void show_failure(const char* format, const std::string& message);

    std::shared_ptr<PGM_COMMON_XML_VEK_VEK> m_vek;
    std::shared_ptr<VEK_FRAME_WND_CACHE> m_cache;
    QFormLayout* m_form_layout = nullptr;
    QComboBox* m_family_combo = nullptr;
    QComboBox* m_mode_combo = nullptr;
    QTabWidget* m_tab_widget = nullptr;
    VEK_TAB_OUTPUT_FILES* m_output_files = nullptr;
    VEK_TAB_INPUT_FILES* m_input_files = nullptr;
    VEK_TAB_CONFIG_DEVICE* m_config_device = nullptr;
    QPushButton* m_reset_button = nullptr;
    QPushButton* m_generate_button = nullptr;
    QWidget* m_central_widget = nullptr;
    NIVO_BUSY_DLG* m_busy_dlg = nullptr;
    QFutureWatcher<bool> m_future_watcher;
};

#endif
