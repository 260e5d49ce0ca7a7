#pragma once

#include "kel/outputs/output_sink.h"

namespace kel {

// The drawings for a mixer, as a pair: their colours in one file, their alpha as grey in another.
class FillKeySink final : public OutputSink {
public:
    // Throws Error when one of the paths cannot be written to.
    FillKeySink(const std::string& fill, const std::string& key)
        : m_fill(MakeSink(View::Fill, fill)), m_key(MakeSink(View::Key, key)) {}

    [[nodiscard]] std::vector<View> Views() const override { return {View::Fill, View::Key}; }
    [[nodiscard]] bool WantsEveryField() const override;
    [[nodiscard]] bool IsLive() const override { return m_fill->IsLive() && m_key->IsLive(); }

    void Open(const SinkSettings& settings) override;
    void TakeField(const OutputField& field) override;
    void Close() override;
    void Commit() override;

private:
    // One of the pair may be a video and the other one picture, which waits for the last field.
    void GiveLast(OutputSink& sink) const;

    std::unique_ptr<OutputSink> m_fill;
    std::unique_ptr<OutputSink> m_key;
    OutputField m_last;
};

}  // namespace kel
