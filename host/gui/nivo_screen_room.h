#ifndef NIVO_SCREEN_ROOM_H
#define NIVO_SCREEN_ROOM_H

#include <QSize>

class QDialog;
class QWidget;

/// The size, in pixels, that a window can have at most on the screen on which it comes up, its title bar
/// beside it: the screen of its parent, or the one with the mouse when it has none.
QSize nivo_get_screen_room(const QWidget& window);

/// Puts `room` in place of what the screen has, an empty size the screen itself again. For tests.
void nivo_override_screen_room(const QSize& room);

/// Lets `content`, a widget in the layout of `dialog`, be scrolled when the dialog would be higher than the
/// screen; the rest of the dialog, with its buttons, stays in place. Nothing changes where there is room. To
/// be called when all widgets are in the layout. While the mouse wheel scrolls, it turns no combo box over
/// which it passes.
void nivo_fit_to_screen(QDialog& dialog, QWidget& content);

#endif
