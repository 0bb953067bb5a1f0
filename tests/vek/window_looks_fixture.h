#ifndef IMAGEWRIGHT_TESTS_WINDOW_LOOKS_FIXTURE_H
#define IMAGEWRIGHT_TESTS_WINDOW_LOOKS_FIXTURE_H

#include "nivo_screen_room.h"
#include "three_tabs_fixture.h"

#include <QAbstractButton>
#include <QDir>
#include <QHeaderView>
#include <QLabel>
#include <QMenuBar>
#include <QStyle>
#include <QTabBar>

#include <set>

/// Whether all texts of window and dialogs can be read on a small screen. With IMAGEWRIGHT_PICTURES=DIR in
/// the environment each is drawn into DIR as well, with IMAGEWRIGHT_DARK=1 in dark colours.
class WINDOW_LOOKS : public THREE_TABS_FIXTURE
{
protected:
    static constexpr QSize SMALL_SCREEN{1024, 600};

    WINDOW_LOOKS()
    {
        if (qEnvironmentVariableIsSet("IMAGEWRIGHT_DARK")) {
            QApplication::setPalette(dark_palette());
        }
        use_screen(SMALL_SCREEN);
    }
    ~WINDOW_LOOKS() override { nivo_override_screen_room(QSize()); }

    /// The window fills a screen of that size, and no dialog may be larger.
    void use_screen(const QSize& size)
    {
        nivo_override_screen_room(size);
        m_frame->resize(size);
        QCoreApplication::processEvents();
    }
    /// Looks at all that is to be seen of the window.
    static void look(QWidget& window, const std::string& name)
    {
        QCoreApplication::processEvents();
        SCOPED_TRACE(name);
        const QSize room = nivo_get_screen_room(window);
        EXPECT_LE(window.width(), room.width());
        EXPECT_LE(window.height(), room.height());
        for (QWidget* const widget : window.findChildren<QWidget*>()) {
            // The buttons in a dock's title are the style's own affair.
            if (widget->isVisibleTo(&window) && !widget->objectName().startsWith(QStringLiteral("qt_"))) {
                look_at(*widget);
            }
        }
        const std::string mnemonics = mnemonics_of(window);
        EXPECT_EQ(std::set<char>(mnemonics.begin(), mnemonics.end()).size(), mnemonics.size()) << mnemonics;
        const QString directory = qEnvironmentVariable("IMAGEWRIGHT_PICTURES");
        if (!directory.isEmpty()) {
            EXPECT_TRUE(window.grab().save(QDir(directory).filePath(QString::fromStdString(name) + ".png")));
        }
    }
    void look_in(const char* button, const std::string& name)
    {
        m_answers.run([&name](QDialog& dialog) {
            look(dialog, name);
            dialog.reject();
        });
        USER_HANDS::click(*tabs(*m_frame)->currentWidget(), button);
    }

private:
    /// The letters that work with the Alt key.
    static std::string mnemonics_of(const QWidget& window)
    {
        QStringList texts;
        for (const QWidget* const widget : window.findChildren<QWidget*>()) {
            if (!widget->isVisibleTo(&window)) {
                continue;
            }
            if (const auto* const button = qobject_cast<const QAbstractButton*>(widget)) {
                texts << button->text();
            } else if (const auto* const label = qobject_cast<const QLabel*>(widget)) {
                texts << (label->buddy() != nullptr ? label->text() : QString());
            } else if (const auto* const bar = qobject_cast<const QTabBar*>(widget)) {
                for (int tab = 0; tab < bar->count(); ++tab) {
                    texts << bar->tabText(tab);
                }
            } else if (const auto* const menus = qobject_cast<const QMenuBar*>(widget)) {
                for (const QAction* const action : menus->actions()) {
                    texts << action->text();
                }
            }
        }
        std::string letters;
        for (const QString& text : texts) {
            const QKeySequence sequence = QKeySequence::mnemonic(text);
            if (!sequence.isEmpty()) {
                letters += sequence.toString().back().toLatin1();
            }
        }
        return letters;
    }
    static QPalette dark_palette()
    {
        QPalette palette(QColor(53, 53, 53), QColor(35, 35, 35));
        palette.setColor(QPalette::Window, QColor(53, 53, 53));
        palette.setColor(QPalette::Base, QColor(35, 35, 35));
        palette.setColor(QPalette::AlternateBase, QColor(45, 45, 45));
        palette.setColor(QPalette::Text, Qt::white);
        palette.setColor(QPalette::WindowText, Qt::white);
        palette.setColor(QPalette::ButtonText, Qt::white);
        palette.setColor(QPalette::Highlight, QColor(42, 130, 218));
        for (const auto role : {QPalette::Text, QPalette::WindowText, QPalette::ButtonText}) {
            palette.setColor(QPalette::Disabled, role, QColor(127, 127, 127));
        }
        return palette;
    }
    static void look_at(const QWidget& widget)
    {
        const std::string what =
            widget.metaObject()->className() + std::string(" ") + widget.objectName().toStdString();
        if (const auto* const label = qobject_cast<const QLabel*>(&widget)) {
            const QSize needed =
                label->wordWrap() ? QSize(0, label->heightForWidth(label->width())) : label->sizeHint();
            EXPECT_GE(label->width(), needed.width()) << what << label->text().toStdString();
            EXPECT_GE(label->height(), needed.height()) << what << label->text().toStdString();
        } else if (const auto* const button = qobject_cast<const QAbstractButton*>(&widget)) {
            const int text = button->fontMetrics().size(Qt::TextShowMnemonic, button->text()).width();
            EXPECT_GE(button->width(), text) << what << button->text().toStdString();
            EXPECT_GE(button->height(), button->minimumSizeHint().height())
                << what << button->text().toStdString();
        } else if (const auto* const combo = qobject_cast<const QComboBox*>(&widget)) {
            const int text = combo->fontMetrics().horizontalAdvance(combo->currentText());
            EXPECT_GE(combo->width(), text + combo->height()) << what << combo->currentText().toStdString();
        } else if (const auto* const header = qobject_cast<const QHeaderView*>(&widget)) {
            if (header->orientation() == Qt::Horizontal) {
                for (int section = 0; section < header->count(); ++section) {
                    EXPECT_GE(header->sectionSize(section), header->sectionSizeHint(section))
                        << what << header->parent()->objectName().toStdString() << section;
                }
            }
        }
    }
};

#endif
