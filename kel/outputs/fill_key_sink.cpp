#include "kel/outputs/fill_key_sink.h"

namespace kel {

bool FillKeySink::WantsEveryField() const { return m_fill->WantsEveryField() || m_key->WantsEveryField(); }

void FillKeySink::Open(const SinkSettings& settings) {
    m_fill->Open(settings);
    m_key->Open(settings);
}

void FillKeySink::TakeField(const OutputField& field) {
    m_last = field;
    for (OutputSink* sink : {m_fill.get(), m_key.get()})
        if (sink->WantsEveryField()) sink->TakeField(field);
}

void FillKeySink::GiveLast(OutputSink& sink) const {
    if (!sink.WantsEveryField() && m_last.Of(View::Fill) != nullptr) sink.TakeField(m_last);
}

void FillKeySink::Close() {
    for (OutputSink* sink : {m_fill.get(), m_key.get()}) {
        GiveLast(*sink);
        sink->Close();
    }
}

void FillKeySink::Commit() {
    m_fill->Commit();
    m_key->Commit();
}

}  // namespace kel
