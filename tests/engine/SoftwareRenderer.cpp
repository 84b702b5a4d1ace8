#include "engine/SoftwareRenderer.h"

#include <gtest/gtest.h>

namespace {

using keladjust::isSoftwareRenderer;

// As drivers give them, renderer first.
struct Names {
    const char* renderer;
    const char* vendor;
};

TEST(SoftwareRenderer, IsToldByItsNames) {
    for (const auto& [renderer, vendor] : {
             Names{"llvmpipe (LLVM 15.0.6, 256 bits)", "Mesa"},
             Names{"softpipe", "VMware, Inc."},
             Names{"Software Rasterizer", "Mesa Project"},
             Names{"Apple Software Renderer", "Apple Inc."},
             Names{"GDI Generic", "Microsoft Corporation"},
             Names{"ANGLE (Google, Vulkan 1.3.0 (SwiftShader Device (Subzero)))", "Google Inc."},
             Names{"D3D12 (Microsoft Basic Render Driver)", "Microsoft Corporation"},
             Names{"ANGLE (Microsoft, Microsoft Basic Render Driver Direct3D11)", "Google Inc."},
         }) {
        EXPECT_TRUE(isSoftwareRenderer(renderer, vendor)) << renderer;
    }
}

TEST(SoftwareRenderer, IsNoneOfTheseCards) {
    for (const auto& [renderer, vendor] : {
             Names{"NVIDIA GeForce RTX 3060/PCIe/SSE2", "NVIDIA Corporation"},
             Names{"AMD Radeon RX 6600 (navi23, LLVM 15.0.6, DRM 3.49, 6.1.0)", "AMD"},
             Names{"Mesa Intel(R) UHD Graphics 620 (KBL GT2)", "Intel"},
             Names{"Intel(R) Iris(R) Xe Graphics", "Intel"},
             Names{"D3D12 (NVIDIA GeForce GTX 1650)", "Microsoft Corporation"},
             Names{"", ""},
         }) {
        EXPECT_FALSE(isSoftwareRenderer(renderer, vendor)) << renderer;
    }
}

}  // namespace
