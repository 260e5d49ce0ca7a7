#include "kel/video/av_objects.h"

#include <array>
#include <new>

namespace kel {
namespace {

template <typename Owner, typename Object>
Owner Owned(Object* object) {
    if (object == nullptr) throw std::bad_alloc();
    return Owner(object);
}

}  // namespace

AvFrame NewFrame() { return Owned<AvFrame>(av_frame_alloc()); }

AvPacket NewPacket() { return Owned<AvPacket>(av_packet_alloc()); }

std::string AvReason(int result) {
    std::array<char, AV_ERROR_MAX_STRING_SIZE> text{};
    av_strerror(result, text.data(), text.size());
    return text.data();
}

void SilenceAv() { av_log_set_level(AV_LOG_QUIET); }

}  // namespace kel
