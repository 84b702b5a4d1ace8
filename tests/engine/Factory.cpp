#include <gtest/gtest.h>

#include "engine/EffectFactory.h"
#include "engine/HookEffect.h"
#include "engine/KelOgreEffectBase.h"

namespace {

using DYN_CLASS::CFactoryManager;
using keladjust::test::HookEffect;
using keladjust::test::HookFactory;

TEST(EffectFactory, MakesTheEffectOfExactlyThatName) {
    const std::unique_ptr<KelEffectBase> effect(CFactoryManager::create("KelOgreEffectBase"));
    EXPECT_NE(dynamic_cast<KelOgreEffectBase*>(effect.get()), nullptr);
    for (const char* name : {"kelogreeffectbase", "KelOgreEffectBase ", " KelOgreEffectBase",
                             "KelEffectBase", "class KelOgreEffectBase", "KelOgreEffect", ""}) {
        EXPECT_EQ(CFactoryManager::create(name), nullptr) << name;
    }
}

TEST(EffectFactory, AsksEveryFactoryInTheList) {
    const std::uint32_t before = CFactoryManager::count;
    EXPECT_EQ(CFactoryManager::create("HookEffect"), nullptr);
    {
        const HookFactory first;
        const HookFactory second;
        EXPECT_EQ(CFactoryManager::count, before + 2);
        const std::unique_ptr<KelEffectBase> hook(CFactoryManager::create("HookEffect"));
        EXPECT_NE(dynamic_cast<HookEffect*>(hook.get()), nullptr);
        const std::unique_ptr<KelEffectBase> other(CFactoryManager::create("KelOgreEffectBase"));
        EXPECT_NE(other, nullptr);
    }
    EXPECT_EQ(CFactoryManager::count, before);
    EXPECT_EQ(CFactoryManager::create("HookEffect"), nullptr);
}

TEST(EffectFactory, LeavesAnEmptyListBehind) {
    // The library's own place is set aside; it is put back at the end.
    CFactoryManager* const head = CFactoryManager::head;
    const std::uint32_t count = CFactoryManager::count;
    CFactoryManager::head = nullptr;
    CFactoryManager::count = 0;
    {
        const HookFactory only;
        EXPECT_EQ(CFactoryManager::count, 1u);
        EXPECT_NE(CFactoryManager::head, nullptr);
    }
    EXPECT_EQ(CFactoryManager::head, nullptr);
    EXPECT_EQ(CFactoryManager::count, 0u);
    EXPECT_EQ(CFactoryManager::create("KelOgreEffectBase"), nullptr);
    CFactoryManager::head = head;
    CFactoryManager::count = count;
}

TEST(EffectFactory, ForgetsPlacesInAnyOrder) {
    const std::uint32_t before = CFactoryManager::count;
    auto first = std::make_unique<HookFactory>();
    auto second = std::make_unique<HookFactory>();
    auto third = std::make_unique<HookFactory>();
    second.reset();
    third.reset();
    const std::unique_ptr<KelEffectBase> hook(CFactoryManager::create("HookEffect"));
    EXPECT_NE(hook, nullptr);
    first.reset();
    EXPECT_EQ(CFactoryManager::count, before);
}

}  // namespace
