#include "kel/outputs/outputs.h"

#include <algorithm>
#include <utility>

#include "cli/error.h"
#include "kel/outputs/fill_key_sink.h"
#include "kel/outputs/numbered_pictures_sink.h"
#include "kel/outputs/output_format.h"

namespace kel {
namespace {

// The canvas is of the end, so neither a video nor numbered pictures can show it.
std::unique_ptr<OutputSink> MakeCanvasSink(const std::string& path) {
    auto sink = MakeSink(View::Canvas, path);
    if (sink->WantsEveryField())
        throw cli::Error(
            path, {},
            "--canvas is one picture, of the end; it needs a name in " + OutputEndings(IsAlphaPictureOutput, "or"));
    return sink;
}

}  // namespace

Outputs::Outputs(const OutputOptions& options, WindowSize window, double fieldsPerSecond, std::int64_t fields)
    : m_settings{window, fieldsPerSecond, std::max<std::int64_t>(fields, 1), &m_files, options.video},
      m_views(options.isStraight) {
    for (const auto& input : options.inputs) m_files.AnnounceInput(input);
    if (options.fill.empty() != options.key.empty())
        throw cli::Error(options.fill + options.key, {},
                         "--fill and --key are written as a pair; the other one is missing");
    if (!options.out.empty()) Add(MakeSink(View::Rendered, options.out));
    if (!options.frames.empty()) Add(std::make_unique<NumberedPicturesSink>(View::Rendered, options.frames));
    if (!options.overlay.empty()) Add(MakeSink(View::Overlay, options.overlay));
    if (!options.canvas.empty()) Add(MakeCanvasSink(options.canvas));
    if (!options.fill.empty()) Add(std::make_unique<FillKeySink>(options.fill, options.key));
}

void Outputs::Add(std::unique_ptr<OutputSink> sink) {
    sink->Open(m_settings);
    m_sinks.push_back(std::move(sink));
}

bool Outputs::WantEveryField() const {
    return std::ranges::any_of(m_sinks, [](const auto& sink) { return sink->WantsEveryField(); });
}

bool Outputs::WantLastField() const {
    return !std::ranges::all_of(m_sinks, [](const auto& sink) { return sink->WantsEveryField(); });
}

bool Outputs::AreLive() const {
    return std::ranges::all_of(m_sinks, [](const auto& sink) { return sink->IsLive(); });
}

OutputField Outputs::FieldFor(const OutputSink& sink, std::int64_t number, Host& host, ObjectId drawn) {
    OutputField field;
    field.number = number;
    field.seconds = static_cast<double>(number) / m_settings.fieldsPerSecond;
    for (const View view : sink.Views()) field.views[static_cast<std::size_t>(view)] = m_views.Show(view, host, drawn);
    return field;
}

std::vector<OutputField> Outputs::Look(Host& host) {
    ++m_field;
    return LookAgain(host);
}

std::vector<OutputField> Outputs::LookAgain(Host& host) {
    std::vector<OutputField> fields;
    for (const auto& sink : m_sinks)
        if (sink->WantsEveryField()) fields.push_back(FieldFor(*sink, m_field - 1, host, noObject));
    return fields;
}

void Outputs::Take(const std::vector<OutputField>& fields) {
    auto field = fields.begin();
    for (const auto& sink : m_sinks)
        if (sink->WantsEveryField()) sink->TakeField(*field++);
}

void Outputs::Finish(Host& host, ObjectId drawn) {
    for (const auto& sink : m_sinks)
        if (!sink->WantsEveryField())
            sink->TakeField(FieldFor(*sink, std::max<std::int64_t>(m_field - 1, 0), host, drawn));
    Finish();
}

void Outputs::Finish() {
    for (const auto& sink : m_sinks) sink->Close();
    m_files.Commit();
    for (const auto& sink : m_sinks) sink->Commit();
}

}  // namespace kel
