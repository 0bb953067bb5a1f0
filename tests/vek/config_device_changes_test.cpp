#include "bitstream_writer.h"
#include "byte_source.h"
#include "cfg.h"
#include "config_device_fixture.h"
#include "msg_service.h"
#include "pgm_common_ini.h"
#include "pgm_device.h"
#include "vek_model_config_device.h"

namespace
{

class VEK_CONFIG_DEVICE_CHANGES : public CONFIG_DEVICE_FIXTURE
{
protected:
    VEK_CONFIG_DEVICE_CHANGES()
        : m_model(m_vek, m_cache, nullptr), m_devices(&m_model, SIGNAL(config_device_changed())),
          m_partitions(&m_model, SIGNAL(partition_changed())),
          m_data(&m_model, SIGNAL(dataChanged(const QModelIndex&, const QModelIndex&, const QVector<int>&)))
    {
    }
    ~VEK_CONFIG_DEVICE_CHANGES() override { MSG_SERVICE::instance().set_answerer({}); }

    static std::string set_device(const PARAMS& params)
    {
        return call("set", VEK_CMD_OPT_FLASH_DEVICE, params);
    }
    static std::string set_assignment(const PARAMS& params)
    {
        return call("set", VEK_CMD_OPT_ASSIGNMENT, params);
    }
    static std::string remove_assignment(const PARAMS& params)
    {
        return call("remove", VEK_CMD_OPT_ASSIGNMENT, params);
    }
    static std::string new_partition(const std::string& name, const std::string& reserved,
                                     const std::string& start, const std::string& end,
                                     const PARAMS& more = {})
    {
        PARAMS params{{VEK_CMD_PARAM_FLASH_DEVICE_ID, "Flash_Device_1"},
                      {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_ID, name},
                      {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_RESERVED, reserved},
                      {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_FIXED_S_ADDR, "0"},
                      {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_FIXED_E_ADDR, "0"},
                      {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_S_ADDR, start},
                      {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_E_ADDR, end},
                      {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_SIZE, "0"}};
        params.insert(params.end(), more.begin(), more.end());
        return set_device(params);
    }
    void add(const std::string& name, const std::string& input_id, bool has_page = false, unsigned page = 0)
    {
        m_model.add_partition(name, false, "auto", "auto", input_id, "Flash_Device_1", 0, 0, false, false,
                              has_page, page);
    }

    /// A bitstream file of an on-chip device with these options.
    std::string onchip_file(const DSET_OTI_DEV_OPTIONS_INFO* options)
    {
        const PGM_DEVICE* const record = PGM_DEVICE_INDEX::find_by_name("GY1M16");
        BITSTREAM_WRITER writer(BITSTREAM_KIND::SOF, {record->name, record->idcode});
        if (options != nullptr) {
            writer.set_option_block(*options);
        }
        writer.add_section(SECTION_CORE,
                           std::make_shared<MEMORY_SOURCE>(std::vector<std::uint8_t>(500, 0x5A)));
        MEMORY_SINK sink;
        std::string message;
        EXPECT_TRUE(writer.write(sink, message)) << message;
        write_file(m_directory / "on.sof", sink.bytes());
        return m_directory / "on.sof";
    }
    /// A device of the on-chip family with CFM0; assigns the bitstream to it and tells whether there was a
    /// question.
    bool assign_asks(const DSET_OTI_DEV_OPTIONS_INFO* options, int answer)
    {
        m_cache->family = DEV_FAMILY_ONCHIP_FLASH;
        device("Flash_Device_1", "GY1M16");
        partition("Flash_Device_1", "CFM0", "0x0", "0xFFFF");
        bitstream("Bitstream_1", {onchip_file(options)});
        std::vector<std::string> questions;
        MSG_SERVICE::instance().set_answerer([&](const MSG_RECORD& record) {
            questions.push_back(record.text);
            return answer;
        });
        m_model.update_partition("CFM0", "auto", "auto", "Bitstream_1", "CFM0", "Flash_Device_1", true, true,
                                 false, 0);
        if (!questions.empty()) {
            EXPECT_EQ(questions.front(),
                      "Option setting in SOF file is different with current option setting. "
                      "Do you want to overwrite it?");
        }
        return !questions.empty();
    }

    VEK_MODEL_CONFIG_DEVICE m_model;
    QSignalSpy m_devices;
    QSignalSpy m_partitions;
    QSignalSpy m_data;
    VEK_FILE_ASSISTANT_LOG m_log;
};

} // namespace

TEST_F(VEK_CONFIG_DEVICE_CHANGES, a_device_takes_the_lowest_free_id_and_goes_to_the_outputs_that_take_it)
{
    device("Flash_Device_1", "A");
    device("Flash_Device_3", "C");
    add_output(*m_vek, "POF", "top", ".");
    add_output(*m_vek, "RBF", "top", ".");
    add_output(*m_vek, "RPD", "top", ".");
    m_log.take();
    EXPECT_EQ(m_model.add_device("W25Q128JV", true), 2);
    EXPECT_EQ(m_log.take(), set_device({{VEK_CMD_PARAM_FLASH_DEVICE_ID, "Flash_Device_2"},
                                        {VEK_CMD_PARAM_FLASH_DEVICE_TYPE, "W25Q128JV"}}) +
                                call("set", VEK_CMD_OPT_OUTPUT_FILE,
                                     {{VEK_CMD_PARAM_OUTPUT_FILE_TYPE, "POF"},
                                      {VEK_CMD_PARAM_OUTPUT_FILE_FLASH_DEVICE_ID, "Flash_Device_2"}}) +
                                call("set", VEK_CMD_OPT_OUTPUT_FILE,
                                     {{VEK_CMD_PARAM_OUTPUT_FILE_TYPE, "RPD"},
                                      {VEK_CMD_PARAM_OUTPUT_FILE_FLASH_DEVICE_ID, "Flash_Device_2"}}));
    EXPECT_EQ(m_devices.count(), 1);
    EXPECT_EQ(m_model.rowCount(), 3);
}

TEST_F(VEK_CONFIG_DEVICE_CHANGES,
       an_output_that_refuses_the_device_is_passed_over_and_a_refused_device_is_not)
{
    add_output(*m_vek, "POF", "top", ".");
    m_log.refuse = [](const std::string& line) { return line.starts_with("set output_file"); };
    m_model.add_device("W25Q128JV", false);
    EXPECT_EQ(m_devices.count(), 1);
    m_log.refuse = [](const std::string& line) { return line.starts_with("set flash_device"); };
    EXPECT_INTERNAL_ERROR(m_model.add_device("W25Q128JV", false), "success");
}

TEST_F(VEK_CONFIG_DEVICE_CHANGES, a_device_without_a_name_is_taken)
{
    EXPECT_EQ(m_model.add_device("", false), 0);
    EXPECT_EQ(rows(m_model), "|||\n");
}

TEST_F(VEK_CONFIG_DEVICE_CHANGES, the_reserved_partitions_go_by_the_mode_of_the_first_bitstream)
{
    m_cache->family = DEV_FAMILY_BASALT;
    m_cache->config_mode = PGMIO_CONFIG_SCHEME_FPP;
    m_cache->current_mode = PGMIO_CONFIG_SCHEME_AS;
    m_log.take();
    m_model.add_device("CFI_128Mb", false);
    EXPECT_EQ(m_log.take(), set_device({{VEK_CMD_PARAM_FLASH_DEVICE_ID, "Flash_Device_1"},
                                        {VEK_CMD_PARAM_FLASH_DEVICE_TYPE, "CFI_128Mb"}}) +
                                new_partition("OPTIONS", "1", "0x00000000", "auto"));
    EXPECT_EQ(m_partitions.count(), 1);
    EXPECT_EQ(assignment("OPTIONS"), nullptr);
}

TEST_F(VEK_CONFIG_DEVICE_CHANGES, the_boot_layout_needs_two_bitstreams_and_the_flag)
{
    m_cache->family = DEV_FAMILY_ZIRCON;
    m_cache->config_mode = PGMIO_CONFIG_SCHEME_AS_X4;
    const auto names = [this] {
        m_model.clear();
        m_model.add_device("W25Q128JV", false);
        std::string text;
        for (const auto* const element :
             VEK_FILE_ASSISTANT::get_partition_elements(m_vek.get(), "Flash_Device_1")) {
            text += element->id + " ";
        }
        return text;
    };
    bitstream("Bitstream_1", {"/in/a.sof"});
    raw_file("Raw_File_1", "PUF", "/in/a.puf");
    m_cache->partition_rule_flag_a = true;
    EXPECT_EQ(names(), "");
    bitstream("Bitstream_2", {"/in/b.sof"});
    EXPECT_EQ(names(), "BOOT_INFO FACTORY_IMAGE SPT0 SPT1 CPB0 CPB1 ");
    m_cache->partition_rule_flag_a = false;
    EXPECT_EQ(names(), "");
    m_cache->partition_rule_flag_b = true;
    EXPECT_EQ(names(), "PUF ");
    EXPECT_TRUE(VEK_FILE_ASSISTANT::convert_string_to_bool(find("PUF")->reserved));
}

TEST_F(VEK_CONFIG_DEVICE_CHANGES, options_are_written_in_their_order_and_in_silence)
{
    device("Flash_Device_1", "GY1M16");
    m_log.take();
    DSET_OTI_DEV_OPTIONS_INFO options;
    options.power_on_scheme = 2;
    options.not_cfm0_only = false;
    options.watchdog_enabled = true;
    options.watchdog_value = 77;
    options.ufm_source = 2;
    options.ufm_source_file = "/in/ufm.hex";
    options.fallback_enabled = true;
    options.fallback_address = 99;
    PARAMS params{{VEK_CMD_PARAM_FLASH_DEVICE_ID, "Flash_Device_1"},
                  {VEK_CMD_PARAM_FLASH_DEVICE_POWER_ON_SCHEME, "2"},
                  {VEK_CMD_PARAM_FLASH_DEVICE_ENABLE_USER_IOS_WEAK_PULLUP, "1"},
                  {VEK_CMD_PARAM_FLASH_DEVICE_CONFIG_FROM_CFM0_ONLY, "1"},
                  {VEK_CMD_PARAM_FLASH_DEVICE_ISP_SOURCE, "0"},
                  {VEK_CMD_PARAM_FLASH_DEVICE_ENABLE_VERIFY_PROTECT, "0"},
                  {VEK_CMD_PARAM_FLASH_DEVICE_ENABLE_ENCRYPTED_POF_ONLY, "0"},
                  {VEK_CMD_PARAM_FLASH_DEVICE_WATCHDOG_VALUE, "77"},
                  {VEK_CMD_PARAM_FLASH_DEVICE_UFM_SOURCE, "2"},
                  {VEK_CMD_PARAM_FLASH_DEVICE_UFM_SOURCE_FILE, "/in/ufm.hex"}};
    ASSERT_EQ(params.size(), 10U);
    m_model.update_device("Flash_Device_1", options);
    EXPECT_EQ(m_log.take(), set_device(params));
    EXPECT_EQ(m_devices.count() + m_partitions.count() + m_data.count(), 0);

    cfg_override(PGM_COMMON_INI::boolean_key(PGM_COMMON_INI::SECURITY_OPTIONS), "on");
    cfg_override(PGM_COMMON_INI::boolean_key(PGM_COMMON_INI::SPI_OPTIONS), "on");
    cfg_override(PGM_COMMON_INI::encrypted_timing_boolean_key(PGM_COMMON_INI::TEST_OPTIONS), "on");
    options.watchdog_enabled = false;
    options.ufm_source = 1;
    params[7].second = "";
    params[8].second = "1";
    params[9].second = "";
    params.insert(params.end(), {{VEK_CMD_PARAM_FLASH_DEVICE_ENABLE_JTAG_SECURITY, "0"},
                                 {VEK_CMD_PARAM_FLASH_DEVICE_ENABLE_SPI_MODE, "0"},
                                 {VEK_CMD_PARAM_FLASH_DEVICE_FALLBACK_ADDRESS, "99"},
                                 {VEK_CMD_PARAM_FLASH_DEVICE_FORCE_SSMCLK_TO_USE_ISMCLK, "1"},
                                 {VEK_CMD_PARAM_FLASH_DEVICE_ENABLE_TEST, "0"},
                                 {VEK_CMD_PARAM_FLASH_DEVICE_DISABLE_TEST, "1"}});
    m_model.update_device("Flash_Device_1", options);
    EXPECT_EQ(m_log.take(), set_device(params));
    options.fallback_enabled = false;
    params[12].second = "";
    m_model.update_device("Flash_Device_1", options);
    EXPECT_EQ(m_log.take(), set_device(params));
}

TEST_F(VEK_CONFIG_DEVICE_CHANGES, a_partition_is_written_with_its_input)
{
    device("Flash_Device_1", "W25Q128JV");
    bitstream("Bitstream_1", {"/in/a.sof"});
    raw_file("Raw_File_1", "HEX", "/in/a.hex");
    m_log.take();
    add("P1", "");
    EXPECT_EQ(m_log.take(), new_partition("P1", "0", "auto", "auto")) << "no assignment at all";
    add("P2", "Bitstream_1", true, 3);
    EXPECT_EQ(m_log.take(), new_partition("P2", "0", "auto", "auto") +
                                set_assignment({{VEK_CMD_PARAM_ASSIGNMENT_PARTITION_ID, "P2"},
                                                {VEK_CMD_PARAM_ASSIGNMENT_PAGE, "3"},
                                                {VEK_CMD_PARAM_ASSIGNMENT_BITSTREAM_ID, "Bitstream_1"}}));
    add("P3", "Raw_File_1", true, 4);
    EXPECT_EQ(m_log.take(), new_partition("P3", "0", "auto", "auto") +
                                set_assignment({{VEK_CMD_PARAM_ASSIGNMENT_PARTITION_ID, "P3"},
                                                {VEK_CMD_PARAM_ASSIGNMENT_PAGE, "4"},
                                                {VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID, "Raw_File_1"}}));
    m_model.add_partition("P4", false, "0x10", "0x20", "", "Flash_Device_1", 0, 512, false, false, false, 0);
    EXPECT_EQ(m_log.take(), new_partition("P4", "0", "0x10", "0x20",
                                          {{VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_EXTRA_SPACE, "512"}}));
    EXPECT_EQ(m_partitions.count(), 4);
}

TEST_F(VEK_CONFIG_DEVICE_CHANGES, a_new_row_stands_behind_the_partitions_and_finds_its_input_at_once)
{
    device("Flash_Device_1", "W25Q128JV");
    partition("Flash_Device_1", "P1");
    mbr("Flash_Device_1", "MBR1", "Inner");
    raw_file("Raw_File_1", "HEX", "/in/a.hex");
    QString shown;
    QObject::connect(&m_model, &QAbstractItemModel::rowsInserted,
                     [&](const QModelIndex& parent, int first, int last) {
                         EXPECT_EQ(first, 1);
                         EXPECT_EQ(last, 1);
                         shown = m_model.index(first, 3, parent).data().toString();
                     });
    add("P2", "Raw_File_1");
    EXPECT_EQ(shown, QStringLiteral("a.hex"));
}

TEST_F(VEK_CONFIG_DEVICE_CHANGES, an_input_that_nobody_has_is_an_internal_error_and_a_missing_device_is_not)
{
    device("Flash_Device_1", "W25Q128JV");
    partition("Flash_Device_1", "P1");
    EXPECT_INTERNAL_ERROR(add("P2", "Bitstream_9"), "input_file_type != PGM_COMMON_XML_ENUM__INVALID__");
    EXPECT_INTERNAL_ERROR(m_model.update_partition("P1", "auto", "auto", "Bitstream_9", "P1",
                                                   "Flash_Device_1", false, false, false, 0),
                          "input_file_type != PGM_COMMON_XML_ENUM__INVALID__");
    m_log.take();
    m_model.add_partition("P2", false, "auto", "auto", "", "Flash_Device_9", 0, 0, false, false, false, 0);
    m_model.update_partition("P2", "auto", "auto", "", "P1", "Flash_Device_9", false, false, false, 0);
    m_model.update_partition("P2", "Flash_Device_9", {});
    EXPECT_EQ(m_log.take(), "");
    EXPECT_EQ(m_partitions.count(), 0);
}

TEST_F(VEK_CONFIG_DEVICE_CHANGES, an_edited_partition_takes_name_addresses_and_input)
{
    device("Flash_Device_1", "W25Q128JV");
    partition("Flash_Device_1", "P0");
    partition("Flash_Device_1", "P1");
    bitstream("Bitstream_1", {"/in/a.sof"});
    bitstream("Bitstream_2", {"/in/b.sof"});
    raw_file("Raw_File_1", "HEX", "/in/a.hex");
    assign("P1", {{VEK_CMD_PARAM_ASSIGNMENT_BITSTREAM_ID, "Bitstream_1"}});
    m_log.take();
    m_model.update_partition("P1", "0x100", "auto", "Bitstream_2", "P1", "Flash_Device_1", false, false, true,
                             2);
    EXPECT_EQ(m_log.take(), set_device({{VEK_CMD_PARAM_FLASH_DEVICE_ID, "Flash_Device_1"},
                                        {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_ID, "P1"},
                                        {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_S_ADDR, "0x100"},
                                        {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_E_ADDR, "auto"}}) +
                                remove_assignment({{VEK_CMD_PARAM_ASSIGNMENT_PARTITION_ID, "P1"},
                                                   {VEK_CMD_PARAM_ASSIGNMENT_BITSTREAM_ID, "Bitstream_1"}}) +
                                set_assignment({{VEK_CMD_PARAM_ASSIGNMENT_PARTITION_ID, "P1"},
                                                {VEK_CMD_PARAM_ASSIGNMENT_BITSTREAM_ID, "Bitstream_2"},
                                                {VEK_CMD_PARAM_ASSIGNMENT_PAGE, "2"}}));
    ASSERT_EQ(m_data.count(), 1);
    EXPECT_EQ(m_data.at(0).at(0).toModelIndex(), m_model.index(1, 0, m_model.index(0, 0)));
    EXPECT_EQ(m_partitions.count(), 1);

    m_model.update_partition("P1", "0x100", "0x200", "Raw_File_1", "P1", "Flash_Device_1", true, true, true,
                             2);
    EXPECT_EQ(m_log.take(), set_device({{VEK_CMD_PARAM_FLASH_DEVICE_ID, "Flash_Device_1"},
                                        {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_ID, "P1"}}) +
                                remove_assignment({{VEK_CMD_PARAM_ASSIGNMENT_PARTITION_ID, "P1"},
                                                   {VEK_CMD_PARAM_ASSIGNMENT_BITSTREAM_ID, "Bitstream_2"}}) +
                                set_assignment({{VEK_CMD_PARAM_ASSIGNMENT_PARTITION_ID, "P1"},
                                                {VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID, "Raw_File_1"}}))
        << "fixed addresses are not written, and a raw file has no page";

    m_model.update_partition("P1", "auto", "auto", "", "P1", "Flash_Device_1", true, true, true, 2);
    EXPECT_EQ(m_log.take(), set_device({{VEK_CMD_PARAM_FLASH_DEVICE_ID, "Flash_Device_1"},
                                        {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_ID, "P1"}}) +
                                remove_assignment({{VEK_CMD_PARAM_ASSIGNMENT_PARTITION_ID, "P1"}}));
    m_model.update_partition("P1", "auto", "auto", "", "P1", "Flash_Device_1", true, true, true, 2);
    EXPECT_EQ(m_log.take(), set_device({{VEK_CMD_PARAM_FLASH_DEVICE_ID, "Flash_Device_1"},
                                        {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_ID, "P1"}}))
        << "there is no assignment to remove";
}

TEST_F(VEK_CONFIG_DEVICE_CHANGES, a_renamed_partition_takes_its_assignment_along)
{
    device("Flash_Device_1", "W25Q128JV");
    partition("Flash_Device_1", "P1");
    bitstream("Bitstream_1", {"/in/a.sof"});
    assign("P1", {{VEK_CMD_PARAM_ASSIGNMENT_BITSTREAM_ID, "Bitstream_1"}});
    m_log.take();
    m_model.update_partition("Boot", "auto", "auto", "Bitstream_1", "P1", "Flash_Device_1", true, true, true,
                             1);
    EXPECT_EQ(m_log.take(), set_device({{VEK_CMD_PARAM_FLASH_DEVICE_ID, "Flash_Device_1"},
                                        {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_ID, "Boot"}}) +
                                set_assignment({{VEK_CMD_PARAM_ASSIGNMENT_PARTITION_ID, "Boot"},
                                                {VEK_CMD_PARAM_ASSIGNMENT_BITSTREAM_ID, "Bitstream_1"},
                                                {VEK_CMD_PARAM_ASSIGNMENT_PAGE, "1"}}))
        << "nothing is left under the old name";
    EXPECT_EQ(find("P1"), nullptr);
    EXPECT_EQ(assignment("P1"), nullptr);
    EXPECT_EQ(assignment("Boot")->bitstream_id.size(), 1U);
    EXPECT_INTERNAL_ERROR(
        m_model.update_partition("New", "auto", "auto", "", "Gone", "Flash_Device_1", true, true, true, 1),
        "success");
}

TEST_F(VEK_CONFIG_DEVICE_CHANGES, the_raw_files_of_a_partition_are_replaced_together)
{
    device("Flash_Device_1", "W25Q128JV");
    partition("Flash_Device_1", "PUF");
    raw_file("Raw_File_1", "PUF", "/in/a.puf");
    raw_file("Raw_File_2", "WKEY", "/in/a.wkey");
    bitstream("Bitstream_1", {"/in/a.sof"});
    m_log.take();
    m_model.update_partition("PUF", "Flash_Device_1", {});
    EXPECT_EQ(m_log.take(), "");
    m_model.update_partition("PUF", "Flash_Device_1", {"Raw_File_1", "Bitstream_1", "Raw_File_2"});
    EXPECT_EQ(m_log.take(), set_assignment({{VEK_CMD_PARAM_ASSIGNMENT_PARTITION_ID, "PUF"},
                                            {VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID, "Raw_File_1"},
                                            {VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID, "Raw_File_2"}}));
    m_model.update_partition("PUF", "Flash_Device_1", {"Raw_File_2"});
    EXPECT_EQ(m_log.take(), remove_assignment({{VEK_CMD_PARAM_ASSIGNMENT_PARTITION_ID, "PUF"},
                                               {VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID, "Raw_File_1"},
                                               {VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID, "Raw_File_2"}}) +
                                set_assignment({{VEK_CMD_PARAM_ASSIGNMENT_PARTITION_ID, "PUF"},
                                                {VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID, "Raw_File_2"}}));
    m_model.update_partition("PUF", "Flash_Device_1", {});
    EXPECT_EQ(m_log.take(), remove_assignment({{VEK_CMD_PARAM_ASSIGNMENT_PARTITION_ID, "PUF"}}));
    EXPECT_EQ(m_partitions.count(), 4);
    EXPECT_EQ(m_data.count(), 4);
}

TEST_F(VEK_CONFIG_DEVICE_CHANGES, a_removed_partition_takes_its_assignment_along)
{
    device("Flash_Device_1", "W25Q128JV");
    partition("Flash_Device_1", "P1");
    partition("Flash_Device_1", "P2");
    m_log.take();
    QSignalSpy removed(&m_model, SIGNAL(rowsRemoved(const QModelIndex&, int, int)));
    m_model.remove_partition("P2", "Flash_Device_1");
    const PARAMS keys{{VEK_CMD_PARAM_FLASH_DEVICE_ID, "Flash_Device_1"},
                      {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_ID, "P2"}};
    EXPECT_EQ(m_log.take(), call("remove", VEK_CMD_OPT_FLASH_DEVICE, keys) +
                                remove_assignment({{VEK_CMD_PARAM_ASSIGNMENT_PARTITION_ID, "P2"}}))
        << "asked for although there is none";
    ASSERT_EQ(removed.count(), 1);
    EXPECT_EQ(removed.at(0).at(1).toInt(), 1);
    EXPECT_EQ(m_partitions.count(), 1);
    m_log.refuse = [](const std::string& line) { return line.starts_with("remove assignment"); };
    EXPECT_INTERNAL_ERROR(m_model.remove_partition("P1", "Flash_Device_1"), "success");
}

TEST_F(VEK_CONFIG_DEVICE_CHANGES, a_removed_device_takes_its_partitions_along_in_order)
{
    device("Flash_Device_1", "W25Q128JV");
    partition("Flash_Device_1", "P1");
    partition("Flash_Device_1", "P2");
    m_log.take();
    m_model.remove_device("Flash_Device_1");
    std::string expected;
    for (const char* const name : {"P1", "P2"}) {
        expected += call("remove", VEK_CMD_OPT_FLASH_DEVICE,
                         {{VEK_CMD_PARAM_FLASH_DEVICE_ID, "Flash_Device_1"},
                          {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_ID, name}}) +
                    remove_assignment({{VEK_CMD_PARAM_ASSIGNMENT_PARTITION_ID, name}});
    }
    EXPECT_EQ(m_log.take(), expected + call("remove", VEK_CMD_OPT_FLASH_DEVICE,
                                            {{VEK_CMD_PARAM_FLASH_DEVICE_ID, "Flash_Device_1"}}));
    EXPECT_EQ(m_devices.count(), 1);
    EXPECT_EQ(m_model.rowCount(), 0);
}

TEST_F(VEK_CONFIG_DEVICE_CHANGES, clearing_an_empty_document_announces_nothing)
{
    m_model.clear();
    EXPECT_EQ(m_devices.count() + m_partitions.count(), 0);
    EXPECT_EQ(m_log.take(), "");
    device("Flash_Device_1", "A");
    device("Flash_Device_2", "B");
    m_model.clear();
    EXPECT_EQ(m_devices.count(), 2);
}

TEST(VEK_CONFIG_DEVICE_MBR, the_mbrs_of_a_removed_device_are_removed_like_partitions)
{
    // The row of an MBR is announced as gone, and goes with its device.
    const auto vek = std::make_shared<PGM_COMMON_XML_VEK_VEK>(PGM_COMMON_XML_ENUM_VEK);
    VEK_MODEL_CONFIG_DEVICE model(vek, std::make_shared<VEK_FRAME_WND_CACHE>(), nullptr);
    QTreeView view;
    view.setModel(&model);
    ASSERT_TRUE(VEK_FILE_ASSISTANT::set(vek.get(), VEK_CMD_OPT_FLASH_DEVICE,
                                        {{VEK_CMD_PARAM_FLASH_DEVICE_ID, "F"},
                                         {VEK_CMD_PARAM_FLASH_DEVICE_TYPE, "W25Q128JV"},
                                         {VEK_CMD_PARAM_FLASH_DEVICE_MBR_ID, "MBR1"}}));
    model.refresh();
    view.expandAll();
    VEK_FILE_ASSISTANT_LOG log;
    QSignalSpy changed(&model, SIGNAL(partition_changed()));
    model.add_mbr_partition("x", false, "auto", "auto", "", "MBR1", "F", false, false);
    EXPECT_EQ(changed.count(), 1);
    model.add_mbr_partition("x", false, "auto", "auto", "", "MBR1", "G", false, false);
    EXPECT_EQ(changed.count(), 1) << "there is no such device";
    model.remove_mbr_partition("x", "MBR1", "G");
    EXPECT_EQ(changed.count(), 2);
    EXPECT_EQ(log.take(), "") << "nothing is written";
    model.remove_device("F");
    EXPECT_NE(log.take().find("MBR1"), std::string::npos);
    EXPECT_EQ(model.rowCount(), 0);
    view.grab();
}

TEST_F(VEK_CONFIG_DEVICE_CHANGES, equal_options_of_a_bitstream_raise_no_question)
{
    const DSET_OTI_DEV_OPTIONS_INFO options;
    EXPECT_FALSE(assign_asks(&options, MSG_ANSWER_NO));
}

TEST_F(VEK_CONFIG_DEVICE_CHANGES, a_bitstream_without_options_raises_no_question)
{
    EXPECT_FALSE(assign_asks(nullptr, MSG_ANSWER_NO));
}

TEST_F(VEK_CONFIG_DEVICE_CHANGES, another_watchdog_value_alone_raises_no_question)
{
    DSET_OTI_DEV_OPTIONS_INFO options;
    options.watchdog_value = 5;
    EXPECT_FALSE(assign_asks(&options, MSG_ANSWER_NO));
}

TEST_F(VEK_CONFIG_DEVICE_CHANGES,
       another_fallback_alone_raises_the_question_and_no_keeps_options_and_assignment)
{
    DSET_OTI_DEV_OPTIONS_INFO options;
    options.fallback_enabled = true;
    options.power_on_scheme = 1;
    EXPECT_TRUE(assign_asks(&options, MSG_ANSWER_NO));
    EXPECT_EQ(VEK_FILE_ASSISTANT::get_flash_device_elements(m_vek.get()).at(0)->power_on_scheme, "0");
    EXPECT_EQ(assignment("CFM0")->bitstream_id.at(0)->text, "Bitstream_1");
    EXPECT_EQ(m_data.count(), 1);
}

TEST_F(VEK_CONFIG_DEVICE_CHANGES, yes_takes_what_the_file_decides_and_keeps_the_rest)
{
    DSET_OTI_DEV_OPTIONS_INFO options;
    options.verify_protect = true;
    options.power_on_scheme = 1;
    options.encrypted_pof_only = true;
    EXPECT_TRUE(assign_asks(&options, MSG_ANSWER_YES));
    const auto* const element = VEK_FILE_ASSISTANT::get_flash_device_elements(m_vek.get()).at(0);
    EXPECT_EQ(element->power_on_scheme, "1");
    EXPECT_EQ(element->enable_verify_protect, "1");
    EXPECT_EQ(element->enable_encrypted_pof_only, "0");
}

TEST_F(VEK_CONFIG_DEVICE_CHANGES, on_chip_flash_takes_one_readable_file_a_bitstream)
{
    m_cache->family = DEV_FAMILY_ONCHIP_FLASH;
    device("Flash_Device_1", "GY1M16");
    partition("Flash_Device_1", "CFM0", "0x0", "0xFFFF");
    bitstream("Bitstream_1", {"/in/a.sof", "/in/b.sof"});
    bitstream("Bitstream_2", {m_directory / "gone.sof"});
    const auto update = [this](const std::string& input) {
        m_model.update_partition("CFM0", "auto", "auto", input, "CFM0", "Flash_Device_1", true, true, false,
                                 0);
    };
    EXPECT_INTERNAL_ERROR(update("Bitstream_1"), "path_elements.size() == 1");
    EXPECT_INTERNAL_ERROR(update("Bitstream_2"), "success");
    m_cache->family = DEV_FAMILY_BASALT;
    update("Bitstream_1");
    EXPECT_EQ(assignment("CFM0")->bitstream_id.at(0)->text, "Bitstream_1") << "other families ask nothing";
}
