#include "engine/EngineLog.h"

#include <OgreException.h>
#include <OgreLogManager.h>

#include <exception>

namespace keladjust {

void logMessage(const std::string& message) noexcept {
    try {
        Ogre::LogManager* log = Ogre::LogManager::getSingletonPtr();
        if (log != nullptr) log->logMessage(message, Ogre::LML_NORMAL);
    } catch (...) {
        // A line that cannot be written is not worth more than itself.
    }
}

void logCurrentException(const char* occasion) noexcept {
    try {
        const std::string begin = std::string(occasion) + ": ";
        try {
            throw;
        } catch (const Ogre::Exception& failure) {
            logMessage(begin + failure.getFullDescription());
        } catch (const std::exception& failure) {
            logMessage(begin + failure.what());
        } catch (...) {
            logMessage(begin + "unknown exception");
        }
    } catch (...) {
        // Out of memory while putting the line together.
    }
}

}  // namespace keladjust
