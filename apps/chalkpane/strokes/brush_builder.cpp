#include "apps/chalkpane/strokes/brush_builder.h"

#include <algorithm>
#include <new>

#include "apps/chalkpane/filtering/filter_texts.h"
#include "apps/chalkpane/filtering/picture_image.h"
#include "apps/chalkpane/strokes/brush_choices.h"
#include "apps/chalkpane/values/parameter_text.h"
#include "chalkpane/brush/sources/source_types.h"
#include "chalkpane/filters/filter.h"
#include "cli/error.h"

namespace chalkpane::app {
namespace {

std::unique_ptr<Filter> MakeChained(const FilterDescription& description, const BrushScene& scene) {
    auto filter = MakeFilter(FindFilter(description.label));
    const ParameterTexts texts = TextsOf(*filter);
    for (const Setting& setting : description.settings)
        texts.Set(*filter->m_values, setting.parameter->name, setting.text);
    filter->Attach(&scene.canvas, scene.frame, scene.frame, nullptr);
    filter->m_active = description.isActive;
    TakeValues(*filter);
    return filter;
}

// Cutouts take their picture with its colours, so the brush is handed it instead of reading the file as a mask.
void GiveCutout(BasicBrush& brush, const BrushDescription& description, PictureFiles& pictures) {
    std::uint8_t type = 0;
    FileName name;
    if (const ParameterValue* const value = brush.Value(BrushParameter::SourceType)) value->getEnumeration(type);
    const ParameterDef* const fileParameter = BasicBrush::ClassParameters().find(BrushParameter::File);
    if (const ParameterValue* const value = brush.Value(BrushParameter::File)) readFileName(*value, name);
    brush.SetCutoutImage(nullptr, false);
    if (SourceTypeOf(type).needs != SourceNeeds::CutoutFile || name.empty()) return;
    const auto setting = std::ranges::find(description.settings, fileParameter, &Setting::parameter);
    const std::string place = setting != description.settings.end() ? setting->place : fileParameter->name;
    brush.SetCutoutImage(&pictures.Colours(pictures.FileOf(name.string()), place), true);
}

// The canvas as a picture, which is not premultiplied.
std::unique_ptr<Image> PictureOfCanvas(const Image& canvas) {
    auto picture = canvas.Clone();
    SetAlphaForm(*picture, AlphaForm::Straight);
    return picture;
}

void GivePicture(BrushSource& source, const SourcePicture& picture, const BrushScene& scene) {
    if (picture.isCanvas) {
        source.SetSourceImage(PictureOfCanvas(scene.canvas).get());
        return;
    }
    Image placed = scene.pictures.Colours(picture.file, picture.place);
    const Rect& plane = scene.canvas.Bounds();
    placed.MoveTo(plane.x0 + picture.left, plane.y1 + 1 - picture.top - placed.Height());
    source.SetSourceImage(&placed);
}

}  // namespace

std::unique_ptr<BasicBrush> MakeBrush(const BrushDescription& description, const BrushScene& scene) {
    auto brush = std::make_unique<BasicBrush>("Stroke");
    ApplySettings(description, *brush);
    if (description.filters)
        for (const FilterDescription& filter : *description.filters)
            brush->Filters().push_back(MakeChained(filter, scene));
    return brush;
}

void ApplySettings(const BrushDescription& description, BasicBrush& brush) {
    const ParameterTexts brushTexts("brush", BasicBrush::ClassParameters(), BrushChoices);
    const ParameterTexts sourceTexts("brush", BrushSource::ClassParameters(), BrushChoices);
    for (const Setting& setting : description.settings) {
        const bool isOfBrush = BasicBrush::ClassParameters().find(setting.parameter->code) == setting.parameter;
        const ParameterTexts& texts = isOfBrush ? brushTexts : sourceTexts;
        texts.Set(isOfBrush ? brush.Values() : brush.SourceValues(), setting.parameter->name, setting.text);
    }
}

void PrepareBrush(BasicBrush& brush, const BrushDescription& description, const BrushScene& scene) {
    GiveCutout(brush, description, scene.pictures);
    brush.SetTarget(&scene.canvas);
    brush.Update();
    if (brush.Source() == nullptr) throw std::bad_alloc();
    brush.SetColour(description.colour.value_or(Colour::fromIndex(3)));
    if (description.mask) {
        // The profile is built anew around the mask; the graph is no part of that.
        brush.Source()->SetMaskImage(&scene.pictures.Mask(description.mask->file, description.mask->place));
        brush.Source()->Prepare(0, nullptr, Matrix3());
    }
    if (description.picture) GivePicture(*brush.Source(), *description.picture, scene);
}

void RefreshBrush(BasicBrush& brush, const BrushDescription& description, const BrushScene& scene) {
    brush.SetColour(description.colour.value_or(Colour::fromIndex(3)));
    if (description.picture && description.picture->isCanvas) GivePicture(*brush.Source(), *description.picture, scene);
}

void ReadPictures(const BrushDescription& description, PictureFiles& pictures) {
    for (const Setting& setting : description.settings) {
        if (setting.parameter->type != ParameterType::fileName) continue;
        if (BasicBrush::ClassParameters().find(BrushParameter::File) == setting.parameter)
            (void)pictures.Colours(setting.text, setting.place);
        else
            (void)pictures.Mask(setting.text, setting.place);
    }
    if (description.picture && !description.picture->isCanvas)
        (void)pictures.Colours(description.picture->file, description.picture->place);
    if (description.mask) (void)pictures.Mask(description.mask->file, description.mask->place);
}

}  // namespace chalkpane::app
