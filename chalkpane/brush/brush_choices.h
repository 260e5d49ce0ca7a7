#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace chalkpane {

// What a brush can be told by choice, with the values that its parameters store, and the names that a front end shows
// in the order of those values. The names of sources stand in a table with all that belongs to them:
// sources/source_types.h.

// Parameter "Brush Source Type": what dabs are made of. Any other stored value counts as `Colour`.
enum class SourceType : std::uint8_t {
    Colour = 0,
    Clone = 1,       // a picture, read at an offset from the dab
    Image = 2,       // a picture, read under the dab
    Cutout = 3,      // the dab is a picture, or a frame of one
    Splodge = 4,     // one colour a dab: that of a picture under its middle
    Eraser = 5,      // takes paint away
    Replace = 6,     // as `Image`, but what is covered gives way, transparency included
    ReplaceToo = 7,  // a second number for `Replace`
    SplodgeToo = 8,  // a second number for `Splodge`
};

// Parameter "Brush Space Type". Any other stored value counts as `Shorten`.
enum class SpacingType : std::uint8_t {
    Keep = 0,            // dabs lie as far apart as the spacing says
    ShortenAndThin = 1,  // no further than the newest segment is long; the pressure falls with the spacing
    Shorten = 2,         // no further than the newest segment is long
};
inline constexpr std::array<std::string_view, 3> SpacingTypeNames{"Keep", "Shorten and Thin", "Shorten"};

// Parameter "Brush Pickup": whether a dab is taken from the canvas and dragged along.
enum class PickupMode : std::uint8_t { Off = 0, OncePerStroke = 1, EveryDab = 2 };
inline constexpr std::array<std::string_view, 3> PickupModeNames{"Off", "Once", "Every Dab"};

// Parameter "Brush Preset Type": the profile that makes the masks. Any other stored value counts as `Graph`.
enum class ProfileType : std::uint8_t {
    Graph = 0,
    Image = 1,     // parameter "Profile Mask" names the file
    OnePixel = 2,  // whatever the size
    Texture = 3,
    Feather = 4,
};
inline constexpr std::array<std::string_view, 5> ProfileTypeNames{"Graph", "Image", "One Pixel", "Texture",
                                                                  "Feathered"};

// Parameter "Brush Selection Policy": which frame of a cutout the next dab shows. A stored value above these stays on
// one frame.
enum class SelectionPolicy : std::uint8_t { Random = 0, Forward = 1, ForwardAndBack = 2 };
inline constexpr std::array<std::string_view, 3> SelectionPolicyNames{"Random", "Forward", "Forward and Back"};

// Codes of the parameters of `BasicBrush`, in the order of its table.
enum class BrushParameter : std::uint8_t {
    Name,
    SourceType,
    File,
    Opacity,
    Decay,
    Spacing,
    AdjustSpacing,
    SpacingType,
    MatchPath,
    BuildUp,
    ProfileGraph,
    GlobalParameters,
    BlendMode,
    Group,
};

// Codes of the parameters of `BrushSource`, in the order of its table.
enum class SourceParameter : std::uint8_t {
    ProfileName,
    ProfileMask,
    Size,
    Flatness,
    Rotation,
    Roundness,
    Feather,
    Offset,
    Pickup,
    ProfileType,
    Rows,
    Columns,
    SelectionPolicy,
};

}  // namespace chalkpane
