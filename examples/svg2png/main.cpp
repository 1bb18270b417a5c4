// main.cpp: the command line of svg2png.

#include "Document.h"
#include "PngFile.h"
#include "Renderer.h"
#include "Scanner.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <new>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace {

constexpr char kUsage[] =
    "usage: svg2png INPUT.svg OUTPUT.png [WIDTH [HEIGHT]]\n"
    "       svg2png --batch LIST\n"
    "Draws an SVG file into an 8-bit RGBA PNG file, fitted into WIDTH × HEIGHT pixels; a side "
    "that\n"
    "is left out follows from the drawing. Each line of LIST holds the same arguments, with a tab\n"
    "between one and the next.\n";

// What the shell sees.
enum ExitCode { Success = 0, Failure = 1, Usage = 2 };

// Beyond these a picture is more likely a mistake than a wish; they keep every size within 32 bits.
constexpr double kLargestSide = 32767;
constexpr double kMostPixels = 1 << 28;

using Arguments = std::span<const std::string>;

// Says what is wrong with a file, in one line; always false, to be returned.
bool fail(const std::string& fileName, const std::string& message) {
    std::fprintf(stderr, "svg2png: %s: %s\n", fileName.c_str(), message.c_str());
    return false;
}

// A side of the picture as the user gave it, in pixels.
std::optional<double> parseSide(const std::string& text) {
    svg::Scanner scanner(text);
    const auto value = scanner.number();
    const bool isWhole = value && scanner.atEnd() && *value == std::floor(*value);
    return isWhole && *value >= 1 && *value <= kLargestSide ? value : std::nullopt;
}

// The picture's size: the document's own where the user gives none, its proportions where the user
// gives one side.
svg::Size pictureSize(const svg::Document& document, std::optional<double> width,
                      std::optional<double> height) {
    const svg::Size own = svg::sizeOf(document);
    if (!(own.width > 0 && own.height > 0))
        return {};
    const double scale = width ? *width / own.width : 1;
    return {std::max(1.0, std::round(width.value_or(own.width))),
            std::max(1.0, std::round(height.value_or(own.height * scale)))};
}

// One picture from beginning to end. Arguments: input, output, and up to two sides.
bool convert(Arguments arguments) {
    const std::string& input = arguments[0];
    const std::string& output = arguments[1];
    std::optional<double> sides[2];
    for (std::size_t i = 2; i < arguments.size(); ++i)
        if (!(sides[i - 2] = parseSide(arguments[i])))
            return fail(input, "\"" + arguments[i] + "\" is not a size from 1 to 32767 pixels");

    std::string error;
    const auto document = svg::Document::load(input, error);
    if (!document)
        return fail(input, error);
    const svg::Size size = pictureSize(*document, sides[0], sides[1]);
    if (!(size.width > 0))
        return fail(input, "the document's width or height is 0");
    if (size.width > kLargestSide || size.height > kLargestSide ||
        size.width * size.height > kMostPixels)
        return fail(input, "the picture would be too large");

    svg::Report report(input);
    const svg::Context context =
        svg::render(*document, std::size_t(size.width), std::size_t(size.height), report);
    if (!context)
        return fail(input, "no memory for a picture of this size");
    return svg::writePng(output, context.get(), error) || fail(output, error);
}

bool isComplete(Arguments arguments) {
    return arguments.size() >= 2 && arguments.size() <= 4;
}

std::vector<std::string> splitAtTabs(const std::string& line) {
    std::vector<std::string> parts;
    for (std::size_t start = 0; start <= line.size();) {
        const std::size_t end = std::min(line.find('\t', start), line.size());
        parts.push_back(line.substr(start, end - start));
        start = end + 1;
    }
    return parts;
}

// One bad file does not keep the others from being drawn.
ExitCode convertAll(const std::string& listName) {
    std::ifstream list(listName);
    if (!list) {
        fail(listName, "cannot read");
        return Failure;
    }
    bool allDrawn = true;
    for (std::string line; std::getline(list, line);) {
        const std::vector<std::string> arguments = splitAtTabs(line);
        if (isComplete(arguments))
            allDrawn &= convert(arguments);
        else
            allDrawn = fail(listName, "not INPUT, OUTPUT and at most two sizes: " + line);
    }
    return allDrawn ? Success : Failure;
}

ExitCode run(Arguments arguments) {
    if (arguments.size() == 2 && arguments[0] == "--batch")
        return convertAll(arguments[1]);
    if (!isComplete(arguments) || arguments[0].starts_with("--")) {
        std::fputs(kUsage, stderr);
        return Usage;
    }
    return convert(arguments) ? Success : Failure;
}

} // namespace

int main(int argc, char** argv) {
    try {
        return run(std::vector<std::string>(argv + 1, argv + argc));
    } catch (const std::bad_alloc&) {
        std::fputs("svg2png: out of memory\n", stderr);
        return Failure;
    }
}
