#include "output_fixture.h"
#include "pgm_device.h"
#include "sample.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <set>

namespace
{

/// A session in which everything that a file can need is there.
class OUTPUT_GENERATE : public OUTPUT_FIXTURE
{
protected:
    void prepare(DEV_FAMILY_ENUM family, PGMIO_CONFIG_SCHEME mode, const std::string& mode_word,
                 const std::string& device, const std::string& flash)
    {
        set_working_directory(m_directory.path());
        m_cache->family = family;
        m_cache->current_mode = mode;
        set(*m_vek, VEK_CMD_OPT_SETTINGS, {{VEK_CMD_PARAM_SETTINGS_MODE, mode_word}});
        const std::string bitstream = m_directory / (device + ".sof");
        std::string message;
        ASSERT_TRUE(write_sample_bitstream(device, 1, mode_word, bitstream, message)) << message;
        set(*m_vek, VEK_CMD_OPT_BITSTREAM,
            {{VEK_CMD_PARAM_BITSTREAM_ID, "Bitstream_1"}, {VEK_CMD_PARAM_BITSTREAM_PATH, bitstream}});
        set(*m_vek, VEK_CMD_OPT_FLASH_DEVICE,
            {{VEK_CMD_PARAM_FLASH_DEVICE_ID, "Flash_Device_1"},
             {VEK_CMD_PARAM_FLASH_DEVICE_TYPE, flash},
             {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_ID, "P1"},
             {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_S_ADDR, "0x00010000"},
             {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_E_ADDR, "auto"}});
        set(*m_vek, VEK_CMD_OPT_ASSIGNMENT,
            {{VEK_CMD_PARAM_ASSIGNMENT_PARTITION_ID, "P1"},
             {VEK_CMD_PARAM_ASSIGNMENT_PAGE, "0"},
             {VEK_CMD_PARAM_ASSIGNMENT_BITSTREAM_ID, "Bitstream_1"}});
        set(*m_vek, VEK_CMD_OPT_FLASH_LOADER, {{VEK_CMD_PARAM_FLASH_LOADER_FLASH_LOADER, device}});
        m_tab = make_tab();
        edit(*m_tab, "m_directory_edit").setText(QString::fromStdString(m_directory / "out"));
        edit(*m_tab, "m_name_edit").setText(QStringLiteral("top"));
    }

    /// The names that the ticked rows show.
    static std::set<std::string> shown_names(const QAbstractItemModel& model, const QModelIndex& parent = {})
    {
        std::set<std::string> names;
        for (int row = 0; row < model.rowCount(parent); ++row) {
            const QModelIndex index = model.index(row, 0, parent);
            const VEK_FILE_TYPE type =
                dynamic_cast<const VEK_MODEL_OUTPUT_FILES&>(model).get_file_type(index);
            if (index.data(Qt::CheckStateRole).toInt() == Qt::Checked && !VEK_DB::get_virtual_type(type)) {
                names.insert(index.siblingAtColumn(1).data().toString().toStdString());
            }
            names.merge(shown_names(model, index));
        }
        return names;
    }

    /// Generates what is ticked into a fresh directory; what lies there then. Nothing when the back end has
    /// no writer for a type, a file of keys is to be made and the bitstream has none, or the type is for
    /// partial bitstreams.
    std::set<std::string> generate()
    {
        std::filesystem::remove_all(m_directory / "out");
        std::filesystem::create_directory(m_directory / "out");
        bool can_save = false;
        bool can_generate = false;
        bool has_warning = false;
        std::string message;
        EXPECT_TRUE(VEK_UTIL::check(m_vek.get(), can_save, can_generate, message, has_warning, true));
        if (!can_generate) {
            EXPECT_THAT(message,
                        testing::AnyOf(testing::HasSubstr("This version cannot write files of the type"),
                                       testing::HasSubstr("is not encrypted, so there is no key to program"),
                                       testing::HasSubstr("PRRBF cannot be made from a complete bitstream")));
            return {};
        }
        EXPECT_TRUE(VEK_UTIL::generate(m_vek.get()));
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(m_directory / "out")) {
            names.insert(entry.path().filename());
        }
        return names;
    }

    /// Ticks a row with all its secondary files, compares the names, and unticks it.
    void compare(const BRANCH& branch, std::set<VEK_FILE_TYPE>& written)
    {
        QAbstractItemModel& model = *tree(*m_tab).model();
        ASSERT_TRUE(tick(model, branch));
        const QModelIndex index = find(model, branch);
        std::vector<VEK_FILE_TYPE> types = {branch.back()};
        for (int row = 0; row < model.rowCount(index); ++row) {
            const QModelIndex child = model.index(row, 0, index);
            ASSERT_TRUE(model.setData(child, Qt::Checked, Qt::CheckStateRole));
            types.push_back(dynamic_cast<VEK_MODEL_OUTPUT_FILES&>(model).get_file_type(child));
        }
        const std::set<std::string> names = generate();
        if (!names.empty()) {
            EXPECT_EQ(names, shown_names(model)) << VEK_DB::get_description(branch.back());
            written.insert(types.begin(), types.end());
        }
        ASSERT_TRUE(tick(model, branch, false));
    }

    /// The same with every row of the tree that can be ticked alone.
    std::set<VEK_FILE_TYPE> compare_all()
    {
        std::set<VEK_FILE_TYPE> written;
        QAbstractItemModel& model = *tree(*m_tab).model();
        for (int row = 0; row < model.rowCount(); ++row) {
            const VEK_FILE_TYPE type =
                dynamic_cast<VEK_MODEL_OUTPUT_FILES&>(model).get_file_type(model.index(row, 0));
            if (!VEK_DB::get_virtual_type(type)) {
                compare({type}, written);
                continue;
            }
            EXPECT_TRUE(tick(model, {type}));
            tick(model, {type, VEK_PERIPH_POF_FILE_TYPE}, false);
            for (const VEK_FILE_TYPE child : VEK_DB::get_secondary_file_type(type)) {
                if (find(model, {type, child}).isValid()) {
                    compare({type, child}, written);
                }
            }
            EXPECT_TRUE(tick(model, {type}, false));
        }
        return written;
    }

    std::unique_ptr<VEK_TAB_OUTPUT_FILES> m_tab;
};

/// The types that must be among the written.
void expect_written(const std::set<VEK_FILE_TYPE>& written, const std::vector<VEK_FILE_TYPE>& types)
{
    for (const VEK_FILE_TYPE type : types) {
        EXPECT_EQ(written.count(type), 1u) << VEK_DB::get_description(type);
    }
}

} // namespace

TEST_F(OUTPUT_GENERATE, bitstream_types_are_written_under_the_name_shown)
{
    prepare(DEV_FAMILY_BASALT, PGMIO_CONFIG_SCHEME_PS, "PS", "BS1L15", "CFI_16MB");
    expect_written(compare_all(), {VEK_RBF_FILE_TYPE, VEK_TTF_FILE_TYPE, VEK_HEX_FILE_TYPE, VEK_POF_FILE_TYPE,
                                   VEK_MAP_FILE_TYPE, VEK_SEC_RPD_FILE_TYPE, VEK_SVF_FILE_TYPE,
                                   VEK_JAM_FILE_TYPE, VEK_JBC_FILE_TYPE});
}

TEST_F(OUTPUT_GENERATE, flash_types_are_written_under_the_name_shown)
{
    prepare(DEV_FAMILY_BASALT, PGMIO_CONFIG_SCHEME_AS_X4, "ASX4", "BS1L15", "W25Q32JV");
    expect_written(compare_all(),
                   {VEK_POF_FILE_TYPE, VEK_JIC_FILE_TYPE, VEK_RPD_FILE_TYPE, VEK_MAP_FILE_TYPE,
                    VEK_SEC_RPD_FILE_TYPE, VEK_SVF_FILE_TYPE, VEK_JAM_FILE_TYPE, VEK_JBC_FILE_TYPE});
}

TEST_F(OUTPUT_GENERATE, the_files_of_both_groups_are_written_under_the_name_shown)
{
    prepare(DEV_FAMILY_GRANITE, PGMIO_CONFIG_SCHEME_AS_X4, "ASX4", "GR5S027", "W25Q256JV");
    expect_written(compare_all(), {VEK_PERIPH_POF_FILE_TYPE, VEK_PERIPH_JIC_FILE_TYPE,
                                   VEK_PERIPH_RPD_FILE_TYPE, VEK_CVP_CORE_RBF_FILE_TYPE});
}

TEST_F(OUTPUT_GENERATE, the_files_of_a_secure_family_are_written_under_the_name_shown)
{
    prepare(DEV_FAMILY_ZIRCON, PGMIO_CONFIG_SCHEME_LNKS_X8, "LNKSX8", "ZR9A012", "CFI_256MB");
    expect_written(compare_all(),
                   {VEK_RBF_FILE_TYPE, VEK_HEX_FILE_TYPE, VEK_POF_FILE_TYPE, VEK_RPD_FILE_TYPE,
                    VEK_SVF_FILE_TYPE, VEK_JAM_FILE_TYPE, VEK_JBC_FILE_TYPE, VEK_RIM_FILE_TYPE});
}

TEST_F(OUTPUT_GENERATE, several_files_at_once_do_not_get_in_each_others_way)
{
    prepare(DEV_FAMILY_BASALT, PGMIO_CONFIG_SCHEME_AS_X4, "ASX4", "BS1L15", "W25Q32JV");
    QAbstractItemModel& model = *tree(*m_tab).model();
    for (const VEK_FILE_TYPE type : {VEK_POF_FILE_TYPE, VEK_RPD_FILE_TYPE}) {
        ASSERT_TRUE(tick(model, {type}));
    }
    ASSERT_TRUE(tick(model, {VEK_POF_FILE_TYPE, VEK_SEC_RPD_FILE_TYPE}));
    EXPECT_EQ(generate(),
              (std::set<std::string>{"top.pof", "top_pof.map", "top_pof.rpd", "top.rpd", "top_rpd.map"}));
}

TEST_F(OUTPUT_GENERATE, hexadecimal_options_reach_the_file)
{
    prepare(DEV_FAMILY_BASALT, PGMIO_CONFIG_SCHEME_PS, "PS", "BS1L15", "CFI_16MB");
    ASSERT_TRUE(tick(*tree(*m_tab).model(), {VEK_HEX_FILE_TYPE}));
    const auto extended_addresses = [this] {
        std::vector<std::string> records;
        std::istringstream text(read_text_file(m_directory / "out/top.hex"));
        for (std::string line; std::getline(text, line);) {
            if (line.substr(7, 2) == "04") {
                records.push_back(line.substr(9, 4));
            }
        }
        return records;
    };
    set(*m_vek, VEK_CMD_OPT_OUTPUT_FILE,
        {{VEK_CMD_PARAM_OUTPUT_FILE_TYPE, "HEX"},
         {VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_S_ADDR, "0x00300000"},
         {VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_DIRECTION, "UP"}});
    ASSERT_EQ(generate().count("top.hex"), 1u);
    std::vector<std::string> up = extended_addresses();
    ASSERT_GT(up.size(), 2u);
    EXPECT_EQ(up.front(), "0030");
    EXPECT_EQ(up.at(1), "0031");
    set(*m_vek, VEK_CMD_OPT_OUTPUT_FILE,
        {{VEK_CMD_PARAM_OUTPUT_FILE_TYPE, "HEX"},
         {VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_DIRECTION, "DOWN"}});
    ASSERT_EQ(generate().count("top.hex"), 1u);
    const std::vector<std::string> down = extended_addresses();
    ASSERT_GT(down.size(), 2u);
    EXPECT_NE(down, up);
    EXPECT_LE(std::stoul(*std::max_element(down.begin(), down.end()), nullptr, 16), 0x30u);
}

TEST_F(OUTPUT_GENERATE, raw_options_reach_the_file)
{
    prepare(DEV_FAMILY_BASALT, PGMIO_CONFIG_SCHEME_AS_X4, "ASX4", "BS1L15", "W25Q32JV");
    ASSERT_TRUE(tick(*tree(*m_tab).model(), {VEK_RPD_FILE_TYPE}));
    const auto write = [this](const char* relative, const char* start, const char* bitswap) {
        set(*m_vek, VEK_CMD_OPT_OUTPUT_FILE,
            {{VEK_CMD_PARAM_OUTPUT_FILE_TYPE, "RPD"},
             {VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_USE_RELATIVE, relative},
             {VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_S_ADDR, start},
             {VEK_CMD_PARAM_OUTPUT_FILE_FILE_OPTIONS_BITSWAP, bitswap}});
        EXPECT_EQ(generate().count("top.rpd"), 1u);
        return read_file(m_directory / "out/top.rpd");
    };
    const std::vector<std::uint8_t> whole = write("0", "", "0");
    EXPECT_EQ(whole.size(), 4u * 1024 * 1024) << "the whole device";
    const std::vector<std::uint8_t> later = write("0", "0x00010000", "0");
    EXPECT_TRUE(std::equal(later.begin(), later.end(), whole.begin() + 0x10000, whole.end()));
    const std::vector<std::uint8_t> relative = write("1", "0x00000000", "0");
    EXPECT_LT(relative.size(), later.size()) << "from the first used byte to the last";
    EXPECT_FALSE(std::search(whole.begin(), whole.end(), relative.begin(), relative.end()) == whole.end());
    const std::vector<std::uint8_t> swapped = write("0", "", "1");
    ASSERT_EQ(swapped.size(), whole.size());
    const auto reverse = [](std::uint8_t byte) {
        std::uint8_t reversed = 0;
        for (int bit = 0; bit < 8; ++bit) {
            reversed = static_cast<std::uint8_t>(reversed | (((byte >> bit) & 1) << (7 - bit)));
        }
        return reversed;
    };
    EXPECT_TRUE(std::equal(swapped.begin(), swapped.end(), whole.begin(),
                           [&](std::uint8_t a, std::uint8_t b) { return a == reverse(b); }));
}
