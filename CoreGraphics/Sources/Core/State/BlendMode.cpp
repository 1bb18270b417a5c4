// BlendMode.cpp: the table of blend modes.

#include "Core/State/BlendMode.h"

#include "Core/Object/RuntimeOptions.h"

#include <array>
#include <cstdint>

namespace cg {

namespace {

enum class Operator : uint8_t {
    Blend,      // Mixes colours: not one of Porter and Duff's.
    PorterDuff, // Always counts as one.
    Optional,   // Counts as one while the option is on.
};

constexpr std::array kOperators = {
    Operator::PorterDuff, // Normal
    Operator::Blend,      // Multiply
    Operator::Blend,      // Screen
    Operator::Blend,      // Overlay
    Operator::Blend,      // Darken
    Operator::Blend,      // Lighten
    Operator::Blend,      // ColorDodge
    Operator::Blend,      // ColorBurn
    Operator::Blend,      // SoftLight
    Operator::Blend,      // HardLight
    Operator::Blend,      // Difference
    Operator::Blend,      // Exclusion
    Operator::Blend,      // Hue
    Operator::Blend,      // Saturation
    Operator::Blend,      // Color
    Operator::Blend,      // Luminosity
    Operator::Optional,   // Clear
    Operator::PorterDuff, // Copy
    Operator::Optional,   // SourceIn
    Operator::Optional,   // SourceOut
    Operator::Optional,   // SourceAtop
    Operator::Optional,   // DestinationOver
    Operator::Optional,   // DestinationIn
    Operator::Optional,   // DestinationOut
    Operator::Optional,   // DestinationAtop
    Operator::Optional,   // XOR
    Operator::Blend,      // PlusDarker
    Operator::Blend,      // PlusLighter
};
static_assert(kOperators.size() == kCGBlendModePlusLighter + 1, "a row for every mode");

bool usesGPUBlendModes = true;

constexpr OptionTexts kOption = {
    .name = "NIMBRA_GPU_BLEND_MODES",
    .title = "Try to render blend modes via the GPU",
    .category = "Graphics Rendering",
    .description = "Render custom CGBlendModes using the GPU",
};

} // namespace

void registerBlendModeOption() {
    [[maybe_unused]] static const bool once = registerOption(kOption, usesGPUBlendModes);
}

bool isPorterDuff(CGBlendMode mode) {
    const auto index = static_cast<std::size_t>(mode);
    if (mode < 0 || index >= kOperators.size())
        return false;
    return kOperators[index] == Operator::PorterDuff ||
           (kOperators[index] == Operator::Optional && usesGPUBlendModes);
}

} // namespace cg
