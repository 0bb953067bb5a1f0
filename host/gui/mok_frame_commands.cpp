#include "mok_frame_commands.h"

#include "mok_app.h"
#include "mok_frame_wnd.h"
#include "mok_message_model.h"
#include "mok_recent_files.h"
#include "mok_ui_mgr.h"
#include "nivo_help.h"
#include "nivo_native_file_dlg.h"

#include <QApplication>
#include <QBuffer>
#include <QClipboard>
#include <QDateTime>
#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QLocale>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMessageBox>
#include <QSaveFile>
#include <QUrl>

namespace
{
MOK_UI_MGR* ui_mgr()
{
    const MOK_APP* const app = dynamic_cast<MOK_APP*>(nivo_get_app());
    return app == nullptr ? nullptr : app->get_ui_mgr();
}

/// Where relative paths start: the working directory, or that of the process when there is none.
QString working_directory()
{
    const MOK_UI_MGR* const manager = ui_mgr();
    const QString directory =
        manager == nullptr ? QString() : QString::fromLocal8Bit(manager->get_working_directory().c_str());
    return directory.isEmpty() ? QDir::currentPath() : directory;
}

void show_box(MOK_FRAME_WND& frame, QMessageBox::Icon icon, const char* name, const QString& text,
              Qt::TextFormat format = Qt::PlainText)
{
    QMessageBox box(icon, MOK_FRAME_WND::tr("Imagewright"), text, QMessageBox::Ok, &frame);
    box.setObjectName(QLatin1String(name));
    box.setTextFormat(format);
    box.setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    box.exec();
}

void activate_neighbour(MOK_FRAME_WND& frame, int step)
{
    const QList<MOK_FRAME_WND*> frames = MOK_FRAME_WND::get_frames();
    const int count = frames.size();
    frames[(frames.indexOf(&frame) + step + count) % count]->bring_to_front();
}

/// Writes an exported file; a failure is told in words. Nothing is left of a file that could not be written.
void write_export(MOK_FRAME_WND& frame, const QString& path, const QByteArray& bytes)
{
    QSaveFile file(path);
    const bool is_written =
        file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.flush() && file.commit();
    if (!is_written) {
        show_box(frame, QMessageBox::Critical, "export_box",
                 MOK_FRAME_WND::tr("Can't write file %1. %2. Choose another place or free some space.")
                     .arg(path, file.errorString()));
    }
}

/// Asks for the file to export to; empty when the user thinks better of it.
QString ask_export_file(MOK_FRAME_WND& frame, const QString& title, const QString& filter,
                        const QString& suffix)
{
    NIVO_NATIVE_FILE_DLG dialog(&frame);
    dialog.setWindowTitle(title);
    dialog.setNameFilter(filter);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix(suffix);
    return dialog.exec() == QDialog::Accepted ? dialog.selectedFiles().value(0) : QString();
}

void export_image(MOK_FRAME_WND& frame)
{
    const QString path = ask_export_file(frame, MOK_FRAME_WND::tr("Export Window as Image"),
                                         MOK_FRAME_WND::tr("PNG images (*.png)"), QStringLiteral("png"));
    if (!path.isEmpty()) {
        QByteArray bytes;
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        frame.grab().save(&buffer, "PNG");
        write_export(frame, path, bytes);
    }
}

void export_messages(MOK_FRAME_WND& frame)
{
    const MOK_APP* const app = dynamic_cast<MOK_APP*>(nivo_get_app());
    if (app == nullptr) {
        return;
    }
    const QString path = ask_export_file(frame, MOK_FRAME_WND::tr("Export Messages as Text"),
                                         MOK_FRAME_WND::tr("Text files (*.txt)"), QStringLiteral("txt"));
    if (!path.isEmpty()) {
        QString text;
        for (int row = 0; row < app->get_message_model()->rowCount(); ++row) {
            text += app->get_message_model()->get_line(row) + QLatin1Char('\n');
        }
        write_export(frame, path, text.toUtf8());
    }
}

void append_object_names(const QObject& object, int depth, QString& text)
{
    int next_depth = depth;
    if (object.isWidgetType() && !object.objectName().isEmpty() &&
        !object.objectName().startsWith(QLatin1String("qt_"))) {
        text += QString(depth * 2, QLatin1Char(' ')) + QLatin1String(object.metaObject()->className()) +
                QLatin1Char(' ') + object.objectName() + QLatin1Char('\n');
        ++next_depth;
    }
    for (const QObject* const child : object.children()) {
        append_object_names(*child, next_depth, text);
    }
}
} // namespace

void mok_close_window(MOK_FRAME_WND& frame)
{
    QMdiSubWindow* const sub_window = qobject_cast<QMdiSubWindow*>(frame.parentWidget());
    if (sub_window != nullptr) {
        sub_window->close();
    } else {
        frame.close();
    }
}

void mok_open_containing_folder(MOK_FRAME_WND& frame)
{
    const QString directory = QFileInfo(frame.get_current_file()).absolutePath();
    QDesktopServices::openUrl(QUrl::fromLocalFile(directory));
}

void mok_copy_path(MOK_FRAME_WND& frame)
{
    QApplication::clipboard()->setText(frame.get_current_file());
}

void mok_reload(MOK_FRAME_WND& frame)
{
    frame.reload_file();
}

void mok_close_all(MOK_FRAME_WND&)
{
    for (MOK_FRAME_WND* const other : MOK_FRAME_WND::get_frames()) {
        if (!other->is_main_window()) {
            mok_close_window(*other);
        }
    }
}

void mok_save_all(MOK_FRAME_WND&)
{
    for (MOK_FRAME_WND* const other : MOK_FRAME_WND::get_frames()) {
        const QAction* const save = other->get_menu_record().get_entry(MOK_MENU_FILE, MOK_FILE_SAVE);
        // A window whose save is disabled has a background task at work.
        if (save->isEnabled() && !other->get_current_file().isEmpty()) {
            other->save_file(other->get_current_file());
        }
    }
}

void mok_show_properties(MOK_FRAME_WND& frame)
{
    const QFileInfo info(frame.get_current_file());
    const QLocale locale;
    const QString text = info.exists()
                             ? MOK_FRAME_WND::tr("%1\n\nSize: %2 bytes\nLast change: %3")
                                   .arg(info.absoluteFilePath(), locale.toString(info.size()),
                                        locale.toString(info.lastModified(), QLocale::LongFormat))
                             : MOK_FRAME_WND::tr("File %1 is no longer there.").arg(info.absoluteFilePath());
    show_box(frame, QMessageBox::Information, "properties_box", text);
}

void mok_clear_recent_files(MOK_FRAME_WND&)
{
    MOK_RECENT_FILES::clear();
}

void mok_open_working_directory(MOK_FRAME_WND&)
{
    QDesktopServices::openUrl(QUrl::fromLocalFile(working_directory()));
}

void mok_copy_working_directory(MOK_FRAME_WND&)
{
    QApplication::clipboard()->setText(working_directory());
}

void mok_choose_working_directory(MOK_FRAME_WND& frame)
{
    MOK_UI_MGR* const manager = ui_mgr();
    if (manager == nullptr) {
        return;
    }
    NIVO_NATIVE_FILE_DLG dialog(&frame);
    dialog.setWindowTitle(MOK_FRAME_WND::tr("Choose Working Directory"));
    dialog.setFileMode(QFileDialog::Directory);
    dialog.setOption(QFileDialog::ShowDirsOnly);
    dialog.setDirectory(working_directory());
    if (dialog.exec() == QDialog::Accepted) {
        manager->set_working_directory(dialog.selectedFiles().value(0).toLocal8Bit().toStdString());
    }
}

void mok_exit(MOK_FRAME_WND&)
{
    QApplication::closeAllWindows();
}

void mok_toggle_full_screen(MOK_FRAME_WND& frame)
{
    frame.setWindowState(frame.windowState() ^ Qt::WindowFullScreen);
}

void mok_copy_object_names(MOK_FRAME_WND& frame)
{
    QString text;
    append_object_names(frame, 0, text);
    QApplication::clipboard()->setText(text);
}

void mok_clear_messages(MOK_FRAME_WND&)
{
    if (const MOK_APP* const app = dynamic_cast<MOK_APP*>(nivo_get_app())) {
        app->get_message_model()->clear();
    }
}

void mok_next_window(MOK_FRAME_WND& frame)
{
    activate_neighbour(frame, 1);
}

void mok_previous_window(MOK_FRAME_WND& frame)
{
    activate_neighbour(frame, -1);
}

void mok_cascade(MOK_FRAME_WND&)
{
    if (const MOK_FRAME_WND* const main_frame = mok_get_main_frame_wnd();
        main_frame != nullptr && main_frame->get_mdi_area() != nullptr) {
        main_frame->get_mdi_area()->cascadeSubWindows();
    }
}

void mok_tile(MOK_FRAME_WND&)
{
    if (const MOK_FRAME_WND* const main_frame = mok_get_main_frame_wnd();
        main_frame != nullptr && main_frame->get_mdi_area() != nullptr) {
        main_frame->get_mdi_area()->tileSubWindows();
    }
}

void mok_toggle_attached(MOK_FRAME_WND& frame)
{
    frame.set_attached(frame.get_state() != MOK_FW_STATE_ATTACHED);
}

void mok_show_help(MOK_FRAME_WND& frame)
{
    const QString topic = nivo_get_help_topic(frame.focusWidget());
    nivo_show_help(topic.isEmpty() ? QString::fromLatin1(NIVO_HELP_OVERVIEW) : topic, &frame);
}

void mok_show_shortcuts(MOK_FRAME_WND& frame)
{
    QString rows;
    for (const MOK_MENU_RECORD::MENU& menu : frame.get_menu_record().get_menus()) {
        for (const QPointer<QAction>& entry : menu.entries) {
            if (entry != nullptr && entry->isVisible() && !entry->shortcut().isEmpty()) {
                QString text = entry->text().remove(QLatin1Char('&')).toHtmlEscaped();
                text.remove(QStringLiteral("..."));
                rows += QStringLiteral("<tr><td>%1&nbsp;&nbsp;</td><td><b>%2</b></td></tr>")
                            .arg(text, entry->shortcut().toString(QKeySequence::NativeText).toHtmlEscaped());
            }
        }
    }
    show_box(frame, QMessageBox::NoIcon, "shortcuts_box",
             QStringLiteral("<table cellpadding='3'>%1</table><p>%2</p>")
                 .arg(rows, MOK_FRAME_WND::tr("Alt with the underlined letter reaches menus, tabs and "
                                              "buttons; Tab goes to the next field.")),
             Qt::RichText);
}

void mok_show_about(MOK_FRAME_WND& frame)
{
    show_box(
        frame, QMessageBox::Information, "about_box",
        MOK_FRAME_WND::tr("<h3>Imagewright %1</h3><p>Turns compiled configuration data into programming "
                          "files for boards and configuration flash devices.</p><p>Running on Qt %2.</p>")
            .arg(QApplication::applicationVersion(), QLatin1String(qVersion())));
}

void mok_fill_recent_menu(MOK_FRAME_WND& frame, QMenu& menu)
{
    const bool can_open = frame.can_open();
    int number = 0;
    for (const QString& path : MOK_RECENT_FILES::get()) {
        const QFileInfo info(path);
        QString name = info.fileName();
        name.replace(QLatin1Char('&'), QLatin1String("&&"));
        ++number;
        QAction* const action = menu.addAction(QStringLiteral("&%1  %2").arg(number % 10).arg(name), &frame,
                                               [&frame, path] { frame.open_and_remember(path); });
        action->setToolTip(path);
        action->setStatusTip(path);
        action->setData(path);
        action->setEnabled(can_open);
    }
    menu.setToolTipsVisible(true);
    if (number == 0) {
        menu.addAction(MOK_FRAME_WND::tr("No recent files"))->setEnabled(false);
    }
}

void mok_fill_export_menu(MOK_FRAME_WND& frame, QMenu& menu)
{
    menu.addAction(MOK_FRAME_WND::tr("Window as &Image..."), &frame, [&frame] { export_image(frame); });
    menu.addAction(MOK_FRAME_WND::tr("&Messages as Text..."), &frame, [&frame] { export_messages(frame); });
}

void mok_fill_windows_menu(MOK_FRAME_WND&, QMenu& menu)
{
    for (MOK_FRAME_WND* const other : MOK_FRAME_WND::get_frames()) {
        QString title = other->windowTitle().remove(QStringLiteral("[*]"));
        title.replace(QLatin1Char('&'), QLatin1String("&&"));
        QAction* const action = menu.addAction(title, other, [other] { other->bring_to_front(); });
        action->setCheckable(true);
        action->setChecked(other->isActiveWindow());
    }
}
