#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>

#include "chalkpane/parameters/colour.h"

namespace chalkpane {

class AnimationClock;
class ColourSpline;
class Font;
class Key;
class ShapePointList;
class TextScanner;
class TextSink;
struct ParameterDef;
struct Rect;

// Anything that a value or a layer may own without knowing what it is.
class Attachment {
public:
    virtual ~Attachment() = default;
};

// The root of all values: what one object holds for one declared parameter. A value either holds a setting of its own
// or inherits: from an explicit parent, or else from the default of its declaration.
//
// Values are not clamped and not locked; they belong to their owner's thread. An accessor of another family than the
// value's own does nothing: a setter is ignored and a getter leaves its output as it was, so initialise the output.
// A value is destroyed by `destroy()`; `ValuePointer` does so.
class ParameterValue {
public:
    ParameterValue(const ParameterValue&) = delete;
    ParameterValue& operator=(const ParameterValue&) = delete;

    // Slots 1 and 2. The destructor frees the attachment.
    virtual ~ParameterValue();
    virtual void destroy();

    // The declaration; null for limits, defaults and other free-standing values.
    virtual const ParameterDef* getParameter() const;
    // Not owned; null means the default of the declaration. A chain of parents must end.
    virtual void setParent(ParameterValue* newParent);
    virtual ParameterValue* getParent() const;
    // Back to the inherited value, or to zero where nothing is inherited. Records undo.
    virtual void reset();
    virtual bool isSetLocally() const;
    virtual void clearSet();

    virtual void setGraph(const ShapePointList& graph);
    virtual void setString(const std::string& string);
    virtual void setRect(const Rect& rect);
    virtual void setFont(Font* font);
    virtual void setDoubleXY(double x, double y);
    virtual void setIntegerXY(std::int32_t x, std::int32_t y);
    virtual void setColourSpline(const ColourSpline& spline);
    virtual void setColour(const Colour& colour);
    virtual void setBoolean(bool boolean);
    virtual void setFloat(float number);
    virtual void setDouble(double number);
    virtual void setInteger(std::int32_t number);
    virtual void setEnumeration(std::uint8_t index);

    virtual void getGraph(ShapePointList& out) const;
    virtual void getString(std::string& out) const;
    virtual void getRect(Rect& out) const;
    virtual void getFont(Font*& out) const;
    virtual void getDoubleXY(double& outX, double& outY) const;
    virtual void getIntegerXY(std::int32_t& outX, std::int32_t& outY) const;
    virtual void getColourSpline(ColourSpline& out) const;
    virtual void getColour(Colour& out) const;
    virtual void getBoolean(bool& out) const;
    virtual void getFloat(float& out) const;
    virtual void getDouble(double& out) const;
    virtual void getInteger(std::int32_t& out) const;
    virtual void getEnumeration(std::uint8_t& out) const;
    virtual void getStoredDouble(double& out) const;

    // Keys; a plain value has none. Indices outside 0 .. keyCount() - 1 are answered by null or ignored.
    virtual bool isAnimated() const;
    virtual std::int32_t keyCount() const;
    virtual Key* keyAt(std::int32_t index) const;
    virtual void clearKeys();
    virtual void retimeKeys(const AnimationClock& oldClock);
    virtual std::int32_t resortKey(std::int32_t index);
    virtual std::int32_t removeCoincidentKeys(std::int32_t index);

    // The text form. `readText`: true when the whole value was read; on false the value keeps what was stored so far.
    virtual void appendText(std::string& out) const;
    virtual void writeToStream(TextSink& sink) const;
    virtual bool readText(TextScanner& scanner);

    virtual void markChanged();
    virtual bool isChanged() const;

    // For a curve editor; they carry meaning on animated values alone.
    virtual bool getCurveLocked() const;
    virtual void setCurveLocked(bool locked);
    virtual std::int32_t getCurveRange() const;
    virtual void setCurveRange(std::int32_t range);
    virtual void setCurveScale(float scale);
    virtual double getCurveScale() const;
    virtual bool isEditable() const;
    virtual void clearValue();
    virtual std::int32_t componentCount() const;
    virtual void componentColour(Colour& out, std::int32_t component) const;
    virtual void componentName(std::string& out, std::int32_t component) const;
    virtual double normalisedValue(std::int32_t component) const;
    virtual double normalisedKeyValue(std::int32_t index, std::int32_t component) const;
    virtual void setNormalisedKeyValue(std::int32_t index, double value, std::int32_t component);
    virtual bool isDiscrete() const;

    // Whether a control that shows the value is offered or greyed out; the owner's to switch.
    bool isEnabled() const { return enabled; }
    void setEnabled(bool newEnabled) { enabled = newEnabled; }
    // Owned from here on and destroyed with the value.
    void attach(std::unique_ptr<Attachment> newAttachment) { attachment = std::move(newAttachment); }

protected:
    explicit ParameterValue(const ParameterDef* definition) : parameter(definition) {}

    // The value that this one answers with: its parent while it holds no setting of its own, else null.
    const ParameterValue* inheritedFrom() const { return isSet ? nullptr : getParent(); }

    const ParameterDef* parameter;  // not owned; outlives every value
    ParameterValue* parent = nullptr;
    bool isSet = false;
    bool changed = false;  // nothing lowers it
    bool enabled = true;
    std::unique_ptr<Attachment> attachment;
};

struct DestroyValue {
    void operator()(ParameterValue* value) const { value->destroy(); }
};
using ValuePointer = std::unique_ptr<ParameterValue, DestroyValue>;

template <typename Value, typename... Arguments>
ValuePointer makeValue(Arguments&&... arguments) {
    return ValuePointer(new Value(std::forward<Arguments>(arguments)...));
}

}  // namespace chalkpane
