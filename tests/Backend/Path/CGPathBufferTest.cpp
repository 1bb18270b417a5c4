// CGPathBufferTest.cpp: paths through flat memory and back. Damaged memory is for the fuzz entry.

#include "Paths.h"
#include "Support/CollectedLog.h"

#include <cstdint>
#include <cstring>
#include <vector>

namespace {

using namespace test;

std::vector<char> bufferOf(CGPathRef path) {
    std::vector<char> buffer(_CGPathWriteToBuffer(path, nullptr));
    EXPECT_EQ(_CGPathWriteToBuffer(path, buffer.data()), buffer.size());
    return buffer;
}

Path fromBuffer(const std::vector<char>& buffer) {
    return cf::adopt<CGPathRef>(_CGPathCreateFromBuffer(buffer.data(), buffer.size()));
}

MutablePath everyKind() {
    MutablePath path = makeLines({{1, 1}, {2, 2}});
    CGPathAddQuadCurveToPoint(path.get(), nullptr, 3, 3, 4, 4);
    CGPathAddCurveToPoint(path.get(), nullptr, 5, 5, 6, 6, 7, 7);
    CGPathAddArcToPoint(path.get(), nullptr, 20, 7, 20, 20, 4);
    CGPathCloseSubpath(path.get());
    _CGPathSetEvenOddFill(path.get(), 1);
    return path;
}

TEST(CGPathBuffer, BringsBackElementsRuleAndMutability) {
    const MutablePath open = everyKind();
    const struct {
        const char* what;
        Path path;
        bool isMutable;
    } cases[] = {
        {"empty", cf::adopt<CGPathRef>(CGPathCreateMutable()), true},
        {"mutable", cf::adopt<CGPathRef>(CGPathCreateMutableCopy(open.get())), true},
        {"immutable", cf::adopt(CGPathCreateCopy(open.get())), false},
        {"ellipse", cf::adopt(CGPathCreateWithEllipseInRect({{0, 0}, {4, 2}}, nullptr)), true},
    };
    for (const auto& [what, path, isMutable] : cases) {
        const Path read = fromBuffer(bufferOf(path.get()));
        ASSERT_TRUE(read) << what;
        EXPECT_TRUE(CGPathEqualToPath(read.get(), path.get())) << what;
        EXPECT_EQ(_CGPathIsEvenOddFill(read.get()), _CGPathIsEvenOddFill(path.get())) << what;
        CGPathAddRect(const_cast<CGMutablePathRef>(read.get()), nullptr, {{0, 0}, {1, 1}});
        EXPECT_EQ(!CGPathEqualToPath(read.get(), path.get()), isMutable) << what;
    }
}

TEST(CGPathBuffer, EndsWithTheFlagWord) {
    std::vector<char> buffer = bufferOf(everyKind().get());
    EXPECT_EQ(buffer.size(), native(everyKind().get()).writeToMemory(nullptr) + 4);
    const uint32_t flags = 0xABCD0001;
    std::memcpy(buffer.data() + buffer.size() - 4, &flags, 4);
    const std::vector<char> again = bufferOf(fromBuffer(buffer).get());
    EXPECT_EQ(again, buffer) << "unknown flags travel along";
}

TEST(CGPathBuffer, ThatIsUnreadableIsAnEmptyPath) {
    const CollectedLog log;
    const std::vector<char> garbage = {9, 9, 9, 9, 9, 9, 9, 9, 1, 0, 0, 0};
    const Path path = fromBuffer(garbage);
    EXPECT_TRUE(path);
    EXPECT_TRUE(CGPathEqualToPath(path.get(), makePath().get()));
    EXPECT_FALSE(fromBuffer({1, 0, 0}));
    EXPECT_FALSE(_CGPathCreateFromBuffer(nullptr, 100));
    EXPECT_EQ(log.lines().size(), 3u);
    EXPECT_EQ(_CGPathWriteToBuffer(nullptr, nullptr), 0u);
    _CGPathDump(nullptr);
}

} // namespace
