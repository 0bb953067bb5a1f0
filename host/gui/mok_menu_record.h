#ifndef MOK_MENU_RECORD_H
#define MOK_MENU_RECORD_H

#include <QAction>
#include <QMenu>
#include <QPointer>

#include <array>
#include <vector>

/// Positions of the standard menus in the menu record. The positions between them belong to menus that this
/// host does not have; nothing stands there.
enum MOK_MENU_POSITION : int {
    MOK_MENU_FILE = 0,
    MOK_MENU_VIEW = 2,
    MOK_MENU_WINDOW = 7,
    MOK_MENU_HELP = 8,
    MOK_MENU_COUNT = 9,
};

/// Positions of the entries of the File menu.
enum MOK_FILE_ENTRY : int {
    MOK_FILE_CLOSE = 6,
    MOK_FILE_OPEN = 7,
    MOK_FILE_OPEN_RECENT = 8, ///< submenu
    MOK_FILE_OPEN_CONTAINING_FOLDER = 9,
    MOK_FILE_COPY_PATH = 10,
    MOK_FILE_RELOAD = 11,
    MOK_FILE_CLOSE_ALL = 12,
    MOK_FILE_SAVE = 13,
    MOK_FILE_SAVE_AS = 14,
    MOK_FILE_SAVE_ALL = 15,
    MOK_FILE_EXPORT_SEPARATOR = 16,
    MOK_FILE_EXPORT = 17, ///< submenu
    MOK_FILE_PROPERTIES_SEPARATOR = 18,
    MOK_FILE_PROPERTIES = 19,
    MOK_FILE_CLEAR_RECENT = 20,
    MOK_FILE_OPEN_WORKING_DIRECTORY = 21,
    MOK_FILE_COPY_WORKING_DIRECTORY = 22,
    MOK_FILE_CHOOSE_WORKING_DIRECTORY = 23,
    MOK_FILE_EXIT_SEPARATOR = 25,
    MOK_FILE_EXIT = 26,
    MOK_FILE_WINDOWS = 27, ///< submenu
};

/// Positions of the entries of the View menu.
enum MOK_VIEW_ENTRY : int {
    MOK_VIEW_FULL_SCREEN = 0,
    MOK_VIEW_TOOLBAR_SEPARATOR = 7,
    MOK_VIEW_FILE_TOOLBAR = 8,
    MOK_VIEW_UTILITY_TOOLBAR = 9,
    MOK_VIEW_OBJECT_NAMES = 10, ///< for regression runs
    MOK_VIEW_APPLICATIONS_TOOLBAR = 11,
    MOK_VIEW_PROCESSING_TOOLBAR = 12,
    MOK_VIEW_MESSAGES = 13, ///< shows the message pane, or hides it
    MOK_VIEW_CLEAR_MESSAGES = 14,
    MOK_VIEW_STANDARD_TOOLBAR = 15,
};

/// Positions of the entries of the Window menu.
enum MOK_WINDOW_ENTRY : int {
    MOK_WINDOW_NEXT = 0,
    MOK_WINDOW_PREVIOUS = 1,
    MOK_WINDOW_LAYOUT_SEPARATOR = 2,
    MOK_WINDOW_CASCADE = 3,
    MOK_WINDOW_TILE = 4,
    MOK_WINDOW_DETACH_SEPARATOR = 7,
    MOK_WINDOW_DETACH = 8, ///< takes the window out of the main frame and back; a main frame must enable it
};

/// Positions of the entries of the Help menu.
enum MOK_HELP_ENTRY : int {
    MOK_HELP_CONTEXT = 0, ///< about what has the focus
    MOK_HELP_SHORTCUTS = 1,
    MOK_HELP_SEPARATOR = 2,
    MOK_HELP_ABOUT = 3,
};

/// The standard menus of a frame window and their entries, by position. Menus and entries belong to the
/// window.
class MOK_MENU_RECORD
{
public:
    /// One menu. A position where this host has no entry holds null; a submenu is reached by the entry's
    /// menu().
    struct MENU {
        QPointer<QMenu> menu;
        std::vector<QPointer<QAction>> entries;
    };

    /// The menu at a position, or null where this host has none.
    QMenu* get_menu(int position) const;
    /// The entry at a position of a menu, or null where this host has none.
    QAction* get_entry(int menu_position, int entry_position) const;
    /// All positions, in order.
    const std::array<MENU, MOK_MENU_COUNT>& get_menus() const { return m_menus; }

    void set_menu(int position, QMenu* menu);
    void set_entry(int menu_position, int entry_position, QAction* action);

private:
    std::array<MENU, MOK_MENU_COUNT> m_menus;
};

#endif
