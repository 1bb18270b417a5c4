/* XGGPUInfo: which graphics processor the compositor draws with, and what it can do.
 *
 * The compositor tells once, before drawing begins; what it told is kept for the process, without a
 * lock. The runtime options NIMBRA_SRGB_TEXTURE and NIMBRA_SRGB_FRAMEBUFFER, both off at first, may
 * veto sRGB textures and framebuffers; they are registered with the first call of XGGPUInfoFill. */
#pragma once

#include <CoreFoundation/CFString.h>
#include <CoreGraphics/CGBase.h>

CG_BEGIN_DECLS

CG_ENUM(int32_t, XGGPUType){
    kXGGPUTypeOther = -1,  kXGGPUTypeUnset = 0, /**< Nobody has told yet. */
    kXGGPUTypeTegra = 1,   kXGGPUTypePowerVR = 2,  kXGGPUTypeAdreno = 3,   kXGGPUTypeMali = 4,
    kXGGPUTypeVivante = 5, kXGGPUTypeBroadcom = 6, kXGGPUTypeVMware = 100,
};

/** Takes what OpenGL answers for GL_VENDOR, GL_RENDERER and GL_EXTENSIONS, and the largest side of
 *  a texture in pixels. Type and revision are found from the names, NULL being an unknown one. The
 *  extensions, names apart by blanks, replace those of an earlier call; NULL keeps them. */
CG_EXPORT void XGGPUInfoFill(const char* vendor, const char* renderer, const char* extensions,
                             uint32_t maxTextureSize);

CG_EXPORT XGGPUType XGGPUInfoGetType(void);
/** The model number in the renderer's name; 0 where it has none or the type knows no models. */
CG_EXPORT int32_t XGGPUInfoGetRevision(void);
/** In pixels; 2048 before XGGPUInfoFill. */
CG_EXPORT uint32_t XGGPUInfoGetMaxTextureSize(void);

/** Whether the OpenGL extension is there. False for NULL, and, with a warning, before any
 *  extensions were told. */
CG_EXPORT bool XGGPUInfoHasExtension(CFStringRef name);
/** Whether GL_EXT_sRGB or GL_EXT_texture_sRGB is there and NIMBRA_SRGB_TEXTURE on. */
CG_EXPORT bool XGGPUInfoHasSRGBTextures(void);
/** Whether GL_EXT_sRGB and GL_EXT_sRGB_write_control are there and NIMBRA_SRGB_FRAMEBUFFER on. */
CG_EXPORT bool XGGPUInfoHasSRGBFramebuffer(void);

CG_END_DECLS
