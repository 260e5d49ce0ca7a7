#pragma once

#include <cstdint>
#include <typeinfo>

#include "chalkpane/parameters/animation/animated_value.h"
#include "chalkpane/parameters/animation/key_components.h"
#include "chalkpane/parameters/text/value_text.h"

namespace chalkpane {

// What the animated classes share whose keys hold a `Content`: adding, evaluating, copying, and the text of the keys.
template <typename Content>
class AnimatedTyped : public AnimatedValue {
public:
    using Pair = KeyValuePair<Content>;

    // Copies of the keys with their handles; of another class: ignored.
    void copyKeysFrom(const AnimatedValue& other) override {
        if (this == &other || typeid(*this) != typeid(other)) return;
        const auto& source = static_cast<const AnimatedTyped&>(other);
        clearKeys();
        for (std::int32_t i = 0; i < source.keyCount(); ++i) {
            const Key& key = *source.keyAt(i);
            appendPair(source.storedAt(i), key.time, key.inHandle, key.outHandle);
        }
    }
    void addKeyAtFrame(std::int32_t frame) override {
        Content value{};
        evaluate(frame, value);
        addKey(frame, value);
    }

    void appendValueText(std::string& target, const Key& key) const override {
        TextOut out(target);
        writeKeyContent(out, toPlain(static_cast<const Pair&>(key).value));
    }
    void writeValueToStream(TextSink& target, const Key& key) const override {
        TextOut out(target);
        writeKeyContent(out, toPlain(static_cast<const Pair&>(key).value));
    }
    bool readKeyValue(TextScanner& scanner, double time, double inHandle, double outHandle) override {
        Content plain{};
        if (!readKeyContent(scanner, plain)) return false;
        appendPair(toStored(plain), time, inHandle, outHandle);
        return true;
    }

    // The value at a frame. Without keys the parent answers by the typed getter of this class's type, or zero where
    // there is no parent.
    virtual void evaluate(std::int32_t frame, Content& out) const = 0;
    // The value of a key is kept as `toStored` of it and answered as `toPlain`; the same but for logarithms.
    virtual Content toStored(const Content& plain) const { return plain; }
    virtual Content toPlain(const Content& stored) const { return stored; }
    virtual void addKey(std::int32_t frame, const Content& value) { insertKey(frame, makePair(toStored(value))); }

    Content keyValue(std::int32_t index) const { return toPlain(storedAt(index)); }

protected:
    using AnimatedValue::AnimatedValue;

    Pair& pairAt(std::int32_t index) const { return static_cast<Pair&>(*keyAt(index)); }
    const Content& storedAt(std::int32_t index) const { return pairAt(index).value; }
    Pair* makePair(const Content& stored) const { return new Pair(stored, undoable); }
    void appendPair(const Content& stored, double time, double inHandle, double outHandle) {
        Pair* key = makePair(stored);
        key->time = time;
        key->inHandle = inHandle;
        key->outHandle = outHandle;
        appendKey(key);
    }
};

// The parent's answer in the type of an animated class.
inline void askFor(const ParameterValue& any, double& out) { any.getDouble(out); }
inline void askFor(const ParameterValue& any, float& out) { any.getFloat(out); }
inline void askFor(const ParameterValue& any, std::int32_t& out) { any.getInteger(out); }
inline void askFor(const ParameterValue& any, bool& out) { any.getBoolean(out); }
inline void askFor(const ParameterValue& any, Colour& out) { any.getColour(out); }
inline void askFor(const ParameterValue& any, IntegerPair& out) { any.getIntegerXY(out.x, out.y); }
inline void askFor(const ParameterValue& any, DoublePair& out) { any.getDoubleXY(out.x, out.y); }
inline void askFor(const ParameterValue& any, PathPoint& out) { any.getDoubleXY(out.point.x, out.point.y); }

// A value made of numbers, which a curve editor can show in the range of the declaration over the curve scale.
template <typename Content>
class AnimatedComponents : public AnimatedTyped<Content> {
public:
    double normalisedValue(std::int32_t component) const override {
        Content value{};
        this->evaluate(this->currentFrame(), value);
        return this->normaliseComponent(getComponent(value, component));
    }
    double normalisedKeyValue(std::int32_t index, std::int32_t component) const override {
        if (!this->isIndex(index)) return 0.0;
        return this->normaliseComponent(getComponent(this->keyValue(index), component));
    }
    // Puts a new key in the place of the old one, so that the change can be undone.
    void setNormalisedKeyValue(std::int32_t index, double number, std::int32_t component) override {
        if (!this->isIndex(index)) return;
        Content value = this->keyValue(index);
        setComponent(value, component, this->denormaliseComponent(number));
        this->replaceKey(index, this->makePair(this->toStored(value)));
    }

protected:
    using AnimatedTyped<Content>::AnimatedTyped;

    void askParent(Content& out) const {
        if (const ParameterValue* above = this->getParent()) {
            askFor(*above, out);
        } else {
            out = Content{};
        }
    }
};

// A value whose components each run on a curve of their own.
template <typename Content>
class AnimatedNumbers : public AnimatedComponents<Content> {
public:
    void evaluate(std::int32_t frame, Content& out) const override {
        const KeySpan span = this->findKeySpan(frame);
        if (span.exact) {
            out = this->keyValue(span.index);
        } else if (span.between) {
            Content stored{};
            for (std::int32_t c = 0; c < componentsOf<Content>(); ++c)
                setComponent(stored, c, evaluateComponent(span.index, frame, c));
            out = this->toPlain(stored);
        } else {
            this->askParent(out);
        }
    }

protected:
    using AnimatedComponents<Content>::AnimatedComponents;

    // Between the keys `index` and `index + 1`, before it is narrowed to its type.
    double evaluateComponent(std::int32_t index, std::int32_t frame, std::int32_t component) const {
        const auto number = [&](std::int32_t key) { return getComponent(this->storedAt(key), component); };
        const std::int32_t before = index == 0 ? index : index - 1;
        const std::int32_t after = index + 2 < this->keyCount() ? index + 2 : index + 1;
        const double sa = (number(index + 1) - number(before)) / this->framesBetween(before, index + 1);
        const double sb = (number(after) - number(index)) / this->framesBetween(index, after);
        return this->evaluateKeySegment(this->frameOf(index), this->frameOf(index + 1), frame,
                                        this->keyAt(index)->outHandle, number(index), sa,
                                        this->keyAt(index + 1)->inHandle, number(index + 1), sb);
    }
};

}  // namespace chalkpane
