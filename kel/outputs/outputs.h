#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "kel/outputs/field_views.h"
#include "kel/outputs/output_sink.h"
#include "kel/scene/host.h"
#include "picture_io/output_files.h"

namespace kel {

// What is to be written of a show, each by its path; empty: not wanted. A path's ending says how (OutputFormats): a
// video of all fields, a picture of each field (f%05d.png), or one picture of the last field. docs/output.md tells all.
struct OutputOptions {
    std::string out;              // the rendered picture
    std::string frames;           // the same once more; numbered pictures only
    std::string overlay;          // the drawings alone, as the window shows them, with alpha
    std::string canvas;           // the module's own surface at the end, flat, as one picture; straight in any case
    std::string fill;             // the colours of the drawings; with `key`, which is then not empty either
    std::string key;              // their alpha, as grey
    bool isStraight = false;      // the colours of overlay and fill are not multiplied by alpha, as those of the canvas
    std::filesystem::path video;  // whose frames the fields are, one by one; its sound is kept. Empty: there is none
    std::vector<std::filesystem::path> inputs;  // what is read meanwhile, which no output may be

    [[nodiscard]] bool WantDrawings() const {
        return !overlay.empty() || !canvas.empty() || !fill.empty() || !key.empty();
    }
    [[nodiscard]] bool WantAnything() const { return WantDrawings() || !out.empty() || !frames.empty(); }
};

// Writes them, field by field. All files appear together at the end or not at all.
class Outputs {
public:
    // Checks all names and opens the sinks, so that nothing is played in vain.
    //   fields  how many there will be; 0: not known
    // The window keeps its size as long as a video is written. Throws Error, here and in every call.
    Outputs(const OutputOptions& options, WindowSize window, double fieldsPerSecond, std::int64_t fields);

    // A picture that the caller makes itself. Announced before the first field, staged when it is there.
    void Announce(const std::filesystem::path& picture) { m_files.Announce(picture); }
    void Stage(const picture_io::Picture& picture, const std::filesystem::path& file) { m_files.Stage(picture, file); }

    // The next field is of another host than those before.
    void ChangeHost() { m_views.Forget(); }

    // True: every field is looked at, so each has to be drawn.
    [[nodiscard]] bool WantEveryField() const;
    // True: one of them shows the last field alone.
    [[nodiscard]] bool WantLastField() const;
    // True: all of them can follow in real time.
    [[nodiscard]] bool AreLive() const;
    // The host has just drawn a field.
    void TakeField(Host& host) { Take(Look(host)); }
    // The same in two steps, which may belong to two threads: what the sinks want to see of the field, and giving it to
    // them.
    [[nodiscard]] std::vector<OutputField> Look(Host& host);
    // The same for the field that was looked at last, which has changed since.
    [[nodiscard]] std::vector<OutputField> LookAgain(Host& host);
    void Take(const std::vector<OutputField>& fields);
    // The host's picture is that of the last field. Writes what shows it, and gives all files their names.
    //   drawn  the container whose canvas is written; noObject where none is wanted
    void Finish(Host& host, ObjectId drawn);
    // The same where every output has seen all of its fields.
    void Finish();

private:
    void Add(std::unique_ptr<OutputSink> sink);
    [[nodiscard]] OutputField FieldFor(const OutputSink& sink, std::int64_t number, Host& host, ObjectId drawn);

    SinkSettings m_settings;
    FieldViews m_views;
    std::int64_t m_field = 0;
    picture_io::OutputFiles m_files;
    std::vector<std::unique_ptr<OutputSink>> m_sinks;
};

}  // namespace kel
