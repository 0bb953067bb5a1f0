// What the session learns from its input files.

#include "msg_internal_error.h"
#include "msgs/vek_msgs.h"
#include "pgm_device.h"
#include "pgmio_device_file_reader.h"
#include "vek_frame_wnd_cache.h"
#include "vek_gui_util.h"
#include "vek_model_input_files.h"
#include "vek_util.h"

#include <QMessageBox>

namespace
{

bool is_compiled_option_on(const FIO_PATH& path, const PGM_DEVICE* device, const char* option)
{
    PGM_CHAIN_ELEMENT chain(device);
    chain.set_path(path);
    PGM_CHAIN_ELEMENT::create_chain_element(&chain, true, nullptr, true, 0, false, false);
    const auto found = chain.get_option_map().find(option);
    return found != chain.get_option_map().end() && found->second;
}

void show_missing_files(const QStringList& paths)
{
    // More than this does not fit on a small screen: the rest is there on demand.
    constexpr int MAX_PATHS = 15;
    QString list;
    for (const QString& path : paths.mid(0, MAX_PATHS)) {
        list += path + QLatin1Char(' ');
    }
    if (paths.size() > MAX_PATHS) {
        list += VEK_MODEL_INPUT_FILES::tr("and %1 more").arg(paths.size() - MAX_PATHS);
    }
    QString text = VEK_MODEL_INPUT_FILES::tr(
        "Cannot find %s. Make sure the file(s) is located at the expected location or remove the "
        "incorrect file path and add the new file path.");
    text.replace(QStringLiteral("%s"), list);
    QMessageBox box(QMessageBox::Critical, VEK_MODEL_INPUT_FILES::tr("Imagewright"), text, QMessageBox::Ok);
    // A file name may look like markup.
    box.setTextFormat(Qt::PlainText);
    if (paths.size() > MAX_PATHS) {
        box.setDetailedText(paths.join(QLatin1Char('\n')));
    }
    box.exec();
}

} // namespace

bool VEK_MODEL_INPUT_FILES::precheck_bitstream(const FIO_PATH& path, const PGM_DEVICE** device,
                                               std::string& device_name, std::string& message)
{
    if (!VEK_UTIL::precheck_input_file(path, device, device_name, message, true)) {
        return false;
    }
    // The scheme of these files is read below, from a record that the pre-check passes over. A damaged one is
    // a fault of the file and shall be told like any other.
    return (*device)->family != DEV_FAMILY_ONCHIP_FLASH ||
           PGMIO_DEVICE_FILE_READER::read_file(path, nullptr, nullptr, nullptr, FIO_PATH(path.filename()),
                                               &message);
}

void VEK_MODEL_INPUT_FILES::refresh()
{
    beginResetModel();
    const auto bitstreams = VEK_FILE_ASSISTANT::get_bitstream_elements(document());
    const auto raw_files = VEK_FILE_ASSISTANT::get_raw_file_elements(document());
    const bool has_files = !bitstreams.empty() || !raw_files.empty();
    QStringList missing;
    const PGM_DEVICE* device = nullptr;
    std::string device_name;
    std::string message;
    for (const auto* const bitstream : bitstreams) {
        if (bitstream->path.empty()) {
            continue;
        }
        const std::string& path = bitstream->path.front()->text;
        const FIO_PATH full_path = VEK_GUI_UTIL::make_path_absolute(path);
        if (precheck_bitstream(full_path, &device, device_name, message)) {
            update_cache(full_path, device);
        } else {
            missing.append(VEK_GUI_UTIL::from_local(path));
        }
    }
    for (const auto* const raw_file : raw_files) {
        if (!VEK_UTIL::precheck_input_file(VEK_GUI_UTIL::make_path_absolute(raw_file->text), &device,
                                           device_name, message, false)) {
            missing.append(VEK_GUI_UTIL::from_local(raw_file->text));
        }
    }
    if (!missing.isEmpty()) {
        show_missing_files(missing);
    }
    if (!has_files) {
        emit device_changed(QString());
    }
    emit input_files_changed();
    endResetModel();
}

bool VEK_MODEL_INPUT_FILES::check_support_multiple_images(const PGM_DEVICE* device) const
{
    VEK_ASSERT_TEXT(device != nullptr, "device");
    return device->code != "kv3";
}

bool VEK_MODEL_INPUT_FILES::check_config_mode(const FIO_PATH& path) const
{
    const PGM_DEVICE* device = nullptr;
    std::string device_name;
    std::string message;
    bool status = VEK_UTIL::precheck_input_file(path, &device, device_name, message, true);
    VEK_ASSERT(status);
    if (device->family != DEV_FAMILY_ONCHIP_FLASH) {
        return true;
    }
    PGMIO_BITFIELD* bitfield = nullptr;
    status = PGMIO_DEVICE_FILE_READER::read_file(path, nullptr, &bitfield, nullptr);
    VEK_ASSERT(status);
    const std::unique_ptr<const PGMIO_BITFIELD> pgmio_bitfield(bitfield);
    VEK_ASSERT(pgmio_bitfield != nullptr);
    const PGMIO_CONFIG_SCHEME scheme = pgmio_bitfield->get_config_scheme();
    if (m_cache->family != DEV_FAMILY_ONCHIP_FLASH || m_cache->max_bitstreams != 2 ||
        scheme == PGMIO_CONFIG_SCHEME_DUAL_COMPRESSED_IMAGES) {
        return true;
    }
    vek_report(MSG_VEK::O::MULTIPLE_BITSTREAMS_UNSUPPORTED(PGMIO_CONFIG_SCHEME_STR.at(scheme)));
    return false;
}

bool VEK_MODEL_INPUT_FILES::update_cache(const FIO_PATH& path, const PGM_DEVICE* device)
{
    VEK_ASSERT_TEXT(device != nullptr, "device");
    if (m_cache->device_name.empty()) {
        learn_device(path);
    } else if (m_cache->family != device->family && m_cache->max_files_per_bitstream < 2) {
        vek_report(MSG_VEK::O::MIXED_FAMILIES_BITSTREAMS_UNSUPPORTED(path.fullpath(), device->name,
                                                                     m_cache->device_name));
        return false;
    }
    if (dev_family_is_secure(device->family)) {
        const bool is_encrypted = is_compiled_option_on(path, device, "sof_option_encryption");
        m_gate.run([&] { m_cache->sof_encryption_by_path[path.fullpath()] = is_encrypted; });
    }
    return true;
}

void VEK_MODEL_INPUT_FILES::learn_device(const FIO_PATH& path)
{
    const PGM_DEVICE* device = nullptr;
    std::string device_name;
    std::string message;
    bool status = VEK_UTIL::precheck_input_file(path, &device, device_name, message, true);
    VEK_ASSERT(status);
    std::unique_ptr<const PGMIO_BITFIELD> pgmio_bitfield;
    if (device->family == DEV_FAMILY_ONCHIP_FLASH) {
        PGMIO_BITFIELD* bitfield = nullptr;
        status = PGMIO_DEVICE_FILE_READER::read_file(path, nullptr, &bitfield, nullptr);
        VEK_ASSERT(status);
        pgmio_bitfield.reset(bitfield);
    }

    m_gate.run([&] {
        m_cache->family = device->family;
        m_cache->device = device->device;
        m_cache->device_name = device_name;
        VEK_FILE_ASSISTANT::get_config_mode(document(), m_cache->config_mode);
        if (m_cache->family == DEV_FAMILY_ONCHIP_FLASH) {
            m_cache->max_files_per_bitstream = 1;
            VEK_ASSERT_TEXT(pgmio_bitfield != nullptr, "pgmio_bitfield");
            m_cache->config_mode = pgmio_bitfield->get_config_scheme();
            if (m_cache->config_mode == PGMIO_CONFIG_SCHEME_DUAL_COMPRESSED_IMAGES) {
                m_cache->max_bitstreams = 2;
            }
        } else if (dev_family_is_secure(m_cache->family)) {
            m_cache->max_files_per_bitstream = 1;
            m_cache->shares_signing_properties = true;
            if (m_cache->config_mode == PGMIO_CONFIG_SCHEME_AS ||
                m_cache->config_mode == PGMIO_CONFIG_SCHEME_AS_X4) {
                m_cache->boot_rule_flag_a = false;
                m_cache->boot_rule_flag_b = false;
                m_cache->partition_rule_flag_a = true;
                m_cache->partition_rule_flag_b = true;
                // Four images fit beside the reserved areas; how many may be added is the line below.
                m_cache->max_bitstreams = 4;
            }
            m_cache->max_bitstreams = 8;
        } else {
            m_cache->max_bitstreams = 8;
        }
        emit device_changed(VEK_GUI_UTIL::from_local(m_cache->device_name));
    });
}
