#ifndef KELADJUST_TESTS_VARIABLE_H
#define KELADJUST_TESTS_VARIABLE_H

#include <cstdlib>
#include <optional>
#include <string>

namespace keladjust::test {

/// Another value for an environment variable while it lives; null: none at all.
class Variable {
public:
    Variable(const char* name, const char* value) : name_(name) {
        if (const char* before = std::getenv(name)) before_ = before;
        set(value);
    }
    ~Variable() { set(before_ ? before_->c_str() : nullptr); }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

private:
    void set(const char* value) const {
        if (value) {
            setenv(name_, value, 1);
        } else {
            unsetenv(name_);
        }
    }

    const char* name_;
    std::optional<std::string> before_;
};

}  // namespace keladjust::test

#endif
