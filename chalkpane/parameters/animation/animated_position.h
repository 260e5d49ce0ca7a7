#pragma once

#include "chalkpane/parameters/animation/animated_typed.h"

namespace chalkpane {

inline constexpr double noNeighbour = -99999999.0;
inline constexpr double easedNeighbour = -100000000.0;

// A Bezier from (0, 0) to (1, 1) at the fraction f, leaving with the slope p and arriving with the slope q. A slope of
// `noNeighbour` leaves its control on the end point, one of `easedNeighbour` is flat.
double easeFraction(double p, double q, double f);

// A span's Bezier as a polyline.
struct Polyline {
    static constexpr int most = 64;  // the count of segments stays below 30 for any finite span
    Polyline(const PathPoint& left, const PathPoint& right);
    // The point at an arc length from the start.
    DoublePair at(double arc) const;

    int segments = 1;
    double length = 0.0;
    DoublePair points[most + 1];
};

// A position that moves along a Bezier path with handles in its keys, at a speed that meets those of the neighbouring
// spans. Keys that share a frame form one group: the path jumps there.
template <typename Content>
class AnimatedPath : public AnimatedComponents<Content> {
public:
    // On a key with the key's handles, elsewhere on the point that is found.
    void evaluate(std::int32_t frame, Content& out) const override;

    void setDoubleXY(double x, double y) override;
    void getDoubleXY(double& outX, double& outY) const override;
    void addKeyDoubleXY(std::int32_t frame, double x, double y) override;
    void valueAtFrameDoubleXY(std::int32_t frame, double& outX, double& outY) const override;

protected:
    using AnimatedComponents<Content>::AnimatedComponents;

private:
    // The first key behind `index`, and the last before it, on another frame; -1 for none.
    std::int32_t nextGroup(std::int32_t index) const;
    std::int32_t previousGroup(std::int32_t index) const;
    Polyline flatten(std::int32_t left, std::int32_t right) const;
    DoublePair pointBetween(std::int32_t index, std::int32_t frame) const;
};

extern template class AnimatedPath<PathPoint>;
extern template class AnimatedPath<SmoothPathPoint>;

class AnimatedPosition final : public AnimatedPath<PathPoint> {
public:
    AnimatedPosition(const ParameterDef* definition, bool recordsUndo, const AnimationClock* givenClock)
        : AnimatedPath(definition, recordsUndo, givenClock) {}
    ValuePointer clone() const override;
};

// A position whose handles follow the neighbouring keys while a key is smooth. Each change of a handle is recorded.
class AnimatedPosition3d final : public AnimatedPath<SmoothPathPoint> {
public:
    AnimatedPosition3d(const ParameterDef* definition, bool recordsUndo, const AnimationClock* givenClock)
        : AnimatedPath(definition, recordsUndo, givenClock) {}
    ValuePointer clone() const override;

    // A new key is smooth with its handles on its point, or takes over smoothness and handle offsets from the key that
    // stood on its frame. Then the handles of all smooth keys are computed anew.
    void addKey(std::int32_t frame, const SmoothPathPoint& value) override;
    // As it comes, with handles of its own; they are computed anew only if it is smooth.
    void addKeyWithHandles(std::int32_t frame, const SmoothPathPoint& value);

    // A smooth key that is read has its handles computed with its neighbours'; it stays smooth even alone, since others
    // follow.
    bool readKeyValue(TextScanner& scanner, double time, double inHandle, double outHandle) override;

    void smoothHandles(std::int32_t index);
    void setSmooth(std::int32_t index);
    void setCorner(std::int32_t index);

private:
    void edit(std::int32_t index, const SmoothPathPoint& value);
    void smoothAll();
};

}  // namespace chalkpane
