#include "engine/EngineLog.h"

#include <OgreException.h>
#include <OgreLogManager.h>

#include <exception>

namespace keladjust {

void logMessage(std::string_view message) noexcept {
    try {
        Ogre::LogManager* log = Ogre::LogManager::getSingletonPtr();
        if (log != nullptr) log->logMessage(std::string(message), Ogre::LML_NORMAL);
    } catch (...) {
        // A line that cannot be written is not worth more than itself.
    }
}

namespace {

/// Words for the exception that is being handled; `ofEngine` puts those of the engine's.
template <class OfEngine>
std::string describeCurrentException(OfEngine ofEngine) {
    try {
        throw;
    } catch (const Ogre::Exception& failure) {
        return ofEngine(failure);
    } catch (const std::exception& failure) {
        return failure.what();
    } catch (...) {
        return "unknown exception";
    }
}

}  // namespace

void logCurrentException(const char* occasion) noexcept {
    try {
        logMessage(std::string(occasion) + ": " +
                   describeCurrentException([](const Ogre::Exception& failure) {
                       return failure.getFullDescription();
                   }));
    } catch (...) {
        // Out of memory while putting the line together.
    }
}

std::string currentExceptionText() noexcept {
    try {
        return describeCurrentException(
            [](const Ogre::Exception& failure) { return failure.getDescription(); });
    } catch (...) {
        return "out of memory";  // short enough to need none
    }
}

}  // namespace keladjust
