#include "vek_dlg_sof_properties.h"

#include "gen_legal_text.h"
#include "msg_internal_error.h"
#include "nivo_help.h"
#include "nivo_icon.h"
#include "nivo_safe_connect.h"
#include "nivo_screen_room.h"
#include "pgm_device.h"
#include "vek_gui_util.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QTextEdit>
#include <QVBoxLayout>

#include <new>

namespace
{

constexpr int LEGAL_TEXT_WIDTH = 560;
constexpr int LEGAL_TEXT_HEIGHT = 60;
constexpr int LEGAL_TEXT_POINTS = 10;

bool is_key_or_key_file(PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param)
{
    return param == VEK_CMD_PARAM_BITSTREAM_PATH_KEY2 || param == VEK_CMD_PARAM_BITSTREAM_PATH_KEY1 ||
           param == VEK_CMD_PARAM_BITSTREAM_PATH_KEY_FILE2 || param == VEK_CMD_PARAM_BITSTREAM_PATH_KEY_FILE1;
}

} // namespace

VEK_DLG_SOF_PROPERTIES::VEK_DLG_SOF_PROPERTIES(const PGM_DEVICE* device, FIO_FILE_TYPE file_type,
                                               std::vector<VEK_FILE_TYPE> output_file_types, QWidget* parent,
                                               Qt::WindowFlags flags)
    : NIVO_DIALOG(parent, flags), m_device(device), m_file_type(file_type),
      m_output_file_types(std::move(output_file_types))
{
    setWindowTitle(tr("Input File Properties"));
    nivo_set_help_topic(*this, NIVO_HELP_INPUT_FILE_PROPERTIES);
    setWindowIcon(nivo_get_icon(NIVO_ICON_IMAGEWRIGHT));
    setSizeGripEnabled(false);

    m_properties = new (std::nothrow) VEK_PROPERTY_BROWSER(this);
    VEK_ASSERT_TEXT(m_properties != nullptr, "m_properties");
    m_properties->setObjectName(QStringLiteral("m_properties"));
    init_general_settings();
    if (m_device != nullptr) {
        init_hps_settings();
        init_signing_settings();
        init_security_settings();
        init_encryption_settings();
    }
    filter_property();
    filter_property_group();
    check_dependent_properties();
    if (m_device != nullptr && !m_properties->is_property_group_hidden(tr("Security settings"))) {
        add_legal_block();
    }
    connect_property_signal();

    m_button_box = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    m_button_box->setObjectName(QStringLiteral("m_button_box"));
    QPushButton* const ok_button = m_button_box->button(QDialogButtonBox::Ok);
    VEK_ASSERT_TEXT(ok_button != nullptr, "m_button_box");
    ok_button->setEnabled(false);

    auto* const main_layout = new (std::nothrow) QVBoxLayout(this);
    VEK_ASSERT_TEXT(main_layout != nullptr, "main_layout");
    main_layout->addWidget(m_properties);
    if (m_properties->get_ids(false).empty()) {
        auto* const nothing_label = new QLabel(tr("There is nothing to set for this file."));
        nothing_label->setObjectName(QStringLiteral("m_nothing_label"));
        main_layout->addWidget(nothing_label);
    }
    if (m_legal_checkbox != nullptr) {
        main_layout->addWidget(m_legal_text);
        main_layout->addWidget(m_legal_checkbox);
    }
    main_layout->addWidget(m_button_box);
    main_layout->setSizeConstraint(QLayout::SetFixedSize);
    nivo_fit_to_screen(*this, *m_properties);

    if (m_legal_checkbox != nullptr) {
        nivo_safe_connect(m_legal_checkbox, SIGNAL(clicked()), this, SLOT(on_change_legal_checkbox()),
                          Qt::AutoConnection, __FILE__, __LINE__);
    }
    nivo_safe_connect(m_button_box, SIGNAL(accepted()), this, SLOT(accept()), Qt::AutoConnection, __FILE__,
                      __LINE__);
    nivo_safe_connect(m_button_box, SIGNAL(rejected()), this, SLOT(reject()), Qt::AutoConnection, __FILE__,
                      __LINE__);
    enable_ok();
}

void VEK_DLG_SOF_PROPERTIES::add_legal_block()
{
    m_legal_text = new QTextEdit(this);
    m_legal_text->setObjectName(QStringLiteral("m_legal_text"));
    m_legal_text->setAccessibleName(tr("Disclaimer"));
    m_legal_text->setTabChangesFocus(true);
    QFont font = m_legal_text->font();
    font.setPointSize(LEGAL_TEXT_POINTS);
    font.setStyleHint(QFont::TypeWriter, QFont::PreferDefault);
    m_legal_text->setFont(font);
    m_legal_text->setFixedSize(LEGAL_TEXT_WIDTH, LEGAL_TEXT_HEIGHT);
    QPalette colors = m_legal_text->palette();
    colors.setBrush(QPalette::All, QPalette::Base, colors.brush(QPalette::Window));
    m_legal_text->setPalette(colors);
    m_legal_text->setPlainText(VEK_GUI_UTIL::from_local(gen_get_bitstream_encryption_legal_text()));

    m_legal_checkbox = new QCheckBox(
        tr("By checking the box, you acknowledge that you have read and understand the disclaimer above. "
           "(This must be \nchecked to enable bitstream encryption generation.)"),
        this);
    m_legal_checkbox->setObjectName(QStringLiteral("m_legal_checkbox"));
    m_legal_checkbox->setChecked(false);
}

void VEK_DLG_SOF_PROPERTIES::enable_ok()
{
    m_button_box->button(QDialogButtonBox::Ok)
        ->setEnabled(m_legal_checkbox == nullptr || m_legal_checkbox->isChecked());
}

void VEK_DLG_SOF_PROPERTIES::on_change_legal_checkbox()
{
    enable_ok();
}

std::vector<PGM_COMMON_XML_VEK_CMD_PARAM_ENUM> VEK_DLG_SOF_PROPERTIES::get_property_ids() const
{
    std::vector<PGM_COMMON_XML_VEK_CMD_PARAM_ENUM> params;
    for (const std::uint32_t id : m_properties->get_ids(false)) {
        params.push_back(static_cast<PGM_COMMON_XML_VEK_CMD_PARAM_ENUM>(id));
    }
    return params;
}

void VEK_DLG_SOF_PROPERTIES::set_property_values(VALUES values)
{
    for (const auto& pair : values) {
        if (is_key_or_key_file(pair.first)) {
            continue;
        }
        if (!m_properties->set_widget_value(pair.first, VEK_GUI_UTIL::from_local(pair.second))) {
            VEK_ASSERT(
                pair.first == VEK_CMD_PARAM_BITSTREAM_ID || pair.first == VEK_CMD_PARAM_BITSTREAM_PATH ||
                pair.first == VEK_CMD_PARAM_RAW_FILE_ID || pair.first == VEK_CMD_PARAM_RAW_FILE_RAW_FILE);
        }
    }
}

VEK_DLG_SOF_PROPERTIES::VALUES VEK_DLG_SOF_PROPERTIES::get_property_values()
{
    VALUES values;
    for (const PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param : get_property_ids()) {
        values.emplace_back(param, VEK_GUI_UTIL::to_local(m_properties->get_widget_value(param)));
    }
    return values;
}
