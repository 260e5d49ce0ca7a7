#pragma once

#include "chalkpane/parameters/parameter_list.h"

namespace chalkpane {

// The base of everything that has declared parameters: brushes, sources, filters, pasters, the eraser, the transformer.
// The first virtual operation is the setter and there is no virtual destructor: the classes that are destroyed through
// a base bring their own, at their own place in the table.
class ParameterisedObject {
public:
    // Reads the value into the working field that its declaration's code names; an unknown code does nothing.
    virtual void setParameter(ParameterValue* value) = 0;
    // Called by an owner when it has finished setting values.
    virtual void valuesChanged() {}

    const ParameterList& getParameters() const { return *parameters; }

protected:
    explicit ParameterisedObject(const ParameterList* classList) : parameters(classList) {}
    ParameterisedObject() = default;
    ParameterisedObject(const ParameterisedObject&) = default;
    ParameterisedObject& operator=(const ParameterisedObject&) = default;
    ~ParameterisedObject() = default;

    const ParameterList* parameters = nullptr;  // not owned; belongs to the class and outlives every object
};

}  // namespace chalkpane
