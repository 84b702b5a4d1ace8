#include "support/Variable.h"

namespace keladjust::test {

const char* const temporaryFolderVariable = "TMP";

void setVariable(const char* name, const char* value) {
    _putenv_s(name, value ? value : "");  // an empty value removes it
}

}  // namespace keladjust::test
