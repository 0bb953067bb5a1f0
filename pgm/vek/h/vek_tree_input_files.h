#ifndef VEK_TREE_INPUT_FILES_H
#define VEK_TREE_INPUT_FILES_H

#include "nivo_tree_view.h"
#include "vek_file_assistant.h"

#include <QFutureWatcher>

#include <memory>
#include <string>

class FIO_PATH;
class NIVO_BUSY_DLG;
class VEK_FRAME_WND;
class VEK_MODEL_INPUT_FILES;
struct VEK_FRAME_WND_CACHE;

/// The view of the input files, and the only door to their model.
class VEK_TREE_INPUT_FILES : public NIVO_TREE_VIEW
{
    Q_OBJECT
public:
    using PARAMS = VEK_FILE_ASSISTANT::PARAMS;

    VEK_TREE_INPUT_FILES(std::shared_ptr<PGM_COMMON_XML_VEK_VEK> vek,
                         std::shared_ptr<VEK_FRAME_WND_CACHE> cache, QWidget* parent);
    /// Waits for nothing: an add that still runs keeps the model, and goes on without the window.
    ~VEK_TREE_INPUT_FILES() override;

    /// Takes another document; the session follows with refresh().
    void set_vek(std::shared_ptr<PGM_COMMON_XML_VEK_VEK> vek);
    /// Learns the session anew from the files, and shows all bitstreams open. Nothing is selected then.
    void refresh();

    /// Adds a bitstream in the background behind a busy dialog; until it is there, or refused, the window and
    /// its file entries are disabled. Internal error "main_window" without a window.
    void add_bitstream(const FIO_PATH& path);
    /// Does nothing unless it is a SOF file and there is such a bitstream.
    void add_sof_file(const FIO_PATH& path, const std::string& bitstream_id);
    /// Does nothing for a SOF file.
    void add_raw_data(const FIO_PATH& path);
    /// These two do nothing when there is no such bitstream or raw file.
    void update_bitstream_properties(const std::string& id, const FIO_PATH& path, const PARAMS& params);
    void update_raw_data_properties(const std::string& id, const FIO_PATH& path, const PARAMS& params);
    void remove_bitstream(const std::string& id);
    void remove_sof_file(const std::string& path, const std::string& id);
    void remove_raw_data(const std::string& id);

public slots:
    void add_bitstream_finished();

signals:
    void current_changed(const QModelIndex& current, const QModelIndex& previous);
    void input_files_changed();
    void device_changed(const QString& device_name);

private:
    VEK_MODEL_INPUT_FILES* get_model() const;
    VEK_FRAME_WND* find_main_window() const;

    std::shared_ptr<PGM_COMMON_XML_VEK_VEK> m_vek;
    std::shared_ptr<VEK_FRAME_WND_CACHE> m_cache;
    NIVO_BUSY_DLG* m_busy_dlg = nullptr; ///< while an add runs
    QFutureWatcher<int> m_add_bitstream_watcher;
};

#endif
