#pragma once

#include "kel/outputs/output_sink.h"

namespace kel {

// A picture of each field, numbered from 0.
class NumberedPicturesSink final : public OutputSink {
public:
    // Throws Error unless the path has exactly one number such as %05d.
    NumberedPicturesSink(View view, const std::string& path) : m_view(view), m_name(path) {}

    [[nodiscard]] std::vector<View> Views() const override { return {m_view}; }
    [[nodiscard]] bool WantsEveryField() const override { return true; }
    [[nodiscard]] bool IsLive() const override { return false; }

    void Open(const SinkSettings& settings) override;
    void TakeField(const OutputField& field) override;
    void Close() override {}
    void Commit() override {}  // with all that is staged

private:
    View m_view;
    picture_io::NumberedName m_name;
    std::int64_t m_announced = 0;
    picture_io::OutputFiles* m_files = nullptr;
};

}  // namespace kel
