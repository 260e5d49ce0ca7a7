#include "chalkpane/filters/distort/jitter_effect.h"

#include <new>

#include "chalkpane/base/memory_loss.h"
#include "chalkpane/filters/noise/grain_random.h"
#include "chalkpane/transform/transformer.h"

namespace chalkpane {

JitterEffect::JitterEffect(const JitterEffect& other)
    : FilterClass(other),
      m_angle(other.m_angle),
      m_zoom(other.m_zoom),
      m_moveX(other.m_moveX),
      m_moveY(other.m_moveY),
      m_seedFromTime(other.m_seedFromTime) {}

bool JitterEffect::IsActive() const { return m_angle != 0.0F || m_zoom != 0.0 || m_moveX != 0.0 || m_moveY != 0.0; }

void JitterEffect::BeginStep() {
    m_stepSeed = m_seed;
    m_inStep = true;
}

void JitterEffect::EndStep() {
    m_seed = m_stepSeed;
    m_inStep = false;
}

void JitterEffect::Apply(const Image& source, std::unique_ptr<Image>& result, bool /*fast*/, const Rect* /*region*/,
                         bool /*expand*/) {
    result.reset();
    if (m_seedFromTime) m_seed = static_cast<std::uint32_t>(m_frame);
    GrainRandom random(m_seed);
    const auto draw = [&random] { return static_cast<float>(random.Next15()) / 16384.0F - 1.0F; };  // -1 .. 1
    const float angle = draw() * m_angle;
    const double zoom = draw() * m_zoom / 100.0 + 1.0;
    const double moveX = draw() * m_moveX;
    const double moveY = draw() * m_moveY;
    (m_inStep ? m_stepSeed : m_seed) = random.Next();

    const double centreX = (static_cast<double>(source.x0) + source.x1) * 0.5;
    const double centreY = (static_cast<double>(source.y0) + source.y1) * 0.5;
    try {
        Transformer transformer;
        transformer.SetTransform(centreX, centreY, centreX + moveX, centreY + moveY, zoom, zoom, angle);
        Rect area;
        result = transformer.Apply(source, area);
    } catch (const std::bad_alloc&) {
        CountMemoryLoss();
        result.reset();
    }
}

}  // namespace chalkpane
