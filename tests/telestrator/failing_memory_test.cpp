#include <doctest/doctest.h>

#include <functional>

#include "tests/telestrator/allocation_failure.h"
#include "tests/telestrator/stroke_shapes.h"
#include "tests/telestrator/telestrator_fixture.h"

namespace chalkpane::testing {
namespace {

using Action = std::function<void(TelestratorFixture&)>;

// Fails the first allocation of `action`, then the second, and so on until it gets through, later ones in strides.
// `check` sees what each failure left behind and how many failures were counted.
void FailEach(const Action& prepare, const Action& action,
              const std::function<void(TelestratorFixture&, std::uint32_t)>& check) {
    {
        TelestratorFixture warmUp(RecognisingSettings());  // the library's tables are made once
        prepare(warmUp);
        action(warmUp);
    }
    constexpr std::int64_t enough = 20000;
    std::int64_t number = 0;
    for (; number < enough; number += 1 + (number < 40 ? 0 : number / 8)) {
        TelestratorFixture fixture(RecognisingSettings());
        prepare(fixture);
        (void)fixture.telestrator.memory.TakeFailures();
        bool failed = false;
        {
            const AllocationFailure failure(number);
            action(fixture);
            failed = failure.HasFailed();
        }
        if (!failed) break;
        INFO("allocation ", number);
        check(fixture, fixture.telestrator.memory.TakeFailures());
        REQUIRE(fixture.Field());
        fixture.telestrator.ClearCanvas();
        fixture.settings.recogniseShapes = false;
        // A brush that lacked memory paints nothing until it is set up again.
        REQUIRE(fixture.telestrator.ApplyBrushMode(fixture.settings));
        fixture.Press(600, 600);
        CHECK_GT(AlphaAt(*fixture.telestrator.canvasSurface, 600, 600), 0);
    }
    CHECK_GT(number, 0);
    CHECK_LT(number, enough);
}

void FirstField(TelestratorFixture& fixture) { fixture.Field(); }

TEST_CASE("A telestrator whose canvas cannot be made has none, counts one failure and tries again") {
    FailEach([](TelestratorFixture&) {}, FirstField,
             [](TelestratorFixture& fixture, std::uint32_t failures) {
                 CHECK_LE(failures, 1);
                 if (fixture.telestrator.HasCanvas()) return;  // failed behind the creation, or inside the brush
                 CHECK_EQ(failures, 1);
                 CHECK_EQ(fixture.telestrator.shapeSurface, nullptr);
                 CHECK_EQ(fixture.telestrator.undoRing, nullptr);
                 CHECK_EQ(fixture.telestrator.currentSnapshot, nullptr);
             });
}

TEST_CASE("A ring that cannot grow counts one failure and ends the field") {
    FailEach(
        [](TelestratorFixture& fixture) {
            fixture.Field();
            fixture.settings.maxUndos = 6;
            fixture.settings.brushWidth = 17;
        },
        FirstField,
        [](TelestratorFixture& fixture, std::uint32_t failures) {
            CHECK_LE(failures, 1);
            CHECK_GE(fixture.telestrator.undoRing->size(), 3);
            if (fixture.telestrator.undoRing->size() == 6) return;  // failed behind the ring, inside the brush
            CHECK_EQ(failures, 1);
            CHECK_EQ(fixture.telestrator.lastBrushWidth, 5);
        });
}

TEST_CASE("A stroke and its finish without memory for something go on to their ends") {
    for (const Points& points :
         {EllipsePoints(500, 500, 60, 40, 0, 60), CrossPoints(500, 500, 50, 40), WavePoints(100, 300, 100, 30)}) {
        FailEach(
            FirstField,
            [&](TelestratorFixture& fixture) {
                fixture.Press(points.front().x, points.front().y);
                fixture.Release(points.back().x, points.back().y);
                StoreStroke(fixture.telestrator, points);
                fixture.telestrator.FinishStroke(fixture.settings);
            },
            [](TelestratorFixture& fixture, std::uint32_t failures) {
                CHECK_LE(failures, 1);  // a dab left out is not counted
                CHECK(fixture.telestrator.shapeCommitPending);
                CHECK(fixture.telestrator.Commit());
            });
    }
}

TEST_CASE("Failures are handed out once") {
    MemoryGuard memory;
    CHECK(memory.Run([] {}));
    CHECK_FALSE(memory.Run([] { throw std::bad_alloc(); }));
    CHECK_FALSE(memory.Run([] { throw std::bad_alloc(); }));
    CHECK_EQ(memory.TakeFailures(), 2);
    CHECK_EQ(memory.TakeFailures(), 0);
}

}  // namespace
}  // namespace chalkpane::testing
