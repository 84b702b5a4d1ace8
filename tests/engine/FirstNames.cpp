// What the first effects of a process are called. Numbers are never given twice in a process, so
// this is one of its own.

#include <OgreRoot.h>
#include <OgreSceneManager.h>

#include <set>
#include <string>
#include <vector>

#include "engine/RunningEngine.h"

namespace {

using keladjust::test::copyProgram;
using keladjust::test::HostPicture;
using keladjust::test::RunningEngine;

class FirstNames : public RunningEngine {};

TEST_F(FirstNames, EndInNoughtAndOne) {
    std::vector<KelOgreEffectBase*> effects{effectWith(copyProgram), effectWith(copyProgram)};
    HostPicture picture(2, 2, 32, IMAGE_FORMAT_BGRA);
    // The other way round, since it is their making that counts; but planes are made by passes.
    render(*effects[1], picture);
    render(*effects[0], picture);
    for (const std::string number : {"0", "1"}) {
        EXPECT_EQ(effects[std::stoul(number)]->renderTexture()->getName(), "RttTex" + number);
        onThread([&] {
            int scenes = 0;
            for (const auto& [name, scene] : Ogre::Root::getSingleton().getSceneManagers()) {
                if (!scene->hasCamera("PlayerCam_" + number)) continue;
                ++scenes;
                EXPECT_TRUE(scene->hasSceneNode("effectSceneNodeName_" + number));
                EXPECT_TRUE(scene->hasSceneNode("effectPlaneNodeName_" + number));
            }
            EXPECT_EQ(scenes, 1) << "with camera " << number;
        });
    }
    const KelOgrePicturePlane& first = *effects[1]->picturePlane();
    EXPECT_EQ(first.number(), 0u);
    EXPECT_EQ(first.name(), "KelOgrePicturePlane_0");
    EXPECT_EQ(first.materialName(), "PlaneMaterialName_0");
    EXPECT_EQ(first.rectangleName(), "KelOgrePicturePlaneRectange_0");
    EXPECT_EQ(first.texture(0)->getName(), "KelOgrePicturePlane_0_Texture0");
    const KelOgrePicturePlane& second = *effects[0]->picturePlane();
    EXPECT_EQ(second.number(), 1u);
    EXPECT_EQ(second.name(), "KelOgrePicturePlane_1");
    EXPECT_EQ(second.materialName(), "PlaneMaterialName_1");
    EXPECT_EQ(second.rectangleName(), "KelOgrePicturePlaneRectange_1");
    EXPECT_EQ(second.texture(0)->getName(), "KelOgrePicturePlane_1_Texture0");

    // Neither a new effect nor a new engine begins from the start again.
    thread->removeEffect(effects[0], false);
    TearDown();
    SetUp();
    KelOgreEffectBase& third = *effectWith(copyProgram);
    render(third, picture);
    EXPECT_EQ(third.renderTexture()->getName(), "RttTex2");
    EXPECT_EQ(third.picturePlane()->number(), 2u);
}

}  // namespace
