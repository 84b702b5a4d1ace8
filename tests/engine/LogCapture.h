#ifndef KELADJUST_TESTS_ENGINE_LOGCAPTURE_H
#define KELADJUST_TESTS_ENGINE_LOGCAPTURE_H

#include <OgreLog.h>
#include <OgreLogManager.h>

#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace keladjust::test {

/// Collects the engine's log lines in memory, as a host with a log manager of its own may.
class LogCapture : private Ogre::LogListener {
public:
    LogCapture();
    ~LogCapture() override;

    /// Lines that contain `text`.
    int count(const std::string& text) const;
    bool has(const std::string& text) const { return count(text) > 0; }
    /// Lines that are `text` and nothing else.
    int countExact(const std::string& text) const;
    void clear();
    std::string all() const;

private:
    void messageLogged(const std::string& message, Ogre::LogMessageLevel level, bool debug,
                       const std::string& name, bool& skip) override;

    Ogre::LogManager manager_;
    mutable std::mutex mutex_;
    std::vector<std::string> lines_;
};

}  // namespace keladjust::test

#endif
