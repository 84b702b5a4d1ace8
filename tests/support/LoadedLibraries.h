#ifndef KELADJUST_TESTS_LOADEDLIBRARIES_H
#define KELADJUST_TESTS_LOADEDLIBRARIES_H

#include <string>
#include <vector>

namespace keladjust::test {

/// The files that this process has libraries loaded from, by their whole paths.
std::vector<std::string> loadedLibraries();

/// True if the name of one of them contains `part`.
bool isLoaded(const std::string& part);

}  // namespace keladjust::test

#endif
