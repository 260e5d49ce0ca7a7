#include "tests/soak/soak_episode.h"

#include <algorithm>
#include <array>
#include <limits>
#include <new>
#include <utility>

#include "tests/telestrator/stroke_shapes.h"

namespace chalkpane::soak {
namespace {

constexpr std::int64_t soManyEpisodes = 16;  // to one with a hard stroke
constexpr std::int32_t farOff = 100'000;     // pixels

std::uint32_t SeedOf(std::uint32_t seed, std::int64_t number) {
    std::seed_seq sequence{seed, static_cast<std::uint32_t>(number), static_cast<std::uint32_t>(number >> 32)};
    std::array<std::uint32_t, 1> word{};
    sequence.generate(word.begin(), word.end());
    return word[0];
}

}  // namespace

Episode::Episode(std::uint32_t seed, std::int64_t number)
    : m_random(SeedOf(seed, number)),
      m_isHostile(Sometimes(2)),
      m_hardStroke(number % soManyEpisodes == 1 ? number / soManyEpisodes : -1) {
    m_fixture.host.recording = false;
    m_fixture.plugin.RecoShapes = Number(0, 1);
    m_fixture.plugin.ShapeDelay = Number(0, 10);
}

std::int32_t Episode::Number(std::int32_t least, std::int32_t most) {
    return std::uniform_int_distribution(least, most)(m_random);
}

float Episode::OddNumber() {
    constexpr std::array odd{0.0F,
                             -0.0F,
                             1e-30F,
                             0.0001F,
                             -1.0F,
                             1e9F,
                             1e38F,
                             std::numeric_limits<float>::infinity(),
                             -std::numeric_limits<float>::infinity(),
                             std::numeric_limits<float>::quiet_NaN()};
    return odd[static_cast<std::size_t>(Number(0, static_cast<std::int32_t>(odd.size()) - 1))];
}

// Mostly within the registered limits; a hostile host writes what it likes, as far as a canvas can be painted with it.
void Episode::ChangeParameter() {
    PluginParameters& values = m_fixture.plugin;
    const std::int32_t which = Number(1, 20);
    const std::int32_t least = m_isHostile ? -5 : 1;
    switch (which) {
        case 1:
            values.Active = Sometimes(4) ? 0 : 1;
            break;
        case 2:
            values.TexUnit = Number(m_isHostile ? -1 : 0, 2);
            break;
        case 3:
            values.Transparent = Number(0, 1);
            break;
        case 5:
            values.BrushType = Number(0, m_isHostile ? 3 : 1);
            break;
        case 6:
            values.BrushImage = Sometimes(2) ? "" : "brush";
            break;
        case 7:
            values.BrushWidth = Number(least, 30);
            break;
        case 8:
            values.EraserWidth = Number(least, 60);
            break;
        case 9:
            values.BrushColor = static_cast<std::uint32_t>(m_random());
            break;
        case 10:
            values.RecoShapes = Number(0, 1);
            break;
        case 11:
            values.RecoEllipse = Number(0, 1);
            break;
        case 12:
            values.RecoCircle = Number(0, 1);
            break;
        case 13:
            values.RecoCross = Number(0, 1);
            break;
        case 14:
            values.ShapeDelay = Number(m_isHostile ? -1 : 0, 20);
            break;
        case 15:
            values.Arrow = Number(0, 1);
            break;
        case 16:
            values.ArrowLength = Number(least, 100);
            break;
        case 17:
            values.ArrowWidth = Number(least, 100);
            break;
        case 19:
            values.CrossDia = Number(least, 200);
            break;
        case 20:
            values.MaxUndos = Number(least, 20);
            break;
        default:
            break;
    }
    PLUGIN_CHANGED_CALLBACK(&m_fixture.plugin, m_isHostile && Sometimes(10) ? Number(-3, 99) : which);
}

void Episode::ChangeHost() {
    testing::RecordingHost& host = m_fixture.host;
    if (!m_isHostile || Sometimes(3)) {  // back to an ordinary one, or there is little left to try
        host.box = m_box;
        host.containerMatrix = m_containerMatrix;
        host.cameraMatrix = m_cameraMatrix;
        host.windowWidth = host.windowHeight = 1023;
        host.unprojects = true;
        host.containerUnderPointer = host.ownContainer;
        host.createdImage = 40;
        host.createdTexture = 50;
        return;
    }
    switch (Number(0, 8)) {
        case 0:
            host.box[static_cast<std::size_t>(Number(0, 5))] = OddNumber();
            break;
        case 1:
            host.containerMatrix[static_cast<std::size_t>(Number(0, 15))] = OddNumber();
            break;
        case 2:
            host.cameraMatrix[static_cast<std::size_t>(Number(0, 15))] = OddNumber();
            break;
        case 3:
            host.windowWidth = Number(-1, 2000);
            host.windowHeight = Number(-1, 2000);
            break;
        case 4:
            host.unprojects = !host.unprojects;
            break;
        case 5:
            host.containerUnderPointer = Number(-1, 9);
            break;
        case 6:
            host.createdImage = Number(-1, 40);
            break;
        case 7:
            host.createdTexture = Number(-1, 50);
            break;
        default:
            host.imageIds["brush"] = Number(-1, 60);
            host.brushImageWidth = Number(0, 64);
            host.brushImageHeight = Number(0, 64);
            host.brushImageFormat = Sometimes(2) ? 6408 : Number(0, 7000);
            host.brushImagePixels.assign(std::size_t{64} * 64 * 4, 0x80);
            host.brushImageHasData = !Sometimes(4);
            break;
    }
}

// Full buffers of points at each width that the settings offer, some of them drawn with another one than they were
// stored with, and an ellipse that is seen in part.
void Episode::StoreHardStroke() {
    constexpr std::int32_t widest = 30;
    Telestrator& telestrator = m_fixture.plugin.telestrator;
    telestrator.SizeRecognitionBuffers(true);
    if (!telestrator.recognitionBuffersReady) return;
    const auto width = static_cast<std::int32_t>(1 + m_hardStroke / 4 % widest);
    testing::Points points;
    switch (std::exchange(m_hardStroke, -1) % 4) {
        case 0:
            points = testing::ScribblePoints(width);
            break;
        case 1:
            points = testing::ToAndFroPoints(width);
            break;
        case 2:
            points = testing::ScribblePoints(widest);
            break;
        default:
            points = testing::EllipsePoints(512 - 900, 512, 1200, 1100, 0, 300);
            break;
    }
    m_fixture.plugin.BrushType = 0;
    m_fixture.plugin.BrushWidth = width;
    m_fixture.plugin.RecoShapes = 1;
    testing::StoreStroke(telestrator, points);
    telestrator.shapeCountdown = 1;
    m_finishIsDue = true;
}

const char* Episode::Step() {
    constexpr int now = 100;
    if (std::exchange(m_finishIsDue, false)) return m_fixture.Field(), "finish";
    if (m_hardStroke >= 0 && m_fixture.plugin.telestrator.HasCanvas() && Sometimes(now)) {
        try {
            StoreHardStroke();
            return "hard stroke";
        } catch (const std::bad_alloc&) {  // where a test lets the stroke's own points find no memory
            m_finishIsDue = false;
        }
    }
    const std::int32_t choice = Number(0, 99);
    const std::int32_t least = m_isHostile && Sometimes(20) ? -farOff : 0;
    const std::int32_t most = least != 0 ? farOff : 1022;
    if (choice < 60) {
        m_fixture.Move(Number(least, most), Number(least, most));
        return "field";
    }
    if (choice < 68) return m_fixture.Press(Number(least, most), Number(least, most)), "press";
    if (choice < 76) return m_fixture.Release(Number(least, most), Number(least, most)), "release";
    if (choice < 86) return m_fixture.PreRender(), m_fixture.PostRender(), "render";
    if (choice < 92) return ChangeParameter(), "parameter";
    if (choice < 95) return PLUGIN_EXEC_ACTION(&m_fixture.plugin, Number(m_isHostile ? -1 : 0, 2)), "action";
    if (choice < 97) return PLUGIN_GUI_STATUS(&m_fixture.plugin), "panel";
    if (choice < 98) return PLUGIN_KEYBOARD_CALLBACK(&m_fixture.plugin), "key";
    return ChangeHost(), "host";
}

std::int64_t Episode::End() {
    m_fixture.CleanUp();
    // KEEP: the image of the canvas stays with the host, which ends it with its container.
    return std::max(m_fixture.host.images - 1, 0) + m_fixture.host.textures;
}

}  // namespace chalkpane::soak
