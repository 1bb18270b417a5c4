// AtlasHost.h: a compositor with a texture of glyphs, in memory and without a graphics processor.
#pragma once

#include "XGCommandQueue.h"
#include <FontManager/FMGlyph.h>

#include <cstddef>
#include <cstdint>
#include <list>
#include <vector>

namespace test {

// Takes glyphs into its texture while it lives, and plays queues of rectangles and sprites from it.
// There is one at a time.
class AtlasHost {
public:
    // A texture of as many pixels each way.
    explicit AtlasHost(uint32_t size);
    ~AtlasHost();
    AtlasHost(const AtlasHost&) = delete;
    AtlasHost& operator=(const AtlasHost&) = delete;

    // How many glyphs have a place, and how many were uploaded altogether.
    size_t sprites() const { return sprites_.size(); }
    size_t uploads() const { return uploads_; }

    // Draws the queue's commands over pixels of its size: blue, green, red, alpha, premultiplied,
    // the top row first. False when it holds a command that the host has no code for.
    bool play(XGCommandQueueRef queue, std::vector<uint8_t>& pixels) const;

private:
    struct Sprite {
        uint32_t x, y, width, height;
        bool isColor;
    };
    // Glyphs of about the same height, one beside the other.
    struct Shelf {
        uint32_t y, height, used;
    };
    struct Target;

    void* add(const FMGlyph& glyph);
    void remove(void* sprite);
    bool place(Sprite& sprite);
    void upload(const Sprite& sprite, const FMGlyph& glyph);
    void drawSprite(Target& target, const XGSprite& item, const CGFloat* color,
                    const uint8_t* contrast) const;

    uint32_t size_;
    std::vector<uint8_t> texture_; // Four bytes to a pixel; coverage stands in all of them.
    std::vector<Shelf> shelves_;
    std::list<Sprite> sprites_;
    size_t uploads_ = 0;
    FMTextureAtlasCallbacks glyphs_;
    XGTextureAtlasCallbacks queues_;
};

} // namespace test
