#include "kel/video/video_index.h"

#include <algorithm>

#include "kel/video/video_file.h"

namespace kel {
namespace {

// VP8 has packets that only help to decode others; a bit of their first byte says so.
bool IsShown(const AVPacket& packet, AVCodecID codec) {
    constexpr unsigned vp8Shows = 0x10;
    if ((packet.flags & AV_PKT_FLAG_DISCARD) != 0 || packet.size == 0) return false;
    return codec != AV_CODEC_ID_VP8 || (packet.data[0] & vp8Shows) != 0;
}

[[noreturn]] void RefuseCutOff(const VideoPackets& packets, const VideoIndex& index) {
    packets.Refuse("breaks off after " + std::to_string(index.times.size()) + " frames");
}

void SortOnce(std::vector<std::int64_t>& times) {
    std::ranges::sort(times);
    times.erase(std::unique(times.begin(), times.end()), times.end());
}

}  // namespace

std::int64_t VideoIndex::KeyBefore(std::int64_t time) const {
    const auto after = std::ranges::upper_bound(keys, time);
    if (keys.empty()) return times.front();
    return after == keys.begin() ? keys.front() : *std::prev(after);
}

VideoIndex IndexVideo(VideoPackets& packets) {
    VideoIndex index;
    const AvPacket packet = NewPacket();
    while (packets.Read(*packet)) {
        if ((packet->flags & AV_PKT_FLAG_CORRUPT) != 0) RefuseCutOff(packets, index);
        const std::int64_t time = TimeOf(*packet);
        if (time == AV_NOPTS_VALUE) packets.Refuse("has frames without a time");
        if ((packet->flags & AV_PKT_FLAG_KEY) != 0) index.keys.push_back(time);
        if (IsShown(*packet, packets.Codec().codec_id)) index.times.push_back(time);
    }
    SortOnce(index.times);
    SortOnce(index.keys);
    if (index.times.empty()) packets.Refuse("has no frames");
    if (packets.IsCutOff()) RefuseCutOff(packets, index);
    return index;
}

}  // namespace kel
