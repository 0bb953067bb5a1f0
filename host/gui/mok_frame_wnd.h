#ifndef MOK_FRAME_WND_H
#define MOK_FRAME_WND_H

#include "mok_frame_info.h"
#include "mok_menu_record.h"

#include <QHash>
#include <QList>
#include <QMainWindow>
#include <QMap>
#include <QPointer>
#include <QString>

class FIO_PATH;
class MOK_MESSAGE_PANE;
class QMdiArea;
class QToolBar;

/// The window base of the tools: standard menus and toolbars, the message pane, and the bookkeeping of the
/// file in the window (title, recent files, geometry kept between runs, files dropped on it).
///
/// A frame is either a main window (the tool runs by itself, or it is the main frame of a host), or it
/// belongs to a host's main frame, attached to its MDI area or floating beside it. All of it runs on the GUI
/// thread.
class MOK_FRAME_WND : public QMainWindow
{
    Q_OBJECT
public:
    /// `info` may be null: the values that MOK_FRAME_INFO starts with. A window that is no main window takes
    /// its place in the host's main frame (see add_window there) by itself when it is first shown.
    MOK_FRAME_WND(const MOK_FRAME_INFO* info, MOK_FW_STATE_ENUM state, QWidget* parent = nullptr,
                  Qt::WindowFlags flags = Qt::WindowFlags());
    ~MOK_FRAME_WND() override;

    /// True when the state is MOK_FW_STATE_MAIN.
    bool is_main_window() const;
    /// True for a main frame that keeps its tools in a Window menu and lets them attach and detach.
    bool is_mok_window() const;
    /// True when the host has a main frame and that one has an MDI area.
    bool main_wnd_has_mdi_area() const;
    MOK_FW_STATE_ENUM get_state() const { return m_state; }
    NIVO_CLSID get_clsid() const { return m_info.clsid; }

    /// The standard menus and their entries by position. Entries that need a file in the window or an MDI
    /// area are enabled only with one, and hidden entries are left as they are.
    const MOK_MENU_RECORD& get_menu_record() const { return m_menu_record; }

    /// The toolbar of a category, or null when there is none (never made, or deleted since).
    QToolBar* get_toolbar(const QString& category) const;
    /// Makes the toolbar of a category if there is none, and gives it exactly these actions.
    void update_toolbar(const QString& category, const QList<QAction*>& actions);
    /// The actions that the host offers for a category: "File", "Standard", "Utility Windows",
    /// "Applications", "Processing" or "Attached/Detached". Empty for any other.
    QList<QAction*> get_toolbar_category(const QString& category) const;
    /// The categories of this window with their actions. The base gives all that the state calls for: the
    /// first five for a main window, "Attached/Detached" for any other. The toolbars are built from it at the
    /// first show.
    virtual QMap<QString, QList<QAction*>> get_toolbar_categories() const;
    /// The toolbars that the "Standard" category has put into the window. Whoever deletes that toolbar
    /// empties the list.
    QList<QToolBar*>& get_standard_toolbar_list() { return m_standard_toolbars; }
    /// Shows or hides the status bar. Starts visible.
    void status_display_set_visible(bool visible);

    /// Whether some frame of this process has the file open, by identity of the file and not of its path.
    /// With `activate` that frame comes to the front.
    static bool find_open_file(const QString& path, bool activate);
    /// Opens a file in this window. The base keeps the books: title, recent files, unmodified. An override
    /// that has loaded the file ends here.
    virtual bool open_file(const QString& path);
    /// The long form. The place (line, column, length) is for windows that show text; the others do not look
    /// at it. Ends in the virtual short form. With `activate` the window comes to the front when that
    /// returned true; `remember` lists the file under the recent ones.
    bool open_file(const QString& path, int line, int column, int length, bool activate, bool remember);
    /// The base keeps the books of a file that has been saved, and returns true.
    virtual bool save_file(const QString& path);
    /// The base saves to the given path with save_file.
    virtual bool save_as(const FIO_PATH& path);

    /// Full path of the file in the window, empty while there is none.
    const QString& get_current_file() const { return m_current_file; }
    /// What is in the window is new and no longer that file: saving asks for a name, and the file can be
    /// opened again.
    void forget_file();
    /// Marks the title; the window's own bookkeeping clears the mark when a file is opened or saved.
    void set_modified(bool modified);
    /// Opens a file that may be open already, as a recent or a dropped one: find_open_file, else the long
    /// form. Does nothing while File > Open is disabled.
    bool open_and_remember(const QString& path);
    /// Opens the file in the window again. Does nothing while File > Open is disabled.
    bool reload_file();
    /// Whether the user may open a file now: a background task disables File > Open.
    bool can_open() const;

    /// Shows the window before all others.
    void bring_to_front();
    /// All frames of the process, in the order in which they were built.
    static QList<MOK_FRAME_WND*> get_frames();

    /// Main frames only: takes a frame into the MDI area, or leaves it floating where there is none or where
    /// its state is MOK_FW_STATE_DETACHED. Does not show it.
    void add_window(MOK_FRAME_WND* frame);
    /// Moves a frame that is no main window into the host's MDI area, or out of it. Without such an area it
    /// floats.
    void set_attached(bool attached);
    /// The MDI area of a main frame, or null.
    QMdiArea* get_mdi_area() const;
    /// The message pane; made when first asked for. Null for a window that is no main window: its messages
    /// appear in the host's main frame.
    MOK_MESSAGE_PANE* get_message_pane();

    /// The first time, puts the window where it was at the end of the last run.
    void setVisible(bool visible) override;

public slots:
    /// File > Open: asks for a file and opens it with the long form.
    virtual void on_open_action();

signals:
    /// The file in the window has changed, or its name.
    void current_file_changed(const QString& path);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private slots:
    void on_save_action();
    void on_save_as_action();
    void show_messages(bool visible);

private:
    friend class MOK_MENU_BUILDER;

    void set_current_file(const QString& path);
    void update_title();
    void connect_entry(int menu, int entry, const char* slot);
    void build_toolbars(const QMap<QString, QList<QAction*>>& categories);
    void apply_status_display();
    bool can_take_drop() const;
    QByteArray layout_key() const;
    void restore_layout();
    void save_layout() const;

    MOK_FRAME_INFO m_info;
    MOK_FW_STATE_ENUM m_state;
    MOK_MENU_RECORD m_menu_record;
    QHash<QString, QPointer<QToolBar>> m_toolbars;
    QList<QToolBar*> m_standard_toolbars;
    QPointer<QMdiArea> m_mdi_area;
    QPointer<MOK_MESSAGE_PANE> m_message_pane;
    QString m_current_file;
    bool m_status_visible = true;
    bool m_remembers_files = true; ///< off while a file is opened that the recent ones shall not list
    bool m_was_shown = false;
};

/// The host's main frame, or null when the tool runs by itself.
MOK_FRAME_WND* mok_get_main_frame_wnd();

/// The frame of a kind: the active one if there are several, else the one built last; null if there is none.
MOK_FRAME_WND* mok_get_main_frame_wnd_with_clsid(NIVO_CLSID clsid);

#endif
