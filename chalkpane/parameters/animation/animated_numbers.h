#pragma once

#include "chalkpane/parameters/animation/animated_typed.h"

namespace chalkpane {

// The animated classes whose components each run on a curve of their own. All are built from their declaration, whether
// they record undo, and a clock that is not owned.

class AnimatedDouble : public AnimatedNumbers<double> {
public:
    AnimatedDouble(const ParameterDef* definition, bool recordsUndo, const AnimationClock* givenClock)
        : AnimatedNumbers(definition, recordsUndo, givenClock) {}
    ValuePointer clone() const override;

    void setFloat(float number) override;
    void setDouble(double number) override;
    void getDouble(double& out) const override;
    void getStoredDouble(double& out) const override;
    void addKeyDouble(std::int32_t frame, double number) override;
    void valueAtFrameDouble(std::int32_t frame, double& out) const override;
};

// Keys hold the natural logarithm, so that the curve grows by equal factors. Everything outside speaks of the plain
// value, which is raised to the declaration's minimum (0.01 without a range) when a key is made.
class AnimatedLogDouble final : public AnimatedDouble {
public:
    using AnimatedDouble::AnimatedDouble;
    ValuePointer clone() const override;

    double toStored(const double& plain) const override { return toLog(plain); }
    double toPlain(const double& stored) const override { return fromLog(stored); }

    double toLog(double value) const;  // -10000 for what has no logarithm
    static double fromLog(double stored);
};

class AnimatedFloat final : public AnimatedNumbers<float> {
public:
    AnimatedFloat(const ParameterDef* definition, bool recordsUndo, const AnimationClock* givenClock)
        : AnimatedNumbers(definition, recordsUndo, givenClock) {}
    ValuePointer clone() const override;

    void setFloat(float number) override;
    void setDouble(double number) override;
    void getFloat(float& out) const override;
    void getDouble(double& out) const override;
    void getStoredDouble(double& out) const override;
    void addKeyDouble(std::int32_t frame, double number) override;
    void valueAtFrameDouble(std::int32_t frame, double& out) const override;
};

class AnimatedInt final : public AnimatedNumbers<std::int32_t> {
public:
    AnimatedInt(const ParameterDef* definition, bool recordsUndo, const AnimationClock* givenClock)
        : AnimatedNumbers(definition, recordsUndo, givenClock) {}
    ValuePointer clone() const override;

    // KEEP: the add operation stands in this slot: x is the frame of the key and y its value.
    void setIntegerXY(std::int32_t x, std::int32_t y) override;
    void setInteger(std::int32_t number) override;
    void getInteger(std::int32_t& out) const override;
    void getStoredDouble(double& out) const override;
    void valueAtFrameInteger(std::int32_t frame, std::int32_t& out) const override;
};

// No curve: between two keys the left one holds.
class AnimatedBoolean final : public AnimatedComponents<bool> {
public:
    AnimatedBoolean(const ParameterDef* definition, bool recordsUndo, const AnimationClock* givenClock)
        : AnimatedComponents(definition, recordsUndo, givenClock) {}
    ValuePointer clone() const override;
    void evaluate(std::int32_t frame, bool& out) const override;

    void setBoolean(bool boolean) override;
    void getBoolean(bool& out) const override;
    void addKeyBoolean(std::int32_t frame, bool boolean) override;
    void valueAtFrameBoolean(std::int32_t frame, bool& out) const override;
    bool isDiscrete() const override { return true; }
};

class AnimatedIntXY final : public AnimatedNumbers<IntegerPair> {
public:
    AnimatedIntXY(const ParameterDef* definition, bool recordsUndo, const AnimationClock* givenClock)
        : AnimatedNumbers(definition, recordsUndo, givenClock) {}
    ValuePointer clone() const override;

    void setIntegerXY(std::int32_t x, std::int32_t y) override;
    void getIntegerXY(std::int32_t& outX, std::int32_t& outY) const override;
    void addKeyIntegerXY(std::int32_t frame, std::int32_t x, std::int32_t y) override;
    void valueAtFrameIntegerXY(std::int32_t frame, std::int32_t& outX, std::int32_t& outY) const override;
};

class AnimatedDoubleXY : public AnimatedNumbers<DoublePair> {
public:
    AnimatedDoubleXY(const ParameterDef* definition, bool recordsUndo, const AnimationClock* givenClock)
        : AnimatedNumbers(definition, recordsUndo, givenClock) {}
    ValuePointer clone() const override;

    void setDoubleXY(double x, double y) override;
    void getDoubleXY(double& outX, double& outY) const override;
    void addKeyDoubleXY(std::int32_t frame, double x, double y) override;
    void valueAtFrameDoubleXY(std::int32_t frame, double& outX, double& outY) const override;
    std::int32_t componentCount() const override { return 2; }
    void componentColour(Colour& out, std::int32_t component) const override;
    void componentName(std::string& out, std::int32_t component) const override;
};

class AnimatedColour final : public AnimatedNumbers<Colour> {
public:
    AnimatedColour(const ParameterDef* definition, bool recordsUndo, const AnimationClock* givenClock)
        : AnimatedNumbers(definition, recordsUndo, givenClock) {}
    ValuePointer clone() const override;

    void setColour(const Colour& colour) override;
    void getColour(Colour& out) const override;
    void addKeyColour(std::int32_t frame, const Colour& colour) override;
    void valueAtFrameColour(std::int32_t frame, Colour& out) const override;
    std::int32_t componentCount() const override { return 3; }
    void componentColour(Colour& out, std::int32_t component) const override;
    void componentName(std::string& out, std::int32_t component) const override;
};

}  // namespace chalkpane
