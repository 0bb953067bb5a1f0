#include "vek_tree_output_files.h"

#include "msg_internal_error.h"
#include "nivo_safe_connect.h"
#include "pgm_common_xml_vek_auto_export.h"
#include "vek_model_output_files.h"

#include <QHeaderView>
#include <QPainter>
#include <QStyledItemDelegate>

namespace
{

/// Styles draw the outline of a box darker than the window, where it drowns on a dark background.
class VISIBLE_BOX_DELEGATE : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        QStyledItemDelegate::paint(painter, option, index);
        if (option.palette.color(QPalette::Base).lightness() >= 128) {
            return;
        }
        QStyleOptionViewItem cell = option;
        initStyleOption(&cell, index);
        if (!cell.features.testFlag(QStyleOptionViewItem::HasCheckIndicator)) {
            return;
        }
        const QRect box =
            cell.widget->style()->subElementRect(QStyle::SE_ItemViewItemCheckIndicator, &cell, cell.widget);
        const bool enabled = cell.state.testFlag(QStyle::State_Enabled);
        painter->save();
        painter->setPen(cell.palette.color(enabled ? QPalette::Active : QPalette::Disabled, QPalette::Text));
        painter->drawRect(box.adjusted(0, 0, -1, -1));
        painter->restore();
    }
};

int to_check_state(const QVariant& data)
{
    VEK_ASSERT(data.isValid());
    VEK_ASSERT(data.canConvert<int>());
    return data.toInt();
}

} // namespace

VEK_TREE_OUTPUT_FILES::VEK_TREE_OUTPUT_FILES(std::shared_ptr<PGM_COMMON_XML_VEK_VEK> vek,
                                             std::shared_ptr<VEK_FRAME_WND_CACHE> cache, QWidget* parent)
    : NIVO_TREE_VIEW(parent, FLAG_NONE), m_vek(std::move(vek)), m_cache(std::move(cache))
{
    VEK_ASSERT(m_vek != nullptr);
    VEK_ASSERT(m_cache != nullptr);
    auto* const output_model = new VEK_MODEL_OUTPUT_FILES(m_vek, m_cache, this);
    setModel(output_model);
    setItemDelegate(new VISIBLE_BOX_DELEGATE(this));

    auto* const header_view = new QHeaderView(Qt::Horizontal);
    header_view->setModel(output_model);
    header_view->resizeSection(VEK_MODEL_OUTPUT_FILES::COLUMN_FILE_DESCRIPTION, 450);
    header_view->setSectionResizeMode(VEK_MODEL_OUTPUT_FILES::COLUMN_FILE_NAME, QHeaderView::Stretch);
    header_view->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    setHeader(header_view);

    nivo_safe_connect(output_model, SIGNAL(check_state_changed(const QModelIndex&)), this,
                      SIGNAL(check_state_changed()), Qt::AutoConnection, __FILE__, __LINE__);
    nivo_safe_connect(output_model, SIGNAL(check_state_changed(const QModelIndex&)), this,
                      SLOT(update_children_visibility(const QModelIndex&)), Qt::AutoConnection, __FILE__,
                      __LINE__);
    nivo_safe_connect(selectionModel(),
                      SIGNAL(selectionChanged(const QItemSelection&, const QItemSelection&)), this,
                      SIGNAL(selection_changed()), Qt::AutoConnection, __FILE__, __LINE__);
}

VEK_MODEL_OUTPUT_FILES* VEK_TREE_OUTPUT_FILES::get_model() const
{
    return qobject_cast<VEK_MODEL_OUTPUT_FILES*>(model());
}

void VEK_TREE_OUTPUT_FILES::refresh()
{
    VEK_MODEL_OUTPUT_FILES* const model = get_model();
    VEK_ASSERT(model != nullptr);
    // A reset takes the selection away without a word, and what depends on it would not follow.
    selectionModel()->clear();
    model->refresh();
    for (int row = 0; row < model->rowCount(); ++row) {
        update_children_visibility(model->index(row, VEK_MODEL_OUTPUT_FILES::COLUMN_FILE_DESCRIPTION));
    }
}

void VEK_TREE_OUTPUT_FILES::clear()
{
    VEK_MODEL_OUTPUT_FILES* const model = get_model();
    VEK_ASSERT(model != nullptr);
    selectionModel()->clear();
    model->clear();
}

void VEK_TREE_OUTPUT_FILES::set_vek(std::shared_ptr<PGM_COMMON_XML_VEK_VEK> vek)
{
    VEK_ASSERT(vek != nullptr);
    m_vek = std::move(vek);
    VEK_MODEL_OUTPUT_FILES* const model = get_model();
    VEK_ASSERT(model != nullptr);
    model->set_vek(m_vek);
}

void VEK_TREE_OUTPUT_FILES::update_file_name(const QString& name)
{
    VEK_MODEL_OUTPUT_FILES* const model = get_model();
    VEK_ASSERT(model != nullptr);
    model->update_file_name(name);
}

void VEK_TREE_OUTPUT_FILES::update_children_visibility(const QModelIndex& index)
{
    const VEK_MODEL_OUTPUT_FILES* const model = get_model();
    VEK_ASSERT(model != nullptr);
    const int check_state = to_check_state(model->data(index, Qt::CheckStateRole));
    VEK_ASSERT(check_state == Qt::Checked || check_state == Qt::Unchecked);
    // A tick enables and disables other rows too, of which the model does not tell.
    viewport()->update();
    if (check_state == Qt::Unchecked) {
        collapse(index);
        return;
    }
    expand(index);
    for (int row = 0; row < model->rowCount(index); ++row) {
        update_children_visibility(model->index(row, VEK_MODEL_OUTPUT_FILES::COLUMN_FILE_DESCRIPTION, index));
    }
}

std::vector<VEK_FILE_TYPE> VEK_TREE_OUTPUT_FILES::get_current_file_type() const
{
    std::vector<VEK_FILE_TYPE> branch;
    if (!selectionModel()->hasSelection()) {
        return branch;
    }
    const VEK_MODEL_OUTPUT_FILES* const model = get_model();
    VEK_ASSERT(model != nullptr);
    for (QModelIndex index = currentIndex(); index.isValid(); index = index.parent()) {
        const VEK_FILE_TYPE file_type = model->get_file_type(index);
        VEK_ASSERT(file_type != VEK_INVALID_FILE_TYPE);
        branch.insert(branch.begin(), file_type);
    }
    return branch;
}

QModelIndex VEK_TREE_OUTPUT_FILES::find_index(const std::vector<VEK_FILE_TYPE>& branch) const
{
    const VEK_MODEL_OUTPUT_FILES* const model = get_model();
    VEK_ASSERT(model != nullptr);
    QModelIndex current;
    for (const VEK_FILE_TYPE file_type : branch) {
        for (int row = 0; row < model->rowCount(current); ++row) {
            const QModelIndex index =
                model->index(row, VEK_MODEL_OUTPUT_FILES::COLUMN_FILE_DESCRIPTION, current);
            VEK_ASSERT(index.isValid());
            if (model->get_file_type(index) == file_type) {
                current = index;
                break;
            }
        }
    }
    return current;
}

int VEK_TREE_OUTPUT_FILES::get_check_state(const std::vector<VEK_FILE_TYPE>& branch) const
{
    const QModelIndex index = find_index(branch);
    return index.isValid() ? get_model()->get_check_state(index) : Qt::Unchecked;
}

int VEK_TREE_OUTPUT_FILES::get_check_state(VEK_FILE_TYPE file_type, VEK_FILE_TYPE parent,
                                           VEK_FILE_TYPE grandparent) const
{
    std::vector<VEK_FILE_TYPE> branch;
    for (const VEK_FILE_TYPE type : {grandparent, parent, file_type}) {
        if (type != VEK_INVALID_FILE_TYPE) {
            branch.push_back(type);
        }
    }
    const QModelIndex node = find_index(branch);
    VEK_ASSERT(node.isValid());
    return get_model()->get_check_state(node);
}
