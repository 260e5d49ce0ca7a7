#include "apps/kel/commands/timeline_option.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <map>
#include <string>

#include "cli/error.h"

namespace kel {

void AddTimelineOption(CLI::App& command, TimelineChoice& choice) {
    static const std::map<std::string, TimelineChoice> words{{"film", TimelineChoice::Video},
                                                             {"session", TimelineChoice::Session}};
    command
        .add_option_function<std::string>(
            "--timeline", [&choice](const std::string& word) { choice = words.at(word); },
            "film: outputs have the frames and the rate of the film that is drawn on; session: every field, with all "
            "pauses (default: film for what is drawn on a film in the window)")
        ->check(CLI::IsMember({"film", "session"}));
}

bool FollowsVideo(TimelineChoice choice, const Session& session) {
    const auto hasVideo = [](const SessionContainer& container) { return !container.video.empty(); };
    const bool isThere = std::ranges::any_of(session.containers, hasVideo);
    if (choice == TimelineChoice::Video && !isThere)
        throw cli::Error(session.file.string(), "/containers",
                         "no container has a film, whose --timeline could be followed");
    if (choice != TimelineChoice::Usual) return choice == TimelineChoice::Video;
    return session.isRecording && isThere;
}

}  // namespace kel
