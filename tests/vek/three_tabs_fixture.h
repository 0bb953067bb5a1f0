#ifndef IMAGEWRIGHT_TESTS_THREE_TABS_FIXTURE_H
#define IMAGEWRIGHT_TESTS_THREE_TABS_FIXTURE_H

#include "pof_decoder.h"
#include "reference_loader.h"
#include "user_hands.h"
#include "vek_frame_fixture.h"

#include <QAbstractItemView>

#include <functional>

/// The whole window with its real back end and its real dialog modules, worked as a user works it: nothing is
/// done but clicks and keys on what is to be seen. The file dialogs are answered in advance.
class THREE_TABS_FIXTURE : public VEK_FRAME_FIXTURE
{
protected:
    using BYTES = std::vector<std::uint8_t>;

    THREE_TABS_FIXTURE();

    /// Writes a bitstream file for the device, whose configuration data is `size` bytes of its own pattern.
    void make_bitstream(const std::string& name, const std::string& device, std::size_t size,
                        const std::string& scheme = {}, bool has_firmware = false);
    /// The bytes put into a bitstream file.
    const BYTES& content(const std::string& name) const { return m_contents.at(name); }

    void choose_family_and_mode(const QString& family, const QString& mode);
    void tick_output(const QString& text);
    void open_tab(int index);
    void add_bitstream(const std::string& name);
    void add_raw_data(const std::string& name);
    QAbstractItemView& tree(const char* name) const;
    /// The rows of a tree, one a line, children indented, columns divided by "|".
    std::string rows(const char* tree_name) const;
    void select_row(const QString& name) { USER_HANDS::select(tree("m_config_device_tree"), name); }
    /// Clicks a button of the window and does this in the dialog that comes up, then its Ok.
    void in_dialog(const char* button, const std::function<void(QDialog&)>& work);
    /// The same for a partition; empty texts are left as they are.
    void in_partition_dialog(const char* button, const QString& input, const QString& page = {},
                             const QString& start = {}, const QString& end = {});
    void save_as(const std::string& name);
    /// A new window on the setup.
    void reopen(const std::string& name);
    /// Clicks Generate and waits for the end; the text of the box.
    std::string generate();
    DECODED_POF read_pof(const std::string& name) const;
    /// Loads the configuration stream at that address as the device would; nothing when there is no sound
    /// stream of one bitstream file.
    static LOADED_IMAGE load_image(const BYTES& image, std::uint64_t address);
    /// Its configuration data.
    static BYTES load(const BYTES& image, std::uint64_t address);

    std::unique_ptr<VEK_FRAME_WND> m_frame;
    MODAL_ANSWERS m_answers;

private:
    void wait() const;

    std::map<std::string, BYTES> m_contents;
};

#endif
