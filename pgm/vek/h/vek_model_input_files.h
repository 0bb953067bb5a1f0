#ifndef VEK_MODEL_INPUT_FILES_H
#define VEK_MODEL_INPUT_FILES_H

#include "fio_path.h"
#include "nivo_background.h"
#include "vek_file_assistant.h"
#include "vek_gui_gate.h"

#include <QAbstractItemModel>

#include <memory>
#include <string>
#include <vector>

struct PGM_DEVICE;
struct VEK_FRAME_WND_CACHE;

/// The input files of the document as a tree: the bitstreams with their files below them, and the raw data
/// files behind all bitstreams.
///
/// The document is the model. An index points to the element of its row (BITSTREAM, PATH or RAW_FILE), and
/// each question is answered from the document at that moment. An element that goes takes its indexes along,
/// and another document starts with a reset, so that no index outlives its element.
///
/// Beyond that it is the one place where input files enter the document and leave it, with what hangs on
/// them: the links of the output files, the assignments of partitions, what the session knows of its device,
/// and the signing properties that files share.
///
/// Threads: everything belongs to the GUI thread, but add_bitstream() may run on another one. It reads files
/// there, and does each change of document and cache, with the announcements to the views, as one step on the
/// GUI thread (VEK_GUI_GATE). Meanwhile the GUI thread only reads, as the window is disabled; so it always
/// paints a whole document, and needs no lock for that.
class VEK_MODEL_INPUT_FILES : public QAbstractItemModel
{
    Q_OBJECT
public:
    using PARAMS = VEK_FILE_ASSISTANT::PARAMS;

    enum COLUMN : int {
        COLUMN_FILE_PATH = 0, ///< the id of a bitstream, the name of a file
        COLUMN_DEVICE = 1,    ///< the one device of the session
        COLUMN_COMPRESSION = 2,
        COLUMN_ENCRYPTION = 3,
        COLUMN_HPS_FILE = 4,
        COLUMN_COUNT = 5,
    };

    VEK_MODEL_INPUT_FILES(std::shared_ptr<PGM_COMMON_XML_VEK_VEK> vek,
                          std::shared_ptr<VEK_FRAME_WND_CACHE> cache, QObject* parent);
    /// A background add may have been the last to work on the document.
    ~VEK_MODEL_INPUT_FILES() override { nivo_pass_hand_over_point(); }

    QModelIndex index(int row, int column, const QModelIndex& parent = QModelIndex()) const override;
    QModelIndex parent(const QModelIndex& child) const override;
    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    /// Writes the id or the path of a row; only column 0, and only the display role.
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

    /// Takes another document and forgets all indexes. The session stays as it is until refresh().
    void set_vek(std::shared_ptr<PGM_COMMON_XML_VEK_VEK> vek);
    /// The element of an index; null for an invalid one.
    static PGM_COMMON_XML_ELEMENT* get_element(const QModelIndex& index);
    /// All bitstreams, then all raw files.
    std::vector<PGM_COMMON_XML_ELEMENT*> get_top_level_items() const;

    /// Learns the session anew from the files, and names the files that are missing in a message box.
    void refresh();

    /// Whether a second bitstream may come in beside the file's compiled scheme. On false the reason has been
    /// reported. The file must have passed the pre-check: internal errors "status", "pgmio_bitfield !=
    /// nullptr".
    bool check_config_mode(const FIO_PATH& path) const;
    /// False for devices that take a single bitstream. Internal error "device".
    bool check_support_multiple_images(const PGM_DEVICE* device) const;

    QVariant get_file_path_column_data(const QModelIndex& index, int role) const;
    QVariant get_device_column_data(const QModelIndex& index, int role) const;
    QVariant get_compression_column_data(const QModelIndex& index, int role) const;
    QVariant get_encryption_column_data(const QModelIndex& index, int role) const;
    QVariant get_hps_file_column_data(const QModelIndex& index, int role) const;
    bool set_file_path_column_data(const QModelIndex& index, const QVariant& value, int role);

    /// Adds a bitstream with its first file, as an input of all output files there are. The result is its
    /// row, or -1 when the file was refused: that has then been reported, and the document is as before. Any
    /// thread.
    int add_bitstream(const FIO_PATH& path);
    /// Adds a file to a bitstream. False when there is no such bitstream, or when the file was refused, which
    /// has then been reported.
    bool add_sof_file(const FIO_PATH& path, const std::string& bitstream_id);
    /// Adds a raw data file, unseen. Internal error "Unsupported raw file type" unless is_raw_data_path().
    void add_raw_data(const FIO_PATH& path);
    /// Whether the extension of the path is that of a raw data file.
    static bool is_raw_data_path(const FIO_PATH& path);

    /// Holds a file against the session. The first file of a session settles family, device and limits.
    /// False, reported, when the family of the file does not fit. Internal errors "device", "status",
    /// "pgmio_bitfield".
    bool update_cache(const FIO_PATH& path, const PGM_DEVICE* device);

    /// Removes the bitstream with its files. Without any bitstream the session has no device.
    void remove_bitstream(const std::string& id);
    /// Removes a file, and its bitstream with the last one. With files left, the views are put right only by
    /// the refresh() that must follow.
    void remove_sof_file(const std::string& path, const std::string& bitstream_id);
    void remove_raw_data(const std::string& id);

    /// Stores what a dialog has given for a raw file. Does nothing when there is no such file.
    void update_raw_data_properties(const std::string& id, const FIO_PATH& path, PARAMS params);
    /// Stores what a dialog has given for a file of a bitstream, and hands the shared ones on.
    void update_bitstream_properties(const std::string& id, const FIO_PATH& path, const PARAMS& params);

    /// In a session that shares signing properties: appends those of the first signed file to `params`, the
    /// values of the file that is about to be added.
    void inherit_bitstream_properties(const std::string& id, const FIO_PATH& path, PARAMS& params) const;
    /// In such a session: copies the shared ones among `params`, just stored for a file, to all other files.
    void populate_bitstream_properties(const std::string& id, const FIO_PATH& path, const PARAMS& params);

    /// Gives a model whose window goes to the task that still runs on it.
    void leave_to_task() { m_gate.close(); }

signals:
    void input_files_changed();
    /// The device of the session; empty when the last file has gone.
    void device_changed(const QString& device_name);

private:
    /// The pre-check, and for the families whose scheme is read out of the file also that.
    static bool precheck_bitstream(const FIO_PATH& path, const PGM_DEVICE** device, std::string& device_name,
                                   std::string& message);
    void learn_device(const FIO_PATH& path);
    PGM_COMMON_XML_VEK_VEK* document() const { return m_vek.get(); }
    void put_persistent_indexes_right(const PGM_COMMON_XML_ELEMENT* gone, const std::string& bitstream_id);

    std::shared_ptr<PGM_COMMON_XML_VEK_VEK> m_vek;
    std::shared_ptr<VEK_FRAME_WND_CACHE> m_cache;
    VEK_GUI_GATE m_gate;
};

#endif
