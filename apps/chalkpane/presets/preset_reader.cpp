#include <string>
#include <utility>
#include <vector>

#include "apps/chalkpane/filtering/filter_texts.h"
#include "apps/chalkpane/presets/preset.h"
#include "apps/chalkpane/presets/preset_check.h"
#include "apps/chalkpane/presets/preset_choices.h"
#include "apps/chalkpane/presets/preset_range.h"
#include "apps/chalkpane/presets/preset_values.h"
#include "apps/chalkpane/strokes/brush_limits.h"
#include "apps/chalkpane/values/value_parsing.h"
#include "chalkpane/brush/basic_brush.h"
#include "chalkpane/filters/filter_registry.h"
#include "chalkpane/parameters/animation/animated_value.h"
#include "chalkpane/parameters/scalar_values.h"
#include "chalkpane/parameters/text/text_scanner.h"
#include "cli/error.h"
#include "cli/file_bytes.h"
#include "cli/nearest_name.h"

namespace chalkpane::app {
namespace {

using cli::Error;
using cli::NearestHint;
using cli::Quoted;

class Reader {
public:
    Reader(const std::string& text, std::string shownName, const std::filesystem::path& folder,
           const AnimationClock& clock)
        : m_scanner(text), m_shownName(std::move(shownName)), m_folder(folder), m_clock(clock) {}

    Preset Read() {
        Preset preset;
        preset.kind = ReadKind();
        preset.name = ReadName("the name of the " + std::string(WordOf(preset.kind)));
        if (preset.kind == PresetKind::Filter) {
            preset.filters.push_back(ReadFilter(preset.name));
            preset.name = preset.filters.front()->Name();
        } else {
            ReadObject(preset);
        }
        if (!m_scanner.isAtEnd()) Fail("the preset has ended, but more follows; several filters go into a chain");
        return preset;
    }

private:
    // Where a parameter was given, and where it can be.
    struct Slot {
        DataSet* values = nullptr;
        const ParameterDef* definition = nullptr;
        const Filter* filter = nullptr;  // whose parameter it is; null: a brush's
        std::int32_t givenInLine = 0;    // 0: not yet
    };
    struct Object {
        std::string description;  // for messages: filter "Halftone"
        std::vector<Slot> slots;
    };

    [[noreturn]] void FailIn(std::int32_t line, const std::string& reason) const {
        throw Error(m_shownName + ':' + std::to_string(line) + ": " + reason);
    }
    [[noreturn]] void Fail(const std::string& reason) const { FailIn(m_scanner.getLineNumber(), reason); }

    PresetKind ReadKind() {
        for (const PresetKind kind : {PresetKind::Filter, PresetKind::Chain, PresetKind::Brush})
            if (m_scanner.expectIdentifier(WordOf(kind))) return kind;
        Fail("a preset begins with the word filter, chain or brush and a name in quotes");
    }

    std::string ReadName(const std::string& what) {
        std::string name;
        if (!m_scanner.readString(name)) Fail("expected " + what + " in quotes");
        return name;
    }

    void Expect(char mark, const std::string& place) {
        if (!m_scanner.expectPunctuation(mark)) Fail(std::string("expected \"") + mark + "\" " + place);
    }

    static void AddSlots(Object& object, DataSet& values, const Filter* filter) {
        for (const ValuePointer& value : values) object.slots.push_back({&values, value->getParameter(), filter, 0});
    }

    // By its class's name, as it is written, or by its label.
    std::unique_ptr<Filter> ReadFilter(const std::string& name) {
        std::unique_ptr<Filter> filter = NewFilter(name);
        filter->m_active = !m_scanner.expectIdentifier("inactive");
        Object object{"filter " + Quoted(filter->Name()), {}};
        AddSlots(object, *filter->m_values, filter.get());
        ReadBody(object, nullptr);
        return filter;
    }

    [[nodiscard]] std::unique_ptr<Filter> NewFilter(const std::string& name) const {
        std::vector<std::string> names;
        for (const Filter* prototype : FilterRegistry::Instance().Filters()) {
            if (SameName(prototype->Name(), name) || SameName(prototype->Label(), name)) return MakeFilter(*prototype);
            names.emplace_back(prototype->Name());
            if (prototype->Label() != prototype->Name()) names.emplace_back(prototype->Label());
        }
        Fail("there is no filter " + Quoted(name) + NearestHint(name, names, "chalkpane filters"));
    }

    void ReadObject(Preset& preset) {
        Object object{std::string(WordOf(preset.kind)) + ' ' + Quoted(preset.name), {}};
        if (preset.kind == PresetKind::Brush) {
            preset.brush = std::make_unique<BrushSettings>();
            for (DataSet* values : {&preset.brush->brush, &preset.brush->source, &preset.brush->paint})
                AddSlots(object, *values, nullptr);
            preset.brush->brush.findValue(BasicBrush::ClassParameters().find(BrushParameter::Name))
                ->setString(preset.name);
        }
        ReadBody(object, &preset.filters);
    }

    // What stands between the braces. filters: of the chain, to be added to; null where none can stand
    void ReadBody(Object& object, std::vector<std::unique_ptr<Filter>>* filters) {
        Expect('{', "behind the name of " + object.description);
        while (!m_scanner.expectPunctuation('}')) {
            std::string name;
            if (filters != nullptr && m_scanner.expectIdentifier(WordOf(PresetKind::Filter))) {
                name = ReadName("the name of the filter");
                filters->push_back(ReadFilter(name));
            } else if (m_scanner.readString(name)) {
                ReadParameter(object, name);
            } else {
                Fail("expected the name of a parameter in quotes" +
                     std::string(filters != nullptr ? ", a filter" : "") + " or the \"}\" of " + object.description);
            }
        }
    }

    void ReadParameter(Object& object, const std::string& name) {
        Slot& slot = FindSlot(object, name);
        if (slot.givenInLine != 0)
            Fail(Quoted(slot.definition->name) + " is given twice, first in line " + std::to_string(slot.givenInLine));
        slot.givenInLine = m_scanner.getLineNumber();
        ValuePointer value = m_scanner.expectIdentifier("keys") ? ReadKeys(slot) : ReadPlain(slot);
        CheckContent(*value, slot);
        MakeNamesAbsolute(*value, m_folder);
        slot.values->replaceValue(std::move(value));
    }

    void CheckContent(const ParameterValue& value, const Slot& slot) const {
        const std::string name = Quoted(slot.definition->name);
        if (!IsFinite(value)) FailIn(slot.givenInLine, name + " has a number that is too large");
        if (const auto fault = RangeFault(value)) FailIn(slot.givenInLine, name + ": " + *fault);
        if (slot.filter != nullptr) return;
        try {
            CheckBrushValue(value);
        } catch (const Error& error) {
            FailIn(slot.givenInLine, name + ": " + error.what());
        }
    }

    // By its unique name, or by its label, without regard to case.
    [[nodiscard]] Slot& FindSlot(Object& object, const std::string& name) const {
        Slot* byLabel = nullptr;
        std::vector<std::string> names;
        for (Slot& slot : object.slots) {
            if (SameName(slot.definition->name, name)) return slot;
            if (SameName(slot.definition->label, name)) byLabel = &slot;
            names.push_back(slot.definition->name);
        }
        if (byLabel != nullptr) return *byLabel;
        Fail(object.description + " has no parameter " + Quoted(name) + NearestHint(name, names));
    }

    ValuePointer ReadPlain(const Slot& slot) {
        const ParameterDef& definition = *slot.definition;
        ValuePointer value = DataSet::createValue(&definition, false, nullptr);
        if (!value) Fail(Quoted(definition.name) + " can only have keys");
        const bool isBraced = m_scanner.expectPunctuation('{');
        auto* const choice = dynamic_cast<EnumerationValue*>(value.get());
        if (!(choice != nullptr ? ReadChoice(*choice, slot) : value->readText(m_scanner)))
            Fail(Quoted(definition.name) + " wants " + FormOfValue(definition.type));
        if (isBraced) Expect('}', "behind the value of " + Quoted(definition.name));
        return value;
    }

    bool ReadChoice(EnumerationValue& value, const Slot& slot) {
        bool isSet = false;
        std::int32_t index = 0;
        if (!m_scanner.readBoolean(isSet) || !m_scanner.readInteger(index)) return false;
        const auto choices = ChoicesOf(*slot.definition, slot.filter);
        const std::int32_t count = choices.empty() ? 256 : static_cast<std::int32_t>(choices.size());
        if (index < 0 || index >= count)
            Fail(Quoted(slot.definition->name) + " has the choices 0 to " + std::to_string(count - 1) + ", and no " +
                 std::to_string(index));
        value.store(static_cast<std::uint8_t>(index), isSet);
        return true;
    }

    ValuePointer ReadKeys(const Slot& slot) {
        const ParameterDef& definition = *slot.definition;
        ValuePointer made = DataSet::createValue(&definition, true, &m_clock);
        auto* const value = dynamic_cast<AnimatedValue*>(made.get());
        if (value == nullptr) Fail(Quoted(definition.name) + " cannot have keys");
        Expect('{', "behind the word keys of " + Quoted(definition.name));
        bool ended = false;
        while (value->readKey(m_scanner, ended)) CheckOrder(*value, definition.name);
        if (!ended) Fail(Quoted(definition.name) + " wants " + FormOfKey(definition.type));
        Expect('}', "or a further key of " + Quoted(definition.name));
        return made;
    }

    // Curves are looked up from the left, so keys stand by time; several on one frame are a jump.
    void CheckOrder(const AnimatedValue& value, const std::string& name) const {
        const std::int32_t last = value.keyCount() - 1;
        if (last > 0 && !(value.keyAt(last - 1)->time <= value.keyAt(last)->time))
            Fail("a key of " + Quoted(name) + " stands behind one of a later time");
    }

    TextScanner m_scanner;
    std::string m_shownName;
    const std::filesystem::path& m_folder;
    const AnimationClock& m_clock;
};

}  // namespace

Preset ReadPresetText(const std::string& text, const std::string& shownName, const std::filesystem::path& folder,
                      const AnimationClock& clock) {
    if (const auto flaw = FindFlaw(text))
        throw Error(shownName + ':' + std::to_string(flaw->line) + ": " + flaw->reason);
    return Reader(text, shownName, folder, clock).Read();
}

Preset ReadPreset(const std::filesystem::path& file, const AnimationClock& clock) {
    const auto bytes = cli::ReadFileBytes(file);
    return ReadPresetText({bytes.begin(), bytes.end()}, file.string(),
                          std::filesystem::absolute(file).lexically_normal().parent_path(), clock);
}

}  // namespace chalkpane::app
