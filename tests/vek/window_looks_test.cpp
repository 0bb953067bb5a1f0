// Whether all texts of window and dialogs can be read on a small screen. With IMAGEWRIGHT_PICTURES=DIR in the
// environment each is drawn into DIR as well, with IMAGEWRIGHT_DARK=1 in dark colours.

#include "nivo_help.h"
#include "thr_drl.h"
#include "three_tabs_fixture.h"

#include <QAbstractButton>
#include <QDir>
#include <QHeaderView>
#include <QLabel>
#include <QStyle>
#include <QTest>

namespace
{

constexpr QSize SMALL_SCREEN(1024, 600);

QPalette dark_palette()
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

class WINDOW_LOOKS : public THREE_TABS_FIXTURE
{
protected:
    WINDOW_LOOKS()
    {
        if (qEnvironmentVariableIsSet("IMAGEWRIGHT_DARK")) {
            QApplication::setPalette(dark_palette());
        }
        m_frame->resize(SMALL_SCREEN);
        QCoreApplication::processEvents();
    }

    /// Looks at all that is to be seen of the window.
    static void look(QWidget& window, const std::string& name)
    {
        QCoreApplication::processEvents();
        SCOPED_TRACE(name);
        EXPECT_LE(window.width(), SMALL_SCREEN.width());
        // The family with every security option has more rows than a small screen.
        if (name != "input_properties_Granite") {
            EXPECT_LE(window.height(), SMALL_SCREEN.height());
        }
        for (QWidget* const widget : window.findChildren<QWidget*>()) {
            // The buttons in a dock's title are the style's own affair.
            if (widget->isVisibleTo(&window) && !widget->objectName().startsWith(QStringLiteral("qt_"))) {
                look_at(*widget);
            }
        }
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

} // namespace

TEST_F(WINDOW_LOOKS, the_dialogs_of_the_output_tab)
{
    choose_family_and_mode("Basalt", "1-bit Passive Serial");
    look(*m_frame, "window_new");
    tick_output("Hexadecimal File (.hex)");
    tick_output("Serial Vector Format File (.svf)");
    look(*m_frame, "tab_output");
    for (const QString text : {"Hexadecimal File (.hex)", "Serial Vector Format File (.svf)"}) {
        USER_HANDS::select(tree("m_file_type_tree"), text);
        look_in("m_edit_button", "output_properties_" + text.left(3).toLower().toStdString());
    }
}

TEST_F(WINDOW_LOOKS, the_properties_of_an_input_file_of_each_family)
{
    const struct {
        const char* family;
        const char* device;
    } families[] = {
        {"Basalt", "BS1L15"},   {"Calcite", "CA3M050"}, {"Dolomite", "DL2E20"},  {"Feldspar", "FD7X280"},
        {"Granite", "GR5S027"}, {"Gypsum", "GY1M16"},   {"Hematite", "HM8F060"}, {"Zircon", "ZR9A012"},
    };
    for (const auto& row : families) {
        SCOPED_TRACE(row.family);
        const bool is_onchip = row.device == std::string("GY1M16");
        make_bitstream(row.device + std::string(".sof"), row.device, 5000, is_onchip ? "SINGLE_IMAGE" : "");
        USER_HANDS::choose(*family_combo(*m_frame), row.family);
        tick_output("Programmer Object File (.pof)");
        open_tab(1);
        add_bitstream(row.device + std::string(".sof"));
        USER_HANDS::select(tree("m_input_file_tree"), QString(row.device) + ".sof");
        look(*m_frame, "tab_input_" + std::string(row.family));
        look_in("m_properties_button", "input_properties_" + std::string(row.family));
        open_tab(0);
    }
}

TEST_F(WINDOW_LOOKS, the_dialogs_of_the_flash_device_tab)
{
    make_bitstream("factory.sof", "ZR9A012", 5000, "ASX4", true);
    make_bitstream("application.sof", "ZR9A012", 5000, "ASX4", true);
    write_file(m_directory / "identity.puf", std::string("helper data of the chip"));
    choose_family_and_mode("Zircon", "Active Serial x4");
    tick_output("JTAG Indirect Configuration File (.jic)");
    tick_output("Programmer Object File (.pof)");
    open_tab(1);
    add_bitstream("factory.sof");
    add_bitstream("application.sof");
    add_raw_data("identity.puf");
    open_tab(2);
    look(*m_frame, "tab_device_empty");
    look_in("m_select_button", "device_browser");
    m_answers.run([](QDialog& dialog) {
        look(dialog, "add_device");
        dialog.findChild<QComboBox*>(QStringLiteral("m_device_combo"))
            ->setCurrentText(QStringLiteral("W25Q256JW"));
        USER_HANDS::click_standard_button(dialog, QDialogButtonBox::Ok);
    });
    USER_HANDS::click(*tabs(*m_frame)->currentWidget(), "m_add_device_button");
    select_row("BOOT_INFO");
    in_partition_dialog("m_edit_button", "Bitstream_1 (factory.sof)");
    select_row("PUF");
    look_in("m_edit_button", "puf_partition_properties");
    select_row("FACTORY_IMAGE");
    look_in("m_edit_button", "partition_properties_factory");
    select_row("W25Q256JW");
    look_in("m_add_partition_button", "partition_properties_add");
    look(*m_frame, "tab_device");
}

TEST_F(WINDOW_LOOKS, the_flash_database)
{
    make_bitstream("top.sof", "CA3M050", 5000, "ASX4");
    choose_family_and_mode("Calcite", "Active Serial x4");
    tick_output("Programmer Object File (.pof)");
    open_tab(1);
    add_bitstream("top.sof");
    open_tab(2);
    look_in("m_add_device_button", "flash_database");
}

TEST_F(WINDOW_LOOKS, the_options_of_on_chip_flash)
{
    make_bitstream("top.sof", "GY1M16", 5000, "SINGLE_IMAGE");
    choose_family_and_mode("Gypsum", "Internal Configuration");
    tick_output("Programmer Object File (.pof)");
    open_tab(1);
    add_bitstream("top.sof");
    open_tab(2);
    look(*m_frame, "tab_device_onchip");
    select_row("GY1M16");
    look_in("m_edit_button", "device_options");
    select_row("UFM");
    look_in("m_edit_button", "partition_properties_ufm");
}

TEST_F(WINDOW_LOOKS, the_help_and_the_messages)
{
    const THR_DRL_HANDLE module = thr_drl_load(NIVO_HELP_MODULE);
    ASSERT_NE(module, nullptr) << thr_drl_get_error();
    const auto show =
        reinterpret_cast<NIVO_HELP_SHOW_CONTEXT>(thr_drl_find_function(module, NIVO_HELP_ENTRY));
    show(NIVO_HELP_PARTITION);
    for (QWidget* const window : QApplication::topLevelWidgets()) {
        if (window->windowTitle() == QStringLiteral("Imagewright Help")) {
            look(*window, "help");
            delete window;
        }
    }
    tick_output("Programmer Object File (.pof)");
    open_tab(1);
    write_file(m_directory / "bad.sof", std::string("no bitstream"));
    add_bitstream("bad.sof");
    look(*m_frame, "messages");
}
