#include "kel/outputs/live_address.h"

#include <algorithm>
#include <charconv>
#include <system_error>
#include <utility>

#include "cli/error.h"
#include "cli/nearest_name.h"
#include "cli/word_list.h"
#include "kel/outputs/output_format.h"
#include "kel/outputs/tcp_output.h"
#include "kel/outputs/udp_output.h"
#include "kel/video/srt_output.h"

namespace kel {
namespace {

// Without a host an output listens for readers of this machine alone.
constexpr std::string_view thisMachine = "127.0.0.1";

[[noreturn]] void RefuseAddress(const LiveAddress& address, const std::string& reason) {
    throw cli::Error(address.whole, {}, reason);
}

// A whole number in these limits.
int NumberOf(const LiveAddress& address, const char* name, const std::string& text, int least, int most) {
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size() || number < least || number > most)
        RefuseAddress(address, std::string(name) + " is a whole number from " + std::to_string(least) + " to " +
                                   std::to_string(most) + ", not " + cli::Quoted(text));
    return number;
}

std::string WordOf(const LiveAddress& address, const char* name, const std::vector<std::string>& words) {
    std::string value = address.Of(name);
    if (value.empty() || std::ranges::find(words, value) != words.end()) return value;
    RefuseAddress(address, std::string(name) + " is " + cli::WordList(words, "or") + ", not " + cli::Quoted(value));
}

std::unique_ptr<StreamOutput> OpenTcp(const LiveAddress& address) {
    return std::make_unique<TcpOutput>(address.host, address.port);
}

std::unique_ptr<StreamOutput> OpenUdp(const LiveAddress& address) {
    constexpr int mostHops = 255;
    const std::string hops = address.Of("ttl");
    return std::make_unique<UdpOutput>(address.host, address.port,
                                       hops.empty() ? 1 : NumberOf(address, "ttl", hops, 0, mostHops));
}

std::unique_ptr<StreamOutput> OpenSrt(const LiveAddress& address) {
    constexpr int longestLatency = 60000;
    constexpr std::size_t shortest = 10;
    constexpr std::size_t longest = 79;
    SrtSettings settings{address.host,
                         address.port,
                         WordOf(address, "mode", {"caller", "listener"}) == "listener",
                         address.Of("latency"),
                         address.Of("passphrase"),
                         address.Of("streamid")};
    if (!settings.latency.empty()) (void)NumberOf(address, "latency", settings.latency, 0, longestLatency);
    const std::size_t letters = settings.passphrase.size();
    if (letters > 0 && (letters < shortest || letters > longest))
        RefuseAddress(address, "passphrase has 10 to 79 letters");
    return std::make_unique<SrtOutput>(std::move(settings));
}

// What every address may say.
constexpr std::string_view alphaName = "alpha";
constexpr std::string_view rateName = "rate";
constexpr std::string_view codecName = "codec";

const LiveScheme& SchemeOf(const LiveAddress& address) {
    std::vector<std::string> known;
    for (const LiveScheme& scheme : LiveSchemes()) {
        if (address.whole.starts_with(scheme.beginning)) return scheme;
        known.emplace_back(scheme.beginning);
    }
    const std::size_t end = address.whole.find("://");
    const std::string beginning = end == std::string::npos ? std::string() : address.whole.substr(0, end + 3);
    RefuseAddress(address, "is no live address; they begin with " + cli::WordList(known, "or") +
                               (beginning.empty() ? std::string() : cli::NearestHint(beginning, known)));
}

// "HOST:PORT", where a host with colons of its own stands in brackets.
void ParsePlace(const LiveScheme& scheme, std::string_view place, LiveAddress& address) {
    constexpr int mostPorts = 65535;
    const std::size_t colon = place.rfind(':');
    if (colon == std::string_view::npos)
        RefuseAddress(address, "has no port; " + std::string(scheme.beginning) + "HOST:PORT");
    std::string_view host = place.substr(0, colon);
    if (host.starts_with('[') && host.ends_with(']')) host = host.substr(1, host.size() - 2);
    const bool listens = !scheme.needsHost || address.Of("mode") == "listener";
    if (host.empty() && !listens) RefuseAddress(address, "has no host to send to");
    address.host = host.empty() ? thisMachine : host;
    // Any free port is good where it can be told to the reader.
    const int least = scheme.needsHost ? 1 : 0;
    address.port = NumberOf(address, "a port", std::string(place.substr(colon + 1)), least, mostPorts);
}

void ParseSettings(const LiveScheme& scheme, std::string_view text, LiveAddress& address) {
    std::vector<std::string> known(scheme.settings.begin(), scheme.settings.end());
    for (const std::string_view name : {alphaName, rateName, codecName}) known.emplace_back(name);
    while (!text.empty()) {
        const std::string_view setting = text.substr(0, text.find('&'));
        text.remove_prefix(std::min(setting.size() + 1, text.size()));
        const std::size_t equals = setting.find('=');
        const std::string name(setting.substr(0, equals));
        if (std::ranges::find(known, name) == known.end())
            RefuseAddress(address, cli::Quoted(name) + " is none of its settings, " + cli::WordList(known, "and") +
                                       cli::NearestHint(name, known));
        if (equals == std::string_view::npos || equals + 1 == setting.size())
            RefuseAddress(address, cli::Quoted(name) + " has no value");
        if (!address.Of(name).empty()) RefuseAddress(address, name + " is said twice");
        address.settings.push_back({name, std::string(setting.substr(equals + 1))});
    }
}

LiveAddress ParseAddress(const LiveScheme& scheme, LiveAddress address) {
    const std::string whole = address.whole;
    const std::string_view rest = std::string_view(whole).substr(scheme.beginning.size());
    const std::size_t question = rest.find('?');
    if (question != std::string_view::npos) ParseSettings(scheme, rest.substr(question + 1), address);
    std::string_view place = rest.substr(0, question);
    if (place.ends_with('/')) place.remove_suffix(1);
    ParsePlace(scheme, place, address);
    return address;
}

const StreamFormat& StreamFormatFor(const LiveScheme& scheme, const LiveAddress& address) {
    const std::string word =
        WordOf(address, codecName.data(), std::vector<std::string>(scheme.formats.begin(), scheme.formats.end()));
    return word.empty() ? scheme.UsualFormat() : *FormatOfStream(word);
}

std::optional<double> RateFor(const LiveAddress& address) {
    constexpr int highest = 1000;
    const std::string rate = address.Of(rateName);
    if (rate.empty()) return {};
    return NumberOf(address, rateName.data(), rate, 1, highest);
}

bool StraightFor(const LiveAddress& address, bool isStraight) {
    const std::string alpha = WordOf(address, alphaName.data(), {"straight", "premultiplied"});
    return alpha.empty() ? isStraight : alpha == "straight";
}

const char* NameOf(View view) {
    switch (view) {
        case View::Rendered:
            return "picture";
        case View::Fill:
            return "fill of the strokes";
        case View::Key:
            return "key of the strokes";
        case View::FillKey:
            return "fill and key of the strokes side by side";
        case View::Overlay:
        case View::Canvas:
            break;
    }
    return "strokes with alpha";
}

}  // namespace

std::span<const LiveScheme> LiveSchemes() {
    static const std::vector<LiveScheme> schemes{
        {"srt://", {"h264"}, {"mode", "latency", "passphrase", "streamid"}, true, OpenSrt},
        {"udp://", {"h264"}, {"ttl"}, true, OpenUdp},
        {"tcp://", {"ffv1", "raw"}, {}, false, OpenTcp},
    };
    return schemes;
}

std::string LiveAddress::Of(std::string_view name) const {
    const auto found = std::ranges::find(settings, name, &Setting::name);
    return found == settings.end() ? std::string() : found->value;
}

LivePlan PlanLive(const LiveRequest& request, bool isStraight) {
    LivePlan plan;
    plan.view = request.view;
    plan.address.whole = request.address;
    plan.scheme = &SchemeOf(plan.address);
    plan.address = ParseAddress(*plan.scheme, plan.address);
    plan.format = &StreamFormatFor(*plan.scheme, plan.address);
    plan.rate = RateFor(plan.address);
    plan.isStraight = StraightFor(plan.address, isStraight);
    if (plan.view == View::Overlay && !plan.format->hasAlpha)
        RefuseAddress(plan.address, std::string(plan.format->name) + " has no alpha; the strokes alone need " +
                                        OutputEndings(IsAlphaStreamOutput, "or") +
                                        ", or else --live-fill-key, or --live-fill and --live-key");
    return plan;
}

std::string DescribeLive(const LivePlan& plan) {
    const bool hasAlpha = plan.view != View::Rendered && plan.view != View::Key;
    const char* alpha = !hasAlpha ? "" : plan.isStraight ? ", straight" : ", premultiplied";
    const char* range = plan.format->isExact ? "full" : "limited";
    return std::string(NameOf(plan.view)) + ", " + std::string(plan.format->container) + " with " +
           std::string(plan.format->name) + alpha + ", gamma, " + range + " range";
}

}  // namespace kel
