#include "vek_frame_wnd.h"

#include "gfpdb_mgr.h"
#include "msg_internal_error.h"
#include "nivo_help.h"
#include "nivo_safe_connect.h"
#include "pgm_common_xml_vek_auto_export.h"
#include "tst_mode.h"
#include "vek_frame_wnd_cache.h"
#include "vek_tab_config_device.h"
#include "vek_tab_input_files.h"
#include "vek_tab_output_files.h"

#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenuBar>
#include <QPushButton>
#include <QTabWidget>
#include <QToolBar>
#include <QVBoxLayout>

namespace
{

QAction* get_action(const MOK_MENU_RECORD& record, int menu, int entry)
{
    QAction* const action = record.get_entry(menu, entry);
    VEK_ASSERT(action != nullptr);
    return action;
}

QMenu* get_menu(const MOK_MENU_RECORD& record, int position)
{
    QMenu* const menu = record.get_menu(position);
    VEK_ASSERT(menu != nullptr);
    return menu;
}

void offer(QAction* action, bool offered)
{
    action->setVisible(offered);
    action->setEnabled(offered);
}

/// The separators of a hidden toolbar would still show in the menu that lists its actions.
void remove_separators(QToolBar* toolbar)
{
    const QList<QAction*> actions = toolbar->actions();
    for (QAction* const action : actions) {
        if (action->isSeparator()) {
            toolbar->removeAction(action);
        }
    }
}

} // namespace

VEK_FRAME_WND::VEK_FRAME_WND(const MOK_FRAME_INFO* info, MOK_FW_STATE_ENUM state, QWidget* parent,
                             Qt::WindowFlags flags)
    : MOK_FRAME_WND(info, state, parent, flags)
{
    GFPDB_MGR::set_db_custom_dir(GFPDB_MGR::get_custom_dir_from_ini());
    m_vek = create_document();
    VEK_ASSERT(m_vek != nullptr);
    m_cache = std::make_shared<VEK_FRAME_WND_CACHE>();
    VEK_ASSERT(m_cache != nullptr);
    reset_cache();
    create_menus();
    create_main_frame();
    reset();
    load_project_device_family();
}

VEK_FRAME_WND::~VEK_FRAME_WND() = default;

QMap<QString, QList<QAction*>> VEK_FRAME_WND::get_toolbar_categories() const
{
    if (is_main_window()) {
        return MOK_FRAME_WND::get_toolbar_categories();
    }
    QMap<QString, QList<QAction*>> categories;
    if (main_wnd_has_mdi_area()) {
        const QString attached = QStringLiteral("Attached/Detached");
        categories.insert(attached, get_toolbar_category(attached));
    }
    return categories;
}

void VEK_FRAME_WND::set_file_actions_enabled(bool enabled)
{
    for (const int entry : {MOK_FILE_OPEN, MOK_FILE_SAVE, MOK_FILE_SAVE_AS}) {
        get_action(get_menu_record(), MOK_MENU_FILE, entry)->setEnabled(enabled);
    }
}

void VEK_FRAME_WND::create_menus()
{
    const MOK_FRAME_WND* const main_frame = mok_get_main_frame_wnd();
    const QList<QAction*> top_level_actions = menuBar()->actions();
    for (QAction* const action : top_level_actions) {
        action->setVisible(false);
    }
    create_file_menu();

    const MOK_MENU_RECORD& record = get_menu_record();
    if (is_main_window()) {
        get_menu(record, MOK_MENU_VIEW)->menuAction()->setVisible(true);
        for (const int entry :
             {MOK_VIEW_FILE_TOOLBAR, MOK_VIEW_UTILITY_TOOLBAR, MOK_VIEW_APPLICATIONS_TOOLBAR,
              MOK_VIEW_PROCESSING_TOOLBAR, MOK_VIEW_STANDARD_TOOLBAR}) {
            get_action(record, MOK_MENU_VIEW, entry)->setVisible(false);
        }
        get_action(record, MOK_MENU_VIEW, MOK_VIEW_MESSAGES)->trigger();
        get_action(record, MOK_MENU_VIEW, MOK_VIEW_OBJECT_NAMES)->setVisible(tst_is_regtest_mode());
    }
    if (main_frame != nullptr && main_frame->is_mok_window()) {
        get_menu(record, MOK_MENU_WINDOW)->menuAction()->setVisible(true);
        get_action(record, MOK_MENU_WINDOW, MOK_WINDOW_DETACH)->setEnabled(true);
    }
    if (!is_main_window()) {
        status_display_set_visible(false);
        return;
    }
    get_menu(record, MOK_MENU_HELP)->menuAction()->setVisible(true);
    create_toolbars();
    status_display_set_visible(false);
}

void VEK_FRAME_WND::create_file_menu()
{
    const MOK_MENU_RECORD& record = get_menu_record();
    QMenu* const menu = get_menu(record, MOK_MENU_FILE);
    const auto entry = [&record](int position) { return get_action(record, MOK_MENU_FILE, position); };

    menu->menuAction()->setVisible(true);
    for (const int position : {MOK_FILE_OPEN, MOK_FILE_SAVE, MOK_FILE_SAVE_AS}) {
        offer(entry(position), true);
    }
    for (const int position : {MOK_FILE_OPEN_WORKING_DIRECTORY, MOK_FILE_COPY_WORKING_DIRECTORY,
                               MOK_FILE_CHOOSE_WORKING_DIRECTORY}) {
        offer(entry(position), false);
    }
    if (is_main_window()) {
        for (const int position :
             {MOK_FILE_CLOSE, MOK_FILE_SAVE_ALL, MOK_FILE_OPEN_CONTAINING_FOLDER, MOK_FILE_COPY_PATH,
              MOK_FILE_RELOAD, MOK_FILE_CLOSE_ALL, MOK_FILE_EXPORT_SEPARATOR, MOK_FILE_PROPERTIES,
              MOK_FILE_CLEAR_RECENT, MOK_FILE_EXPORT}) {
            offer(entry(position), false);
        }
        menu->removeAction(entry(MOK_FILE_WINDOWS));
    } else {
        offer(entry(MOK_FILE_CLOSE), true);
        offer(entry(MOK_FILE_CLEAR_RECENT), false);
        entry(MOK_FILE_SAVE)->setVisible(true);
        menu->insertSeparator(entry(MOK_FILE_SAVE));
    }
}

void VEK_FRAME_WND::create_toolbars()
{
    const auto hide_toolbar = [this](const QString& category) {
        update_toolbar(category, get_toolbar_category(category));
        QToolBar* const toolbar = get_toolbar(category);
        VEK_ASSERT(toolbar != nullptr);
        remove_separators(toolbar);
        toolbar->hide();
    };
    const auto delete_toolbar = [this](QToolBar* toolbar) {
        removeToolBar(toolbar);
        delete toolbar;
    };

    hide_toolbar(QStringLiteral("File"));
    QToolBar* const standard_toolbar = get_toolbar(QStringLiteral("Standard"));
    VEK_ASSERT(standard_toolbar != nullptr);
    delete_toolbar(standard_toolbar);
    get_standard_toolbar_list().clear();
    hide_toolbar(QStringLiteral("Utility Windows"));
    QToolBar* const application_toolbar = get_toolbar(QStringLiteral("Applications"));
    VEK_ASSERT(application_toolbar != nullptr);
    delete_toolbar(application_toolbar);
    QToolBar* const processing_toolbar = get_toolbar(QStringLiteral("Processing"));
    VEK_ASSERT(processing_toolbar != nullptr);
    delete_toolbar(processing_toolbar);
}

void VEK_FRAME_WND::create_main_frame()
{
    m_family_combo = new QComboBox;
    m_family_combo->setObjectName(QStringLiteral("m_family_combo"));
    m_mode_combo = new QComboBox;
    m_mode_combo->setObjectName(QStringLiteral("m_mode_combo"));
    m_form_layout = new QFormLayout;
    m_form_layout->setObjectName(QStringLiteral("m_form_layout"));
    m_form_layout->addRow(tr("Device family:"), m_family_combo);
    m_form_layout->addRow(tr("Configuration mode:"), m_mode_combo);
    auto* const frame = new QFrame;
    frame->setFrameStyle(static_cast<int>(QFrame::Box) | static_cast<int>(QFrame::Sunken));
    frame->setLineWidth(1);
    frame->setMidLineWidth(0);
    frame->setLayout(m_form_layout);

    m_output_files = new VEK_TAB_OUTPUT_FILES(m_vek, m_cache, nullptr, Qt::WindowFlags());
    m_output_files->setObjectName(QStringLiteral("m_output_files"));
    m_input_files = new VEK_TAB_INPUT_FILES(m_vek, m_cache, nullptr, Qt::WindowFlags());
    m_input_files->setObjectName(QStringLiteral("m_input_files"));
    m_config_device = new VEK_TAB_CONFIG_DEVICE(m_vek, m_cache, nullptr, Qt::WindowFlags());
    m_config_device->setObjectName(QStringLiteral("m_config_device"));
    m_tab_widget = new QTabWidget;
    m_tab_widget->setObjectName(QStringLiteral("m_tab_widget"));
    m_tab_widget->addTab(m_output_files, tr("&Output Files"));
    m_tab_widget->addTab(m_input_files, tr("&Input Files"));
    m_tab_widget->addTab(m_config_device, tr("&Configuration Device"));
    nivo_set_help_topic(*m_output_files, NIVO_HELP_OUTPUT_FILES);
    nivo_set_help_topic(*m_input_files, NIVO_HELP_INPUT_FILES);
    nivo_set_help_topic(*m_config_device, NIVO_HELP_CONFIG_DEVICE);

    m_reset_button = new QPushButton(tr("&Reset"));
    m_reset_button->setObjectName(QStringLiteral("m_reset_button"));
    m_generate_button = new QPushButton(tr("&Generate"));
    m_generate_button->setObjectName(QStringLiteral("m_generate_button"));
    m_generate_button->setEnabled(true);
    nivo_set_help_topic(*m_generate_button, NIVO_HELP_GENERATE);

    auto* const tab_box = new QHBoxLayout;
    tab_box->addWidget(m_tab_widget);
    auto* const button_box = new QHBoxLayout;
    button_box->addStretch();
    button_box->addWidget(m_reset_button);
    button_box->addWidget(m_generate_button);
    auto* const main_box = new QVBoxLayout;
    main_box->addWidget(frame);
    main_box->addLayout(tab_box);
    main_box->addLayout(button_box);
    m_central_widget = new QWidget;
    m_central_widget->setObjectName(QStringLiteral("m_central_widget"));
    m_central_widget->setLayout(main_box);
    setCentralWidget(m_central_widget);

    create_connections();
}

void VEK_FRAME_WND::create_connections()
{
    const char* const index_changed = SIGNAL(currentIndexChanged(int));
    const char* const mode_changed_signal = SIGNAL(mode_changed(PGMIO_CONFIG_SCHEME, bool));
    const char* const check_state_changed = SIGNAL(output_file_check_state_changed());
    const char* const input_files_changed = SIGNAL(input_files_changed());
    const struct {
        QObject* sender;
        const char* signal;
        QObject* receiver;
        const char* slot;
    } connections[] = {
        // The slots of one signal run in this order, and each relies on what those before it have done.
        {m_family_combo, index_changed, this, SLOT(set_family(int))},
        {m_family_combo, index_changed, m_input_files, SLOT(update_add_file_button_visible())},
        {m_mode_combo, index_changed, this, SLOT(set_mode(int))},
        {m_mode_combo, index_changed, this, SLOT(emit_mode_changed_signal(int))},
        {this, mode_changed_signal, m_output_files,
         SLOT(refresh_output_file_tree(PGMIO_CONFIG_SCHEME, bool))},
        {m_output_files, check_state_changed, this, SLOT(update_input_files_tab())},
        {m_output_files, check_state_changed, m_config_device, SLOT(update_flash_loader())},
        {m_output_files, check_state_changed, m_input_files, SLOT(update_input_file_types())},
        {m_output_files, check_state_changed, this, SLOT(update_config_device_tab())},
        {this, mode_changed_signal, this, SLOT(update_input_files_tab())},
        {this, mode_changed_signal, this, SLOT(reset_config_device_tab(PGMIO_CONFIG_SCHEME, bool))},
        {m_input_files, input_files_changed, this, SLOT(update_cache())},
        {m_input_files, input_files_changed, this, SLOT(update_config_device_tab())},
        {m_input_files, SIGNAL(device_changed(const QString&)), m_config_device,
         SLOT(update_device(const QString&))},
        {m_reset_button, SIGNAL(clicked()), this, SLOT(user_reset())},
        {m_generate_button, SIGNAL(clicked()), this, SLOT(generate())},
    };
    for (const auto& connection : connections) {
        nivo_safe_connect(connection.sender, connection.signal, connection.receiver, connection.slot,
                          Qt::AutoConnection, __FILE__, __LINE__);
    }
}

/// The entry by which a host gets the window; the host owns it.
extern "C" __attribute__((visibility("default"))) MOK_FRAME_WND*
pgm_vek_create_frame_wnd(MOK_FW_STATE_ENUM state, MOK_FRAME_INFO* info);

MOK_FRAME_WND* pgm_vek_create_frame_wnd(MOK_FW_STATE_ENUM state, MOK_FRAME_INFO* info)
{
    return new VEK_FRAME_WND(info, state, nullptr, Qt::WindowFlags());
}
