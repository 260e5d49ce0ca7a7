#include "telestrator/recognition/shape_recognition.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <optional>
#include <random>

#include "telestrator/recognition/circle_search.h"
#include "telestrator/recognition/ellipse_fit.h"
#include "tests/reference/recognition_reference.h"
#include "tests/telestrator/stroke_shapes.h"
#include "tests/telestrator/telestrator_fixture.h"

namespace chalkpane::testing {
namespace {

constexpr double pi = 3.141592653589793;

TelestratorSettings Recognising() {
    TelestratorSettings values = TelestratorSettings();
    values.recogniseShapes = true;
    values.recogniseCircle = true;
    values.maxUndos = 1;
    return values;
}

// A telestrator with a canvas, as wide as `aspect` times its height, and a stroke in its buffer.
class RecognitionStage : public TelestratorFixture {
public:
    explicit RecognitionStage(const Points& points, float aspect = 1, const TelestratorSettings& values = Recognising())
        : TelestratorFixture(values) {
        telestrator.aspect = aspect;
        Field();
        StoreStroke(telestrator, points);
    }
};

TEST_CASE("Each recogniser declines with its own switch off, without buffers, and without points") {
    using Recogniser = bool (*)(const ShapeInput&);
    const std::vector<std::pair<Recogniser, bool TelestratorSettings::*>> recognisers{
        {RecognizeEllipse, &TelestratorSettings::recogniseEllipse},
        {RecognizeCircle, &TelestratorSettings::recogniseCircle},
        {RecognizeCross, &TelestratorSettings::recogniseCross}};
    const std::array<Points, 3> shapes{EllipsePoints(500, 500, 200, 100, 0, 120),
                                       EllipsePoints(500, 500, 150, 150, 0, 120), CrossPoints(500, 500, 100, 60)};
    for (std::size_t i = 0; i < recognisers.size(); ++i) {
        RecognitionStage fixture(shapes[i]);
        const auto [recognise, wanted] = recognisers[i];
        fixture.settings.*wanted = false;
        CHECK_FALSE(recognise(fixture.Input()));
        fixture.settings.*wanted = true;
        CHECK(recognise(fixture.Input()));
        StoreStroke(fixture.telestrator, {});
        CHECK_FALSE(recognise(fixture.Input()));
        fixture.telestrator.SizeRecognitionBuffers(false);
        fixture.telestrator.strokePointCount = 60;
        CHECK_FALSE(recognise(fixture.Input()));
    }
}

TEST_CASE("The drawn ellipse is the plain iteration's, vertex by vertex") {
    struct Case {
        double a, b, tilt;
        float aspect;
        std::int32_t brushWidth;
    };
    for (const Case& each :
         {Case{200, 100, 0, 1, 5}, Case{150, 40, 0.7, 1.5F, 5}, Case{60, 55, -1.2, 0.75F, 30}, Case{30, 20, 2.9, 1, 1},
          Case{80, 80, 0, 2, 2}, Case{400, 90, 0.4, 1, 8}, Case{350, 60, 1.1, 1.2F, 3}, Case{900, 700, 0.2, 1, 17}}) {
        const Points points = EllipsePoints(480, 460 / each.aspect, each.a, each.b / each.aspect, each.tilt, 160);
        TelestratorSettings values = Recognising();
        values.brushWidth = each.brushWidth;
        RecognitionStage fixture(points, each.aspect, values);
        REQUIRE(RecognizeEllipse(fixture.Input()));
        const Vector3 centroid = Centroid(points);
        const reference::Ellipse ellipse = reference::FitEllipse(points, centroid, each.brushWidth);
        const auto reference = ReferenceSurface(each.brushWidth);
        PaintVertices(*reference, reference::EllipseVertices(ellipse, centroid, each.aspect, each.brushWidth));
        INFO("half axes ", each.a, " ", each.b, " tilt ", each.tilt, " width ", each.brushWidth);
        CHECK(PixelsOf(*fixture.telestrator.shapeSurface) == PixelsOf(*reference));
        CHECK(IsBlank(*fixture.telestrator.canvasSurface));
    }
}

// The thresholds are 5 / 2 = 2 and 5: of the upper half of an ellipse with half axes 200 and 100, about 484 pixels
// long, every second pixel or so is a vertex, of the lower one every fifth.
TEST_CASE("The first half of the ellipse has twice the vertices of the second and more") {
    reference::Ellipse ellipse;
    ellipse.a = 200;
    ellipse.b = 100;
    const auto vertices = reference::EllipseVertices(ellipse, {500, 500, 0}, 1, 5);
    const auto upper = std::count_if(vertices.begin(), vertices.end(), [](const Vector3& v) { return v.y > 500.5F; });
    const auto lower = std::count_if(vertices.begin(), vertices.end(), [](const Vector3& v) { return v.y < 499.5F; });
    CHECK_GT(upper, 484 / 2.02 - 4);
    CHECK_LT(upper, 484 / 2.0 + 4);
    CHECK_GT(lower, 484 / 5.02 - 4);
    CHECK_LT(lower, 484 / 5.0 + 4);
}

TEST_CASE("A hand-drawn ellipse becomes a clean one in its place") {
    RecognitionStage fixture(EllipsePoints(500, 480, 200, 100, pi / 6, 150));
    REQUIRE(RecognizeEllipse(fixture.Input()));
    for (int degrees = 0; degrees < 360; degrees += 15) {
        const double t = degrees * pi / 180;
        const double x = 200 * std::cos(t);
        const double y = 100 * std::sin(t);
        const auto canvasX = static_cast<int>(std::lround(500 + x * std::cos(pi / 6) - y * std::sin(pi / 6)));
        const auto canvasY = static_cast<int>(std::lround(480 + x * std::sin(pi / 6) + y * std::cos(pi / 6)));
        INFO("degrees ", degrees);
        CHECK_GT(AlphaAt(*fixture.telestrator.shapeSurface, canvasX, canvasY), 0);
    }
    CHECK_EQ(AlphaAt(*fixture.telestrator.shapeSurface, 500, 480), 0);
}

TEST_CASE("A straight line is no shape") {
    const Points line = LinePoints(100, 100, 700, 500, 120);
    RecognitionStage fixture(line);
    CHECK_FALSE(RecognizeEllipse(fixture.Input()));
    CHECK_FALSE(RecognizeCircle(fixture.Input()));
    CHECK_FALSE(RecognizeCross(fixture.Input()));
    CHECK(IsBlank(*fixture.telestrator.shapeSurface));
}

TEST_CASE("An ellipse with a gap wider than its smaller half axis is refused") {
    // Closed all but a gap g: with half axes 200 and 60 the gap has to exceed 60 to be refused. The ends lie at the
    // flat side, where t degrees are about 200 t pi / 180 pixels apart.
    const auto openEllipse = [](double gapDegrees) {
        Points points;
        for (int i = 0; i <= 150; ++i) {
            const double t = (90 + gapDegrees / 2 + (360 - gapDegrees) * i / 150) * pi / 180;
            points.emplace_back(500 + 200 * std::cos(t), 500 + 60 * std::sin(t), 0.0);
        }
        return points;
    };
    RecognitionStage narrow(openEllipse(14));  // 400 sin 7 = 48.7
    CHECK(RecognizeEllipse(narrow.Input()));
    RecognitionStage wide(openEllipse(24));  // 400 sin 12 = 83.2
    CHECK_FALSE(RecognizeEllipse(wide.Input()));
}

TEST_CASE("Half axes of 65,536 and more decline") {
    RecognitionStage fixture(EllipsePoints(0, 0, 80000, 70000, 0, 100));
    CHECK_FALSE(RecognizeEllipse(fixture.Input()));
    CHECK(IsBlank(*fixture.telestrator.shapeSurface));
}

// Round after round t grows by 0.31415927 from itself: 19 corners lie below 2 pi, the 20th at 6.2831855 does not.
TEST_CASE("The drawn circle is a polygon of 19 corners and its ends") {
    const float aspect = 1.25F;
    const Points points = EllipsePoints(500, 400, 150, 150, 0, 120);
    RecognitionStage fixture(points, aspect);
    fixture.settings.recogniseEllipse = false;
    REQUIRE(RecognizeCircle(fixture.Input()));
    const reference::Circle circle = reference::VoteForCircles(points);
    const auto reference = ReferenceSurface(5);
    const double middle = circle.centreY * double{aspect};
    reference->BeginStroke(circle.centreX + circle.radius, middle, 1);
    float t = 0;
    int corners = 0;
    for (t = static_cast<float>(0.31415927); t < 6.283185307179586; t = static_cast<float>(t + 0.31415927)) {
        reference->ContinueStroke(std::cos(double{t}) * circle.radius + circle.centreX,
                                  std::sin(double{t}) * circle.radius * double{aspect} + middle, 1);
        ++corners;
    }
    CHECK_EQ(corners, 19);
    reference->EndStroke(circle.centreX + circle.radius, middle, 1);
    CHECK(PixelsOf(*fixture.telestrator.shapeSurface) == PixelsOf(*reference));
}

TEST_CASE("Three points are no circle, whatever they vote for") {
    RecognitionStage fixture({{450, 600, 0}, {400, 650, 0}, {350, 600, 0}});
    CHECK_FALSE(RecognizeCircle(fixture.Input()));
}

TEST_CASE("A spiral is neither ellipse nor circle nor cross") {
    RecognitionStage fixture(SpiralPoints(512, 512, 400, 300));
    CHECK_FALSE(RecognizeEllipse(fixture.Input()));
    CHECK_FALSE(RecognizeCircle(fixture.Input()));
    CHECK_FALSE(RecognizeCross(fixture.Input()));
    CHECK(IsBlank(*fixture.telestrator.shapeSurface));
}

// The lines cross at (500, 460), their ends are 100 sqrt 2 away: h = 70.7.
TEST_CASE("Two crossing strokes become an upright cross as large as the farthest point") {
    const float aspect = 1.5F;
    RecognitionStage fixture(CrossPoints(500, 460, 100, 60), aspect);
    REQUIRE(RecognizeCross(fixture.Input()));
    double farthest = 0;
    Vector3 crossing;
    const Points points = CrossPoints(500, 460, 100, 60);
    bool found = false;
    for (std::size_t i = 0; i < 30 && !found; ++i) {
        for (std::size_t j = 58; j >= i + 3 && !found; --j) {
            found = SegmentsIntersect(points[i], points[i + 1], points[j], points[j + 1], crossing);
        }
    }
    REQUIRE(found);
    CHECK_EQ(crossing.x, doctest::Approx(500));
    CHECK_EQ(crossing.y, doctest::Approx(460));
    for (const Vector3& point : points) farthest = std::fmax(farthest, (crossing - point).Length());
    const double h = farthest / 2;
    const double x = crossing.x;
    const double y = crossing.y;
    const auto reference = ReferenceSurface(5);
    reference->BeginStroke(x - h, (y - h) * aspect, 1);
    reference->EndStroke(x + h, (y + h) * aspect, 1);
    reference->BeginStroke(x - h, (y + h) * aspect, 1);
    reference->EndStroke(x + h, (y - h) * aspect, 1);
    CHECK(PixelsOf(*fixture.telestrator.shapeSurface) == PixelsOf(*reference));
}

TEST_CASE("A set cross width makes every cross that wide") {
    TelestratorSettings values = Recognising();
    values.crossDiameter = 40;
    RecognitionStage fixture(CrossPoints(500, 460, 100, 60), 1, values);
    REQUIRE(RecognizeCross(fixture.Input()));
    // h = 20: the ends lie at 480 and 520, and nothing is painted beyond a dab's half width.
    CHECK_GT(AlphaAt(*fixture.telestrator.shapeSurface, 483, 443), 0);
    CHECK_EQ(AlphaAt(*fixture.telestrator.shapeSurface, 470, 430), 0);
}

TEST_CASE("A cross is upright whatever the angle of its strokes") {
    Points points = LinePoints(400, 500, 600, 500, 30);
    const Points second = LinePoints(500, 400, 500, 600, 30);
    points.insert(points.end(), second.begin(), second.end());
    RecognitionStage fixture(points);
    REQUIRE(RecognizeCross(fixture.Input()));
    CHECK_GT(AlphaAt(*fixture.telestrator.shapeSurface, 530, 530), 0);  // h = 50
    CHECK_EQ(AlphaAt(*fixture.telestrator.shapeSurface, 540, 500), 0);
}

TEST_CASE("A loop whose ends cross passes as a cross") {
    // Once round and 20 degrees on, drawn outwards so that the last part crosses the first.
    Points points;
    for (int i = 0; i <= 80; ++i) {
        const double t = i * 380.0 / 80 * pi / 180;
        const double r = 100 + (i < 40 ? 10 : -10) * std::cos(t / 2);
        points.emplace_back(500 + r * std::cos(t), 500 + r * std::sin(t), 0.0);
    }
    points.push_back(Vector3(500 + 150 * std::cos(0.3), 500 + 150 * std::sin(0.3), 0));
    RecognitionStage fixture(points);
    fixture.settings.recogniseEllipse = false;
    fixture.settings.recogniseCircle = false;
    CHECK(RecognizeCross(fixture.Input()));
}

TEST_CASE("One point is no cross") {
    RecognitionStage fixture({{5, 5, 0}});
    CHECK_FALSE(RecognizeCross(fixture.Input()));
}

TEST_CASE("A million points are declined at once") {
    RecognitionStage fixture({});
    fixture.telestrator.strokePointCount = 1000000;
    CHECK_FALSE(RecognizeEllipse(fixture.Input()));
    CHECK_FALSE(RecognizeCircle(fixture.Input()));
    CHECK_FALSE(RecognizeCross(fixture.Input()));
}

TEST_CASE("Points far beyond the canvas are survived") {
    constexpr double far = 1e30;
    const Points wild{{far, far, 0}, {-far, far, 0}, {-far, -far, 0}, {far, -far, 0}, {0, 0, 0}, {3e38, -3e38, 0}};
    RecognitionStage fixture(wild);
    for (const std::int32_t width : {-1, 0, 1, 5, std::numeric_limits<std::int32_t>::max()}) {
        fixture.settings.brushWidth = width;
        (void)RecognizeEllipse(fixture.Input());
        (void)RecognizeCircle(fixture.Input());
        (void)RecognizeCross(fixture.Input());
    }
    CHECK(fixture.telestrator.recognitionBuffersReady);
}

TEST_CASE("An infinite aspect draws nothing and ends") {
    RecognitionStage fixture(EllipsePoints(500, 480, 200, 100, 0, 150));
    fixture.telestrator.aspect = std::numeric_limits<float>::infinity();
    CHECK(RecognizeEllipse(fixture.Input()));
    CHECK(IsBlank(*fixture.telestrator.shapeSurface));
    fixture.telestrator.aspect = std::numeric_limits<float>::quiet_NaN();
    CHECK(RecognizeEllipse(fixture.Input()));
    (void)RecognizeCircle(fixture.Input());
    CHECK(IsBlank(*fixture.telestrator.shapeSurface));
}

// A path of `count` points with strides of about 5 pixels that winds at random; some points stand twice.
Points WindingPoints(std::mt19937& random, int count, double bend) {
    std::uniform_real_distribution<double> unit(-1, 1);
    Points points{{500, 500, 0}};
    double heading = unit(random);
    while (static_cast<int>(points.size()) < count) {
        heading += bend * unit(random);
        const Vector3 last = points.back();
        if (random() % 20 == 0) points.push_back(last);
        points.emplace_back(last.x + 5 * std::cos(heading), last.y + 5 * std::sin(heading), 0.0);
    }
    points.resize(static_cast<std::size_t>(count));
    return points;
}

std::optional<Vector3> PlainCrossing(const Points& points) {
    Vector3 crossing;
    for (std::size_t i = 0; i < points.size() / 2; ++i) {
        for (std::size_t j = points.size() - 2; j >= i + 3; --j) {
            if (SegmentsIntersect(points[i], points[i + 1], points[j], points[j + 1], crossing)) return crossing;
        }
    }
    return std::nullopt;
}

TEST_CASE("The cross lies where testing each pair of segments in turn finds the first crossing") {
    constexpr unsigned seed = 23;
    CAPTURE(seed);
    std::mt19937 random(seed);
    TelestratorSettings settings = Recognising();
    settings.crossDiameter = 40;
    RecognitionStage fixture({}, 1, settings);
    int crossed = 0;
    for (int round = 0; round < 60; ++round) {
        CAPTURE(round);
        const int count = 2 + static_cast<int>(random() % 900);
        const double bends[] = {0.05, 0.4, 1.0, 2.0};
        const Points points = WindingPoints(random, count, bends[round % 4]);
        const std::optional<Vector3> wanted = PlainCrossing(points);
        crossed += wanted ? 1 : 0;
        StoreStroke(fixture.telestrator, points);
        fixture.telestrator.shapeSurface->ClearPixels();
        REQUIRE_EQ(RecognizeCross(fixture.Input()), wanted.has_value());
        if (!wanted) continue;
        const double x = wanted->x;
        const double y = wanted->y;
        const auto reference = ReferenceSurface(5);
        reference->BeginStroke(x - 20, y - 20, 1);
        reference->EndStroke(x + 20, y + 20, 1);
        reference->BeginStroke(x - 20, y + 20, 1);
        reference->EndStroke(x + 20, y - 20, 1);
        REQUIRE(PixelsOf(*fixture.telestrator.shapeSurface) == PixelsOf(*reference));
    }
    CHECK_GT(crossed, 10);
    CHECK_LT(crossed, 50);
}

std::int32_t PointsNear(const Points& points, const Vector3& centre, double radius, double tolerance) {
    return static_cast<std::int32_t>(std::count_if(points.begin(), points.end(), [&](const Vector3& point) {
        return std::abs((centre - point).Length() - radius) < tolerance;
    }));
}

TEST_CASE("No points are said to lie on no circle as long as some circle holds them") {
    constexpr unsigned seed = 24;
    CAPTURE(seed);
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> unit(0, 1);
    for (int round = 0; round < 300; ++round) {
        CAPTURE(round);
        const Points points = round % 2 == 0 ? WindingPoints(random, 80, 0.1)
                                             : EllipsePoints(1000 * unit(random), 1000 * unit(random),
                                                             256 * unit(random), 256 * unit(random), unit(random), 80);
        const double tolerance = 1 + 30 * unit(random);
        // Any circle whose centre is one of the search's; the best of some is close to the best of all.
        std::int32_t most = 0;
        for (int i = 0; i < 400; ++i) {
            const Vector3 centre(4.0 * static_cast<double>(random() % 256), 4.0 * static_cast<double>(random() % 256),
                                 0);
            most = std::max(most, PointsNear(points, centre, 256 * unit(random), tolerance));
        }
        REQUIRE(MayLieOnACircle(points, tolerance, most));
    }
}

TEST_CASE("Spirals, lines and waves are known to lie on no circle without a search") {
    for (const Points& points :
         {SpiralPoints(512, 512, 400, 300), LinePoints(100, 100, 900, 700, 200), WavePoints(100, 500, 800, 300)}) {
        CHECK_FALSE(MayLieOnACircle(points, 5, static_cast<std::int32_t>(points.size()) / 2));
    }
    CHECK(MayLieOnACircle(EllipsePoints(500, 500, 200, 200, 0, 100), 5, 100));
    CHECK_FALSE(MayLieOnACircle(EllipsePoints(500, 500, 200, 200, 0, 100), 5, 101));
    CHECK(MayLieOnACircle({}, std::numeric_limits<double>::quiet_NaN(), 5));  // no tolerance to tell by
}

}  // namespace
}  // namespace chalkpane::testing
