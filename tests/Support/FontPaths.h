// FontPaths.h: where the packages that tests depend on put a font of each kind.
#pragma once

namespace test {

inline constexpr char kTrueTypeFont[] = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf";
inline constexpr char kVariableFont[] = "/usr/share/fonts/truetype/inter-vf/Inter-roman.var.ttf";
inline constexpr char kBitmapFont[] = "/usr/share/fonts/X11/misc/unifont.pcf.gz";
inline constexpr char kColorFont[] = "/usr/share/fonts/truetype/noto/NotoColorEmoji.ttf";

} // namespace test
