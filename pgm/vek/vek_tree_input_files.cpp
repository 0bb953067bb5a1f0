#include "vek_tree_input_files.h"

#include "fio_types.h"
#include "msg_internal_error.h"
#include "nivo_background.h"
#include "nivo_busy_dlg.h"
#include "nivo_safe_connect.h"
#include "vek_frame_wnd.h"
#include "vek_frame_wnd_cache.h"
#include "vek_model_input_files.h"

#include <QHeaderView>
#include <QStyledItemDelegate>

#include <algorithm>

namespace
{

constexpr int HALF_LIGHT = 128;
const QColor LIGHT_RED(255, 110, 110);

bool is_sof_path(const FIO_PATH& path)
{
    return fio_get_extension_type(path.extension()) == FIO_EXT_SOF;
}

/// The model says black for all that is well, which nobody can read on a dark background. So that is taken
/// for the colour of plain text, and the red of what is not is made lighter there.
class PLAIN_TEXT_DELEGATE : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override
    {
        const QPalette palette = option->palette;
        QStyledItemDelegate::initStyleOption(option, index);
        const QColor color = option->palette.color(QPalette::Text);
        if (color == Qt::black) {
            option->palette = palette;
        } else if (color == Qt::red && palette.color(QPalette::Base).lightness() < HALF_LIGHT) {
            option->palette.setColor(QPalette::Text, LIGHT_RED);
        }
    }
};

} // namespace

VEK_TREE_INPUT_FILES::VEK_TREE_INPUT_FILES(std::shared_ptr<PGM_COMMON_XML_VEK_VEK> vek,
                                           std::shared_ptr<VEK_FRAME_WND_CACHE> cache, QWidget* parent)
    : NIVO_TREE_VIEW(parent), m_vek(std::move(vek)), m_cache(std::move(cache))
{
    VEK_ASSERT(m_vek != nullptr);
    VEK_ASSERT(m_cache != nullptr);
    auto* const model = new VEK_MODEL_INPUT_FILES(m_vek, m_cache, this);
    setModel(model);
    setItemDelegate(new PLAIN_TEXT_DELEGATE(this));

    auto* const header = new QHeaderView(Qt::Horizontal);
    header->setModel(model);
    // Large fonts would cut the labels.
    for (int column = 0; column < header->count(); ++column) {
        header->setDefaultSectionSize(
            std::max(header->defaultSectionSize(), header->sectionSizeHint(column)));
    }
    header->resizeSection(VEK_MODEL_INPUT_FILES::COLUMN_FILE_PATH, 220);
    header->resizeSection(VEK_MODEL_INPUT_FILES::COLUMN_DEVICE, 160);
    header->resizeSection(VEK_MODEL_INPUT_FILES::COLUMN_HPS_FILE, 180);
    header->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    setHeader(header);

    nivo_safe_connect(selectionModel(), SIGNAL(currentChanged(const QModelIndex&, const QModelIndex&)), this,
                      SIGNAL(current_changed(const QModelIndex&, const QModelIndex&)), Qt::AutoConnection,
                      __FILE__, __LINE__);
    nivo_safe_connect(model, SIGNAL(input_files_changed()), this, SIGNAL(input_files_changed()),
                      Qt::AutoConnection, __FILE__, __LINE__);
    nivo_safe_connect(model, SIGNAL(device_changed(const QString&)), this,
                      SIGNAL(device_changed(const QString&)), Qt::AutoConnection, __FILE__, __LINE__);
}

VEK_TREE_INPUT_FILES::~VEK_TREE_INPUT_FILES()
{
    if (!m_add_bitstream_watcher.isRunning()) {
        return;
    }
    VEK_MODEL_INPUT_FILES* const task_model = get_model();
    const std::unique_ptr<QItemSelectionModel> old_selection(selectionModel());
    setModel(nullptr);
    task_model->disconnect();
    task_model->setParent(nullptr);
    task_model->leave_to_task();
    auto* const keeper = new QFutureWatcher<int>(task_model);
    connect(keeper, SIGNAL(finished()), task_model, SLOT(deleteLater()));
    keeper->setFuture(m_add_bitstream_watcher.future());
}

VEK_MODEL_INPUT_FILES* VEK_TREE_INPUT_FILES::get_model() const
{
    auto* const model = qobject_cast<VEK_MODEL_INPUT_FILES*>(QTreeView::model());
    VEK_ASSERT(model != nullptr);
    return model;
}

VEK_FRAME_WND* VEK_TREE_INPUT_FILES::find_main_window() const
{
    // A host may have several windows of the kind open, and another one be active by now.
    for (QWidget* widget = parentWidget(); widget != nullptr; widget = widget->parentWidget()) {
        if (auto* const frame = qobject_cast<VEK_FRAME_WND*>(widget)) {
            return frame;
        }
    }
    auto* const main_window =
        qobject_cast<VEK_FRAME_WND*>(mok_get_main_frame_wnd_with_clsid(NIVO_CLSID_VEK_DEFAULT_DOC));
    VEK_ASSERT_TEXT(main_window != nullptr, "main_window");
    return main_window;
}

void VEK_TREE_INPUT_FILES::set_vek(std::shared_ptr<PGM_COMMON_XML_VEK_VEK> vek)
{
    VEK_ASSERT(vek != nullptr);
    VEK_MODEL_INPUT_FILES* const model = get_model();
    m_vek = std::move(vek);
    model->set_vek(m_vek);
}

void VEK_TREE_INPUT_FILES::refresh()
{
    VEK_MODEL_INPUT_FILES* const model = get_model();
    // The reset takes the current row away without a word, and the buttons would stay as they are for it.
    setCurrentIndex(QModelIndex());
    model->refresh();
    for (int row = 0; row < model->rowCount(); ++row) {
        expand(model->index(row, 0));
    }
}

void VEK_TREE_INPUT_FILES::add_bitstream(const FIO_PATH& path)
{
    VEK_FRAME_WND* const main_window = find_main_window();
    main_window->centralWidget()->setEnabled(false);
    main_window->set_file_actions_enabled(false);
    m_busy_dlg = new NIVO_BUSY_DLG(tr("Please wait while the Imagewright is processing..."),
                                   tr("Imagewright"), main_window->centralWidget());
    nivo_safe_connect(&m_add_bitstream_watcher, SIGNAL(finished()), this, SLOT(add_bitstream_finished()),
                      Qt::UniqueConnection, __FILE__, __LINE__);
    m_add_bitstream_watcher.setFuture(
        nivo_run_in_background([model = get_model(), path] { return model->add_bitstream(path); }));
}

void VEK_TREE_INPUT_FILES::add_bitstream_finished()
{
    nivo_pass_hand_over_point();
    const int row = m_add_bitstream_watcher.future().result();
    if (row != -1) {
        auto* const model = qobject_cast<VEK_MODEL_INPUT_FILES*>(QTreeView::model());
        VEK_ASSERT_TEXT(model != nullptr, "model");
        expand(model->index(row, 0));
    }
    VEK_FRAME_WND* const main_window = find_main_window();
    main_window->centralWidget()->setEnabled(true);
    main_window->set_file_actions_enabled(true);
    delete m_busy_dlg;
    m_busy_dlg = nullptr;
}

void VEK_TREE_INPUT_FILES::add_sof_file(const FIO_PATH& path, const std::string& bitstream_id)
{
    if (is_sof_path(path) &&
        VEK_FILE_ASSISTANT::get_bitstream_element(m_vek.get(), bitstream_id) != nullptr) {
        get_model()->add_sof_file(path, bitstream_id);
    }
}

void VEK_TREE_INPUT_FILES::add_raw_data(const FIO_PATH& path)
{
    if (!is_sof_path(path)) {
        get_model()->add_raw_data(path);
    }
}

void VEK_TREE_INPUT_FILES::update_bitstream_properties(const std::string& id, const FIO_PATH& path,
                                                       const PARAMS& params)
{
    if (VEK_FILE_ASSISTANT::get_bitstream_element(m_vek.get(), id) != nullptr) {
        get_model()->update_bitstream_properties(id, path, params);
    }
}

void VEK_TREE_INPUT_FILES::update_raw_data_properties(const std::string& id, const FIO_PATH& path,
                                                      const PARAMS& params)
{
    if (VEK_FILE_ASSISTANT::get_raw_file_element(m_vek.get(), id) != nullptr) {
        get_model()->update_raw_data_properties(id, path, params);
    }
}

void VEK_TREE_INPUT_FILES::remove_bitstream(const std::string& id)
{
    get_model()->remove_bitstream(id);
}

void VEK_TREE_INPUT_FILES::remove_sof_file(const std::string& path, const std::string& id)
{
    get_model()->remove_sof_file(path, id);
}

void VEK_TREE_INPUT_FILES::remove_raw_data(const std::string& id)
{
    get_model()->remove_raw_data(id);
}
