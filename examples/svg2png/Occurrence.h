// Occurrence.h: the elements of a document in the places where they are drawn.
#pragma once

#include "Geometry.h"
#include "Report.h"
#include "Style.h"

#include <optional>
#include <vector>

namespace svg {

// What the stages of drawing share.
struct Scene {
    const Document& document;
    Report& report;
    // How many more occurrences may be visited: a few nested uses can ask for billions.
    std::size_t budget = 500'000;
    // The masks, markers and patterns that are being drawn.
    std::vector<Element> inUse = {};
    // What patterns are placed in, as the bitmap has it: a bitmap's own space, or that of the tile
    // of the pattern that is being drawn.
    CGAffineTransform patternSpace = CGAffineTransformIdentity;
};

// Whether there is enough left of the budget, which then has that much less; else the user is told.
bool spend(Scene& scene, std::size_t cost);
// What a bitmap beside the picture costs of it: as much as it takes to fill.
std::size_t costOfBitmap(std::size_t width, std::size_t height);

// Sets what patterns are placed in while the scope lasts.
class PatternSpace {
public:
    PatternSpace(Scene& scene, const CGAffineTransform& space)
        : scene_(scene), before_(scene.patternSpace) {
        scene_.patternSpace = space;
    }
    ~PatternSpace() { scene_.patternSpace = before_; }
    PatternSpace(const PatternSpace&) = delete;
    PatternSpace& operator=(const PatternSpace&) = delete;

private:
    Scene& scene_;
    CGAffineTransform before_;
};

// Notes that an element is being drawn for others while the scope lasts, so that it does not come
// to draw itself.
class InUse {
public:
    InUse(Scene& scene, Element element);
    ~InUse();
    InUse(const InUse&) = delete;
    InUse& operator=(const InUse&) = delete;

    // False, having told the user, when it is being drawn already.
    explicit operator bool() const { return isFirst_; }

private:
    Scene& scene_;
    bool isFirst_;
};

// One element where it is drawn. Through use the same element may occur several times, with
// another style each time.
struct Occurrence {
    Element element;
    Style style;
    Viewport viewport;                  // What percentages in its attributes refer to.
    const Occurrence* parent = nullptr; // The one that this is drawn for.
    std::size_t depth = 0;

    // An attribute that is a length, in user units; `fallback` when it is missing or unreadable.
    double length(const char* attribute, Axis axis, double fallback = 0) const;
};

// An element drawn inside `parent`.
Occurrence occurIn(const Scene& scene, const Occurrence& parent, Element element,
                   const Viewport& viewport);

// An element that is not drawn where it stands (a clipPath, a gradient): its style comes from where
// it stands, whoever refers to it.
Occurrence occurInPlace(const Scene& scene, Element element);

// The same, drawn for `user`.
Occurrence occurFor(const Scene& scene, const Occurrence& user, Element element);

// What is drawn inside an element.
struct Interior {
    std::vector<Occurrence> children;
    CGAffineTransform transform = CGAffineTransformIdentity; // From the children's space outwards.
    std::optional<CGRect> clip;                              // In the element's own space.
};

// Whether an element draws nothing but other elements.
bool isContainer(const Occurrence& occurrence);
// The children keep a pointer to `occurrence`, which must outlive them.
Interior interiorOf(Scene& scene, const Occurrence& occurrence);

// Where a rectangle of an element that others refer to lies: its sides are parts of the bounding
// box of what refers to it, or lengths in that one's user space.
enum class Units { BoundingBox, UserSpace };
Units unitsOf(Element element, const char* attribute, Units otherwise);
CGAffineTransform boxToUserSpace(CGRect box);
// The region of a mask or filter, which is a tenth larger on each side than `whole` if its
// attributes say nothing else.
CGRect regionIn(Occurrence element, const Viewport& whole);

// The element's transform attribute; the identity when there is none that can be read.
CGAffineTransform transformOf(Element element);

// The box around the fill of all that is drawn in an element, in its own user space; what strokes
// and effects add does not count. The null rectangle around nothing.
CGRect boundsOf(Scene& scene, const Occurrence& occurrence);

// The size that a document gives itself, in pixels.
struct Size {
    double width = 0;
    double height = 0;
};
Size sizeOf(const Document& document);

} // namespace svg
