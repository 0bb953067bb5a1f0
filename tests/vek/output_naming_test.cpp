#include "output_fixture.h"
#include "vek_file_type_tree_node.h"

namespace
{

using PROBE = VEK_MODEL_OUTPUT_FILES_PROBE;

class OUTPUT_NAMING : public OUTPUT_FIXTURE
{
protected:
    OUTPUT_NAMING() : m_model(make_model()) { m_model->refresh(); }
    std::string shown(const BRANCH& branch) const
    {
        return find(*m_model, branch).siblingAtColumn(1).data().toString().toStdString();
    }

    std::unique_ptr<VEK_MODEL_OUTPUT_FILES> m_model;
};

} // namespace

TEST_F(OUTPUT_NAMING, every_row_shows_base_name_suffix_and_extension)
{
    m_cache->family = DEV_FAMILY_GRANITE;
    m_cache->output_name = "top";
    m_model->refresh();
    EXPECT_EQ(rows(*m_model, true), "[ ] CVP_GROUP top\n"
                                    "  ( ) PERIPH_JIC top.periph.jic\n"
                                    "    ( ) CVP_CORE_RBF top_jic.rbf\n"
                                    "    ( ) MAP top_jic.map\n"
                                    "    ( ) SEC_RPD top_jic.rpd\n"
                                    "  ( ) PERIPH_POF top.periph.pof\n"
                                    "    ( ) CVP_CORE_RBF top_pof.rbf\n"
                                    "    ( ) MAP top_pof.map\n"
                                    "    ( ) SEC_RPD top_pof.rpd\n"
                                    "  ( ) PERIPH_RPD top.periph.rpd\n"
                                    "    ( ) CVP_CORE_RBF top_rpd.rbf\n"
                                    "    ( ) MAP top_rpd.map\n"
                                    "[ ] EKP top.ekp\n"
                                    "[ ] JAM top.jam\n"
                                    "[ ] JBC top.jbc\n"
                                    "[ ] JIC top.jic\n"
                                    "  ( ) MAP top_jic.map\n"
                                    "  ( ) SEC_RPD top_jic.rpd\n"
                                    "[ ] PRRBF top.prrbf\n"
                                    "[ ] POF top.pof\n"
                                    "  ( ) MAP top_pof.map\n"
                                    "  ( ) SEC_RPD top_pof.rpd\n"
                                    "[ ] RPD top.rpd\n"
                                    "  ( ) MAP top_rpd.map\n"
                                    "[ ] SVF top.svf\n");
}

TEST_F(OUTPUT_NAMING, the_processor_group_has_a_suffix_of_its_own)
{
    m_cache->family = DEV_FAMILY_ZIRCON;
    m_model->refresh();
    EXPECT_EQ(shown({VEK_HPS_GROUP_FILE_TYPE, VEK_PERIPH_RPD_FILE_TYPE}), "output_file.hps.rpd");
    EXPECT_EQ(shown({VEK_HPS_GROUP_FILE_TYPE, VEK_PERIPH_RPD_FILE_TYPE, VEK_HPS_CORE_RBF_FILE_TYPE}),
              "output_file_rpd.rbf");
}

TEST_F(OUTPUT_NAMING, the_stored_name_has_neither_suffix_nor_extension)
{
    m_cache->output_name = "my.top.hex";
    EXPECT_EQ(PROBE::full_file_name(*m_model, VEK_POF_FILE_TYPE, VEK_INVALID_FILE_TYPE), "my.top.hex");
    EXPECT_EQ(PROBE::full_file_name(*m_model, VEK_SEC_RPD_FILE_TYPE, VEK_POF_FILE_TYPE), "my.top.hex_pof");
    EXPECT_EQ(PROBE::full_file_name(*m_model, VEK_MAP_FILE_TYPE, VEK_JIC_FILE_TYPE), "my.top.hex_jic")
        << "by the parent, not by the type";
    EXPECT_EQ(PROBE::full_file_name(*m_model, VEK_MAP_FILE_TYPE, VEK_CVP_GROUP_FILE_TYPE), "my.top.hex_")
        << "a parent without an extension";
    EXPECT_EQ(shown({VEK_POF_FILE_TYPE}), "my.top.hex.pof") << "what the user typed stays in front";
    VEK_FILE_TYPE_TREE_NODE group(VEK_CVP_GROUP_FILE_TYPE);
    auto* const child = new VEK_FILE_TYPE_TREE_NODE(VEK_PERIPH_POF_FILE_TYPE);
    group.add_child(child);
    EXPECT_EQ(PROBE::full_file_name(*m_model, child), "my.top.hex") << "group children are no exception";
}

TEST_F(OUTPUT_NAMING, an_empty_base_name_leaves_the_extension)
{
    m_cache->output_name.clear();
    EXPECT_EQ(shown({VEK_POF_FILE_TYPE}), ".pof");
    EXPECT_EQ(shown({VEK_POF_FILE_TYPE, VEK_MAP_FILE_TYPE}), "_pof.map");
}

TEST_F(OUTPUT_NAMING, the_name_column_is_text_alone)
{
    const QModelIndex name = m_model->index(0, 1);
    EXPECT_FALSE(name.data(Qt::ToolTipRole).isValid());
    EXPECT_FALSE(name.data(Qt::CheckStateRole).isValid());
    EXPECT_INTERNAL_ERROR(PROBE::name_data(*m_model, QModelIndex()), "index.isValid()");
    EXPECT_INTERNAL_ERROR(PROBE::name_data(*m_model, name.siblingAtColumn(0)),
                          "index.column() == COLUMN_FILE_NAME");
}

TEST_F(OUTPUT_NAMING, nodes_that_have_no_name_are_internal_errors)
{
    EXPECT_INTERNAL_ERROR(PROBE::full_file_name(*m_model, nullptr), "node != nullptr");
    EXPECT_INTERNAL_ERROR(PROBE::full_file_name(*m_model, PROBE::root(*m_model)),
                          "file_type != VEK_INVALID_FILE_TYPE");
    VEK_FILE_TYPE_TREE_NODE orphan(VEK_MAP_FILE_TYPE);
    EXPECT_INTERNAL_ERROR(PROBE::full_file_name(*m_model, &orphan), "parent_node != nullptr");
    VEK_FILE_TYPE_TREE_NODE root(VEK_INVALID_FILE_TYPE);
    root.add_child(new VEK_FILE_TYPE_TREE_NODE(VEK_MAP_FILE_TYPE));
    EXPECT_INTERNAL_ERROR(PROBE::full_file_name(*m_model, root.get_child(0)),
                          "parent != VEK_INVALID_FILE_TYPE");
}

TEST_F(OUTPUT_NAMING, a_new_name_goes_into_every_output_and_its_secondaries)
{
    tick(*m_model, {VEK_POF_FILE_TYPE});
    tick(*m_model, {VEK_POF_FILE_TYPE, VEK_SEC_RPD_FILE_TYPE});
    tick(*m_model, {VEK_RPD_FILE_TYPE});
    QSignalSpy changed(m_model.get(),
                       SIGNAL(dataChanged(const QModelIndex&, const QModelIndex&, const QVector<int>&)));
    VEK_FILE_ASSISTANT_LOG log;
    m_model->update_file_name(QStringLiteral("a"));
    EXPECT_EQ(log.take(), "set output_file type=POF name=a\n"
                          "set output_file type=POF secondary_file_type=MAP secondary_file_name=a_pof\n"
                          "set output_file type=POF secondary_file_type=SEC_RPD secondary_file_name=a_pof\n"
                          "set output_file type=RPD name=a\n"
                          "set output_file type=RPD secondary_file_type=MAP secondary_file_name=a_rpd\n");
    EXPECT_EQ(m_cache->output_name, "a");
    ASSERT_EQ(changed.count(), 1);
    EXPECT_FALSE(changed.at(0).at(0).toModelIndex().isValid()) << "everything that shows a name";
    EXPECT_FALSE(changed.at(0).at(1).toModelIndex().isValid());
    EXPECT_TRUE(changed.at(0).at(2).value<QVector<int>>().isEmpty());
    EXPECT_EQ(shown({VEK_RPD_FILE_TYPE, VEK_MAP_FILE_TYPE}), "a_rpd.map");

    log.refuse = [](const std::string& line) {
        return line.find("secondary_file_name") != std::string::npos;
    };
    EXPECT_INTERNAL_ERROR(m_model->update_file_name(QStringLiteral("b")), "success");
    log.refuse = [](const std::string&) { return true; };
    EXPECT_INTERNAL_ERROR(m_model->update_file_name(QStringLiteral("b")), "success");
}

TEST_F(OUTPUT_NAMING, without_outputs_a_new_name_changes_the_session_alone)
{
    const QSignalSpy changed(m_model.get(), SIGNAL(dataChanged(const QModelIndex&, const QModelIndex&)));
    VEK_FILE_ASSISTANT_LOG log;
    m_model->update_file_name(QString::fromUtf8("Gr\u00f6\u00dfe"));
    EXPECT_EQ(log.take(), "");
    EXPECT_EQ(m_cache->output_name, "Gr\u00f6\u00dfe") << "in the local encoding, which is UTF-8 here";
    EXPECT_EQ(changed.count(), 1);
}
