// Occurrence.cpp: the elements of a document in the places where they are drawn.

#include "Occurrence.h"

#include "Shapes.h"
#include "Text.h"

#include <algorithm>
#include <array>
#include <cstdlib>

namespace svg {

namespace {

// Deeper than any drawing made by hand, yet far from the end of the stack.
constexpr std::size_t kDeepest = 400;
constexpr std::size_t kMostInUse = 16;
// What a document that gives no size at all gets, as any replaced element on a CSS page.
constexpr Size kDefaultSize = {300, 150};

// Symbols, and the sizes of nested pictures, depend on whether a use brought them in.
bool isInstanceOfUse(const Occurrence& occurrence) {
    return occurrence.parent && occurrence.parent->element.is("use");
}

// Whether `element` is being drawn already: then it would contain itself.
bool isWithin(const Occurrence& occurrence, Element element) {
    for (const Occurrence* above = &occurrence; above; above = above->parent)
        if (above->element == element)
            return true;
    return false;
}

// Every child is counted: what a few lines can ask for must end in reasonable time.
void addChild(Scene& scene, const Occurrence& parent, Element element, const Viewport& viewport,
              Interior& interior) {
    if (parent.depth >= kDeepest)
        scene.report.warn("too deeply nested elements are left out");
    else if (spend(scene, 1))
        interior.children.push_back(occurIn(scene, parent, element, viewport));
}

void addChildren(Scene& scene, const Occurrence& parent, const Viewport& viewport,
                 Interior& interior) {
    for (Element child = parent.element.firstChild(); child; child = child.nextSibling())
        addChild(scene, parent, child, viewport, interior);
}

// Whether the user's language, as far as the environment tells, is in a comma-separated list.
bool speaksOneOf(std::string_view languages) {
    const char* variable = std::getenv("LANG");
    std::string_view own = variable ? variable : "";
    own = own.substr(0, own.find_first_of("_.@"));
    if (own.empty() || own == "C" || own == "POSIX")
        own = "en";
    while (!languages.empty()) {
        const auto end = std::min(languages.find(','), languages.size());
        std::string_view language = trimmed(languages.substr(0, end));
        language = language.substr(0, language.find('-'));
        if (equalsIgnoringCase(language, own))
            return true;
        languages.remove_prefix(std::min(end + 1, languages.size()));
    }
    return false;
}

// The conditional processing attributes of a switch's child. We know no extension at all.
bool passesConditions(Element element) {
    if (element.name().empty())
        return false;
    if (const auto languages = element.attribute("systemLanguage"))
        return speaksOneOf(*languages);
    return !element.attribute("requiredExtensions");
}

// The first child that passes, whatever it is.
Interior interiorOfSwitch(Scene& scene, const Occurrence& occurrence) {
    Interior interior;
    for (Element child = occurrence.element.firstChild(); child; child = child.nextSibling()) {
        if (!passesConditions(child))
            continue;
        addChild(scene, occurrence, child, occurrence.viewport, interior);
        break;
    }
    return interior;
}

// The linked element, moved by x and y.
Interior interiorOfUse(Scene& scene, const Occurrence& use) {
    Interior interior;
    const auto id = use.element.linkedId();
    const Element target = id ? scene.document.find(*id) : Element();
    if (!target)
        return interior;
    if (isWithin(use, target)) {
        scene.report.warn("a use element that contains itself is left out");
        return interior;
    }
    const CGPoint offset = toPoint(use.length("x", Axis::X), use.length("y", Axis::Y));
    interior.transform = CGAffineTransformMakeTranslation(offset.x, offset.y);
    addChild(scene, use, target, use.viewport, interior);
    return interior;
}

// The width or height of an element with a viewport: a use that brings it in may set its own.
double viewportLength(const Occurrence& occurrence, const char* attribute, Axis axis) {
    const double whole = occurrence.viewport.extent(axis);
    if (isInstanceOfUse(occurrence) && occurrence.parent->element.attribute(attribute))
        return occurrence.parent->length(attribute, axis, whole);
    return occurrence.length(attribute, axis, whole);
}

// Scales a document of its own size to the picture and centres it. What is less than a pixel is
// left over by rounding the picture's size, and moves nothing.
CGAffineTransform fitPicture(const Size& own, const Viewport& picture) {
    const double scale = std::min(picture.width / own.width, picture.height / own.height);
    const auto before = [](double leftOver) { return leftOver < 1 ? 0 : leftOver / 2; };
    return CGAffineTransformMake(toCoordinate(scale), 0, 0, toCoordinate(scale),
                                 toCoordinate(before(picture.width - own.width * scale)),
                                 toCoordinate(before(picture.height - own.height * scale)));
}

// svg and symbol. The outermost svg has the size that it gives itself, which fills the picture.
Interior interiorOfViewport(Scene& scene, const Occurrence& occurrence) {
    const Element element = occurrence.element;
    const bool isOutermost = !occurrence.parent;
    const Size own = isOutermost ? sizeOf(scene.document)
                                 : Size{viewportLength(occurrence, "width", Axis::X),
                                        viewportLength(occurrence, "height", Axis::Y)};
    if (!(own.width > 0 && own.height > 0))
        return {};

    const auto box = parseViewBox(element.attribute("viewBox").value_or(std::string()));
    const double x = isOutermost ? 0 : occurrence.length("x", Axis::X);
    const double y = isOutermost ? 0 : occurrence.length("y", Axis::Y);
    Interior interior;
    interior.transform = isOutermost
                             ? fitPicture(own, occurrence.viewport)
                             : CGAffineTransformMakeTranslation(toCoordinate(x), toCoordinate(y));
    if (box) {
        const AspectRatio ratio =
            parseAspectRatio(element.attribute("preserveAspectRatio").value_or(std::string()));
        interior.transform = CGAffineTransformConcat(fitViewBox(*box, ratio, own.width, own.height),
                                                     interior.transform);
    }
    if (occurrence.style.clipsOverflow && !isOutermost)
        interior.clip = toRect(x, y, own.width, own.height);
    addChildren(scene, occurrence,
                box ? Viewport{box->width, box->height} : Viewport{own.width, own.height},
                interior);
    return interior;
}

} // namespace

// Each level may hold a bitmap of the picture's size.
InUse::InUse(Scene& scene, Element element)
    : scene_(scene), isFirst_(std::ranges::find(scene.inUse, element) == scene.inUse.end() &&
                              scene.inUse.size() < kMostInUse) {
    scene.inUse.push_back(element);
    if (!isFirst_)
        scene.report.warn("a " + std::string(element.name()) +
                          " that needs itself, or too many others, is left out there");
}

InUse::~InUse() {
    scene_.inUse.pop_back();
}

bool spend(Scene& scene, std::size_t cost) {
    if (cost > scene.budget) {
        scene.report.warn("too many elements: some are left out");
        return false;
    }
    scene.budget -= cost;
    return true;
}

std::size_t costOfBitmap(std::size_t width, std::size_t height) {
    constexpr std::size_t kElements = 100, kPixelsPerElement = 10000;
    return kElements + width * height / kPixelsPerElement;
}

double Occurrence::length(const char* attribute, Axis axis, double fallback) const {
    const auto text = element.attribute(attribute);
    const auto length = text ? parseLength(*text) : std::nullopt;
    return length ? length->resolve(axis, viewport, style.emSize()) : fallback;
}

Occurrence occurIn(const Scene& scene, const Occurrence& parent, Element element,
                   const Viewport& viewport) {
    return {element, computeStyle(scene.document, element, parent.style), viewport, &parent,
            parent.depth + 1};
}

Occurrence occurInPlace(const Scene& scene, Element element) {
    std::vector<Element> ancestors;
    for (Element above = element; above; above = above.parent())
        ancestors.push_back(above);
    Style style;
    std::for_each(ancestors.rbegin(), ancestors.rend(),
                  [&](Element next) { style = computeStyle(scene.document, next, style); });
    return {element, style, {}, nullptr, 0};
}

Occurrence occurFor(const Scene& scene, const Occurrence& user, Element element) {
    Occurrence occurrence = occurInPlace(scene, element);
    occurrence.viewport = user.viewport;
    occurrence.depth = user.depth + 1;
    return occurrence;
}

Units unitsOf(Element element, const char* attribute, Units otherwise) {
    const auto text = element.attribute(attribute);
    return text == "objectBoundingBox" ? Units::BoundingBox
           : text == "userSpaceOnUse"  ? Units::UserSpace
                                       : otherwise;
}

CGAffineTransform boxToUserSpace(CGRect box) {
    return CGAffineTransformMake(box.size.width, 0, 0, box.size.height, box.origin.x, box.origin.y);
}

CGRect regionIn(Occurrence element, const Viewport& whole) {
    element.viewport = whole;
    return toRect(element.length("x", Axis::X, -0.1 * whole.width),
                  element.length("y", Axis::Y, -0.1 * whole.height),
                  element.length("width", Axis::X, 1.2 * whole.width),
                  element.length("height", Axis::Y, 1.2 * whole.height));
}

bool isContainer(const Occurrence& occurrence) {
    constexpr std::array names = {"g", "a", "svg", "use", "switch"};
    const Element element = occurrence.element;
    return std::ranges::any_of(names, [&](auto name) { return element.is(name); }) ||
           (element.is("symbol") && isInstanceOfUse(occurrence));
}

Interior interiorOf(Scene& scene, const Occurrence& occurrence) {
    const std::string_view name = occurrence.element.name();
    if (name == "use")
        return interiorOfUse(scene, occurrence);
    if (name == "switch")
        return interiorOfSwitch(scene, occurrence);
    if (name == "svg" || name == "symbol")
        return interiorOfViewport(scene, occurrence);
    Interior interior;
    addChildren(scene, occurrence, occurrence.viewport, interior);
    return interior;
}

CGAffineTransform transformOf(Element element) {
    const auto text = element.attribute("transform");
    return (text ? parseTransform(*text) : std::nullopt).value_or(CGAffineTransformIdentity);
}

// Each child's box is mapped before they are united: a turned child counts with the box around its
// turned box, as bounding boxes are upright in the space that asks.
CGRect boundsOf(Scene& scene, const Occurrence& occurrence) {
    if (!occurrence.style.isDisplayed)
        return CGRectNull;
    if (const Path path = shapePath(occurrence))
        return CGPathGetPathBoundingBox(path.get());
    if (occurrence.element.is("text"))
        return textBounds(scene, occurrence);
    CGRect bounds = CGRectNull;
    if (!isContainer(occurrence))
        return bounds;
    const Interior interior = interiorOf(scene, occurrence);
    for (const Occurrence& child : interior.children) {
        const CGRect inside = boundsOf(scene, child);
        if (!CGRectIsNull(inside)) {
            const auto transform =
                CGAffineTransformConcat(transformOf(child.element), interior.transform);
            bounds = CGRectUnion(bounds, CGRectApplyAffineTransform(inside, transform));
        }
    }
    return bounds;
}

Size sizeOf(const Document& document) {
    const auto box = parseViewBox(document.root().attribute("viewBox").value_or(std::string()));
    const Viewport whole =
        box ? Viewport{box->width, box->height} : Viewport{kDefaultSize.width, kDefaultSize.height};
    const auto get = [&](const char* name, Axis axis) {
        const auto text = document.root().attribute(name);
        const auto length = text ? parseLength(*text) : std::nullopt;
        return length ? length->resolve(axis, whole, Style().emSize()) : -1;
    };
    Size size = {get("width", Axis::X), get("height", Axis::Y)};
    // A side that is not given follows from the other one by the view box's proportions.
    if (size.width < 0)
        size.width =
            box && size.height >= 0 ? size.height * whole.width / whole.height : whole.width;
    if (size.height < 0)
        size.height = box ? size.width * whole.height / whole.width : whole.height;
    return size;
}

} // namespace svg
