#include "kel/video/stream_sound.h"

#include <doctest/doctest.h>

#include <numeric>
#include <vector>

namespace kel {
namespace {

constexpr double streamRate = 50;
constexpr int samplesOfField = 960;  // 48000 / 50
constexpr double countedSeconds = 300;

// A sound of which each sample is its own number, in millionths, so that it is seen where a piece comes from. Of a live
// one as much is there as the test has let come.
class NumberedTrack final : public SoundTrack {
public:
    explicit NumberedTrack(bool isLive) : m_isLive(isLive) {}
    [[nodiscard]] std::unique_ptr<SoundSource> Open() const override {
        ++opened;
        return isThere ? std::make_unique<Source>(*this) : nullptr;
    }
    [[nodiscard]] bool IsLive() const override { return m_isLive; }

    mutable int opened = 0;
    mutable int seeks = 0;
    bool isThere = true;
    std::int64_t end = static_cast<std::int64_t>(countedSeconds * SoundSource::samplesPerSecond);

private:
    class Source final : public SoundSource {
    public:
        explicit Source(const NumberedTrack& track) : m_track(track) {}
        void Seek(double seconds) override {
            ++m_track.seeks;
            m_at = static_cast<std::int64_t>(seconds * samplesPerSecond + 0.5);
        }
        std::size_t Read(std::span<float> samples) override {
            std::size_t count = 0;
            for (; channels * count < samples.size() && m_at < m_track.end; ++count, ++m_at)
                samples[2 * count] = samples[2 * count + 1] = static_cast<float>(m_at) / 1e6F;
            return count;
        }

    private:
        const NumberedTrack& m_track;
        std::int64_t m_at = 0;
    };

    bool m_isLive;
};

// The numbers of a piece's samples; 0 is silence, too.
std::vector<int> NumbersOf(const StreamSound::Piece& piece) {
    std::vector<int> numbers;
    for (std::size_t i = 0; i < piece.samples.size(); i += 2)
        numbers.push_back(static_cast<int>(piece.samples[i] * 1e6F + 0.5F));
    return numbers;
}

std::vector<int> Counting(int from, int count) {
    std::vector<int> numbers(static_cast<std::size_t>(count));
    std::iota(numbers.begin(), numbers.end(), from);
    return numbers;
}

std::vector<int> Silent(int count) { return std::vector<int>(static_cast<std::size_t>(count), 0); }

// Takes what is due with fields of one track.
class Fields {
public:
    explicit Fields(std::shared_ptr<const SoundTrack> track) : m_track(std::move(track)) {}
    std::vector<int> Take(int field, double seconds, bool isRunning = true) {
        const StreamSound::Piece piece =
            m_sound.Take({m_track, seconds, isRunning}, field / streamRate, (field + 1) / streamRate);
        first = piece.first;
        return NumbersOf(piece);
    }
    std::int64_t first = 0;

private:
    std::shared_ptr<const SoundTrack> m_track;
    StreamSound m_sound;
};

}  // namespace

TEST_CASE("A stream's sound is that of each field's moment, and goes on from one to the next") {
    const auto track = std::make_shared<NumberedTrack>(false);
    Fields fields(track);
    CHECK_EQ(fields.Take(7, 1.0), Counting(48000, samplesOfField));
    CHECK_EQ(fields.first, 7 * samplesOfField);
    // A film of 25 frames a second shows each for two fields; it is heard evenly all the same.
    CHECK_EQ(fields.Take(8, 1.0), Counting(48000 + samplesOfField, samplesOfField));
    CHECK_EQ(fields.Take(9, 1.04), Counting(48000 + 2 * samplesOfField, samplesOfField));
    CHECK_EQ(fields.first, 9 * samplesOfField);
    CHECK_EQ(track->seeks, 1);
}

TEST_CASE("Where the picture stands or runs otherwise there is silence, and it is heard on from where it goes on") {
    Fields fields(std::make_shared<NumberedTrack>(false));
    (void)fields.Take(0, 2.0);
    CHECK_EQ(fields.Take(1, 2.0, false), Silent(samplesOfField));
    CHECK_EQ(fields.Take(2, 2.0, false), Silent(samplesOfField));
    CHECK_EQ(fields.Take(3, 2.0), Counting(96000, samplesOfField));
    CHECK_EQ(fields.Take(4, 5.0), Counting(240000, samplesOfField));  // a jump
    CHECK_EQ(fields.Take(5, 1.0), Counting(48000, samplesOfField));
}

TEST_CASE("Pictures that drift away take the sound with them") {
    Fields fields(std::make_shared<NumberedTrack>(false));
    (void)fields.Take(0, 1.0);
    // A tenth of a second ahead is more than nearness, and no jump: five pictures in a row say that it stays so.
    std::vector<int> heard;
    for (int field = 1; field <= 5; ++field) heard = fields.Take(field, 1.1 + 0.02 * field);
    CHECK_EQ(heard, Counting(48000 * 11 / 10 + 5 * samplesOfField, samplesOfField));
}

TEST_CASE("A few fields that were left out are heard; of many the sound is left out too") {
    Fields fields(std::make_shared<NumberedTrack>(false));
    (void)fields.Take(0, 1.0);
    CHECK_EQ(fields.Take(10, 1.2), Counting(48000 + samplesOfField, 10 * samplesOfField));
    CHECK_EQ(fields.first, samplesOfField);
    CHECK_EQ(fields.Take(110, 3.2), Counting(48000 * 32 / 10, samplesOfField));
    CHECK_EQ(fields.first, 110 * samplesOfField);
}

TEST_CASE("Sound that is over is silence") {
    const auto track = std::make_shared<NumberedTrack>(false);
    track->end = 48000 + 100;
    Fields fields(track);
    std::vector<int> wanted = Counting(48000, 100);
    wanted.resize(samplesOfField);
    CHECK_EQ(fields.Take(0, 1.0), wanted);
    CHECK_EQ(fields.Take(1, 1.02), Silent(samplesOfField));
}

TEST_CASE("Live sound that comes later than its pictures stands at their time, and is waited for so long only") {
    const auto track = std::make_shared<NumberedTrack>(true);
    track->end = 48000;
    Fields fields(track);
    CHECK_EQ(fields.Take(0, 1.0), Counting(0, 0));
    CHECK_EQ(fields.Take(1, 1.02), Counting(0, 0));
    track->end = 48000 + 2000;
    CHECK_EQ(fields.Take(2, 1.04), Counting(48000, 2000));
    CHECK_EQ(fields.first, 0);
    track->end = 48000 + 2 * 48000;
    CHECK_EQ(fields.Take(3, 1.06), Counting(48000 + 2000, 4 * samplesOfField - 2000));
    CHECK_EQ(fields.first, 2000);
    // Nothing comes for a second: up to seven tenths before the field there is silence.
    track->end = 48000 + 4 * samplesOfField;
    std::int64_t silent = 0;
    for (int field = 4; field < 54; ++field) silent += std::ssize(fields.Take(field, 1.0 + field / streamRate));
    CHECK_EQ(silent, 53 * samplesOfField - 48000 * 7 / 10 - 4 * samplesOfField);
    // And what comes then is heard where it belongs.
    track->end = 48000 * 10;
    const auto heard = fields.Take(54, 1.0 + 54 / streamRate);
    CHECK_EQ(heard.front(), 48000 + fields.first);
    CHECK_EQ(heard.back(), 48000 + 55 * samplesOfField - 1);
}

TEST_CASE("A track is opened once; a live one that has no sound yet is asked again") {
    const auto track = std::make_shared<NumberedTrack>(false);
    track->isThere = false;
    StreamSound sound;
    for (int i = 0; i < 3; ++i) CHECK_FALSE(sound.IsThere({track, 0, true}));
    CHECK_EQ(track->opened, 1);
    const auto live = std::make_shared<NumberedTrack>(true);
    live->isThere = false;
    CHECK_FALSE(sound.IsThere({live, 0, true}));
    live->isThere = true;
    CHECK(sound.IsThere({live, 0, true}));
    CHECK(sound.IsThere({live, 0, true}));
    CHECK_EQ(live->opened, 2);
    CHECK_FALSE(sound.IsThere({}));
}

}  // namespace kel
