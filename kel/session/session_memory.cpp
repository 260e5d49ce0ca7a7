#include "kel/session/session_memory.h"

#include <set>

#include "cli/memory_budget.h"
#include "cli/nearest_name.h"
#include "kel/video/video_size.h"
#include "picture_io/picture.h"
#include "picture_io/picture_size.h"

namespace kel {
namespace {

constexpr double bytesOfPixel = 4;
constexpr double copiesOfPicture = 3;         // as it was read, on its way to the texture, and there
constexpr double copiesOfWindow = 8;          // colour and depth, twice for the overlay; as read and on its way out
constexpr double bytesOfPlugIn = 64U << 20U;  // canvas, strokes, texture and undos

class Counter {
public:
    Counter(const Session& session, const SessionAccess& access) : m_access(access) {
        m_budget.Count(bytesOfPixel * copiesOfWindow * session.window.width * session.window.height, "the window");
        for (const SessionContainer& container : session.containers) CountContainer(container);
        for (const SessionEvent& event : session.events)
            if (const auto* set = std::get_if<SetEvent>(&event.what)) CountValues(set->values);
    }

    [[nodiscard]] const cli::MemoryBudget& Budget() const { return m_budget; }

private:
    void CountContainer(const SessionContainer& container) {
        if (!container.picture.empty()) CountPicture(container.picture, container.place + "/picture");
        if (!container.film.empty()) CountFilm(container.film, container.place + "/film");
        if (!container.plugin) return;
        m_budget.Count(bytesOfPlugIn, "a plug-in");
        CountValues(container.plugin->parameters);
    }

    // A text that names a picture may be one that the plug-in shall have.
    void CountValues(const std::vector<SessionValue>& values) {
        for (const SessionValue& value : values) {
            const auto* text = std::get_if<std::string>(&value.value);
            if (text == nullptr || !picture_io::IsPictureName(*text) || !m_images.insert(*text).second) continue;
            CountPicture(*text, value.place);
        }
    }

    void CountPicture(const std::string& path, const std::string& place) {
        m_budget.Count(picture_io::MemoryOfPicture(m_access.InputFile(path, place), copiesOfPicture, false),
                       "the picture " + cli::Quoted(path));
    }

    void CountFilm(const std::string& path, const std::string& place) {
        if (const auto pixels = ReadVideoPixels(m_access.InputFile(path, place)))
            m_budget.Count(*pixels * (bytesOfVideoPixel + bytesOfPixel), "the film " + cli::Quoted(path));
    }

    const SessionAccess& m_access;
    std::set<std::string> m_images;  // the plug-ins' own: read once
    cli::MemoryBudget m_budget;
};

}  // namespace

void CheckMemory(const Session& session, const SessionAccess& access, const SessionPermissions& permissions) {
    Counter(session, access).Budget().Check(permissions.memory, session.file.string());
}

}  // namespace kel
