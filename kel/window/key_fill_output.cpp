#include "kel/window/key_fill_output.h"

#include "kel/window/clean_output.h"
#include "kel/window/strokes_texture.h"

namespace kel {
namespace {

constexpr const char* option = "--key-fill-display";
constexpr int usualFill = 2;  // displays, counted from 1; the first one has the window that is drawn in

}  // namespace

struct KeyFillOutput::Pair {
    CleanOutput fill;
    CleanOutput key;
    StrokesTexture strokes;
    bool isStraight;
    bool isStale = true;  // what the texture has is of another host, or nothing
};

KeyFillOutput::KeyFillOutput(WindowSize scene, std::optional<int> display, bool isStraight)
    : m_pair(
          new Pair{.fill = CleanOutput({"kel fill", option, display, usualFill}, scene),
                   .key = CleanOutput(
                       {"kel key", option, display ? std::optional(*display + 1) : std::nullopt, usualFill + 1}, scene),
                   .strokes = {},
                   .isStraight = isStraight}) {}

KeyFillOutput::~KeyFillOutput() = default;

void KeyFillOutput::ShowAnew() {
    m_pair->isStale = true;
    m_pair->fill.ShowAnew();
    m_pair->key.ShowAnew();
}

bool KeyFillOutput::IsClosed() const { return m_pair->fill.IsClosed() || m_pair->key.IsClosed(); }

bool KeyFillOutput::TakeEvent(SDL_Event& event) {
    return m_pair->fill.TakeEvent(event) || m_pair->key.TakeEvent(event);
}

void KeyFillOutput::Show(Host& host, const FrameArea& changed) {
    const WindowSize scene = host.Window();
    const FrameArea renewed = m_pair->isStale ? FrameArea{0, 0, scene.width, scene.height} : changed;
    if (!renewed.IsEmpty())
        m_pair->strokes.Renew(m_pair->isStraight ? host.ReadOverlay() : host.ReadPremultipliedOverlay(), renewed);
    m_pair->isStale = false;
    const auto drawAs = [&](StrokesTexture::Look look) {
        return [this, look](const FrameArea& area, const FrameArea& part) { m_pair->strokes.Show(look, area, part); };
    };
    m_pair->fill.Show(scene, changed, drawAs(StrokesTexture::Look::Colours));
    m_pair->key.Show(scene, changed, drawAs(StrokesTexture::Look::AlphaAsGrey));
}

}  // namespace kel
