// TriangleList.h: the triangles of a tessellation on their way to the caller.
#pragma once

#include "XGPath.h"

#include <algorithm>
#include <cfloat>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace cg {

// Corners are numbered as they come; three numbers make a triangle. Nothing reaches the caller
// before all is known to be there.
class TriangleList {
public:
    // Room for a polygon of so many corners.
    void reserve(std::size_t corners) {
        corners_.reserve(corners);
        indices_.reserve(3 * corners);
    }
    std::uint32_t addCorner(CGPoint point) {
        corners_.push_back({.point = point});
        return static_cast<std::uint32_t>(corners_.size() - 1);
    }
    void useCorner(std::uint32_t corner) { indices_.push_back(corner); }

    // A corner that several triangles of a batch share is handed over once with it.
    void handOver(XGPathTessellateFunction function, void* info) {
        constexpr std::size_t trianglesInBatch = 1024;
        std::vector<CGPoint> vertices;
        vertices.reserve(std::min(corners_.size(), 3 * trianglesInBatch));
        std::uint32_t batch = 0;
        for (std::size_t start = 0; start < indices_.size(); start += 3 * trianglesInBatch) {
            const std::size_t count = std::min(3 * trianglesInBatch, indices_.size() - start);
            vertices.clear();
            ++batch;
            for (std::size_t i = start; i < start + count; ++i) {
                Corner& corner = corners_[indices_[i]];
                if (corner.batch != batch) {
                    corner.batch = batch;
                    corner.index = static_cast<std::uint32_t>(vertices.size());
                    vertices.push_back(corner.point);
                }
                indices_[i] = corner.index;
            }
            function(info, vertices.data(), vertices.size(), &indices_[start], count);
        }
    }

    // Around the corners that triangles use; before these are handed over.
    CGRect bounds() const {
        CGFloat left = FLT_MAX, bottom = FLT_MAX, right = -FLT_MAX, top = -FLT_MAX;
        for (const std::uint32_t index : indices_) {
            const CGPoint point = corners_[index].point;
            left = std::min(left, point.x);
            right = std::max(right, point.x);
            bottom = std::min(bottom, point.y);
            top = std::max(top, point.y);
        }
        return left > right ? CGRectNull : CGRect{{left, bottom}, {right - left, top - bottom}};
    }

private:
    struct Corner {
        CGPoint point = {0, 0};
        std::uint32_t batch = 0; // The last one that it was handed over with, and its place there.
        std::uint32_t index = 0;
    };

    std::vector<Corner> corners_;
    std::vector<std::uint32_t> indices_;
};

} // namespace cg
