#pragma once

#include <optional>

#include "kel/outputs/output_format.h"
#include "kel/outputs/output_sink.h"
#include "kel/video/video_writer.h"

namespace kel {

// A video with a frame for each field.
class VideoSink final : public OutputSink {
public:
    VideoSink(View view, std::string path, const OutputFormat& format)
        : m_view(view), m_path(std::move(path)), m_isLive(format.isLive) {}

    [[nodiscard]] std::vector<View> Views() const override { return {m_view}; }
    [[nodiscard]] bool WantsEveryField() const override { return true; }
    [[nodiscard]] bool IsLive() const override { return m_isLive; }

    void Open(const SinkSettings& settings) override;
    void TakeField(const OutputField& field) override;
    void Close() override { m_writer->Close(); }
    void Commit() override { m_writer->Commit(); }

private:
    View m_view;
    std::string m_path;
    bool m_isLive;
    std::optional<VideoWriter> m_writer;  // there once it is open
    SharedPicture m_last;                 // kept, so that no other picture takes its place in memory
};

}  // namespace kel
