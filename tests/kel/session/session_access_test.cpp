#include "kel/session/session_access.h"

#include <doctest/doctest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/cli/temporary_folder.h"
#include "tests/cli/thrown.h"
#include "tests/kel/session/session_text.h"

namespace kel {
namespace {

namespace fs = std::filesystem;
using cli::testing::Thrown;

// A folder with a session in `shows`, a picture there, one above, and one beside it.
struct Place {
    Place() {
        for (const char* path : {"shows", "shows/sub", "elsewhere"}) fs::create_directory(folder / path);
        for (const char* path : {"shows/a.png", "shows/sub/b.png", "above.png", "elsewhere/c.png", "shows/m.qop"})
            cli::testing::WriteText(folder / path, "bytes");
        session = ParseSession(testing::PlainSession().dump(), folder / "shows/s.json");
    }

    [[nodiscard]] std::string Read(const std::string& path) const {
        return Thrown([&] { (void)SessionAccess(session, permissions).InputFile(path, "/place"); });
    }
    [[nodiscard]] std::string Loaded(const std::string& module) const {
        SessionPlugin plugin;
        plugin.module = module;
        plugin.place = "/plugin";
        try {
            return SessionAccess(session, permissions).ModuleFile(plugin).string();
        } catch (const cli::Error& error) {
            return error.what();
        }
    }
    [[nodiscard]] std::string At(const std::string& path) const { return (folder / path).string(); }
    [[nodiscard]] std::string OutsideLine(const std::string& path) const {
        return At("shows/s.json") + ": /place: \"" + path +
               "\" lies outside the session's folder; --allow-outside lets it be read";
    }

    cli::testing::TemporaryFolder folder;
    Session session;
    SessionPermissions permissions;
};

}  // namespace

TEST_CASE("A session reads in its folder and below") {
    const Place place;
    for (const std::string path : {"a.png", "sub/b.png", "sub/../a.png", "./a.png", "none.png", "..a.png"})
        CHECK_EQ(place.Read(path), "nothing");
    CHECK_EQ(place.Read(place.At("shows/a.png")), "nothing");
}

TEST_CASE("A session does not read outside its folder, there or not") {
    const Place place;
    for (const std::string path : {"../above.png", "sub/../../above.png", "../none.png", "/dev/zero", "/etc/passwd"})
        CHECK_EQ(place.Read(path), place.OutsideLine(path));
    CHECK_EQ(place.Read(place.At("elsewhere/c.png")), place.OutsideLine(place.At("elsewhere/c.png")));
}

TEST_CASE("A link leads a session out of its folder no more than a path does") {
    const Place place;
    fs::create_symlink("../elsewhere/c.png", place.folder / "shows/link.png");
    fs::create_directory_symlink("../elsewhere", place.folder / "shows/door");
    fs::create_symlink("sub/b.png", place.folder / "shows/inner.png");
    CHECK_EQ(place.Read("link.png"), place.OutsideLine("link.png"));
    CHECK_EQ(place.Read("door/c.png"), place.OutsideLine("door/c.png"));
    CHECK_EQ(place.Read("inner.png"), "nothing");
}

TEST_CASE("What the operator names or allows is read wherever it is") {
    Place place;
    place.permissions.files = {place.folder / "above.png"};
    CHECK_EQ(place.Read("../above.png"), "nothing");
    CHECK_EQ(place.Read("../elsewhere/c.png"), place.OutsideLine("../elsewhere/c.png"));
    place.permissions.allowOutside = true;
    CHECK_EQ(place.Read("../elsewhere/c.png"), "nothing");
}

TEST_CASE("A recording reads what its player's account owns, regular files alone") {
    Place place;
    place.session.isRecording = true;
    CHECK_EQ(place.Read(place.At("elsewhere/c.png")), "nothing");
    REQUIRE_EQ(mkfifo(place.At("elsewhere/pipe.png").c_str(), 0600), 0);
    for (const std::string& path : {place.At("elsewhere/pipe.png"), place.At("elsewhere"), std::string("/dev/zero")})
        CHECK_EQ(place.Read(path), place.OutsideLine(path));
    // Only the root may give a file to somebody else.
    if (chown(place.At("elsewhere/c.png").c_str(), geteuid() + 1, getegid()) != 0) return;
    CHECK_EQ(place.Read(place.At("elsewhere/c.png")), place.OutsideLine(place.At("elsewhere/c.png")));
}

TEST_CASE("A session loads no module that nobody but itself has named") {
    Place place;
    CHECK_EQ(place.Loaded("m.qop"), place.At("shows/s.json") +
                                        ": /plugin/module: a module is a program, and sessions do not choose programs: "
                                        "--module " +
                                        place.At("shows/m.qop") + " allows this one, --allow-modules any");
    place.permissions.allowModules = true;
    CHECK_EQ(place.Loaded("m.qop"), place.At("shows/m.qop"));
}

TEST_CASE("A module that the operator names is loaded by its path, however written") {
    Place place;
    place.permissions.modules = {place.folder / "elsewhere/../shows/m.qop"};
    CHECK_EQ(place.Loaded("./m.qop"), place.At("shows/./m.qop"));
    CHECK_EQ(place.Loaded(place.At("shows/m.qop")), place.At("shows/m.qop"));
    CHECK_NE(place.Loaded("sub/m.qop").find("sessions do not choose programs"), std::string::npos);
}

TEST_CASE("By its name alone a module is the operator's, then an installed one, and never the one beside the session") {
    Place place;
    cli::testing::WriteText(place.folder / "elsewhere/m.qop", "installed");
    place.permissions.moduleFolders = {place.folder / "elsewhere"};
    CHECK_EQ(place.Loaded("m.qop"), place.At("elsewhere/m.qop"));
    CHECK_EQ(place.Loaded("../elsewhere/m.qop"), place.At("shows/../elsewhere/m.qop"));
    place.permissions.modules = {place.folder / "own/m.qop"};
    CHECK_EQ(place.Loaded("m.qop"), place.At("own/m.qop"));
}

}  // namespace kel
