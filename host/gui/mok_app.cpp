#include "mok_app.h"

#include "mok_message_model.h"
#include "mok_question_desk.h"
#include "mok_ui_mgr.h"
#include "nivo_style.h"

#include <QApplication>

MOK_APP::MOK_APP() : MOK_APP(std::make_unique<MOK_UI_MGR>()) {}

MOK_APP::MOK_APP(std::unique_ptr<MOK_UI_MGR> ui_mgr)
    : m_ui_mgr(std::move(ui_mgr)), m_message_model(std::make_unique<MOK_MESSAGE_MODEL>()),
      m_question_desk(std::make_unique<MOK_QUESTION_DESK>())
{
    QApplication::setStyle(new NIVO_STYLE);
}

MOK_APP::~MOK_APP() = default;
