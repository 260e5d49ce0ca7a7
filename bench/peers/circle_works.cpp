#include <algorithm>
#include <cmath>
#include <memory>
#include <numbers>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#include <random>
#include <string>
#include <vector>

#include "bench/peers/peer_work.h"
#include "telestrator/recognition/circle_search.h"
#include "telestrator/recognition/shape_recognition.h"

namespace chalkpane::peers {
namespace {

constexpr int canvasSize = 1024;

using Points = std::vector<Vector3>;

// Drawn by a hand that trembles by a pixel.
Points Circle(int count, double x, double y, double radius) {
    std::mt19937 random(1);
    std::uniform_real_distribution<double> tremble(-1, 1);
    Points points;
    for (int i = 0; i < count; ++i) {
        const double angle = 2 * std::numbers::pi * i / count;
        const double distance = radius + tremble(random);
        points.emplace_back(x + distance * std::cos(angle), y + distance * std::sin(angle), 0.0);
    }
    return points;
}

Points Scattered(int count) {
    std::mt19937 random(1);
    std::uniform_real_distribution<double> place(0, canvasSize);
    Points points;
    for (int i = 0; i < count; ++i) {
        const double x = place(random);
        points.emplace_back(x, place(random), 0.0);
    }
    return points;
}

// The points for us, and what a pen of 5 pixels makes of them for the peer, which looks at pictures.
struct Search {
    Points points;
    std::vector<std::uint32_t> counters = std::vector<std::uint32_t>(houghCounters);
    CircleVote ours{};
    cv::Mat picture = cv::Mat::zeros(canvasSize, canvasSize, CV_8U);
    std::vector<cv::Vec3f> theirs{};

    explicit Search(Points from) : points(std::move(from)) {
        constexpr int penRadius = 2;
        for (const Vector3& point : points)
            cv::circle(picture, {cvRound(point.x), cvRound(point.y)}, penRadius, cv::Scalar::all(255), cv::FILLED);
    }

    // Centres as far apart as ours are, and the same radii.
    void RunTheirs() {
        constexpr double cell = 4;
        constexpr double steepEdge = 100;
        constexpr double fewestVotes = 30;
        cv::HoughCircles(picture, theirs, cv::HOUGH_GRADIENT, cell, canvasSize, steepEdge, fewestVotes, 4,
                         canvasSize / 4);
    }
    void RunOurs() { ours = SearchCircle(points, counters); }

    // The greatest difference of centre and radius, in canvas pixels.
    [[nodiscard]] double Apart() const {
        if (theirs.empty()) return canvasSize;
        const Vector3 centre = ours.Centre();
        return std::max<double>({std::abs(centre.x - theirs[0][0]), std::abs(centre.y - theirs[0][1]),
                                 std::abs(ours.radius - theirs[0][2])});
    }
};

PeerWork SearchWork(std::string name, Points points, double mostApart) {
    const auto search = std::make_shared<Search>(std::move(points));
    PeerWork work;
    work.name = std::move(name);
    work.peer = "OpenCV";
    work.unit = "point";
    work.units = static_cast<double>(search->points.size());
    work.theirs = [search] { search->RunTheirs(); };
    work.ours = [search] { search->RunOurs(); };
    work.apart = [search] { return search->Apart(); };
    work.mostApart = mostApart;
    return work;
}

}  // namespace

std::vector<PeerWork> CircleWorks() {
    constexpr double withinTwoCells = 8;
    constexpr double anyCircle = canvasSize;  // there is none, and each finds another best one
    std::vector<PeerWork> works;
    works.push_back(SearchWork("circle of 300 points", Circle(300, 511, 490, 240), withinTwoCells));
    works.push_back(SearchWork("circle of 1000 points", Circle(1000, 511, 490, 240), withinTwoCells));
    works.push_back(SearchWork("no circle, 300 points", Scattered(300), anyCircle));
    return works;
}

}  // namespace chalkpane::peers
