// How input files enter the document and leave it, and the properties that they share.

#include "input_fixture.h"
#include "pgm_device.h"
#include "vek_db.h"

#include <filesystem>

namespace
{

class INPUT_ADD_REMOVE : public INPUT_FIXTURE
{
protected:
    INPUT_ADD_REMOVE() : m_model(make_model()) {}

    int add(const std::string& path) { return m_model->add_bitstream(FIO_PATH(path)); }
    void signing_session() { m_cache->shares_signing_properties = true; }

    std::unique_ptr<VEK_MODEL_INPUT_FILES> m_model;
};

} // namespace

TEST_F(INPUT_ADD_REMOVE, a_bitstream_enters_with_its_links_before_its_file)
{
    add_output(*m_vek, "RBF", "top", ".");
    add_output(*m_vek, "POF", "top", ".");
    const std::string path = bitstream("one.sof", "BS1L15");
    QSignalSpy device(m_model.get(), SIGNAL(device_changed(const QString&)));
    const QSignalSpy changed(m_model.get(), SIGNAL(input_files_changed()));
    VEK_FILE_ASSISTANT_LOG log;
    EXPECT_EQ(add(path), 0);
    const std::string bitstream_param = PGM_COMMON_XML_VEK_CMD_PARAM.at(VEK_CMD_PARAM_BITSTREAM_ID);
    const std::string path_param = PGM_COMMON_XML_VEK_CMD_PARAM.at(VEK_CMD_PARAM_BITSTREAM_PATH);
    const std::string type_param = PGM_COMMON_XML_VEK_CMD_PARAM.at(VEK_CMD_PARAM_OUTPUT_FILE_TYPE);
    const std::string link_param = PGM_COMMON_XML_VEK_CMD_PARAM.at(VEK_CMD_PARAM_OUTPUT_FILE_BITSTREAM_ID);
    std::string links;
    for (const VEK_FILE_TYPE type : VEK_FILE_ASSISTANT::get_output_file_types(m_vek.get(), false)) {
        links += "set output_file " + type_param + "=" +
                 VEK_FILE_ASSISTANT::convert_xml_enum_to_string(VEK_DB::get_xml_enum(type)) + " " +
                 link_param + "=Bitstream_1\n";
    }
    EXPECT_NE(links, "");
    EXPECT_EQ(log.take(), links + "set bitstream " + bitstream_param + "=Bitstream_1\nset bitstream " +
                              bitstream_param + "=Bitstream_1 " + path_param + "=" + path + "\n");
    ASSERT_EQ(device.count(), 1);
    EXPECT_EQ(device.at(0).at(0).toString(), QStringLiteral("BS1L15"));
    EXPECT_EQ(changed.count(), 1);
    EXPECT_EQ(m_cache->family, DEV_FAMILY_BASALT);
    EXPECT_EQ(m_cache->device, static_cast<DEV_DEVICE_ENUM>(3));
    EXPECT_EQ(m_cache->max_bitstreams, 8u);
    EXPECT_EQ(m_cache->max_files_per_bitstream, 16u);
    EXPECT_FALSE(m_cache->shares_signing_properties);
}

TEST_F(INPUT_ADD_REMOVE, files_that_are_none_are_told_and_leave_no_trace)
{
    add_output(*m_vek, "RBF", "top", ".");
    const std::string good = bitstream("good.sof", "BS1L15");
    write_file(m_directory / "text.sof", std::string("no bitstream"));
    write_file(m_directory / "cut.sof", read_text_file(good).substr(0, 100));
    std::filesystem::create_directory(m_directory / "dir.sof");
    const QSignalSpy device(m_model.get(), SIGNAL(device_changed(const QString&)));
    for (const std::string name : {"text.sof", "cut.sof", "dir.sof", "none.sof"}) {
        SCOPED_TRACE(name);
        EXPECT_EQ(add(m_directory / name), -1);
        const std::string told = messages();
        EXPECT_TRUE(told.starts_with("20653 " + name + " ")) << told;
        EXPECT_EQ(std::count(told.begin(), told.end(), '\n'), 1) << told;
        EXPECT_TRUE(VEK_FILE_ASSISTANT::get_bitstream_ids(m_vek.get()).empty());
        EXPECT_TRUE(VEK_FILE_ASSISTANT::get_output_file_elements(m_vek.get()).at(0)->bitstream_id.empty());
    }
    EXPECT_EQ(device.count(), 0);
    EXPECT_EQ(m_cache->device_name, "");
    EXPECT_EQ(add(good), 0);
    EXPECT_EQ(VEK_FILE_ASSISTANT::get_bitstream_ids(m_vek.get()).at(0), "Bitstream_1") << "no id is used up";
}

TEST_F(INPUT_ADD_REMOVE, a_device_that_the_database_does_not_know_is_named)
{
    const std::string path = bitstream("one.sof", "BS1L15");
    PGM_DEVICE_INDEX::override_device_list(std::vector<const PGM_DEVICE*>{});
    const PGM_DEVICE* device = nullptr;
    std::string name;
    std::string reason;
    if (VEK_UTIL::precheck_input_file(path, &device, name, reason, true)) {
        // The index knows more than its list: write a name that nobody has.
        std::string bytes = read_text_file(path);
        bytes.replace(bytes.find("BS1L15"), 6, "XX1L15");
        write_file(path, bytes);
    }
    EXPECT_EQ(add(path), -1);
    const std::string told = messages();
    EXPECT_TRUE(told.starts_with("20653 one.sof ")) << told;
    EXPECT_EQ(m_model->rowCount(), 0);
}

TEST_F(INPUT_ADD_REMOVE, the_lowest_free_number_is_used_again_and_stands_at_the_end)
{
    const std::string path = bitstream("one.sof", "BS1L15");
    const std::string other = bitstream("two.sof", "BS1L15");
    EXPECT_EQ(add(path), 0);
    EXPECT_EQ(add(other), 1);
    m_model->remove_bitstream("Bitstream_1");
    EXPECT_EQ(add(path), 1);
    EXPECT_EQ(rows(*m_model), "Bitstream_2||||\n  two.sof|BS1L15|Off|Off|\n"
                              "Bitstream_1||||\n  one.sof|BS1L15|Off|Off|\n");
}

TEST_F(INPUT_ADD_REMOVE, a_device_for_a_single_bitstream_takes_no_second_one)
{
    const std::string one = bitstream("one.sof", "FD7X120");
    const std::string two = bitstream("two.sof", "FD7X120");
    EXPECT_EQ(add(one), 0);
    messages();
    EXPECT_EQ(add(two), -1);
    EXPECT_EQ(messages(), "20652 Failed to add " + two +
                              ". The target device FD7X120 does not support programming files with multiple "
                              "bitstreams.\n");
    EXPECT_EQ(m_model->rowCount(), 1);
    EXPECT_INTERNAL_ERROR(m_model->check_support_multiple_images(nullptr), "device");
    EXPECT_INTERNAL_ERROR(m_model->update_cache(FIO_PATH(one), nullptr), "device");
}

TEST_F(INPUT_ADD_REMOVE, another_family_is_refused_only_where_a_bitstream_takes_one_file)
{
    const std::string secure = bitstream("secure.sof", "FD7X280");
    const std::string basalt = bitstream("basalt.sof", "BS1L15");
    EXPECT_EQ(add(secure), 0);
    EXPECT_EQ(m_cache->max_files_per_bitstream, 1u);
    messages();
    EXPECT_EQ(add(basalt), -1);
    EXPECT_EQ(messages(),
              "20234 Failed to add " + basalt +
                  " that contains bitstream of BS1L15 device. The existing SOF contains bitstream of FD7X280 "
                  "device and it does not support cross family cascaded bitstream.\n");
    m_cache->max_files_per_bitstream = 2;
    EXPECT_EQ(add(basalt), 1);
    EXPECT_EQ(m_cache->device_name, "FD7X280") << "the first file speaks for the session";
}

TEST_F(INPUT_ADD_REMOVE, a_dual_image_session_takes_files_of_its_scheme_alone)
{
    const std::string dual = bitstream("dual.sof", "GY1M16", "DUAL_COMPRESSED_IMAGES");
    const std::string single = bitstream("single.sof", "GY1M16", "SINGLE_IMAGE");
    EXPECT_EQ(add(dual), 0);
    EXPECT_EQ(m_cache->max_bitstreams, 2u);
    EXPECT_EQ(m_cache->max_files_per_bitstream, 1u);
    EXPECT_EQ(m_cache->config_mode, PGMIO_CONFIG_SCHEME_DUAL_COMPRESSED_IMAGES);
    EXPECT_EQ(rows(*m_model), "Bitstream_1||||\n  dual.sof|GY1M16|On|Off|\n") << "compressed from the start";
    messages();
    EXPECT_EQ(add(single), -1);
    EXPECT_EQ(messages(),
              "19828 The compiled configuration mode Single Internal Image does not support multiple "
              "bitstreams\n");
}

TEST_F(INPUT_ADD_REMOVE, an_onchip_session_of_another_scheme_takes_one_bitstream)
{
    const std::string path = bitstream("single.sof", "GY1M16", "SINGLE_IMAGE");
    EXPECT_EQ(add(path), 0);
    EXPECT_EQ(m_cache->max_bitstreams, 1u);
    messages();
    EXPECT_TRUE(m_model->check_config_mode(FIO_PATH(path))) << "the schemes count where two images may be";
    EXPECT_EQ(messages(), "");
    EXPECT_EQ(rows(*m_model), "Bitstream_1||||\n  single.sof|GY1M16|Off|Off|\n");
}

TEST_F(INPUT_ADD_REMOVE, an_onchip_file_with_a_damaged_scheme_is_refused_like_any_other)
{
    const std::string path = bitstream("one.sof", "GY1M16", "SINGLE_IMAGE");
    const std::string other = bitstream("other.sof", "GY1M16", "DUAL_COMPRESSED_IMAGES");
    std::string bytes = read_text_file(path);
    const std::string good = read_text_file(other);
    ASSERT_EQ(bytes.size(), good.size());
    // Behind the header, the first byte in which the two files differ is that of the scheme.
    std::size_t place = bytes.find("GY1M16") + 6;
    while (place < bytes.size() && bytes[place] == good[place]) {
        ++place;
    }
    ASSERT_LT(place, bytes.size());
    bytes[place] = static_cast<char>(bytes[place] ^ 0x40);
    write_file(path, bytes);
    EXPECT_EQ(add(path), -1);
    const std::string told = messages();
    EXPECT_TRUE(told.starts_with("20653 one.sof is damaged: ")) << told;
    EXPECT_EQ(m_model->rowCount(), 0);
}

TEST_F(INPUT_ADD_REMOVE, a_signing_session_has_its_limits_and_asks_each_file)
{
    set(*m_vek, VEK_CMD_OPT_SETTINGS, {{VEK_CMD_PARAM_SETTINGS_MODE, "ASX4"}});
    const std::string one = bitstream("one.sof", "FD7X280", "", true);
    const std::string two = bitstream("two.sof", "FD7X280");
    EXPECT_EQ(add(one), 0);
    EXPECT_EQ(add(two), 1);
    EXPECT_EQ(m_cache->config_mode, PGMIO_CONFIG_SCHEME_AS_X4);
    EXPECT_EQ(m_cache->max_bitstreams, 8u);
    EXPECT_TRUE(m_cache->shares_signing_properties);
    EXPECT_TRUE(m_cache->partition_rule_flag_a);
    EXPECT_TRUE(m_cache->partition_rule_flag_b);
    EXPECT_TRUE(m_cache->sof_encryption_by_path.at(one));
    EXPECT_FALSE(m_cache->sof_encryption_by_path.at(two));
}

TEST_F(INPUT_ADD_REMOVE, files_are_chained_in_a_bitstream_and_the_last_takes_it_along)
{
    add_output(*m_vek, "RBF", "top", ".");
    const std::string one = bitstream("one.sof", "DL2E20");
    const std::string two = bitstream("two.sof", "DL2E35");
    EXPECT_EQ(add(one), 0);
    EXPECT_TRUE(m_model->add_sof_file(FIO_PATH(two), "Bitstream_1"));
    EXPECT_FALSE(m_model->add_sof_file(FIO_PATH(two), "Bitstream_2"));
    EXPECT_EQ(rows(*m_model), "Bitstream_1||||\n  one.sof|DL2E20|Off|Off|\n  two.sof|DL2E20|Off|Off|\n");
    EXPECT_TRUE(m_model->add_sof_file(FIO_PATH(two), "Bitstream_1")) << "again: no row";
    EXPECT_EQ(m_model->rowCount(m_model->index(0, 0)), 2);

    const QPersistentModelIndex first = m_model->index(0, 0, m_model->index(0, 0));
    const QPersistentModelIndex second = m_model->index(1, 0, m_model->index(0, 0));
    const QSignalSpy changed(m_model.get(), SIGNAL(input_files_changed()));
    QSignalSpy device(m_model.get(), SIGNAL(device_changed(const QString&)));
    m_model->remove_sof_file(one, "Bitstream_1");
    EXPECT_FALSE(first.isValid());
    EXPECT_EQ(second.row(), 0) << "no index may lead to the element that is gone, or to another";
    EXPECT_EQ(changed.count(), 1);
    EXPECT_EQ(device.count(), 0);
    m_model->remove_sof_file(two, "Bitstream_1");
    EXPECT_FALSE(second.isValid());
    EXPECT_EQ(m_model->rowCount(), 0);
    EXPECT_EQ(changed.count(), 2);
    EXPECT_EQ(device.count(), 1);
    EXPECT_TRUE(VEK_FILE_ASSISTANT::get_output_file_elements(m_vek.get()).at(0)->bitstream_id.empty());
}

TEST_F(INPUT_ADD_REMOVE, removing_the_last_bitstream_resets_the_device_though_raw_files_remain)
{
    set(*m_vek, VEK_CMD_OPT_SETTINGS, {{VEK_CMD_PARAM_SETTINGS_MODE, "ASX4"}});
    EXPECT_EQ(add(bitstream("one.sof", "FD7X280", "", true)), 0);
    EXPECT_EQ(m_cache->config_mode, PGMIO_CONFIG_SCHEME_AS_X4);
    m_model->add_raw_data(FIO_PATH("/in/data.hex"));
    assign("P1", VEK_CMD_PARAM_ASSIGNMENT_BITSTREAM_ID, "Bitstream_1");
    QSignalSpy device(m_model.get(), SIGNAL(device_changed(const QString&)));
    m_model->remove_bitstream("Bitstream_1");
    ASSERT_EQ(device.count(), 1);
    EXPECT_EQ(device.at(0).at(0).toString(), QString());
    EXPECT_EQ(m_cache->family, DEV_FAMILY_NONE);
    EXPECT_EQ(m_cache->device, DEV_DEVICE_NONE);
    EXPECT_EQ(m_cache->device_name, "");
    EXPECT_EQ(m_cache->config_mode, PGMIO_CONFIG_SCHEME_ILLEGAL);
    EXPECT_EQ(m_cache->max_files_per_bitstream, 1u) << "limits stay";
    EXPECT_EQ(m_cache->max_bitstreams, 8u);
    EXPECT_TRUE(m_cache->shares_signing_properties);
    EXPECT_EQ(m_cache->sof_encryption_by_path.size(), 1u);
    EXPECT_EQ(VEK_FILE_ASSISTANT::get_assignment_element(m_vek.get(), "P1"), nullptr);
    EXPECT_NE(VEK_FILE_ASSISTANT::get_partition_element(m_vek.get(), "P1"), nullptr) << "partitions stay";
    EXPECT_EQ(rows(*m_model), "data.hex||||\n");
}

TEST_F(INPUT_ADD_REMOVE, a_bitstream_without_files_goes_in_silence)
{
    set(*m_vek, VEK_CMD_OPT_BITSTREAM, {{VEK_CMD_PARAM_BITSTREAM_ID, "Bitstream_1"}});
    m_cache->family = DEV_FAMILY_CALCITE;
    const QSignalSpy changed(m_model.get(), SIGNAL(input_files_changed()));
    m_model->remove_bitstream("Bitstream_1");
    EXPECT_EQ(m_model->rowCount(), 0);
    EXPECT_EQ(changed.count(), 0);
    EXPECT_EQ(m_cache->family, DEV_FAMILY_CALCITE);
}

TEST_F(INPUT_ADD_REMOVE, what_is_removed_must_be_there_and_must_go)
{
    EXPECT_EQ(add(bitstream("one.sof", "BS1L15")), 0);
    EXPECT_INTERNAL_ERROR(m_model->remove_sof_file("/other.sof", "Bitstream_1"), "it != path_elements.end()");
    VEK_FILE_ASSISTANT_LOG log;
    log.refuse = [](const std::string& line) { return line.starts_with("remove bitstream"); };
    EXPECT_INTERNAL_ERROR(m_model->remove_bitstream("Bitstream_1"), "success");
}

TEST_F(INPUT_ADD_REMOVE, raw_files_have_the_type_of_their_extension_and_no_check)
{
    for (const std::string name : {"a.hex", "b.rbf", "c.bin", "d.puf", "e.wkey", "F.HEX", "a.hex"}) {
        m_model->add_raw_data(FIO_PATH("/in/" + name));
    }
    std::string types;
    for (const auto* const element : VEK_FILE_ASSISTANT::get_raw_file_elements(m_vek.get())) {
        types += element->id + " " + element->type + " " + element->text + "\n";
    }
    EXPECT_EQ(types, "Raw_File_1 HEX /in/a.hex\nRaw_File_2 RBF /in/b.rbf\nRaw_File_3 RBF /in/c.bin\n"
                     "Raw_File_4 PUF /in/d.puf\nRaw_File_5 WKEY /in/e.wkey\nRaw_File_6 HEX /in/F.HEX\n"
                     "Raw_File_7 HEX /in/a.hex\n");
    EXPECT_EQ(m_cache->device_name, "");
    m_model->remove_raw_data("Raw_File_2");
    m_model->add_raw_data(FIO_PATH("/in/g.bin"));
    EXPECT_EQ(VEK_FILE_ASSISTANT::get_raw_file_elements(m_vek.get()).back()->id, "Raw_File_2");
    for (const std::string name : {"x.txt", "x", "x.sof", "hex"}) {
        EXPECT_FALSE(VEK_MODEL_INPUT_FILES::is_raw_data_path(name));
        EXPECT_INTERNAL_ERROR(m_model->add_raw_data(FIO_PATH(name)), "Unsupported raw file type");
    }
}

TEST_F(INPUT_ADD_REMOVE, a_raw_file_takes_all_its_assignments_along)
{
    m_model->add_raw_data(FIO_PATH("/in/a.hex"));
    assign("P1", VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID, "Raw_File_1");
    assign("P2", VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID, "Raw_File_1");
    const QSignalSpy changed(m_model.get(), SIGNAL(input_files_changed()));
    m_model->remove_raw_data("Raw_File_1");
    EXPECT_EQ(VEK_FILE_ASSISTANT::get_assignment_element(m_vek.get(), "P1"), nullptr);
    EXPECT_EQ(VEK_FILE_ASSISTANT::get_assignment_element(m_vek.get(), "P2"), nullptr);
    EXPECT_EQ(changed.count(), 1);
}

TEST_F(INPUT_ADD_REMOVE, properties_of_a_raw_file_are_stored_under_its_keys)
{
    m_model->add_raw_data(FIO_PATH(m_directory / "a.hex"));
    QSignalSpy changed(m_model.get(), SIGNAL(dataChanged(const QModelIndex&, const QModelIndex&)));
    VEK_FILE_ASSISTANT_LOG log;
    const PARAMS params = {{VEK_CMD_PARAM_RAW_FILE_BITSWAP, "1"}, {VEK_CMD_PARAM_RAW_FILE_ID, "other"}};
    m_model->update_raw_data_properties("Raw_File_2", FIO_PATH(m_directory / "a.hex"), params);
    EXPECT_EQ(log.take(), "");
    EXPECT_EQ(changed.count(), 0);
    m_model->update_raw_data_properties("Raw_File_1", FIO_PATH(m_directory / "a.hex"), params);
    EXPECT_EQ(log.take(), std::string("set raw_file ") +
                              PGM_COMMON_XML_VEK_CMD_PARAM.at(VEK_CMD_PARAM_RAW_FILE_ID) + "=Raw_File_1 " +
                              PGM_COMMON_XML_VEK_CMD_PARAM.at(VEK_CMD_PARAM_RAW_FILE_RAW_FILE) + "=a.hex " +
                              PGM_COMMON_XML_VEK_CMD_PARAM.at(VEK_CMD_PARAM_RAW_FILE_BITSWAP) + "=1\n");
    ASSERT_EQ(changed.count(), 1);
    EXPECT_EQ(changed.at(0).at(0).toModelIndex(), m_model->index(0, 0));
    log.refuse = [](const std::string&) { return true; };
    EXPECT_INTERNAL_ERROR(m_model->update_raw_data_properties("Raw_File_1", FIO_PATH("/a.hex"), params),
                          "success");
}

TEST_F(INPUT_ADD_REMOVE, the_first_signed_file_hands_its_signing_to_a_new_one)
{
    signing_session();
    for (const std::string number : {"1", "2", "3"}) {
        add_bitstream(*m_vek, "Bitstream_" + number, "/in/" + number + ".sof");
        set_path_value("Bitstream_" + number, "/in/" + number + ".sof",
                       VEK_CMD_PARAM_BITSTREAM_PATH_FW_SOURCE, "fw" + number);
    }
    PARAMS params;
    m_model->inherit_bitstream_properties("Bitstream_3", FIO_PATH("/in/4.sof"), params);
    const PARAMS unsigned_params = {{VEK_CMD_PARAM_BITSTREAM_PATH_FW_SOURCE, "fw1"},
                                    {VEK_CMD_PARAM_BITSTREAM_PATH_FW_SOURCE, "fw2"},
                                    {VEK_CMD_PARAM_BITSTREAM_PATH_FW_SOURCE, "fw3"}};
    EXPECT_EQ(params, unsigned_params);
    EXPECT_EQ(messages(), "");

    set_path_value("Bitstream_2", "/in/2.sof", VEK_CMD_PARAM_BITSTREAM_PATH_SIGNING, "ON");
    set_path_value("Bitstream_2", "/in/2.sof", VEK_CMD_PARAM_BITSTREAM_PATH_SIGNING_PEM_FILE, "/k.pem");
    set_path_value("Bitstream_2", "/in/2.sof", VEK_CMD_PARAM_BITSTREAM_PATH_FINALIZE_ENCRYPTION, "1");
    set_path_value("Bitstream_2", "/in/2.sof", VEK_CMD_PARAM_BITSTREAM_PATH_AEK_FILE, "/k.aek");
    params.clear();
    m_model->inherit_bitstream_properties("Bitstream_3", FIO_PATH("/in/4.sof"), params);
    const PARAMS signed_params = {{VEK_CMD_PARAM_BITSTREAM_PATH_FW_SOURCE, "fw1"},
                                  {VEK_CMD_PARAM_BITSTREAM_PATH_FW_SOURCE, "fw2"},
                                  {VEK_CMD_PARAM_BITSTREAM_PATH_SIGNING, "ON"},
                                  {VEK_CMD_PARAM_BITSTREAM_PATH_SIGNING_PEM_FILE, "/k.pem"},
                                  {VEK_CMD_PARAM_BITSTREAM_PATH_FINALIZE_ENCRYPTION, "1"},
                                  {VEK_CMD_PARAM_BITSTREAM_PATH_AEK_FILE, "/k.aek"}};
    EXPECT_EQ(params, signed_params);
    EXPECT_EQ(messages(), "20233 Automatically inherit signing settings from /in/2.sof to /in/4.sof.\n");

    params.clear();
    m_model->inherit_bitstream_properties("Bitstream_2", FIO_PATH("/in/2.sof"), params);
    EXPECT_EQ(params.back(), PARAMS::value_type(VEK_CMD_PARAM_BITSTREAM_PATH_FW_SOURCE, "fw3"))
        << "the file itself is no source";
    params.clear();
    m_model->inherit_bitstream_properties("Bitstream_9", FIO_PATH("/in/4.sof"), params);
    m_cache->shares_signing_properties = false;
    m_model->inherit_bitstream_properties("Bitstream_3", FIO_PATH("/in/4.sof"), params);
    EXPECT_TRUE(params.empty());
}

TEST_F(INPUT_ADD_REMOVE, a_partial_bitstream_gives_its_shared_properties_and_takes_none)
{
    signing_session();
    add_bitstream(*m_vek, "Bitstream_1", "/in/1.pmsf");
    add_bitstream(*m_vek, "Bitstream_2", "/in/2.sof");
    add_bitstream(*m_vek, "Bitstream_3", "/in/3.pmsf");
    set_path_value("Bitstream_1", "/in/1.pmsf", VEK_CMD_PARAM_BITSTREAM_PATH_SIGNING, "ON");
    PARAMS params;
    m_model->inherit_bitstream_properties("Bitstream_3", FIO_PATH("/in/4.sof"), params);
    EXPECT_EQ(params.size(), 1u) << "the firmware of the one SOF file";
    m_model->populate_bitstream_properties("Bitstream_1", FIO_PATH("/in/1.pmsf"),
                                           {{VEK_CMD_PARAM_BITSTREAM_PATH_SIGNING, "ON"}});
    EXPECT_EQ(messages(),
              "20232 Automatically pupolute latest signing settings from /in/1.pmsf to /in/2.sof.\n");
    EXPECT_EQ(VEK_FILE_ASSISTANT::get_path_element(m_vek.get(), "Bitstream_2", "/in/2.sof")->signing, "ON");
    EXPECT_EQ(VEK_FILE_ASSISTANT::get_path_element(m_vek.get(), "Bitstream_3", "/in/3.pmsf")->signing, "OFF");
}

TEST_F(INPUT_ADD_REMOVE, accepted_properties_go_to_the_file_and_what_is_shared_to_all_others)
{
    signing_session();
    for (const std::string number : {"1", "2", "3"}) {
        add_bitstream(*m_vek, "Bitstream_" + number, "/in/" + number + ".sof");
    }
    QSignalSpy changed(m_model.get(), SIGNAL(dataChanged(const QModelIndex&, const QModelIndex&)));
    VEK_FILE_ASSISTANT_LOG log;
    const PARAMS params = {{VEK_CMD_PARAM_BITSTREAM_PATH_AEK_FILE, "/k.aek"},
                           {VEK_CMD_PARAM_BITSTREAM_ID, "other"},
                           {VEK_CMD_PARAM_BITSTREAM_PATH_COMPRESSION, "1"},
                           {VEK_CMD_PARAM_BITSTREAM_PATH_SIGNING, "ON"}};
    m_model->update_bitstream_properties("Bitstream_9", FIO_PATH("/in/2.sof"), params);
    EXPECT_EQ(log.take(), "");
    m_model->update_bitstream_properties("Bitstream_2", FIO_PATH("/in/2.sof"), params);
    const auto name = [](PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param) {
        return " " + std::string(PGM_COMMON_XML_VEK_CMD_PARAM.at(param)) + "=";
    };
    const auto head = [&name](const std::string& number) {
        return "set bitstream" + name(VEK_CMD_PARAM_BITSTREAM_ID) + "Bitstream_" + number +
               name(VEK_CMD_PARAM_BITSTREAM_PATH) + "/in/" + number + ".sof" +
               name(VEK_CMD_PARAM_BITSTREAM_PATH_AEK_FILE) + "/k.aek";
    };
    const std::string signing = name(VEK_CMD_PARAM_BITSTREAM_PATH_SIGNING) + "ON\n";
    EXPECT_EQ(log.take(), head("2") + name(VEK_CMD_PARAM_BITSTREAM_PATH_COMPRESSION) + "1" + signing +
                              head("1") + signing + head("3") + signing);
    ASSERT_EQ(changed.count(), 1) << "rows of other files show nothing of it";
    EXPECT_EQ(changed.at(0).at(0).toModelIndex(), m_model->index(0, 0, m_model->index(1, 0)));
    EXPECT_EQ(messages(),
              "20232 Automatically pupolute latest signing settings from /in/2.sof to /in/1.sof.\n"
              "20232 Automatically pupolute latest signing settings from /in/2.sof to /in/3.sof.\n");
    EXPECT_INTERNAL_ERROR(m_model->update_bitstream_properties("Bitstream_2", FIO_PATH("/x.sof"), params),
                          "it != path_elements.end()");
    log.refuse = [](const std::string& line) { return line.find("Bitstream_3") != std::string::npos; };
    EXPECT_INTERNAL_ERROR(m_model->update_bitstream_properties("Bitstream_2", FIO_PATH("/in/2.sof"), params),
                          "success");
}
