#include "vek_file_type_tree_node.h"

#include "msg_internal_error.h"

#include <algorithm>

VEK_FILE_TYPE_TREE_NODE::VEK_FILE_TYPE_TREE_NODE(VEK_FILE_TYPE file_type) : m_file_type(file_type) {}

VEK_FILE_TYPE_TREE_NODE::~VEK_FILE_TYPE_TREE_NODE()
{
    for (const VEK_FILE_TYPE_TREE_NODE* const child : m_children) {
        delete child;
    }
}

int VEK_FILE_TYPE_TREE_NODE::get_index() const
{
    if (m_parent == nullptr) {
        return 0;
    }
    const auto& siblings = m_parent->m_children;
    const auto it = std::find(siblings.begin(), siblings.end(), this);
    VEK_ASSERT(it != siblings.end());
    return static_cast<int>(it - siblings.begin());
}

VEK_FILE_TYPE_TREE_NODE* VEK_FILE_TYPE_TREE_NODE::get_child(int row) const
{
    const auto position = static_cast<std::size_t>(row);
    return row < 0 || position >= m_children.size() ? nullptr : m_children[position];
}

VEK_FILE_TYPE_TREE_NODE* VEK_FILE_TYPE_TREE_NODE::get_child(VEK_FILE_TYPE type) const
{
    const auto it = std::find_if(m_children.begin(), m_children.end(),
                                 [type](const auto* child) { return child->m_file_type == type; });
    return it == m_children.end() ? nullptr : *it;
}

void VEK_FILE_TYPE_TREE_NODE::add_child(VEK_FILE_TYPE_TREE_NODE* child)
{
    child->m_parent = this;
    m_children.push_back(child);
}

std::vector<VEK_FILE_TYPE_TREE_NODE*> VEK_FILE_TYPE_TREE_NODE::search(VEK_FILE_TYPE type)
{
    std::vector<VEK_FILE_TYPE_TREE_NODE*> found;
    for (VEK_FILE_TYPE_TREE_NODE* const child : m_children) {
        VEK_ASSERT(child != nullptr);
        const std::vector<VEK_FILE_TYPE_TREE_NODE*> below = child->search(type);
        found.insert(found.end(), below.begin(), below.end());
    }
    if (m_file_type == type) {
        found.push_back(this);
    }
    return found;
}
