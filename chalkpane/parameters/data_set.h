#pragma once

#include <cstddef>
#include <vector>

#include "chalkpane/parameters/animation/animation_clock.h"
#include "chalkpane/parameters/parameter_def.h"

namespace chalkpane {

// The values of one object, owned, in the order in which their parameters were declared; and the factory that chooses
// the class of a value. Values are found by the `id` of their declaration, never by name or address.
class DataSet {
public:
    DataSet() = default;
    DataSet(const DataSet&) = delete;
    DataSet& operator=(const DataSet&) = delete;

    // Destroys the values in list order.
    virtual ~DataSet();
    // True when there was a value to destroy.
    virtual bool removeValue(const ParameterDef* definition);
    // Behind those of the same parameter. A value without a declaration has no place here and is destroyed.
    virtual void addValue(ValuePointer value);
    // Puts the value in the place of the one with the same declaration and returns the displaced one, not destroyed.
    // What finds no place comes back itself.
    virtual ValuePointer replaceValue(ValuePointer value);

    // A new value of the class that fits the type, animated or plain; null where there is none. `clock` is not owned
    // and is needed by animated values alone. Layers (ParameterType::layer) need their provider and are made by their
    // owner.
    static ValuePointer createValue(const ParameterDef* definition, bool animated, const AnimationClock* clock);
    // Creates and adds. Null where the type has no class.
    ParameterValue* addParameter(const ParameterDef* definition, bool animated, const AnimationClock* clock);
    ParameterValue* findValue(const ParameterDef* definition) const;

    std::size_t size() const { return values.size(); }
    auto begin() const { return values.begin(); }  // of ValuePointer
    auto end() const { return values.end(); }

private:
    std::size_t indexOf(const ParameterDef* definition) const;  // size() when there is none

    std::vector<ValuePointer> values;  // ascending id; none without a declaration
};

}  // namespace chalkpane
