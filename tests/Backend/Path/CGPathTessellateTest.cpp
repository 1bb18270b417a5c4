// CGPathTessellateTest.cpp: triangles held against areas in closed form and against the points that
// Skia finds inside a path.

#include "Paths.h"
#include "Support/FailingAllocator.h"

#include <sys/wait.h>
#include <unistd.h>

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

MutablePath rects(CGRect a, CGRect b) {
    MutablePath path = makeRect(a);
    CGPathAddRect(path.get(), nullptr, b);
    return path;
}

MutablePath ellipse(float radius) {
    MutablePath path = makePath();
    CGPathAddEllipseInRect(path.get(), nullptr, {{-radius, -radius}, {2 * radius, 2 * radius}});
    return path;
}

TEST(CGPathTessellate, CoversTheAreaOfTheFill) {
    // A regular pentagram of circumradius R: its ten outer sides enclose, and its inner pentagon
    // is left out by the even-odd rule.
    const double fifth = std::numbers::pi / 5;
    const double inner = 10 * std::cos(2 * fifth) / std::cos(fifth);
    const double outline = 5 * 10 * inner * std::sin(fifth);
    const double pentagon = 2.5 * inner * inner * std::sin(2 * fifth);
    struct Case {
        const char* what;
        MutablePath path;
        double winding, evenOdd;
    };
    Case cases[] = {
        {"rectangle", makeRect({{1, 2}, {4, 3}}), 12, 12},
        {"open triangle", makeLines({{0, 0}, {4, 0}, {0, 4}}), 8, 8},
        {"pentagram", star(), outline, outline - pentagon},
        {"overlapping rectangles", rects({{0, 0}, {4, 4}}, {{2, 2}, {4, 4}}), 28, 24},
        {"the same rectangle twice", rects({{0, 0}, {4, 4}}, {{0, 0}, {4, 4}}), 16, 0},
        {"bow tie", makeLines({{0, 0}, {4, 4}, {4, 0}, {0, 4}}), 8, 8},
        {"circle", ellipse(10), std::numbers::pi * 100, std::numbers::pi * 100},
        {"line", makeLines({{0, 0}, {4, 4}}), 0, 0},
        {"nothing", makePath(), 0, 0},
    };
    for (const auto& [what, path, winding, evenOdd] : cases) {
        EXPECT_NEAR(tessellate(path, kXGPathFillWinding).area(), winding, winding * 2e-3) << what;
        EXPECT_NEAR(tessellate(path, kXGPathFillEvenOdd).area(), evenOdd, evenOdd * 2e-3) << what;
    }
}

// Random closed curves that cross themselves again and again.
MutablePath scribble(std::mt19937& random) {
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
            CGPathAddArcToPoint(path.get(), nullptr, next(), next(), next(), next(), 9);
        }
        CGPathCloseSubpath(path.get());
    }
    return path;
}

// A point well inside of the fill lies in exactly one triangle, one outside in none. Points next to
// the outline are left out: there the chords differ from the curves.
TEST(CGPathTessellate, HasEachPointOfTheFillOnce) {
    std::mt19937 random(11);
    std::uniform_real_distribution<float> place(-5, 105);
    int tested = 0;
    for (int round = 0; round < 40; ++round) {
        const MutablePath path = scribble(random);
        for (const uint32_t rule : {kXGPathFillWinding, kXGPathFillEvenOdd}) {
            const Mesh mesh = tessellate(path, rule);
            for (int i = 0; i < 200; ++i) {
                const CGPoint point = {place(random), place(random)};
                bool isSure = true;
                const auto inside = [&](float dx, float dy) {
                    return CGPathContainsPoint(path.get(), nullptr, {point.x + dx, point.y + dy},
                                               rule == kXGPathFillEvenOdd);
                };
                for (const auto& [dx, dy] :
                     {std::pair{0.1f, 0.f}, {-0.1f, 0.f}, {0.f, 0.1f}, {0.f, -0.1f}})
                    isSure &= inside(dx, dy) == inside(0, 0);
                if (!isSure)
                    continue;
                ++tested;
                const auto hits = std::ranges::count_if(
                    mesh.triangles, [&](const Triangle& t) { return t.contains(point); });
                EXPECT_EQ(hits, inside(0, 0) ? 1 : 0)
                    << "round " << round << " rule " << rule << " at " << point.x << " " << point.y;
            }
        }
    }
    EXPECT_GT(tested, 10000);
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
    EXPECT_FALSE(_CGPathTessellate(nullptr, kXGPathFillWinding, 1, never, nullptr, nullptr));
    EXPECT_FALSE(_CGPathTessellate(nullptr, 2, 1, never, nullptr, nullptr));
    EXPECT_DEATH(_CGPathTessellate(makePath().get(), 2, 1, never, nullptr, nullptr), "BUG");
}

} // namespace
