#ifndef HELP_WINDOW_H
#define HELP_WINDOW_H

#include <QDialog>

class QListWidget;
class QTextBrowser;

/// The help: the titles on the left, the page on the right. Opened again, it shows the page asked for.
class HELP_WINDOW : public QDialog
{
    Q_OBJECT

public:
    explicit HELP_WINDOW(QWidget* parent);

    void show_topic(const QString& topic);

private slots:
    void show_row(int row);

private:
    QListWidget* m_title_list;
    QTextBrowser* m_page_browser;
};

/// Opens the help at a topic, or brings it to the front. While a modal dialog is open the window belongs to
/// it, since no other could be used.
extern "C" __attribute__((visibility("default"))) void help_show_context_impl(const char* topic);

#endif
