#ifndef MOK_APP_H
#define MOK_APP_H

#include "nivo_app.h"

#include <memory>

class MOK_MESSAGE_MODEL;
class MOK_QUESTION_DESK;
class MOK_UI_MGR;

/// The host application of the frame layer. Build it after the QApplication and let it go before, but after
/// its windows.
///
/// It gives the application the host's style. While it lives, the messages of all threads arrive in its
/// message model, and a yes-or-no question of any thread is put to the user in a modal box on the GUI thread.
class MOK_APP : public NIVO_APP
{
public:
    /// With a UI manager whose working directory is empty.
    MOK_APP();
    /// With the given UI manager, which may be null.
    explicit MOK_APP(std::unique_ptr<MOK_UI_MGR> ui_mgr);
    ~MOK_APP() override;

    MOK_UI_MGR* get_ui_mgr() const { return m_ui_mgr.get(); }
    MOK_MESSAGE_MODEL* get_message_model() const { return m_message_model.get(); }

private:
    std::unique_ptr<MOK_UI_MGR> m_ui_mgr;
    std::unique_ptr<MOK_MESSAGE_MODEL> m_message_model;
    std::unique_ptr<MOK_QUESTION_DESK> m_question_desk;
};

#endif
