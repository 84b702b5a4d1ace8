#ifndef KELADJUST_TESTS_SUPPORT_INSTRUCTIONSETS_H
#define KELADJUST_TESTS_SUPPORT_INSTRUCTIONSETS_H

#include <functional>
#include <string>

namespace keladjust::test {

/// Calls `body(name)` once for every instruction set that this machine has and the library was
/// built for, the scalar one included, while the library computes with that one.
void forEachInstructionSet(const std::function<void(const std::string& name)>& body);

}  // namespace keladjust::test

#endif
