#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "chalkpane/parameters/file_name.h"
#include "chalkpane/parameters/typed_value.h"

namespace chalkpane {

class StringValue : public TypedValue<StringValue, std::string> {
public:
    explicit StringValue(const ParameterDef* definition) : TypedValue(definition) {}
    explicit StringValue(const std::string& literal) : TypedValue(literal) {}
    static void ask(const ParameterValue& any, std::string& out) { any.getString(out); }

    void setString(const std::string& string) override { set(string); }
    void getString(std::string& out) const override;
};

// A path: relative to the library's base directory in its text form, made absolute on reading.
class PathValue final : public StringValue {
public:
    using StringValue::StringValue;

protected:
    void writeValue(TextOut& out) const override;
    bool readValue(TextScanner& scanner) override;
};

// Gives the layers their names; supplied by the owner of the layers.
class LayerProvider {
public:
    virtual ~LayerProvider() = default;
    virtual std::uint8_t indexOfName(const std::string& name) const = 0;
    virtual void nameOfIndex(std::string& out, std::uint8_t index) const = 0;
};

// The name of a layer, which can also be read and written as an index.
class LayerValue final : public StringValue {
public:
    // `provider` is not owned and may be null.
    LayerValue(const ParameterDef* definition, const LayerProvider* provider)
        : StringValue(definition), layers(provider) {}
    LayerValue(const std::string& literal, const LayerProvider* provider) : StringValue(literal), layers(provider) {}

    // Without a provider the name becomes empty.
    void setEnumeration(std::uint8_t index) override;
    // 0 while a layer is pending, or without a provider.
    void getEnumeration(std::uint8_t& out) const override;

    // A layer that is still to come; dropped by the next setEnumeration.
    void setPendingLayer(std::unique_ptr<Attachment> layer) { pendingLayer = std::move(layer); }

private:
    const LayerProvider* layers;
    std::unique_ptr<Attachment> pendingLayer;
};

// The name of a file. It answers no typed accessor: the name travels by `setFileName` and `getFileName`.
class FileNameValue final : public TypedValue<FileNameValue, FileName> {
public:
    explicit FileNameValue(const ParameterDef* definition) : TypedValue(definition) {}
    explicit FileNameValue(const FileName& literal) : TypedValue(literal) {}
    // A value of any other class has no name to give and counts as absent.
    static void ask(const ParameterValue& any, FileName& out);

    void setFileName(const FileName& name) { set(name); }
    void getFileName(FileName& out) const;

    // Whether the text form gives the name relative to the base directory.
    bool isRelative() const { return relative; }
    void setRelative(bool newRelative) { relative = newRelative; }

protected:
    void writeValue(TextOut& out) const override;
    bool readValue(TextScanner& scanner) override;

private:
    friend class TypedValue<FileNameValue, FileName>;
    // A parent of another class counts as none, so that even an empty name then counts as set.
    const ParameterValue* comparable() const { return dynamic_cast<const FileNameValue*>(getParent()); }

    bool relative = false;
};

using UndoStringValue = UndoTypedValue<StringValue>;
using UndoFileNameValue = UndoTypedValue<FileNameValue>;

}  // namespace chalkpane
