#include <memory>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#include <string>

#include "bench/peers/filter_work.h"
#include "chalkpane/transform/transformer.h"

namespace chalkpane::peers {
namespace {

cv::Mat MatOn(const Image& image) {
    const int type = image.GetDepth() == Depth::Eight ? CV_8UC4 : CV_16UC4;
    return {image.Height(), image.Width(), type, FirstByte(image), static_cast<std::size_t>(image.rowBytes)};
}

// Both sides of a filter: ours makes a new picture each time, theirs writes over the last one.
struct Pair {
    OurFilter ours;
    cv::Mat source;
    cv::Mat made;

    Pair(std::string_view label, const OurFilter::Settings& settings, const Image& picture)
        : ours(label, settings, picture), source(MatOn(ours.picture)) {}

    [[nodiscard]] double Apart() const {
        return WithFormatOf(ours.picture, [&](auto format) {
            using F = decltype(format);
            using Channel = const typename F::Channel*;
            return ColourDifference<F>(reinterpret_cast<Channel>(made.data),
                                       reinterpret_cast<Channel>(FirstByte(*ours.result)));
        });
    }
};

constexpr double otherFormula = 255.0;

PeerWork PictureWork(std::string name, double mostApart) {
    PeerWork work;
    work.name = std::move(name);
    work.peer = "OpenCV";
    work.unit = "px";
    work.units = double{pictureSize} * pictureSize;
    work.mostApart = mostApart;
    return work;
}

// `theirs` makes pair.made of pair.source.
template <typename Theirs>
PeerWork FilterWork(std::string name, std::string_view label, const OurFilter::Settings& settings, const Image& picture,
                    double mostApart, Theirs theirs) {
    const auto pair = std::make_shared<Pair>(label, settings, picture);
    PeerWork work = PictureWork(std::move(name), mostApart);
    work.theirs = [pair, theirs] { theirs(pair->source, pair->made); };
    work.ours = [pair] { pair->ours.Apply(); };
    work.apart = [pair] { return pair->Apart(); };
    return work;
}

PeerWork BlurWork(Depth depth) {
    const char* const name = depth == Depth::Eight ? "Gaussian r 10, 8 bits" : "Gaussian r 10, 14 bits";
    constexpr int width = 21;
    return FilterWork(name, "Blur", {{"Softness", 10}}, NoisePicture(depth), 4.0,
                      [](const cv::Mat& source, cv::Mat& made) {
                          cv::GaussianBlur(source, made, {width, width}, 0.0, 0.0, cv::BORDER_REPLICATE);
                      });
}

// Radii of 7, 7, 8 and 8, in floats from the picture and back to it.
PeerWork FourBoxesWork(Depth depth) {
    const auto floats = std::make_shared<cv::Mat>();
    const int type = depth == Depth::Eight ? CV_8U : CV_16U;
    return FilterWork(depth == Depth::Eight ? "four boxes, 8 bits" : "four boxes, 14 bits", "Super Soften",
                      {{"Softness", 30}, {"Quality", 3}}, NoisePicture(depth), 4.0,
                      [floats, type](const cv::Mat& source, cv::Mat& made) {
                          source.convertTo(*floats, CV_32F);
                          for (const int width : {15, 15, 17, 17})
                              cv::boxFilter(*floats, *floats, -1, {width, width}, {-1, -1}, true, cv::BORDER_CONSTANT);
                          floats->convertTo(made, type);
                      });
}

PeerWork MedianWork(int radius) {
    // Ours answers in bins of 16 first, which moves some medians of noise by many levels in windows as small as 3 x 3.
    const double mostApart = radius == 1 ? 30.0 : 8.0;
    return FilterWork("median r " + std::to_string(radius), "Median", {{"Radius", radius}}, NoisePicture(Depth::Eight),
                      mostApart,
                      [radius](const cv::Mat& source, cv::Mat& made) { cv::medianBlur(source, made, 2 * radius + 1); });
}

// A rise to the right is no edge, which a negative scale and the limits of bytes say by the way.
PeerWork EdgesWork() {
    const auto slope = std::make_shared<cv::Mat>();
    const auto steep = std::make_shared<cv::Mat>();
    return FilterWork("edges", "Edge Detect", {{"Brightness", 5}}, NoisePicture(Depth::Eight), 2.0,
                      [slope, steep](const cv::Mat& source, cv::Mat& made) {
                          cv::Sobel(source, made, CV_8U, 1, 0, 3, -0.5);
                          cv::Sobel(source, *slope, CV_16S, 0, 1);
                          cv::convertScaleAbs(*slope, *steep, 0.5);
                          cv::max(made, *steep, made);
                      });
}

PeerWork NoiseWork(std::string name, const OurFilter::Settings& settings, bool uniform) {
    const auto numbers = std::make_shared<cv::Mat>(pictureSize, pictureSize, CV_16SC4);
    return FilterWork(std::move(name), "Add Noise", settings, NoisePicture(Depth::Eight), otherFormula,
                      [numbers, uniform](const cv::Mat& source, cv::Mat& made) {
                          if (uniform)
                              cv::randu(*numbers, cv::Scalar::all(-32), cv::Scalar::all(32));
                          else
                              cv::randn(*numbers, cv::Scalar::all(0), cv::Scalar::all(32));
                          cv::add(source, *numbers, made, cv::noArray(), CV_8U);
                      });
}

// Their table is what ours makes of each level.
PeerWork TableWork() {
    const OurFilter::Settings settings{{"Brightness", 0.2}, {"Contrast", 0.3}, {"Saturation", 0}};
    Image ramp = Image::Colour(256, 1, Depth::Eight, AlphaForm::Straight);
    for (std::size_t i = 0; i < 1024; ++i) ramp.Row8(0)[i] = static_cast<std::uint8_t>(i / 4);
    OurFilter ours("Brightness/Contrast", settings, ramp);
    ours.Apply();
    cv::Mat table(1, 256, CV_8UC4);
    std::copy_n(ours.result->Row8(0).begin(), 1024, table.data);
    return FilterWork("tables", "Brightness/Contrast", settings, NoisePicture(Depth::Eight), 0.01,
                      [table](const cv::Mat& source, cv::Mat& made) { cv::LUT(source, table, made); });
}

// There and back, without a change of the hue between, and for 8-bit hues.
PeerWork HueWork() {
    const auto words = std::make_shared<cv::Mat>();
    const auto colours = std::make_shared<cv::Mat>();
    return FilterWork("hue", "Hue Rotate", {{"Hue Rotation", 0.001}}, NoisePicture(Depth::Eight), otherFormula,
                      [words, colours](const cv::Mat& source, cv::Mat& made) {
                          cv::cvtColor(source, *words, cv::COLOR_BGR2HSV_FULL);
                          cv::cvtColor(*words, made, cv::COLOR_HSV2BGR_FULL, 4);
                      });
}

PeerWork PixellateWork() {
    const auto small = std::make_shared<cv::Mat>();
    return FilterWork("pixellate 16", "Pixellate", {{"Size", 16}}, NoisePicture(Depth::Eight), 1.0,
                      [small](const cv::Mat& source, cv::Mat& made) {
                          cv::resize(source, *small, {}, 1.0 / 16, 1.0 / 16, cv::INTER_AREA);
                          cv::resize(*small, made, {}, 16, 16, cv::INTER_NEAREST);
                      });
}

// About the middle, into a picture of the same size, with nothing beyond the edge.
PeerWork RotationWork(Depth depth) {
    struct Job {
        Image source;
        Image target;
        cv::Mat from = MatOn(source);
        cv::Mat made{};
        Transformer transformer{};
    };
    constexpr double degrees = 30.0;
    constexpr double middle = (pictureSize - 1) / 2.0;
    const auto job =
        std::make_shared<Job>(Job{WavePicture(depth), Image::Colour(pictureArea, depth, AlphaForm::Straight)});
    job->transformer.SetTransform(middle + 0.5, middle + 0.5, middle + 0.5, middle + 0.5, 1.0, 1.0, degrees);
    const cv::Mat turn = cv::getRotationMatrix2D({static_cast<float>(middle), static_cast<float>(middle)}, -degrees, 1);
    PeerWork work = PictureWork(depth == Depth::Eight ? "bilinear turn, 8 bits" : "bilinear turn, 14 bits", 1.0);
    work.theirs = [job, turn] { cv::warpAffine(job->from, job->made, turn, job->from.size(), cv::INTER_LINEAR); };
    work.ours = [job] { job->transformer.ApplyInto(job->source, job->target, pictureArea); };
    work.apart = [job] {
        return WithFormatOf(job->source, [&](auto format) {
            using F = decltype(format);
            using Channel = const typename F::Channel*;
            return ColourDifference<F>(reinterpret_cast<Channel>(job->made.data),
                                       reinterpret_cast<Channel>(FirstByte(job->target)));
        });
    };
    return work;
}

}  // namespace

std::vector<PeerWork> OpenCvWorks() {
    cv::setNumThreads(1);
    std::vector<PeerWork> works;
    works.push_back(TableWork());
    works.push_back(HueWork());
    works.push_back(EdgesWork());
    works.push_back(PixellateWork());
    for (const Depth depth : {Depth::Eight, Depth::Fourteen}) works.push_back(BlurWork(depth));
    for (const Depth depth : {Depth::Eight, Depth::Fourteen}) works.push_back(FourBoxesWork(depth));
    for (const int radius : {1, 2, 3, 5, 20}) works.push_back(MedianWork(radius));
    works.push_back(NoiseWork("bell noise, one a pixel", {{"Level", 0.25}}, false));
    works.push_back(NoiseWork("bell noise, RGB", {{"Level", 0.25}, {"Channels", 1}}, false));
    works.push_back(NoiseWork("even noise, RGB", {{"Level", 0.25}, {"Channels", 1}, {"Distribution", 1}}, true));
    for (const Depth depth : {Depth::Eight, Depth::Fourteen}) works.push_back(RotationWork(depth));
    return works;
}

}  // namespace chalkpane::peers
