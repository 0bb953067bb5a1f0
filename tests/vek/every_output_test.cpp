// Every output type that is switched on, made in the whole window by mouse and keyboard, and looked at by the
// command line.

#include "child_process.h"
#include "pack.h"
#include "test_keys.h"
#include "three_tabs_fixture.h"
#include "vek_db.h"
#include "vek_key_entry_edit.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <set>
#include <sys/stat.h>

namespace
{

/// What the bitstream of an output has to be.
enum class INPUT { PLAIN, PARTIAL, ENCRYPTED, SIGNED };

/// How a user comes to an output.
struct OUTPUT_CASE {
    VEK_FILE_TYPE type;
    INPUT input;
    const char* family;
    const char* mode;
    const char* device;
    /// The row of the first tab, behind those above it.
    std::vector<const char*> rows;
    const char* file;            ///< the name that the row shows
    const char* rival = nullptr; ///< a row beside it that comes ticked and shuts it out
};

void PrintTo(const OUTPUT_CASE& one, std::ostream* stream)
{
    *stream << one.rows.back();
}

constexpr char GRANITE[] = "Granite";
constexpr char ZIRCON[] = "Zircon";
constexpr char PASSIVE[] = "1-bit Passive Serial";
constexpr char ACTIVE[] = "Active Serial x4";
constexpr char LINK[] = "LNKS x8";
constexpr char PROTOCOL[] = "Configuration via Protocol";
constexpr char PROCESSOR[] = "Processor First Configuration";
constexpr char POF[] = "Programmer Object File (.pof)";
constexpr char PERIPHERY_RPD[] = "Periphery Raw Programming Data File (.rpd)";

// clang-format off
const OUTPUT_CASE CASES[] = {
    {VEK_RBF_FILE_TYPE, INPUT::PLAIN, GRANITE, PASSIVE, "GR5S027",
     {"Raw Binary File (.rbf)"}, "output_file.rbf"},
    {VEK_TTF_FILE_TYPE, INPUT::PLAIN, GRANITE, PASSIVE, "GR5S027",
     {"Tabular Text File (.ttf)"}, "output_file.ttf"},
    {VEK_HEX_FILE_TYPE, INPUT::PLAIN, GRANITE, PASSIVE, "GR5S027",
     {"Hexadecimal File (.hex)"}, "output_file.hex"},
    {VEK_SVF_FILE_TYPE, INPUT::PLAIN, GRANITE, PASSIVE, "GR5S027",
     {"Serial Vector Format File (.svf)"}, "output_file.svf"},
    {VEK_JAM_FILE_TYPE, INPUT::PLAIN, GRANITE, PASSIVE, "GR5S027",
     {"JEDEC STAPL Format File (.jam)"}, "output_file.jam"},
    {VEK_JBC_FILE_TYPE, INPUT::PLAIN, GRANITE, PASSIVE, "GR5S027",
     {"JTAG Byte Code File (.jbc)"}, "output_file.jbc"},
    {VEK_EKP_FILE_TYPE, INPUT::ENCRYPTED, "Calcite", PASSIVE, "CA3M050",
     {"Encryption Key Programming File (.ekp)"}, "output_file.ekp"},
    {VEK_PRRBF_FILE_TYPE, INPUT::PARTIAL, GRANITE, PASSIVE, "GR5S027",
     {"Partial Reconfiguration Raw Binary File (.prrbf)"}, "output_file.prrbf"},
    {VEK_RIM_FILE_TYPE, INPUT::SIGNED, ZIRCON, LINK, "ZR9A012",
     {"Reference Integrity Manifest (.rim)"}, "output_file.rim"},
    {VEK_POF_FILE_TYPE, INPUT::PLAIN, GRANITE, ACTIVE, "GR5S027",
     {POF}, "output_file.pof"},
    {VEK_JIC_FILE_TYPE, INPUT::PLAIN, GRANITE, ACTIVE, "GR5S027",
     {"JTAG Indirect Configuration File (.jic)"}, "output_file.jic"},
    {VEK_RPD_FILE_TYPE, INPUT::PLAIN, GRANITE, ACTIVE, "GR5S027",
     {"Raw Programming Data File (.rpd)"}, "output_file.rpd"},
    {VEK_MAP_FILE_TYPE, INPUT::PLAIN, GRANITE, ACTIVE, "GR5S027",
     {POF, "Memory Map File (.map)"}, "output_file_pof.map"},
    {VEK_SEC_RPD_FILE_TYPE, INPUT::PLAIN, GRANITE, ACTIVE, "GR5S027",
     {POF, "Secondary Raw Programming Data File (.rpd)"}, "output_file_pof.rpd"},
    {VEK_PERIPH_RBF_FILE_TYPE, INPUT::PLAIN, GRANITE, PASSIVE, "GR5S027",
     {PROTOCOL, "Periphery Raw Binary File (.rbf)"}, "output_file.periph.rbf",
     "Periphery Programmer Object File (.pof)"},
    {VEK_PERIPH_POF_FILE_TYPE, INPUT::PLAIN, GRANITE, ACTIVE, "GR5S027",
     {PROTOCOL, "Periphery Programmer Object File (.pof)"}, "output_file.periph.pof"},
    {VEK_PERIPH_JIC_FILE_TYPE, INPUT::PLAIN, GRANITE, ACTIVE, "GR5S027",
     {PROTOCOL, "Periphery JTAG Indirect Configuration File (.jic)"}, "output_file.periph.jic"},
    {VEK_PERIPH_RPD_FILE_TYPE, INPUT::PLAIN, GRANITE, ACTIVE, "GR5S027",
     {PROTOCOL, PERIPHERY_RPD}, "output_file.periph.rpd"},
    {VEK_CVP_CORE_RBF_FILE_TYPE, INPUT::PLAIN, GRANITE, ACTIVE, "GR5S027",
     {PROTOCOL, PERIPHERY_RPD, "Core Raw Binary File for Protocol (.rbf)"}, "output_file_rpd.rbf"},
    {VEK_HPS_CORE_RBF_FILE_TYPE, INPUT::PLAIN, ZIRCON, ACTIVE, "ZR9A012",
     {PROCESSOR, PERIPHERY_RPD, "Core Raw Binary File for Processor (.rbf)"}, "output_file_rpd.rbf"},
};
// clang-format on

class every_output_in_the_window : public THREE_TABS_FIXTURE, public testing::WithParamInterface<OUTPUT_CASE>
{
protected:
    /// Ticks the row of the type and those above it, as far as the ticks of others have not done so.
    void tick_rows()
    {
        QString path;
        for (const char* const row : GetParam().rows) {
            if (!path.isEmpty()) {
                USER_HANDS::unfold(tree("m_file_type_tree"), path);
                path += QStringLiteral(" > ");
            }
            if (row == GetParam().rows.back() && GetParam().rival != nullptr) {
                tick_output(path + QLatin1String(GetParam().rival));
            }
            path += QLatin1String(row);
            if (USER_HANDS::find_row(tree("m_file_type_tree"), path).data(Qt::CheckStateRole) ==
                Qt::Unchecked) {
                tick_output(path);
            }
        }
    }

    void write_input(const std::string& name) const
    {
        const auto part = [this](const char* file, std::size_t size, std::uint8_t first) {
            BYTES bytes(size);
            for (std::size_t i = 0; i < size; ++i) {
                bytes[i] = static_cast<std::uint8_t>(first + i * 7 + i / 251);
            }
            write_file(m_directory / file, bytes);
            return m_directory / file;
        };
        PACK_REQUEST request;
        request.device = GetParam().device;
        request.core_path = part("core", 30'000, 1);
        request.output_path = m_directory / name;
        if (GetParam().input == INPUT::PARTIAL) {
            request.regions = {{"region", 0, 30'000}};
        } else {
            request.periphery_path = part("periphery", 2'000, 2);
            request.firmware_path = GetParam().family == ZIRCON ? part("firmware", 3'000, 3) : "";
        }
        std::string message;
        ASSERT_TRUE(pack_bitstream(request, message)) << message;
    }

    /// Answers the file dialog behind the button of a row of the properties.
    void choose_file(QDialog& dialog, const char* row, const std::string& file) const
    {
        QWidget* const parent = dialog.findChild<QWidget*>(QLatin1String(row))->parentWidget();
        NIVO_NATIVE_FILE_DLG::answer_next({QString::fromStdString(m_directory / file)});
        USER_HANDS::click(*parent->findChild<QAbstractButton*>());
    }

    void set_properties(const std::string& name)
    {
        if (GetParam().input == INPUT::ENCRYPTED) {
            write_file(m_directory / "board.key", "alpha " + std::string(64, '1') + "\n");
            ASSERT_EQ(chmod((m_directory / "board.key").c_str(), 0600), 0);
        } else if (GetParam().input == INPUT::SIGNED) {
            make_private_pem(m_directory / "owner.pem", "P-384");
            ASSERT_EQ(chmod((m_directory / "owner.pem").c_str(), 0600), 0);
        } else {
            return;
        }
        USER_HANDS::select(tree("m_input_file_tree"), QString::fromStdString(name));
        in_dialog("m_properties_button", [this](QDialog& dialog) {
            if (GetParam().input == INPUT::ENCRYPTED) {
                USER_HANDS::choose(dialog, "Enable encryption:", "On");
                choose_file(dialog, "Key file:", "board.key");
                USER_HANDS::choose(*dialog.findChild<VEK_KEY_ENTRY_EDIT*>()->findChild<QComboBox*>(),
                                   "alpha");
                USER_HANDS::click(dialog, "m_legal_checkbox");
            } else {
                USER_HANDS::choose(dialog, "Enable signing tool:", "On");
                choose_file(dialog, "Private key file:", "owner.pem");
            }
        });
    }

    void lay_out_flash()
    {
        open_tab(2);
        in_dialog("m_add_device_button", [](QDialog& dialog) {
            // Programmer files for serial flash are looked for in the flash database, others in a plain list.
            if (auto* const list = dialog.findChild<QAbstractItemView*>("m_device_list")) {
                USER_HANDS::select(*list, "W25Q128JV");
            } else {
                USER_HANDS::choose(dialog, "m_device_combo", "W25Q128JV");
            }
        });
        select_row("W25Q128JV");
        in_partition_dialog("m_add_partition_button", "Bitstream_1 (top.sof)", "0");
        const QWidget& loader = *tabs(*m_frame)->currentWidget()->findChild<QWidget*>("m_select_button");
        if (loader.isEnabled()) {
            in_dialog("m_select_button", [](QDialog& dialog) {
                USER_HANDS::select(*dialog.findChild<QAbstractItemView*>("m_device_list"), GetParam().device);
            });
        }
    }
};

std::string type_name(const testing::TestParamInfo<OUTPUT_CASE>& info)
{
    return VEK_FILE_ASSISTANT::convert_xml_enum_to_string(VEK_DB::get_xml_enum(info.param.type));
}

} // namespace

TEST_P(every_output_in_the_window, generates_and_the_command_line_finds_it_right)
{
    const OUTPUT_CASE& one = GetParam();
    const std::string input = one.input == INPUT::PARTIAL ? "top.pmsf" : "top.sof";
    write_input(input);
    choose_family_and_mode(one.family, one.mode);
    tick_rows();
    open_tab(1);
    add_bitstream(input);
    set_properties(input);
    if (tabs(*m_frame)->isTabEnabled(2)) {
        lay_out_flash();
    }
    save_as("board.vek");
    ASSERT_EQ(generate(), "Successfully generated output file(s).");
    EXPECT_TRUE(std::filesystem::is_regular_file(m_directory / one.file)) << one.file;
    const CHILD_RESULT verdict = run_program(
        {IMAGEWRIGHT_BINARY_DIR "/bin/imagewright-cmd", "verify", "board.vek"}, m_directory.path());
    EXPECT_EQ(verdict.exit_code, 0) << verdict.err;
    EXPECT_THAT(verdict.out, testing::HasSubstr(std::string(one.file) + " is what board.vek generates."));
}

INSTANTIATE_TEST_SUITE_P(of_the_table, every_output_in_the_window, testing::ValuesIn(CASES), type_name);

TEST(every_output_in_the_window, is_in_the_table)
{
    std::set<VEK_FILE_TYPE> shown;
    for (const OUTPUT_CASE& one : CASES) {
        shown.insert(one.type);
    }
    std::set<VEK_FILE_TYPE> enabled;
    for (const VEK_FILE_TYPE type : VEK_DB::get_all_output_file_type_keys()) {
        if (VEK_DB::get_enabled(type) && !VEK_DB::get_virtual_type(type)) {
            enabled.insert(type);
        }
    }
    EXPECT_EQ(shown, enabled);
}
