// PathPolygons.h: contours flattened to corners, all of them in one array.
#pragma once

#include <include/core/SkPoint.h>
#include <include/core/SkRect.h>

#include <cstddef>
#include <span>
#include <vector>

namespace cg {

// Polygons that close by themselves; they may cross themselves and each other. Those of fewer than
// three corners enclose nothing and are dropped.
class PathPolygons {
public:
    void reserve(std::size_t corners) { points_.reserve(corners); }
    void beginContour() {
        if (points_.size() - lastEnd() < 3)
            points_.resize(lastEnd());
        else
            ends_.push_back(points_.size());
    }
    void add(SkPoint point) { points_.push_back(point); }
    void finish() { beginContour(); }

    std::size_t contourCount() const { return ends_.size(); }
    std::span<const SkPoint> contour(std::size_t index) const {
        const std::size_t first = index > 0 ? ends_[index - 1] : 0;
        return {&points_[first], ends_[index] - first};
    }
    std::span<const SkPoint> points() const { return points_; }

private:
    std::size_t lastEnd() const { return ends_.empty() ? 0 : ends_.back(); }

    std::vector<SkPoint> points_;
    std::vector<std::size_t> ends_;
};

} // namespace cg
