#pragma once

#include <filesystem>
#include <span>
#include <string>
#include <string_view>

namespace kel {

enum class OutputMedium { Picture, Video, Stream };

// What the ending of an output's name stands for, or the beginning of the address that a live one is sent to.
// OutputFormats is the only list of them: messages, help texts and checks are made from it, and it from the tables of
// picture_io, kel/video and the live addresses.
struct OutputFormat {
    std::string_view ending;  // in lower case, such as ".mov"; of a stream the beginning, such as "tcp://"
    std::string_view name;    // as people call it
    OutputMedium medium;
    bool hasAlpha;  // can hold the strokes alone
    bool isLive;    // can be written while one draws
};

[[nodiscard]] std::span<const OutputFormat> OutputFormats();

// Null: no output ends like that.
[[nodiscard]] const OutputFormat* FormatOfOutput(const std::filesystem::path& file);

// The endings of those that `which` takes: ".png, .mov or .mkv". beforeLast: the word before the last one, or "".
[[nodiscard]] std::string OutputEndings(bool (*which)(const OutputFormat&), const char* beforeLast);

// For OutputEndings.
[[nodiscard]] bool IsFileOutput(const OutputFormat& format);
[[nodiscard]] bool IsPictureOutput(const OutputFormat& format);
[[nodiscard]] bool IsVideoOutput(const OutputFormat& format);
[[nodiscard]] bool IsStreamOutput(const OutputFormat& format);
[[nodiscard]] bool IsAlphaStreamOutput(const OutputFormat& format);
[[nodiscard]] bool IsAlphaOutput(const OutputFormat& format);  // of files
[[nodiscard]] bool IsAlphaVideoOutput(const OutputFormat& format);
[[nodiscard]] bool IsAlphaPictureOutput(const OutputFormat& format);

}  // namespace kel
