#include <magick/MagickCore.h>

#include <cmath>
#include <memory>
#include <stdexcept>
#include <vector>

#include "bench/peers/filter_work.h"

namespace chalkpane::peers {
namespace {

struct Destroy {
    void operator()(::Image* image) const { DestroyImage(image); }
    void operator()(ExceptionInfo* exception) const { DestroyExceptionInfo(exception); }
};
using MagickPicture = std::unique_ptr<::Image, Destroy>;

struct Pair {
    OurFilter ours;
    std::unique_ptr<ExceptionInfo, Destroy> exception{AcquireExceptionInfo()};
    MagickPicture source;
    MagickPicture made;

    explicit Pair(const OurFilter::Settings& settings)
        : ours("Add Noise", settings, NoisePicture(Depth::Eight)),
          source(
              ConstituteImage(pictureSize, pictureSize, "BGRA", CharPixel, FirstByte(ours.picture), exception.get())) {
        if (!source) throw std::runtime_error("peers: MagickCore takes no picture");
    }

    void AddNoise(NoiseType kind) {
        made.reset();
        made.reset(AddNoiseImageChannel(source.get(), static_cast<ChannelType>(RedChannel | GreenChannel | BlueChannel),
                                        kind, exception.get()));
    }

    // How much more the one changes the picture than the other, which is all that two kinds of noise have in common.
    [[nodiscard]] double Apart() const {
        std::vector<std::uint8_t> theirs(std::size_t{4} * pictureSize * pictureSize);
        ExportImagePixels(made.get(), 0, 0, pictureSize, pictureSize, "BGRA", CharPixel, theirs.data(),
                          exception.get());
        const auto bytesOf = [](const Image& image) { return reinterpret_cast<const std::uint8_t*>(FirstByte(image)); };
        const std::uint8_t* const before = bytesOf(ours.picture);
        return std::abs(ColourDifference<PixelFormat8>(theirs.data(), before) -
                        ColourDifference<PixelFormat8>(bytesOf(*ours.result), before));
    }
};

PeerWork NoiseWork(const char* name, double distribution, NoiseType kind, const char* strength) {
    const auto pair =
        std::make_shared<Pair>(OurFilter::Settings{{"Level", 0.25}, {"Channels", 1}, {"Distribution", distribution}});
    SetImageArtifact(pair->source.get(), "attenuate", strength);
    PeerWork work;
    work.name = name;
    work.peer = "Magick";
    work.unit = "px";
    work.units = double{pictureSize} * pictureSize;
    work.theirs = [pair, kind] { pair->AddNoise(kind); };
    work.ours = [pair] { pair->ours.Apply(); };
    work.apart = [pair] { return pair->Apart(); };
    work.mostApart = 4.0;
    return work;
}

}  // namespace

std::vector<PeerWork> MagickWorks() {
    MagickCoreGenesis("peers", MagickFalse);
    SetMagickResourceLimit(ThreadResource, 1);
    std::vector<PeerWork> works;
    works.push_back(NoiseWork("bell noise, RGB", 0, GaussianNoise, "1"));
    works.push_back(NoiseWork("even noise, RGB", 1, UniformNoise, "16"));
    return works;
}

}  // namespace chalkpane::peers
