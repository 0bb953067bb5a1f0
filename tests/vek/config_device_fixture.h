#ifndef IMAGEWRIGHT_TESTS_CONFIG_DEVICE_FIXTURE_H
#define IMAGEWRIGHT_TESTS_CONFIG_DEVICE_FIXTURE_H

#include "thr_drl_double.h"
#include "vek_file_assistant_double.h"
#include "vek_frame_fixture.h"

#include <QAbstractItemModel>
#include <QDialog>
#include <QLineEdit>
#include <QSignalSpy>

/// A document and a session for the third tab and its parts.
class CONFIG_DEVICE_FIXTURE : public VEK_FRAME_FIXTURE
{
protected:
    using PARAMS = VEK_FILE_ASSISTANT::PARAMS;

    CONFIG_DEVICE_FIXTURE()
        : m_vek(std::make_shared<PGM_COMMON_XML_VEK_VEK>(PGM_COMMON_XML_ENUM_VEK)),
          m_cache(std::make_shared<VEK_FRAME_WND_CACHE>())
    {
        thr_drl_double() = {};
    }
    ~CONFIG_DEVICE_FIXTURE() override { thr_drl_double() = {}; }

    /// How the log writes a call.
    static std::string call(const std::string& operation, PGM_COMMON_XML_VEK_CMD_OPT_ENUM option,
                            const PARAMS& params)
    {
        std::string line = operation + " " + PGM_COMMON_XML_VEK_CMD_OPT.at(option);
        for (const auto& [param, text] : params) {
            line += std::string(" ") + PGM_COMMON_XML_VEK_CMD_PARAM.at(param) + "=" + text;
        }
        return line + "\n";
    }

    void set_mode(const std::string& mode)
    {
        set(*m_vek, VEK_CMD_OPT_SETTINGS, {{VEK_CMD_PARAM_SETTINGS_MODE, mode}});
    }
    void device(const std::string& id, const std::string& type)
    {
        set(*m_vek, VEK_CMD_OPT_FLASH_DEVICE,
            {{VEK_CMD_PARAM_FLASH_DEVICE_ID, id}, {VEK_CMD_PARAM_FLASH_DEVICE_TYPE, type}});
    }
    void partition(const std::string& device_id, const std::string& name, const std::string& start = "auto",
                   const std::string& end = "auto", const PARAMS& values = {})
    {
        PARAMS params{{VEK_CMD_PARAM_FLASH_DEVICE_ID, device_id},
                      {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_ID, name},
                      {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_S_ADDR, start},
                      {VEK_CMD_PARAM_FLASH_DEVICE_PARTITION_E_ADDR, end}};
        params.insert(params.end(), values.begin(), values.end());
        set(*m_vek, VEK_CMD_OPT_FLASH_DEVICE, params);
    }
    void mbr(const std::string& device_id, const std::string& name, const std::string& partition_name)
    {
        set(*m_vek, VEK_CMD_OPT_FLASH_DEVICE,
            {{VEK_CMD_PARAM_FLASH_DEVICE_ID, device_id},
             {VEK_CMD_PARAM_FLASH_DEVICE_MBR_ID, name},
             {VEK_CMD_PARAM_FLASH_DEVICE_MBR_PARTITION_ID, partition_name}});
    }
    void bitstream(const std::string& id, const std::vector<std::string>& paths)
    {
        for (const std::string& path : paths) {
            set(*m_vek, VEK_CMD_OPT_BITSTREAM,
                {{VEK_CMD_PARAM_BITSTREAM_ID, id}, {VEK_CMD_PARAM_BITSTREAM_PATH, path}});
        }
    }
    void raw_file(const std::string& id, const std::string& type, const std::string& path)
    {
        set(*m_vek, VEK_CMD_OPT_RAW_FILE,
            {{VEK_CMD_PARAM_RAW_FILE_ID, id},
             {VEK_CMD_PARAM_RAW_FILE_RAW_FILE, path},
             {VEK_CMD_PARAM_RAW_FILE_TYPE, type}});
    }
    void assign(const std::string& name, const PARAMS& inputs)
    {
        PARAMS params{{VEK_CMD_PARAM_ASSIGNMENT_PARTITION_ID, name}};
        params.insert(params.end(), inputs.begin(), inputs.end());
        set(*m_vek, VEK_CMD_OPT_ASSIGNMENT, params);
    }
    const PGM_COMMON_XML_VEK_PARTITION* find(const std::string& name) const
    {
        return VEK_FILE_ASSISTANT::get_partition_element(m_vek.get(), name);
    }
    const PGM_COMMON_XML_VEK_ASSIGNMENT* assignment(const std::string& name) const
    {
        return VEK_FILE_ASSISTANT::get_assignment_element(m_vek.get(), name);
    }

    /// The rows, one a line, children indented, columns divided by "|".
    static std::string rows(const QAbstractItemModel& model, const QModelIndex& parent = QModelIndex(),
                            const std::string& indent = std::string())
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

    template <typename WIDGET>
    static WIDGET* child(const QWidget& widget, const char* name)
    {
        WIDGET* const found = widget.findChild<WIDGET*>(QLatin1String(name));
        EXPECT_NE(found, nullptr) << name;
        return found;
    }
    static QString window_title(const QDialog& dialog) { return dialog.windowTitle(); }

    std::shared_ptr<PGM_COMMON_XML_VEK_VEK> m_vek;
    std::shared_ptr<VEK_FRAME_WND_CACHE> m_cache;
};

#endif
