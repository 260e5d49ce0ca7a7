#include "chalkpane/filters/effects/add_noise_effect.h"

#include <atomic>
#include <limits>
#include <thread>

#include "chalkpane/base/multi_processor.h"
#include "tests/chalkpane/filters/reference_comparison.h"
#include "tests/chalkpane/scoped_cpu_features.h"
#include "tests/reference/effects.h"

using namespace chalkpane;
using namespace chalkpane::test;

TEST_CASE("Noise is its plain reference, in every distribution and on both sets of channels") {
    for (const int uniform : {0, 1}) {
        for (const int rgb : {0, 1}) {
            for (const int density : {1, 37, 100}) {
                CAPTURE(uniform);
                CAPTURE(rgb);
                CAPTURE(density);
                AddNoiseEffect filter;
                SetNumber(filter, "Level", 0.2);
                SetNumber(filter, "Distribution", uniform);
                SetNumber(filter, "Channels", rgb);
                SetNumber(filter, "Density %", density);
                CompareWithReference(filter, [&](const Image& source, const Rect* region, bool /*expand*/) {
                    return reference::AddNoise(source, 0.2F, uniform != 0, rgb != 0, density, region);
                });
            }
        }
    }
}

TEST_CASE("Noise is its plain reference in rows of any length, drawn by one generator or by many") {
    for (const int width : {63, 64, 65, 127, 128, 129, 1000, 2048, 2049, 4100}) {
        for (const Depth depth : {Depth::Eight, Depth::Fourteen}) {
            const Image source = NoisePicture({-7, 5, width - 8, 11}, PixelType::Colour, depth, AlphaForm::Straight, 3);
            for (const int choice : {0, 1, 2, 3}) {
                CAPTURE(width);
                CAPTURE(depth);
                CAPTURE(choice);
                AddNoiseEffect filter;
                SetNumber(filter, "Level", 0.7);
                const int distribution = choice % 2;
                const int channels = choice / 2;
                SetNumber(filter, "Distribution", distribution);
                SetNumber(filter, "Channels", channels);
                const Image wanted = reference::AddNoise(source, 0.7F, distribution != 0, channels != 0, 100, nullptr);
                CHECK(SamePixels(*Applied(filter, source), wanted));
                const ScopedCpuFeatures plain(CpuFeatures::Plain);
                CHECK(SamePixels(*Applied(filter, source), wanted));
            }
        }
    }
}

TEST_CASE("Rows of noise run in parallel where every pixel passes, and in order where their starts are not found") {
    AddNoiseEffect filter;
    CHECK(filter.CanRunInParallel());
    SetNumber(filter, "Density %", 99);
    CHECK(filter.CanRunInParallel());
    SetNumber(filter, "Density %", 98);
    CHECK_FALSE(filter.CanRunInParallel());
}

namespace {

// Which threads ran the rows of a run, as the runner's listener sees them.
class RowThreads final : public RunListener {
public:
    RowThreads() { MultiProcessor::SetListener(this); }
    ~RowThreads() override { MultiProcessor::SetListener(nullptr); }
    RowThreads(const RowThreads&) = delete;
    RowThreads& operator=(const RowThreads&) = delete;
    RowThreads(RowThreads&&) = delete;
    RowThreads& operator=(RowThreads&&) = delete;

    void BeginLoop(std::int64_t /*rows*/) override {}
    void RowDone() override {
        if (std::this_thread::get_id() == m_caller) m_byCaller = true;
    }
    [[nodiscard]] bool ByCaller() const { return m_byCaller; }

private:
    std::thread::id m_caller = std::this_thread::get_id();
    std::atomic<bool> m_byCaller{false};
};

// 200,000 pixels are 13 bands, which two to five workers share.
Image PictureForWorkers(Depth depth, AlphaForm form) {
    return NoisePicture({-11, 3, 488, 402}, PixelType::Colour, depth, form, 3);
}

}  // namespace

TEST_CASE("Sparse noise is its plain reference whichever workers paint it") {
    const Rect part(-4, 9, 470, 399);
    for (const int choice : {0, 1, 2, 3}) {
        for (const int density : {-3, 6, 25, 50, 98}) {
            const Depth depth = density % 2 == 0 ? Depth::Eight : Depth::Fourteen;
            // The reference leaves colours under alpha 0 as they are, which 14-bit rows do not.
            const bool premultiplied = choice == 1 && depth == Depth::Eight;
            const Image source =
                PictureForWorkers(depth, premultiplied ? AlphaForm::Premultiplied : AlphaForm::Straight);
            const int distribution = choice % 2;
            const int channels = choice / 2;
            AddNoiseEffect filter;
            SetNumber(filter, "Level", 0.7);
            SetNumber(filter, "Distribution", distribution);
            SetNumber(filter, "Channels", channels);
            SetNumber(filter, "Density %", density);
            const Rect* const region = density == 50 ? &part : nullptr;
            const Image wanted = reference::AddNoise(source, 0.7F, distribution != 0, channels != 0, density, region);
            for (const int workers : {2, 5}) {
                CAPTURE(choice);
                CAPTURE(density);
                CAPTURE(workers);
                MultiProcessor::Restart(workers);
                CHECK(SamePixels(*Applied(filter, source, region), wanted));
            }
        }
    }
    MultiProcessor::Restart(0);
}

TEST_CASE("The caller paints no row of sparse noise where workers can") {
    if (!HasAvx2()) return;
    const Image source = PictureForWorkers(Depth::Eight, AlphaForm::Straight);
    AddNoiseEffect filter;
    SetNumber(filter, "Level", 0.7);
    SetNumber(filter, "Density %", 50);
    for (const int workers : {1, 2}) {
        CAPTURE(workers);
        MultiProcessor::Restart(workers);
        const RowThreads threads;
        CHECK(Applied(filter, source));
        CHECK_EQ(threads.ByCaller(), workers == 1);
    }
    MultiProcessor::Restart(0);
    CHECK_FALSE(filter.CanRunInParallel());  // the starts are those of one run
}

TEST_CASE("Two runs of noise on one picture are equal") {
    const Image source = NoisePicture({0, 0, 30, 30}, PixelType::Colour, Depth::Eight, AlphaForm::Straight, 3);
    AddNoiseEffect filter;
    SetNumber(filter, "Level", 0.5);
    const auto first = Applied(filter, source);
    CHECK(SamePixels(*first, *Applied(filter, source)));
    CHECK_FALSE(SamePixels(*first, source));
}

// Seed 0: a = 3, b = 1, c = 1. First result: t = 3 * 1 = 3, c = 0 + 1 * 30903, 30906 % 100 = 6 passes. Second: a = 1,
// b = 3, t = 3, c = 30903 * 30903 = 954995409, sum 954995412. Its low 15 bits: 954995412 - 29144 * 32768 = 4820. Noise:
// 4820 / 32767 - 0.5 = -0.352901.
// 8 bits at level 1: 200 - 0.352901 * 255 = 110.01 -> 110. 14 bits: 12000 - 0.352901 * 32766 = 436.8 -> 436.
TEST_CASE("Noise at 16 bits is twice as strong, measured against full scale") {
    for (const Depth depth : {Depth::Eight, Depth::Fourteen}) {
        Image source = Image::Colour(1, 1, depth, AlphaForm::Straight);
        for (int c = 0; c < 4; ++c) reference::Put(source, 0, 0, c, depth == Depth::Eight ? 200 : 12000);
        AddNoiseEffect filter;
        SetNumber(filter, "Level", 1);
        SetNumber(filter, "Distribution", 1);
        const auto result = Applied(filter, source);
        for (int c = 0; c < 3; ++c) CHECK_EQ(reference::Get(*result, 0, 0, c), depth == Depth::Eight ? 110 : 436);
        CHECK_EQ(reference::Get(*result, 0, 0, 3), depth == Depth::Eight ? 200 : 12000);
    }
}

// The first draw of seed 0 leaves 6, which is at most 6 and above 5.
TEST_CASE("A pixel passes the density test when its draw is at most the density") {
    Image source = Image::Colour(1, 1, Depth::Eight, AlphaForm::Straight);
    reference::Put(source, 0, 0, 1, 128);
    AddNoiseEffect filter;
    SetNumber(filter, "Level", 1);
    SetNumber(filter, "Distribution", 1);
    SetNumber(filter, "Density %", 5);
    CHECK_EQ(reference::Get(*Applied(filter, source), 0, 0, 1), 128);
    SetNumber(filter, "Density %", 6);
    CHECK_EQ(reference::Get(*Applied(filter, source), 0, 0, 1), 38);  // 128 - 0.352901 * 255 = 38.01
}

TEST_CASE("No level, or no density, is a plain copy, whatever the region") {
    const Image source = NoisePicture({0, 0, 8, 8}, PixelType::Colour, Depth::Fourteen, AlphaForm::Premultiplied, 3);
    const Rect region(2, 2, 4, 4);
    AddNoiseEffect filter;
    CHECK(SamePixels(*Applied(filter, source, &region), source));
    SetNumber(filter, "Level", 1);
    CHECK(Applied(filter, source, &region)->Bounds() == region);
    SetNumber(filter, "Density %", 0);
    CHECK(SamePixels(*Applied(filter, source, &region), source));
}

TEST_CASE("Noise takes any setting") {
    const double infinity = std::numeric_limits<double>::infinity();
    for (const Depth depth : {Depth::Eight, Depth::Fourteen}) {
        const Image source = NoisePicture({0, 0, 8, 8}, PixelType::Colour, depth, AlphaForm::Premultiplied, 3);
        for (const double level : {-1e30, -1.0, 1e30, infinity, -infinity, std::nan("")}) {
            AddNoiseEffect filter;
            SetNumber(filter, "Level", level);
            SetNumber(filter, "Density %", -3);
            CHECK(Applied(filter, source));
            SetNumber(filter, "Density %", 2147483647);
            CHECK(Applied(filter, source));
        }
    }
}
