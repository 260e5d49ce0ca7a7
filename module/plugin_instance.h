#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "module/object_handle.h"
#include "telestrator/telestrator.h"

namespace chalkpane {

// The block that the host allocates for each instance and hands back with every callback. The host owns the block and
// writes the parameter values into its first fields; the module constructs the rest and owns what those fields own.

// What the operator sets, in the order of registration: the host finds the fields by that order. A switch is 0 or 1.
struct PluginParameters {
    std::int32_t Active;       // 0: the pointer is ignored
    std::int32_t TexUnit;      // 0: the canvas is the base texture; above 0: multi-texture unit
    std::int32_t Transparent;  // with TexUnit 0: the base picture cuts out the strokes
    float Alpha;               // hidden from the operator; nothing reads it
    std::int32_t BrushType;    // as the enumeration of that name
    const char* BrushImage;    // name of a host image; the host's text, null for none
    std::int32_t BrushWidth;   // canvas pixels; also the spacing of the stored stroke points
    std::int32_t EraserWidth;  // canvas pixels
    std::uint32_t BrushColor;  // four bytes in memory order red, green, blue, alpha
    std::int32_t RecoShapes;
    std::int32_t RecoEllipse;
    std::int32_t RecoCircle;
    std::int32_t RecoCross;
    std::int32_t ShapeDelay;  // fields from the release to the recognition
    std::int32_t Arrow;
    std::int32_t ArrowLength;   // canvas pixels
    std::int32_t ArrowWidth;    // canvas pixels
    std::int32_t CircleRadius;  // KEEP: registered and carried along; nothing reads it
    std::int32_t CrossDia;      // above 0: fixed size of the cross, canvas pixels
    std::int32_t MaxUndos;
};

struct PluginInstance : PluginParameters {
    PluginInstance() = delete;
    // `values`: what the host had written into the block.
    explicit PluginInstance(const PluginParameters& values) : PluginParameters(values) {
        telestrator.aspect = 0;  // until the container's box is known
    }
    PluginInstance(const PluginInstance&) = delete;
    PluginInstance& operator=(const PluginInstance&) = delete;
    PluginInstance(PluginInstance&&) = delete;
    PluginInstance& operator=(PluginInstance&&) = delete;
    ~PluginInstance() = default;

    Telestrator telestrator;           // what is drawn; its aspect is width over height of the box below
    bool pointerInsideStroke = false;  // a stroke runs on this container
    std::int32_t lastTexUnit = -1;
    ObjectHandle canvasImage;       // backs the texture
    ObjectHandle canvasTexture;     // shows the canvas
    std::int32_t windowWidth = -1;  // refreshed every field
    std::int32_t windowHeight = -1;
    std::int32_t lastPointerX = -1;  // window pixels
    std::int32_t lastPointerY = -1;
    std::int32_t unusedWord = -1;  // keeps its place in the block
    bool pointerDown = false;      // the button was down at the last pointer callback
    float boxMinX = 0;             // the container's box in its own coordinates
    float boxMaxX = 0;
    float boxMinY = 0;
    float boxMaxY = 0;
    ObjectHandle brushImageHandle;
    std::array<char, 1000> lastBrushImageName{};  // ends with a zero; longer names are kept cut
    std::int32_t savedAlphaTestEnabled = 0;
    std::int32_t savedBlendEnabled = 0;
    std::int32_t savedBlendSrc = 0;
    std::int32_t savedBlendDst = 0;
    std::int32_t secondUnusedWord = 0;
    std::array<std::array<Vector3, 4>, 2> unusedQuads{};  // keep their place in the block
};

// The parameters as the telestrator takes them.
[[nodiscard]] inline TelestratorSettings SettingsOf(const PluginParameters& values) {
    TelestratorSettings settings;
    settings.brushType = static_cast<BrushType>(values.BrushType);
    settings.brushWidth = values.BrushWidth;
    settings.eraserWidth = values.EraserWidth;
    settings.brushColour = values.BrushColor;
    settings.recogniseShapes = values.RecoShapes != 0;
    settings.recogniseEllipse = values.RecoEllipse != 0;
    settings.recogniseCircle = values.RecoCircle != 0;
    settings.recogniseCross = values.RecoCross != 0;
    settings.shapeDelay = values.ShapeDelay;
    settings.arrow = values.Arrow != 0;
    settings.arrowLength = values.ArrowLength;
    settings.arrowWidth = values.ArrowWidth;
    settings.crossDiameter = values.CrossDia;
    settings.maxUndos = values.MaxUndos;
    return settings;
}

// What the host is told to allocate.
constexpr std::int32_t instanceBlockSize = 1392;

// The block once more, for pointers of any width: the host may be built for 32 or for 64 bits, and the registered size
// has to do for both.
template <typename Pointer>
struct InstanceBlockLayout {
    struct alignas(sizeof(Pointer)) Address {
        Pointer value;
    };
    std::int32_t activeToBrushType[5];
    Address brushImage;
    std::int32_t brushWidthToMaxUndos[14];
    struct {
        Address surfaces[2];
        std::int32_t lastBrushWidthToCanvasHeight[5];
        std::int32_t dirtyRect[4];
        std::int8_t fullUploadPending;
        float lastStrokePoint[3];
        std::int8_t shapeCommitPending;
        std::int32_t strokePointCount;
        std::uint32_t memoryFailures;
        Address strokePoints;
        std::int32_t shapeCountdownAndUndoIndex[2];
        Address undoRingToHoughAccumulator[3];
        float aspect;
        std::int8_t recognitionBuffersReady;
    } telestrator;
    std::int8_t pointerInsideStroke;
    std::int32_t lastTexUnitToUnusedWord[8];
    std::int8_t pointerDown;
    float box[4];
    std::int32_t brushImageHandle;
    char lastBrushImageName[1000];
    std::int32_t savedStateAndSecondUnusedWord[5];
    float unusedQuads[24];
};
static_assert(sizeof(PluginInstance) <= instanceBlockSize);
static_assert(offsetof(InstanceBlockLayout<std::uintptr_t>, telestrator) == sizeof(PluginParameters));
static_assert(sizeof(InstanceBlockLayout<std::uint32_t>) <= instanceBlockSize);
static_assert(sizeof(InstanceBlockLayout<std::uint64_t>) <= instanceBlockSize);
static_assert(sizeof(InstanceBlockLayout<std::uintptr_t>) == sizeof(PluginInstance),
              "the two lists have drifted apart");
static_assert(alignof(PluginInstance) <= alignof(std::max_align_t));

// Natural alignment: on 64 bits four bytes stand empty in front of the image name's address.
constexpr std::size_t brushImageOffset = sizeof(void*) == 8 ? 24 : 20;
static_assert(offsetof(PluginParameters, Active) == 0 && offsetof(PluginParameters, TexUnit) == 4);
static_assert(offsetof(PluginParameters, Transparent) == 8 && offsetof(PluginParameters, Alpha) == 12);
static_assert(offsetof(PluginParameters, BrushType) == 16);
static_assert(offsetof(PluginParameters, BrushImage) == brushImageOffset);
constexpr std::size_t brushWidthOffset = brushImageOffset + sizeof(void*);
static_assert(offsetof(PluginParameters, BrushWidth) == brushWidthOffset);
static_assert(offsetof(PluginParameters, EraserWidth) == brushWidthOffset + 4);
static_assert(offsetof(PluginParameters, BrushColor) == brushWidthOffset + 8);
static_assert(offsetof(PluginParameters, RecoShapes) == brushWidthOffset + 12);
static_assert(offsetof(PluginParameters, RecoEllipse) == brushWidthOffset + 16);
static_assert(offsetof(PluginParameters, RecoCircle) == brushWidthOffset + 20);
static_assert(offsetof(PluginParameters, RecoCross) == brushWidthOffset + 24);
static_assert(offsetof(PluginParameters, ShapeDelay) == brushWidthOffset + 28);
static_assert(offsetof(PluginParameters, Arrow) == brushWidthOffset + 32);
static_assert(offsetof(PluginParameters, ArrowLength) == brushWidthOffset + 36);
static_assert(offsetof(PluginParameters, ArrowWidth) == brushWidthOffset + 40);
static_assert(offsetof(PluginParameters, CircleRadius) == brushWidthOffset + 44);
static_assert(offsetof(PluginParameters, CrossDia) == brushWidthOffset + 48);
static_assert(offsetof(PluginParameters, MaxUndos) == brushWidthOffset + 52);
static_assert(sizeof(PluginParameters) == brushWidthOffset + 56);

}  // namespace chalkpane
