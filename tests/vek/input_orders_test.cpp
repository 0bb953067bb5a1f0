// The order of what the second tab does: calls to the document, signals, rows.

#include "input_fixture.h"
#include "pgm_device.h"
#include "vek_dlg_key_edit.h"
#include "vek_dlg_key_entry.h"
#include "vek_dlg_sof_properties.h"
#include "vek_key_entry_edit.h"

#include <QMetaMethod>

namespace
{

class INPUT_ORDERS : public INPUT_FIXTURE
{
protected:
    INPUT_ORDERS() : m_model(make_model())
    {
        const auto note = [this](const char* what) { return [this, what] { m_order << what; }; };
        const VEK_MODEL_INPUT_FILES* const model = m_model.get();
        QObject::connect(model, &QAbstractItemModel::rowsAboutToBeInserted, note("insert"));
        QObject::connect(model, &QAbstractItemModel::rowsInserted, note("inserted"));
        QObject::connect(model, &QAbstractItemModel::rowsAboutToBeRemoved, note("remove"));
        QObject::connect(model, &QAbstractItemModel::rowsRemoved, note("removed"));
        QObject::connect(model, &VEK_MODEL_INPUT_FILES::input_files_changed, note("files"));
        QObject::connect(model, &VEK_MODEL_INPUT_FILES::device_changed,
                         [this](const QString& name) { m_order << "device(" + name + ")"; });
    }

    int add(const std::string& path) { return m_model->add_bitstream(FIO_PATH(path)); }
    void add_file_to(const std::string& id, const std::string& path)
    {
        set(*m_vek, VEK_CMD_OPT_BITSTREAM,
            {{VEK_CMD_PARAM_BITSTREAM_ID, id}, {VEK_CMD_PARAM_BITSTREAM_PATH, path}});
    }
    /// The signals since the last call.
    std::string order()
    {
        const std::string text = m_order.join(QLatin1Char(' ')).toStdString();
        m_order.clear();
        return text;
    }
    /// One line of the log of calls.
    static std::string call(const std::string& head, const PARAMS& params)
    {
        std::string line = head;
        for (const auto& [param, text] : params) {
            line += std::string(" ") + PGM_COMMON_XML_VEK_CMD_PARAM.at(param) + "=" + text;
        }
        return line + "\n";
    }

    std::unique_ptr<VEK_MODEL_INPUT_FILES> m_model;
    QStringList m_order;
};

/// Signals and slots of a class in their order.
std::string methods_of(const QMetaObject& object)
{
    std::string text;
    for (int number = object.methodOffset(); number < object.methodCount(); ++number) {
        const QMetaMethod method = object.method(number);
        text += (method.methodType() == QMetaMethod::Signal ? "!" : "") +
                method.methodSignature().toStdString() + " ";
    }
    return text;
}

} // namespace

TEST_F(INPUT_ORDERS, of_signals_and_slots)
{
    EXPECT_EQ(methods_of(VEK_MODEL_INPUT_FILES::staticMetaObject),
              "!input_files_changed() !device_changed(QString) ");
    EXPECT_EQ(methods_of(VEK_TREE_INPUT_FILES::staticMetaObject),
              "!current_changed(QModelIndex,QModelIndex) !input_files_changed() !device_changed(QString) "
              "add_bitstream_finished() ");
    EXPECT_EQ(
        methods_of(VEK_TAB_INPUT_FILES::staticMetaObject),
        "!input_files_changed() !device_changed(QString) add_bitstream() add_raw_data() add_file() remove() "
        "properties() update_input_file_types() update_add_file_button_visible() update_buttons() ");
    EXPECT_EQ(
        methods_of(VEK_DLG_SOF_PROPERTIES::staticMetaObject),
        "on_change_bool_property(int) on_change_combo_property(int) on_change_file_edit_property(QString) "
        "on_change_line_edit_property(QString) on_change_key_edit_property(QString) "
        "on_change_legal_checkbox() ");
    EXPECT_EQ(methods_of(VEK_KEY_ENTRY_EDIT::staticMetaObject),
              "!keyEntryEditChanged(QString) do_add() do_edit() do_delete() do_show() do_key_change(int) ");
    std::string digits;
    for (const char digit : std::string("0123456789abcdef")) {
        digits += std::string("on_click_") + digit + "() ";
    }
    EXPECT_EQ(methods_of(VEK_DLG_KEY_ENTRY::staticMetaObject),
              digits + "on_click_clear() on_click_show_key() on_select_entry_method() "
                       "on_keypress_key_name_edit(QString) on_keypress_key_edit(QString) "
                       "on_keypress_confirm_edit(QString) on_click_key_edit() on_click_confirm_edit() "
                       "on_killfocus_key_edit() OnOK() ");
    EXPECT_EQ(methods_of(VEK_DLG_KEY_EDIT::staticMetaObject).substr(0, 35),
              "!mouse_click() !key_press(QString) ");
}

TEST_F(INPUT_ORDERS, of_adding_and_removing_raw_data)
{
    VEK_FILE_ASSISTANT_LOG log;
    m_model->add_raw_data(FIO_PATH("/in/a.wkey"));
    EXPECT_EQ(log.take(), call("set raw_file", {{VEK_CMD_PARAM_RAW_FILE_ID, "Raw_File_1"},
                                                {VEK_CMD_PARAM_RAW_FILE_TYPE, "WKEY"},
                                                {VEK_CMD_PARAM_RAW_FILE_RAW_FILE, "/in/a.wkey"}}));
    EXPECT_EQ(order(), "insert inserted files");
    assign("P1", VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID, "Raw_File_1");
    assign("P2", VEK_CMD_PARAM_ASSIGNMENT_RAW_FILE_ID, "Raw_File_1");
    log.take();
    m_model->remove_raw_data("Raw_File_1");
    EXPECT_EQ(log.take(), call("remove raw_file", {{VEK_CMD_PARAM_RAW_FILE_ID, "Raw_File_1"}}) +
                              call("remove assignment", {{VEK_CMD_PARAM_ASSIGNMENT_PARTITION_ID, "P1"}}) +
                              call("remove assignment", {{VEK_CMD_PARAM_ASSIGNMENT_PARTITION_ID, "P2"}}));
    EXPECT_EQ(order(), "remove removed files");
    m_model->add_raw_data(FIO_PATH("/in/a.hex"));
    log.refuse = [](const std::string& line) { return line.starts_with("remove raw_file"); };
    EXPECT_INTERNAL_ERROR(m_model->remove_raw_data("Raw_File_1"), "success");
}

TEST_F(INPUT_ORDERS, of_a_refused_bitstream)
{
    add_output(*m_vek, "RBF", "top", ".");
    VEK_FILE_ASSISTANT_LOG log;
    EXPECT_EQ(add("/none.sof"), -1);
    const PARAMS id = {{VEK_CMD_PARAM_BITSTREAM_ID, "Bitstream_1"}};
    const PARAMS link = {{VEK_CMD_PARAM_OUTPUT_FILE_BITSTREAM_ID, "Bitstream_1"}};
    EXPECT_EQ(log.take(), call("set output_file", {{VEK_CMD_PARAM_OUTPUT_FILE_TYPE, "RBF"}, link.front()}) +
                              call("set bitstream", id) + call("remove bitstream", id) +
                              call("remove output_file", link));
    EXPECT_EQ(order(), "insert inserted remove removed") << "nothing is told of what has not been";
}

TEST_F(INPUT_ORDERS, of_removing_one_file_of_several_and_the_last)
{
    add_output(*m_vek, "RBF", "top", ".");
    add_bitstream(*m_vek, "Bitstream_1", "/in/one.sof");
    add_file_to("Bitstream_1", "/in/two.sof");
    assign("P1", VEK_CMD_PARAM_ASSIGNMENT_BITSTREAM_ID, "Bitstream_1");
    assign("P2", VEK_CMD_PARAM_ASSIGNMENT_BITSTREAM_ID, "Bitstream_1");
    m_cache->family = DEV_FAMILY_BASALT;
    VEK_FILE_ASSISTANT_LOG log;
    const std::pair id(VEK_CMD_PARAM_BITSTREAM_ID, std::string("Bitstream_1"));
    m_model->remove_sof_file("/in/one.sof", "Bitstream_1");
    EXPECT_EQ(log.take(),
              call("remove bitstream", {id, {VEK_CMD_PARAM_BITSTREAM_PATH, std::string("/in/one.sof")}}));
    EXPECT_EQ(order(), "remove files") << "the refresh that follows puts the view right";
    EXPECT_EQ(m_cache->family, DEV_FAMILY_BASALT);
    m_model->remove_sof_file("/in/two.sof", "Bitstream_1");
    EXPECT_EQ(log.take(),
              call("remove bitstream", {id, {VEK_CMD_PARAM_BITSTREAM_PATH, std::string("/in/two.sof")}}) +
                  call("remove bitstream", {id}) +
                  call("remove output_file", {{VEK_CMD_PARAM_OUTPUT_FILE_BITSTREAM_ID, "Bitstream_1"}}) +
                  call("remove assignment", {{VEK_CMD_PARAM_ASSIGNMENT_PARTITION_ID, "P1"}}) +
                  call("remove assignment", {{VEK_CMD_PARAM_ASSIGNMENT_PARTITION_ID, "P2"}}));
    EXPECT_EQ(order(), "remove remove removed device() files");
}

TEST_F(INPUT_ORDERS, of_a_removal_that_leaves_other_bitstreams)
{
    add_bitstream(*m_vek, "Bitstream_1", "/in/one.sof");
    add_bitstream(*m_vek, "Bitstream_2", "/in/two.sof");
    m_cache->device_name = "BS1L15";
    m_model->remove_bitstream("Bitstream_1");
    EXPECT_EQ(order(), "remove remove removed files");
    EXPECT_EQ(m_cache->device_name, "BS1L15") << "the device goes with the last";
    VEK_FILE_ASSISTANT_LOG log;
    log.refuse = [](const std::string& line) { return line.starts_with("remove output_file"); };
    EXPECT_INTERNAL_ERROR(m_model->remove_bitstream("Bitstream_2"), "success");
}

TEST_F(INPUT_ORDERS, of_the_parameters_of_a_new_file)
{
    const std::string one = bitstream("one.sof", "FD7X280");
    const std::string two = bitstream("two.sof", "FD7X280");
    VEK_FILE_ASSISTANT_LOG log;
    EXPECT_EQ(add(one), 0);
    EXPECT_EQ(log.take(), call("set bitstream", {{VEK_CMD_PARAM_BITSTREAM_ID, "Bitstream_1"}}) +
                              call("set bitstream", {{VEK_CMD_PARAM_BITSTREAM_ID, "Bitstream_1"},
                                                     {VEK_CMD_PARAM_BITSTREAM_PATH, one}}))
        << "the first file inherits nothing";
    EXPECT_EQ(messages(), "");
    set_path_value("Bitstream_1", one, VEK_CMD_PARAM_BITSTREAM_PATH_SIGNING, "ON");
    set_path_value("Bitstream_1", one, VEK_CMD_PARAM_BITSTREAM_PATH_SIGNING_PEM_FILE, "/k.pem");
    log.take();
    order();
    EXPECT_EQ(add(two), 1);
    EXPECT_EQ(log.take(),
              call("set bitstream", {{VEK_CMD_PARAM_BITSTREAM_ID, "Bitstream_2"}}) +
                  call("set bitstream", {{VEK_CMD_PARAM_BITSTREAM_ID, "Bitstream_2"},
                                         {VEK_CMD_PARAM_BITSTREAM_PATH, two},
                                         {VEK_CMD_PARAM_BITSTREAM_PATH_FW_SOURCE, ""},
                                         {VEK_CMD_PARAM_BITSTREAM_PATH_SIGNING, "ON"},
                                         {VEK_CMD_PARAM_BITSTREAM_PATH_SIGNING_PEM_FILE, "/k.pem"},
                                         {VEK_CMD_PARAM_BITSTREAM_PATH_FINALIZE_ENCRYPTION, "0"},
                                         {VEK_CMD_PARAM_BITSTREAM_PATH_AEK_FILE, ""}}));
    EXPECT_EQ(messages(), "20233 Automatically inherit signing settings from " + one + " to " + two + ".\n");
    EXPECT_EQ(order(), "insert inserted insert inserted files");
}

TEST_F(INPUT_ORDERS, of_the_compression_of_each_compressed_image)
{
    for (const std::string scheme : {"SINGLE_COMPRESSED_IMAGE", "SINGLE_COMPRESSED_IMAGE_ERAM",
                                     "DUAL_COMPRESSED_IMAGES", "SINGLE_IMAGE", "SINGLE_IMAGE_ERAM"}) {
        SCOPED_TRACE(scheme);
        const std::string path = bitstream(scheme + ".sof", "GY1M16", scheme);
        VEK_FILE_ASSISTANT_LOG log;
        EXPECT_EQ(add(path), 0);
        PARAMS params = {{VEK_CMD_PARAM_BITSTREAM_ID, "Bitstream_1"}, {VEK_CMD_PARAM_BITSTREAM_PATH, path}};
        if (scheme.find("COMPRESSED") != std::string::npos) {
            params.emplace_back(VEK_CMD_PARAM_BITSTREAM_PATH_COMPRESSION, "1");
        }
        EXPECT_EQ(log.take(), call("set bitstream", {{VEK_CMD_PARAM_BITSTREAM_ID, "Bitstream_1"}}) +
                                  call("set bitstream", params));
        m_model->remove_bitstream("Bitstream_1");
    }
}

TEST_F(INPUT_ORDERS, of_the_five_shared_properties_is_that_of_the_dialog)
{
    m_cache->shares_signing_properties = true;
    add_bitstream(*m_vek, "Bitstream_1", "/in/1.sof");
    add_bitstream(*m_vek, "Bitstream_2", "/in/2.sof");
    PARAMS accepted;
    for (unsigned param = VEK_CMD_PARAM_BITSTREAM_PATH; param <= VEK_CMD_PARAM_BITSTREAM_ID; ++param) {
        const auto name = static_cast<PGM_COMMON_XML_VEK_CMD_PARAM_ENUM>(param);
        const std::string text = PGM_COMMON_XML_VEK_CMD_PARAM.at(name);
        if (text.starts_with("path_")) {
            accepted.emplace_back(name, name == VEK_CMD_PARAM_BITSTREAM_PATH_SIGNING ? "ON" : "1");
        }
    }
    EXPECT_GT(accepted.size(), 30u);
    VEK_FILE_ASSISTANT_LOG log;
    m_model->populate_bitstream_properties("Bitstream_1", FIO_PATH("/in/1.sof"), accepted);
    EXPECT_EQ(log.take(), call("set bitstream", {{VEK_CMD_PARAM_BITSTREAM_ID, "Bitstream_2"},
                                                 {VEK_CMD_PARAM_BITSTREAM_PATH, "/in/2.sof"},
                                                 {VEK_CMD_PARAM_BITSTREAM_PATH_SIGNING, "ON"},
                                                 {VEK_CMD_PARAM_BITSTREAM_PATH_FINALIZE_ENCRYPTION, "1"},
                                                 {VEK_CMD_PARAM_BITSTREAM_PATH_AEK_FILE, "1"},
                                                 {VEK_CMD_PARAM_BITSTREAM_PATH_SIGNING_PEM_FILE, "1"},
                                                 {VEK_CMD_PARAM_BITSTREAM_PATH_FW_SOURCE, "1"}}));
    log.take();
    m_model->populate_bitstream_properties("Bitstream_1", FIO_PATH("/in/1.sof"), {});
    EXPECT_EQ(log.take(), call("set bitstream", {{VEK_CMD_PARAM_BITSTREAM_ID, "Bitstream_2"},
                                                 {VEK_CMD_PARAM_BITSTREAM_PATH, "/in/2.sof"}}))
        << "whether anything is shared or not";
    m_cache->shares_signing_properties = false;
    m_model->populate_bitstream_properties("Bitstream_1", FIO_PATH("/in/1.sof"), accepted);
    EXPECT_EQ(log.take(), "");
}
