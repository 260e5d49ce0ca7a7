#include "kel/outputs/outputs.h"

#include <algorithm>
#include <cctype>
#include <optional>
#include <utility>

#include "cli/error.h"
#include "cli/nearest_name.h"

namespace kel {
namespace {

[[noreturn]] void Refuse(const std::string& path, const std::string& reason) { throw cli::Error(path, {}, reason); }

bool IsPng(const std::filesystem::path& file) {
    std::string ending = file.extension().string();
    std::ranges::transform(ending, ending.begin(), [](unsigned char letter) { return std::tolower(letter); });
    return ending == ".png";
}

void CheckEnding(const std::filesystem::path& file) {
    if (picture_io::IsPictureName(file) || IsVideoName(file)) return;
    const std::string ending = file.extension().string();
    const std::vector<std::string> known{".png", ".jpg", ".jpeg", ".mov", ".mkv", ".mp4", ".webm"};
    Refuse(file.string(),
           "neither a picture nor a film ends in " + cli::Quoted(ending) + cli::NearestHint(ending, known));
}

void CheckAlpha(const std::filesystem::path& file) {
    if (IsPng(file) || (IsVideoName(file) && KeepsAlpha(file))) return;
    Refuse(file.string(), file.extension().string() +
                              " has no alpha; the strokes alone need .png, .mov or .mkv, or else --fill and --key");
}

bool IsNumbered(const std::string& path) {
    return std::filesystem::path(path).filename().string().find('%') != std::string::npos;
}

// The colours alone; straight colours where nothing is covered mean nothing.
picture_io::Picture Opaque(picture_io::Picture picture) {
    for (std::size_t alpha = 3; alpha < picture.rgba.size(); alpha += 4) picture.rgba[alpha] = 255;
    return picture;
}

picture_io::Picture AlphaAsGrey(picture_io::Picture picture) {
    for (std::size_t pixel = 0; pixel < picture.rgba.size(); pixel += 4) {
        std::fill_n(picture.rgba.begin() + static_cast<std::ptrdiff_t>(pixel), 3, picture.rgba[pixel + 3]);
        picture.rgba[pixel + 3] = 255;
    }
    return picture;
}

}  // namespace

// One field as its outputs want to see it. What several of them want is made once.
class Outputs::FieldViews {
public:
    FieldViews(Host& host, ObjectId drawn, AlphaForm alpha) : m_host(host), m_drawn(drawn), m_alpha(alpha) {}

    picture_io::Picture Show(View view) {
        switch (view) {
            case View::Rendered:
                return m_host.ReadFrame();
            case View::Canvas:
                return m_host.ReadCanvas(m_drawn, AlphaForm::Straight);
            case View::Overlay:
                return Overlay();
            case View::Fill:
                return Opaque(Overlay());
            case View::Key:
                break;
        }
        return AlphaAsGrey(Overlay());
    }

private:
    const picture_io::Picture& Overlay() {
        if (!m_overlay) m_overlay = m_host.ReadOverlay(m_alpha);
        return *m_overlay;
    }

    Host& m_host;
    ObjectId m_drawn;
    AlphaForm m_alpha;
    std::optional<picture_io::Picture> m_overlay;
};

Outputs::Outputs(const OutputOptions& options, WindowSize window, double fieldsPerSecond, std::int64_t fields)
    : m_window(window),
      m_fieldsPerSecond(fieldsPerSecond),
      m_alpha(options.alpha),
      m_announcedFields(std::max<std::int64_t>(fields, 1)) {
    if (options.fill.empty() != options.key.empty())
        Refuse(options.fill + options.key, "--fill and --key are written as a pair; the other one is missing");
    if (!options.out.empty()) Add(View::Rendered, options.out);
    if (!options.frames.empty()) AddNumbered(View::Rendered, options.frames);
    const bool isCanvas = !IsVideoName(options.overlay) && !IsNumbered(options.overlay);
    if (!options.overlay.empty()) Add(isCanvas ? View::Canvas : View::Overlay, options.overlay);
    if (!options.fill.empty()) Add(View::Fill, options.fill);
    if (!options.key.empty()) Add(View::Key, options.key);
}

void Outputs::Add(View view, const std::string& path) {
    CheckEnding(path);
    if (HasAlpha(view)) CheckAlpha(path);
    if (IsVideoName(path)) {
        AddVideo(view, path);
    } else if (IsNumbered(path)) {
        AddNumbered(view, path);
    } else {
        m_files.Announce(path);
        m_outputs.push_back({view, path});
    }
}

void Outputs::AddVideo(View view, const std::string& path) {
    m_files.AnnounceOther(path);
    const VideoSettings settings{m_window.width, m_window.height, m_fieldsPerSecond, HasAlpha(view)};
    m_outputs.push_back({view, VideoWriter(path, settings)});
}

void Outputs::AddNumbered(View view, const std::string& path) {
    const picture_io::NumberedName name(path);
    for (std::int64_t field = 0; field < m_announcedFields; ++field) m_files.Announce(name.At(field));
    m_outputs.push_back({view, name});
}

bool Outputs::WantEveryField() const {
    return std::ranges::any_of(m_outputs,
                               [](const Output& output) { return !std::holds_alternative<LastPicture>(output.way); });
}

void Outputs::TakeField(Host& host) {
    FieldViews views(host, noObject, m_alpha);
    for (Output& output : m_outputs) {
        if (auto* film = std::get_if<VideoWriter>(&output.way)) film->Write(views.Show(output.view));
        if (const auto* numbered = std::get_if<picture_io::NumberedName>(&output.way)) {
            const std::filesystem::path file = numbered->At(m_field);
            if (m_field >= m_announcedFields) m_files.Announce(file);
            m_files.Stage(views.Show(output.view), file);
        }
    }
    ++m_field;
}

void Outputs::Finish(Host& host, ObjectId drawn) {
    FieldViews views(host, drawn, m_alpha);
    for (Output& output : m_outputs) {
        if (auto* film = std::get_if<VideoWriter>(&output.way)) film->Close();
        if (const auto* path = std::get_if<LastPicture>(&output.way)) m_files.Stage(views.Show(output.view), *path);
    }
    m_files.Commit();
    for (Output& output : m_outputs)
        if (auto* film = std::get_if<VideoWriter>(&output.way)) film->Commit();
}

}  // namespace kel
