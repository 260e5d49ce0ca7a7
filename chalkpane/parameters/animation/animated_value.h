#pragma once

#include <cstdint>
#include <vector>

#include "chalkpane/parameters/animation/key.h"
#include "chalkpane/parameters/parameter_value.h"

namespace chalkpane {

// Where a frame lies among the keys: exactly on the key `index` (or beyond the ends, which hold their key's value),
// between `index` and the next, or nowhere, when there are no keys.
struct KeySpan {
    bool exact = false;
    bool between = false;
    std::int32_t index = 0;
};

// A value that depends on time: an ordered list of keys and a curve between them. The curve is computed on whole
// frames, which an AnimationClock makes of the stored times; a plain set adds a key at the clock's current frame and a
// plain get evaluates there. Without keys the parent answers.
//
// Owns its keys. `isSet` rises with the first key and falls with `clearValue` alone.
class AnimatedValue : public ParameterValue {
public:
    ~AnimatedValue() override;
    void reset() override;

    bool isAnimated() const override;
    std::int32_t keyCount() const override;
    Key* keyAt(std::int32_t index) const override;
    void clearKeys() override;
    void retimeKeys(const AnimationClock& oldClock) override;
    // To be called after the time of the key at `index` has changed: puts it where its time belongs, a tie to the left.
    // Returns its new place.
    std::int32_t resortKey(std::int32_t index) override;
    // Disposes of the keys beside `index` that stand on its frame. Returns the place of the kept key.
    std::int32_t removeCoincidentKeys(std::int32_t index) override;

    void appendText(std::string& out) const override;
    void writeToStream(TextSink& sink) const override;
    bool readText(TextScanner& scanner) override;

    bool getCurveLocked() const override;
    void setCurveLocked(bool locked) override;
    std::int32_t getCurveRange() const override;
    void setCurveRange(std::int32_t range) override;
    void setCurveScale(float scale) override;
    double getCurveScale() const override;
    bool isEditable() const override;
    void clearValue() override;
    bool isDiscrete() const override;

    // Slots 63 to 83. Each class answers those of its own type; the others do nothing. An added key takes the place of
    // those on its frame and inherits the handles of the first of them.
    virtual void addKeyDoubleXY(std::int32_t frame, double x, double y);
    virtual void addKeyIntegerXY(std::int32_t frame, std::int32_t x, std::int32_t y);
    virtual void addKeyColour(std::int32_t frame, const Colour& colour);
    virtual void addKeyBoolean(std::int32_t frame, bool boolean);
    virtual void addKeyDouble(std::int32_t frame, double number);
    virtual void valueAtFrameDoubleXY(std::int32_t frame, double& outX, double& outY) const;
    virtual void valueAtFrameIntegerXY(std::int32_t frame, std::int32_t& outX, std::int32_t& outY) const;
    virtual void valueAtFrameColour(std::int32_t frame, Colour& out) const;
    virtual void valueAtFrameBoolean(std::int32_t frame, bool& out) const;
    virtual void valueAtFrameDouble(std::int32_t frame, double& out) const;
    virtual void valueAtFrameInteger(std::int32_t frame, std::int32_t& out) const;
    virtual void appendKeyText(std::string& out, std::int32_t index) const;
    virtual void writeKeyToStream(TextSink& sink, std::int32_t index) const;
    // Reads one key and appends it. False when none was read; `outEnded` then tells that the list had come to its
    // normal end.
    virtual bool readKey(TextScanner& scanner, bool& outEnded);
    // With those directly behind it on the same frame.
    virtual void removeKey(std::int32_t index);
    // A key of what the curve is at that frame.
    virtual void addKeyAtFrame(std::int32_t frame);
    // A value of the same class, declaration, clock and undo mode, without keys.
    virtual ValuePointer clone() const;
    // Replaces the keys by copies of those of `other`, which must be of the same class; any other is ignored.
    virtual void copyKeysFrom(const AnimatedValue& other);
    virtual void appendValueText(std::string& out, const Key& key) const;
    virtual void writeValueToStream(TextSink& sink, const Key& key) const;
    // Reads the value of one key and appends the key.
    virtual bool readKeyValue(TextScanner& scanner, double time, double inHandle, double outHandle);

    KeySpan findKeySpan(std::int32_t frame) const;

    // The cubic that all curves share, at frame `at` between the whole frames t0 and t1.
    //   a, va, sa   out handle, value and slope (per frame) of the left key
    //   b, vb, sb   in handle, value and slope of the right key
    double evaluateKeySegment(double t0, double t1, double at, double a, double va, double sa, double b, double vb,
                              double sb) const;
    // Not 0: curves answer a far-off number in place of their course.
    void setCurveDisabled(std::int32_t disabled) { curveDisabled = disabled; }

protected:
    // `givenClock` is not owned; null is a clock that stands at frame 0, one frame to a unit of time.
    AnimatedValue(const ParameterDef* definition, bool recordsUndo, const AnimationClock* givenClock);

    std::int32_t currentFrame() const { return clock->currentFrame(); }
    std::int32_t frameOf(std::int32_t index) const;
    bool isIndex(std::int32_t index) const { return index >= 0 && index < keyCount(); }
    // Frames from one key to another.
    double framesBetween(std::int32_t from, std::int32_t to) const;
    // The first key on that frame, or null.
    Key* keyOnFrame(std::int32_t frame) const;
    // Takes the key, at that frame, and raises `isSet`.
    void insertKey(std::int32_t frame, Key* key);
    // Takes the key at its own time, behind all others.
    void appendKey(Key* key);
    // Disposes of the key at `index` and puts `key` there, with its time and handles.
    void replaceKey(std::int32_t index, Key* key);
    // To be called before each change of the list.
    void recordKeys();
    double normaliseComponent(double number) const;
    double denormaliseComponent(double number) const;

    std::vector<Key*> keys;  // owned; ascending frames
    const AnimationClock* clock;
    bool undoable;

private:
    friend class UndoAnimatedValueData;

    void disposeRange(std::size_t first, std::size_t end);

    bool curveLocked = false;
    std::int32_t curveRange = 120;
    float curveScale = 1.0f;
    std::int32_t curveDisabled = 0;
};

// The record of a change of a key list. Keeps the lists, not the keys: those live in the value, or in the records of
// their disposal.
class UndoAnimatedValueData final : public UndoData {
public:
    explicit UndoAnimatedValueData(AnimatedValue& changedValue) : target(changedValue), oldKeys(target.keys) {}
    void undo() override {
        newKeys = target.keys;
        target.keys = oldKeys;
    }
    void redo() override { target.keys = newKeys; }

private:
    AnimatedValue& target;  // not owned
    std::vector<Key*> oldKeys;
    std::vector<Key*> newKeys;
};

}  // namespace chalkpane
