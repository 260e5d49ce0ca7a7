#include "kel/workspace/eraser_end.h"

#include <doctest/doctest.h>

#include "tests/cli/temporary_folder.h"
#include "tests/kel/pixels.h"

namespace kel {
namespace {

constexpr std::int32_t color = 0;
constexpr std::int32_t erase = 1;

struct Place {
    Place() {
        picture_io::WritePicture(testing::Plain(64, 48, {90, 90, 90, 255}), folder / "grey.png");
        WorkspaceOptions options;
        options.module = CHALKPANE_MODULE;
        workspace = std::make_unique<Workspace>(folder / "grey.png", options);
        const Registration& registration = *workspace->Chosen()->registration;
        type = static_cast<std::size_t>(registration.FindParameter("BrushType") - registration.parameters.data());
        workspace->RunFields(1);
    }
    // With this end, until it has taken effect.
    std::int32_t Use(bool isEraser) {
        end.Use(*workspace, isEraser);
        workspace->RunFields(1);
        return Type();
    }
    [[nodiscard]] std::int32_t Type() const { return std::get<std::int32_t>(workspace->Value(type)); }
    void Set(std::int32_t value) {
        workspace->Set(type, value);
        workspace->RunFields(1);
    }

    cli::testing::TemporaryFolder folder;
    std::unique_ptr<Workspace> workspace;
    EraserEnd end;
    std::size_t type = 0;
};

}  // namespace

TEST_CASE("A pen's other end erases, and its tip draws again") {
    Place place;
    CHECK_EQ(place.Use(false), color);
    CHECK_EQ(place.Use(true), erase);
    CHECK_EQ(place.Use(true), erase);
    CHECK_EQ(place.Use(false), color);
}

TEST_CASE("What the operator chose is not taken back by the tip") {
    Place place;
    place.Set(erase);
    CHECK_EQ(place.Use(true), erase);
    CHECK_EQ(place.Use(false), erase);
    place.Set(color);
    CHECK_EQ(place.Use(true), erase);
    place.Set(color);
    CHECK_EQ(place.Use(false), color);
    place.Set(erase);
    CHECK_EQ(place.Use(false), erase);
}

TEST_CASE("The eraser is there for the stroke that begins with it") {
    Place place;
    place.end.Use(*place.workspace, true);
    place.workspace->Point(PointerKind::Press, 20, 20);
    place.workspace->RunFields(1);
    CHECK_EQ(place.Type(), erase);
    CHECK_FALSE(place.workspace->TheHost().DeliveredPointer());  // the press waits for it
    place.workspace->RunFields(1);
    CHECK(place.workspace->TheHost().DeliveredPointer());
}

}  // namespace kel
