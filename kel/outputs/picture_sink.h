#pragma once

#include "kel/outputs/output_sink.h"

namespace kel {

// One picture, of the last field.
class PictureSink final : public OutputSink {
public:
    PictureSink(View view, std::string path) : m_view(view), m_path(std::move(path)) {}

    [[nodiscard]] std::vector<View> Views() const override { return {m_view}; }
    [[nodiscard]] bool WantsEveryField() const override { return false; }
    [[nodiscard]] bool IsLive() const override { return false; }

    void Open(const SinkSettings& settings) override;
    void TakeField(const OutputField& field) override { m_files->Stage(*field.Of(m_view), m_path); }
    void Close() override {}
    void Commit() override {}  // with all that is staged

private:
    View m_view;
    std::string m_path;
    picture_io::OutputFiles* m_files = nullptr;
};

}  // namespace kel
