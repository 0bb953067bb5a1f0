#include "mok_frame_wnd.h"

#include "fio_path.h"
#include "mok_app.h"
#include "mok_menu_builder.h"
#include "mok_message_pane.h"
#include "mok_recent_files.h"
#include "mok_settings.h"
#include "msg_internal_error.h"
#include "nivo_icon.h"
#include "nivo_native_file_dlg.h"
#include "nivo_safe_connect.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDropEvent>
#include <QFileInfo>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenuBar>
#include <QMimeData>
#include <QScreen>
#include <QStatusBar>
#include <QToolBar>
#include <QUrl>

#include <sys/stat.h>

namespace
{
constexpr QSize DEFAULT_SIZE(960, 760);

QList<MOK_FRAME_WND*>& all_frames()
{
    static QList<MOK_FRAME_WND*> frames;
    return frames;
}

bool is_one_file(const QString& left, const QString& right)
{
    struct stat left_stat = {};
    struct stat right_stat = {};
    return stat(left.toLocal8Bit().constData(), &left_stat) == 0 &&
           stat(right.toLocal8Bit().constData(), &right_stat) == 0 && left_stat.st_dev == right_stat.st_dev &&
           left_stat.st_ino == right_stat.st_ino;
}

/// Lower-case letters and underscores, as settings and style sheets want names.
QString object_name_of(const QString& category)
{
    QString name = category.toLower();
    for (QChar& letter : name) {
        if (letter < QLatin1Char('a') || letter > QLatin1Char('z')) {
            letter = QLatin1Char('_');
        }
    }
    return name;
}

/// The one file of a drop that carries the extension, or an empty text.
QString dropped_file(const QMimeData& data, const QString& extension)
{
    const QList<QUrl> urls = data.urls();
    if (urls.size() != 1 || !urls.front().isLocalFile()) {
        return {};
    }
    const QFileInfo info(urls.front().toLocalFile());
    const bool fits = info.isFile() && info.suffix().compare(extension, Qt::CaseInsensitive) == 0;
    return fits ? info.absoluteFilePath() : QString();
}

MOK_MESSAGE_MODEL* message_model()
{
    const MOK_APP* const app = dynamic_cast<MOK_APP*>(nivo_get_app());
    return app == nullptr ? nullptr : app->get_message_model();
}
} // namespace

MOK_FRAME_WND::MOK_FRAME_WND(const MOK_FRAME_INFO* info, MOK_FW_STATE_ENUM state, QWidget* parent,
                             Qt::WindowFlags flags)
    : QMainWindow(parent, flags), m_info(info == nullptr ? MOK_FRAME_INFO() : *info), m_state(state)
{
    setWindowIcon(nivo_get_icon(NIVO_ICON_IMAGEWRIGHT));
    setAcceptDrops(true);
    resize(DEFAULT_SIZE);
    MOK_MENU_BUILDER::build(*this);
    connect_entry(MOK_MENU_FILE, MOK_FILE_OPEN, SLOT(on_open_action()));
    connect_entry(MOK_MENU_FILE, MOK_FILE_SAVE, SLOT(on_save_action()));
    connect_entry(MOK_MENU_FILE, MOK_FILE_SAVE_AS, SLOT(on_save_as_action()));
    connect_entry(MOK_MENU_VIEW, MOK_VIEW_MESSAGES, SLOT(show_messages(bool)));
    if (is_main_window()) {
        // The class's own categories: what a derived window makes of them can only be asked once it stands.
        build_toolbars(MOK_FRAME_WND::get_toolbar_categories());
    }
    if (m_info.clsid == NIVO_CLSID_HOST_MAIN && m_info.has_mdi_area) {
        m_mdi_area = new QMdiArea(this);
        m_mdi_area->setObjectName(QStringLiteral("mdi_area"));
        setCentralWidget(m_mdi_area);
    }
    update_title();
    all_frames().append(this);
}

MOK_FRAME_WND::~MOK_FRAME_WND()
{
    all_frames().removeAll(this);
}

void MOK_FRAME_WND::connect_entry(int menu, int entry, const char* slot)
{
    QAction* const action = m_menu_record.get_entry(menu, entry);
    nivo_safe_connect(action, SIGNAL(triggered(bool)), this, slot, Qt::AutoConnection, __FILE__, __LINE__);
}

bool MOK_FRAME_WND::is_main_window() const
{
    return m_state == MOK_FW_STATE_MAIN;
}

bool MOK_FRAME_WND::is_mok_window() const
{
    return m_info.clsid == NIVO_CLSID_HOST_MAIN && m_info.is_mok_window;
}

bool MOK_FRAME_WND::main_wnd_has_mdi_area() const
{
    const MOK_FRAME_WND* const main_frame = mok_get_main_frame_wnd();
    return main_frame != nullptr && main_frame->get_mdi_area() != nullptr;
}

QToolBar* MOK_FRAME_WND::get_toolbar(const QString& category) const
{
    return m_toolbars.value(category);
}

void MOK_FRAME_WND::update_toolbar(const QString& category, const QList<QAction*>& actions)
{
    QPointer<QToolBar>& toolbar = m_toolbars[category];
    if (toolbar == nullptr) {
        toolbar = new QToolBar(tr(category.toLatin1().constData()), this);
        toolbar->setObjectName(object_name_of(category) + QStringLiteral("_toolbar"));
        addToolBar(toolbar);
    }
    toolbar->clear();
    toolbar->addActions(actions);
}

QList<QAction*> MOK_FRAME_WND::get_toolbar_category(const QString& category) const
{
    struct ROW {
        const char* category;
        int menu;
        std::vector<int> entries;
    };
    static const ROW ROWS[] = {
        {"File", MOK_MENU_FILE, {MOK_FILE_OPEN, MOK_FILE_SAVE, MOK_FILE_EXPORT_SEPARATOR, MOK_FILE_SAVE_AS}},
        {"Standard", MOK_MENU_VIEW, {MOK_VIEW_FULL_SCREEN}},
        {"Utility Windows",
         MOK_MENU_VIEW,
         {MOK_VIEW_MESSAGES, MOK_VIEW_TOOLBAR_SEPARATOR, MOK_VIEW_CLEAR_MESSAGES}},
        {"Applications", MOK_MENU_WINDOW, {MOK_WINDOW_PREVIOUS, MOK_WINDOW_NEXT}},
        {"Processing", MOK_MENU_FILE, {MOK_FILE_RELOAD, MOK_FILE_SAVE_ALL}},
        {"Attached/Detached", MOK_MENU_WINDOW, {MOK_WINDOW_DETACH}},
    };
    QList<QAction*> actions;
    for (const ROW& row : ROWS) {
        if (category == QLatin1String(row.category)) {
            for (const int entry : row.entries) {
                actions << m_menu_record.get_entry(row.menu, entry);
            }
        }
    }
    return actions;
}

QMap<QString, QList<QAction*>> MOK_FRAME_WND::get_toolbar_categories() const
{
    const QStringList names =
        is_main_window() ? QStringList{"File", "Standard", "Utility Windows", "Applications", "Processing"}
                         : QStringList{"Attached/Detached"};
    QMap<QString, QList<QAction*>> categories;
    for (const QString& name : names) {
        categories.insert(name, get_toolbar_category(name));
    }
    return categories;
}

void MOK_FRAME_WND::build_toolbars(const QMap<QString, QList<QAction*>>& categories)
{
    for (auto category = categories.begin(); category != categories.end(); ++category) {
        update_toolbar(category.key(), category.value());
    }
    if (QToolBar* const standard_toolbar = get_toolbar(QStringLiteral("Standard"))) {
        m_standard_toolbars.append(standard_toolbar);
    }
}

void MOK_FRAME_WND::status_display_set_visible(bool visible)
{
    m_status_visible = visible;
    if (m_was_shown || !visible) {
        apply_status_display();
    }
}

void MOK_FRAME_WND::apply_status_display()
{
    // statusBar() makes one, which a window that never shows it can do without.
    QStatusBar* const existing = findChild<QStatusBar*>(QString(), Qt::FindDirectChildrenOnly);
    if (m_status_visible) {
        statusBar()->show();
    } else if (existing != nullptr) {
        existing->hide();
    }
}

bool MOK_FRAME_WND::find_open_file(const QString& path, bool activate)
{
    for (MOK_FRAME_WND* const frame : all_frames()) {
        if (!frame->m_current_file.isEmpty() && is_one_file(frame->m_current_file, path)) {
            if (activate) {
                frame->bring_to_front();
            }
            return true;
        }
    }
    return false;
}

void MOK_FRAME_WND::bring_to_front()
{
    if (QMdiSubWindow* const sub_window = qobject_cast<QMdiSubWindow*>(parentWidget())) {
        sub_window->mdiArea()->setActiveSubWindow(sub_window);
    }
    show();
    raise();
    activateWindow();
}

bool MOK_FRAME_WND::open_file(const QString& path)
{
    set_current_file(path);
    return true;
}

bool MOK_FRAME_WND::open_file(const QString& path, int, int, int, bool activate, bool remember)
{
    m_remembers_files = remember;
    const bool is_open = open_file(path);
    m_remembers_files = true;
    if (is_open && activate && isVisible()) {
        bring_to_front();
    }
    return is_open;
}

bool MOK_FRAME_WND::save_file(const QString& path)
{
    set_current_file(path);
    return true;
}

bool MOK_FRAME_WND::save_as(const FIO_PATH& path)
{
    return save_file(QString::fromLocal8Bit(path.fullpath().c_str()));
}

void MOK_FRAME_WND::set_current_file(const QString& path)
{
    m_current_file = QFileInfo(path).absoluteFilePath();
    setWindowModified(false);
    update_title();
    if (m_remembers_files) {
        MOK_RECENT_FILES::add(m_current_file);
    }
    MOK_MENU_BUILDER::update(*this);
    emit current_file_changed(m_current_file);
}

void MOK_FRAME_WND::forget_file()
{
    if (m_current_file.isEmpty()) {
        return;
    }
    m_current_file.clear();
    setWindowModified(false);
    update_title();
    MOK_MENU_BUILDER::update(*this);
    emit current_file_changed(m_current_file);
}

void MOK_FRAME_WND::set_modified(bool modified)
{
    setWindowModified(modified);
}

void MOK_FRAME_WND::update_title()
{
    if (m_current_file.isEmpty()) {
        setWindowTitle(m_info.application_name + QStringLiteral("[*]"));
        return;
    }
    // In a title "[*]" is where the mark goes, unless it is doubled.
    QString name = QFileInfo(m_current_file).fileName();
    name.replace(QStringLiteral("[*]"), QStringLiteral("[*][*]"));
    setWindowTitle(QStringLiteral("%1[*] - %2").arg(name, m_info.application_name));
}

bool MOK_FRAME_WND::can_open() const
{
    return m_menu_record.get_entry(MOK_MENU_FILE, MOK_FILE_OPEN)->isEnabled();
}

bool MOK_FRAME_WND::open_and_remember(const QString& path)
{
    return can_open() && (find_open_file(path, true) || open_file(path, 0, 0, 0, true, true));
}

bool MOK_FRAME_WND::reload_file()
{
    const QString path = m_current_file; // which opening may forget for a while
    return can_open() && !path.isEmpty() && open_file(path, 0, 0, 0, true, true);
}

QList<MOK_FRAME_WND*> MOK_FRAME_WND::get_frames()
{
    return all_frames();
}

void MOK_FRAME_WND::on_open_action()
{
    NIVO_NATIVE_FILE_DLG dialog(this);
    dialog.set_special_mode(NIVO_NATIVE_FILE_DLG::SPECIAL_MODE_OPEN_DOCUMENT);
    dialog.enable_checkbox(true);
    dialog.setWindowTitle(tr("Open"));
    dialog.setFileMode(QFileDialog::ExistingFile);
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    dialog.setNameFilters(
        {tr("%1 files (*.%2)").arg(m_info.application_name, m_info.document_extension), tr("All files (*)")});
    if (dialog.exec() != QDialog::Accepted) {
        return;
    }
    const QString path = dialog.selectedFiles().value(0);
    if (!find_open_file(path, true)) {
        open_file(path, 0, 0, 0, true, dialog.is_checkbox_checked());
    }
}

void MOK_FRAME_WND::on_save_action()
{
    if (m_current_file.isEmpty()) {
        on_save_as_action();
    } else {
        save_file(m_current_file);
    }
}

void MOK_FRAME_WND::on_save_as_action()
{
    save_as(FIO_PATH(m_current_file.toLocal8Bit().toStdString()));
}

MOK_MESSAGE_PANE* MOK_FRAME_WND::get_message_pane()
{
    MOK_MESSAGE_MODEL* const model = message_model();
    if (m_message_pane == nullptr && is_main_window() && model != nullptr) {
        m_message_pane = new MOK_MESSAGE_PANE(model, this);
        m_message_pane->hide();
        addDockWidget(Qt::BottomDockWidgetArea, m_message_pane);
        m_message_pane->installEventFilter(this);
    }
    return m_message_pane;
}

void MOK_FRAME_WND::show_messages(bool visible)
{
    if (MOK_MESSAGE_PANE* const pane = get_message_pane()) {
        pane->setVisible(visible);
    }
}

bool MOK_FRAME_WND::eventFilter(QObject* watched, QEvent* event)
{
    const bool is_about_pane = watched == m_message_pane && m_message_pane != nullptr;
    if (is_about_pane && (event->type() == QEvent::ShowToParent || event->type() == QEvent::HideToParent)) {
        m_menu_record.get_entry(MOK_MENU_VIEW, MOK_VIEW_MESSAGES)->setChecked(!m_message_pane->isHidden());
    }
    return QMainWindow::eventFilter(watched, event);
}

QMdiArea* MOK_FRAME_WND::get_mdi_area() const
{
    return m_mdi_area;
}

void MOK_FRAME_WND::add_window(MOK_FRAME_WND* frame)
{
    VEK_ASSERT_TEXT(frame != nullptr, "frame != nullptr");
    VEK_ASSERT_TEXT(!frame->is_main_window(), "the window is no main window");
    if (m_mdi_area != nullptr && frame->m_state == MOK_FW_STATE_ATTACHED) {
        m_mdi_area->addSubWindow(frame);
    } else {
        frame->m_state = MOK_FW_STATE_DETACHED;
        frame->setParent(this, Qt::Window);
    }
}

void MOK_FRAME_WND::set_attached(bool attached)
{
    MOK_FRAME_WND* const main_frame = mok_get_main_frame_wnd();
    if (is_main_window() || main_frame == nullptr || attached == (m_state == MOK_FW_STATE_ATTACHED)) {
        return;
    }
    const bool was_visible = isVisible();
    QMdiSubWindow* const sub_window = qobject_cast<QMdiSubWindow*>(parentWidget());
    if (sub_window != nullptr) {
        sub_window->setWidget(nullptr);
    }
    m_state = attached ? MOK_FW_STATE_ATTACHED : MOK_FW_STATE_DETACHED;
    main_frame->add_window(this);
    delete sub_window;
    setVisible(was_visible);
    MOK_MENU_BUILDER::update(*this);
}

void MOK_FRAME_WND::setVisible(bool visible)
{
    if (visible && !m_was_shown) {
        m_was_shown = true;
        if (is_main_window()) {
            restore_layout();
        } else {
            build_toolbars(get_toolbar_categories());
        }
        apply_status_display();
        MOK_MENU_BUILDER::update(*this);
    }
    QMainWindow::setVisible(visible);
}

void MOK_FRAME_WND::closeEvent(QCloseEvent* event)
{
    save_layout();
    QMainWindow::closeEvent(event);
}

QByteArray MOK_FRAME_WND::layout_key() const
{
    return m_info.clsid == NIVO_CLSID_HOST_MAIN ? "WINDOW_LAYOUT_MAIN" : "WINDOW_LAYOUT";
}

void MOK_FRAME_WND::restore_layout()
{
    QByteArray text;
    const QList<QByteArray> parts =
        mok_get_setting(layout_key(), text) ? text.split(' ') : QList<QByteArray>();
    if (parts.size() != 2 || !restoreGeometry(QByteArray::fromBase64(parts[0]))) {
        resize(size().boundedTo(screen()->availableSize()));
        return;
    }
    restoreState(QByteArray::fromBase64(parts[1]));
}

void MOK_FRAME_WND::save_layout() const
{
    if (is_main_window() && m_was_shown) {
        mok_set_setting(layout_key(), saveGeometry().toBase64() + ' ' + saveState().toBase64());
    }
}

bool MOK_FRAME_WND::can_take_drop() const
{
    // A drop reaches a window that an open dialog blocks, and what the dialog works on must not be exchanged.
    return can_open() && QApplication::activeModalWidget() == nullptr;
}

void MOK_FRAME_WND::dragEnterEvent(QDragEnterEvent* event)
{
    if (can_take_drop() && !dropped_file(*event->mimeData(), m_info.document_extension).isEmpty()) {
        event->acceptProposedAction();
    }
}

void MOK_FRAME_WND::dropEvent(QDropEvent* event)
{
    const QString path = dropped_file(*event->mimeData(), m_info.document_extension);
    if (!can_take_drop() || path.isEmpty()) {
        return;
    }
    event->acceptProposedAction();
    // The source of the drop waits until this returns, and opening may ask the user something.
    QMetaObject::invokeMethod(
        this,
        [this, path] {
            if (can_take_drop()) {
                open_and_remember(path);
            }
        },
        Qt::QueuedConnection);
}

MOK_FRAME_WND* mok_get_main_frame_wnd()
{
    return mok_get_main_frame_wnd_with_clsid(NIVO_CLSID_HOST_MAIN);
}

MOK_FRAME_WND* mok_get_main_frame_wnd_with_clsid(NIVO_CLSID clsid)
{
    MOK_FRAME_WND* found = nullptr;
    for (MOK_FRAME_WND* const frame : all_frames()) {
        if (frame->get_clsid() == clsid) {
            found = frame;
            if (frame->isActiveWindow()) {
                break;
            }
        }
    }
    return found;
}
