#ifndef VEK_TREE_OUTPUT_FILES_H
#define VEK_TREE_OUTPUT_FILES_H

#include "nivo_tree_view.h"
#include "vek_file_type.h"

#include <memory>
#include <vector>

class PGM_COMMON_XML_VEK_VEK;
class VEK_MODEL_OUTPUT_FILES;
struct VEK_FRAME_WND_CACHE;

/// The view of the output file types. The children of a row are seen while it is ticked.
///
/// A branch is the types from a top-level row down to another row.
class VEK_TREE_OUTPUT_FILES : public NIVO_TREE_VIEW
{
    Q_OBJECT
public:
    VEK_TREE_OUTPUT_FILES(std::shared_ptr<PGM_COMMON_XML_VEK_VEK> vek,
                          std::shared_ptr<VEK_FRAME_WND_CACHE> cache, QWidget* parent);

    /// Builds the rows anew from the document; nothing is selected afterwards.
    void refresh();
    /// Takes all rows away.
    void clear();
    /// Takes another document; does not show it yet.
    void set_vek(std::shared_ptr<PGM_COMMON_XML_VEK_VEK> vek);

    /// The branch of the current row; empty when none is selected.
    std::vector<VEK_FILE_TYPE> get_current_file_type() const;
    /// The tick of the row at the end of the branch, Qt::Unchecked for an empty one.
    int get_check_state(const std::vector<VEK_FILE_TYPE>& branch) const;
    /// The same for a row given by its type and those above it, which are VEK_INVALID_FILE_TYPE where there
    /// is none. A row that does not exist is the internal error "node.isValid()".
    int get_check_state(VEK_FILE_TYPE file_type, VEK_FILE_TYPE parent, VEK_FILE_TYPE grandparent) const;

public slots:
    void update_file_name(const QString& name);
    /// Opens a ticked row and all ticked rows below it, closes an unticked one.
    void update_children_visibility(const QModelIndex& index);

signals:
    void check_state_changed();
    void selection_changed();

private:
    VEK_MODEL_OUTPUT_FILES* get_model() const;
    QModelIndex find_index(const std::vector<VEK_FILE_TYPE>& branch) const;

    std::shared_ptr<PGM_COMMON_XML_VEK_VEK> m_vek;
    std::shared_ptr<VEK_FRAME_WND_CACHE> m_cache;
};

#endif
