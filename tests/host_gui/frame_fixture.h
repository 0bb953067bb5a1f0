#ifndef IMAGEWRIGHT_TESTS_FRAME_FIXTURE_H
#define IMAGEWRIGHT_TESTS_FRAME_FIXTURE_H

#include "mok_app.h"
#include "mok_frame_wnd.h"
#include "msg_service.h"
#include "nivo_native_file_dlg.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <memory>

/// Posts a message as a tool would.
inline void post_message(MSG_SEVERITY severity, std::uint32_t id, const std::string& text)
{
    MSG_RECORD record;
    record.severity = severity;
    record.id = id;
    record.text = text;
    MSG_SERVICE::instance().post(record);
}

/// An application with settings of its own and a directory for files.
class FRAME_FIXTURE : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_directory.isValid());
        m_old_config = qgetenv("XDG_CONFIG_HOME");
        qputenv("XDG_CONFIG_HOME", m_directory.path().toLocal8Bit());
        MSG_SERVICE::instance().clear_history();
        m_app = std::make_unique<MOK_APP>();
    }

    void TearDown() override
    {
        EXPECT_FALSE(NIVO_NATIVE_FILE_DLG::has_answer());
        NIVO_NATIVE_FILE_DLG::clear_answers();
        m_app.reset();
        qputenv("XDG_CONFIG_HOME", m_old_config);
    }

    QString make_file(const QString& name, const QByteArray& content = "x")
    {
        const QString path = m_directory.filePath(name);
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        EXPECT_EQ(file.write(content), content.size());
        return path;
    }

    static QAction* entry(const MOK_FRAME_WND& frame, int menu, int position)
    {
        return frame.get_menu_record().get_entry(menu, position);
    }

    QTemporaryDir m_directory;
    std::unique_ptr<MOK_APP> m_app;

private:
    QByteArray m_old_config;
};

/// A tool's window that notes what the host asks of it.
class NOTING_FRAME : public MOK_FRAME_WND
{
public:
    explicit NOTING_FRAME(MOK_FW_STATE_ENUM state = MOK_FW_STATE_MAIN, const MOK_FRAME_INFO* info = nullptr)
        : MOK_FRAME_WND(info, state)
    {
    }
    using MOK_FRAME_WND::open_file;
    bool open_file(const QString& path) override
    {
        m_opened << path;
        return m_can_load && MOK_FRAME_WND::open_file(path);
    }
    bool save_file(const QString& path) override
    {
        m_saved << path;
        return MOK_FRAME_WND::save_file(path);
    }

    QStringList m_opened;
    QStringList m_saved;
    bool m_can_load = true;
};

#endif
