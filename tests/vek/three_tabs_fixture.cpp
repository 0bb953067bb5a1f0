#include "three_tabs_fixture.h"

#include "nivo_busy_dlg.h"
#include "pack.h"

#include <QTest>

#include <filesystem>
#include <random>

namespace
{

std::string describe(const QAbstractItemModel& model, const QModelIndex& parent, const std::string& indent)
{
    std::string text;
    for (int row = 0; row < model.rowCount(parent); ++row) {
        QStringList columns;
        for (int column = 0; column < model.columnCount(); ++column) {
            columns << model.index(row, column, parent).data().toString();
        }
        text += indent + columns.join('|').toStdString() + "\n";
        text += describe(model, model.index(row, 0, parent), indent + "  ");
    }
    return text;
}

} // namespace

THREE_TABS_FIXTURE::THREE_TABS_FIXTURE()
{
    set_working_directory(m_directory.path());
    m_frame = make_frame();
    m_frame->resize(1100, 800);
    m_frame->show();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(m_frame.get()));
}

void THREE_TABS_FIXTURE::make_bitstream(const std::string& name, const std::string& device, std::size_t size,
                                        const std::string& scheme, bool has_firmware)
{
    std::mt19937 random(static_cast<unsigned>(m_contents.size()));
    BYTES bytes(size);
    for (std::uint8_t& byte : bytes) {
        byte = static_cast<std::uint8_t>(random());
    }
    write_file(m_directory / "core", bytes);
    PACK_REQUEST request;
    request.device = device;
    request.core_path = m_directory / "core";
    request.scheme = scheme;
    if (has_firmware) {
        write_file(m_directory / "firmware", "firmware of " + name);
        request.firmware_path = m_directory / "firmware";
    }
    request.output_path = m_directory / name;
    std::string message;
    EXPECT_TRUE(pack_bitstream(request, message)) << message;
    m_contents[name] = std::move(bytes);
}

void THREE_TABS_FIXTURE::choose_family_and_mode(const QString& family, const QString& mode)
{
    USER_HANDS::choose(*family_combo(*m_frame), family);
    if (mode_combo(*m_frame)->currentText() != mode) {
        USER_HANDS::choose(*mode_combo(*m_frame), mode);
    }
}

QAbstractItemView& THREE_TABS_FIXTURE::tree(const char* name) const
{
    return *m_frame->findChild<QAbstractItemView*>(QLatin1String(name));
}

std::string THREE_TABS_FIXTURE::rows(const char* tree_name) const
{
    return describe(*tree(tree_name).model(), {}, {});
}

void THREE_TABS_FIXTURE::tick_output(const QString& text)
{
    USER_HANDS::tick(tree("m_file_type_tree"), text);
}

void THREE_TABS_FIXTURE::open_tab(int index)
{
    USER_HANDS::choose_tab(*tabs(*m_frame), index);
}

void THREE_TABS_FIXTURE::wait() const
{
    ASSERT_TRUE(QTest::qWaitFor([this] { return m_frame->findChildren<NIVO_BUSY_DLG*>().isEmpty(); }, 60000));
}

void THREE_TABS_FIXTURE::add_bitstream(const std::string& name)
{
    NIVO_NATIVE_FILE_DLG::answer_next({QString::fromStdString(m_directory / name)});
    USER_HANDS::click(*m_frame, "m_add_bitstream_button");
    wait();
}

void THREE_TABS_FIXTURE::add_raw_data(const std::string& name)
{
    NIVO_NATIVE_FILE_DLG::answer_next({QString::fromStdString(m_directory / name)});
    USER_HANDS::click(*m_frame, "m_add_raw_data_button");
}

void THREE_TABS_FIXTURE::in_dialog(const char* button, const std::function<void(QDialog&)>& work)
{
    m_answers.run([&work](QDialog& dialog) {
        work(dialog);
        USER_HANDS::click_standard_button(dialog, QDialogButtonBox::Ok);
    });
    // The tabs have names of buttons in common.
    USER_HANDS::click(*tabs(*m_frame)->currentWidget(), button);
    EXPECT_EQ(m_answers.waiting(), 0) << "no dialog came up";
}

void THREE_TABS_FIXTURE::in_partition_dialog(const char* button, const QString& input, const QString& page,
                                             const QString& start, const QString& end)
{
    in_dialog(button, [&](QDialog& dialog) {
        USER_HANDS::choose(dialog, "m_input_file_combo", input);
        if (!page.isEmpty()) {
            USER_HANDS::choose(dialog, "m_page_combo", page);
        }
        if (!start.isEmpty()) {
            USER_HANDS::choose(dialog, "m_address_mode_combo", end.isEmpty() ? "Start" : "Block");
            USER_HANDS::type(dialog, "m_start_addr_edit", start);
        }
        if (!end.isEmpty()) {
            USER_HANDS::type(dialog, "m_end_addr_edit", end);
        }
    });
}

void THREE_TABS_FIXTURE::save_as(const std::string& name)
{
    NIVO_NATIVE_FILE_DLG::answer_next({QString::fromStdString(m_directory / name)});
    USER_HANDS::choose_entry(*m_frame, QStringLiteral("File"), QStringLiteral("Save As..."));
    EXPECT_TRUE(std::filesystem::is_regular_file(m_directory / name));
}

void THREE_TABS_FIXTURE::reopen(const std::string& name)
{
    m_frame = make_frame();
    m_frame->resize(1100, 800);
    m_frame->show();
    NIVO_NATIVE_FILE_DLG::answer_next({QString::fromStdString(m_directory / name)});
    USER_HANDS::choose_entry(*m_frame, QStringLiteral("File"), QStringLiteral("Open..."));
}

std::string THREE_TABS_FIXTURE::generate()
{
    m_answers.click(QMessageBox::Ok);
    const int before = m_answers.boxes().size();
    USER_HANDS::click(*m_frame, "m_generate_button");
    EXPECT_TRUE(QTest::qWaitFor([&] { return m_answers.boxes().size() > before; }, 60000));
    wait();
    return m_answers.boxes().size() > before ? m_answers.boxes().back().text.toStdString() : "no box";
}

DECODED_POF THREE_TABS_FIXTURE::read_pof(const std::string& name) const
{
    DECODED_POF pof = decode_pof(read_file(m_directory / name));
    EXPECT_EQ(pof.fault, "");
    return pof;
}

LOADED_IMAGE THREE_TABS_FIXTURE::load_image(const BYTES& image, std::uint64_t address)
{
    LOADED_STREAM stream;
    std::string error;
    if (address >= image.size()) {
        ADD_FAILURE() << address << " lies behind the image";
        return {};
    }
    EXPECT_TRUE(load_configuration_stream(std::span(image).subspan(address), stream, error)) << error;
    EXPECT_EQ(stream.images.size(), 1u);
    return stream.images.empty() ? LOADED_IMAGE() : stream.images.front();
}

THREE_TABS_FIXTURE::BYTES THREE_TABS_FIXTURE::load(const BYTES& image, std::uint64_t address)
{
    return load_image(image, address).configuration();
}
