#pragma once

#include <memory>

#include "chalkpane/brush/sources/brush_source.h"

namespace chalkpane {

// What the sources with a profile have in common: the profile makes every mask.
class ProfiledBrushSource : public BrushSource {
public:
    // KEEP: placed in whole pixels, and past the matrix, unlike the masks of dabs.
    [[nodiscard]] std::unique_ptr<Image> MakePlainMask(double x, double y) override {
        return profile ? profile->GetMaskFast(x, y) : nullptr;
    }
    void GetDabRect(Rect& out) const override {
        out = Rect();
        if (profile) profile->GetRect(out);
    }
    [[nodiscard]] GraphValue* GetGraph() const override { return profile ? profile->GetGraph() : nullptr; }
    [[nodiscard]] std::unique_ptr<Image> GetMask(double x, double y, double angle) override {
        return profile ? profile->GetMask(x, y, angle) : nullptr;
    }
    void Prepare(std::int32_t margin, GraphValue* graph, const Matrix3& newMatrix) override {
        matrix = newMatrix;
        profile = MakeProfile(margin, graph, newMatrix);
    }

protected:
    ProfiledBrushSource() = default;

    std::unique_ptr<BrushProfile> profile;  // null before `Prepare`
    Matrix3 matrix;
};

}  // namespace chalkpane
