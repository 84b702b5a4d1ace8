#ifndef KELADJUST_TESTS_FAULTS_FAULTPLAN_H
#define KELADJUST_TESTS_FAULTS_FAULTPLAN_H

#include <atomic>
#include <cstddef>
#include <cstdint>

/// What a process under test is to suffer. It is told through the environment and counts what it
/// does in a file that outlives it.
namespace keladjust::faults {

/// What can be made to fail. `allocate` stands for all that takes memory from the heap.
enum class Call : std::size_t {
    open,
    read,
    write,
    sync,
    close,
    rename,
    status,
    permissions,
    createFolder,
    remove,
    allocate,
    count
};

inline constexpr const char* callNames[] = {"open",         "read",   "write",   "sync",
                                            "close",        "rename", "status",  "permissions",
                                            "createFolder", "remove", "allocate"};
static_assert(std::size(callNames) == static_cast<std::size_t>(Call::count));

enum class Effect : int {
    none,
    error,       ///< refused with an errno
    errorsOn,    ///< this one and all that follow
    interrupt,   ///< EINTR, once; a second try comes through
    half,        ///< a read or write does only half of what it is asked for
    truncate,    ///< the file behind the descriptor loses its contents, then the call is made
    vanish,      ///< the file of that name is removed, then the call is made
    kill,        ///< the process is killed before the call
    killHalfway  ///< the process is killed when half is written
};

/// "CALL NUMBER EFFECT ERRNO", all numbers; unset: nothing happens but counting.
inline constexpr const char* planVariable = "KELADJUST_FAULT";

/// The file of counters, one a call, that exists and is large enough.
inline constexpr const char* countersVariable = "KELADJUST_FAULT_COUNTERS";

struct Counters {
    std::atomic<std::uint64_t> calls[static_cast<std::size_t>(Call::count)];
};
static_assert(std::atomic<std::uint64_t>::is_always_lock_free, "processes share them");

}  // namespace keladjust::faults

#endif
