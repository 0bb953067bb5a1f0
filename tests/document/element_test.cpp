#include "internal_error_trap.h"
#include "pgm_common_xml_descriptor.h"
#include "pgm_common_xml_vek_auto_export.h"

#include <gtest/gtest.h>

#include <memory>

namespace
{

using INFO = PGM_COMMON_XML_ATTRIBUTE_INFO;
using ROOT = PGM_COMMON_XML_VEK_VEK;

struct GROUP_CASE {
    PGM_COMMON_XML_ENUM kind;
    const char* condition;
    std::size_t (*size)(const ROOT&);
};

const GROUP_CASE GROUPS[] = {
    {PGM_COMMON_XML_ENUM_SETTINGS, "settings.size()", [](const ROOT& root) { return root.settings.size(); }},
    {PGM_COMMON_XML_ENUM_RAW_FILES, "raw_files.size()",
     [](const ROOT& root) { return root.raw_files.size(); }},
    {PGM_COMMON_XML_ENUM_ASSIGNMENTS, "assignments.size()",
     [](const ROOT& root) { return root.assignments.size(); }},
    {PGM_COMMON_XML_ENUM_BITSTREAMS, "bitstreams.size()",
     [](const ROOT& root) { return root.bitstreams.size(); }},
    {PGM_COMMON_XML_ENUM_FLASH_DEVICES, "flash_devices.size()",
     [](const ROOT& root) { return root.flash_devices.size(); }},
    {PGM_COMMON_XML_ENUM_OUTPUT_FILES, "output_files.size()",
     [](const ROOT& root) { return root.output_files.size(); }},
};

std::unique_ptr<PGM_COMMON_XML_ELEMENT> create(PGM_COMMON_XML_ENUM kind)
{
    return pgm_common_xml_vek_find_element(kind)->create();
}

/// An element that counts its end.
class COUNTED : public PGM_COMMON_XML_ELEMENT
{
public:
    COUNTED(PGM_COMMON_XML_ENUM kind, int& ended)
        : PGM_COMMON_XML_ELEMENT(kind, kind, 0, 0, "", "", nullptr), m_ended(ended)
    {
    }
    ~COUNTED() override { ++m_ended; }

private:
    int& m_ended;
};

class TWICE : public PGM_COMMON_XML_ELEMENT
{
public:
    explicit TWICE(std::span<const PGM_COMMON_XML_ATTRIBUTE_DESCRIPTOR> attributes)
        : PGM_COMMON_XML_ELEMENT(PGM_COMMON_XML_ENUM_PEM, PGM_COMMON_XML_ENUM_PEM, 0, 0, "", "", nullptr)
    {
        m_attributes = attributes;
        init_check();
    }
    std::string first;
};

} // namespace

TEST(attribute_info, raises_the_first_condition_that_does_not_hold)
{
    std::string member;
    EXPECT_INTERNAL_ERROR(INFO("", 11, 3, "", "", nullptr), "name.size()");
    EXPECT_INTERNAL_ERROR(INFO("a", 11, 3, "", "", nullptr), "type < PGM_XML_TYPE_INVALID");
    EXPECT_INTERNAL_ERROR(INFO("a", 10, 3, "", "", nullptr), "exist < PGM_XML_EXIST_INVALID");
    EXPECT_INTERNAL_ERROR(INFO("a", 10, 2, "", "", nullptr), "ptr != NULL");
    for (const char* reserved : {"__if_continue__", "__if_skip__", "__hidden__"}) {
        EXPECT_INTERNAL_ERROR(INFO(reserved, 5, 1, "", "", &member), "ptr == NULL");
        EXPECT_EQ(INFO(reserved, 5, 1, "", "", nullptr).m_name, reserved);
    }
    const INFO info("name", 4, 0, "default", "second", &member);
    EXPECT_EQ(info.m_name, "name");
    EXPECT_EQ(info.m_value, "");
    EXPECT_EQ(info.m_default_value, "default");
    EXPECT_EQ(info.m_second_text, "second");
    EXPECT_EQ(info.m_type, 4);
    EXPECT_EQ(info.m_exist, 0);
    EXPECT_EQ(info.m_ptr, &member);
}

TEST(element, raises_the_first_condition_that_does_not_hold)
{
    const char* kind =
        "class_type != PGM_COMMON_XML_ENUM__INVALID__ && class_type <= PGM_COMMON_XML_ENUM__MAX__";
    const auto build = [](unsigned class_type, std::uint8_t type, std::uint8_t exist) {
        const auto word = static_cast<PGM_COMMON_XML_ENUM>(class_type);
        PGM_COMMON_XML_ELEMENT element(word, word, type, exist, "", "", nullptr);
        return element.attribute_infos().size();
    };
    EXPECT_INTERNAL_ERROR(build(0, 11, 3), kind);
    EXPECT_INTERNAL_ERROR(build(471, 11, 3), kind);
    EXPECT_INTERNAL_ERROR(build(1, 11, 3), "type < PGM_XML_TYPE_INVALID");
    EXPECT_INTERNAL_ERROR(build(470, 10, 3), "exist < PGM_XML_EXIST_INVALID");
    EXPECT_EQ(build(1, 10, 2), 3U);
    EXPECT_EQ(build(470, 0, 0), 3U);
}

TEST(element, every_class_begins_with_the_three_reserved_attributes)
{
    for (const auto& descriptor : pgm_common_xml_vek_elements()) {
        const auto element = descriptor.create();
        const std::vector<INFO> infos = element->attribute_infos();
        ASSERT_EQ(infos.size(), 3 + descriptor.attributes.size()) << descriptor.tag;
        const char* names[] = {"__if_continue__", "__if_skip__", "__hidden__"};
        for (std::size_t index = 0; index < 3; ++index) {
            EXPECT_EQ(infos[index].m_name, names[index]);
            EXPECT_EQ(infos[index].m_type, 5);
            EXPECT_EQ(infos[index].m_exist, 1);
            EXPECT_EQ(infos[index].m_default_value, "");
            EXPECT_EQ(infos[index].m_second_text, "");
            EXPECT_EQ(infos[index].m_ptr, nullptr);
        }
        for (std::size_t index = 0; index < descriptor.attributes.size(); ++index) {
            const INFO& info = infos[3 + index];
            EXPECT_EQ(info.m_name, descriptor.attributes[index].name);
            EXPECT_EQ(*static_cast<std::string*>(info.m_ptr), info.m_default_value) << info.m_name;
        }
    }
}

TEST(element, reserved_attributes_keep_their_own_text)
{
    ROOT root(PGM_COMMON_XML_ENUM_VEK);
    EXPECT_TRUE(root.is_attribute_empty("__hidden__"));
    root.write_attribute_string("__hidden__", "yes");
    EXPECT_EQ(root.read_attribute_string("__hidden__"), "yes");
    EXPECT_EQ(root.attribute_infos()[2].m_value, "yes");
    EXPECT_TRUE(root.is_attribute_empty("__if_skip__"));
}

TEST(element, attribute_names_occur_once)
{
    static constexpr PGM_COMMON_XML_ATTRIBUTE_DESCRIPTOR NAME{"name",
                                                              PGM_XML_TYPE_TEXT,
                                                              PGM_XML_EXIST_OPTIONAL,
                                                              "",
                                                              {},
                                                              &pgm_common_xml_member<TWICE, &TWICE::first>};
    static constexpr PGM_COMMON_XML_ATTRIBUTE_DESCRIPTOR TWINS[] = {NAME, NAME};
    EXPECT_INTERNAL_ERROR(TWICE{TWINS}, "Element \"PEM\" has two attributes \"name\"");
    EXPECT_EQ(TWICE(std::span(&NAME, 1)).attribute_infos().size(), 4U);
}

TEST(element, an_attribute_that_it_does_not_have_is_an_internal_error)
{
    ROOT root(PGM_COMMON_XML_ENUM_VEK);
    EXPECT_INTERNAL_ERROR(root.read_attribute_string("mode"), "Element \"VEK\" has no attribute \"mode\"");
    EXPECT_INTERNAL_ERROR(root.write_attribute_string("mode", "PS"),
                          "Element \"VEK\" has no attribute \"mode\"");
    EXPECT_INTERNAL_ERROR(root.is_attribute_empty("mode"), "Element \"VEK\" has no attribute \"mode\"");
}

TEST(element, attributes_read_and_write_the_bound_members)
{
    PGM_COMMON_XML_VEK_PATH path;
    path.write_attribute_string("hps_path", "boot.hex");
    EXPECT_EQ(path.hps_path, "boot.hex");
    path.key_file1 = "keys.key";
    EXPECT_EQ(path.read_attribute_string("key_file1"), "keys.key");
    EXPECT_TRUE(path.is_attribute_empty("key_file2"));
    EXPECT_FALSE(path.is_attribute_empty("key_file1"));
    path.write_string("top.sof");
    EXPECT_EQ(path.text, "top.sof");
    EXPECT_EQ(path.read_string(), "top.sof");
}

TEST(root, is_empty_and_stands_at_the_default_version)
{
    const ROOT root(PGM_COMMON_XML_ENUM_VEK);
    for (const GROUP_CASE& group : GROUPS) {
        EXPECT_EQ(group.size(root), 0U);
    }
    EXPECT_EQ(root.get_child_count(PGM_COMMON_XML_ENUM__INVALID__, true), 0U);
    EXPECT_EQ(root.read_attribute_string("version"), "0");
    EXPECT_EQ(root.m_class_type, PGM_COMMON_XML_ENUM_VEK);
    EXPECT_EQ(root.get_sub_class_type(), PGM_COMMON_XML_ENUM_VEK);
    EXPECT_EQ(root.m_type, 0);
    EXPECT_EQ(root.m_exist, 2);
    EXPECT_EQ(root.m_ptr, nullptr);
    EXPECT_EQ(root.get_parent(), nullptr);
    const INFO version = root.attribute_infos().back();
    EXPECT_EQ(version.m_name, "version");
    EXPECT_EQ(version.m_type, 4);
    EXPECT_EQ(version.m_exist, 0);
    EXPECT_EQ(version.m_default_value, "0");
    EXPECT_EQ(version.m_ptr, &root.version);
}

TEST(root, removing_from_an_empty_group_names_the_group)
{
    for (const GROUP_CASE& group : GROUPS) {
        ROOT root(PGM_COMMON_XML_ENUM_VEK);
        const auto child = create(group.kind);
        EXPECT_INTERNAL_ERROR(root.group_child(child.get(), true, true), group.condition);
        EXPECT_INTERNAL_ERROR(root.group_child(child.get(), true, false), group.condition);
    }
}

TEST(root, a_flash_device_stands_only_under_the_flash_devices)
{
    ROOT root(PGM_COMMON_XML_ENUM_VEK);
    const auto device = create(PGM_COMMON_XML_ENUM_FLASH_DEVICE);
    const char* text = "Element \"VEK\" does not support child element \"FLASH_DEVICE\"";
    EXPECT_INTERNAL_ERROR(root.group_child(device.get(), false, true), text);
    EXPECT_INTERNAL_ERROR(root.group_child(device.get(), true, true), text);
    EXPECT_EQ(device->get_parent(), nullptr);
    EXPECT_INTERNAL_ERROR(root.group_child(nullptr, false, true), "child != nullptr");
}

TEST(root, an_element_without_children_supports_none)
{
    PGM_COMMON_XML_VEK_SETTINGS settings;
    const auto path = create(PGM_COMMON_XML_ENUM_PATH);
    EXPECT_INTERNAL_ERROR(settings.group_child(path.get(), false, true),
                          "Element \"SETTINGS\" does not support child element \"PATH\"");
}

TEST(root, adding_at_the_front_puts_the_child_first)
{
    for (const GROUP_CASE& group : GROUPS) {
        ROOT root(PGM_COMMON_XML_ENUM_VEK);
        PGM_COMMON_XML_ELEMENT* last = create(group.kind).release();
        PGM_COMMON_XML_ELEMENT* first = create(group.kind).release();
        root.group_child(last, false, true);
        root.group_child(first, false, false);
        EXPECT_EQ(group.size(root), 2U);
        EXPECT_EQ(root.get_element(group.kind, 0, true), first);
        EXPECT_EQ(root.get_element(group.kind, 1, true), last);
        EXPECT_EQ(root.get_element(group.kind, 2, true), nullptr);
        EXPECT_EQ(first->get_parent(), &root);
        EXPECT_EQ(root.get_parent(last), &root);
    }
}

TEST(root, removing_drops_the_entry_at_the_end_asked_for_whatever_the_child)
{
    ROOT root(PGM_COMMON_XML_ENUM_VEK);
    std::vector<PGM_COMMON_XML_VEK_SETTINGS*> settings;
    for (int count = 0; count < 3; ++count) {
        settings.push_back(new PGM_COMMON_XML_VEK_SETTINGS);
        root.group_child(settings.back(), false, true);
    }
    root.group_child(settings[1], true, true);
    const std::unique_ptr<PGM_COMMON_XML_ELEMENT> released(settings[1]);
    EXPECT_EQ(root.settings, (std::vector{settings[0], settings[1]}));
    EXPECT_EQ(root.m_childs, (std::vector<PGM_COMMON_XML_ELEMENT*>{settings[0], settings[2]}));
    EXPECT_EQ(settings[1]->get_parent(), nullptr);
    root.group_child(settings[0], true, false);
    const std::unique_ptr<PGM_COMMON_XML_ELEMENT> first(settings[0]);
    EXPECT_EQ(root.settings, (std::vector{settings[1]}));
}

TEST(root, clear_childs_leaves_the_children_in_place)
{
    ROOT root(PGM_COMMON_XML_ENUM_VEK);
    for (const GROUP_CASE& group : GROUPS) {
        root.group_child(create(group.kind).release(), false, true);
    }
    const std::vector<PGM_COMMON_XML_ELEMENT*> children = root.m_childs;
    root.clear_childs();
    for (const GROUP_CASE& group : GROUPS) {
        EXPECT_EQ(group.size(root), 0U);
    }
    EXPECT_EQ(root.m_childs, children);
    EXPECT_EQ(root.get_child_count(PGM_COMMON_XML_ENUM__INVALID__, true), 6U);
    EXPECT_EQ(children.front()->get_parent(), &root);
}

TEST(root, each_group_occurs_once_at_most)
{
    for (const GROUP_CASE& group : GROUPS) {
        ROOT root(PGM_COMMON_XML_ENUM_VEK);
        root.check_child_count();
        root.group_child(create(group.kind).release(), false, true);
        root.check_child_count();
        root.group_child(create(group.kind).release(), false, true);
        EXPECT_INTERNAL_ERROR(root.check_child_count(),
                              std::string("Element \"VEK\" has 2 child elements \"") +
                                  PGM_COMMON_XML_ENUM_STRING[group.kind] + "\"");
    }
}

TEST(root, groups_are_counted_in_their_order)
{
    ROOT root(PGM_COMMON_XML_ENUM_VEK);
    for (auto group = std::rbegin(GROUPS); group != std::rend(GROUPS); ++group) {
        root.group_child(create(group->kind).release(), false, true);
        root.group_child(create(group->kind).release(), false, true);
        EXPECT_INTERNAL_ERROR(root.check_child_count(),
                              std::string("Element \"VEK\" has 2 child elements \"") +
                                  PGM_COMMON_XML_ENUM_STRING[group->kind] + "\"");
    }
}

TEST(element, check_count_takes_numbers_and_ranges)
{
    PGM_COMMON_XML_VEK_BITSTREAM bitstream;
    bitstream.group_child(create(PGM_COMMON_XML_ENUM_PATH).release(), false, true);
    bitstream.check_count(PGM_COMMON_XML_ENUM_PATH, {{0}, {1}});
    bitstream.check_count(PGM_COMMON_XML_ENUM_PATH, {{1, 9}});
    const char* text = "Element \"BITSTREAM\" has 1 child elements \"PATH\"";
    EXPECT_INTERNAL_ERROR(bitstream.check_count(PGM_COMMON_XML_ENUM_PATH, {{0}, {2, 9}}), text);
    EXPECT_INTERNAL_ERROR(bitstream.check_count(PGM_COMMON_XML_ENUM_PATH, {{}}), text);
}

TEST(element, kind_zero_stands_for_any_kind_and_the_flag_for_own_children)
{
    ROOT root(PGM_COMMON_XML_ENUM_VEK);
    auto& devices = pgm_common_xml_add_child(root, PGM_COMMON_XML_ENUM_FLASH_DEVICES);
    auto& device = pgm_common_xml_add_child(devices, PGM_COMMON_XML_ENUM_FLASH_DEVICE);
    auto& mbr = pgm_common_xml_add_child(device, PGM_COMMON_XML_ENUM_MBR);
    auto& inner = pgm_common_xml_add_child(mbr, PGM_COMMON_XML_ENUM_PARTITION);
    auto& outer = pgm_common_xml_add_child(device, PGM_COMMON_XML_ENUM_PARTITION);
    EXPECT_EQ(device.get_child_count(PGM_COMMON_XML_ENUM__INVALID__, true), 2U);
    EXPECT_EQ(device.get_child_count(PGM_COMMON_XML_ENUM_PARTITION, true), 1U);
    EXPECT_EQ(device.get_child_count(PGM_COMMON_XML_ENUM_PARTITION, false), 2U);
    EXPECT_EQ(device.get_childs(PGM_COMMON_XML_ENUM_PARTITION, true), std::vector{&outer});
    EXPECT_EQ(root.get_childs(PGM_COMMON_XML_ENUM_PARTITION, false), (std::vector{&inner, &outer}));
}

TEST(element, destroying_an_element_destroys_its_tree)
{
    int ended = 0;
    {
        ROOT root(PGM_COMMON_XML_ENUM_VEK);
        PGM_COMMON_XML_ELEMENT* child = new COUNTED(PGM_COMMON_XML_ENUM_PATH, ended);
        child->group_child(new COUNTED(PGM_COMMON_XML_ENUM_PATH, ended), false, true);
        root.PGM_COMMON_XML_ELEMENT::group_child(child, false, true);
        root.clear_childs();
        EXPECT_EQ(ended, 0);
    }
    EXPECT_EQ(ended, 2);
    PGM_COMMON_XML_ELEMENT plain(PGM_COMMON_XML_ENUM_PATH, PGM_COMMON_XML_ENUM_PATH, 0, 0, "", "", nullptr);
    plain.group_child(new COUNTED(PGM_COMMON_XML_ENUM_PATH, ended), false, true);
    plain.clear_childs();
    EXPECT_EQ(ended, 3);
    EXPECT_EQ(plain.get_child_count(PGM_COMMON_XML_ENUM__INVALID__, true), 0U);
}

TEST(element, a_secret_leaves_no_trace_in_its_memory)
{
    PGM_COMMON_XML_VEK_PATH path;
    path.write_attribute_string("password", "correct horse battery staple");
    const char* memory = path.password.data();
    path.write_attribute_string("password", "x");
    ASSERT_EQ(path.password.data(), memory);
    EXPECT_EQ(std::string(memory, 28), "x" + std::string(27, '\0'));
}
