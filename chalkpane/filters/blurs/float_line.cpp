#include "chalkpane/filters/blurs/float_line.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <utility>

namespace chalkpane {

namespace {

// Four lanes at once is what every machine has; sixteen in one type would pass through memory.
using Quad = float __attribute__((vector_size(16)));
constexpr std::size_t quads = FloatLine::lanes / 4;

inline Quad Load(const float* from) {
    Quad quad;
    std::memcpy(&quad, from, sizeof(quad));
    return quad;
}
inline void Store(float* to, const Quad& quad) { std::memcpy(to, &quad, sizeof(quad)); }

// One pass over a line, fed with its positions from left to right. What comes out lags behind by `radius`, so that a
// chain of passes runs over short blocks of a line, which stay close to the processor, instead of over the whole of it
// again and again.
struct Pass {
    std::size_t radius;  // positions to either side that go into one
    double fraction;     // 0: a running box; otherwise three taps with that much of both neighbours
    float* history;      // a ring of the positions fed, zeros at first
    std::size_t mask;    // of the ring, whose size is a power of two
    std::size_t fed = 0;
    std::array<float, FloatLine::lanes> sum{};

    // KEEP: the sum is one 32-bit float that values enter and leave from left to right; summing afresh at each position
    // would round differently.
    std::size_t FeedBox(float* block, std::size_t count) {
        const std::size_t width = 2 * radius + 1;  // positions from the one that leaves to the one that enters
        const std::size_t end = fed + count;
        float* out = block;
        Quad running[quads];
        for (std::size_t i = 0; i < quads; ++i) running[i] = Load(&sum[4 * i]);
        for (std::size_t position = fed; position < end; ++position, block += FloatLine::lanes) {
            float* const entering = history + (position & mask) * FloatLine::lanes;
            const float* const leaving = history + ((position - width) & mask) * FloatLine::lanes;
            for (std::size_t i = 0; i < quads; ++i) {
                const Quad value = Load(block + 4 * i);
                Store(entering + 4 * i, value);
                running[i] = (running[i] + value) - Load(leaving + 4 * i);
            }
            if (position < radius) continue;
            for (std::size_t i = 0; i < quads; ++i) Store(out + 4 * i, running[i]);
            out += FloatLine::lanes;
        }
        for (std::size_t i = 0; i < quads; ++i) Store(&sum[4 * i], running[i]);
        fed = end;
        return count - static_cast<std::size_t>(block - out) / FloatLine::lanes;
    }

    std::size_t FeedThreeTaps(float* block, std::size_t count) {
        const std::size_t end = fed + count;
        float* out = block;
        for (std::size_t position = fed; position < end; ++position, block += FloatLine::lanes) {
            float* const behind = history + (position & mask) * FloatLine::lanes;
            const float* const here = history + ((position - 1) & mask) * FloatLine::lanes;
            const float* const before = history + ((position - 2) & mask) * FloatLine::lanes;
            std::copy_n(block, FloatLine::lanes, behind);
            if (position < radius) continue;
            for (std::size_t i = 0; i < FloatLine::lanes; ++i) {
                const double sides = before[i] + behind[i];
                out[i] = static_cast<float>(sides * fraction + static_cast<double>(here[i]));
            }
            out += FloatLine::lanes;
        }
        fed = end;
        return count - static_cast<std::size_t>(block - out) / FloatLine::lanes;
    }

    // Takes `count` positions and gives those that are ready, over them; returns how many those are.
    std::size_t Feed(float* block, std::size_t count) {
        return fraction == 0.0 ? FeedBox(block, count) : FeedThreeTaps(block, count);
    }
};

// The passes of one line and the blocks that run through them.
class Chain {
public:
    // Takes the rings' memory from `scratch`.
    Chain(std::vector<Pass> passes, FloatLine& scratch) : m_passes(std::move(passes)) {
        std::size_t positions = 0;
        for (Pass& pass : m_passes) {
            pass.mask = std::bit_ceil(2 * pass.radius + 1 + block) - 1;
            positions += pass.mask + 1;
        }
        scratch.Reset(0, static_cast<std::int32_t>(positions) - 1);
        positions = 0;
        for (Pass& pass : m_passes) {
            pass.history = scratch.At(static_cast<std::int32_t>(positions));
            positions += pass.mask + 1;
        }
    }

    // Runs all passes over `count` positions in place.
    void Run(float* line, std::size_t count) {
        float* out = line;
        for (std::size_t done = 0; done < count; done += block) {
            const std::size_t n = std::min(block, count - done);
            std::copy_n(line + done * FloatLine::lanes, n * FloatLine::lanes, m_block.data());
            RunBlock(0, n, out);
        }
        // Beyond the line there are zeros, for each pass in turn.
        for (std::size_t i = 0; i < m_passes.size(); ++i) {
            for (std::size_t rest = m_passes[i].radius; rest > 0;) {
                const std::size_t n = std::min(block, rest);
                std::fill_n(m_block.data(), n * FloatLine::lanes, 0.0F);
                RunBlock(i, n, out);
                rest -= n;
            }
        }
    }

private:
    static constexpr std::size_t block = 32;

    void RunBlock(std::size_t firstPass, std::size_t count, float*& out) {
        for (std::size_t i = firstPass; i < m_passes.size(); ++i) count = m_passes[i].Feed(m_block.data(), count);
        out = std::copy_n(m_block.data(), count * FloatLine::lanes, out);
    }

    std::vector<Pass> m_passes;
    alignas(64) std::array<float, block * FloatLine::lanes> m_block;
};

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
    std::vector<Pass> chain;
    for (std::int32_t pass = 0; pass < passes; ++pass) {
        const std::int32_t radius = BoxRadius(softness, passes, pass);
        if (radius == 0) continue;
        chain.push_back({static_cast<std::size_t>(radius), 0.0, nullptr, 0});
        line.gain *= static_cast<float>(2 * radius + 1);
    }
    if (const double fraction = SoftnessFraction(softness, passes); fraction > 0.0) {
        chain.push_back({1, fraction, nullptr, 0});
        line.gain = static_cast<float>(static_cast<double>(line.gain) * (2.0 * fraction + 1.0));
    }
    if (chain.empty()) return;
    Chain run(std::move(chain), spare);
    run.Run(line.At(line.Left()), static_cast<std::size_t>(line.Right() - line.Left()) + 1);
}

}  // namespace chalkpane
