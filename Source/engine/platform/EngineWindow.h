#ifndef KELADJUST_ENGINE_PLATFORM_ENGINEWINDOW_H
#define KELADJUST_ENGINE_PLATFORM_ENGINEWINDOW_H

#include <string>

namespace Ogre {
class RenderWindow;
class Root;
}  // namespace Ogre

namespace keladjust::platform {

/// True if there is a display that a window can be opened on. Asked before the render system is
/// loaded, which does not survive a missing one.
bool displayAvailable();

/// Starts the chosen render system of `root` and opens the window that holds the graphics context;
/// the user never sees it.
/// @throws Ogre::Exception
Ogre::RenderWindow* openEngineWindow(Ogre::Root& root, const std::string& title, unsigned width,
                                     unsigned height);

/// Called once the window and the engine with it are gone.
void engineWindowClosed();

/// Takes the window off the desktop, where the system has it there.
void hideEngineWindow(Ogre::RenderWindow& window);

}  // namespace keladjust::platform

#endif
