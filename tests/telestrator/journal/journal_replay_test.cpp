#include "telestrator/journal/journal_replay.h"

#include <doctest/doctest.h>

#include <array>
#include <cstring>

#include "tests/telestrator/journal/random_session.h"

namespace chalkpane {
namespace {

using testing::CanvasOf;
using testing::Draw;
using testing::Pixels;
using testing::SessionMaker;

class KeptRecords final : public JournalSink {
public:
    void Write(const JournalRecord& record) noexcept override { records.push_back(record); }
    std::vector<JournalRecord> records;
};

bool Shows(const JournalReplay& replay, const Pixels& canvas) {
    return std::memcmp(replay.Canvas().origin, canvas.data(), canvas.size()) == 0;
}

// Every stroke leaves ink, so that the journal knows of all that was seen.
TEST_CASE("a replay shows in every field what was seen in it") {
    for (const std::uint32_t seed : {91U, 92U}) {
        SessionMaker maker(seed);
        KeptRecords list;
        JournaledTelestrator telestrator(&list);
        telestrator.Field({});
        std::vector<Pixels> seen;  // after the field of that number, from the second on
        const auto look = [&] { seen.push_back(CanvasOf(telestrator)); };
        for (int i = 0; i < 4; ++i) Draw(telestrator, maker.Stroke(), look);
        const std::size_t strokes = list.records.size();
        telestrator.MoveStroke(1, 40, -30);
        testing::PassField(telestrator, {});
        look();
        telestrator.Undo();
        testing::PassField(telestrator, {});
        look();
        REQUIRE_EQ(strokes, 4);
        JournalReplay replay(list.records);
        bool isSame = true;
        for (std::size_t i = 0; i < seen.size(); ++i) {
            replay.PlayTo(static_cast<std::int64_t>(i) + 1);
            isSame = isSame && Shows(replay, seen[i]);
        }
        CAPTURE(seed);
        CHECK(isSame);
    }
}

TEST_CASE("a replay shows the same in every field, however hard the pen was pressed") {
    for (const bool recognises : {false, true}) {
        TelestratorSettings settings;
        settings.recogniseShapes = recognises;
        settings.shapeDelay = 3;
        std::array<KeptRecords, 2> lists;
        for (std::size_t pen = 0; pen < lists.size(); ++pen) {
            const auto pressure = [&](int sample) { return pen == 0 ? 1.0 : 0.125 * sample; };
            JournaledTelestrator telestrator(&lists[pen]);
            testing::PassField(telestrator, settings);
            telestrator.Press(settings, {100, 100}, pressure(0));
            for (int i = 1; i < 8; ++i) {
                telestrator.Move(settings, {100.0 + 40 * i, 100.0 + 3 * i * i}, pressure(i));
                testing::PassField(telestrator, settings);
            }
            telestrator.Release(settings, {420, 300}, pressure(8));
            for (int i = 0; i < 6; ++i) testing::PassField(telestrator, settings);
        }
        REQUIRE_EQ(lists[1].records.size(), 1);
        CHECK_EQ(lists[1].records.front().strokes.front()->hand[3].pressure, 0.375);  // 3 * 0.125
        JournalReplay full(lists[0].records);
        JournalReplay pressed(lists[1].records);
        REQUIRE_EQ(pressed.LastField(), full.LastField());
        for (std::int64_t field = 0; field <= full.LastField(); ++field) {
            full.PlayTo(field);
            pressed.PlayTo(field);
            CAPTURE(field);
            const auto bytes =
                static_cast<std::size_t>(full.Canvas().Width()) * 4 * static_cast<std::size_t>(full.Canvas().Height());
            CHECK_EQ(std::memcmp(full.Canvas().origin, pressed.Canvas().origin, bytes), 0);
        }
    }
}

TEST_CASE("fields begin with the first press, end with the last record, and never run backwards") {
    KeptRecords list;
    JournaledTelestrator telestrator(&list);
    for (int i = 0; i < 10; ++i) telestrator.Field({});
    telestrator.Press({}, {100, 100});
    for (int i = 0; i < 5; ++i) telestrator.Field({});
    telestrator.Release({}, {300, 100});
    for (int i = 0; i < 5; ++i) telestrator.Field({});
    telestrator.Clear();
    CHECK_EQ(JournalReplay(list.records).FirstField(), 10);
    CHECK_EQ(JournalReplay(list.records).LastField(), 20);
    list.records.back().field = 3;
    CHECK_EQ(JournalReplay(list.records).LastField(), 15);
    list.records.clear();
    CHECK_EQ(JournalReplay(list.records).LastField(), -1);
}

// Two lines of 180 pixels, the first in 2 fields and, after a pause of 30, the other in 18: 20 fields with the pen
// down, in each of which it goes 18 pixels.
TEST_CASE("evened, the pen goes all its ways at one pace and does not pause") {
    KeptRecords list;
    JournaledTelestrator telestrator(&list);
    TelestratorSettings settings;
    const auto draw = [&](double y, int fields) {
        telestrator.Press(settings, {100, y});
        for (int i = 1; i <= fields; ++i) {
            telestrator.Field(settings);
            telestrator.Move(settings, {100 + 180.0 * i / fields, y});
        }
        telestrator.Release(settings, {280, y});
    };
    telestrator.Field(settings);
    draw(300, 2);
    for (int i = 0; i < 30; ++i) telestrator.Field(settings);
    draw(600, 18);
    telestrator.MoveStroke(1, 0, 100);
    REQUIRE_EQ(list.records.size(), 3);

    JournalReplay replay(list.records, JournalReplay::Pace::Even);
    const std::int64_t first = replay.FirstField();
    CHECK_EQ(first, JournalReplay(list.records).FirstField());
    CHECK_EQ(replay.LastField(), first + 20);
    const auto hasInk = [&](std::int32_t x, std::int32_t y) {
        const Image& canvas = replay.Canvas();
        return canvas.Address(x, canvas.y0 + y)[3] != std::byte{0};
    };
    replay.PlayTo(first + 9);
    CHECK(hasInk(100, 300));
    CHECK_FALSE(hasInk(100, 600));
    replay.PlayTo(first + 10);
    CHECK(hasInk(270, 300));
    CHECK(hasInk(100, 600));
    CHECK_FALSE(hasInk(200, 600));
    replay.PlayTo(first + 19);
    CHECK(hasInk(200, 600));
    CHECK(hasInk(200, 300));
    replay.PlayTo(first + 20);
    CHECK_FALSE(hasInk(200, 300));
    CHECK(Shows(replay, CanvasOf(telestrator)));
}

TEST_CASE("what a replay did not touch is outside the rectangle it tells") {
    SessionMaker maker(93);
    KeptRecords list;
    JournaledTelestrator telestrator(&list);
    telestrator.Field({});
    for (int i = 0; i < 3; ++i) Draw(telestrator, maker.Stroke());
    telestrator.Remove(1);
    JournalReplay replay(list.records);
    const Image before = NewInkCanvas();
    for (std::int64_t field = 0; field <= replay.LastField(); ++field) {
        const auto last = replay.Canvas().Clone();
        const Rect changed = replay.PlayTo(field);
        last->CopyRegion(replay.Canvas(), changed);
        REQUIRE(std::memcmp(last->origin, replay.Canvas().origin, last->ByteSize()) == 0);
    }
}

}  // namespace
}  // namespace chalkpane
