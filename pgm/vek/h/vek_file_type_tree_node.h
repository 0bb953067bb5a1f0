#ifndef VEK_FILE_TYPE_TREE_NODE_H
#define VEK_FILE_TYPE_TREE_NODE_H

#include "vek_file_type.h"

#include <Qt>

#include <vector>

/// One output file type that family and mode offer, with its tick. The root has VEK_INVALID_FILE_TYPE. Below
/// it stand the top-level types, below those the children of a group or the secondary types of a primary, and
/// below a group's child its own secondary types.
///
/// A node owns its children. No node goes alone: the whole tree is replaced.
class VEK_FILE_TYPE_TREE_NODE
{
public:
    explicit VEK_FILE_TYPE_TREE_NODE(VEK_FILE_TYPE file_type);
    ~VEK_FILE_TYPE_TREE_NODE();
    VEK_FILE_TYPE_TREE_NODE(const VEK_FILE_TYPE_TREE_NODE&) = delete;
    VEK_FILE_TYPE_TREE_NODE& operator=(const VEK_FILE_TYPE_TREE_NODE&) = delete;

    VEK_FILE_TYPE get_file_type() const { return m_file_type; }
    /// The row can be ticked.
    bool get_enabled() const { return m_enabled; }
    void set_enabled(bool enabled) { m_enabled = enabled; }
    /// Checked or unchecked, never in between.
    Qt::CheckState get_check_state() const { return m_check_state; }
    void set_check_state(Qt::CheckState check_state) { m_check_state = check_state; }
    /// In the order of the rows.
    const std::vector<VEK_FILE_TYPE_TREE_NODE*>& get_children() const { return m_children; }
    VEK_FILE_TYPE_TREE_NODE* get_parent() const { return m_parent; }

    /// The row among the siblings; 0 for the root. Internal error "it != siblings.end()" when the parent does
    /// not know this node.
    int get_index() const;
    /// Null when there is no such row.
    VEK_FILE_TYPE_TREE_NODE* get_child(int row) const;
    /// The first direct child of the type, or null.
    VEK_FILE_TYPE_TREE_NODE* get_child(VEK_FILE_TYPE type) const;
    /// Appends the child and takes it over.
    void add_child(VEK_FILE_TYPE_TREE_NODE* child);
    /// All nodes of the type in this subtree, deepest and leftmost first. Internal error "child != nullptr".
    std::vector<VEK_FILE_TYPE_TREE_NODE*> search(VEK_FILE_TYPE type);

private:
    VEK_FILE_TYPE m_file_type;
    bool m_enabled = true;
    Qt::CheckState m_check_state = Qt::Unchecked;
    std::vector<VEK_FILE_TYPE_TREE_NODE*> m_children;
    VEK_FILE_TYPE_TREE_NODE* m_parent = nullptr;
};

#endif
