#include "chalkpane/filters/blurs/float_line.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <span>

#include "chalkpane/base/call_widest.h"

namespace chalkpane {

namespace {

// Eight lanes at once; where the machine has only four, the compiler makes two of them.
using Lanes = float __attribute__((vector_size(32)));
constexpr std::size_t parts = FloatLine::lanes / 8;

inline void Load(const float* from, Lanes& lanes) { std::memcpy(&lanes, from, sizeof(lanes)); }
inline void Store(float* to, const Lanes& lanes) { std::memcpy(to, &lanes, sizeof(lanes)); }

// One running box of a line, fed with its positions from left to right.
struct Box {
    std::size_t radius;
    float* history = nullptr;  // a ring of the positions fed, zeros at first
    std::size_t mask = 0;      // of the ring, whose size is a power of two
    std::array<float, FloatLine::lanes> sum{};
};

// A chain of boxes over one line, in place. What comes out of a box lags behind by its radius, and goes into the next
// one at once: each sum waits for its last addition, and meanwhile those of the others go on.
template <std::size_t boxes>
class BoxChain {
public:
    BoxChain(std::span<Box, boxes> chain, float* line, std::size_t count) : chain_(chain), line_(line), count_(count) {
        for (std::size_t i = 0; i < boxes; ++i) lag_[i + 1] = lag_[i] + chain[i].radius;
    }

    void Run() {
        const std::size_t end = count_ + lag_[boxes];
        std::size_t time = 0;
        while (time < std::min(lag_[boxes], end)) StepAtEnd(time++);
        Lanes sums[boxes][parts];
        for (std::size_t i = 0; i < boxes; ++i)
            for (std::size_t part = 0; part < parts; ++part) Load(&chain_[i].sum[8 * part], sums[i][part]);
        for (; time < count_; ++time) StepInside(time, sums);
        for (std::size_t i = 0; i < boxes; ++i)
            for (std::size_t part = 0; part < parts; ++part) Store(&chain_[i].sum[8 * part], sums[i][part]);
        while (time < end) StepAtEnd(time++);
    }

private:
    // KEEP: the sum is one 32-bit float that values enter and leave from left to right; summing afresh at each position
    // would round differently.
    static void Feed(const Box& box, std::size_t position, Lanes (&values)[parts], Lanes (&sums)[parts]) {
        const std::size_t width = 2 * box.radius + 1;  // positions from the one that leaves to the one that enters
        float* const entering = box.history + (position & box.mask) * FloatLine::lanes;
        const float* const leaving = box.history + ((position - width) & box.mask) * FloatLine::lanes;
        for (std::size_t part = 0; part < parts; ++part) {
            Lanes left;
            Load(leaving + 8 * part, left);
            Store(entering + 8 * part, values[part]);
            sums[part] = (sums[part] + values[part]) - left;
            values[part] = sums[part];
        }
    }

    // All boxes are fed, and the last one gives a position.
    void StepInside(std::size_t time, Lanes (&sums)[boxes][parts]) {
        Lanes values[parts];
        for (std::size_t part = 0; part < parts; ++part) Load(line_ + time * FloatLine::lanes + 8 * part, values[part]);
        for (std::size_t i = 0; i < boxes; ++i) Feed(chain_[i], time - lag_[i], values, sums[i]);
        Give(time, values);
    }

    // At the ends of the line, beyond which there are zeros for each box in turn.
    void StepAtEnd(std::size_t time) {
        Lanes values[parts];
        for (std::size_t i = 0; i < boxes && time >= lag_[i]; ++i) {
            const std::size_t position = time - lag_[i];
            Lanes sums[parts];
            for (std::size_t part = 0; part < parts; ++part) {
                if (position >= count_)
                    values[part] = Lanes{};
                else if (i == 0)
                    Load(line_ + time * FloatLine::lanes + 8 * part, values[part]);
                Load(&chain_[i].sum[8 * part], sums[part]);
            }
            if (position >= count_ + chain_[i].radius) continue;
            Feed(chain_[i], position, values, sums);
            for (std::size_t part = 0; part < parts; ++part) Store(&chain_[i].sum[8 * part], sums[part]);
        }
        if (time >= lag_[boxes]) Give(time, values);
    }

    void Give(std::size_t time, const Lanes (&values)[parts]) {
        float* const out = line_ + (time - lag_[boxes]) * FloatLine::lanes;
        for (std::size_t part = 0; part < parts; ++part) Store(out + 8 * part, values[part]);
    }

    std::span<Box, boxes> chain_;
    float* line_;
    std::size_t count_;
    std::array<std::size_t, boxes + 1> lag_{};  // of what each box is fed with; the last one is of the results
};

template <std::size_t boxes>
void RunBoxes(std::span<Box> chain, float* line, std::size_t count) {
    BoxChain<boxes> run(chain.first<boxes>(), line, count);
    CallWidest([&] { run.Run(); });
}

// In place; beyond the line there are zeros.
void RunThreeTaps(double fraction, float* line, std::size_t count) {
    std::array<float, FloatLine::lanes> before{};
    for (std::size_t position = 0; position < count; ++position, line += FloatLine::lanes) {
        for (std::size_t i = 0; i < FloatLine::lanes; ++i) {
            const float behind = position + 1 < count ? line[FloatLine::lanes + i] : 0.0F;
            const float here = line[i];
            const double sides = before[i] + behind;
            line[i] = static_cast<float>(sides * fraction + static_cast<double>(here));
            before[i] = here;
        }
    }
}

// Gives the boxes their rings, in the memory of `scratch`.
void MakeRings(std::span<Box> boxes, FloatLine& scratch) {
    std::size_t positions = 0;
    for (Box& box : boxes) {
        box.mask = std::bit_ceil(2 * box.radius + 2) - 1;
        positions += box.mask + 1;
    }
    scratch.Reset(0, static_cast<std::int32_t>(positions) - 1);
    positions = 0;
    for (Box& box : boxes) {
        box.history = scratch.At(static_cast<std::int32_t>(positions));
        positions += box.mask + 1;
    }
}

// What is left of the softness after the point, where a pass is made for it; otherwise 0.
double SoftnessFraction(double softness, std::int32_t passes) {
    const double fraction = softness - std::floor(softness);
    return passes < 3 || fraction < 0.01 ? 0.0 : fraction;
}

}  // namespace

void FloatLine::Reset(std::int32_t left, std::int32_t right) {
    m_left = left;
    m_right = right;
    m_buffer.assign(static_cast<std::size_t>(right - left + 1) * lanes, 0.0F);
    gain = 1.0F;
}

std::int32_t BoxRadius(double softness, std::int32_t passes, std::int32_t pass) {
    return static_cast<std::int32_t>((pass + softness) / passes);
}

std::int32_t SoftenSupportRadius(double softness, std::int32_t passes) {
    std::int32_t radius = SoftnessFraction(softness, passes) > 0.0 ? 1 : 0;
    for (std::int32_t pass = 0; pass < passes; ++pass) radius += BoxRadius(softness, passes, pass);
    return radius;
}

void SoftenLine(FloatLine& line, FloatLine& spare, double softness, std::int32_t passes) {
    std::vector<Box> boxes;
    for (std::int32_t pass = 0; pass < passes; ++pass) {
        const std::int32_t radius = BoxRadius(softness, passes, pass);
        if (radius == 0) continue;
        boxes.push_back({static_cast<std::size_t>(radius)});
        line.gain *= static_cast<float>(2 * radius + 1);
    }
    MakeRings(boxes, spare);
    float* const first = line.At(line.Left());
    const auto count = static_cast<std::size_t>(line.Right() - line.Left()) + 1;
    constexpr std::array runs{&RunBoxes<1>, &RunBoxes<2>, &RunBoxes<3>, &RunBoxes<4>};
    for (std::span<Box> left = boxes; !left.empty(); left = left.subspan(std::min(left.size(), runs.size())))
        runs[std::min(left.size(), runs.size()) - 1](left, first, count);
    if (const double fraction = SoftnessFraction(softness, passes); fraction > 0.0) {
        line.gain = static_cast<float>(static_cast<double>(line.gain) * (2.0 * fraction + 1.0));
        RunThreeTaps(fraction, first, count);
    }
}

}  // namespace chalkpane
