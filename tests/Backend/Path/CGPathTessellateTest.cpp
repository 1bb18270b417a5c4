// CGPathTessellateTest.cpp: triangles held against areas in closed form and integrated, and against
// the pixels that bare Skia fills.

#include "Backend/Path/ContourGroups.h"
#include "Paths.h"
#include "Support/FailingAllocator.h"
#include "include/core/SkCanvas.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <csignal>
#include <numbers>
#include <random>
#include <vector>

namespace {

using namespace test;

struct Triangle {
    CGPoint a, b, c;

    double signedArea() const {
        return ((double{b.x} - a.x) * (double{c.y} - a.y) -
                (double{c.x} - a.x) * (double{b.y} - a.y)) /
               2;
    }
    bool contains(CGPoint p) const {
        const double s = Triangle{a, b, p}.signedArea(), t = Triangle{b, c, p}.signedArea(),
                     u = Triangle{c, a, p}.signedArea();
        return (s > 0 && t > 0 && u > 0) || (s < 0 && t < 0 && u < 0);
    }
};

struct Mesh {
    std::vector<Triangle> triangles;
    std::size_t batches = 0;
    CGRect bounds = CGRectNull;

    double area() const {
        double sum = 0;
        for (const Triangle& triangle : triangles)
            sum += std::abs(triangle.signedArea());
        return sum;
    }
};

Mesh tessellate(const MutablePath& path, uint32_t rule, double tolerance = 0.01) {
    Mesh mesh;
    EXPECT_TRUE(_CGPathTessellate(
        path.get(), rule, tolerance,
        [](void* info, const CGPoint* vertices, size_t vertexCount, const uint32_t* indices,
           size_t indexCount) {
            Mesh& mesh = *static_cast<Mesh*>(info);
            ++mesh.batches;
            EXPECT_EQ(indexCount % 3, 0u);
            for (size_t i = 0; i < indexCount; ++i)
                ASSERT_LT(indices[i], vertexCount);
            for (size_t i = 0; i + 2 < indexCount; i += 3)
                mesh.triangles.push_back(
                    {vertices[indices[i]], vertices[indices[i + 1]], vertices[indices[i + 2]]});
        },
        &mesh, &mesh.bounds));
    return mesh;
}

MutablePath star() {
    MutablePath path = makePath();
    for (int i = 0; i < 5; ++i) {
        const float angle = 2 * std::numbers::pi_v<float> * static_cast<float>(2 * i) / 5;
        (i ? CGPathAddLineToPoint : CGPathMoveToPoint)(path.get(), nullptr, 10 * std::cos(angle),
                                                       10 * std::sin(angle));
    }
    return path;
}

MutablePath ellipse(float radius) {
    MutablePath path = makePath();
    CGPathAddEllipseInRect(path.get(), nullptr, {{-radius, -radius}, {2 * radius, 2 * radius}});
    return path;
}

// ---- Shapes held against Skia's rasteriser, within (0, 0) to (100, 100)

using Random = std::mt19937;

// Random closed curves that cross themselves again and again.
MutablePath scribble(Random& random) {
    std::uniform_real_distribution<float> place(0, 100);
    MutablePath path = makePath();
    const auto next = [&] { return place(random); };
    for (int contour = 0; contour < 2; ++contour) {
        CGPathMoveToPoint(path.get(), nullptr, next(), next());
        for (int i = 0; i < 6; ++i) {
            CGPathAddLineToPoint(path.get(), nullptr, next(), next());
            CGPathAddQuadCurveToPoint(path.get(), nullptr, next(), next(), next(), next());
            CGPathAddCurveToPoint(path.get(), nullptr, next(), next(), next(), next(), next(),
                                  next());
            const CGPoint from = CGPathGetCurrentPoint(path.get()), to = {next(), next()};
            CGPathAddArcToPoint(path.get(), nullptr, to.x, from.y, to.x, to.y,
                                std::min(std::abs(to.x - from.x), std::abs(to.y - from.y)));
        }
        CGPathCloseSubpath(path.get());
    }
    return path;
}

// Corners on a coarse grid: edges lie in one another, corners on edges and on each other.
MutablePath coarseGrid(Random& random) {
    MutablePath path = makePath();
    for (int i = 0; i < 150; ++i)
        (i % 15 ? CGPathAddLineToPoint : CGPathMoveToPoint)(path.get(), nullptr,
                                                            static_cast<float>(random() % 6 * 20),
                                                            static_cast<float>(random() % 6 * 20));
    return path;
}

// Contours without area, repeated points, a line there and back, a contour on top of itself.
MutablePath degenerate(Random& random) {
    MutablePath path = coarseGrid(random);
    const CGPoint thereAndBack[] = {{10, 10}, {90, 35}, {10, 10}, {10, 10}, {90, 35}};
    CGPathAddLines(path.get(), nullptr, thereAndBack, 5);
    CGPathMoveToPoint(path.get(), nullptr, 50, 50);
    CGPathCloseSubpath(path.get());
    for (int i = 0; i < 2; ++i)
        CGPathAddEllipseInRect(path.get(), nullptr, {{20, 20}, {30, 30}});
    CGPathAddRect(path.get(), nullptr, {{5, 60}, {90, 0}});
    return path;
}

MutablePath dots(Random& random, int count, float radius) {
    std::uniform_real_distribution<float> place(radius, 100 - radius);
    MutablePath path = makePath();
    for (int i = 0; i < count; ++i)
        CGPathAddEllipseInRect(
            path.get(), nullptr,
            {{place(random) - radius, place(random) - radius}, {2 * radius, 2 * radius}});
    return path;
}

// Tiles side by side, and rings in rings: what a splitting of contours must keep together.
MutablePath tilesAndRings(Random& random) {
    MutablePath path = makePath();
    for (int i = 0; i < 40; ++i)
        CGPathAddRect(path.get(), nullptr,
                      {{static_cast<float>(i % 8) * 5, static_cast<float>(i / 8) * 5}, {5, 5}});
    for (float inset = 0; inset < 25; inset += 1 + static_cast<float>(random() % 4))
        CGPathAddEllipseInRect(path.get(), nullptr,
                               {{50 + inset, 50 + inset}, {50 - 2 * inset, 50 - 2 * inset}});
    return path;
}

// Letters: stems with holes and counters of either direction, in lines of text.
MutablePath letters(Random& random) {
    MutablePath path = makePath();
    for (int i = 0; i < 60; ++i) {
        const CGAffineTransform at = {0.09f,
                                      0,
                                      i % 3 ? 0.f : 0.02f,
                                      0.15f,
                                      2 + static_cast<float>(i % 10) * 9.7f,
                                      2 + static_cast<float>(i / 10) * 16};
        CGPathAddRoundedRect(path.get(), &at, {{0, 0}, {75, 90}}, 30, 30);
        const MutablePath hole = makePath();
        CGPathAddEllipseInRect(hole.get(), &at, {{20, 40}, {35, 30}});
        const MutablePath inside = cf::adopt(_CGPathCreateReversedPath(hole.get()));
        CGPathAddPath(path.get(), nullptr, random() % 2 ? hole.get() : inside.get());
        CGPathAddRect(path.get(), &at, {{70, 0}, {12, 60}});
    }
    return path;
}

constexpr int kSide = 200;
constexpr float kScale = kSide / 110.f;

// How much of each pixel bare Skia covers, 0 to 255.
std::vector<uint8_t> coverage(const MutablePath& path, uint32_t rule) {
    std::vector<uint8_t> pixels(kSide * kSide);
    const auto canvas =
        SkCanvas::MakeRasterDirect(SkImageInfo::MakeA8(kSide, kSide), pixels.data(), kSide);
    SkPaint paint;
    paint.setAntiAlias(true);
    SkPath filled = native(path.get());
    filled.setFillType(rule == kXGPathFillEvenOdd ? SkPathFillType::kEvenOdd
                                                  : SkPathFillType::kWinding);
    canvas->scale(kScale, kScale);
    canvas->translate(5, 5);
    canvas->drawPath(filled, paint);
    return pixels;
}

// In a pixel, a little off its middle where edges like to lie.
CGPoint sample(std::size_t x, std::size_t y) {
    return {(static_cast<float>(x) + 0.4637f) / kScale - 5,
            (static_cast<float>(y) + 0.5291f) / kScale - 5};
}

// How many triangles have each pixel's sample.
std::vector<int> hits(const Mesh& mesh) {
    std::vector<int> counts(kSide * kSide);
    const auto range = [](float a, float b, float c) {
        const auto pixel = [](float place, float beyond) {
            return static_cast<size_t>(
                std::clamp((place + 5) * kScale + beyond, 0.f, static_cast<float>(kSide)));
        };
        return std::pair(pixel(std::min({a, b, c}), -1), pixel(std::max({a, b, c}), 2));
    };
    for (const Triangle& t : mesh.triangles) {
        const auto [top, bottom] = range(t.a.y, t.b.y, t.c.y);
        const auto [left, right] = range(t.a.x, t.b.x, t.c.x);
        for (size_t y = top; y < bottom; ++y)
            for (size_t x = left; x < right; ++x)
                counts[y * kSide + x] += t.contains(sample(x, y));
    }
    return counts;
}

struct Edge {
    CGPoint from, to;
};

// The path's curves in 32 even steps each, contours closed.
std::vector<Edge> edgesOf(const MutablePath& path) {
    struct Walk {
        std::vector<Edge> edges;
        CGPoint start = {0, 0}, last = {0, 0};
        void to(CGPoint point) {
            edges.push_back({last, point});
            last = point;
        }
    } walk;
    CGPathApply(path.get(), &walk, [](void* info, const CGPathElement* element) {
        Walk& walk = *static_cast<Walk*>(info);
        std::vector<CGPoint> steps(32);
        if (element->type == kCGPathElementMoveToPoint) {
            walk.to(walk.start);
            walk.start = walk.last = element->points[0];
        } else if (element->type == kCGPathElementCloseSubpath) {
            walk.to(walk.start);
        } else {
            _CGPathSegmentEvaluate(element, steps.data(), 32);
            for (const CGPoint step : steps)
                walk.to(step);
            walk.to(element->points[element->type - 1]);
        }
    });
    walk.to(walk.start);
    return walk.edges;
}

// The fill's area as the mean length of what lines through it find inside.
double areaByLines(const std::vector<Edge>& edges, uint32_t rule) {
    constexpr int lines = 2000;
    double sum = 0;
    for (int line = 0; line < lines; ++line) {
        const double y = -5 + 110 * (line + 0.5) / lines;
        std::vector<std::pair<double, int>> crossings;
        for (const auto& [from, to] : edges)
            if ((from.y <= y) != (to.y <= y))
                crossings.emplace_back(from.x + (y - from.y) * (double{to.x} - from.x) /
                                                    (double{to.y} - from.y),
                                       from.y <= y ? 1 : -1);
        std::ranges::sort(crossings);
        int winding = 0;
        for (size_t i = 0; i + 1 < crossings.size(); ++i) {
            winding += crossings[i].second;
            if (rule == kXGPathFillEvenOdd ? winding % 2 != 0 : winding != 0)
                sum += crossings[i + 1].first - crossings[i].first;
        }
    }
    return sum * 110 / lines;
}

// Pixels off the outline that do not have one triangle inside of the fill and none outside. A
// sliver too thin to colour its pixel is the path's to tell.
int wrongPixels(const MutablePath& path, const Mesh& mesh, uint32_t rule) {
    const auto covered = coverage(path, rule);
    const auto counts = hits(mesh);
    int wrong = 0;
    for (size_t i = 0; i < counts.size(); ++i) {
        const bool isOnOutline = covered[i] > 0 && covered[i] < 255;
        if (isOnOutline || counts[i] == (covered[i] == 255))
            continue;
        const bool isInside = CGPathContainsPoint(path.get(), nullptr, sample(i % kSide, i / kSide),
                                                  rule == kXGPathFillEvenOdd);
        wrong += counts[i] != isInside;
    }
    return wrong;
}

// No gaps and no overlaps, also where contours were told apart or cut.
TEST(CGPathTessellate, CoversTheFillOncePixelForPixel) {
    Random random(11);
    const struct {
        const char* what;
        MutablePath (*make)(Random&);
        int rounds;
    } kinds[] = {
        {"scribble", scribble, 12},
        {"coarse grid", coarseGrid, 12},
        {"degenerate", degenerate, 12},
        {"dots apart", [](Random& random) { return dots(random, 300, 0.7f); }, 1},
        {"dots that overlap", [](Random& random) { return dots(random, 100, 7); }, 2},
        {"tiles and rings", tilesAndRings, 4},
        {"letters", letters, 1},
    };
    for (const auto& [what, make, rounds] : kinds)
        for (int round = 0; round < rounds; ++round) {
            const MutablePath path = make(random);
            const auto edges = edgesOf(path);
            for (const uint32_t rule : {kXGPathFillWinding, kXGPathFillEvenOdd}) {
                const Mesh mesh = tessellate(path, rule, 1e-3);
                EXPECT_NEAR(mesh.area(), areaByLines(edges, rule), 1e-3 * 100 * 100) << what;
                EXPECT_EQ(wrongPixels(path, mesh, rule), 0)
                    << what << " round " << round << " rule " << rule;
            }
        }
}

TEST(CGPathTessellate, KeepsBoxesTogetherThatTouch) {
    Random random(5);
    for (int round = 0; round < 50; ++round) {
        std::vector<SkRect> boxes(60);
        for (SkRect& box : boxes)
            box = SkRect::MakeXYWH(
                static_cast<float>(random() % 40), static_cast<float>(random() % 40),
                static_cast<float>(random() % 6), static_cast<float>(random() % 6));
        const cg::ContourGroups groups = cg::groupBoxes(boxes);
        std::vector<size_t> groupOf(boxes.size(), boxes.size());
        for (size_t group = 0; group < groups.ends.size(); ++group)
            for (const size_t member : groups.group(group))
                groupOf[member] = group;
        for (size_t a = 0; a < boxes.size(); ++a)
            for (size_t b = 0; b < boxes.size(); ++b)
                if (boxes[a].fLeft <= boxes[b].fRight && boxes[b].fLeft <= boxes[a].fRight &&
                    boxes[a].fTop <= boxes[b].fBottom && boxes[b].fTop <= boxes[a].fBottom)
                    EXPECT_EQ(groupOf[a], groupOf[b]) << round;
    }
    std::vector<SkRect> apart;
    for (int i = 0; i < 900; ++i)
        apart.push_back(
            SkRect::MakeXYWH(static_cast<float>(i % 30), static_cast<float>(i / 30), 0.5f, 0.5f));
    EXPECT_EQ(cg::groupBoxes(apart).ends.size(), apart.size());
    EXPECT_TRUE(cg::groupBoxes({}).members.empty());
}

// Chords that lie a distance d inside of a circle cut off two thirds of d along its outline.
TEST(CGPathTessellate, KeepsToTheTolerance) {
    const double pi = std::numbers::pi;
    std::size_t coarser = 0;
    for (const double tolerance : {1.0, 0.1, 0.01}) {
        const Mesh mesh = tessellate(ellipse(50), kXGPathFillWinding, tolerance);
        const double missing = pi * 50 * 50 - mesh.area();
        EXPECT_LT(missing, 2 * pi * 50 * tolerance * 2 / 3) << tolerance;
        EXPECT_GT(mesh.triangles.size(), 2 * coarser) << "finer than ten times the tolerance";
        EXPECT_LT(mesh.triangles.size(), 4 * pi / std::sqrt(8 * tolerance / 50)) << tolerance;
        coarser = mesh.triangles.size();
    }
    EXPECT_EQ(tessellate(ellipse(50), kXGPathFillWinding, kNaN).triangles.size(),
              tessellate(ellipse(50), kXGPathFillWinding, 0.5).triangles.size())
        << "NaN is the default";
}

TEST(CGPathTessellate, ReportsBoundsAndBatches) {
    const Mesh mesh = tessellate(makeRect({{1, 2}, {4, 3}}), kXGPathFillWinding);
    expectRect(mesh.bounds, {{1, 2}, {4, 3}}, 0, "rectangle");
    EXPECT_TRUE(CGRectIsNull(tessellate(makePath(), kXGPathFillWinding).bounds));

    MutablePath many = makePath();
    for (int i = 0; i < 2000; ++i)
        CGPathAddRect(many.get(), nullptr, {{static_cast<float>(i) * 2, 0}, {1, 1}});
    const Mesh strip = tessellate(many, kXGPathFillWinding);
    EXPECT_EQ(strip.triangles.size(), 4000u);
    EXPECT_EQ(strip.batches, 4u);
}

enum Outcome { Whole, Refused, Half, Done };

// With one allocation failing. Where the library ends the process, so does this: `new` throws here.
Outcome tessellateStarWithout(std::size_t allocation) noexcept {
    const MutablePath path = star();
    size_t corners = 0;
    const AllocationFailure failure(allocation);
    const bool isWhole = _CGPathTessellate(
        path.get(), kXGPathFillWinding, 1,
        [](void* info, const CGPoint*, size_t, const uint32_t*, size_t indices) {
            *static_cast<size_t*>(info) += indices;
        },
        &corners, nullptr);
    if (!failure.happened())
        return Done;
    constexpr size_t expected = 3 * 8; // Five points around a pentagon.
    if (corners != (isWhole ? expected : 0))
        return Half;
    return isWhole ? Whole : Refused;
}

// Each allocation fails once, in a process of its own: the sweep's own end in false, those that
// cannot be reported end the process, and neither leaves half of a mesh.
TEST(CGPathTessellate, IsWholeOrFailsWithoutMemory) {
    if (!allAllocationsCanFail())
        GTEST_SKIP() << "malloc is the sanitizer's: the sweep's memory cannot fail here";
    int refused = 0;
    int outcome = Whole;
    for (std::size_t number = 1; outcome != Done; ++number) {
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            close(STDERR_FILENO);
            _exit(tessellateStarWithout(number));
        }
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        if (WIFSIGNALED(status)) {
            EXPECT_EQ(WTERMSIG(status), SIGABRT) << "allocation " << number;
            continue;
        }
        outcome = WEXITSTATUS(status);
        EXPECT_NE(outcome, Half) << "allocation " << number;
        refused += outcome == Refused;
    }
    EXPECT_GT(refused, 1) << "the tessellator itself, and what it asks for later";
}

TEST(CGPathTessellate, RefusesWhatIsNoPath) {
    MutablePath endless = makeRect({{1, 1}, {4, 2}});
    _CGPathConcatCTM(endless.get(), kInfinity, 0, 0, 1, 0, 0);
    const auto never = [](void*, const CGPoint*, size_t, const uint32_t*, size_t) { FAIL(); };
    CGRect bounds = CGRectZero;
    EXPECT_FALSE(_CGPathTessellate(endless.get(), kXGPathFillWinding, 1, never, nullptr, &bounds));
    EXPECT_TRUE(CGRectIsNull(bounds));
    MutablePath huge = makeLines({{-1, 0}});
    CGPathAddCurveToPoint(huge.get(), nullptr, 5, 5, -5, 5, 1, 0);
    _CGPathConcatCTM(huge.get(), 3e38f / 5, 0, 0, 1, 0, 0);
    ASSERT_TRUE(native(huge.get()).isFinite());
    EXPECT_FALSE(_CGPathTessellate(huge.get(), kXGPathFillWinding, 1, never, nullptr, nullptr))
        << "a curve whose middle is beyond the largest number";
    EXPECT_FALSE(_CGPathTessellate(nullptr, kXGPathFillWinding, 1, never, nullptr, nullptr));
    EXPECT_FALSE(_CGPathTessellate(nullptr, 2, 1, never, nullptr, nullptr));
    EXPECT_DEATH(_CGPathTessellate(makePath().get(), 2, 1, never, nullptr, nullptr), "BUG");
}

} // namespace
