// Dialogs on screens that are too small for them.

#include "nivo_screen_room.h"

#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QTest>
#include <QVBoxLayout>
#include <QWheelEvent>
#include <gtest/gtest.h>

namespace
{

/// A form of forty rows over one button, on a screen of a size that the test says.
class SCREEN_ROOM_TEST : public testing::Test
{
protected:
    ~SCREEN_ROOM_TEST() override { nivo_override_screen_room(QSize()); }

    void fill()
    {
        auto* const rows = new QVBoxLayout(m_form);
        for (int row = 0; row < 40; ++row) {
            auto* const combo = new QComboBox;
            combo->addItems({QStringLiteral("Off"), QStringLiteral("On")});
            combo->setCurrentIndex(1);
            rows->addWidget(combo);
            m_combos << combo;
        }
        auto* const layout = new QVBoxLayout(&m_dialog);
        layout->addWidget(m_form);
        layout->addWidget(m_button);
        layout->setSizeConstraint(QLayout::SetFixedSize);
        nivo_fit_to_screen(m_dialog, *m_form);
        m_dialog.show();
        QCoreApplication::processEvents();
    }
    QScrollArea* area() const { return m_dialog.findChild<QScrollArea*>(); }
    /// Whether all of the widget is where the user can see it.
    bool is_in_sight(const QWidget& widget) const
    {
        return widget.visibleRegion().boundingRect().size() == widget.size() &&
               m_dialog.rect().contains(QRect(widget.mapTo(&m_dialog, QPoint()), widget.size()));
    }
    static void turn_wheel(QWidget& widget)
    {
        const QPoint place = widget.rect().center();
        QWheelEvent event(place, widget.mapToGlobal(place), QPoint(), QPoint(0, -120), Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        // Only what comes from the window system goes on to the widgets around.
        QSpontaneKeyEvent::setSpontaneous(&event);
        qApp->notify(&widget, &event);
    }

    QDialog m_dialog;
    QWidget* m_form = new QWidget(&m_dialog);
    QPushButton* m_button = new QPushButton(QStringLiteral("OK"), &m_dialog);
    QList<QComboBox*> m_combos;
};

TEST_F(SCREEN_ROOM_TEST, the_room_is_that_of_the_screen_without_a_title_bar)
{
    const QSize screen = QGuiApplication::primaryScreen()->availableSize();
    const QSize room = nivo_get_screen_room(m_dialog);
    EXPECT_LT(room.height(), screen.height());
    EXPECT_LE(room.width(), screen.width());
    EXPECT_GT(room.height(), screen.height() - 100);
    QWidget window;
    window.show();
    EXPECT_EQ(nivo_get_screen_room(QDialog(&window)), room);
}

TEST_F(SCREEN_ROOM_TEST, a_form_that_fits_stays_where_it_is)
{
    nivo_override_screen_room(QSize(4000, 4000));
    fill();
    EXPECT_EQ(area(), nullptr);
    EXPECT_EQ(m_dialog.layout()->itemAt(0)->widget(), m_form);
    EXPECT_TRUE(is_in_sight(*m_combos.last()));
}

TEST_F(SCREEN_ROOM_TEST, a_form_that_is_too_high_scrolls_over_buttons_that_stay)
{
    nivo_override_screen_room(QSize(800, 500));
    fill();
    ASSERT_NE(area(), nullptr);
    EXPECT_EQ(m_dialog.layout()->itemAt(0)->widget(), area());
    EXPECT_EQ(m_dialog.height(), 500);
    EXPECT_TRUE(is_in_sight(*m_button));
    EXPECT_TRUE(is_in_sight(*m_combos.first()));
    EXPECT_FALSE(is_in_sight(*m_combos.last()));
    EXPECT_FALSE(area()->horizontalScrollBar()->isVisible());
    area()->verticalScrollBar()->setValue(area()->verticalScrollBar()->maximum());
    EXPECT_TRUE(is_in_sight(*m_combos.last()));
}

TEST_F(SCREEN_ROOM_TEST, the_wheel_scrolls_and_turns_no_combo_box_on_its_way)
{
    nivo_override_screen_room(QSize(800, 500));
    fill();
    m_combos.first()->setFocus();
    m_combos.first()->setCurrentIndex(0);
    turn_wheel(*m_combos.first());
    EXPECT_EQ(m_combos.first()->currentIndex(), 0);
    EXPECT_GT(area()->verticalScrollBar()->value(), 0);
}

TEST_F(SCREEN_ROOM_TEST, the_tab_key_brings_each_row_into_sight_from_top_to_bottom)
{
    nivo_override_screen_room(QSize(800, 500));
    fill();
    m_dialog.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&m_dialog));
    m_combos.first()->setFocus();
    for (QComboBox* const combo : m_combos) {
        ASSERT_TRUE(combo->hasFocus());
        EXPECT_TRUE(is_in_sight(*combo));
        QTest::keyClick(combo, Qt::Key_Tab);
    }
    EXPECT_TRUE(m_button->hasFocus());
}

} // namespace
