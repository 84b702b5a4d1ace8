#ifndef KELADJUST_TESTS_VARIABLE_H
#define KELADJUST_TESTS_VARIABLE_H

#include <cstdlib>
#include <optional>
#include <string>

namespace keladjust::test {

/// Sets an environment variable of this process and those it starts; null: removes it.
void setVariable(const char* name, const char* value);

/// The variable that names the folder for temporary files.
extern const char* const temporaryFolderVariable;

/// Another value for an environment variable while it lives; null: none at all.
class Variable {
public:
    Variable(const char* name, const char* value) : name_(name) {
        if (const char* before = std::getenv(name)) before_ = before;
        setVariable(name, value);
    }
    ~Variable() { setVariable(name_, before_ ? before_->c_str() : nullptr); }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

private:
    const char* name_;
    std::optional<std::string> before_;
};

}  // namespace keladjust::test

#endif
