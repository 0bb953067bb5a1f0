#include "nivo_help.h"

#include "thr_drl.h"

#include <QCoreApplication>
#include <QMessageBox>
#include <QTabWidget>
#include <QVariant>

namespace
{

constexpr char TOPIC_PROPERTY[] = "help_topic";

/// The entry of the module, which stays loaded; null with the loader's reason when there is none.
NIVO_HELP_SHOW_CONTEXT find_entry()
{
    const THR_DRL_HANDLE module = thr_drl_load(NIVO_HELP_MODULE);
    return module == nullptr
               ? nullptr
               : reinterpret_cast<NIVO_HELP_SHOW_CONTEXT>(thr_drl_find_function(module, NIVO_HELP_ENTRY));
}

} // namespace

void nivo_set_help_topic(QWidget& widget, const char* topic)
{
    widget.setProperty(TOPIC_PROPERTY, QString::fromUtf8(topic));
}

QString nivo_get_help_topic(const QWidget* widget)
{
    for (; widget != nullptr; widget = widget->isWindow() ? nullptr : widget->parentWidget()) {
        const auto* const tabs = qobject_cast<const QTabWidget*>(widget);
        const QWidget* const page = tabs == nullptr ? nullptr : tabs->currentWidget();
        const QString topic = (page == nullptr ? widget : page)->property(TOPIC_PROPERTY).toString();
        if (!topic.isEmpty()) {
            return topic;
        }
    }
    return {};
}

void nivo_show_help(const QString& topic, QWidget* owner)
{
    if (const NIVO_HELP_SHOW_CONTEXT show = find_entry()) {
        show(topic.toUtf8().constData());
        return;
    }
    QMessageBox box(
        QMessageBox::Warning, QStringLiteral("Imagewright"),
        QCoreApplication::translate("nivo_help", "The help is not installed, so it cannot be shown."),
        QMessageBox::Ok, owner);
    box.setInformativeText(QString::fromLocal8Bit(thr_drl_get_error().c_str()));
    box.exec();
}
