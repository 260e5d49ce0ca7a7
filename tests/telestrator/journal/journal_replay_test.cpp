#include "telestrator/journal/journal_replay.h"

#include <doctest/doctest.h>

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
