// The Tab key goes through the second tab and its dialogs as one reads: from top to bottom, in a row from
// left to right.

#include "pgm_device.h"
#include "three_tabs_fixture.h"
#include "vek_dlg_key_entry.h"
#include "vek_dlg_sof_properties.h"

#include <QAbstractButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QTest>

#include <map>
#include <set>

namespace
{

/// Widgets whose tops are no further apart than this stand in one row.
constexpr int SAME_ROW = 12;

class TAB_ORDER : public THREE_TABS_FIXTURE
{
protected:
    /// Where the key leads, from the widget that has the focus until that has it again.
    static std::vector<QWidget*> tab_stops(QWidget& window)
    {
        std::vector<QWidget*> stops;
        EXPECT_TRUE(QTest::qWaitFor([&window] {
            QApplication::setActiveWindow(nullptr);
            QApplication::setActiveWindow(&window);
            return QApplication::focusWidget() != nullptr && QApplication::focusWidget()->window() == &window;
        }));
        QWidget* widget = QApplication::focusWidget();
        while (widget != nullptr && std::find(stops.begin(), stops.end(), widget) == stops.end()) {
            stops.push_back(widget);
            QTest::keyClick(widget, Qt::Key_Tab);
            widget = QApplication::focusWidget();
        }
        EXPECT_EQ(widget, stops.empty() ? nullptr : stops.front());
        return stops;
    }

    static std::string name_of(const QWidget& widget)
    {
        if (const auto* const button = qobject_cast<const QAbstractButton*>(&widget)) {
            return button->text().section(QLatin1Char('\n'), 0, 0).toStdString();
        }
        return widget.objectName().toStdString();
    }

    /// The names of the stops, one a line, when they stand in reading order.
    static std::string reading_order(const QWidget& window, const std::vector<QWidget*>& stops)
    {
        std::string names;
        QPoint last(-1, -1);
        for (const QWidget* const stop : stops) {
            const QPoint place = stop->mapTo(&window, QPoint());
            const bool is_in_order =
                std::abs(place.y() - last.y()) <= SAME_ROW ? place.x() > last.x() : place.y() > last.y();
            EXPECT_TRUE(is_in_order) << name_of(*stop) << " at " << place.x() << "," << place.y()
                                     << " comes after " << last.x() << "," << last.y();
            EXPECT_TRUE(stop->isEnabled() && stop->isVisible()) << name_of(*stop);
            names += name_of(*stop) + "\n";
            last = place;
        }
        return names;
    }
};

} // namespace

TEST_F(TAB_ORDER, of_the_input_tab)
{
    make_bitstream("top.sof", "DL2E20", 5000);
    USER_HANDS::choose(*family_combo(*m_frame), "Dolomite");
    tick_output("Programmer Object File (.pof)");
    open_tab(1);
    add_bitstream("top.sof");
    USER_HANDS::select(tree("m_input_file_tree"), "Bitstream_1");
    std::vector<QWidget*> stops = tab_stops(*m_frame);
    const QWidget* const page = tabs(*m_frame)->currentWidget();
    std::erase_if(stops, [page](const QWidget* stop) { return !page->isAncestorOf(stop); });
    EXPECT_EQ(reading_order(*m_frame, stops),
              "m_input_file_tree\nAdd Bitstream...\nAdd Raw Data...\nAdd File...\nRemove\n");
    USER_HANDS::select(tree("m_input_file_tree"), "top.sof");
    stops = tab_stops(*m_frame);
    std::erase_if(stops, [page](const QWidget* stop) { return !page->isAncestorOf(stop); });
    EXPECT_EQ(reading_order(*m_frame, stops),
              "m_input_file_tree\nAdd Bitstream...\nAdd Raw Data...\nRemove\nProperties...\n");
}

TEST_F(TAB_ORDER, of_the_properties_of_each_family)
{
    const std::string security = "Enable encryption:\nEnable non volatile key:\nKey programming file:\n...\n"
                                 "Encryption lock file:\n...\nKey file:\n...\nm_key_combo\nAdd\n";
    const std::string disclaimer =
        "m_legal_text\nBy checking the box, you acknowledge that you have read and "
        "understand the disclaimer above. (This must be \nCancel\n";
    const std::string signing = "Enable signing tool:\nPrivate key file:\n...\nCo-signed firmware:\n...\n"
                                "Finalize encryption:\nOK\nCancel\n";
    const std::map<std::string, std::string> expected = {
        {"Basalt", "Enable compression:\nOK\nCancel\n"},
        {"Calcite", "Enable compression:\n" + security + disclaimer},
        {"Dolomite", "OK\nCancel\n"},
        {"Granite", "Enable compression:\nEnable enhanced compression:\nBootloader:\n...\n" + security +
                        "Only allow encrypted, authenticated POFs:\nDisable external full-configuration:\n"
                        "Disable external partial reconfiguration:\nDisable key-related JTAG instructions:\n"
                        "Disable other extended JTAG instructions:\n"
                        "Force the external JTAG pins into BYPASS mode:\n"
                        "Force the internal HPS JTAG into BYPASS mode:\n"
                        "Disable use of the non-volatile OTP fuse key:\n"
                        "Disable use of the battery-backed key:\n"
                        "Prevent the battery-backed key from being changed:\n"
                        "Enable other security measures:\n" +
                        disclaimer},
        {"Hematite", signing},
        {"Zircon", "Bootloader:\n...\n" + signing},
    };
    std::set<std::string> seen;
    for (const PGM_DEVICE* const device : PGM_DEVICE_INDEX::get_device_list()) {
        const std::string family = dstr_get_user_string(device->family);
        if (expected.count(family) == 0 || !seen.insert(family).second) {
            continue;
        }
        SCOPED_TRACE(family);
        VEK_DLG_SOF_PROPERTIES dialog(device, FIO_SOF_FILE, {VEK_POF_FILE_TYPE}, nullptr, Qt::WindowFlags());
        dialog.show();
        for (const char* const name : {"Enable encryption:", "Enable signing tool:"}) {
            auto* const combo = dialog.findChild<QComboBox*>(QLatin1String(name));
            if (combo != nullptr && combo->isVisible()) {
                combo->setCurrentIndex(1);
            }
        }
        std::vector<QWidget*> stops = tab_stops(dialog);
        if (auto* const area = dialog.findChild<QScrollArea*>()) {
            area->verticalScrollBar()->setValue(0); // it has followed the focus
        }
        // Rows out of sight lie below the buttons, which stay in place.
        const auto buttons = std::find_if(stops.begin(), stops.end(), [](const QWidget* stop) {
            return stop->objectName() == QStringLiteral("m_legal_text");
        });
        EXPECT_EQ(reading_order(dialog, {stops.begin(), buttons}) +
                      reading_order(dialog, {buttons, stops.end()}),
                  expected.at(family));
    }
    EXPECT_EQ(seen.size(), expected.size());
}

TEST_F(TAB_ORDER, of_the_dialog_for_a_key)
{
    VEK_DLG_KEY_ENTRY dialog(nullptr);
    dialog.n_key_bits = 16;
    dialog.common_init();
    dialog.show();
    const std::string above =
        "m_entry_method_cbx\nShow entered keys\nm_key_name_edit\nm_key_edit\nm_key_counter\n";
    EXPECT_EQ(reading_order(dialog, tab_stops(dialog)),
              above + "m_confirm_edit\nm_confirm_counter\nCancel\n");
    dialog.set_key_name(QStringLiteral("k"));
    dialog.set_key(QStringLiteral("1234"));
    USER_HANDS::click(dialog, "m_show_key_checkbox");
    dialog.findChild<QWidget*>(QStringLiteral("m_entry_method_cbx"))->setFocus();
    EXPECT_EQ(reading_order(dialog, tab_stops(dialog)), above + "OK\nCancel\n");
}
