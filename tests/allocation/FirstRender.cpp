// A first pass by an effect of the engine, short of each allocation that the library asks for.

#include <cstdint>
#include <vector>

#include "allocation/Allocations.h"
#include "engine/RunningEngine.h"
#include "support/HostPicture.h"

namespace {

using keladjust::test::AllocationFault;
using keladjust::test::HostPicture;
using keladjust::test::Requester;
using keladjust::test::Shortage;
using keladjust::test::Struck;
using Bytes = std::vector<std::uint8_t>;

class FirstRenderShortOfMemory : public keladjust::test::RunningEngine {};

// Scene, camera, textures, program: whatever a first pass could not make, the second makes.
TEST_F(FirstRenderShortOfMemory, IsMadeUpForByTheNext) {
    HostPicture picture(5, 3, 32, IMAGE_FORMAT_BGRA);
    picture.fillRandom(4);
    const Bytes before = picture.bytes();
    Bytes inverted = before;
    for (std::size_t i = 0; i < inverted.size(); ++i) {
        if (i % 4 != 3) inverted[i] = static_cast<std::uint8_t>(255 - inverted[i]);
    }
    for (const Shortage shortage : {Shortage::once, Shortage::forGood}) {
        Struck struck{true};
        for (std::size_t allowed = 0; struck; ++allowed) {
            KelOgreEffectBase* const effect = effectWith(keladjust::test::invertProgram);
            ASSERT_NE(effect, nullptr);
            HostPicture first(picture);
            setPicture(*effect, first);
            {
                const AllocationFault fault(allowed, shortage, Requester::program);
                renderPicture(*effect, first);
                struck = AllocationFault::struck();
            }
            EXPECT_TRUE(first.bytes() == inverted || (struck && first.bytes() == before));
            HostPicture second(picture);
            EXPECT_EQ(render(*effect, second), 1);
            EXPECT_TRUE(second.bytes() == inverted);
            EXPECT_EQ(thread->removeEffect(effect, false), 1);
            ASSERT_FALSE(HasFailure())
                << "short of allocation " << allowed
                << (shortage == Shortage::once ? " alone" : " and all after it") << '\n'
                << log.all();
            log.clear();
        }
    }
}

}  // namespace
