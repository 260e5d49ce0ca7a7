#include <doctest/doctest.h>

#include <nlohmann/json.hpp>

#include "picture_io/picture.h"
#include "tests/kel/kel_folder.h"

// What the renderer never does to the files of those who use it.

namespace kel {
namespace {

using cli::testing::Ended;
using cli::testing::ReadText;
using nlohmann::json;
using testing::KelFolder;
using testing::PlainSession;

// With a session that reads page.png, brush.png and later.png in its three ways, and a film.
class ClaimedFolder : public KelFolder {
public:
    ClaimedFolder() : KelFolder(Session()) {
        for (const char* const name : {"page.png", "brush.png", "later.png"})
            picture_io::WritePicture(picture_io::Picture(4, 4), Path(name));
        std::filesystem::copy_file(KEL_SOURCE_FOLDER "/tests/fuzz/seeds/video/small.mp4", Path("film.mp4"));
    }

    // Refused by this line with code 2, and every file is as it was.
    void CheckRefused(const std::string& arguments, const std::string& line) const {
        CAPTURE(arguments);
        const std::string before = AllBytes();
        const Ended ended = Run(arguments, KEL_PROGRAM, "unset DISPLAY WAYLAND_DISPLAY SDL_VIDEODRIVER;");
        CHECK_EQ(ended.complaint, "kel: " + line + "\n");
        CHECK_EQ(ended.exitCode, 2);
        CHECK(AllBytes() == before);
    }

private:
    static json Session() {
        json session = PlainSession();
        session["containers"].push_back({{"size", {4, 4}}, {"picture", "page.png"}});
        session["containers"].push_back({{"size", {4, 4}}, {"film", "film.mp4"}});
        session["containers"][0]["plugin"] = {{"parameters", {{"BrushImage", "brush.png"}}}};
        session["events"] = {{{"field", 3}, {"set", {{"BrushImage", "later.png"}}}}, {{"field", 4}, {"save", "a.png"}}};
        return session;
    }
    [[nodiscard]] std::string AllBytes() const {
        std::string all;
        for (const char* const name : {"s.json", "page.png", "brush.png", "later.png", "film.mp4"})
            all += ReadText(Path(name)) + '|';
        return all + std::to_string(Entries());
    }
};

}  // namespace

TEST_CASE("kel play refuses an output that the session reads, in whichever way it does") {
    const ClaimedFolder folder;
    // The session is named without a folder, and so are the files in it.
    const auto refused = [&](const std::string& option, const std::string& output, const std::string& input) {
        folder.CheckRefused("play s.json " + option + " " + output,
                            output + ": cannot be written: it is read too, as " + input);
    };
    refused("--out", "s.json", "s.json");
    refused("--out", "page.png", "page.png");
    refused("--overlay", "brush.png", "brush.png");
    refused("--canvas", "later.png", "later.png");
    refused("--overlay", "film.mp4", "film.mp4");
    std::filesystem::create_symlink("later.png", folder.Path("link.png"));
    std::filesystem::create_hard_link(folder.Path("page.png"), folder.Path("other.png"));
    refused("--out", "link.png", "later.png");
    refused("--out", "other.png", "page.png");
}

TEST_CASE("kel play refuses a numbered picture and a saved one that is read") {
    const ClaimedFolder folder;
    std::filesystem::create_symlink("later.png", folder.Path("f7.png"));
    folder.CheckRefused("play s.json --out f%01d.png", "f7.png: cannot be written: it is read too, as later.png");
    std::filesystem::create_directory(folder.Path("saves"));
    std::filesystem::create_hard_link(folder.Path("page.png"), folder.Path("saves/a.png"));
    folder.CheckRefused("play s.json --saves saves --overwrite",
                        "saves/a.png: cannot be written: it is read too, as page.png");
}

TEST_CASE("kel play refuses two outputs that are one file") {
    const ClaimedFolder folder;
    folder.CheckRefused("play s.json --out x.png --canvas x.png", "x.png: two outputs have this name");
    std::filesystem::create_symlink("x.png", folder.Path("y.png"));
    folder.CheckRefused("play s.json --out x.png --canvas y.png", "y.png: is the same file as another output, x.png");
}

#ifdef KEL_HAS_WINDOW
TEST_CASE("kel window never records over what it reads, nor without a word over what is no session") {
    const ClaimedFolder folder;
    folder.CheckRefused("window film.mp4 --record film.mp4",
                        "film.mp4: cannot be written: it is read too, as film.mp4");
    folder.CheckRefused("window film.mp4 --record film.mp4 --overwrite",
                        "film.mp4: cannot be written: it is read too, as film.mp4");
    folder.CheckRefused("window s.json --record s.json", "s.json: cannot be written: it is read too, as s.json");
    folder.CheckRefused("window s.json --record later.png",
                        "later.png: cannot be written: it is read too, as later.png");
    folder.CheckRefused("window page.png --record later.png",
                        "later.png: is no session; --overwrite replaces it all the same");
    folder.CheckRefused("window page.png --record r.json --out r.json", "r.json: two outputs have this name");
    folder.CheckRefused("window s.json --out page.png", "page.png: cannot be written: it is read too, as page.png");
}

TEST_CASE("kel window may record over a session, and with a word over anything") {
    const ClaimedFolder folder;
    folder.Write("old.json", PlainSession().dump());
    // Both get as far as the window, which there is not.
    for (const char* const words :
         {"window page.png --record old.json", "window page.png --record later.png --overwrite"}) {
        const Ended ended = folder.Run(words, KEL_PROGRAM, "unset DISPLAY WAYLAND_DISPLAY SDL_VIDEODRIVER;");
        CHECK(ended.complaint.starts_with("kel: no window: "));
        CHECK_EQ(ended.exitCode, 2);
    }
}
#endif

}  // namespace kel
