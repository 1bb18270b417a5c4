// compare.cpp: measures how far two PNG pictures lie apart, and paints where.
//
//     compare-png A.png B.png DIFFERENCE.png
//     compare-png --batch LIST       (a line for each pair: the three names, tabs between them)
//
// Prints for each pair its mean and its worst block, or "error" and the reason. Compared are
// premultiplied components, alpha among them, so that the colour of what is transparent does not
// count. The mean is the mean absolute difference over all components, from 0 to 255. The worst
// block is the largest mean absolute difference that one component has in a block of 8 by 8 pixels
// (fewer at the right and bottom edges); it is never less than the difference of the block's means.
// The difference picture is white where both agree and goes to red.

#include <png.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

namespace {

using Pixel = std::array<int, 4>; // Red, green, blue, alpha; premultiplied, 0 to 255.

struct Picture {
    std::size_t width = 0;
    std::size_t height = 0;
    std::vector<Pixel> pixels;

    const Pixel& at(std::size_t x, std::size_t y) const { return pixels[y * width + x]; }
};

std::optional<Picture> readPicture(const std::string& fileName, std::string& error) {
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_file(&image, fileName.c_str())) {
        error = fileName + ": " + image.message;
        return std::nullopt;
    }
    image.format = PNG_FORMAT_RGBA;
    std::vector<png_byte> bytes(PNG_IMAGE_SIZE(image));
    if (!png_image_finish_read(&image, nullptr, bytes.data(), 0, nullptr)) {
        error = fileName + ": " + image.message;
        return std::nullopt;
    }
    Picture picture = {image.width, image.height, {}};
    picture.pixels.reserve(bytes.size() / 4);
    for (std::size_t i = 0; i < bytes.size(); i += 4) {
        const int alpha = bytes[i + 3];
        const auto scaled = [&](std::size_t j) { return (bytes[i + j] * alpha + 127) / 255; };
        picture.pixels.push_back({scaled(0), scaled(1), scaled(2), alpha});
    }
    return picture;
}

double meanDifference(const Picture& a, const Picture& b) {
    std::uint64_t sum = 0;
    for (std::size_t i = 0; i < a.pixels.size(); ++i)
        for (std::size_t c = 0; c < 4; ++c)
            sum += std::uint64_t(std::abs(a.pixels[i][c] - b.pixels[i][c]));
    return double(sum) / double(a.pixels.size() * 4);
}

// The component that differs most in the block that starts at (left, top).
double blockDifference(const Picture& a, const Picture& b, std::size_t left, std::size_t top,
                       std::size_t side) {
    const std::size_t right = std::min(left + side, a.width);
    const std::size_t bottom = std::min(top + side, a.height);
    std::array<int, 4> sums = {};
    for (std::size_t y = top; y < bottom; ++y)
        for (std::size_t x = left; x < right; ++x)
            for (std::size_t c = 0; c < 4; ++c)
                sums[c] += std::abs(a.at(x, y)[c] - b.at(x, y)[c]);
    return double(std::ranges::max(sums)) / double((right - left) * (bottom - top));
}

double worstBlock(const Picture& a, const Picture& b) {
    constexpr std::size_t side = 8;
    double worst = 0;
    for (std::size_t y = 0; y < a.height; y += side)
        for (std::size_t x = 0; x < a.width; x += side)
            worst = std::max(worst, blockDifference(a, b, x, y, side));
    return worst;
}

bool writeDifference(const std::string& fileName, const Picture& a, const Picture& b) {
    std::vector<png_byte> bytes;
    bytes.reserve(a.pixels.size() * 3);
    for (std::size_t i = 0; i < a.pixels.size(); ++i) {
        int largest = 0;
        for (std::size_t c = 0; c < 4; ++c)
            largest = std::max(largest, std::abs(a.pixels[i][c] - b.pixels[i][c]));
        bytes.insert(bytes.end(), {255, png_byte(255 - largest), png_byte(255 - largest)});
    }
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    image.width = png_uint_32(a.width);
    image.height = png_uint_32(a.height);
    image.format = PNG_FORMAT_RGB;
    return png_image_write_to_file(&image, fileName.c_str(), 0, bytes.data(), 0, nullptr) != 0;
}

bool fail(const std::string& reason) {
    std::cout << "error " << reason << std::endl;
    return false;
}

bool compare(const std::string& first, const std::string& second, const std::string& difference) {
    std::string error;
    const auto a = readPicture(first, error);
    const auto b = a ? readPicture(second, error) : std::nullopt;
    if (!b)
        return fail(error);
    if (a->width != b->width || a->height != b->height)
        return fail("sizes differ");
    if (!writeDifference(difference, *a, *b))
        return fail(difference + ": cannot write");
    std::printf("%.4f %.4f\n", meanDifference(*a, *b), worstBlock(*a, *b));
    std::fflush(stdout);
    return true;
}

bool compareAll(const std::string& listName) {
    std::ifstream list(listName);
    if (!list)
        return fail(listName + ": cannot read");
    bool allCompared = true;
    for (std::string line; std::getline(list, line);) {
        std::istringstream parts(line);
        std::string first, second, difference;
        std::getline(parts, first, '\t');
        std::getline(parts, second, '\t');
        std::getline(parts, difference);
        allCompared &= compare(first, second, difference);
    }
    return allCompared;
}

} // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    if (arguments.size() == 2 && arguments[0] == "--batch")
        return compareAll(arguments[1]) ? 0 : 1;
    if (arguments.size() != 3) {
        std::cerr << "usage: compare-png A.png B.png DIFFERENCE.png\n"
                     "       compare-png --batch LIST\n";
        return 2;
    }
    return compare(arguments[0], arguments[1], arguments[2]) ? 0 : 1;
}
