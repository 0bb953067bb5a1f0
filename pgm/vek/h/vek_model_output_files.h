#ifndef VEK_MODEL_OUTPUT_FILES_H
#define VEK_MODEL_OUTPUT_FILES_H

#include "vek_file_type.h"

#include <QAbstractItemModel>

#include <memory>
#include <string>
#include <vector>

class PGM_COMMON_XML_VEK_OUTPUT_FILE;
class PGM_COMMON_XML_VEK_VEK;
class VEK_FILE_TYPE_TREE_NODE;
struct VEK_FRAME_WND_CACHE;

/// The output file types that the family and mode of the cache allow, as a tree with ticks. A tick says that
/// the document holds an output file, or a secondary file, of that type; ticking writes it there. Ticked
/// top-level types must keep a category of input in common: what no longer fits is disabled. The name column
/// shows what generation will write.
///
/// Empty until the first refresh.
class VEK_MODEL_OUTPUT_FILES : public QAbstractItemModel
{
    Q_OBJECT
public:
    enum COLUMN : int {
        COLUMN_FILE_DESCRIPTION = 0,
        COLUMN_FILE_NAME = 1,
        NUMBER_OF_COLUMN = 2,
    };

    VEK_MODEL_OUTPUT_FILES(std::shared_ptr<PGM_COMMON_XML_VEK_VEK> vek,
                           std::shared_ptr<VEK_FRAME_WND_CACHE> cache, QObject* parent);
    ~VEK_MODEL_OUTPUT_FILES() override;

    QModelIndex index(int row, int column, const QModelIndex& parent = QModelIndex()) const override;
    QModelIndex parent(const QModelIndex& index) const override;
    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    /// Ticks or unticks a row. False, with nothing changed, for anything else than a tick in column 0, and
    /// when the document refuses.
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    /// A disabled row can still be selected; no row can be edited.
    Qt::ItemFlags flags(const QModelIndex& index) const override;

    /// VEK_INVALID_FILE_TYPE for an invalid index.
    VEK_FILE_TYPE get_file_type(const QModelIndex& index) const;
    /// Qt::Unchecked for an invalid index.
    int get_check_state(const QModelIndex& index) const;

    /// Takes another document; does not show it yet.
    void set_vek(std::shared_ptr<PGM_COMMON_XML_VEK_VEK> vek);
    /// Builds the tree anew, ticks what the document holds, and removes from the document what is no longer
    /// on offer. Announces each tick as if the user had made it.
    void refresh();
    /// Takes all rows away.
    void clear();
    /// Takes a new base name and writes it into all output files of the document.
    void update_file_name(const QString& name);

signals:
    /// A tick has been written on this row. On a refresh it comes while the model is being reset.
    void check_state_changed(const QModelIndex& index);

private:
    using NODE = VEK_FILE_TYPE_TREE_NODE;
    friend struct VEK_MODEL_OUTPUT_FILES_PROBE;

    /// Of the word under which a type stands in the document.
    static VEK_FILE_TYPE get_vek_file_type(const std::string& word);
    NODE* get_node(const QModelIndex& index) const;
    QModelIndex get_index(NODE* node) const;

    QVariant get_file_description_column_data(const QModelIndex& index, int role) const;
    QVariant get_file_name_column_data(const QModelIndex& index, int role) const;
    bool set_file_description_column_data(const QModelIndex& index, const QVariant& value, int role);

    /// The name in the document: without suffix and extension. A secondary file carries the extension of its
    /// parent, so that those of two parents stay apart.
    std::string get_full_file_name(VEK_FILE_TYPE file_type, VEK_FILE_TYPE parent) const;
    std::string get_full_file_name(const NODE* node) const;

    void replace_tree();
    void recursive_add_file_type(VEK_FILE_TYPE file_type, VEK_FILE_TYPE parent, VEK_FILE_TYPE grandparent);
    void add_file_type(VEK_FILE_TYPE file_type, VEK_FILE_TYPE parent, VEK_FILE_TYPE grandparent);
    void refresh_tree_nodes();
    NODE* find_node(const PGM_COMMON_XML_VEK_OUTPUT_FILE& output_file) const;
    void refresh_secondary_nodes(const PGM_COMMON_XML_VEK_OUTPUT_FILE& output_file, const NODE& node);

    /// True when the state of this node was changed. `use_default` holds for rows that follow their parent:
    /// those are ticked only when they are ticked by default.
    bool recursive_set_check_state(NODE* node, Qt::CheckState check_state, bool use_default);
    bool write_secondary(const NODE& node, Qt::CheckState check_state);
    bool write_primary(const NODE& node, Qt::CheckState check_state);
    void update_tree_enabled_state();
    void update_group_enabled_state(const NODE& group);
    void recursive_set_enabled(NODE* node, bool enabled);

    std::shared_ptr<PGM_COMMON_XML_VEK_VEK> m_vek;
    std::shared_ptr<VEK_FRAME_WND_CACHE> m_cache;
    NODE* m_root_node = nullptr;
    std::shared_ptr<NODE> m_root_owner;
};

#endif
