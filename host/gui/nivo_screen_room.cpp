#include "nivo_screen_room.h"

#include <QComboBox>
#include <QCursor>
#include <QDialog>
#include <QEvent>
#include <QGuiApplication>
#include <QLayout>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QStyle>
#include <QWindow>

#include <algorithm>

namespace
{

/// What is left to see of a form when everything else is too high.
constexpr int LEAST_HEIGHT = 100;

QSize& overridden_room()
{
    static QSize room;
    return room;
}

const QScreen* get_screen(const QWidget& window)
{
    const QWidget* const parent = window.parentWidget();
    const QWindow* const handle = parent == nullptr ? nullptr : parent->window()->windowHandle();
    if (handle != nullptr) {
        return handle->screen();
    }
    const QScreen* const screen = QGuiApplication::screenAt(QCursor::pos());
    return screen == nullptr ? QGuiApplication::primaryScreen() : screen;
}

/// As wide as its content, and as high as it is told.
class FORM_SCROLL_AREA : public QScrollArea
{
public:
    FORM_SCROLL_AREA(QWidget* parent, int height) : QScrollArea(parent), m_height(height)
    {
        setObjectName(QStringLiteral("nivo_form_scroll_area"));
        setFrameShape(QFrame::NoFrame);
        setWidgetResizable(true);
        // The fields take the focus and come into sight with it.
        setFocusPolicy(Qt::NoFocus);
        viewport()->setAutoFillBackground(false);
    }

    void take(QWidget& content)
    {
        setWidget(&content);
        content.setAutoFillBackground(false);
        for (QComboBox* const combo : content.findChildren<QComboBox*>()) {
            combo->setFocusPolicy(Qt::StrongFocus);
            combo->installEventFilter(this);
        }
    }

    QSize sizeHint() const override
    {
        return {widget()->sizeHint().width() + verticalScrollBar()->sizeHint().width(), m_height};
    }
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Wheel && qobject_cast<QComboBox*>(watched) != nullptr) {
            event->ignore(); // it goes on to the area
            return true;
        }
        return QScrollArea::eventFilter(watched, event);
    }

private:
    int m_height;
};

} // namespace

QSize nivo_get_screen_room(const QWidget& window)
{
    if (!overridden_room().isEmpty()) {
        return overridden_room();
    }
    const int frame = window.style()->pixelMetric(QStyle::PM_MdiSubWindowFrameWidth);
    const int title = window.style()->pixelMetric(QStyle::PM_TitleBarHeight);
    return get_screen(window)->availableSize() - QSize(2 * frame, 2 * frame + title);
}

void nivo_override_screen_room(const QSize& room)
{
    overridden_room() = room;
}

void nivo_fit_to_screen(QDialog& dialog, QWidget& content)
{
    dialog.ensurePolished();
    const int too_much = dialog.sizeHint().height() - nivo_get_screen_room(dialog).height();
    if (too_much <= 0) {
        return;
    }
    auto* const area =
        new FORM_SCROLL_AREA(&dialog, std::max(content.sizeHint().height() - too_much, LEAST_HEIGHT));
    delete dialog.layout()->replaceWidget(&content, area);
    area->take(content);
}
