// Texts that engine objects and settings go by.

#include <gtest/gtest.h>

#include "engine/EngineName.h"
#include "engine/Md5.h"
#include "engine/RenderSystemOptions.h"

namespace {

TEST(EngineName, IsPrefixAndNumber) {
    EXPECT_EQ(keladjust::engineName("PlayerCam_", 0), "PlayerCam_0");
    EXPECT_EQ(keladjust::engineName("RttTex", 2147483647u), "RttTex2147483647");
    EXPECT_EQ(keladjust::engineName("RttTex", 2147483648u), "RttTex-2147483648");
    EXPECT_EQ(keladjust::engineName("RttTex", 4294967295u), "RttTex-1");
}

TEST(Md5, GivesThePublishedDigests) {
    // RFC 1321, appendix A.5.
    EXPECT_EQ(keladjust::md5Hex(""), "d41d8cd98f00b204e9800998ecf8427e");
    EXPECT_EQ(keladjust::md5Hex("a"), "0cc175b9c0f1b6a831c399e269772661");
    EXPECT_EQ(keladjust::md5Hex("abc"), "900150983cd24fb0d6963f7d28e17f72");
    EXPECT_EQ(keladjust::md5Hex("message digest"), "f96b697d7cb7938d525a2f31aaf161d0");
    EXPECT_EQ(keladjust::md5Hex("abcdefghijklmnopqrstuvwxyz"), "c3fcd3d76192e4007dfb496cca67e13b");
    EXPECT_EQ(keladjust::md5Hex("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789"),
              "d174ab98d277d9f5a5611c2c9f419d9f");
    EXPECT_EQ(keladjust::md5Hex("1234567890123456789012345678901234567890123456789012345678901234"
                                "5678901234567890"),
              "57edf4a22be3c955ac49da2e2107b67a");
}

TEST(RenderSystemOptions, OfOpenGl) {
    const keladjust::RenderSystemOptions expected{
        {"Colour Depth", "32"},
        {"Display Frequency", "N/A"},
        {"FSAA", "0"},
        {"Fixed Pipeline Enabled", "Yes"},
        {"Full Screen", "No"},
        {"RTT Preferred Mode", "FBO"},
        {"VSync", "No"},
        {"VSync Interval", "1"},
        {"Video Mode", "640 x 480"},
        {"sRGB Gamma Conversion", "No"},
    };
    EXPECT_EQ(keladjust::renderSystemOptions(0, 640, 480), expected);
    // What is neither of the two is set up as OpenGL.
    EXPECT_EQ(keladjust::renderSystemOptions(2, 640, 480), expected);
    EXPECT_STREQ(keladjust::renderSystemName(2), "OpenGL Rendering Subsystem");
    EXPECT_STREQ(keladjust::renderSystemPlugin(2), "RenderSystem_GL");
}

TEST(RenderSystemOptions, OfDirect3D9) {
    const keladjust::RenderSystemOptions expected{
        {"Allow DirectX9Ex", "No"},
        {"Allow NVPerfHUD", "No"},
        {"FSAA", "0"},
        {"Fixed Pipeline Enabled", "Yes"},
        {"Floating-point mode", "Fastest"},
        {"Full Screen", "No"},
        {"Multi device memory hint", "Use minimum system memory"},
        {"Resource Creation Policy", "Create on all devices"},
        {"Use Multihead", "Auto"},
        {"VSync", "No"},
        {"VSync Interval", "1"},
        {"Video Mode", "640 x 480 @ 32-bit colour"},
        {"sRGB Gamma Conversion", "No"},
        {"Floating-point mode", "Fastest"},
    };
    EXPECT_EQ(keladjust::renderSystemOptions(1, 640, 480), expected);
    EXPECT_STREQ(keladjust::renderSystemName(1), "Direct3D9 Rendering Subsystem");
    EXPECT_STREQ(keladjust::renderSystemPlugin(1), "RenderSystem_Direct3D9");
}

}  // namespace
