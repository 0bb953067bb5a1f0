#include "vek_dlg_puf_partition_properties.h"

#include "fio_path.h"
#include "nivo_help.h"
#include "nivo_icon.h"
#include "nivo_safe_connect.h"
#include "vek_element_combo.h"
#include "vek_file_assistant.h"
#include "vek_gui_util.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

namespace
{

constexpr int COMBO_MINIMUM_WIDTH = 200;

} // namespace

VEK_DLG_PUF_PARTITION_PROPERTIES::VEK_DLG_PUF_PARTITION_PROPERTIES(
    std::shared_ptr<PGM_COMMON_XML_VEK_VEK> vek, const std::string& name, QWidget* parent,
    Qt::WindowFlags flags)
    : NIVO_DIALOG(parent, flags), m_vek(std::move(vek)), m_name(name), m_name_edit(new QLineEdit),
      m_puf_file_combo(new QComboBox), m_wkey_file_combo(new QComboBox)
{
    setWindowTitle(tr("Edit Partition"));
    nivo_set_help_topic(*this, NIVO_HELP_PARTITION);
    setWindowIcon(nivo_get_icon(NIVO_ICON_IMAGEWRIGHT));
    setSizeGripEnabled(false);
    m_name_edit->setObjectName(QStringLiteral("m_name_edit"));
    m_puf_file_combo->setObjectName(QStringLiteral("m_puf_file_combo"));
    m_puf_file_combo->setMinimumWidth(COMBO_MINIMUM_WIDTH);
    m_wkey_file_combo->setObjectName(QStringLiteral("m_wkey_file_combo"));
    m_wkey_file_combo->setMinimumWidth(COMBO_MINIMUM_WIDTH);
    auto* const form = new QFormLayout;
    form->addRow(tr("Name:"), m_name_edit);
    form->addRow(tr("PUF file:"), m_puf_file_combo);
    form->addRow(tr("WKEY file:"), m_wkey_file_combo);
    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    auto* const layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(buttons);
    layout->setSizeConstraint(QLayout::SetFixedSize);

    nivo_safe_connect(m_puf_file_combo, SIGNAL(currentIndexChanged(int)), this,
                      SLOT(update_wkey_file_combo(int)), Qt::AutoConnection, __FILE__, __LINE__);
    nivo_safe_connect(buttons, SIGNAL(accepted()), this, SLOT(accept()), Qt::AutoConnection, __FILE__,
                      __LINE__);
    nivo_safe_connect(buttons, SIGNAL(rejected()), this, SLOT(reject()), Qt::AutoConnection, __FILE__,
                      __LINE__);
    populate_puf_file_combo();
    populate_wkey_file_combo();
    m_name_edit->setText(VEK_GUI_UTIL::from_local(m_name));
    m_name_edit->setEnabled(false);
    form->labelForField(m_name_edit)->setEnabled(false);
}

void VEK_DLG_PUF_PARTITION_PROPERTIES::set_puf_file(const PGM_COMMON_XML_ELEMENT* element)
{
    VEK_ELEMENT_COMBO::set_current(*m_puf_file_combo, element);
}

void VEK_DLG_PUF_PARTITION_PROPERTIES::set_wkey_file(const PGM_COMMON_XML_ELEMENT* element)
{
    VEK_ELEMENT_COMBO::set_current(*m_wkey_file_combo, element);
}

const PGM_COMMON_XML_ELEMENT* VEK_DLG_PUF_PARTITION_PROPERTIES::get_puf_file() const
{
    return VEK_ELEMENT_COMBO::get(*m_puf_file_combo, m_puf_file_combo->currentIndex());
}

const PGM_COMMON_XML_ELEMENT* VEK_DLG_PUF_PARTITION_PROPERTIES::get_wkey_file() const
{
    return m_wkey_file_combo->isEnabled()
               ? VEK_ELEMENT_COMBO::get(*m_wkey_file_combo, m_wkey_file_combo->currentIndex())
               : nullptr;
}

void VEK_DLG_PUF_PARTITION_PROPERTIES::populate_puf_file_combo()
{
    populate_combo(*m_puf_file_combo, FIO_EXT_PUF);
}

void VEK_DLG_PUF_PARTITION_PROPERTIES::populate_wkey_file_combo()
{
    populate_combo(*m_wkey_file_combo, FIO_EXT_WKEY);
}

/// The files are told by their extension here, not by the type that the setup gives them.
void VEK_DLG_PUF_PARTITION_PROPERTIES::populate_combo(QComboBox& combo, FIO_EXTENSION_TYPE extension) const
{
    VEK_ELEMENT_COMBO::add(combo, tr("None"), nullptr);
    const std::string wanted = fio_get_extension_string(extension);
    for (auto* const raw_file : VEK_FILE_ASSISTANT::get_raw_file_elements(m_vek.get())) {
        const FIO_PATH path(raw_file->text);
        if ("." + path.extension() == wanted) {
            VEK_ELEMENT_COMBO::add(combo, VEK_GUI_UTIL::from_local(path.filename()), raw_file);
        }
    }
}

void VEK_DLG_PUF_PARTITION_PROPERTIES::update_wkey_file_combo(int index)
{
    if (index == -1) {
        return;
    }
    m_wkey_file_combo->setEnabled(VEK_ELEMENT_COMBO::get(*m_puf_file_combo, index) != nullptr);
}
