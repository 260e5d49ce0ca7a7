#include "kel/window/status_line.h"

#include <imgui.h>

#include "kel/window/panel_style.h"
#include "kel/workspace/brush_look.h"

namespace kel {
namespace {

constexpr auto newsTime = std::chrono::seconds(6);
constexpr std::size_t mostNews = 5;
const ImVec4 warning{1.0F, 0.55F, 0.25F, 1.0F};
const ImVec4 recordingRed{1.0F, 0.30F, 0.30F, 1.0F};

constexpr auto plainWindow = ImGuiWindowFlags_NoDecoration | ImGuiWindowFlags_NoMove | ImGuiWindowFlags_NoNav |
                             ImGuiWindowFlags_NoBringToFrontOnFocus | ImGuiWindowFlags_NoFocusOnAppearing;

double Milliseconds(std::chrono::nanoseconds time) { return std::chrono::duration<double, std::milli>(time).count(); }

void ShowLatePictures(const FieldPacer& pacer, StatusLine::Clock::time_point now) {
    if (pacer.Missed() == 0) return;
    ImGui::SameLine(0, 24);
    const auto missed = static_cast<long long>(pacer.Missed());
    const char* form = missed == 1 ? "%lld late picture" : "%lld late pictures";
    if (pacer.HasMissedLately(now))
        ImGui::TextColored(warning, form, missed);
    else
        ImGui::TextDisabled(form, missed);
    if (ImGui::IsItemHovered()) ImGui::SetTooltip("Fields that came too late for their picture to be shown.");
}

std::string LiveDetails(const std::vector<LiveFigures>& streams) {
    std::string details;
    for (const LiveFigures& stream : streams) {
        if (!details.empty()) details += '\n';
        const char* state = !stream.trouble.empty() ? stream.trouble.c_str()
                            : stream.hasReader      ? "is being read"
                                                    : "waits for a reader";
        details += stream.address + " " + state + ": " + std::to_string(stream.sent) + " pictures sent, " +
                   std::to_string(stream.dropped) + " dropped\n   " + stream.what;
    }
    return details;
}

// How many of what is sent live are read, and what readers have missed.
void ShowStreams(const std::vector<LiveFigures>& streams) {
    if (streams.empty()) return;
    int read = 0;
    long long dropped = 0;
    bool isWell = true;
    for (const LiveFigures& stream : streams) {
        read += stream.hasReader ? 1 : 0;
        dropped += stream.dropped;
        isWell = isWell && stream.trouble.empty();
    }
    ImGui::SameLine(0, 24);
    const ImVec4 colour = isWell && dropped == 0 ? ImGui::GetStyleColorVec4(ImGuiCol_Text) : warning;
    ImGui::TextColored(colour, "live %d of %d, %lld dropped", read, static_cast<int>(streams.size()), dropped);
    if (ImGui::IsItemHovered()) ImGui::SetTooltip("%s", LiveDetails(streams).c_str());
}

void ShowFigures(const Host& host, const StatusLine::Figures& figures, StatusLine::Clock::time_point now) {
    ImGui::Text("%d pictures/s", figures.pictures.Of(now));
    if (ImGui::IsItemHovered()) ImGui::SetTooltip("Pictures in which something changed, in the last whole second.");
    ImGui::SameLine(0, 24);
    ImGui::Text("%d fields/s", figures.pacer.Rate(now));
    if (const auto pen = figures.pen.OfLastStroke(); pen.count() > 0) {
        ImGui::SameLine(0, 24);
        ImGui::Text("pen to picture %.0f ms", Milliseconds(pen));
        if (ImGui::IsItemHovered()) ImGui::SetTooltip("In the last stroke, half of them sooner.");
    }
    const FieldTimes times = host.Times();
    ImGui::SameLine(0, 24);
    ImGui::TextDisabled("field callback %.2f ms, slowest %.2f ms", Milliseconds(times.last),
                        Milliseconds(times.slowest));
    ShowLatePictures(figures.pacer, now);
    ShowStreams(figures.streams);
}

void ShowRecognition(const Workspace& workspace) {
    const auto isOn = RecognisesShapes(workspace);
    if (!isOn) return;
    ImGui::SameLine(0, 24);
    if (*isOn)
        ImGui::TextUnformatted("recognition on");
    else
        ImGui::TextDisabled("recognition off");
    if (ImGui::IsItemHovered()) ImGui::SetTooltip("Finished strokes become clean shapes after a moment.");
}

// Whether pictures come, and what of them is kept.
void ShowLive(const Workspace& workspace) {
    constexpr double bytesOfMegabyte = 1 << 20U;
    if (workspace.Live() == nullptr) return;
    const PacketRing::Figures kept = workspace.Live()->Ring().Size();
    ImGui::SameLine(0, 24);
    if (workspace.Video() != nullptr)
        ImGui::TextColored(warning, "REPLAY");
    else if (workspace.Live()->IsThere())
        ImGui::TextUnformatted("live");
    else
        ImGui::TextColored(warning, "no pictures");
    ImGui::SameLine(0, 12);
    ImGui::TextDisabled("%.0f s kept, %.0f MB", kept.seconds, static_cast<double>(kept.bytes) / bytesOfMegabyte);
    if (ImGui::IsItemHovered()) ImGui::SetTooltip("What a replay shows, as it came, and the memory that it takes.");
}

}  // namespace

void StatusLine::Tell(const std::string& news, Clock::time_point now) {
    m_news.push_back({news, now + newsTime});
    if (m_news.size() > mostNews) m_news.pop_front();
}

void StatusLine::Show(Workspace& workspace, const Figures& figures, WindowSize window, Clock::time_point now) {
    ImGui::SetNextWindowPos({0, static_cast<float>(window.height - StatusHeight())});
    ImGui::SetNextWindowSize({static_cast<float>(window.width), static_cast<float>(StatusHeight())});
    ImGui::PushStyleVar(ImGuiStyleVar_WindowPadding, {14 * PanelScale(), 7 * PanelScale()});
    ImGui::PushStyleColor(ImGuiCol_WindowBg, ImGui::GetStyleColorVec4(ImGuiCol_FrameBg));
    ImGui::Begin("status", nullptr, plainWindow);
    ShowFigures(workspace.TheHost(), figures, now);
    ShowRecognition(workspace);
    ShowLive(workspace);
    const std::string file = workspace.File().filename().string();
    const float recordingWidth = workspace.IsRecording() ? 60 * PanelScale() : 0;
    ImGui::SameLine(static_cast<float>(window.width) - ImGui::CalcTextSize(file.c_str()).x - 14 - recordingWidth);
    if (workspace.IsRecording()) {
        ImGui::TextColored(recordingRed, "REC");
        ImGui::SameLine(0, 16);
    }
    ImGui::TextDisabled("%s", file.c_str());
    ImGui::End();
    ImGui::PopStyleColor();
    ImGui::PopStyleVar();
}

void StatusLine::ShowNews(WindowSize window, Clock::time_point now) {
    while (!m_news.empty() && m_news.front().until < now) m_news.pop_front();
    if (m_news.empty()) return;
    ImGui::SetNextWindowPos({16, static_cast<float>(window.height - StatusHeight() - 12)}, ImGuiCond_Always, {0, 1});
    ImGui::SetNextWindowBgAlpha(0.85F);
    ImGui::PushStyleVar(ImGuiStyleVar_WindowRounding, 8);
    ImGui::Begin("news", nullptr, plainWindow | ImGuiWindowFlags_AlwaysAutoResize | ImGuiWindowFlags_NoInputs);
    ImGui::PushTextWrapPos(static_cast<float>(window.width - PanelWidth() - 60));
    for (const News& news : m_news) ImGui::TextUnformatted(news.text.c_str());
    ImGui::PopTextWrapPos();
    ImGui::End();
    ImGui::PopStyleVar();
}

}  // namespace kel
