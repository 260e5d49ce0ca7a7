#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <map>
#include <ostream>
#include <random>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "chalkpane/image/image.h"

namespace chalkpane::hashes {

// FNV-1a in 64 bits.
class Hash {
public:
    Hash& Bytes(const void* first, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i)
            m_state = (m_state ^ static_cast<const std::uint8_t*>(first)[i]) * 1099511628211U;
        return *this;
    }
    template <typename Number>
    requires std::integral<Number> || std::floating_point<Number> Hash& Add(Number number) {
        return Bytes(&number, sizeof number);
    }
    template <typename Channel>
    Hash& Add(std::span<Channel> row) {
        return Bytes(row.data(), row.size_bytes());
    }
    Hash& Add(std::string_view text) { return Bytes(text.data(), text.size()).Add(text.size()); }
    Hash& Add(const Rect& rect) { return Add(rect.x0).Add(rect.y0).Add(rect.x1).Add(rect.y1); }
    Hash& Add(const Image& image) {
        Add(image.Bounds()).Add(image.type).Add(image.depth).Add(image.flag);
        for (std::int32_t y = image.y0; y <= image.y1; ++y) {
            if (image.GetDepth() == Depth::Eight)
                Add(image.Row8(y));
            else
                Add(image.Row14(y));
        }
        return *this;
    }
    // Null: no image was made.
    Hash& Add(const Image* image) { return image != nullptr ? Add(*image) : Add(std::string_view("none")); }

    [[nodiscard]] std::uint64_t Value() const { return m_state; }

private:
    std::uint64_t m_state = 14695981039346656037U;
};

// The lines of all outputs, by name. The same output may be reported again, by a run with other workers: then it has to
// be the same.
class Report {
public:
    explicit Report(std::string namesBegin) : m_only(std::move(namesBegin)) {}

    // True: outputs whose names begin so are among those asked for, or may be.
    [[nodiscard]] bool Wants(std::string_view begin) const {
        return begin.starts_with(m_only) || std::string_view(m_only).starts_with(begin);
    }
    void Add(const std::string& name, const Hash& hash) {
        if (!name.starts_with(m_only)) return;
        const auto [line, isNew] = m_lines.emplace(name, hash.Value());
        if (!isNew && line->second != hash.Value()) m_differing.push_back(name);
    }
    void Print(std::ostream& out) const;
    // Outputs that came out differently when they were made again.
    [[nodiscard]] const std::vector<std::string>& Differing() const { return m_differing; }

private:
    std::string m_only;
    std::map<std::string, std::uint64_t> m_lines;
    std::vector<std::string> m_differing;
};

// Numbers that are the same on every machine, which the distributions of the standard library need not be.
class Draws {
public:
    explicit Draws(std::uint32_t seed) : m_random(seed) {}

    [[nodiscard]] std::uint32_t Below(std::uint32_t count) { return static_cast<std::uint32_t>(m_random() % count); }
    [[nodiscard]] double Between(double low, double high) {
        return low + (high - low) * (static_cast<double>(m_random() >> 8) / 16777216.0);
    }
    [[nodiscard]] std::uint16_t Word() { return static_cast<std::uint16_t>(Below(16384)); }
    // Random channels of either depth, a third of them at the ends of the scale, where the rules change.
    template <typename Channel>
    void Fill(std::span<Channel> channels) {
        constexpr std::uint32_t full = sizeof(Channel) == 1 ? 255 : 16383;
        for (Channel& channel : channels) {
            const std::uint32_t choice = Below(6);
            channel = static_cast<Channel>(choice == 0 ? 0 : (choice == 1 ? full : Below(full + 1)));
        }
    }
    // Tiles of 16 pixels, most of one colour and the others noise: filters that smooth or gather find something to do.
    void Fill(Image& image) {
        if (image.GetDepth() == Depth::Eight)
            FillTiles<std::uint8_t>(image, [&image](std::int32_t y) { return image.Row8(y); });
        else
            FillTiles<std::uint16_t>(image, [&image](std::int32_t y) { return image.Row14(y); });
        if (image.flag != 0 && !image.IsMask()) image.Premultiply(image);
    }
    [[nodiscard]] Image Picture(const Rect& bounds, PixelType type, Depth depth, AlphaForm form = AlphaForm::Straight) {
        Image image(bounds, type, depth, form);
        Fill(image);
        return image;
    }

private:
    template <typename Channel, typename RowOf>
    void FillTiles(const Image& image, RowOf rowOf) {
        constexpr std::int32_t side = 16;
        const std::size_t channels = image.IsMask() ? 1 : 4;
        std::vector<Channel> tiles(channels * static_cast<std::size_t>(image.Width() / side + 1));
        for (std::int32_t y = image.y0; y <= image.y1; ++y) {
            if ((y - image.y0) % side == 0) Fill(std::span(tiles));
            const std::span<Channel> row = rowOf(y);
            Fill(row);
            for (std::size_t i = 0; i < row.size(); ++i) {
                const std::size_t tile = i / channels / side * channels;
                if (tile / channels % 3 != 0) row[i] = tiles[tile + i % channels];
            }
        }
    }

    std::mt19937 m_random;
};

inline constexpr Depth bothDepths[] = {Depth::Eight, Depth::Fourteen};
inline std::string BitsOf(Depth depth) { return depth == Depth::Eight ? "8" : "14"; }

// Each reports one part of the outputs.
void HashFilters(Report& report);
void HashRows(Report& report);
void HashPastes(Report& report);
void HashImages(Report& report);
void HashBrushes(Report& report);
void HashStrokesFiles(Report& report);
void HashTexts(Report& report);
void HashPresets(Report& report);
void HashSessions(Report& report);

}  // namespace chalkpane::hashes
