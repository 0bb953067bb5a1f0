#include "help_window.h"

#include "help_pages.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QListWidget>
#include <QPointer>
#include <QTextBrowser>

namespace
{

QString to_text(std::string_view text)
{
    return QString::fromUtf8(text.data(), static_cast<int>(text.size()));
}

} // namespace

HELP_WINDOW::HELP_WINDOW(QWidget* parent)
    : QDialog(parent), m_title_list(new QListWidget(this)), m_page_browser(new QTextBrowser(this))
{
    setWindowTitle(tr("Imagewright Help"));
    setAttribute(Qt::WA_DeleteOnClose);
    m_title_list->setObjectName("m_title_list");
    m_page_browser->setObjectName("m_page_browser");
    m_page_browser->setOpenLinks(false);
    for (const HELP_PAGE& page : help_pages()) {
        m_title_list->addItem(to_text(page.title));
    }
    m_title_list->setFixedWidth(m_title_list->sizeHintForColumn(0) + 30);
    auto* layout = new QHBoxLayout(this);
    layout->addWidget(m_title_list);
    layout->addWidget(m_page_browser);
    resize(680, 380);
    connect(m_title_list, &QListWidget::currentRowChanged, this, &HELP_WINDOW::show_row);
}

void HELP_WINDOW::show_topic(const QString& topic)
{
    const HELP_PAGE& page = find_help_page(topic.toUtf8().toStdString());
    m_title_list->setCurrentRow(static_cast<int>(&page - help_pages().data()));
}

void HELP_WINDOW::show_row(int row)
{
    const HELP_PAGE& page = help_pages()[static_cast<std::size_t>(row)];
    m_page_browser->setHtml("<h3>" + to_text(page.title).toHtmlEscaped() + "</h3>" + to_text(page.text));
}

void help_show_context_impl(const char* topic)
{
    static QPointer<HELP_WINDOW> window;
    QWidget* const owner = QApplication::activeModalWidget() != nullptr ? QApplication::activeModalWidget()
                                                                        : QApplication::activeWindow();
    if (window != nullptr && owner != window && window->parentWidget() != owner) {
        delete window;
    }
    if (window == nullptr) {
        window = new HELP_WINDOW(owner);
    }
    window->show_topic(QString::fromUtf8(topic));
    window->show();
    window->raise();
    window->activateWindow();
}
