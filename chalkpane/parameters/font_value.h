#pragma once

#include <string>

#include "chalkpane/parameters/typed_value.h"

namespace chalkpane {

// A face to write with. The engine only declares it; a host that offers fonts derives its own.
class Font {
public:
    virtual ~Font() = default;
    virtual void getDescription(bool& outBold, bool& outItalic, std::string& outName) const = 0;
};

// The font service: the face of that name and style, not owned. There is no service here, so the answer is null.
Font* findFont(const std::string& name, bool bold, bool italic);

// A font, which the value does not own.
class FontValue final : public TypedValue<FontValue, Font*> {
public:
    explicit FontValue(const ParameterDef* definition) : TypedValue(definition) {}
    explicit FontValue(Font* literal) : TypedValue(literal) {}
    static void ask(const ParameterValue& any, Font*& out) { any.getFont(out); }

    void setFont(Font* font) override { set(font); }
    void getFont(Font*& out) const override;
};

using UndoFontValue = UndoTypedValue<FontValue>;

}  // namespace chalkpane
