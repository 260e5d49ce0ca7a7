#pragma once

#include "chalkpane/parameters/parameter_def.h"
#include "chalkpane/parameters/text/value_text.h"
#include "chalkpane/parameters/undo_data.h"

namespace chalkpane {

// The record of a change to one plain value.
template <typename Value>
class UndoTypedValue final : public UndoData {
public:
    // `old` is what the value answers, which may be its parent's answer.
    explicit UndoTypedValue(Value& changedValue) : target(changedValue), oldIsSet(target.isSetLocally()) {
        Value::ask(target, oldValue);
    }
    void undo() override {
        Value::ask(target, newValue);
        newIsSet = target.isSetLocally();
        target.store(oldValue, oldIsSet);
    }
    void redo() override { target.store(newValue, newIsSet); }

private:
    Value& target;  // not owned
    typename Value::Stored oldValue{};
    bool oldIsSet;
    typename Value::Stored newValue{};
    bool newIsSet = false;
};

// What all plain values share: the stored field and the rules of reading, setting, resetting and construction.
// `Value` gives `static void ask(const ParameterValue&, Content& out)`, which reads any value through the typed getter
// of its own family.
template <typename Value, typename Content>
class TypedValue : public ParameterValue {
public:
    using Stored = Content;

    // Past every rule: no record, no comparison.
    void store(const Content& newValue, bool newIsSet) {
        value = newValue;
        isSet = newIsSet;
    }

    // What this value itself holds, whether it inherits or not.
    const Content& stored() const { return value; }

    // Takes the parent's value, or zero, through the setter, which records undo and finds the two equal.
    void reset() override {
        Content inherited{};
        if (const ParameterValue* above = getParent()) Value::ask(*above, inherited);
        set(inherited);
    }

    // The word for whether the value is set, then what it holds.
    void writeTo(TextOut& out) const {
        out << " " << isSet;
        writeValue(out);
    }
    void appendText(std::string& target) const override {
        TextOut out(target);
        writeTo(out);
    }
    void writeToStream(TextSink& target) const override {
        TextOut out(target);
        writeTo(out);
    }
    // Stores as it reads, without a record; what was read before a failure stays.
    bool readText(TextScanner& scanner) override { return scanner.readBoolean(isSet) && readValue(scanner); }

protected:
    virtual void writeValue(TextOut& out) const { writeContent(out, value); }
    virtual bool readValue(TextScanner& scanner) { return readContent(scanner, value); }

    explicit TypedValue(const ParameterDef* definition) : ParameterValue(definition) {
        if (definition != nullptr && definition->defaultValue) Value::ask(*definition->defaultValue, value);
    }
    explicit TypedValue(const Content& literal) : ParameterValue(nullptr), value(literal) {}

    // The parent that a setter compares with; a class that shadows this may not take just any.
    const ParameterValue* comparable() const { return getParent(); }

    Value& self() { return static_cast<Value&>(*this); }

    // A value set to exactly what it would inherit goes back to inheriting, unless the declaration forbids it.
    void set(const Content& newValue) {
        recordUndo<UndoTypedValue<Value>>(self());
        bool differs = true;
        const ParameterValue* above = self().comparable();
        if (above != nullptr && (parameter == nullptr || parameter->inherits)) {
            Content inherited{};
            Value::ask(*above, inherited);
            differs = !(newValue == inherited);
        }
        store(newValue, differs);
    }

    Content value{};
};

}  // namespace chalkpane
