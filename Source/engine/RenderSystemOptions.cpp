#include "engine/RenderSystemOptions.h"

namespace keladjust {

const char* renderSystemName(std::uint32_t kind) {
    return kind == renderSystemDirect3D9 ? "Direct3D9 Rendering Subsystem"
                                         : "OpenGL Rendering Subsystem";
}

const char* renderSystemPlugin(std::uint32_t kind) {
    return kind == renderSystemDirect3D9 ? "RenderSystem_Direct3D9" : "RenderSystem_GL";
}

std::string videoMode(std::uint32_t kind, unsigned width, unsigned height) {
    const std::string size = std::to_string(width) + " x " + std::to_string(height);
    return kind == renderSystemDirect3D9 ? size + " @ 32-bit colour" : size;
}

RenderSystemOptions renderSystemOptions(std::uint32_t kind, unsigned width, unsigned height) {
    const std::string mode = videoMode(kind, width, height);
    if (kind == renderSystemDirect3D9) {
        return {
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
            {"Video Mode", mode},
            {"sRGB Gamma Conversion", "No"},
            // Once more: choosing the video mode may have put it back.
            {"Floating-point mode", "Fastest"},
        };
    }
    return {
        {"Colour Depth", "32"}, {"Display Frequency", "N/A"},
        {"FSAA", "0"},          {"Fixed Pipeline Enabled", "Yes"},
        {"Full Screen", "No"},  {"RTT Preferred Mode", "FBO"},
        {"VSync", "No"},        {"VSync Interval", "1"},
        {"Video Mode", mode},   {"sRGB Gamma Conversion", "No"},
    };
}

}  // namespace keladjust
