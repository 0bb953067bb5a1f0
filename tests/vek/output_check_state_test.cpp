#include "output_fixture.h"
#include "vek_file_type_tree_node.h"

namespace
{

using PROBE = VEK_MODEL_OUTPUT_FILES_PROBE;

class OUTPUT_CHECK_STATE : public OUTPUT_FIXTURE
{
protected:
    OUTPUT_CHECK_STATE() : m_model(make_model()) { m_model->refresh(); }

    /// The groups, both, as no real family has them.
    void offer_groups()
    {
        m_cache->family = DEV_FAMILY_NONE;
        m_cache->output_file_mask = 0;
        for (const VEK_FILE_TYPE type :
             {VEK_CVP_GROUP_FILE_TYPE, VEK_HPS_GROUP_FILE_TYPE, VEK_PERIPH_JIC_FILE_TYPE,
              VEK_PERIPH_POF_FILE_TYPE, VEK_MAP_FILE_TYPE, VEK_SEC_RPD_FILE_TYPE, VEK_RPD_FILE_TYPE}) {
            m_cache->output_file_mask |= 1u << type;
        }
        m_model->refresh();
    }

    std::unique_ptr<VEK_MODEL_OUTPUT_FILES> m_model;
};

} // namespace

TEST_F(OUTPUT_CHECK_STATE, ticking_a_primary_writes_it_with_all_inputs_the_document_has)
{
    add_bitstream(*m_vek, "Bitstream_1", "/in/a.sof");
    add_bitstream(*m_vek, "Bitstream_2", "/in/b.sof");
    add_flash_device("Flash_Device_1");
    VEK_FILE_ASSISTANT_LOG log;
    m_cache->output_directory = "out";
    EXPECT_TRUE(tick(*m_model, {VEK_SVF_FILE_TYPE}));
    EXPECT_EQ(log.take(), "set output_file directory=out name=output_file type=SVF\n"
                          "set output_file type=SVF bitstream_id=Bitstream_1\n"
                          "set output_file type=SVF bitstream_id=Bitstream_2\n");
    EXPECT_TRUE(tick(*m_model, {VEK_SVF_FILE_TYPE}, false));
    EXPECT_EQ(log.take(), "remove output_file type=SVF\n");
    EXPECT_EQ(document(), "");
}

TEST_F(OUTPUT_CHECK_STATE, ticking_a_flash_type_links_the_flash_devices_and_brings_its_default_children)
{
    add_bitstream(*m_vek, "Bitstream_1", "/in/a.sof");
    add_flash_device("Flash_Device_1");
    add_flash_device("Flash_Device_2");
    VEK_FILE_ASSISTANT_LOG log;
    EXPECT_TRUE(tick(*m_model, {VEK_JIC_FILE_TYPE}));
    EXPECT_EQ(log.take(),
              "set output_file directory=. name=output_file type=JIC\n"
              "set output_file type=JIC flash_device_id=Flash_Device_1\n"
              "set output_file type=JIC flash_device_id=Flash_Device_2\n"
              "set output_file type=JIC secondary_file_type=MAP secondary_file_name=output_file_jic\n");
    EXPECT_TRUE(tick(*m_model, {VEK_JIC_FILE_TYPE, VEK_SEC_RPD_FILE_TYPE}));
    EXPECT_EQ(log.take(),
              "set output_file type=JIC secondary_file_type=SEC_RPD secondary_file_name=output_file_jic\n");
    EXPECT_TRUE(tick(*m_model, {VEK_JIC_FILE_TYPE, VEK_SEC_RPD_FILE_TYPE}, false));
    EXPECT_EQ(log.take(), "remove output_file type=JIC secondary_file_type=SEC_RPD\n");
    EXPECT_EQ(document(), "JIC name=output_file dir=. Flash_Device_1 Flash_Device_2 (MAP output_file_jic)\n");
}

TEST_F(OUTPUT_CHECK_STATE, unticking_a_primary_removes_it_before_its_children)
{
    tick(*m_model, {VEK_POF_FILE_TYPE});
    VEK_FILE_ASSISTANT_LOG log;
    EXPECT_TRUE(tick(*m_model, {VEK_POF_FILE_TYPE}, false));
    EXPECT_EQ(log.take(), "remove output_file type=POF\n"
                          "remove output_file type=POF secondary_file_type=MAP\n"
                          "remove output_file type=POF secondary_file_type=SEC_RPD\n");
    EXPECT_EQ(m_model->get_check_state(find(*m_model, {VEK_POF_FILE_TYPE, VEK_MAP_FILE_TYPE})), Qt::Unchecked)
        << "what is gone already counts as removed";
    EXPECT_EQ(document(), "");
}

TEST_F(OUTPUT_CHECK_STATE, the_signal_follows_the_tick_and_data_changed_the_signal)
{
    std::vector<std::string> order;
    QObject::connect(m_model.get(), &VEK_MODEL_OUTPUT_FILES::check_state_changed, m_model.get(),
                     [&](const QModelIndex& index) {
                         order.push_back("check_state " +
                                         std::to_string(index.data(Qt::CheckStateRole).toInt()) + " " +
                                         document());
                         EXPECT_FALSE(m_model->flags(find(*m_model, {VEK_SVF_FILE_TYPE})) & Qt::ItemIsEnabled)
                             << "the other rows have been looked at";
                     });
    QObject::connect(m_model.get(), &QAbstractItemModel::dataChanged, m_model.get(),
                     [&](const QModelIndex& first, const QModelIndex& last, const QVector<int>& roles) {
                         EXPECT_EQ(first, last);
                         EXPECT_TRUE(roles.isEmpty());
                         order.push_back("data " + first.data().toString().toStdString());
                     });
    tick(*m_model, {VEK_RPD_FILE_TYPE});
    EXPECT_EQ(order,
              (std::vector<std::string>{"check_state 2 RPD name=output_file dir=. (MAP output_file_rpd)\n",
                                        "data " + VEK_DB::get_description(VEK_RPD_FILE_TYPE)}));
}

TEST_F(OUTPUT_CHECK_STATE, anything_but_a_tick_in_the_first_column_is_refused_in_silence)
{
    const QModelIndex index = find(*m_model, {VEK_RPD_FILE_TYPE});
    const QSignalSpy changed(m_model.get(), SIGNAL(check_state_changed(const QModelIndex&)));
    EXPECT_FALSE(m_model->setData(index, Qt::Checked, Qt::EditRole));
    EXPECT_FALSE(m_model->setData(index, QStringLiteral("ticked"), Qt::CheckStateRole));
    EXPECT_FALSE(m_model->setData(index, QVariant(), Qt::CheckStateRole));
    EXPECT_FALSE(m_model->setData(index.siblingAtColumn(1), Qt::Checked, Qt::CheckStateRole));
    EXPECT_FALSE(m_model->setData(QModelIndex(), Qt::Checked, Qt::CheckStateRole));
    EXPECT_EQ(changed.count(), 0);
    EXPECT_EQ(document(), "");
    EXPECT_EQ(m_model->get_check_state(index), Qt::Unchecked);
}

TEST_F(OUTPUT_CHECK_STATE, wrong_calls_are_internal_errors)
{
    const QModelIndex index = find(*m_model, {VEK_RPD_FILE_TYPE});
    EXPECT_INTERNAL_ERROR(m_model->setData(index, Qt::PartiallyChecked, Qt::CheckStateRole),
                          "check_state == Qt::Checked || check_state == Qt::Unchecked");
    EXPECT_INTERNAL_ERROR(PROBE::set_check_state(*m_model, nullptr, Qt::Checked), "node != nullptr");
    EXPECT_INTERNAL_ERROR(PROBE::set_check_state(*m_model, PROBE::root(*m_model), Qt::Checked),
                          "file_type != VEK_INVALID_FILE_TYPE");
    VEK_FILE_TYPE_TREE_NODE orphan(VEK_MAP_FILE_TYPE);
    EXPECT_INTERNAL_ERROR(PROBE::set_check_state(*m_model, &orphan, Qt::Checked), "parent != nullptr");
    EXPECT_INTERNAL_ERROR(PROBE::set_check_state(*m_model, &orphan, Qt::Unchecked), "parent != nullptr");
    VEK_FILE_TYPE_TREE_NODE group_child(VEK_PERIPH_RPD_FILE_TYPE);
    EXPECT_INTERNAL_ERROR(PROBE::set_check_state(*m_model, &group_child, Qt::Checked), "parent != nullptr");
    EXPECT_INTERNAL_ERROR(PROBE::set_description_data(*m_model, QModelIndex(), 2), "index.isValid()");
    EXPECT_INTERNAL_ERROR(PROBE::set_description_data(*m_model, index.siblingAtColumn(1), 2),
                          "index.column() == COLUMN_FILE_DESCRIPTION");
    EXPECT_INTERNAL_ERROR(PROBE::set_description_data(*m_model, index, QVariant()), "value.isValid()");
}

TEST_F(OUTPUT_CHECK_STATE, a_refusal_of_the_document_leaves_the_row_as_it_was)
{
    const QModelIndex index = find(*m_model, {VEK_POF_FILE_TYPE});
    const QSignalSpy changed(m_model.get(), SIGNAL(check_state_changed(const QModelIndex&)));
    VEK_FILE_ASSISTANT_LOG log;
    log.refuse = [](const std::string&) { return true; };
    EXPECT_FALSE(tick(*m_model, {VEK_POF_FILE_TYPE}));
    EXPECT_EQ(log.take(), "set output_file directory=. name=output_file type=POF\n")
        << "nothing below is tried";
    EXPECT_EQ(m_model->get_check_state(index), Qt::Unchecked);
    log.refuse = nullptr;
    EXPECT_TRUE(tick(*m_model, {VEK_POF_FILE_TYPE}));
    log.refuse = [](const std::string&) { return true; };
    EXPECT_FALSE(tick(*m_model, {VEK_POF_FILE_TYPE}, false));
    EXPECT_EQ(m_model->get_check_state(index), Qt::Checked);
    EXPECT_EQ(changed.count(), 1);
}

TEST_F(OUTPUT_CHECK_STATE, only_the_first_write_of_a_primary_counts)
{
    add_flash_device("Flash_Device_1");
    VEK_FILE_ASSISTANT_LOG log;
    log.refuse = [](const std::string& line) {
        return line.find("flash_device_id") != std::string::npos ||
               line.find("secondary") != std::string::npos;
    };
    EXPECT_TRUE(tick(*m_model, {VEK_POF_FILE_TYPE}));
    EXPECT_EQ(document(), "POF name=output_file dir=.\n");
    EXPECT_EQ(m_model->get_check_state(find(*m_model, {VEK_POF_FILE_TYPE})), Qt::Checked);
    EXPECT_EQ(m_model->get_check_state(find(*m_model, {VEK_POF_FILE_TYPE, VEK_MAP_FILE_TYPE})), Qt::Unchecked)
        << "a child that stays behind does not undo its parent";
}

TEST_F(OUTPUT_CHECK_STATE, ticked_rows_disable_what_shares_no_input_with_them)
{
    tick(*m_model, {VEK_RPD_FILE_TYPE});
    EXPECT_EQ(rows(*m_model), "( ) JAM\n"
                              "( ) JBC\n"
                              "[ ] JIC\n"
                              "  ( ) MAP\n"
                              "  ( ) SEC_RPD\n"
                              "[ ] POF\n"
                              "  ( ) MAP\n"
                              "  ( ) SEC_RPD\n"
                              "[x] RPD\n"
                              "  [x] MAP\n"
                              "( ) SVF\n");
    tick(*m_model, {VEK_RPD_FILE_TYPE}, false);
    tick(*m_model, {VEK_SVF_FILE_TYPE});
    EXPECT_EQ(rows(*m_model), "[ ] JAM\n"
                              "[ ] JBC\n"
                              "( ) JIC\n"
                              "  ( ) MAP\n"
                              "  ( ) SEC_RPD\n"
                              "( ) POF\n"
                              "  ( ) MAP\n"
                              "  ( ) SEC_RPD\n"
                              "( ) RPD\n"
                              "  ( ) MAP\n"
                              "[x] SVF\n");
}

TEST_F(OUTPUT_CHECK_STATE, a_ticked_row_that_the_rule_disables_stays_ticked_and_its_children_enabled)
{
    // Behind the view's back, as a document with outputs that do not go together has it.
    tick(*m_model, {VEK_RPD_FILE_TYPE});
    tick(*m_model, {VEK_SVF_FILE_TYPE});
    EXPECT_EQ(rows(*m_model), "( ) JAM\n"
                              "( ) JBC\n"
                              "( ) JIC\n"
                              "  ( ) MAP\n"
                              "  ( ) SEC_RPD\n"
                              "( ) POF\n"
                              "  ( ) MAP\n"
                              "  ( ) SEC_RPD\n"
                              "(x) RPD\n"
                              "  [x] MAP\n"
                              "(x) SVF\n");
}

TEST_F(OUTPUT_CHECK_STATE, without_rows_there_is_nothing_to_enable)
{
    m_model->clear();
    PROBE::update_enabled(*m_model);
    EXPECT_EQ(rows(*m_model), "");
}

TEST_F(OUTPUT_CHECK_STATE, a_group_writes_its_default_child_with_its_flag_and_nothing_itself)
{
    offer_groups();
    VEK_FILE_ASSISTANT_LOG log;
    EXPECT_TRUE(tick(*m_model, {VEK_CVP_GROUP_FILE_TYPE}));
    EXPECT_EQ(
        log.take(),
        "set output_file directory=. name=output_file type=PERIPH_POF cvp=1\n"
        "set output_file type=PERIPH_POF secondary_file_type=MAP secondary_file_name=output_file_pof\n");
    EXPECT_TRUE(tick(*m_model, {VEK_CVP_GROUP_FILE_TYPE, VEK_PERIPH_JIC_FILE_TYPE}));
    EXPECT_EQ(
        log.take(),
        "set output_file directory=. name=output_file type=PERIPH_JIC cvp=1\n"
        "set output_file type=PERIPH_JIC secondary_file_type=MAP secondary_file_name=output_file_jic\n");
    EXPECT_TRUE(tick(*m_model, {VEK_CVP_GROUP_FILE_TYPE}, false));
    EXPECT_EQ(document(), "");
    EXPECT_TRUE(tick(*m_model, {VEK_HPS_GROUP_FILE_TYPE}));
    EXPECT_EQ(document(), "PERIPH_POF name=output_file dir=. hps (MAP output_file_pof)\n");
}

TEST_F(OUTPUT_CHECK_STATE, a_group_without_a_default_child_leaves_the_document_alone_and_opens_its_children)
{
    offer_groups();
    m_cache->output_file_mask &= ~(1u << VEK_PERIPH_POF_FILE_TYPE);
    m_model->refresh();
    VEK_FILE_ASSISTANT_LOG log;
    EXPECT_TRUE(tick(*m_model, {VEK_CVP_GROUP_FILE_TYPE}));
    EXPECT_EQ(log.take(), "");
    EXPECT_EQ(rows(*m_model), "[x] CVP_GROUP\n"
                              "  [ ] PERIPH_JIC\n"
                              "    ( ) MAP\n"
                              "    ( ) SEC_RPD\n"
                              "[ ] HPS_GROUP\n"
                              "  ( ) PERIPH_JIC\n"
                              "    ( ) MAP\n"
                              "    ( ) SEC_RPD\n"
                              "( ) RPD\n"
                              "  ( ) MAP\n")
        << "a child that is not ticked by default keeps its own children unticked";
}

TEST_F(OUTPUT_CHECK_STATE, the_children_of_a_group_are_measured_against_each_other)
{
    m_cache->family = DEV_FAMILY_NONE;
    m_cache->current_mode = PGMIO_CONFIG_SCHEME_PS;
    m_model->refresh();
    tick(*m_model, {VEK_CVP_GROUP_FILE_TYPE});
    const BRANCH rbf = {VEK_CVP_GROUP_FILE_TYPE, VEK_PERIPH_RBF_FILE_TYPE};
    const BRANCH pof = {VEK_CVP_GROUP_FILE_TYPE, VEK_PERIPH_POF_FILE_TYPE};
    EXPECT_FALSE(m_model->flags(find(*m_model, rbf)).testFlag(Qt::ItemIsEnabled));
    tick(*m_model, pof, false);
    EXPECT_TRUE(m_model->flags(find(*m_model, rbf)).testFlag(Qt::ItemIsEnabled));
    tick(*m_model, rbf);
    EXPECT_FALSE(m_model->flags(find(*m_model, pof)).testFlag(Qt::ItemIsEnabled));
    EXPECT_TRUE(m_model->flags(find(*m_model, {VEK_CVP_GROUP_FILE_TYPE})).testFlag(Qt::ItemIsEnabled))
        << "and not against the top level";
}

TEST_F(OUTPUT_CHECK_STATE, one_child_under_both_groups_is_one_element_in_the_document)
{
    offer_groups();
    tick(*m_model, {VEK_CVP_GROUP_FILE_TYPE});
    tick(*m_model, {VEK_HPS_GROUP_FILE_TYPE});
    EXPECT_EQ(document(), "PERIPH_POF name=output_file dir=. cvp hps (MAP output_file_pof)\n");
    tick(*m_model, {VEK_HPS_GROUP_FILE_TYPE, VEK_PERIPH_POF_FILE_TYPE}, false);
    EXPECT_EQ(document(), "");
}

TEST_F(OUTPUT_CHECK_STATE, the_clicked_row_is_ticked_whatever_its_own_default_says)
{
    EXPECT_FALSE(VEK_DB::get_default_checked_state(VEK_RPD_FILE_TYPE));
    EXPECT_TRUE(tick(*m_model, {VEK_RPD_FILE_TYPE}));
    EXPECT_EQ(m_model->get_check_state(find(*m_model, {VEK_RPD_FILE_TYPE})), Qt::Checked);
}
