// Setups made in the first two tabs, with nothing but mouse and keyboard, up to the bytes of the output.

#include "three_tabs_fixture.h"
#include "vek_key_entry_edit.h"

#include <QDialogButtonBox>

namespace
{

constexpr char SUCCESS[] = "Successfully generated output file(s).";

class TWO_TABS : public THREE_TABS_FIXTURE
{
protected:
    void begin(const QString& row)
    {
        make_bitstream("top.sof", "CA3M050", 30'000);
        choose_family_and_mode("Calcite", "1-bit Passive Serial");
        tick_output(row);
        open_tab(1);
        add_bitstream("top.sof");
        USER_HANDS::select(tree("m_input_file_tree"), "top.sof");
    }
    /// What a device with that key makes of the output.
    LOADED_IMAGE load_output(const BYTES& key = {}) const
    {
        LOADED_STREAM stream;
        std::string error;
        EXPECT_TRUE(load_configuration_stream(read_file(m_directory / "output_file.rbf"), stream, error, key))
            << error;
        EXPECT_EQ(stream.images.size(), 1u);
        return stream.images.empty() ? LOADED_IMAGE() : stream.images.front();
    }
};

} // namespace

TEST_F(TWO_TABS, a_compressed_bitstream)
{
    begin("Raw Binary File (.rbf)");
    in_dialog("m_properties_button", [](QDialog& dialog) {
        USER_HANDS::choose(dialog, "Enable compression:", "On");
        USER_HANDS::click(dialog, "m_legal_checkbox");
    });
    EXPECT_EQ(rows("m_input_file_tree"), "Bitstream_1||||\n  top.sof|CA3M050|On|Off|\n");
    ASSERT_EQ(generate(), SUCCESS);
    const LOADED_IMAGE image = load_output();
    EXPECT_EQ(image.configuration(), content("top.sof"));
    EXPECT_EQ(image.encrypted_packets, 0u);
}

TEST_F(TWO_TABS, a_bitstream_encrypted_with_the_key_of_a_file)
{
    write_file(m_directory / "board.key",
               "alpha " + std::string(64, '1') + "\nbeta " + std::string(64, '2') + "\n");
    begin("Raw Binary File (.rbf)");
    in_dialog("m_properties_button", [this](QDialog& dialog) {
        USER_HANDS::choose(dialog, "Enable encryption:", "On");
        QWidget* const file_row = dialog.findChild<QWidget*>(QStringLiteral("Key file:"))->parentWidget();
        NIVO_NATIVE_FILE_DLG::answer_next({QString::fromStdString(m_directory / "board.key")});
        USER_HANDS::click(*file_row->findChild<QAbstractButton*>());
        USER_HANDS::choose(*dialog.findChild<VEK_KEY_ENTRY_EDIT*>()->findChild<QComboBox*>(), "beta");
        USER_HANDS::click(dialog, "m_legal_checkbox");
    });
    EXPECT_EQ(rows("m_input_file_tree"), "Bitstream_1||||\n  top.sof|CA3M050|Off|On|\n");
    ASSERT_EQ(generate(), SUCCESS);
    const LOADED_IMAGE image = load_output(BYTES(32, 0x22));
    EXPECT_EQ(image.configuration(), content("top.sof"));
    EXPECT_GT(image.encrypted_packets, 0u);
}
