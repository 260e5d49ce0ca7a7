#pragma once

#include <array>
#include <cmath>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "kel/scene/host.h"
#include "tests/kel/probe.h"

namespace kel::testing {

// Something that an operator does to a telestrator, and that any number of them can be given.
struct HandAct {
    enum class Kind : std::uint8_t { Stroke, Set, Push, Wait };
    Kind kind = Kind::Wait;
    std::vector<std::array<std::int32_t, 2>> path;  // window pixels, one a field
    std::string name;                               // of a parameter or button
    ParameterValue value;
    int fields = 1;
};

// The real module on a container that stands at a slant in the window.
class SlantedPane {
public:
    static constexpr std::int32_t width = 320;
    static constexpr std::int32_t height = 240;

    SlantedPane() : host({width, height}) {
        Camera camera;
        camera.position = {30, 40, 150};
        camera.target = {0, 0, 0};
        host.SetCamera(camera);
        Placement placement;
        placement.size = {110, 90};
        placement.rotation = {-35, 10, 4};
        container = host.AddContainer(placement);
        host.Attach(container, host.LoadModule(CHALKPANE_MODULE), {{"ShapeDelay", 6}});
        host.RunField();
    }

    // before: called before each button and each field.
    template <typename Before>
    void Do(const HandAct& act, const Before& before) {
        switch (act.kind) {
            case HandAct::Kind::Stroke:
                for (std::size_t i = 0; i < act.path.size(); ++i) {
                    const PointerKind kind = i == 0                    ? PointerKind::Press
                                             : i + 1 < act.path.size() ? PointerKind::Move
                                                                       : PointerKind::Release;
                    host.QueuePointer(kind, act.path[i][0], act.path[i][1]);
                    before(std::string());
                    host.RunField();
                }
                return;
            case HandAct::Kind::Set:
                // What waits for its recognition has become something by then.
                for (int i = 0; i < 8 && act.name == "RecoShapes"; ++i) {
                    before(std::string());
                    host.RunField();
                }
                host.SetParameter(container, act.name, act.value);
                break;
            case HandAct::Kind::Push:
                before(act.name);
                host.PushButton(container, act.name);
                break;
            case HandAct::Kind::Wait:
                break;
        }
        for (int i = 0; i < act.fields; ++i) {
            before(std::string());
            host.RunField();
        }
    }

    Host host;
    ObjectId container = noObject;
};

// What a hand might do, different for each seed.
class RandomHand {
public:
    explicit RandomHand(std::uint32_t seed) : m_random(seed) {}

    std::uint32_t Below(std::uint32_t limit) { return static_cast<std::uint32_t>(m_random()) % limit; }

    HandAct Next() {
        switch (Below(12)) {
            case 0:
                return Setting("BrushColor", ColourBytes{Byte(), Byte(), Byte(), 255});
            case 1:
                return Setting("BrushWidth", static_cast<std::int32_t>(1 + Below(30)));
            case 2:
                return Setting("RecoShapes", static_cast<std::int32_t>(Below(2)));
            case 3:
                return Setting("BrushType", static_cast<std::int32_t>(Below(4) == 0 ? 1 : 0));
            case 4:
                return Waiting(1 + static_cast<int>(Below(9)));
            case 5:
                return Below(3) == 0 ? Button(Below(2) == 0 ? "Clear" : "Undo") : Waiting(2);
            default:
                return Stroke();
        }
    }

    HandAct Stroke() {
        HandAct act;
        act.kind = HandAct::Kind::Stroke;
        const bool isRing = Below(3) == 0;
        const double x = 90 + Below(140);
        const double y = 70 + Below(100);
        const double size = 8 + Below(50);
        const auto points = static_cast<int>(3 + Below(24));
        for (int i = 0; i <= points; ++i) {
            const double along = static_cast<double>(i) / points;
            const double right = isRing ? std::cos(along * 6.4) * size : (along - 0.5) * 2 * size;
            const double down = isRing ? std::sin(along * 6.4) * size * 0.7 : along * along * size;
            act.path.push_back({static_cast<std::int32_t>(x + right), static_cast<std::int32_t>(y + down)});
        }
        return act;
    }
    static HandAct Waiting(int fields) {
        HandAct act;
        act.fields = fields;
        return act;
    }
    static HandAct Setting(const std::string& name, const ParameterValue& value) {
        HandAct act;
        act.kind = HandAct::Kind::Set;
        act.name = name;
        act.value = value;
        return act;
    }
    static HandAct Button(const std::string& name) {
        HandAct act;
        act.kind = HandAct::Kind::Push;
        act.name = name;
        return act;
    }

private:
    std::uint8_t Byte() { return static_cast<std::uint8_t>(Below(256)); }

    std::mt19937 m_random;
};

}  // namespace kel::testing
