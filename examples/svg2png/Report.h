// Report.h: tells on the terminal what of a document the picture lacks.
#pragma once

#include <set>
#include <string>
#include <string_view>

namespace svg {

// Writes "svg2png: FILE: cannot draw KIND yet" to stderr, once for each kind.
class Report {
public:
    explicit Report(std::string fileName) : fileName_(std::move(fileName)) {}

    // `instead` says what was drawn in its place, if anything.
    void cannotDraw(std::string_view kind, std::string_view instead = {});
    // Any other complaint that does not keep the rest from being drawn.
    void warn(std::string_view message);

private:
    std::string fileName_;
    std::set<std::string, std::less<>> said_;
};

} // namespace svg
