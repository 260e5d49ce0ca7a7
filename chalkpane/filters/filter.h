#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

#include "chalkpane/image/image.h"
#include "chalkpane/image/pixel_format.h"
#include "chalkpane/parameters/parameterised_object.h"

namespace chalkpane {

class AnimationClock;
class DataSet;
class LayerProvider;

// An image operation: takes an image and makes a new one. The source is never written.
//
// A filter is a plain object with a handful of settings. What all filters of a class share, names and limits of their
// parameters, stands in the class's `ParameterList`; the settings are filled from a `DataSet` by `setParameter`. A copy
// takes the settings and nothing of what this class holds.
//
// Rectangles are in the plane of the image, inclusive at both ends. No filter reports an error.
// Thread: the caller's; rows go to the workers. One `Apply` of an object at a time.
class Filter : public ParameterisedObject, public ImageChannels {
public:
    static constexpr bool storesNaNAsZero = true;  // settings: NaN is stored as 0

    virtual ~Filter();

    // Of the same class: with these settings, and fresh.
    [[nodiscard]] virtual std::unique_ptr<Filter> Clone() const = 0;
    [[nodiscard]] virtual std::unique_ptr<Filter> CreateNew() const = 0;
    // Setting by setting, floats exactly; false for another class.
    [[nodiscard]] virtual bool Equals(const Filter& other) const = 0;
    [[nodiscard]] virtual bool Differs(const Filter& other) const { return !Equals(other); }

    // Makes `result` from `source`.
    //
    //   result   a new image that passes to the caller; null when there was no memory for it
    //   fast     distortions take the nearest pixel
    //   region   null: everything; otherwise only this part of the source is worked on
    //   expand   distortions and blurs may make the result larger than the source
    virtual void Apply(const Image& source, std::unique_ptr<Image>& result, bool fast, const Rect* region,
                       bool expand) = 0;
    // KEEP: the mask is dropped. A caller who wants to limit a filter blends the result itself.
    virtual void ApplyMasked(const Image& source, std::unique_ptr<Image>& result, const Image* mask, bool fast,
                             const Rect* region, bool expand);
    virtual bool ReservedFlag1() const { return false; }
    // True: takes a pixel's place from its neighbours, and so is run on a dab even while inactive.
    [[nodiscard]] virtual bool MovesPixels() const { return false; }
    virtual bool ReservedFlag2() const { return false; }
    // True: a filter that moves pixels moves those of the dab's mask too.
    [[nodiscard]] virtual bool FiltersMask() const { return false; }
    // False: the settings change nothing.
    [[nodiscard]] virtual bool IsActive() const { return true; }
    // True: random numbers are frozen between `BeginStep` and `EndStep`.
    [[nodiscard]] virtual bool NeedsStepHooks() const { return false; }
    virtual void BeginStep() {}
    virtual void EndStep() {}
    // The depth to work in for an image of this depth, as images store it: itself, or that of 8 bits for classes that
    // know no other.
    [[nodiscard]] virtual std::int32_t PreferredDepth(std::int32_t depth) const { return depth; }

    // rect: the bounds of the image; region: the part in question.
    [[nodiscard]] virtual Rect RegionOnOutput(const Rect& rect, const Rect& region, bool expand) const;
    // What has to be there for `region` to come out right, and what changes when `region` does.
    [[nodiscard]] virtual Rect InputRegion(const Rect& rect, const Rect& region) const;
    [[nodiscard]] virtual Rect OutputRegion(const Rect& rect, const Rect& region) const;
    virtual void* ReservedPointer1() const { return nullptr; }

    [[nodiscard]] virtual std::int32_t ParameterCount() const;
    // Adds the value of one parameter to a set: for a layer name (type 27) a `LayerValue` on `layers`, otherwise what
    // the set makes by default, animated on `clock` or plain. Null when the type has no value.
    virtual ParameterValue* AddValue(DataSet& values, const ParameterDef& definition, bool animated,
                                     const AnimationClock* clock, const LayerProvider* layers) const;
    virtual void* ReservedPointer2() const { return nullptr; }

    // File name of the class; what the menu shows; the menu it stands in.
    [[nodiscard]] virtual std::string_view Name() const = 0;
    [[nodiscard]] virtual std::string_view Label() const = 0;
    [[nodiscard]] virtual std::string_view Category() const { return ""; }
    virtual std::int32_t ReservedNumber1() const { return 0; }
    virtual std::int32_t ReservedNumber2() const { return 0; }
    // The choices of an enumeration parameter.
    [[nodiscard]] virtual std::int32_t EnumCount(const ParameterDef& definition) const;
    [[nodiscard]] virtual std::string_view EnumLabel(const ParameterDef& definition, std::int32_t index) const;
    // What a front end's tools know of a layer parameter; nothing, while there are none.
    [[nodiscard]] virtual std::int32_t LayerQuery(const ParameterDef& definition) const;
    virtual void* ReservedPointer3() const { return nullptr; }
    virtual std::int32_t ReservedNumber3() const { return 0; }
    virtual bool ReservedFlag3() const { return false; }

    // A step of whatever the filter runs on begins, such as a brush's stroke.
    //
    //   image   what will be painted on; may be null
    //   frame   number of the step; a brush gives the frame that the filter was attached with
    //   others  0, for later
    virtual void Advance(const Image* image, std::int32_t frame, std::int32_t c, std::int32_t d, std::int32_t e,
                         std::int32_t f);
    // Binds the filter to an image, not owned and possibly null, at a frame and a time, and activates it. Positions
    // given in per cent become positions in `rect`, or in the image's bounds where `rect` is null.
    virtual void Attach(const Image* image, std::int32_t frame, double time, const Rect* rect);
    virtual void Detach();
    // A fresh set with the values of all parameters of the class, in table order, which the filter keeps; arguments as
    // for `AddValue`.
    virtual DataSet* MakeValues(bool animated, const AnimationClock* clock, const LayerProvider* layers);
    virtual void ReservedHook1() {}
    virtual bool ReservedFlag4() const { return true; }
    virtual void ReservedHook2() {}
    virtual bool ReservedFlag5() const { return true; }

    // `PreferredDepth` by name.
    [[nodiscard]] Depth WorkingDepth(Depth depth) const {
        return DepthOf(PreferredDepth(static_cast<std::int32_t>(depth)));
    }

    Filter& operator=(const Filter&) = delete;

    std::int32_t m_frame = 0;
    double m_time = 0.0;
    std::unique_ptr<DataSet> m_values;  // null before `MakeValues`
    const Image* m_image = nullptr;     // not owned
    bool m_active = true;

protected:
    Filter();
    // Settings belong to the classes: nothing but the class's table is taken over.
    Filter(const Filter& other);
};

}  // namespace chalkpane
