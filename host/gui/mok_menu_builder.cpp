#include "mok_menu_builder.h"

#include "mok_frame_commands.h"
#include "mok_frame_wnd.h"
#include "mok_recent_files.h"
#include "nivo_icon.h"
#include "tst_mode.h"

#include <QApplication>
#include <QMenuBar>
#include <QToolBar>

namespace
{
using COMMAND = void (*)(MOK_FRAME_WND&);

/// What must be there for an entry to be enabled.
enum class NEED { NOTHING, FILE, RECENT_FILES, MDI_AREA, OWNER };

struct MENU_ROW {
    int position;
    const char* text;
};

constexpr MENU_ROW MENU_ROWS[] = {
    {MOK_MENU_FILE, QT_TRANSLATE_NOOP("MOK_FRAME_WND", "&File")},
    {MOK_MENU_VIEW, QT_TRANSLATE_NOOP("MOK_FRAME_WND", "&View")},
    {MOK_MENU_WINDOW, QT_TRANSLATE_NOOP("MOK_FRAME_WND", "&Window")},
    {MOK_MENU_HELP, QT_TRANSLATE_NOOP("MOK_FRAME_WND", "&Help")},
};

/// One entry; without a text a separator, without a command the frame connects it itself.
struct ENTRY_ROW {
    int menu;
    int position;
    const char* text;
    const char* shortcut;
    NEED need;
    COMMAND command;
};

#define TEXT(text) QT_TRANSLATE_NOOP("MOK_FRAME_WND", text)

constexpr ENTRY_ROW ENTRY_ROWS[] = {
    {MOK_MENU_FILE, MOK_FILE_CLOSE, TEXT("&Close Window"), "Ctrl+W", NEED::NOTHING, mok_close_window},
    {MOK_MENU_FILE, MOK_FILE_OPEN, TEXT("&Open..."), "Ctrl+O", NEED::NOTHING, nullptr},
    {MOK_MENU_FILE, MOK_FILE_OPEN_RECENT, TEXT("Open &Recent"), nullptr, NEED::NOTHING, nullptr},
    {MOK_MENU_FILE, MOK_FILE_OPEN_CONTAINING_FOLDER, TEXT("Open Containing &Folder"), nullptr, NEED::FILE,
     mok_open_containing_folder},
    {MOK_MENU_FILE, MOK_FILE_COPY_PATH, TEXT("Copy File &Path"), nullptr, NEED::FILE, mok_copy_path},
    {MOK_MENU_FILE, MOK_FILE_RELOAD, TEXT("Re&load"), "Ctrl+R", NEED::FILE, mok_reload},
    {MOK_MENU_FILE, MOK_FILE_CLOSE_ALL, TEXT("Clos&e All Windows"), nullptr, NEED::NOTHING, mok_close_all},
    {MOK_MENU_FILE, MOK_FILE_SAVE, TEXT("&Save"), "Ctrl+S", NEED::NOTHING, nullptr},
    {MOK_MENU_FILE, MOK_FILE_SAVE_AS, TEXT("Save &As..."), "Ctrl+Shift+S", NEED::NOTHING, nullptr},
    {MOK_MENU_FILE, MOK_FILE_SAVE_ALL, TEXT("Sa&ve All"), nullptr, NEED::NOTHING, mok_save_all},
    {MOK_MENU_FILE, MOK_FILE_EXPORT_SEPARATOR, nullptr, nullptr, NEED::NOTHING, nullptr},
    {MOK_MENU_FILE, MOK_FILE_EXPORT, TEXT("Expor&t"), nullptr, NEED::NOTHING, nullptr},
    {MOK_MENU_FILE, MOK_FILE_PROPERTIES_SEPARATOR, nullptr, nullptr, NEED::NOTHING, nullptr},
    {MOK_MENU_FILE, MOK_FILE_PROPERTIES, TEXT("Propert&ies..."), nullptr, NEED::FILE, mok_show_properties},
    {MOK_MENU_FILE, MOK_FILE_CLEAR_RECENT, TEXT("Clear Rece&nt Files"), nullptr, NEED::RECENT_FILES,
     mok_clear_recent_files},
    {MOK_MENU_FILE, MOK_FILE_OPEN_WORKING_DIRECTORY, TEXT("Open Working &Directory"), nullptr, NEED::NOTHING,
     mok_open_working_directory},
    {MOK_MENU_FILE, MOK_FILE_COPY_WORKING_DIRECTORY, TEXT("Copy Path of Workin&g Directory"), nullptr,
     NEED::NOTHING, mok_copy_working_directory},
    {MOK_MENU_FILE, MOK_FILE_CHOOSE_WORKING_DIRECTORY, TEXT("Choose Wor&king Directory..."), nullptr,
     NEED::NOTHING, mok_choose_working_directory},
    {MOK_MENU_FILE, MOK_FILE_EXIT_SEPARATOR, nullptr, nullptr, NEED::NOTHING, nullptr},
    {MOK_MENU_FILE, MOK_FILE_EXIT, TEXT("E&xit"), "Ctrl+Q", NEED::NOTHING, mok_exit},
    {MOK_MENU_FILE, MOK_FILE_WINDOWS, TEXT("&Windows"), nullptr, NEED::NOTHING, nullptr},

    {MOK_MENU_VIEW, MOK_VIEW_FULL_SCREEN, TEXT("&Full Screen"), "F11", NEED::NOTHING, mok_toggle_full_screen},
    {MOK_MENU_VIEW, MOK_VIEW_TOOLBAR_SEPARATOR, nullptr, nullptr, NEED::NOTHING, nullptr},
    {MOK_MENU_VIEW, MOK_VIEW_FILE_TOOLBAR, TEXT("F&ile Toolbar"), nullptr, NEED::NOTHING, nullptr},
    {MOK_MENU_VIEW, MOK_VIEW_UTILITY_TOOLBAR, TEXT("&Utility Windows Toolbar"), nullptr, NEED::NOTHING,
     nullptr},
    {MOK_MENU_VIEW, MOK_VIEW_OBJECT_NAMES, TEXT("Copy Object &Names"), "Ctrl+Shift+N", NEED::NOTHING,
     mok_copy_object_names},
    {MOK_MENU_VIEW, MOK_VIEW_APPLICATIONS_TOOLBAR, TEXT("&Applications Toolbar"), nullptr, NEED::NOTHING,
     nullptr},
    {MOK_MENU_VIEW, MOK_VIEW_PROCESSING_TOOLBAR, TEXT("&Processing Toolbar"), nullptr, NEED::NOTHING,
     nullptr},
    {MOK_MENU_VIEW, MOK_VIEW_MESSAGES, TEXT("&Messages"), "Ctrl+Shift+M", NEED::NOTHING, nullptr},
    {MOK_MENU_VIEW, MOK_VIEW_CLEAR_MESSAGES, TEXT("&Clear Messages"), nullptr, NEED::NOTHING,
     mok_clear_messages},
    {MOK_MENU_VIEW, MOK_VIEW_STANDARD_TOOLBAR, TEXT("&Standard Toolbar"), nullptr, NEED::NOTHING, nullptr},

    {MOK_MENU_WINDOW, MOK_WINDOW_NEXT, TEXT("&Next Window"), "Ctrl+F6", NEED::NOTHING, mok_next_window},
    {MOK_MENU_WINDOW, MOK_WINDOW_PREVIOUS, TEXT("&Previous Window"), "Ctrl+Shift+F6", NEED::NOTHING,
     mok_previous_window},
    {MOK_MENU_WINDOW, MOK_WINDOW_LAYOUT_SEPARATOR, nullptr, nullptr, NEED::NOTHING, nullptr},
    {MOK_MENU_WINDOW, MOK_WINDOW_CASCADE, TEXT("&Cascade"), nullptr, NEED::MDI_AREA, mok_cascade},
    {MOK_MENU_WINDOW, MOK_WINDOW_TILE, TEXT("&Tile"), nullptr, NEED::MDI_AREA, mok_tile},
    {MOK_MENU_WINDOW, MOK_WINDOW_DETACH_SEPARATOR, nullptr, nullptr, NEED::NOTHING, nullptr},
    {MOK_MENU_WINDOW, MOK_WINDOW_DETACH, TEXT("&Detach Window"), nullptr, NEED::OWNER, mok_toggle_attached},

    {MOK_MENU_HELP, MOK_HELP_CONTEXT, TEXT("Imagewright &Help"), "F1", NEED::NOTHING, mok_show_help},
    {MOK_MENU_HELP, MOK_HELP_SHORTCUTS, TEXT("&Keyboard Shortcuts"), nullptr, NEED::NOTHING,
     mok_show_shortcuts},
    {MOK_MENU_HELP, MOK_HELP_SEPARATOR, nullptr, nullptr, NEED::NOTHING, nullptr},
    {MOK_MENU_HELP, MOK_HELP_ABOUT, TEXT("&About Imagewright"), nullptr, NEED::NOTHING, mok_show_about},
};

#undef TEXT

struct ICON_ROW {
    int menu;
    int position;
    NIVO_ICON_ENUM icon;
};

constexpr ICON_ROW ICON_ROWS[] = {
    {MOK_MENU_FILE, MOK_FILE_OPEN, NIVO_ICON_OPEN},
    {MOK_MENU_FILE, MOK_FILE_SAVE, NIVO_ICON_SAVE},
    {MOK_MENU_VIEW, MOK_VIEW_CLEAR_MESSAGES, NIVO_ICON_CLEAR},
    {MOK_MENU_WINDOW, MOK_WINDOW_DETACH, NIVO_ICON_DETACH},
};

struct TOOLBAR_ENTRY {
    int position;
    const char* category;
};

constexpr TOOLBAR_ENTRY TOOLBAR_ENTRIES[] = {
    {MOK_VIEW_FILE_TOOLBAR, "File"},
    {MOK_VIEW_UTILITY_TOOLBAR, "Utility Windows"},
    {MOK_VIEW_APPLICATIONS_TOOLBAR, "Applications"},
    {MOK_VIEW_PROCESSING_TOOLBAR, "Processing"},
    {MOK_VIEW_STANDARD_TOOLBAR, "Standard"},
};

bool is_met(const MOK_FRAME_WND& frame, const QAction& action, NEED need)
{
    switch (need) {
    case NEED::FILE:
        return !frame.get_current_file().isEmpty();
    case NEED::RECENT_FILES:
        return !MOK_RECENT_FILES::get().isEmpty();
    case NEED::MDI_AREA:
        return frame.main_wnd_has_mdi_area();
    // The owner of the window, who alone knows the main frame, has the say.
    case NEED::OWNER:
    case NEED::NOTHING:
        return action.isEnabled();
    }
    return true;
}

void add_submenu(MOK_FRAME_WND& frame, int entry, void (*fill)(MOK_FRAME_WND&, QMenu&))
{
    QMenu* const submenu = new QMenu(&frame);
    frame.get_menu_record().get_entry(MOK_MENU_FILE, entry)->setMenu(submenu);
    QObject::connect(submenu, &QMenu::aboutToShow, &frame, [&frame, submenu, fill] {
        submenu->clear();
        fill(frame, *submenu);
    });
}
} // namespace

void MOK_MENU_BUILDER::build(MOK_FRAME_WND& frame)
{
    MOK_MENU_RECORD& record = frame.m_menu_record;
    for (const MENU_ROW& row : MENU_ROWS) {
        QMenu* const menu = frame.menuBar()->addMenu(MOK_FRAME_WND::tr(row.text));
        record.set_menu(row.position, menu);
        QObject::connect(menu, &QMenu::aboutToShow, &frame, [&frame] { update(frame); });
    }
    for (const ENTRY_ROW& row : ENTRY_ROWS) {
        QAction* const action = new QAction(&frame);
        record.get_menu(row.menu)->addAction(action);
        record.set_entry(row.menu, row.position, action);
        if (row.text == nullptr) {
            action->setSeparator(true);
            continue;
        }
        action->setText(MOK_FRAME_WND::tr(row.text));
        if (row.shortcut != nullptr) {
            action->setShortcut(QKeySequence(QLatin1String(row.shortcut)));
        }
        if (row.command != nullptr) {
            const COMMAND command = row.command;
            QObject::connect(action, &QAction::triggered, &frame, [&frame, command] { command(frame); });
        }
        action->setEnabled(row.need == NEED::NOTHING);
    }
    for (const ICON_ROW& row : ICON_ROWS) {
        record.get_entry(row.menu, row.position)->setIcon(nivo_get_icon(row.icon));
    }
    add_submenu(frame, MOK_FILE_OPEN_RECENT, mok_fill_recent_menu);
    add_submenu(frame, MOK_FILE_EXPORT, mok_fill_export_menu);
    add_submenu(frame, MOK_FILE_WINDOWS, mok_fill_windows_menu);
    for (const TOOLBAR_ENTRY& row : TOOLBAR_ENTRIES) {
        QAction* const action = record.get_entry(MOK_MENU_VIEW, row.position);
        action->setCheckable(true);
        const QString category = QLatin1String(row.category);
        QObject::connect(action, &QAction::triggered, &frame, [&frame, category](bool visible) {
            if (QToolBar* const toolbar = frame.get_toolbar(category)) {
                toolbar->setVisible(visible);
            }
        });
    }
    record.get_entry(MOK_MENU_VIEW, MOK_VIEW_FULL_SCREEN)->setCheckable(true);
    record.get_entry(MOK_MENU_VIEW, MOK_VIEW_MESSAGES)->setCheckable(true);
    record.get_entry(MOK_MENU_VIEW, MOK_VIEW_OBJECT_NAMES)->setVisible(tst_is_regtest_mode());
}

void MOK_MENU_BUILDER::update(MOK_FRAME_WND& frame)
{
    const MOK_MENU_RECORD& record = frame.m_menu_record;
    for (const ENTRY_ROW& row : ENTRY_ROWS) {
        QAction* const action = record.get_entry(row.menu, row.position);
        if (action != nullptr && action->isVisible() && row.text != nullptr) {
            action->setEnabled(is_met(frame, *action, row.need));
        }
    }
    for (const TOOLBAR_ENTRY& row : TOOLBAR_ENTRIES) {
        QAction* const action = record.get_entry(MOK_MENU_VIEW, row.position);
        const QToolBar* const toolbar = frame.get_toolbar(QLatin1String(row.category));
        action->setEnabled(toolbar != nullptr);
        action->setChecked(toolbar != nullptr && !toolbar->isHidden());
    }
    record.get_entry(MOK_MENU_VIEW, MOK_VIEW_FULL_SCREEN)->setChecked(frame.isFullScreen());
    record.get_entry(MOK_MENU_WINDOW, MOK_WINDOW_DETACH)
        ->setText(frame.get_state() == MOK_FW_STATE_ATTACHED ? MOK_FRAME_WND::tr("&Detach Window")
                                                             : MOK_FRAME_WND::tr("&Attach Window"));
}
