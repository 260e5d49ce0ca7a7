#pragma once

#include <functional>
#include <string>
#include <vector>

namespace chalkpane::peers {

// One piece of work that another library does, too.
struct PeerWork {
    std::string name;
    std::string peer;
    std::string unit;  // what a time is divided by: "px", or "dab"
    double units;      // in one call
    std::function<void()> theirs;
    std::function<void()> ours;
    std::function<double()> apart;  // after a call of each: the mean difference of their results, in channel levels
    double mostApart;               // 255: another formula under the same name, whose results say nothing
};

// The works that each library does, where it is part of the build.
std::vector<PeerWork> PixmanWorks();
std::vector<PeerWork> MyPaintWorks();
std::vector<PeerWork> OpenCvWorks();
std::vector<PeerWork> VipsWorks();

}  // namespace chalkpane::peers
