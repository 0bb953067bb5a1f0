#ifndef MOK_MENU_BUILDER_H
#define MOK_MENU_BUILDER_H

class MOK_FRAME_WND;

/// Fills the menu record of a frame from the table of the standard menus, and keeps the entries in step with
/// the window: those that need a file in it, a main frame or an MDI area are enabled only with one. Hidden
/// entries are left alone.
class MOK_MENU_BUILDER
{
public:
    static void build(MOK_FRAME_WND& frame);
    static void update(MOK_FRAME_WND& frame);
};

#endif
