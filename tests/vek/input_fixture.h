#ifndef IMAGEWRIGHT_TESTS_INPUT_FIXTURE_H
#define IMAGEWRIGHT_TESTS_INPUT_FIXTURE_H

#include "msg_service.h"
#include "pack.h"
#include "vek_file_assistant_double.h"
#include "vek_frame_fixture.h"
#include "vek_model_input_files.h"
#include "vek_tab_input_files.h"
#include "vek_tree_input_files.h"

#include <QSignalSpy>
#include <QTest>

#include <string>
#include <vector>

/// A document and a session, with real bitstream files, for a model or a tab of its own.
class INPUT_FIXTURE : public VEK_FRAME_FIXTURE
{
protected:
    using PARAMS = VEK_FILE_ASSISTANT::PARAMS;

    INPUT_FIXTURE()
        : m_vek(std::make_shared<PGM_COMMON_XML_VEK_VEK>(PGM_COMMON_XML_ENUM_VEK)),
          m_cache(std::make_shared<VEK_FRAME_WND_CACHE>())
    {
        set_working_directory(m_directory.path());
        MSG_SERVICE::instance().clear_history();
    }

    /// Writes a small bitstream file; its path. "GY1M16" is of the on-chip flash family, "FD7X120" takes a
    /// single bitstream, "FD7X280" signs, "DL2E20" chains.
    std::string bitstream(const std::string& name, const std::string& device, const std::string& scheme = "",
                          bool is_encrypted = false) const
    {
        write_file(m_directory / "core", std::string(64, '\x5A'));
        PACK_REQUEST request;
        request.device = device;
        request.core_path = m_directory / "core";
        request.scheme = scheme;
        if (is_encrypted) {
            request.options["sof_option_encryption"] = true;
        }
        if (name.ends_with(".pmsf")) {
            request.regions = {{"part", 0, 64}};
        }
        request.output_path = m_directory / name;
        std::string message;
        EXPECT_TRUE(pack_bitstream(request, message)) << message;
        return request.output_path;
    }
    std::unique_ptr<VEK_MODEL_INPUT_FILES> make_model() const
    {
        return std::make_unique<VEK_MODEL_INPUT_FILES>(m_vek, m_cache, nullptr);
    }
    std::unique_ptr<VEK_TAB_INPUT_FILES> make_tab() const
    {
        return std::make_unique<VEK_TAB_INPUT_FILES>(m_vek, m_cache, nullptr, Qt::WindowFlags());
    }
    static VEK_TREE_INPUT_FILES& tree(const QWidget& widget)
    {
        return *widget.findChild<VEK_TREE_INPUT_FILES*>(QStringLiteral("m_input_file_tree"));
    }
    static QPushButton& button(const QWidget& widget, const char* name)
    {
        return *widget.findChild<QPushButton*>(QLatin1String(name));
    }
    /// The buttons that are live, by the letters of Bitstream, Raw data, File, Remove (x), Properties.
    static std::string live(const QWidget& widget)
    {
        std::string text;
        for (const auto& [letter, name] :
             {std::pair('B', "m_add_bitstream_button"), std::pair('R', "m_add_raw_data_button"),
              std::pair('F', "m_add_file_button"), std::pair('X', "m_remove_button"),
              std::pair('P', "m_properties_button")}) {
            text += button(widget, name).isEnabled() ? letter : '.';
        }
        return text;
    }
    /// The rows, one a line, children indented, columns divided by "|".
    static std::string rows(const QAbstractItemModel& model, const QModelIndex& parent = {},
                            const std::string& indent = {})
    {
        std::string text;
        for (int row = 0; row < model.rowCount(parent); ++row) {
            QStringList columns;
            for (int column = 0; column < model.columnCount(); ++column) {
                columns << model.index(row, column, parent).data().toString();
            }
            text += indent + columns.join('|').toStdString() + "\n";
            text += rows(model, model.index(row, 0, parent), indent + "  ");
        }
        return text;
    }
    /// What was reported since the last call, one message a line: "20653 text".
    static std::string messages()
    {
        std::string text;
        for (const MSG_RECORD& record : MSG_SERVICE::instance().history()) {
            text += std::to_string(record.id) + " " + record.text + "\n";
        }
        MSG_SERVICE::instance().clear_history();
        return text;
    }
    void assign(const std::string& partition, PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param, const std::string& id)
    {
        set(*m_vek, VEK_CMD_OPT_FLASH_DEVICE,
            {{VEK_CMD_PARAM_FLASH_DEVICE_ID, "Flash_Device_1"},
             {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_ID, partition},
             {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_S_ADDR, "auto"}});
        set(*m_vek, VEK_CMD_OPT_ASSIGNMENT,
            {{VEK_CMD_PARAM_ASSIGNMENT_PARTITION_ID, partition}, {param, id}});
    }
    void set_path_value(const std::string& id, const std::string& path,
                        PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param, const std::string& value)
    {
        set(*m_vek, VEK_CMD_OPT_BITSTREAM,
            {{VEK_CMD_PARAM_BITSTREAM_ID, id}, {VEK_CMD_PARAM_BITSTREAM_PATH, path}, {param, value}});
    }

    std::shared_ptr<PGM_COMMON_XML_VEK_VEK> m_vek;
    std::shared_ptr<VEK_FRAME_WND_CACHE> m_cache;
};

#endif
