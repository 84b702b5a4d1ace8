#ifndef KELADJUST_APP_TEXT_FAILURE_H
#define KELADJUST_APP_TEXT_FAILURE_H

#include <stdexcept>

namespace keladjust::app {

/// Something that the person at the keyboard can act on: the text is shown as it stands, so it says
/// what is wrong and what to do next.
class Failure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A command line that cannot be carried out as given. Raised before any picture is read or
/// anything is written.
class UsageError : public Failure {
public:
    using Failure::Failure;
};

}  // namespace keladjust::app

#endif
