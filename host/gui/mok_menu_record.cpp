#include "mok_menu_record.h"

#include "msg_internal_error.h"

QMenu* MOK_MENU_RECORD::get_menu(int position) const
{
    VEK_ASSERT_TEXT(position >= 0 && position < MOK_MENU_COUNT, "menu position is in the record");
    return m_menus[static_cast<std::size_t>(position)].menu;
}

QAction* MOK_MENU_RECORD::get_entry(int menu_position, int entry_position) const
{
    VEK_ASSERT_TEXT(menu_position >= 0 && menu_position < MOK_MENU_COUNT, "menu position is in the record");
    VEK_ASSERT_TEXT(entry_position >= 0, "entry position is in the record");
    const std::vector<QPointer<QAction>>& entries = m_menus[static_cast<std::size_t>(menu_position)].entries;
    const auto index = static_cast<std::size_t>(entry_position);
    return index < entries.size() ? entries[index].data() : nullptr;
}

void MOK_MENU_RECORD::set_menu(int position, QMenu* menu)
{
    VEK_ASSERT_TEXT(position >= 0 && position < MOK_MENU_COUNT, "menu position is in the record");
    m_menus[static_cast<std::size_t>(position)].menu = menu;
}

void MOK_MENU_RECORD::set_entry(int menu_position, int entry_position, QAction* action)
{
    VEK_ASSERT_TEXT(menu_position >= 0 && menu_position < MOK_MENU_COUNT, "menu position is in the record");
    VEK_ASSERT_TEXT(entry_position >= 0, "entry position is in the record");
    std::vector<QPointer<QAction>>& entries = m_menus[static_cast<std::size_t>(menu_position)].entries;
    const auto index = static_cast<std::size_t>(entry_position);
    if (entries.size() <= index) {
        entries.resize(index + 1);
    }
    entries[index] = action;
}
