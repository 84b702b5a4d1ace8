#include "engine/LogCapture.h"

#include <algorithm>

namespace keladjust::test {

LogCapture::LogCapture() {
    manager_.createLog("", true, false, true)->addListener(this);
}

LogCapture::~LogCapture() {
    manager_.getDefaultLog()->removeListener(this);
}

int LogCapture::count(const std::string& text) const {
    const std::lock_guard lock(mutex_);
    return static_cast<int>(std::count_if(
        lines_.begin(), lines_.end(),
        [&text](const std::string& line) { return line.find(text) != std::string::npos; }));
}

int LogCapture::countExact(const std::string& text) const {
    const std::lock_guard lock(mutex_);
    return static_cast<int>(std::count(lines_.begin(), lines_.end(), text));
}

void LogCapture::clear() {
    const std::lock_guard lock(mutex_);
    lines_.clear();
}

std::string LogCapture::all() const {
    const std::lock_guard lock(mutex_);
    std::string text;
    for (const std::string& line : lines_) text += line + '\n';
    return text;
}

void LogCapture::messageLogged(const std::string& message, Ogre::LogMessageLevel, bool,
                               const std::string&, bool&) {
    const std::lock_guard lock(mutex_);
    lines_.push_back(message);
}

}  // namespace keladjust::test
