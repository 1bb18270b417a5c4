// XGGPUInfoTest.cpp: telling graphics processors apart.

#include "XGGPUInfo.h"

#include "Support/CollectedLog.h"

#include <gtest/gtest.h>

namespace {

// What is asked before anything was told can be tested once in a process, and first.
TEST(XGGPUInfo, KnowsNothingBeforeItIsTold) {
    CollectedLog log;
    EXPECT_EQ(XGGPUInfoGetType(), kXGGPUTypeUnset);
    EXPECT_EQ(XGGPUInfoGetMaxTextureSize(), 2048u);
    EXPECT_FALSE(XGGPUInfoHasExtension(CFSTR("GL_EXT_sRGB")));
    EXPECT_FALSE(XGGPUInfoHasSRGBFramebuffer());
    const std::string line =
        "4 XGGPUInfoHasExtension: Checking for extension before GPUInfo has been set.";
    EXPECT_EQ(log.lines(), (std::vector{line, line}));

    XGGPUInfoFill("Broadcom", "VideoCore", nullptr, 4096);
    EXPECT_FALSE(XGGPUInfoHasExtension(CFSTR("GL_EXT_sRGB")));
    EXPECT_EQ(log.lines().size(), 3u) << "no list was told";
}

TEST(XGGPUInfo, TellsProcessorsApartByTheirNames) {
    const struct {
        const char* vendor;
        const char* renderer;
        XGGPUType type;
        int32_t revision;
    } cases[] = {
        {"NVIDIA Corporation", "NVIDIA Tegra", kXGGPUTypeTegra, 2},
        {"NVIDIA Corporation", "NVIDIA Tegra 0", kXGGPUTypeTegra, 2},
        {"NVIDIA Corporation", "NVIDIA Tegra 3", kXGGPUTypeTegra, 3},
        {"NVIDIA Corporation", "GeForce", kXGGPUTypeOther, 0},
        {"Imagination Technologies", "PowerVR SGX 543MP", kXGGPUTypePowerVR, 543},
        {"Imagination Technologies", "PowerVR Rogue G6200", kXGGPUTypeOther, 0},
        {"Qualcomm", "Adreno (TM) 320", kXGGPUTypeAdreno, 320},
        {"Qualcomm", "Adreno", kXGGPUTypeAdreno, 0},
        {"ARM", "Mali-T604", kXGGPUTypeMali, 604},
        {"ARM", "Mali-99999999999", kXGGPUTypeMali, INT32_MAX},
        {"VMware, Inc.", "Gallium 0.4 on llvmpipe", kXGGPUTypeVMware, 0},
        {"VMware Vivante Corporation", "GC880", kXGGPUTypeVMware, 0},
        {"Vivante Corporation", "GC880 core", kXGGPUTypeVivante, 880},
        {"Broadcom", "VideoCore IV HW", kXGGPUTypeBroadcom, 0},
        {"Intel", "HD Graphics 4000", kXGGPUTypeOther, 0},
        {"Qualcomm", nullptr, kXGGPUTypeOther, 0},
        {nullptr, "Adreno 320", kXGGPUTypeOther, 0},
        {"VMware, Inc.", nullptr, kXGGPUTypeOther, 0},
    };
    for (const auto& [vendor, renderer, type, revision] : cases) {
        XGGPUInfoFill(vendor, renderer, nullptr, 1024);
        const std::string what =
            std::string(vendor ? vendor : "NULL") + " / " + (renderer ? renderer : "NULL");
        EXPECT_EQ(XGGPUInfoGetType(), type) << what;
        EXPECT_EQ(XGGPUInfoGetRevision(), revision) << what;
    }
    EXPECT_EQ(XGGPUInfoGetMaxTextureSize(), 1024u);
}

TEST(XGGPUInfo, AnswersForTheExtensionsToldLast) {
    XGGPUInfoFill("ARM", "Mali", "  GL_EXT_sRGB  GL_OES_depth24 ", 1024);
    EXPECT_TRUE(XGGPUInfoHasExtension(CFSTR("GL_EXT_sRGB")));
    EXPECT_TRUE(XGGPUInfoHasExtension(CFSTR("GL_OES_depth24")));
    EXPECT_FALSE(XGGPUInfoHasExtension(CFSTR("")));
    EXPECT_FALSE(XGGPUInfoHasExtension(CFSTR("GL_EXT")));
    XGGPUInfoFill("ARM", "Mali", "GL_OES_depth24", 1024);
    EXPECT_FALSE(XGGPUInfoHasExtension(CFSTR("GL_EXT_sRGB")));
}

TEST(XGGPUInfo, OptionsMayVetoSRGB) {
    const struct {
        const char* extensions;
        bool textures, framebuffer;
    } cases[] = {
        {"GL_EXT_sRGB", true, false},
        {"GL_EXT_texture_sRGB", true, false},
        {"GL_EXT_sRGB_write_control", false, false},
        {"GL_EXT_sRGB GL_EXT_sRGB_write_control", true, true},
    };
    for (const auto& [extensions, textures, framebuffer] : cases) {
        XGGPUInfoFill("ARM", "Mali", extensions, 1024);
        EXPECT_FALSE(XGGPUInfoHasSRGBTextures()) << extensions;
        EXPECT_FALSE(XGGPUInfoHasSRGBFramebuffer()) << extensions;
        ASSERT_TRUE(HostOptionSetBoolean("NIMBRA_SRGB_TEXTURE", true));
        ASSERT_TRUE(HostOptionSetBoolean("NIMBRA_SRGB_FRAMEBUFFER", true));
        EXPECT_EQ(XGGPUInfoHasSRGBTextures(), textures) << extensions;
        EXPECT_EQ(XGGPUInfoHasSRGBFramebuffer(), framebuffer) << extensions;
        HostOptionSetBoolean("NIMBRA_SRGB_TEXTURE", false);
        HostOptionSetBoolean("NIMBRA_SRGB_FRAMEBUFFER", false);
    }
}

} // namespace
