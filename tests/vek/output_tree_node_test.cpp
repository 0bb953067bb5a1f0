#include "internal_error_trap.h"
#include "vek_file_type_tree_node.h"

using NODE = VEK_FILE_TYPE_TREE_NODE;

TEST(OUTPUT_TREE_NODE, a_new_node_is_enabled_unticked_and_alone)
{
    const NODE node(VEK_RBF_FILE_TYPE);
    EXPECT_EQ(node.get_file_type(), VEK_RBF_FILE_TYPE);
    EXPECT_TRUE(node.get_enabled());
    EXPECT_EQ(node.get_check_state(), Qt::Unchecked);
    EXPECT_TRUE(node.get_children().empty());
    EXPECT_EQ(node.get_parent(), nullptr);
    EXPECT_EQ(node.get_index(), 0);
}

TEST(OUTPUT_TREE_NODE, children_keep_their_order_and_know_their_row)
{
    NODE root(VEK_INVALID_FILE_TYPE);
    auto* const rpd = new NODE(VEK_RPD_FILE_TYPE);
    auto* const hex = new NODE(VEK_HEX_FILE_TYPE);
    auto* const second_rpd = new NODE(VEK_RPD_FILE_TYPE);
    for (NODE* const child : {rpd, hex, second_rpd}) {
        root.add_child(child);
    }
    EXPECT_EQ(root.get_children(), (std::vector<NODE*>{rpd, hex, second_rpd}));
    EXPECT_EQ(hex->get_parent(), &root);
    EXPECT_EQ(rpd->get_index(), 0);
    EXPECT_EQ(hex->get_index(), 1);
    EXPECT_EQ(second_rpd->get_index(), 2);
    EXPECT_EQ(root.get_child(1), hex);
    EXPECT_EQ(root.get_child(-1), nullptr);
    EXPECT_EQ(root.get_child(3), nullptr);
    EXPECT_EQ(root.get_child(VEK_RPD_FILE_TYPE), rpd) << "the first one";
    EXPECT_EQ(root.get_child(VEK_SVF_FILE_TYPE), nullptr);
}

TEST(OUTPUT_TREE_NODE, a_type_is_looked_for_among_direct_children_only)
{
    NODE root(VEK_INVALID_FILE_TYPE);
    root.add_child(new NODE(VEK_POF_FILE_TYPE));
    root.get_child(0)->add_child(new NODE(VEK_MAP_FILE_TYPE));
    EXPECT_EQ(root.get_child(VEK_MAP_FILE_TYPE), nullptr);
}

TEST(OUTPUT_TREE_NODE, a_parent_that_does_not_know_its_child_is_an_internal_error)
{
    struct FORGETFUL : NODE {
        using NODE::NODE;
    };
    NODE first(VEK_POF_FILE_TYPE);
    NODE second(VEK_JIC_FILE_TYPE);
    auto* const child = new NODE(VEK_MAP_FILE_TYPE);
    first.add_child(child);
    second.add_child(child); // moves the child's idea of its parent
    EXPECT_EQ(child->get_index(), 0);
    const_cast<std::vector<NODE*>&>(second.get_children()).clear();
    EXPECT_INTERNAL_ERROR(child->get_index(), "it != siblings.end()");
}

TEST(OUTPUT_TREE_NODE, a_search_finds_all_nodes_deepest_and_leftmost_first)
{
    NODE root(VEK_INVALID_FILE_TYPE);
    auto* const pof = new NODE(VEK_POF_FILE_TYPE);
    auto* const jic = new NODE(VEK_JIC_FILE_TYPE);
    root.add_child(pof);
    root.add_child(jic);
    auto* const inner_pof = new NODE(VEK_POF_FILE_TYPE);
    auto* const map = new NODE(VEK_MAP_FILE_TYPE);
    auto* const inner_map = new NODE(VEK_MAP_FILE_TYPE);
    pof->add_child(inner_pof);
    inner_pof->add_child(inner_map);
    jic->add_child(map);
    EXPECT_EQ(root.search(VEK_POF_FILE_TYPE), (std::vector<NODE*>{inner_pof, pof}));
    EXPECT_EQ(root.search(VEK_MAP_FILE_TYPE), (std::vector<NODE*>{inner_map, map}));
    EXPECT_EQ(root.search(VEK_INVALID_FILE_TYPE), std::vector<NODE*>{&root});
    EXPECT_EQ(map->search(VEK_MAP_FILE_TYPE), std::vector<NODE*>{map});
    EXPECT_TRUE(root.search(VEK_SVF_FILE_TYPE).empty());
    const_cast<std::vector<NODE*>&>(root.get_children()).push_back(nullptr);
    EXPECT_INTERNAL_ERROR(root.search(VEK_MAP_FILE_TYPE), "child != nullptr");
    const_cast<std::vector<NODE*>&>(root.get_children()).pop_back();
}
