#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "chalkpane/parameters/colour.h"
#include "chalkpane/parameters/parameter_def.h"

namespace chalkpane::app {

// A value for one parameter, as a text that has been found to fit it. Files are named from the current folder.
struct Setting {
    const ParameterDef* parameter = nullptr;  // of a class, never freed
    std::string text;
    std::string place;  // "strokes.json: /brushes/soft/File", for messages about what the text names
};

// One filter of a brush's chain.
struct FilterDescription {
    std::string label;  // of a filter that there is
    std::vector<Setting> settings;
    bool isActive = true;
};

// The picture that sources of an image read.
struct SourcePicture {
    bool isCanvas = false;       // the canvas, as it is when the stroke begins
    std::filesystem::path file;  // otherwise
    std::int32_t left = 0;       // pixels of the canvas, from its left and its top: where the picture's own lie
    std::int32_t top = 0;
    std::string place;
};

struct MaskPicture {
    std::filesystem::path file;
    std::string place;
};

// Everything that makes a brush, apart from what it paints on.
struct BrushDescription {
    std::optional<Colour> colour;   // white without one
    std::vector<Setting> settings;  // of the tables of BasicBrush and BrushSource, each at most once
    std::optional<SourcePicture> picture;
    std::optional<MaskPicture> mask;  // the dab's coverage, resized to the dab, instead of any profile
    std::optional<std::vector<FilterDescription>> filters;

    // Takes over what is not said here.
    void InheritFrom(const BrushDescription& other);
};

}  // namespace chalkpane::app
