#pragma once

#include <SDL.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "kel/window/brush_cursor.h"
#include "kel/window/clean_output.h"
#include "kel/window/ink_panel.h"
#include "kel/window/key_fill_output.h"
#include "kel/window/live_feed.h"
#include "kel/window/live_opening.h"
#include "kel/window/live_sound.h"
#include "kel/window/open_page.h"
#include "kel/window/panel.h"
#include "kel/window/sdl_window.h"
#include "kel/window/spotlight.h"
#include "kel/window/status_line.h"
#include "kel/window/stroke_chooser.h"
#include "kel/window/stylus_watch.h"
#include "kel/window/touch_pointer.h"
#include "kel/window/video_sound.h"
#include "kel/window/window_painter.h"
#include "kel/window/workspace_window.h"
#include "kel/workspace/eraser_end.h"
#include "kel/workspace/fitted_keys.h"
#include "kel/workspace/picture_area.h"
#include "kel/workspace/picture_zoom.h"

namespace kel {

// The window at work: takes what the operator does, runs the fields that are due, shows what changed. One thread, that
// of the display.
class WindowLoop final : private ControlTarget {
public:
    explicit WindowLoop(WindowOptions options);
    void Run();

private:
    using Clock = FieldPacer::Clock;

    void FitTheKeys(KeyFit fit);
    void Open(const std::filesystem::path& file) { OpenInstead(file, nullptr); }
    void OpenByName(const std::string& name);
    void OpenLiveThatCame();
    void OpenInstead(const std::filesystem::path& file, std::shared_ptr<LiveSource> live);
    void TellAll(const std::string& news);
    void OpenSound();
    void FollowWithSound(const SoundMoment& heard);
    void StartStreams();
    [[nodiscard]] std::vector<LiveFigures> StreamFigures() const;
    void StartPacing() {
        m_pacer = FieldPacer(m_workspace->FieldsPerSecond(), Clock::now());
        m_givenUp = 0;
    }
    [[nodiscard]] WindowSize Free() const;
    [[nodiscard]] PictureArea WholePicture() const { return FitPicture(m_workspace->TheHost().Window(), Free()); }
    [[nodiscard]] bool IsPanelFolded() const;
    [[nodiscard]] bool IsOnPicture(std::int32_t x, std::int32_t y) const;

    void TakeEvents();
    void TakeForAll(const SDL_Event& event);
    [[nodiscard]] bool ComesAfterClicks(const SDL_Event& event) const;
    void SettleClicks();
    void TakeEvent(const SDL_Event& event);
    void TakePointer(PointerKind kind, std::int32_t x, std::int32_t y, std::uint32_t device);
    [[nodiscard]] StylusWatch::State PenOf(std::uint32_t device);
    void BeginStroke(bool isEraser);
    void TakeWheel(const SDL_MouseWheelEvent& wheel);
    void Pan(const SDL_MouseMotionEvent& motion);
    void NoteStroke(PointerKind kind, const ScenePixel& at);
    void ShowBrush(std::int32_t x, std::int32_t y);
    void TakeKey(const SDL_KeyboardEvent& event);
    void TakeText(const char* text);
    void TakeDrop(char* file);
    void DoKey(const FittedKeys::Key& key) override;
    void DoAction(WorkspaceAction action) override;
    [[nodiscard]] Workspace& TheWorkspace() override { return *m_workspace; }
    [[nodiscard]] const FittedKeys& Keys() override;
    void TakeCommands();
    void ChooseAt(PointerKind kind, std::int32_t x, std::int32_t y);
    void DoDisplay(WorkspaceAction action);
    void LeaveOne();
    void ToggleSpotlight();

    void PlacePicture();
    void MakePanel();
    void ShowPages();
    void ShowClean(const FrameArea& changed);
    void ShowPanel();
    void ShowSessionProgress();
    void ShowPicture();
    void PlaySession();
    void RunDueFields();
    [[nodiscard]] bool WantsStep() const { return m_options.hasSteps && m_workspace->CanStep(); }
    void RunDueStep();
    void NoteForPanel(const SDL_Event& event);
    [[nodiscard]] Clock::time_point NextPanel() const;

    WindowOptions m_options;
    SdlWindow m_window{"kel"};
    std::unique_ptr<Workspace> m_workspace;
    const Registration* m_fitted = nullptr;
    FittedKeys m_keys;
    Clock::time_point m_nextStep;
    LiveFeed m_feed{m_options.live, m_options.followsVideo};
    FieldPacer m_pacer{50, Clock::now()};  // the scene's own rate once it runs
    WindowPainter m_painter{m_window};
    Panel m_panel;
    InkPanel m_inkPanel;
    StrokeChooser m_chooser;
    Clock::time_point m_panelTime;  // when it was made last
    int m_panelsWanted = 0;         // how many more, until it has taken in what happened
    PictureZoom m_zoom;
    Spotlight m_spotlight;
    BrushCursor m_cursor;
    OpenPage m_openPage;
    LiveOpening m_opening;
    RecentFiles m_recent{RecentFilesPlace()};
    std::unique_ptr<CleanOutput> m_clean;      // null: there is none
    std::unique_ptr<KeyFillOutput> m_keyFill;  // likewise
    StatusLine m_status;
    std::unique_ptr<VideoSound> m_sound;     // null: no video or replay is shown
    std::unique_ptr<LiveSound> m_liveSound;  // null: no live pictures are
    bool m_isMuted = false;
    SecondRate m_pictures;
    PenTimes m_pen;
    TouchPointer m_touch;
    StylusWatch m_stylus;
    EraserEnd m_eraserEnd;
    std::vector<SDL_Event> m_keysUp;
    int m_opened = 1;
    std::int64_t m_givenUp = 0;  // fields that the video knows of
    bool m_isFirstField = true;  // of what is open, has not been shown
    bool m_isDrawing = false;    // the pointer was pressed on the picture
    bool m_isTailOver = false;   // once the next field has been run
    bool m_isPanning = false;
    bool m_hasPanel = true;
    std::optional<bool> m_isFolded;  // the panel; nothing: as the window has room
    bool m_hasHelp = false;
    bool m_isOver = false;
};

}  // namespace kel
