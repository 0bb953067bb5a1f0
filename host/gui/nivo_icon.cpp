#include "nivo_icon.h"

#include <QApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>
#include <QPixmap>

namespace
{
/// All shapes are drawn on a square of this size and scaled to the one asked for.
constexpr qreal GRID = 16;

/// The colours of one drawing. Signal colours are the same on any background, lines follow the palette.
struct INK {
    QColor line;
    QColor paper;
    QColor accent;
};

void prepare(QPainter& painter, const QColor& line, const QBrush& fill, qreal width = 1.2)
{
    painter.setPen(QPen(line, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(fill);
}

void draw_open(QPainter& painter, const INK& ink)
{
    prepare(painter, ink.line, ink.paper);
    painter.drawPolygon(QPolygonF({{1.5, 13}, {1.5, 3.5}, {6, 3.5}, {7.5, 5}, {12.5, 5}, {12.5, 7}, {4, 7}}));
    prepare(painter, ink.line, QColor(0xF2, 0xB8, 0x3B));
    painter.drawPolygon(QPolygonF({{1.5, 13}, {4.2, 7}, {15, 7}, {12.5, 13}}));
}

void draw_save(QPainter& painter, const INK& ink)
{
    prepare(painter, ink.line, ink.accent);
    painter.drawPolygon(QPolygonF({{2, 2}, {12, 2}, {14, 4}, {14, 14}, {2, 14}}));
    prepare(painter, ink.line, Qt::white, 0.8);
    painter.drawRect(QRectF(4.5, 8.5, 7, 5.5));
    painter.drawRect(QRectF(5, 2, 5.5, 3.8));
}

void draw_key(QPainter& painter, const INK& ink)
{
    prepare(painter, ink.line, Qt::NoBrush, 2);
    painter.drawEllipse(QRectF(2, 5, 5.5, 5.5));
    painter.drawPolyline(QPolygonF({{7.5, 7.8}, {14, 7.8}, {14, 11}}));
    painter.drawLine(QPointF(11.3, 7.8), QPointF(11.3, 10));
}

void draw_letter(QPainter& painter, const QColor& color, qreal top)
{
    prepare(painter, color, Qt::NoBrush, 1.9);
    painter.drawLine(QPointF(8, top), QPointF(8, top + 4));
    painter.drawPoint(QPointF(8, top + 6.6));
}

void draw_information(QPainter& painter)
{
    prepare(painter, QColor(0x1C, 0x6F, 0xC9), QColor(0x2E, 0x86, 0xE0));
    painter.drawEllipse(QRectF(1.5, 1.5, 13, 13));
    prepare(painter, Qt::white, Qt::NoBrush, 1.9);
    painter.drawPoint(QPointF(8, 4.8));
    painter.drawLine(QPointF(8, 7.6), QPointF(8, 11.6));
}

void draw_warning(QPainter& painter)
{
    prepare(painter, QColor(0xB5, 0x7B, 0x00), QColor(0xFF, 0xC1, 0x2B));
    painter.drawPolygon(QPolygonF({{8, 1.5}, {15, 14}, {1, 14}}));
    draw_letter(painter, QColor(0x30, 0x24, 0x00), 5.6);
}

void draw_error(QPainter& painter)
{
    prepare(painter, QColor(0xA8, 0x1E, 0x1E), QColor(0xD9, 0x36, 0x36));
    painter.drawEllipse(QRectF(1.5, 1.5, 13, 13));
    prepare(painter, Qt::white, Qt::NoBrush, 1.9);
    painter.drawLine(QPointF(5.4, 5.4), QPointF(10.6, 10.6));
    painter.drawLine(QPointF(10.6, 5.4), QPointF(5.4, 10.6));
}

void draw_output(QPainter& painter, const INK& ink)
{
    prepare(painter, ink.line, Qt::NoBrush, 1.5);
    for (const qreal y : {4.0, 8.0, 12.0}) {
        painter.drawLine(QPointF(2.5, y), QPointF(y == 12.0 ? 9.0 : 13.5, y));
    }
}

void draw_copy(QPainter& painter, const INK& ink)
{
    prepare(painter, ink.line, ink.paper);
    painter.drawRect(QRectF(2, 2, 8, 9.5));
    painter.drawRect(QRectF(5.5, 4.5, 8, 9.5));
    painter.drawLine(QPointF(7.5, 8), QPointF(11.5, 8));
    painter.drawLine(QPointF(7.5, 10.8), QPointF(11.5, 10.8));
}

void draw_clear(QPainter& painter, const INK& ink)
{
    prepare(painter, ink.line, ink.paper);
    painter.drawPolygon(QPolygonF({{4, 5}, {12, 5}, {11, 14.5}, {5, 14.5}}));
    painter.drawLine(QPointF(2.5, 4), QPointF(13.5, 4));
    painter.drawLine(QPointF(6.5, 2), QPointF(9.5, 2));
    painter.drawLine(QPointF(6.8, 7), QPointF(7.1, 12.2));
    painter.drawLine(QPointF(9.2, 7), QPointF(8.9, 12.2));
}

void draw_detach(QPainter& painter, const INK& ink)
{
    prepare(painter, ink.line, ink.paper);
    painter.drawRect(QRectF(2, 5, 9, 9));
    prepare(painter, ink.accent, Qt::NoBrush, 1.8);
    painter.drawLine(QPointF(7, 9), QPointF(13.5, 2.5));
    painter.drawPolyline(QPolygonF({{9.5, 2.2}, {13.8, 2.2}, {13.8, 6.5}}));
}

void draw_more(QPainter& painter, const INK& ink, bool below)
{
    prepare(painter, ink.line, Qt::NoBrush, 1.9);
    for (const qreal from : {3.5, 8.5}) {
        painter.drawPolyline(below ? QPolygonF({{3.5, from}, {8, from + 4}, {12.5, from}})
                                   : QPolygonF({{from, 3.5}, {from + 4, 8}, {from, 12.5}}));
    }
}

void draw_imagewright(QPainter& painter, const INK& ink)
{
    // A device with its pins, and the image written into it bit by bit.
    prepare(painter, ink.line, Qt::NoBrush, 1.1);
    for (const qreal place : {4.6, 8.0, 11.4}) {
        painter.drawLine(QPointF(place, 0.8), QPointF(place, 15.2));
        painter.drawLine(QPointF(0.8, place), QPointF(15.2, place));
    }
    prepare(painter, QColor(0x17, 0x4A, 0x7E), QColor(0x1F, 0x5F, 0xA3), 1);
    painter.drawRoundedRect(QRectF(2.6, 2.6, 10.8, 10.8), 1.4, 1.4);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0x8F, 0xC7, 0xFF));
    constexpr const char* BITS[] = {"#.##", "##.#", ".##.", "#..."};
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 4; ++column) {
            if (BITS[row][column] == '#') {
                painter.drawRect(QRectF(4.4 + 1.85 * column, 4.4 + 1.85 * row, 1.5, 1.5));
            }
        }
    }
}

class ICON_ENGINE final : public QIconEngine
{
public:
    explicit ICON_ENGINE(NIVO_ICON_ENUM icon) : m_icon(icon) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override
    {
        const QPalette palette = QApplication::palette();
        const QPalette::ColorGroup group = mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active;
        const QPalette::ColorRole line_role =
            mode == QIcon::Selected ? QPalette::HighlightedText : QPalette::WindowText;
        const INK ink{palette.color(group, line_role), palette.color(group, QPalette::Base),
                      QColor(0x2E, 0x86, 0xE0)};
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        const int side = qMin(rect.width(), rect.height());
        painter->translate(rect.x() + (rect.width() - side) / 2.0, rect.y() + (rect.height() - side) / 2.0);
        painter->scale(side / GRID, side / GRID);
        painter->setOpacity(mode == QIcon::Disabled ? 0.45 : 1.0);
        draw(*painter, ink);
        painter->restore();
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override
    {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, QRect(QPoint(0, 0), size), mode, state);
        return pixmap;
    }

    QIconEngine* clone() const override { return new ICON_ENGINE(*this); }

private:
    void draw(QPainter& painter, const INK& ink) const
    {
        switch (m_icon) {
        case NIVO_ICON_OPEN:
            return draw_open(painter, ink);
        case NIVO_ICON_SAVE:
            return draw_save(painter, ink);
        case NIVO_ICON_KEY:
            return draw_key(painter, ink);
        case NIVO_ICON_INFORMATION:
            return draw_information(painter);
        case NIVO_ICON_WARNING:
            return draw_warning(painter);
        case NIVO_ICON_ERROR:
            return draw_error(painter);
        case NIVO_ICON_OUTPUT:
            return draw_output(painter, ink);
        case NIVO_ICON_COPY:
            return draw_copy(painter, ink);
        case NIVO_ICON_CLEAR:
            return draw_clear(painter, ink);
        case NIVO_ICON_DETACH:
            return draw_detach(painter, ink);
        case NIVO_ICON_MORE_ASIDE:
            return draw_more(painter, ink, false);
        case NIVO_ICON_MORE_BELOW:
            return draw_more(painter, ink, true);
        case NIVO_ICON_IMAGEWRIGHT:
            return draw_imagewright(painter, ink);
        }
    }

    NIVO_ICON_ENUM m_icon;
};
} // namespace

QIcon nivo_get_icon(NIVO_ICON_ENUM icon)
{
    return QIcon(new ICON_ENGINE(icon));
}
