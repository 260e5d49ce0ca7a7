#pragma once

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "kel/outputs/output_sink.h"
#include "kel/video/stream_format.h"
#include "kel/video/stream_output.h"

namespace kel {

// The parts of an address such as "srt://:5000?mode=listener&rate=25", each as it stands there.
struct LiveAddress {
    std::string whole;
    std::string host;
    int port = 0;
    struct Setting {
        std::string name;
        std::string value;
    };
    std::vector<Setting> settings;

    // Empty: it is not said.
    [[nodiscard]] std::string Of(std::string_view name) const;
};

// How a live output is sent, by the beginning of its address. LiveSchemes is the only list of them.
struct LiveScheme {
    std::string_view beginning;  // "tcp://"
    // The words of the formats that it can send, the usual one first.
    std::vector<std::string_view> formats;
    std::vector<std::string_view> settings;  // its own, besides those that all have
    bool needsHost;
    std::unique_ptr<StreamOutput> (*open)(const LiveAddress& address);

    [[nodiscard]] const StreamFormat& UsualFormat() const { return *FormatOfStream(formats.front()); }
};
[[nodiscard]] std::span<const LiveScheme> LiveSchemes();

// What one live output sends, and where to.
struct LiveRequest {
    View view = View::Rendered;
    std::string address;
};

// All that an address says.
struct LivePlan {
    View view = View::Rendered;
    bool isStraight = false;
    std::optional<double> rate;  // pictures a second at most; nothing: a picture of every field
    const StreamFormat* format = nullptr;
    const LiveScheme* scheme = nullptr;
    LiveAddress address;
};

//   isStraight  where the address does not say it
// Throws Error when it is no address, says what it cannot, or cannot keep the view's alpha.
[[nodiscard]] LivePlan PlanLive(const LiveRequest& request, bool isStraight);

// What the operator and a reader's settings need to know of it: "strokes, NUT with FFV1, premultiplied, gamma, full
// range".
[[nodiscard]] std::string DescribeLive(const LivePlan& plan);

}  // namespace kel
