#pragma once

#include <array>
#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "kel/ink/container_ink.h"
#include "kel/scene/host.h"
#include "kel/session/player_pointer.h"
#include "kel/session/session.h"
#include "kel/session/session_access.h"
#include "kel/session/video_on_container.h"

namespace kel {

// Plays a session on a host.
//
// Borrows both for its life; the host is fresh, with the session's window. All that can be wrong with a session is
// found by the constructor: modules, pictures, videos, names and values of parameters, buttons, the pointer's
// timetable. Only a damaged frame in the middle of a video shows when it is its turn.
class Player {
public:
    // defaultModule: for the plug-ins that name no module. Throws Error, also for a file that the session does not get.
    Player(const Session& session, Host& host, const std::filesystem::path& defaultModule,
           SessionPermissions permissions = {});

    [[nodiscard]] bool IsOver() const { return m_field >= m_session.fields; }
    [[nodiscard]] std::int64_t NextField() const { return m_field; }

    // A container of the session.
    struct Container {
        ObjectId id = noObject;
        const Module* module = nullptr;     // borrowed from the host; null without a plug-in
        std::unique_ptr<VideoShow> video;   // null without a video
        std::unique_ptr<ContainerInk> ink;  // what was drawn there; null without a plug-in
    };
    // In the order of the session.
    [[nodiscard]] std::span<const Container> Containers() const { return m_containers; }

    // Changes a video as an event of the next field would. The index is that of a container with a video.
    void ChangeVideo(std::size_t container, const VideoChange& change);

    // Another video on a container, from the next field on; null: none, and what is on it stays.
    void SetVideo(std::size_t container, std::unique_ptr<VideoShow> video);

    // Of the field played last: that of the first video.
    [[nodiscard]] SoundMoment Heard() const;

    // How the videos' frames are made from now on.
    void SetVideoConversion(VideoConversion conversion);
    // The picture of the field played last, with its videos as they are written. Throws Error as PlayField does.
    void ShowVideosExactly();
    // Shows that frame of a container's video under what is drawn now, between two fields. Throws Error when the frame
    // is damaged.
    void ShowVideoFrame(std::size_t container, std::int64_t frame);

    // Makes an edit of what was drawn at once, before the next field, on a container with a plug-in. False: there was
    // nothing to do.
    bool EditInk(std::size_t container, const InkEdit& edit);
    // Pushes a button of a container's plug-in in the next field. Throws Error when there is none of that name.
    void PushButton(std::size_t container, const std::string& name);

    enum class Rendering { Wanted, NotWanted };

    // Plays the next field and returns the names under which its picture is to be saved. The host's picture is of this
    // field when it is wanted, when the session saves it, and after the last field; otherwise it is not drawn. After
    // the session's end fields go on without events. Throws Error for a damaged frame of a video, with the field
    // played. fieldsDue: as for Host::RunField.
    std::vector<std::string> PlayField(Rendering rendering, int fieldsDue = 1);

    // The container whose canvas is the overlay: the first with a plug-in; noObject when there is none.
    [[nodiscard]] ObjectId OverlayContainer() const;

private:
    // What happens in a field besides the pointer. One of the five is there.
    struct PendingChange {
        std::int64_t field = 0;
        std::size_t container = 0;
        std::vector<ParameterSetting> settings;
        std::string button;
        std::optional<VideoChange> video;
        std::optional<InkEdit> ink;
        std::string save;
    };

    void BuildContainer(const SessionContainer& container, const std::filesystem::path& defaultModule);
    std::unique_ptr<VideoShow> OpenVideo(const SessionContainer& container, ObjectId id) const;
    const Module& LoadModule(const SessionPlugin& plugin, const std::filesystem::path& defaultModule);
    std::vector<ParameterSetting> Settings(const std::vector<SessionValue>& values, const Module& module);
    picture_io::Picture ReadPictureAt(const std::string& path, const std::string& place) const;
    void PreparePendingChange(const SessionEvent& event);
    InkEdit PrepareInk(const SessionEvent& event, const InkEvent& ink);
    [[nodiscard]] std::vector<chalkpane::SharedStroke> ReadStrokes(const SessionEvent& event,
                                                                   const InkEvent& ink) const;
    void CheckStroke(const SessionEvent& event, const InkEvent& ink) const;
    void CheckFrame(const SessionEvent& event, const VideoEvent& video) const;
    std::vector<std::string> DeliverPendingChanges();
    void ShowVideos();
    void CheckButton(const SessionEvent& event, const std::string& name, const Module& module) const;

    const Session& m_session;
    Host& m_host;
    SessionPermissions m_permissions;
    SessionAccess m_access;
    std::vector<Container> m_containers;                          // as in the session
    std::array<std::vector<chalkpane::SharedStroke>, 9> m_slots;  // drawings that were kept
    std::vector<TimedPointerStep> m_pointer;
    std::vector<PendingChange> m_pendingChanges;
    std::size_t m_nextPointer = 0;
    std::size_t m_nextPendingChange = 0;
    std::int64_t m_field = 0;
};

}  // namespace kel
