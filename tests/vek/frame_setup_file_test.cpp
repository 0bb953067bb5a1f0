#include "cfg.h"
#include "gfpdb_mgr.h"
#include "missing_files_box.h"
#include "mok_recent_files.h"
#include "vek_frame_fixture.h"

#include <QAbstractItemView>

#include <algorithm>
#include <sys/stat.h>

namespace
{

const std::vector<std::pair<PGM_COMMON_XML_VEK_CMD_PARAM_ENUM, const char*>> PATH_ATTRIBUTES{
    {VEK_CMD_PARAM_BITSTREAM_PATH_HPS_PATH, "hps_path"},
    {VEK_CMD_PARAM_BITSTREAM_PATH_SIGNING_PEM_FILE, "signing_pem_file"},
    {VEK_CMD_PARAM_BITSTREAM_PATH_SKC_FILE, "skc_file"},
    {VEK_CMD_PARAM_BITSTREAM_PATH_AEK_FILE, "aek_file"},
    {VEK_CMD_PARAM_BITSTREAM_PATH_FW_SOURCE, "fw_source"},
    {VEK_CMD_PARAM_BITSTREAM_PATH_EKP_FILE, "ekp_file"},
    {VEK_CMD_PARAM_BITSTREAM_PATH_KEY_FILE1, "key_file1"},
    {VEK_CMD_PARAM_BITSTREAM_PATH_KEY_FILE2, "key_file2"},
};

class VEK_FRAME_SETUP_FILE : public VEK_FRAME_FIXTURE
{
protected:
    static constexpr const char* BASE = "/base/work";

    /// A document with a path in each place that can have one, below `directory`.
    static void fill(PGM_COMMON_XML_VEK_VEK& document, const std::string& directory)
    {
        set(document, VEK_CMD_OPT_SETTINGS, {{VEK_CMD_PARAM_SETTINGS_MODE, "ASX4"}});
        add_output(document, "RPD", "top", directory + "out");
        add_output(document, "POF", "top", directory + "out");
        add_bitstream(document, "Bitstream_1", directory + "top.sof");
        VEK_FILE_ASSISTANT::PARAMS params{{VEK_CMD_PARAM_BITSTREAM_ID, "Bitstream_1"},
                                          {VEK_CMD_PARAM_BITSTREAM_PATH, directory + "top.sof"}};
        for (const auto& [param, name] : PATH_ATTRIBUTES) {
            params.emplace_back(param, directory + name);
        }
        set(document, VEK_CMD_OPT_BITSTREAM, params);
        add_bitstream(document, "Bitstream_2", directory + "second.sof");
        set(document, VEK_CMD_OPT_RAW_FILE,
            {{VEK_CMD_PARAM_RAW_FILE_ID, "Raw_File_1"},
             {VEK_CMD_PARAM_RAW_FILE_RAW_FILE, directory + "data.hex"}});
        set(document, VEK_CMD_OPT_FLASH_DEVICE,
            {{VEK_CMD_PARAM_FLASH_DEVICE_ID, "Flash_Device_1"},
             {VEK_CMD_PARAM_FLASH_DEVICE_TYPE, "W25Q128JV"},
             {VEK_CMD_PARAM_FLASH_DEVICE_UFM_SOURCE_FILE, directory + "ufm.hex"}});
    }

    /// Every path of the document, in the order in which they are converted.
    static std::vector<std::string> paths_of(const PGM_COMMON_XML_VEK_VEK& document)
    {
        std::vector<std::string> paths;
        for (const auto* const output_file : VEK_FILE_ASSISTANT::get_output_file_elements(&document)) {
            paths.push_back(output_file->directory);
        }
        for (const std::string& id : VEK_FILE_ASSISTANT::get_bitstream_ids(&document)) {
            for (const auto* const path : VEK_FILE_ASSISTANT::get_path_elements(&document, id)) {
                paths.push_back(path->text);
                for (const auto& [param, name] : PATH_ATTRIBUTES) {
                    paths.push_back(path->read_attribute_string(name));
                }
            }
        }
        for (const auto* const raw_file : VEK_FILE_ASSISTANT::get_raw_file_elements(&document)) {
            paths.push_back(raw_file->text);
        }
        for (const auto* const flash_device : VEK_FILE_ASSISTANT::get_flash_device_elements(&document)) {
            paths.push_back(flash_device->ufm_source_file);
        }
        return paths;
    }

    /// What paths_of gives for `fill`.
    static std::vector<std::string> paths_below(const std::string& directory)
    {
        std::vector<std::string> paths{directory + "out", directory + "out", directory + "top.sof"};
        for (const auto& [param, name] : PATH_ATTRIBUTES) {
            paths.push_back(directory + name);
        }
        paths.push_back(directory + "second.sof");
        paths.insert(paths.end(), PATH_ATTRIBUTES.size(), std::string());
        paths.push_back(directory + "data.hex");
        paths.push_back(directory + "ufm.hex");
        return paths;
    }

    static PGM_COMMON_XML_VEK_VEK& document(VEK_FRAME_WND& frame)
    {
        return *VEK_FRAME_WND_PROBE::document(frame);
    }

    static void let_check_say(bool can_save, bool can_generate, const std::string& message)
    {
        vek_util_double().check = [=](const PGM_COMMON_XML_VEK_VEK*, bool& save, bool& generate,
                                      std::string& text, bool&, bool include_files) {
            EXPECT_TRUE(include_files);
            save = can_save;
            generate = can_generate;
            text = message;
            return true;
        };
    }

    /// Makes saving answer `result`, and keeps what it was given.
    void let_save_say(bool result)
    {
        vek_util_double().save = [this, result](const PGM_COMMON_XML_VEK_VEK* saved,
                                                const std::string& path) {
            m_saved_paths = paths_of(*saved);
            m_saved_to.push_back(path);
            return result;
        };
    }

    static QString setup_filter()
    {
        return QString::fromStdString(fio_get_file_type_filter(FIO_VEK_SETUP_FILE, false));
    }

    std::vector<std::string> m_saved_paths;
    std::vector<std::string> m_saved_to;

    const MISSING_FILES_BOX_CLOSER m_missing_files_box_closer;
};

} // namespace

TEST_F(VEK_FRAME_SETUP_FILE, opening_makes_every_path_absolute)
{
    set_working_directory(BASE);
    const auto frame = make_frame();
    open_document(*frame, DEV_FAMILY_ZIRCON, [](PGM_COMMON_XML_VEK_VEK& opened) { fill(opened, ""); });
    std::vector<std::string> expected = paths_below(std::string(BASE) + "/");
    // The edit of the first tab shows the directory as people see it and hands it on as shown.
    expected[0] = expected[1] = "out";
    EXPECT_EQ(paths_of(document(*frame)), expected);
}

TEST_F(VEK_FRAME_SETUP_FILE, an_opened_setup_shows_all_its_tabs)
{
    const auto frame = make_frame();
    tabs(*frame)->setTabEnabled(1, true);
    tabs(*frame)->setCurrentIndex(1);
    open_document(*frame, DEV_FAMILY_BASALT, [](PGM_COMMON_XML_VEK_VEK& opened) { fill(opened, "/in/"); });
    EXPECT_EQ(tabs(*frame)->currentIndex(), 0);
    EXPECT_TRUE(tabs(*frame)->isTabEnabled(1));
    EXPECT_TRUE(tabs(*frame)->isTabEnabled(2));
    EXPECT_EQ(frame->windowTitle(), QStringLiteral("setup.vek[*] - Imagewright"));
    EXPECT_EQ(VEK_FRAME_WND_PROBE::cache(*frame).output_name, "top");
    EXPECT_EQ(VEK_FRAME_WND_PROBE::cache(*frame).output_directory, "/in/out");
}

TEST_F(VEK_FRAME_SETUP_FILE, a_setup_of_the_family_and_mode_in_force_leads_to_the_first_tab_too)
{
    const auto frame = make_frame();
    choose_mode(*frame, PGMIO_CONFIG_SCHEME_AS_X4);
    tabs(*frame)->setTabEnabled(2, true);
    tabs(*frame)->setCurrentIndex(2);
    open_document(*frame, DEV_FAMILY_ZIRCON, [](PGM_COMMON_XML_VEK_VEK& opened) { fill(opened, "/in/"); });
    EXPECT_EQ(tabs(*frame)->currentIndex(), 0);
}

TEST_F(VEK_FRAME_SETUP_FILE, the_tabs_take_an_opened_setup_from_left_to_right)
{
    const auto frame = make_frame();
    QStringList refreshed;
    for (const char* const name : {"m_file_type_tree", "m_input_file_tree", "m_config_device_tree"}) {
        const auto* const tree = frame->findChild<QAbstractItemView*>(QLatin1String(name));
        ASSERT_NE(tree, nullptr) << name;
        QObject::connect(tree->model(), &QAbstractItemModel::modelReset, frame.get(),
                         [&refreshed, name] { refreshed << QLatin1String(name); });
    }
    open_document(*frame, DEV_FAMILY_ZIRCON, [&](PGM_COMMON_XML_VEK_VEK& opened) {
        fill(opened, "/in/");
        set(opened, VEK_CMD_OPT_SETTINGS, {{VEK_CMD_PARAM_SETTINGS_MODE, "ASX1"}});
        refreshed.clear();
    });
    // Ticks that come back make the other tabs look again; what counts is when each was last refreshed.
    std::reverse(refreshed.begin(), refreshed.end());
    refreshed.removeDuplicates();
    EXPECT_EQ(refreshed.join(' ').toStdString(), "m_config_device_tree m_input_file_tree m_file_type_tree");
}

TEST_F(VEK_FRAME_SETUP_FILE, a_setup_of_another_family_switches_both_combos_before_it_is_in_force)
{
    const auto frame = make_frame();
    std::vector<std::size_t> outputs_while_switching;
    QObject::connect(mode_combo(*frame), QOverload<int>::of(&QComboBox::currentIndexChanged), frame.get(),
                     [&](int) {
                         outputs_while_switching.push_back(
                             VEK_FILE_ASSISTANT::get_output_file_elements(&document(*frame)).size());
                     });
    open_document(*frame, DEV_FAMILY_BASALT, [](PGM_COMMON_XML_VEK_VEK& opened) { fill(opened, "/in/"); });
    EXPECT_EQ(family_combo(*frame)->currentData().toInt(), static_cast<int>(DEV_FAMILY_BASALT));
    EXPECT_EQ(mode_combo(*frame)->currentData().toInt(), static_cast<int>(PGMIO_CONFIG_SCHEME_AS_X4));
    EXPECT_EQ(outputs_while_switching, (std::vector<std::size_t>{0, 0, 0}))
        << "clearing, first mode, mode of the file";
    EXPECT_EQ(VEK_FILE_ASSISTANT::get_output_file_elements(&document(*frame)).size(), 2u);
    EXPECT_EQ(mode_of(document(*frame)), "ASX4");
}

TEST_F(VEK_FRAME_SETUP_FILE, a_setup_without_a_mode_leaves_the_mode_combo_without_a_choice)
{
    const auto frame = make_frame();
    open_document(*frame, DEV_FAMILY_NONE,
                  [](PGM_COMMON_XML_VEK_VEK& opened) { add_output(opened, "RBF", "top", "/out"); });
    EXPECT_EQ(family_combo(*frame)->currentData().toInt(), 48);
    EXPECT_EQ(mode_combo(*frame)->currentIndex(), -1);
    EXPECT_EQ(VEK_FILE_ASSISTANT::get_output_file_elements(&document(*frame)).size(), 1u);
}

TEST_F(VEK_FRAME_SETUP_FILE, a_file_that_cannot_be_parsed_changes_nothing)
{
    const auto frame = make_frame();
    choose_family(*frame, DEV_FAMILY_CALCITE);
    const auto before = VEK_FRAME_WND_PROBE::document(*frame);
    vek_util_double().parse = [](PGM_COMMON_XML_VEK_VEK**, const std::string& path) {
        EXPECT_EQ(path, "/in/broken.vek");
        return false;
    };
    EXPECT_FALSE(frame->open_file(QStringLiteral("/in/broken.vek")));
    EXPECT_EQ(VEK_FRAME_WND_PROBE::document(*frame), before);
    EXPECT_EQ(family_combo(*frame)->currentText(), QStringLiteral("Calcite"));
    EXPECT_EQ(frame->get_current_file(), QString());
}

TEST_F(VEK_FRAME_SETUP_FILE, the_flash_database_directory_of_the_file_comes_into_force_and_is_stored)
{
    ASSERT_EQ(::mkdir((m_directory / "flash").c_str(), 0700), 0);
    const auto frame = make_frame();
    open_document(*frame, DEV_FAMILY_ZIRCON, [this](PGM_COMMON_XML_VEK_VEK& opened) {
        set(opened, VEK_CMD_OPT_SETTINGS, {{VEK_CMD_PARAM_SETTINGS_CUSTOM_DB_DIR, m_directory / "flash"}});
    });
    EXPECT_EQ(GFPDB_MGR::get_db_custom_dir(), m_directory / "flash");
    EXPECT_EQ(GFPDB_MGR::get_custom_dir_from_ini(), m_directory / "flash");
    open_document(*frame, DEV_FAMILY_ZIRCON, [](PGM_COMMON_XML_VEK_VEK& opened) {
        set(opened, VEK_CMD_OPT_SETTINGS, {{VEK_CMD_PARAM_SETTINGS_CUSTOM_DB_DIR, ""}});
    });
    EXPECT_EQ(GFPDB_MGR::get_db_custom_dir(), m_directory / "flash") << "an empty one is no directory";
}

TEST_F(VEK_FRAME_SETUP_FILE, saving_writes_relative_paths_and_keeps_absolute_ones)
{
    set_working_directory(BASE);
    const auto frame = make_frame();
    fill(document(*frame), std::string(BASE) + "/");
    let_check_say(true, false, "");
    let_save_say(true);
    EXPECT_TRUE(frame->save_file(QStringLiteral("/out/setup.vek")));
    EXPECT_EQ(m_saved_to, std::vector<std::string>{"/out/setup.vek"});
    EXPECT_EQ(m_saved_paths, paths_below(""));
    EXPECT_EQ(paths_of(document(*frame)), paths_below(std::string(BASE) + "/"));
    EXPECT_EQ(frame->get_current_file(), QStringLiteral("/out/setup.vek"));
}

TEST_F(VEK_FRAME_SETUP_FILE, without_a_working_directory_paths_stay_as_they_are_both_ways)
{
    const auto frame = make_frame();
    open_document(*frame, DEV_FAMILY_ZIRCON, [](PGM_COMMON_XML_VEK_VEK& opened) { fill(opened, "in/"); });
    EXPECT_EQ(paths_of(document(*frame)), paths_below("in/"));
    let_check_say(true, false, "");
    let_save_say(true);
    frame->save_file(QStringLiteral("/out/setup.vek"));
    EXPECT_EQ(m_saved_paths, paths_below("in/"));
    EXPECT_EQ(paths_of(document(*frame)), paths_below("in/"));
}

TEST_F(VEK_FRAME_SETUP_FILE, an_empty_attribute_stays_empty_where_directory_and_text_are_converted)
{
    set_working_directory(BASE);
    const auto frame = make_frame();
    vek_util_double().parse = [](PGM_COMMON_XML_VEK_VEK** opened, const std::string&) {
        *opened = new PGM_COMMON_XML_VEK_VEK(PGM_COMMON_XML_ENUM_VEK);
        set(**opened, VEK_CMD_OPT_RAW_FILE,
            {{VEK_CMD_PARAM_RAW_FILE_ID, "Raw_File_1"}, {VEK_CMD_PARAM_RAW_FILE_RAW_FILE, ""}});
        add_bitstream(**opened, "Bitstream_1", "top.sof");
        return true;
    };
    ASSERT_TRUE(frame->open_file(QStringLiteral("setup.vek")));
    const std::vector<std::string> paths = paths_of(document(*frame));
    std::vector<std::string> expected{std::string(BASE) + "/top.sof"};
    expected.insert(expected.end(), PATH_ATTRIBUTES.size(), std::string());
    expected.push_back(paths.at(expected.size()));
    EXPECT_EQ(expected.back().rfind(BASE, 0), 0u) << expected.back();
    EXPECT_EQ(paths, expected);
}

TEST_F(VEK_FRAME_SETUP_FILE, an_empty_attribute_stays_empty_when_a_setup_is_saved)
{
    set_working_directory(BASE);
    const auto frame = make_frame();
    fill(document(*frame), std::string(BASE) + "/");
    set(document(*frame), VEK_CMD_OPT_FLASH_DEVICE,
        {{VEK_CMD_PARAM_FLASH_DEVICE_ID, "Flash_Device_1"},
         {VEK_CMD_PARAM_FLASH_DEVICE_UFM_SOURCE_FILE, ""}});
    let_check_say(true, true, "");
    let_save_say(true);
    frame->save_file(QStringLiteral("/out/setup.vek"));
    std::vector<std::string> expected = paths_below("");
    expected.back().clear();
    EXPECT_EQ(m_saved_paths, expected);
    expected = paths_below(std::string(BASE) + "/");
    expected.back().clear();
    EXPECT_EQ(paths_of(document(*frame)), expected);
}

TEST_F(VEK_FRAME_SETUP_FILE, a_refused_check_saves_nothing_and_says_why)
{
    set_working_directory(BASE);
    const auto frame = make_frame();
    fill(document(*frame), std::string(BASE) + "/");
    let_check_say(false, false, "The mode <b> is not set.");
    let_save_say(true);
    MODAL_ANSWERS answers;
    answers.click(QMessageBox::Ok);
    EXPECT_TRUE(frame->save_file(QStringLiteral("/out/setup.vek")));
    ASSERT_EQ(answers.boxes().size(), 1);
    EXPECT_EQ(answers.boxes().at(0).title, QStringLiteral("Imagewright"));
    EXPECT_EQ(answers.boxes().at(0).text,
              QStringLiteral("Failed to save setting file. The mode <b> is not set."));
    EXPECT_EQ(answers.boxes().at(0).icon, QMessageBox::Critical);
    EXPECT_TRUE(m_saved_to.empty());
    EXPECT_EQ(paths_of(document(*frame)), paths_below(std::string(BASE) + "/"));
    EXPECT_EQ(frame->get_current_file(), QString());
}

TEST_F(VEK_FRAME_SETUP_FILE, a_configuration_key_lets_a_refused_setup_be_saved)
{
    cfg_override("VEK_ALWAYS_ALLOW_SAVE_FILE", "on");
    const MODAL_ANSWERS no_dialog;
    const auto frame = make_frame();
    let_check_say(false, false, "The mode is not set.");
    let_save_say(true);
    EXPECT_TRUE(frame->save_file(QStringLiteral("/out/setup.vek")));
    EXPECT_EQ(m_saved_to, std::vector<std::string>{"/out/setup.vek"});
}

TEST_F(VEK_FRAME_SETUP_FILE, a_save_that_fails_keeps_absolute_paths_and_still_answers_true)
{
    set_working_directory(BASE);
    const auto frame = make_frame();
    fill(document(*frame), std::string(BASE) + "/");
    let_check_say(true, true, "");
    let_save_say(false);
    MODAL_ANSWERS answers;
    answers.click(QMessageBox::Ok);
    EXPECT_TRUE(frame->save_file(QStringLiteral("/out/setup.vek")));
    EXPECT_EQ(answers.boxes().at(0).text, QStringLiteral("Failed to save setting file. "));
    EXPECT_EQ(m_saved_paths, paths_below(""));
    EXPECT_EQ(paths_of(document(*frame)), paths_below(std::string(BASE) + "/"));
    EXPECT_EQ(frame->get_current_file(), QString());
}

TEST_F(VEK_FRAME_SETUP_FILE, a_save_copies_the_flash_database_directory_into_the_setup)
{
    const auto frame = make_frame();
    GFPDB_MGR::set_db_custom_dir(m_directory.path());
    let_check_say(true, true, "");
    let_save_say(true);
    frame->save_file(QStringLiteral("/out/setup.vek"));
    EXPECT_EQ(document(*frame).settings.at(0)->custom_db_dir, m_directory.path());
}

TEST_F(VEK_FRAME_SETUP_FILE, without_a_document_saving_is_an_internal_error)
{
    const auto frame = make_frame();
    VEK_FRAME_WND_PROBE::document(*frame) = nullptr;
    EXPECT_INTERNAL_ERROR(frame->save_file(QStringLiteral("/out/setup.vek")), "m_vek != nullptr");
    EXPECT_INTERNAL_ERROR(frame->update_cache(), "m_vek != nullptr");
    EXPECT_INTERNAL_ERROR(frame->set_mode(0), "m_vek != nullptr");
    EXPECT_INTERNAL_ERROR(frame->update_input_files_tab(), "m_vek != nullptr");
    EXPECT_INTERNAL_ERROR(frame->update_config_device_tab(), "m_vek != nullptr");
    EXPECT_INTERNAL_ERROR(frame->generate(), "m_vek != nullptr");
    vek_util_double().parse = [](PGM_COMMON_XML_VEK_VEK**, const std::string&) { return true; };
    EXPECT_INTERNAL_ERROR(frame->open_file(QStringLiteral("/in/setup.vek")), "object != nullptr");
}

TEST_F(VEK_FRAME_SETUP_FILE, open_asks_for_a_setup_and_opens_it)
{
    const auto frame = make_frame();
    std::vector<std::string> parsed;
    vek_util_double().parse = [&parsed](PGM_COMMON_XML_VEK_VEK**, const std::string& path) {
        parsed.push_back(path);
        return false;
    };
    NIVO_NATIVE_FILE_DLG::answer_next({QStringLiteral("/in/first.vek"), QStringLiteral("/in/second.vek")});
    frame->get_menu_record().get_entry(MOK_MENU_FILE, MOK_FILE_OPEN)->trigger();
    EXPECT_EQ(parsed, std::vector<std::string>{"/in/first.vek"});
    const NIVO_NATIVE_FILE_DLG::QUESTION& question = NIVO_NATIVE_FILE_DLG::last_question();
    EXPECT_EQ(question.title, QStringLiteral("Open"));
    EXPECT_EQ(question.name_filters, QStringList{setup_filter()});
    EXPECT_EQ(question.file_mode, QFileDialog::ExistingFile);
    EXPECT_EQ(question.accept_mode, QFileDialog::AcceptOpen);
    EXPECT_EQ(question.parent, frame.get());

    NIVO_NATIVE_FILE_DLG::reject_next();
    frame->on_open_action();
    EXPECT_EQ(parsed.size(), 1u);
}

TEST_F(VEK_FRAME_SETUP_FILE, open_does_nothing_with_a_file_that_is_open_already)
{
    write_file(m_directory / "setup.vek", std::string("x"));
    const auto frame = make_frame();
    const QString path = QString::fromStdString(m_directory / "setup.vek");
    int parse_count = 0;
    vek_util_double().get_family = [](const PGM_COMMON_XML_VEK_VEK*) { return DEV_FAMILY_NONE; };
    vek_util_double().parse = [&parse_count](PGM_COMMON_XML_VEK_VEK** opened, const std::string&) {
        ++parse_count;
        *opened = new PGM_COMMON_XML_VEK_VEK(PGM_COMMON_XML_ENUM_VEK);
        return true;
    };
    NIVO_NATIVE_FILE_DLG::answer_next({path});
    frame->on_open_action();
    const auto before = VEK_FRAME_WND_PROBE::document(*frame);
    NIVO_NATIVE_FILE_DLG::answer_next({path});
    frame->on_open_action();
    EXPECT_EQ(parse_count, 1);
    EXPECT_EQ(VEK_FRAME_WND_PROBE::document(*frame), before);
    EXPECT_EQ(MOK_RECENT_FILES::get(), QStringList{path});

    // Another window that is asked for it shows the one that has it.
    const auto other = make_frame();
    frame->hide();
    NIVO_NATIVE_FILE_DLG::answer_next({path});
    other->on_open_action();
    EXPECT_EQ(parse_count, 1);
    EXPECT_TRUE(frame->isVisible());
    EXPECT_FALSE(other->isVisible());
}

TEST_F(VEK_FRAME_SETUP_FILE, a_new_setup_is_not_saved_over_the_file_of_the_one_before)
{
    write_file(m_directory / "setup.vek", std::string("x"));
    const QString path = QString::fromStdString(m_directory / "setup.vek");
    const auto frame = make_frame();
    let_check_say(true, true, "");
    let_save_say(true);
    int parse_count = 0;
    vek_util_double().get_family = [](const PGM_COMMON_XML_VEK_VEK*) { return DEV_FAMILY_ZIRCON; };
    vek_util_double().parse = [&parse_count](PGM_COMMON_XML_VEK_VEK** opened, const std::string&) {
        ++parse_count;
        *opened = new PGM_COMMON_XML_VEK_VEK(PGM_COMMON_XML_ENUM_VEK);
        set(**opened, VEK_CMD_OPT_SETTINGS, {{VEK_CMD_PARAM_SETTINGS_MODE, "LNKSX8"}});
        return true;
    };
    const std::function<void()> ways_to_a_new_setup[] = {
        [&frame] { choose_mode(*frame, PGMIO_CONFIG_SCHEME_AS_X4); },
        [&frame] { choose_family(*frame, DEV_FAMILY_BASALT); },
        [&frame] {
            MODAL_ANSWERS answers;
            answers.click(QMessageBox::Yes);
            frame->user_reset();
        },
    };
    int expected_count = 0;
    for (const std::function<void()>& start_new_setup : ways_to_a_new_setup) {
        NIVO_NATIVE_FILE_DLG::answer_next({path});
        frame->on_open_action();
        EXPECT_EQ(parse_count, ++expected_count) << "it can be opened again";
        EXPECT_EQ(frame->get_current_file(), path);
        choose_mode(*frame, PGMIO_CONFIG_SCHEME_LNKS_X16);
        EXPECT_EQ(frame->get_current_file(), path) << "the setup is still the same";
        start_new_setup();
        EXPECT_EQ(frame->get_current_file(), QString());
        EXPECT_EQ(frame->windowTitle(), QStringLiteral("Imagewright[*]"));
        NIVO_NATIVE_FILE_DLG::reject_next();
        frame->get_menu_record().get_entry(MOK_MENU_FILE, MOK_FILE_SAVE)->trigger();
        EXPECT_EQ(NIVO_NATIVE_FILE_DLG::last_question().title, QStringLiteral("Save As"));
    }
    EXPECT_TRUE(m_saved_to.empty());
}

TEST_F(VEK_FRAME_SETUP_FILE, save_as_gives_the_file_the_extension_of_a_setup)
{
    const auto frame = make_frame();
    let_check_say(true, true, "");
    let_save_say(true);
    NIVO_NATIVE_FILE_DLG::answer_next({QStringLiteral("/out/first")});
    EXPECT_TRUE(frame->save_as(FIO_PATH("/plays/no/part.vek")));
    NIVO_NATIVE_FILE_DLG::answer_next({QStringLiteral("/out/second.txt")});
    EXPECT_TRUE(frame->save_as(FIO_PATH()));
    EXPECT_EQ(m_saved_to, (std::vector<std::string>{"/out/first.vek", "/out/second.vek"}));
    const NIVO_NATIVE_FILE_DLG::QUESTION& question = NIVO_NATIVE_FILE_DLG::last_question();
    EXPECT_EQ(question.title, QStringLiteral("Save As"));
    EXPECT_EQ(question.name_filters, QStringList{setup_filter()});
    EXPECT_EQ(question.file_mode, QFileDialog::AnyFile);
    EXPECT_EQ(question.accept_mode, QFileDialog::AcceptSave);
    EXPECT_EQ(question.special_mode, 2);
    EXPECT_FALSE(question.has_checkbox);
    EXPECT_EQ(question.parent, frame.get());
}

TEST_F(VEK_FRAME_SETUP_FILE, giving_up_save_as_answers_false)
{
    const auto frame = make_frame();
    let_save_say(true);
    NIVO_NATIVE_FILE_DLG::reject_next();
    EXPECT_FALSE(frame->save_as(FIO_PATH("/out/setup.vek")));
    EXPECT_TRUE(m_saved_to.empty());
}
