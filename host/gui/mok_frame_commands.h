#ifndef MOK_FRAME_COMMANDS_H
#define MOK_FRAME_COMMANDS_H

class MOK_FRAME_WND;
class QMenu;

/// What the entries of the standard menus do to the frame that they belong to.

void mok_close_window(MOK_FRAME_WND& frame);
void mok_open_containing_folder(MOK_FRAME_WND& frame);
void mok_copy_path(MOK_FRAME_WND& frame);
void mok_reload(MOK_FRAME_WND& frame);
/// Closes all frames that are no main windows.
void mok_close_all(MOK_FRAME_WND& frame);
/// Saves every frame that has a file.
void mok_save_all(MOK_FRAME_WND& frame);
void mok_show_properties(MOK_FRAME_WND& frame);
void mok_clear_recent_files(MOK_FRAME_WND& frame);
void mok_open_working_directory(MOK_FRAME_WND& frame);
void mok_copy_working_directory(MOK_FRAME_WND& frame);
void mok_choose_working_directory(MOK_FRAME_WND& frame);
void mok_exit(MOK_FRAME_WND& frame);

void mok_toggle_full_screen(MOK_FRAME_WND& frame);
/// Class and object name of every named widget of the window, as an indented tree, to the clipboard.
void mok_copy_object_names(MOK_FRAME_WND& frame);
void mok_clear_messages(MOK_FRAME_WND& frame);

void mok_next_window(MOK_FRAME_WND& frame);
void mok_previous_window(MOK_FRAME_WND& frame);
void mok_cascade(MOK_FRAME_WND& frame);
void mok_tile(MOK_FRAME_WND& frame);
void mok_toggle_attached(MOK_FRAME_WND& frame);

void mok_show_help(MOK_FRAME_WND& frame);
void mok_show_shortcuts(MOK_FRAME_WND& frame);
void mok_show_about(MOK_FRAME_WND& frame);

void mok_fill_recent_menu(MOK_FRAME_WND& frame, QMenu& menu);
void mok_fill_export_menu(MOK_FRAME_WND& frame, QMenu& menu);
void mok_fill_windows_menu(MOK_FRAME_WND& frame, QMenu& menu);

#endif
