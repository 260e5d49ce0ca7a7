#include "kel/outputs/output_sink.h"

#include <doctest/doctest.h>

#include "cli/error.h"
#include "kel/outputs/field_views.h"
#include "kel/outputs/fill_key_sink.h"
#include "kel/outputs/output_format.h"
#include "kel/video/video_reader.h"
#include "tests/cli/temporary_folder.h"
#include "tests/kel/pixels.h"
#include "tests/kel/probe.h"

// Sinks alone, without a renderer.

namespace kel {
namespace {

constexpr WindowSize sinkSize{16, 8};
constexpr std::int64_t fields = 3;

// A field of which every view is there, each in a grey of its own.
OutputField SomeField(std::int64_t number) {
    OutputField field;
    field.number = number;
    field.seconds = static_cast<double>(number) / 50;
    for (std::size_t view = 0; view < viewCount; ++view) {
        const auto grey = static_cast<std::uint8_t>(10 * number + 40 * static_cast<int>(view));
        field.views[view] = std::make_shared<const picture_io::Picture>(
            testing::Plain(sinkSize.width, sinkSize.height, {grey, grey, grey, 255}));
    }
    return field;
}

struct Run {
    explicit Run(std::unique_ptr<OutputSink> made) : sink(std::move(made)) {
        sink->Open({sinkSize, 50.0, fields, &files});
        for (std::int64_t number = 0; number < fields; ++number)
            if (sink->WantsEveryField() || number == fields - 1) sink->TakeField(SomeField(number));
    }
    void Finish() {
        sink->Close();
        files.Commit();
        sink->Commit();
    }
    picture_io::OutputFiles files;
    std::unique_ptr<OutputSink> sink;
};

}  // namespace

TEST_CASE("A sink that is abandoned leaves nothing behind, and one that is committed its files") {
    for (const OutputFormat& format : OutputFormats())
        for (const bool isNumbered : {false, true}) {
            if (!IsFileOutput(format) || (isNumbered && format.medium == OutputMedium::Video)) continue;
            CAPTURE(format.ending);
            CAPTURE(isNumbered);
            const cli::testing::TemporaryFolder folder;
            const std::string path = (folder / (isNumbered ? "f%02d" : "f")).string() + std::string(format.ending);
            { const Run abandoned(MakeSink(View::Rendered, path)); }
            CHECK_EQ(folder.Entries(), 0);
            Run finished(MakeSink(View::Rendered, path));
            CHECK_EQ(finished.sink->IsLive(), !isNumbered && format.isLive);
            finished.Finish();
            CHECK_EQ(folder.Entries(), isNumbered ? fields : 1);
        }
}

// Field 2 adds 20 to the greys of the third and the fourth view, 80 and 120.
TEST_CASE("Fill and key are one sink, whatever each of them is") {
    const cli::testing::TemporaryFolder folder;
    Run run(std::make_unique<FillKeySink>((folder / "fill.mov").string(), (folder / "key.png").string()));
    CHECK(run.sink->WantsEveryField());
    CHECK_FALSE(run.sink->IsLive());
    run.Finish();
    VideoReader fill(folder / "fill.mov");
    CHECK_EQ(fill.FrameCount(), fields);
    CHECK(fill.ReadFrame(2).At(3, 3) == testing::Pixel{100, 100, 100, 255});
    CHECK(picture_io::ReadPicture(folder / "key.png").At(3, 3) == testing::Pixel{140, 140, 140, 255});
}

TEST_CASE("The strokes alone go to no sink that drops alpha") {
    for (const OutputFormat& format : OutputFormats()) {
        CAPTURE(format.ending);
        if (!IsFileOutput(format)) continue;
        const std::string path = "f" + std::string(format.ending);
        if (format.hasAlpha)
            CHECK_NE(MakeSink(View::Overlay, path), nullptr);
        else
            CHECK_THROWS_AS((void)MakeSink(View::Overlay, path), cli::Error);
        CHECK_NE(MakeSink(View::Fill, path), nullptr);
    }
}

TEST_CASE("While a host's picture stays the same, its views are the very same pictures") {
    Host host({8, 8});
    host.RunField();
    FieldViews views(false);
    const SharedPicture rendered = views.Show(View::Rendered, host);
    const SharedPicture key = views.Show(View::Key, host);
    host.RunField();
    CHECK_EQ(views.Show(View::Rendered, host), rendered);
    CHECK_EQ(views.Show(View::Key, host), key);
    host.SetCamera(testing::CameraInFront());
    host.AddContainer({});
    host.RunField();
    CHECK_NE(views.Show(View::Rendered, host), rendered);
    CHECK(views.Show(View::Rendered, host)->At(4, 4) == testing::white);
}

}  // namespace kel
