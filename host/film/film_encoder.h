#pragma once

#include <cstdint>
#include <filesystem>

#include "host/film/av_objects.h"
#include "host/film/film_format.h"
#include "host/film/film_writer.h"
#include "host/film/picture_packer.h"
#include "shared/staged_file.h"

namespace kel {

// What FilmWriter is made of.
class FilmEncoder {
public:
    FilmEncoder(const std::filesystem::path& file, const FilmSettings& settings);

    void Write(const Picture& picture);
    void Close();
    void Commit() { m_file.Commit(); }

private:
    // Closes the file when it ends.
    struct CloseOutput {
        void operator()(AVFormatContext* output) const;
    };

    void OpenCodec(const FilmSettings& settings);
    void OpenFile();
    void Encode(const AVFrame* frame);
    void WritePacket();
    // Throws when the step failed, or any write to the file so far.
    void Check(int result) const;

    shared::StagedFile m_file;
    const FilmFormat* m_format;  // of the table; never null
    FilmSettings m_settings;
    std::unique_ptr<AVFormatContext, CloseOutput> m_output;
    AvCodec m_codec;
    AvFrame m_frame;
    AvPacket m_packet;
    PicturePacker m_packer;
    std::int64_t m_count = 0;  // frames
};

}  // namespace kel
