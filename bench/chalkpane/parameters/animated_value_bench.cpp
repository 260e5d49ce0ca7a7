#include <benchmark/benchmark.h>

#include <cmath>
#include <type_traits>

#include "chalkpane/parameters/animation/animated_file_name.h"
#include "chalkpane/parameters/animation/animated_map_xy.h"
#include "chalkpane/parameters/animation/animated_position.h"
#include "tests/chalkpane/parameters/frame_clock.h"
#include "tests/reference/key_segment.h"

using namespace chalkpane;

namespace {

constexpr std::int32_t keyCount = 16;
constexpr std::int32_t framesToAKey = 25;
constexpr std::int32_t lastFrame = (keyCount - 1) * framesToAKey;

// Of key `i`, another for each component.
double NumberOf(std::int32_t i, std::int32_t component) { return 1000.0 + (i * 7919 + component * 104729) % 5000; }

template <typename Content>
Content ContentOf(std::int32_t i) {
    Content content{};
    if constexpr (std::is_same_v<Content, FileName>) {
        content.assign(std::to_string(i));
    } else if constexpr (std::is_same_v<Content, bool>) {
        content = i % 3 == 0;
    } else if constexpr (std::is_base_of_v<PathPoint, Content>) {
        content = Content::at({NumberOf(i, 0), NumberOf(i, 1)});
    } else {
        for (std::int32_t c = 0; c < componentsOf<Content>(); ++c) setComponent(content, c, NumberOf(i, c));
    }
    return content;
}

template <typename Value>
using ContentBy = std::remove_cvref_t<decltype(std::declval<Value>().keyValue(0))>;

template <typename Value>
void Fill(Value& value) {
    for (std::int32_t i = 0; i < keyCount; ++i) value.addKey(i * framesToAKey, ContentOf<ContentBy<Value>>(i));
    for (std::int32_t i = 0; i < keyCount; ++i) value.keyAt(i)->setHandles(i % 2 == 0 ? -0.3 : 0.4, -0.35);
}

// One number at a frame between keys, in long doubles.
template <typename NumberAt>
long double ReferenceAt(const AnimatedValue& value, std::int32_t frame, const NumberAt& number) {
    const std::int32_t i = frame / framesToAKey;
    const std::int32_t before = i > 0 ? i - 1 : i;
    const std::int32_t after = i + 2 < keyCount ? i + 2 : i + 1;
    const auto slope = [&](std::int32_t from, std::int32_t to) {
        return (number(to) - number(from)) / static_cast<long double>((to - from) * framesToAKey);
    };
    return reference::KeySegment(i * framesToAKey, (i + 1) * framesToAKey, frame, value.keyAt(i)->outHandle, number(i),
                                 slope(before, i + 1), value.keyAt(i + 1)->inHandle, number(i + 1), slope(i, after));
}

// True where numbers agree with their reference, and everything else with what its keys say.
template <typename Value>
bool AsTheReferenceSays(const Value& value) {
    using Content = ContentBy<Value>;
    for (std::int32_t frame = 0; frame < lastFrame; ++frame) {
        const std::int32_t left = frame / framesToAKey;
        Content content{};
        value.evaluate(frame, content);
        if constexpr (std::is_same_v<Content, bool> || std::is_same_v<Content, FileName>) {
            if (!(content == value.keyValue(left))) return false;
        } else if constexpr (std::is_base_of_v<PathPoint, Content> || std::is_same_v<Value, AnimatedMapXY>) {
            if (frame % framesToAKey != 0) continue;
            for (std::int32_t c = 0; c < 2; ++c)
                if (getComponent(content, c) != NumberOf(left, c)) return false;
        } else {
            constexpr bool isLogarithmic = std::is_same_v<Value, AnimatedLogDouble>;
            constexpr bool truncates = !std::is_same_v<Content, double> && !std::is_same_v<Content, DoublePair>;
            for (std::int32_t c = 0; c < componentsOf<Content>(); ++c) {
                const auto number = [c](std::int32_t i) -> long double {
                    return isLogarithmic ? std::log(NumberOf(i, c)) : NumberOf(i, c);
                };
                const long double reference = ReferenceAt(value, frame, number);
                const auto wanted = static_cast<double>(isLogarithmic ? std::exp(reference) : reference);
                // Whole numbers and the components of a color are cut off; floats round.
                if (!(std::fabs(getComponent(content, c) - wanted) <= (truncates ? 1.001 : 1e-3))) return false;
            }
        }
    }
    return true;
}

// One call at frames that jump about, so that it is found anew where they lie.
template <typename Value>
void Evaluate(benchmark::State& state) {
    const FrameClock clock;
    Value value(nullptr, false, &clock);
    Fill(value);
    ContentBy<Value> content{};
    std::int32_t frame = 0;
    for (auto _ : state) {
        value.evaluate(frame, content);
        benchmark::DoNotOptimize(content);
        frame = (frame + 113) % lastFrame;
    }
    state.SetItemsProcessed(state.iterations());
    if (!AsTheReferenceSays(value)) state.SkipWithError("differs from the plain reference");
}

BENCHMARK(Evaluate<AnimatedDouble>);
BENCHMARK(Evaluate<AnimatedFloat>);
BENCHMARK(Evaluate<AnimatedInt>);
BENCHMARK(Evaluate<AnimatedBoolean>);
BENCHMARK(Evaluate<AnimatedIntXY>);
BENCHMARK(Evaluate<AnimatedDoubleXY>);
BENCHMARK(Evaluate<AnimatedColour>);
BENCHMARK(Evaluate<AnimatedLogDouble>);
BENCHMARK(Evaluate<AnimatedFileName>);
BENCHMARK(Evaluate<AnimatedMapXY>);
BENCHMARK(Evaluate<AnimatedPosition>);
BENCHMARK(Evaluate<AnimatedPosition3d>);

}  // namespace
