#include "support/Variable.h"

namespace keladjust::test {

const char* const temporaryFolderVariable = "TMPDIR";

void setVariable(const char* name, const char* value) {
    if (value) {
        setenv(name, value, 1);
    } else {
        unsetenv(name);
    }
}

}  // namespace keladjust::test
