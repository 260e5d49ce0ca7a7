#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "kel/scene/host.h"
#include "kel/video/video_writer.h"
#include "picture_io/output_files.h"

namespace kel {

// What is to be written of a show, each by its path; empty: not wanted. A path's ending says how: a film of all fields
// (.mov, .mkv, .mp4, .webm), a picture of each field (f%05d.png), or one picture of the last field (.png, .jpg, .jpeg).
// docs/output.md tells all.
struct OutputOptions {
    std::string out;      // the rendered picture
    std::string frames;   // the same once more; numbered pictures only
    std::string overlay;  // the drawings alone, with alpha; as one picture, the canvas
    std::string fill;     // the colours of the drawings; with `key`, which is then not empty either
    std::string key;      // their alpha, as grey
    AlphaForm alpha = AlphaForm::Premultiplied;  // of overlay and fill, but not of the canvas

    [[nodiscard]] bool WantDrawings() const { return !overlay.empty() || !fill.empty() || !key.empty(); }
};

// Writes them, field by field. All files appear together at the end or not at all.
class Outputs {
public:
    // Checks all names and begins the films, so that nothing is played in vain.
    //   fields  how many there will be; 0: not known
    // The window keeps its size as long as a film is written. Throws Error, here and in every call.
    Outputs(const OutputOptions& options, WindowSize window, double fieldsPerSecond, std::int64_t fields);

    // A picture that the caller makes itself. Announced before the first field, staged when it is there.
    void Announce(const std::filesystem::path& picture) { m_files.Announce(picture); }
    void Stage(const picture_io::Picture& picture, const std::filesystem::path& file) { m_files.Stage(picture, file); }

    // True: every field is looked at, so each has to be drawn.
    [[nodiscard]] bool WantEveryField() const;
    // The host has just drawn a field.
    void TakeField(Host& host);
    // The host's picture is that of the last field. Writes what shows it, and gives all files their names.
    //   drawn  the container whose canvas is the overlay as one picture; noObject where none is wanted
    void Finish(Host& host, ObjectId drawn);

private:
    enum class View { Rendered, Canvas, Overlay, Fill, Key };
    using LastPicture = std::string;  // its path
    struct Output {
        View view;
        std::variant<LastPicture, picture_io::NumberedName, VideoWriter> way;
    };
    class FieldViews;

    void Add(View view, const std::string& path);
    void AddVideo(View view, const std::string& path);
    void AddNumbered(View view, const std::string& path);
    static bool HasAlpha(View view) { return view == View::Overlay || view == View::Canvas; }

    WindowSize m_window;
    double m_fieldsPerSecond;
    AlphaForm m_alpha;
    std::int64_t m_announcedFields;
    std::int64_t m_field = 0;
    picture_io::OutputFiles m_files;
    std::vector<Output> m_outputs;
};

}  // namespace kel
