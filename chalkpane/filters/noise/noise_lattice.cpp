#include "chalkpane/filters/noise/noise_lattice.h"

#include <cmath>
#include <mutex>
#include <utility>

#include "chalkpane/base/random.h"

namespace chalkpane {

namespace {

// floor as an integer, for floats that have one; others count as 0.
std::int32_t FloorToInt(float value) {
    if (!(std::fabs(value) < 2147483648.0F)) return 0;
    const auto truncated = static_cast<std::int32_t>(value);
    return static_cast<float>(truncated) > value ? truncated - 1 : truncated;
}

std::mutex sharedMutex;

std::shared_ptr<const NoiseLattice>& SharedPlace() {
    static auto place = std::make_shared<const NoiseLattice>();
    return place;
}

}  // namespace

std::shared_ptr<const NoiseLattice> NoiseLattice::Shared() {
    const std::lock_guard lock(sharedMutex);
    return SharedPlace();
}

void NoiseLattice::BuildShared() {
    auto built = std::make_shared<NoiseLattice>();
    built->Build();
    const std::lock_guard lock(sharedMutex);
    SharedPlace() = std::move(built);
}

void NoiseLattice::Build() {
    for (std::size_t i = 0; i < size; ++i) {
        m_permutation[i] = static_cast<std::int32_t>(i);
        // KEEP: half a circle only; pictures made with it depend on the angles.
        const float angle = static_cast<float>(Random()) * 3.1415927F / 32767.0F;
        m_gradient[i] = {std::cos(angle), std::sin(angle)};
    }
    for (std::size_t i = size - 1; i >= 1; --i) {
        const auto other = static_cast<std::size_t>(Random()) % (i + 1);
        std::swap(m_permutation[i], m_permutation[other]);
    }
    for (std::size_t i = 0; i < 258; ++i) m_permutation[size + i] = m_permutation[i];
    for (std::size_t i = 0; i < m_pairs.size(); ++i) m_pairs[i] = m_permutation[i] | m_permutation[i + 1] << 16;
    for (std::size_t i = 0; i < m_corners.size(); ++i) {
        const Pair& here = m_gradient[static_cast<std::size_t>(m_permutation[i])];
        const Pair& next = m_gradient[static_cast<std::size_t>(m_permutation[i + 1])];
        m_corners[i][0] = here.x;
        m_corners[i][1] = here.y;
        m_corners[i][2] = next.x;
        m_corners[i][3] = next.y;
    }
}

float NoiseLattice::Corner(std::int32_t column, std::int32_t row, float dx, float dy) const {
    const auto sum = static_cast<std::size_t>(column) + static_cast<std::size_t>(row);
    const auto entry = static_cast<std::size_t>(m_permutation[sum]);
    return m_gradient[entry].x * dx + m_gradient[entry].y * dy;
}

float NoiseLattice::Noise2(float x, float y) const {
    const std::int32_t ix = FloorToInt(x);
    const std::int32_t iy = FloorToInt(y);
    const float fx = x - static_cast<float>(ix);
    const float fy = y - static_cast<float>(iy);
    const auto column = static_cast<std::size_t>(ix & 255);
    const std::int32_t a = m_permutation[column];
    const std::int32_t b = m_permutation[column + 1];
    const std::int32_t j = iy & 255;
    const float sx = (3.0F - 2.0F * fx) * fx * fx;
    const float sy = (3.0F - 2.0F * fy) * fy * fy;
    const float g00 = Corner(a, j, fx, fy);
    const float g10 = Corner(b, j, fx - 1.0F, fy);
    const float g01 = Corner(a, j + 1, fx, fy - 1.0F);
    const float g11 = Corner(b, j + 1, fx - 1.0F, fy - 1.0F);
    const float near = g00 + sx * (g10 - g00);
    const float far = g01 + sx * (g11 - g01);
    return near + sy * (far - near);
}

NoiseLattice::Turns::Turns() {
    static const float sine1 = std::sin(0.5F) * 2.1F;
    static const float cosine1 = std::cos(0.5F) * 2.15F;
    static const float sine2 = std::sin(0.2F);
    static const float cosine2 = std::cos(0.2F);
    s1 = sine1;
    c1 = cosine1;
    s2 = sine2;
    c2 = cosine2;
}

NoiseLattice::Pair NoiseLattice::TurbulencePair(float x, float y) const {
    const auto [s1, c1, s2, c2] = Turns();
    const auto permutation = [this](std::int32_t i) {
        return static_cast<float>(m_permutation[static_cast<std::size_t>(i)]);
    };
    Pair sum;
    float weight = 1.0F;
    for (std::int32_t octave = 0; octave < 3; ++octave) {
        sum.x += weight * Noise2(x, y);
        const std::int32_t i = FloorToInt(x * 3.17F + 190.0F) & 255;
        const float u = c2 * x + s2 * y + permutation(i);
        const float v = c2 * y - s2 * x + permutation(i + 1);
        sum.y += weight * Noise2(u, v);
        weight *= 0.35F;
        const float nextX = c1 * u + s1 * v + permutation(octave);
        // KEEP: the second row turns v against x, not against u.
        y = c1 * v - s1 * x + permutation(32 + octave);
        x = nextX;
    }
    return sum;
}

}  // namespace chalkpane
