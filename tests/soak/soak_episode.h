#pragma once

#include <array>
#include <cstdint>
#include <random>

#include "tests/module/module_fixture.h"

namespace chalkpane::soak {

// An instance from its making to its end, with a host that answers what it likes. What happens is decided by seed and
// number alone, so that any episode can be had again by itself.
class Episode {
public:
    static constexpr std::int64_t events = 1000;

    Episode(std::uint32_t seed, std::int64_t number);

    // One event; returns its kind.
    const char* Step();

    // The instance ends. Returns the images and textures that the host still has, but for one image.
    std::int64_t End();

private:
    std::int32_t Number(std::int32_t least, std::int32_t most);
    bool Sometimes(int oneIn) { return Number(1, oneIn) == 1; }
    float OddNumber();
    void ChangeParameter();
    void ChangeHost();
    // A stroke that takes as long to draw as strokes do, and no hand draws; the next field finishes it.
    void StoreHardStroke();

    std::mt19937 m_random;
    testing::ModuleFixture m_fixture;
    bool m_isHostile;
    std::int64_t m_hardStroke;  // which of them this episode has; below 0: none, or no more
    bool m_finishIsDue = false;
    // The host as it was, to come back to.
    std::array<float, 6> m_box = m_fixture.host.box;
    std::array<float, 16> m_containerMatrix = m_fixture.host.containerMatrix;
    std::array<float, 16> m_cameraMatrix = m_fixture.host.cameraMatrix;
};

}  // namespace chalkpane::soak
