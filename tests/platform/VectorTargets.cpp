#include <dlfcn.h>
#include <gtest/gtest.h>
#include <hwy/targets.h>

#include <cstdint>

namespace {

// What the library finds of the processor's instruction sets, beside what Highway's own library
// finds.
TEST(VectorTargets, AreThoseThatHighwayFinds) {
    void* const highway = dlopen("libhwy.so.1", RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(highway, nullptr) << dlerror();
    const auto supported =
        reinterpret_cast<std::int64_t (*)()>(dlsym(highway, "_ZN3hwy16SupportedTargetsEv"));
    ASSERT_NE(supported, nullptr);
    hwy::SetSupportedTargetsForTest(0);
    EXPECT_EQ(hwy::SupportedTargets(), supported());
    dlclose(highway);
}

TEST(VectorTargets, MayBeChosenByTests) {
    constexpr std::int64_t noProcessorsAlone = HWY_SCALAR;
    hwy::SetSupportedTargetsForTest(noProcessorsAlone);
    EXPECT_EQ(hwy::SupportedTargets(), noProcessorsAlone);
    hwy::SetSupportedTargetsForTest(0);
    EXPECT_NE(hwy::SupportedTargets(), noProcessorsAlone);
}

}  // namespace
