#ifndef IMAGEWRIGHT_TESTS_OUTPUT_FIXTURE_H
#define IMAGEWRIGHT_TESTS_OUTPUT_FIXTURE_H

#include "vek_db.h"
#include "vek_file_assistant_double.h"
#include "vek_frame_fixture.h"
#include "vek_model_output_files.h"
#include "vek_tab_output_files.h"
#include "vek_tree_output_files.h"

#include <QLineEdit>

#include <vector>

/// The rules behind the ticks, for the cases that no view leads to.
struct VEK_MODEL_OUTPUT_FILES_PROBE {
    using NODE = VEK_FILE_TYPE_TREE_NODE;
    static NODE* root(VEK_MODEL_OUTPUT_FILES& model) { return model.m_root_node; }
    static bool set_check_state(VEK_MODEL_OUTPUT_FILES& model, NODE* node, int state)
    {
        return model.recursive_set_check_state(node, static_cast<Qt::CheckState>(state), false);
    }
    static void update_enabled(VEK_MODEL_OUTPUT_FILES& model) { model.update_tree_enabled_state(); }
    static bool set_description_data(VEK_MODEL_OUTPUT_FILES& model, const QModelIndex& index,
                                     const QVariant& value)
    {
        return model.set_file_description_column_data(index, value, Qt::CheckStateRole);
    }
    static QVariant description_data(const VEK_MODEL_OUTPUT_FILES& model, const QModelIndex& index, int role)
    {
        return model.get_file_description_column_data(index, role);
    }
    static QVariant name_data(const VEK_MODEL_OUTPUT_FILES& model, const QModelIndex& index)
    {
        return model.get_file_name_column_data(index, Qt::DisplayRole);
    }
    static std::string full_file_name(const VEK_MODEL_OUTPUT_FILES& model, const NODE* node)
    {
        return model.get_full_file_name(node);
    }
    static std::string full_file_name(const VEK_MODEL_OUTPUT_FILES& model, VEK_FILE_TYPE type,
                                      VEK_FILE_TYPE parent)
    {
        return model.get_full_file_name(type, parent);
    }
    static QModelIndex index_of(const VEK_MODEL_OUTPUT_FILES& model, int row, int column, NODE* node)
    {
        return model.createIndex(row, column, node);
    }
};

/// A document and a session for a tab, or for a model of its own.
class OUTPUT_FIXTURE : public VEK_FRAME_FIXTURE
{
protected:
    using BRANCH = std::vector<VEK_FILE_TYPE>;

    OUTPUT_FIXTURE()
        : m_vek(std::make_shared<PGM_COMMON_XML_VEK_VEK>(PGM_COMMON_XML_ENUM_VEK)),
          m_cache(std::make_shared<VEK_FRAME_WND_CACHE>())
    {
        m_cache->current_mode = PGMIO_CONFIG_SCHEME_AS_X4;
        m_cache->family = DEV_FAMILY_BASALT;
    }

    /// The row of the branch, column 0; invalid when there is none.
    static QModelIndex find(const QAbstractItemModel& model, const BRANCH& branch);
    /// All rows, one a line, children indented: "[x] RBF", "[ ] POF", "(x) MAP" when disabled. With names the
    /// text of the second column follows.
    static std::string rows(const QAbstractItemModel& model, bool names = false);
    /// The output files: "POF name=top dir=out cvp (MAP top_pof, SEC_RPD top_pof)".
    std::string document() const;
    static bool tick(QAbstractItemModel& model, const BRANCH& branch, bool ticked = true);

    std::unique_ptr<VEK_MODEL_OUTPUT_FILES> make_model() const;
    std::unique_ptr<VEK_TAB_OUTPUT_FILES> make_tab() const;
    static VEK_TREE_OUTPUT_FILES& tree(const QWidget& tab);
    static QLineEdit& edit(const QWidget& tab, const char* name);
    static QPushButton& button(const QWidget& tab, const char* name);
    /// Clicks the box of the row, as a user does.
    static void click_box(const QWidget& tab, const BRANCH& branch);
    static void select(const QWidget& tab, const BRANCH& branch);

    void add_secondary(const std::string& type, const std::string& secondary);
    void add_flash_device(const std::string& id);

    std::shared_ptr<PGM_COMMON_XML_VEK_VEK> m_vek;
    std::shared_ptr<VEK_FRAME_WND_CACHE> m_cache;
};

#endif
