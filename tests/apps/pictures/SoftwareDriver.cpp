#include "pictures/SoftwareDriver.h"

#include <gtest/gtest.h>

namespace {

using keladjust::app::rendersOnCpu;

// Names as drivers give them to OpenGL.
TEST(SoftwareDriver, IsKnownByItsName) {
    for (const char* name :
         {"llvmpipe (LLVM 15.0.6, 256 bits)", "softpipe", "Software Rasterizer",
          "SWR (LLVM 7.0, 256 bits)", "Google SwiftShader",
          "ANGLE (Google, Vulkan 1.3.0 "
          "(SwiftShader Device (Subzero) (0x0000C0DE)), SwiftShader driver)",
          "GDI Generic", "Microsoft Basic Render Driver", "D3D12 (Microsoft Basic Render Driver)",
          "Apple Software Renderer", "zink Vulkan 1.3(llvmpipe (LLVM 15.0.6, 256 bits))"}) {
        EXPECT_TRUE(rendersOnCpu(name)) << name;
    }
}

TEST(SoftwareDriver, IsNoneOfThoseOfCards) {
    for (const char* name :
         {"NVIDIA H100/PCIe/SSE2", "AMD Radeon RX 6800 (navi21, LLVM 15.0.6, DRM 3.49)",
          "Mesa Intel(R) UHD Graphics 620 (KBL GT2)", "Intel(R) HD Graphics 4000", "Apple M1",
          "D3D12 (NVIDIA GeForce RTX 3060)", "SVGA3D; build: RELEASE;  LLVM;", "virgl", "V3D 4.2",
          ""}) {
        EXPECT_FALSE(rendersOnCpu(name)) << name;
    }
}

}  // namespace
