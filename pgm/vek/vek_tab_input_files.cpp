#include "vek_tab_input_files.h"

#include "msg_internal_error.h"
#include "msgs/vek_msgs.h"
#include "nivo_native_file_dlg.h"
#include "nivo_safe_connect.h"
#include "vek_db.h"
#include "vek_dlg_sof_properties.h"
#include "vek_file_assistant.h"
#include "vek_frame_wnd_cache.h"
#include "vek_gui_util.h"
#include "vek_model_input_files.h"
#include "vek_tree_input_files.h"
#include "vek_util.h"

#include <QGridLayout>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

namespace
{

bool is_bitstream_file_type(FIO_FILE_TYPE type)
{
    return type == FIO_SOF_FILE || type == FIO_CSOF_FILE || type == FIO_RSOF_FILE || type == FIO_PMSF_FILE;
}

/// What opens the button for bitstreams. Files with regions to be replaced come in beside one of these.
bool is_bitstream_of_its_own(FIO_FILE_TYPE type)
{
    return type == FIO_SOF_FILE || type == FIO_PMSF_FILE || type == FIO_CSOF_FILE;
}

FIO_EXTENSION_TYPE get_extension_type(const std::string& path)
{
    return fio_get_extension_type(FIO_PATH(path).extension());
}

} // namespace

VEK_TAB_INPUT_FILES::VEK_TAB_INPUT_FILES(std::shared_ptr<PGM_COMMON_XML_VEK_VEK> vek,
                                         std::shared_ptr<VEK_FRAME_WND_CACHE> cache, QWidget* parent,
                                         Qt::WindowFlags flags)
    : QWidget(parent, flags), m_vek(std::move(vek)), m_cache(std::move(cache))
{
    VEK_ASSERT(m_vek != nullptr);
    VEK_ASSERT(m_cache != nullptr);
    auto* const line = new QFrame;
    line->setFrameShape(QFrame::HLine);
    line->setFrameShadow(QFrame::Sunken);
    m_input_file_tree = new VEK_TREE_INPUT_FILES(m_vek, m_cache, nullptr);
    m_input_file_tree->setObjectName(QStringLiteral("m_input_file_tree"));
    m_input_file_tree->setAccessibleName(tr("Input files"));
    m_add_bitstream_button =
        add_button("m_add_bitstream_button", tr("Add Bitstream..."), SLOT(add_bitstream()));
    m_add_raw_data_button = add_button("m_add_raw_data_button", tr("Add Raw Data..."), SLOT(add_raw_data()));
    m_add_file_button = add_button("m_add_file_button", tr("Add File..."), SLOT(add_file()));
    m_remove_button = add_button("m_remove_button", tr("Remove"), SLOT(remove()));
    m_properties_button = add_button("m_properties_button", tr("Properties..."), SLOT(properties()));

    // A file may have gone since its row was chosen. The press then takes the button away before the click.
    nivo_safe_connect(m_properties_button, SIGNAL(pressed()), this, SLOT(update_buttons()),
                      Qt::AutoConnection, __FILE__, __LINE__);

    auto* const button_column = new QVBoxLayout;
    button_column->setAlignment(Qt::AlignTop);
    for (QPushButton* const button : {m_add_bitstream_button, m_add_raw_data_button, m_add_file_button,
                                      m_remove_button, m_properties_button}) {
        button_column->addWidget(button);
    }
    for (QPushButton* const button : {m_add_file_button, m_remove_button, m_properties_button}) {
        button->setEnabled(false);
    }
    auto* const grid = new QGridLayout(this);
    grid->addWidget(new QLabel(tr("Specify one or more input files to convert.")), 0, 0, 1, 2);
    grid->addWidget(line, 1, 0, 1, 2);
    grid->addWidget(m_input_file_tree, 2, 0);
    grid->addLayout(button_column, 2, 1, Qt::AlignTop);

    nivo_safe_connect(m_input_file_tree, SIGNAL(current_changed(const QModelIndex&, const QModelIndex&)),
                      this, SLOT(update_buttons()), Qt::AutoConnection, __FILE__, __LINE__);
    nivo_safe_connect(m_input_file_tree, SIGNAL(input_files_changed()), this, SLOT(update_buttons()),
                      Qt::AutoConnection, __FILE__, __LINE__);
    nivo_safe_connect(m_input_file_tree, SIGNAL(input_files_changed()), this, SIGNAL(input_files_changed()),
                      Qt::AutoConnection, __FILE__, __LINE__);
    nivo_safe_connect(m_input_file_tree, SIGNAL(device_changed(const QString&)), this,
                      SIGNAL(device_changed(const QString&)), Qt::AutoConnection, __FILE__, __LINE__);
}

QPushButton* VEK_TAB_INPUT_FILES::add_button(const char* name, const QString& text, const char* slot)
{
    auto* const button = new QPushButton(text);
    button->setObjectName(QLatin1String(name));
    nivo_safe_connect(button, SIGNAL(clicked()), this, slot, Qt::AutoConnection, __FILE__, __LINE__);
    return button;
}

void VEK_TAB_INPUT_FILES::set_vek(std::shared_ptr<PGM_COMMON_XML_VEK_VEK> vek)
{
    VEK_ASSERT(vek != nullptr);
    m_vek = std::move(vek);
    m_input_file_tree->set_vek(m_vek);
}

void VEK_TAB_INPUT_FILES::refresh()
{
    m_input_file_tree->refresh();
}

void VEK_TAB_INPUT_FILES::reset()
{
    const std::vector<std::string> bitstream_ids = VEK_FILE_ASSISTANT::get_bitstream_ids(m_vek.get());
    const std::vector<std::string> raw_file_ids = VEK_FILE_ASSISTANT::get_raw_file_ids(m_vek.get());
    for (const std::string& id : bitstream_ids) {
        m_input_file_tree->remove_bitstream(id);
    }
    for (const std::string& id : raw_file_ids) {
        m_input_file_tree->remove_raw_data(id);
    }
}

PGM_COMMON_XML_ELEMENT* VEK_TAB_INPUT_FILES::get_current_element() const
{
    return VEK_MODEL_INPUT_FILES::get_element(m_input_file_tree->currentIndex());
}

void VEK_TAB_INPUT_FILES::update_input_file_types()
{
    VEK_ASSERT(m_vek != nullptr);
    const std::vector<VEK_FILE_TYPE> types = VEK_FILE_ASSISTANT::get_output_file_types(m_vek.get());
    m_input_file_types = VEK_DB_UTIL::get_common_input_file_types(types);
    const std::vector<VEK_FILE_CATEGORY> categories =
        VEK_DB_UTIL::get_common_file_categories(VEK_DB_UTIL::get_primary_file_types(types));
    m_file_category = categories.empty() ? VEK_FILE_CATEGORY_BITSTREAM : categories.front();
    update_buttons();
}

void VEK_TAB_INPUT_FILES::update_add_file_button_visible()
{
    VEK_ASSERT(m_cache != nullptr);
    m_add_file_button->setVisible(m_cache->family == DEV_FAMILY_MULTI_FILE);
}

void VEK_TAB_INPUT_FILES::update_buttons()
{
    const auto begin = m_input_file_types.begin();
    const auto end = m_input_file_types.end();
    m_add_bitstream_button->setEnabled(m_cache->max_bitstreams >
                                           VEK_FILE_ASSISTANT::get_bitstream_elements(m_vek.get()).size() &&
                                       std::any_of(begin, end, is_bitstream_of_its_own));
    m_add_raw_data_button->setEnabled(!std::all_of(begin, end, is_bitstream_of_its_own));
    const PGM_COMMON_XML_ELEMENT* const element = get_current_element();
    if (element == nullptr) {
        m_add_file_button->setEnabled(false);
        m_remove_button->setEnabled(false);
        m_properties_button->setEnabled(false);
        return;
    }
    m_remove_button->setEnabled(true);
    m_add_file_button->setEnabled(element->m_class_type == PGM_COMMON_XML_ENUM_BITSTREAM &&
                                  element->get_child_count(PGM_COMMON_XML_ENUM_PATH, true) <
                                      m_cache->max_files_per_bitstream);
    m_properties_button->setEnabled(has_properties(*element));
}

bool VEK_TAB_INPUT_FILES::has_properties(const PGM_COMMON_XML_ELEMENT& element) const
{
    const std::string& path = element.read_string();
    const FIO_EXTENSION_TYPE extension =
        get_extension_type(VEK_GUI_UTIL::make_path_absolute(path).fullpath());
    switch (element.m_class_type) {
    case PGM_COMMON_XML_ENUM_PATH: {
        const PGM_DEVICE* device = nullptr;
        std::string device_name;
        std::string message;
        return (extension == FIO_EXT_SOF || get_extension_type(path) == FIO_EXT_PMSF) &&
               VEK_UTIL::precheck_input_file(path, &device, device_name, message, false);
    }
    case PGM_COMMON_XML_ENUM_RAW_FILE:
        return extension != FIO_EXT_PUF && extension != FIO_EXT_WKEY;
    default:
        return false;
    }
}

QStringList VEK_TAB_INPUT_FILES::get_name_filters(FILE_KIND kind) const
{
    QStringList filters;
    for (const FIO_FILE_TYPE type : m_input_file_types) {
        if (is_bitstream_file_type(type) == (kind == FILE_KIND::BITSTREAM)) {
            filters.append(VEK_GUI_UTIL::from_local(fio_get_file_type_filter(type, false)));
        }
    }
    return filters;
}

bool VEK_TAB_INPUT_FILES::ask_for_file(const QString& title, const QStringList& name_filters, FIO_PATH& path)
{
    NIVO_NATIVE_FILE_DLG dialog(this);
    dialog.setNameFilters(name_filters);
    dialog.setFileMode(QFileDialog::ExistingFiles);
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    dialog.setWindowTitle(title);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) {
        return false;
    }
    path = FIO_PATH(VEK_GUI_UTIL::to_local(dialog.selectedFiles().constFirst()));
    return true;
}

void VEK_TAB_INPUT_FILES::add_bitstream()
{
    FIO_PATH path;
    if (ask_for_file(tr("Add Bitstream"), get_name_filters(FILE_KIND::BITSTREAM), path)) {
        m_input_file_tree->add_bitstream(VEK_GUI_UTIL::make_path_absolute(path));
    }
}

void VEK_TAB_INPUT_FILES::add_raw_data()
{
    FIO_PATH path;
    if (!ask_for_file(tr("Add Raw Data"), get_name_filters(FILE_KIND::RAW_DATA), path)) {
        return;
    }
    // A name may be typed past the filters of the dialog.
    if (!VEK_MODEL_INPUT_FILES::is_raw_data_path(path) &&
        get_extension_type(path.fullpath()) != FIO_EXT_SOF) {
        vek_report(MSG_VEK::O::FILE_PRECHECK_FAILED(
            path.filename() + " is not a raw data file. The name of one ends in .hex, .rbf, .bin, .puf or "
                              ".wkey; choose such a file."));
        return;
    }
    m_input_file_tree->add_raw_data(VEK_GUI_UTIL::format_path(path));
}

void VEK_TAB_INPUT_FILES::add_file()
{
    const PGM_COMMON_XML_ELEMENT* const element = get_current_element();
    const bool is_bitstream = element != nullptr && element->m_class_type == PGM_COMMON_XML_ENUM_BITSTREAM;
    const QStringList filters =
        is_bitstream
            ? QStringList(VEK_GUI_UTIL::from_local(fio_get_extension_type_filter(FIO_EXT_SOF, false)))
            : QStringList();
    FIO_PATH path;
    if (is_bitstream && ask_for_file(tr("Add File"), filters, path)) {
        m_input_file_tree->add_sof_file(path, static_cast<const PGM_COMMON_XML_VEK_BITSTREAM*>(element)->id);
    }
}

void VEK_TAB_INPUT_FILES::remove()
{
    const PGM_COMMON_XML_ELEMENT* const element = get_current_element();
    if (element == nullptr) {
        m_input_file_tree->refresh();
        return;
    }
    if (element->get_child_count(PGM_COMMON_XML_ENUM__INVALID__, true) > 0) {
        QMessageBox box(QMessageBox::Warning, tr("Imagewright"),
                        tr("Removing this item will remove all of its child items."),
                        QMessageBox::Yes | QMessageBox::No, this);
        box.setInformativeText(tr("Do you want to continue?"));
        box.setDefaultButton(QMessageBox::No);
        if (box.exec() != QMessageBox::Yes) {
            m_input_file_tree->refresh();
            return;
        }
    }
    // Copies: the element does not outlive its removal.
    switch (element->m_class_type) {
    case PGM_COMMON_XML_ENUM_BITSTREAM: {
        const std::string id = static_cast<const PGM_COMMON_XML_VEK_BITSTREAM*>(element)->id;
        m_input_file_tree->remove_bitstream(id);
        break;
    }
    case PGM_COMMON_XML_ENUM_PATH: {
        const std::string path = static_cast<const PGM_COMMON_XML_VEK_PATH*>(element)->text;
        const std::string id = static_cast<const PGM_COMMON_XML_VEK_BITSTREAM*>(element->get_parent())->id;
        m_input_file_tree->remove_sof_file(path, id);
        break;
    }
    case PGM_COMMON_XML_ENUM_RAW_FILE: {
        const std::string id = static_cast<const PGM_COMMON_XML_VEK_RAW_FILE*>(element)->id;
        m_input_file_tree->remove_raw_data(id);
        break;
    }
    default:
        break;
    }
    m_input_file_tree->refresh();
}

void VEK_TAB_INPUT_FILES::properties()
{
    const PGM_COMMON_XML_ELEMENT* const element = get_current_element();
    const bool is_path = element != nullptr && element->m_class_type == PGM_COMMON_XML_ENUM_PATH;
    const bool is_raw_file = element != nullptr && element->m_class_type == PGM_COMMON_XML_ENUM_RAW_FILE;
    VEK_ASSERT_TEXT(is_path || is_raw_file, "Missing properties handler for the selected file.");
    const FIO_PATH path(element->read_string());
    std::string id;
    const PGM_DEVICE* device = nullptr;
    if (is_path) {
        id = static_cast<const PGM_COMMON_XML_VEK_BITSTREAM*>(element->get_parent())->id;
        std::string device_name;
        std::string message;
        const bool status = VEK_UTIL::precheck_input_file(path, &device, device_name, message, false);
        VEK_ASSERT(status);
    } else {
        id = static_cast<const PGM_COMMON_XML_VEK_RAW_FILE*>(element)->id;
    }
    VEK_DLG_SOF_PROPERTIES dialog(device, fio_get_file_type(get_extension_type(path.fullpath())),
                                  VEK_FILE_ASSISTANT::get_output_file_types(m_vek.get()), nullptr,
                                  Qt::WindowFlags());
    VEK_FILE_ASSISTANT::PARAMS query =
        is_path ? VEK_FILE_ASSISTANT::PARAMS{{VEK_CMD_PARAM_BITSTREAM_ID, id},
                                             {VEK_CMD_PARAM_BITSTREAM_PATH, path.fullpath()}}
                : VEK_FILE_ASSISTANT::PARAMS{{VEK_CMD_PARAM_RAW_FILE_ID, id},
                                             {VEK_CMD_PARAM_RAW_FILE_RAW_FILE, path.fullpath()}};
    for (const PGM_COMMON_XML_VEK_CMD_PARAM_ENUM param : dialog.get_property_ids()) {
        query.emplace_back(param, std::string());
    }
    // A device may have nothing to set; a query of the keys alone would be answered with all that there is.
    if (!dialog.get_property_ids().empty()) {
        dialog.set_property_values(VEK_FILE_ASSISTANT::get(
            m_vek.get(), is_path ? VEK_CMD_OPT_BITSTREAM : VEK_CMD_OPT_RAW_FILE, query));
    }
    if (is_path) {
        dialog.check_dependent_properties();
    }
    if (dialog.exec() != QDialog::Accepted) {
        return;
    }
    const VEK_FILE_ASSISTANT::PARAMS values = dialog.get_property_values();
    if (is_path) {
        m_input_file_tree->update_bitstream_properties(id, path, values);
    } else {
        m_input_file_tree->update_raw_data_properties(id, path, values);
    }
}
