// Report.cpp: tells on the terminal what of a document the picture lacks.

#include "Report.h"

#include <cstdio>

namespace svg {

void Report::cannotDraw(std::string_view kind, std::string_view instead) {
    std::string message = "cannot draw " + std::string(kind) + " yet";
    if (!instead.empty())
        message += ": " + std::string(instead);
    warn(message);
}

void Report::warn(std::string_view message) {
    if (said_.emplace(message).second)
        std::fprintf(stderr, "svg2png: %s: %.*s\n", fileName_.c_str(), int(message.size()),
                     message.data());
}

} // namespace svg
