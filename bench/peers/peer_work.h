#pragma once

#include <functional>
#include <string>
#include <vector>

namespace chalkpane::peers {

// One piece of work that another library does, too.
struct PeerWork {
    std::string name;
    std::string peer;
    std::string unit;  // what a time is divided by: "px", "dab" or "point"
    double units;      // in one call
    std::function<void()> theirs;
    std::function<void()> ours;
    // After a call of each: how far their results are apart, which for pictures is the mean difference in levels.
    std::function<double()> apart;
    double mostApart;  // 255: another formula under the same name, whose results say nothing
};

// The works that each library does, where it is part of the build.
std::vector<PeerWork> PixmanWorks();
std::vector<PeerWork> MyPaintWorks();
std::vector<PeerWork> OpenCvWorks();
std::vector<PeerWork> CircleWorks();  // of OpenCV as well
std::vector<PeerWork> VipsWorks();
std::vector<PeerWork> MagickWorks();
std::vector<PeerWork> GeglWorks();

}  // namespace chalkpane::peers
