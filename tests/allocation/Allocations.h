#ifndef KELADJUST_TESTS_ALLOCATION_ALLOCATIONS_H
#define KELADJUST_TESTS_ALLOCATION_ALLOCATIONS_H

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

/// The process's memory, of which a test can have there be too little. Linked in, this replaces the
/// functions of the C library that operator new, too, gets its memory from.
namespace keladjust::test {

/// Whose allocations are meant.
enum class Requester {
    anyone,
    program,       ///< what the program asks for, with the library in it
    programOrOgre  ///< that, and what OGRE asks for; not the driver
};

/// How many allocations have not been freed; of OGRE's nothing is known.
std::ptrdiff_t liveAllocations(Requester requester);

/// How memory ends: for one allocation alone, or for all that follow it, too.
enum class Shortage { once, forGood };

/// Whether an allocation has failed during a call.
struct Struck {
    bool any = false;
    bool alone = false;  ///< one, and no other

    operator bool() const { return any; }
};

/// Has the allocation after the first `allowed` fail while it lives, on whichever thread.
class AllocationFault {
public:
    AllocationFault(std::size_t allowed, Shortage shortage, Requester requester);
    ~AllocationFault();
    AllocationFault(const AllocationFault&) = delete;
    AllocationFault& operator=(const AllocationFault&) = delete;

    /// What has failed so far.
    static Struck struck();
};

/// Makes a call over and over, each time short of another allocation, until there is none left that
/// could fail. Nothing must be lost, and the next call must be as good as any.
/// @param make gives a fresh object with call(), during which memory is short, and
///             check(Struck), which looks at the outcome; if nothing has failed that is the whole
///             one
template <class Make>
void withEveryFault(const std::string& what, Make make, Requester requester = Requester::anyone) {
    const auto callWhole = [&make] {
        auto whole = make();
        whole.call();
        whole.check(Struck());
    };
    callWhole();  // what is kept from the first call on is there now
    for (const Shortage shortage : {Shortage::once, Shortage::forGood}) {
        Struck struck{true};
        for (std::size_t allowed = 0; struck; ++allowed) {
            constexpr std::size_t more = 5000;
            ASSERT_LT(allowed, more) << what << " never ends";
            const std::ptrdiff_t before = liveAllocations(requester);
            {
                auto tried = make();
                {
                    const AllocationFault fault(allowed, shortage, requester);
                    tried.call();
                    struck = AllocationFault::struck();
                }
                tried.check(struck);
            }
            callWhole();
            const std::ptrdiff_t after = liveAllocations(requester);
            EXPECT_EQ(after, before) << "allocations that are not freed";
            if (testing::Test::HasFailure()) {
                FAIL() << what << ", short of allocation " << allowed
                       << (shortage == Shortage::once ? " alone" : " and all after it");
            }
        }
    }
}

}  // namespace keladjust::test

#endif
