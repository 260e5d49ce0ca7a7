#include "kel/outputs/live_streams.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

#include "cli/error.h"

namespace kel {
namespace {

std::string CountOf(std::int64_t count, const char* one, const char* many) {
    return std::to_string(count) + " " + (count == 1 ? one : many);
}

void RequirePairs(const std::vector<LiveRequest>& requests) {
    const auto count = [&](View view) { return std::ranges::count(requests, view, &LiveRequest::view); };
    if (count(View::Fill) == count(View::Key)) return;
    const auto lone = std::ranges::find_if(
        requests, [](const LiveRequest& request) { return request.view == View::Fill || request.view == View::Key; });
    throw cli::Error(lone->address, {}, "--live-fill and --live-key are sent as a pair; the other one is missing");
}

}  // namespace

LiveStreams::LiveStreams(const std::vector<LiveRequest>& requests, bool isStraight) {
    RequirePairs(requests);
    std::vector<LivePlan> plans;
    plans.reserve(requests.size());
    for (const LiveRequest& request : requests) plans.push_back(PlanLive(request, isStraight));
    for (LivePlan& plan : plans) m_sinks.push_back(std::make_unique<LiveSink>(std::move(plan)));
}

void LiveStreams::Start(WindowSize window, double fieldsPerSecond) {
    SinkSettings settings;
    settings.size = window;
    settings.fieldsPerSecond = fieldsPerSecond;
    for (const auto& sink : m_sinks) sink->Open(settings);
    m_fieldsPerSecond = fieldsPerSecond;
    m_field = -1;
    ChangeHost();
}

void LiveStreams::ChangeHost() {
    m_straight.Forget();
    m_premultiplied.Forget();
}

void LiveStreams::TakeField(Host& host, const SoundMoment& sound, std::int64_t fields) {
    m_field += fields;
    OutputField field;
    field.number = m_field;
    field.seconds = static_cast<double>(m_field) / m_fieldsPerSecond;
    field.sound = sound;
    for (const auto& sink : m_sinks) {
        if (!sink->Wants(field.seconds)) continue;
        field.views = {};
        for (const View view : sink->Views())
            field.views[static_cast<std::size_t>(view)] = ViewsFor(*sink).Show(view, host);
        sink->TakeField(field);
    }
}

void LiveStreams::Close() {
    for (const auto& sink : m_sinks) sink->FinishSoon();
    for (const auto& sink : m_sinks) sink->Close();
}

std::vector<LiveFigures> LiveStreams::Figures() const {
    std::vector<LiveFigures> figures;
    for (const auto& sink : m_sinks) figures.push_back(sink->Figures());
    return figures;
}

std::string BeginningOf(const LiveFigures& figures) { return "live: " + figures.address + ": " + figures.what; }

std::string EndOf(const LiveFigures& figures) {
    std::string line = "live: " + figures.address + ": " + CountOf(figures.sent, "picture", "pictures") + " sent, " +
                       std::to_string(figures.dropped) + " dropped, " + CountOf(figures.readers, "reader", "readers");
    if (figures.sent > 0) {
        const double milliseconds = std::chrono::duration<double, std::milli>(figures.processorTime).count();
        std::array<char, 64> text{};
        std::snprintf(text.data(), text.size(), ", %.1f ms of processor time each",
                      milliseconds / static_cast<double>(figures.sent));
        line += text.data();
    }
    return figures.trouble.empty() ? line : line + "; " + figures.trouble;
}

}  // namespace kel
