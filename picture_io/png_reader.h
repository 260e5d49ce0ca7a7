#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "picture_io/picture.h"

namespace picture_io {

// A PNG file's rows from the top down. Words pass through unchanged, but for files that name a gamma other than the
// usual, which are read as the usual. Bytes are those that `DecodePng` makes. All throw Error with the reason alone.
class PngReader {
public:
    // bytes: of the whole file, which outlive the reader; hasWords: 16 bits a channel come out, else 8
    PngReader(const std::vector<std::uint8_t>& bytes, bool hasWords);
    ~PngReader();
    PngReader(const PngReader&) = delete;
    PngReader& operator=(const PngReader&) = delete;
    PngReader(PngReader&&) = delete;
    PngReader& operator=(PngReader&&) = delete;

    // False: the pixels lie in an order of their own, or as bytes want work that is done on the whole picture alone.
    [[nodiscard]] bool GivesRows() const;

    [[nodiscard]] std::int32_t Width() const;
    [[nodiscard]] std::int32_t Height() const;
    [[nodiscard]] bool HasWords() const;

    // The next rows, as many as fit; no more than there are.
    void Read(std::span<std::uint8_t> rgba);
    void Read(std::span<std::uint16_t> rgba);

private:
    struct State;

    void ReadBytes(std::uint8_t* rgba, std::size_t bytes);

    std::unique_ptr<State> m_state;
};

// True: the bytes begin as a PNG of 16 bits a channel does.
[[nodiscard]] bool HasWords(const std::vector<std::uint8_t>& bytes);

// Reads any PNG; what has fewer bits is spread over the words, 255 becoming 65535.
[[nodiscard]] Picture16 DecodePng16(const std::vector<std::uint8_t>& bytes);

}  // namespace picture_io
