#include "kel/live/live_name.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cstdlib>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <vector>

#include "cli/error.h"
#include "cli/nearest_name.h"
#include "cli/word_list.h"

namespace kel {
namespace {

constexpr std::string_view screenPrefix = "screen:";
constexpr std::string_view devicePrefix = "/dev/video";

// What comes over the network may lead on to nothing but what stands here: neither to files of this machine nor to any
// other way out of it.
struct Scheme {
    const char* name;
    const char* protocols;
    const char* formats;
    bool needsPort;
};
constexpr auto streamFormats = "mpegts,nut,matroska,webm,flv";
constexpr auto webFormats = "hls,mpegts,nut,matroska,webm,flv,mov,mp4,mpjpeg";
constexpr std::array schemes{
    Scheme{"srt", "srt", streamFormats, true},
    Scheme{"rtsp", "rtsp,rtp,udp,tcp", "rtsp", false},
    Scheme{"udp", "udp", streamFormats, true},
    Scheme{"rtmp", "rtmp,tcp", "flv,live_flv", false},
    Scheme{"tcp", "tcp", streamFormats, true},
    Scheme{"http", "http,tcp,https,tls,crypto", webFormats, false},
    Scheme{"https", "https,tls,tcp,crypto", webFormats, false},
};

bool IsSchemeLetter(char letter) {
    return std::isalnum(static_cast<unsigned char>(letter)) != 0 || letter == '+' || letter == '-' || letter == '.';
}

// Empty: it is no address.
std::string SchemeOf(const std::string& name) {
    const std::size_t end = name.find("://");
    if (end == std::string::npos || end == 0 ||
        !std::all_of(name.begin(), name.begin() + static_cast<int>(end), IsSchemeLetter))
        return {};
    return name.substr(0, end);
}

[[noreturn]] void Refuse(const std::string& name, const std::string& reason) { throw cli::Error(name, {}, reason); }

// Whoever sees the name of an address does not see with what it is entered: neither a name and a password in front of
// the host, nor a passphrase or a key behind the question mark.
std::string WithoutSecrets(const std::string& address, std::size_t hostBegin) {
    const std::size_t path = std::min(address.find_first_of("/?", hostBegin), address.size());
    const std::size_t at = address.substr(0, path).rfind('@');
    const bool hasUser = at != std::string::npos && at >= hostBegin;
    const std::string whole =
        address.substr(0, hostBegin) + address.substr(hasUser && at + 1 < path ? at + 1 : hostBegin);
    return whole.substr(0, whole.find('?'));
}

struct Place {
    std::string host;
    std::string port;  // empty: none is named
};
Place PlaceOf(const std::string& shown, std::size_t hostBegin) {
    const std::string place = shown.substr(hostBegin, shown.find('/', hostBegin) - hostBegin);
    const std::size_t colon = place.rfind(':');
    const bool isInBrackets = colon != std::string::npos && place.find(']', colon) != std::string::npos;
    if (colon == std::string::npos || isInBrackets) return {place, {}};
    return {place.substr(0, colon), place.substr(colon + 1)};
}

bool IsPort(const std::string& text) {
    int port = 0;
    const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), port);
    return failure == std::errc() && end == text.data() + text.size() && port > 0 && port <= 65535;
}

// Waits for a caller: SRT's and TCP's listeners and whoever listens for datagrams.
bool IsAwaited(const std::string& scheme, const std::string& url) {
    const std::size_t query = url.find('?');
    const std::string words = query == std::string::npos ? std::string() : url.substr(query);
    if (scheme == "udp") return true;
    if (scheme == "srt") return words.find("mode=listener") != std::string::npos;
    return scheme == "tcp" && words.find("listen") != std::string::npos && words.find("listen=0") == std::string::npos;
}

LiveName ParseAddress(const std::string& text, const std::string& schemeName) {
    const auto* const scheme =
        std::ranges::find(schemes, schemeName, [](const Scheme& each) { return std::string(each.name); });
    if (scheme == schemes.end()) {
        std::vector<std::string> names;
        names.reserve(schemes.size());
        for (const Scheme& each : schemes) names.emplace_back(each.name);
        Refuse(text, "live pictures do not come by " + cli::Quoted(schemeName) + cli::NearestHint(schemeName, names));
    }
    const std::size_t hostBegin = schemeName.size() + 3;
    LiveName name;
    name.url = text;
    name.shown = WithoutSecrets(text, hostBegin);
    const Place place = PlaceOf(name.shown, hostBegin);
    if (place.host.empty() && !scheme->needsPort) Refuse(name.shown, "names no host");
    if (!place.port.empty() && !IsPort(place.port))
        Refuse(name.shown, cli::Quoted(place.port) + " is no port; it must be a number from 1 to 65535");
    if (scheme->needsPort && place.port.empty())
        Refuse(name.shown, "names no port; such as " + schemeName + "://" +
                               (place.host.empty() ? "127.0.0.1" : place.host) + ":9000");
    name.protocols = scheme->protocols;
    name.formats = scheme->formats;
    name.isAwaited = IsAwaited(schemeName, text);
    name.isNear = place.host == "127.0.0.1" || place.host == "localhost" || place.host == "[::1]";
    return name;
}

// Those that are there, in their order.
std::vector<std::string> Devices() {
    std::vector<std::string> found;
    std::error_code failure;
    for (std::filesystem::directory_iterator entry("/dev", failure), end; !failure && entry != end;
         entry.increment(failure))
        if (entry->path().string().starts_with(devicePrefix)) found.push_back(entry->path().string());
    std::ranges::sort(found);
    return found;
}

LiveName ParseDevice(const std::string& text) {
    std::error_code failure;
    const auto status = std::filesystem::status(text, failure);
    if (!std::filesystem::exists(status)) {
        const std::vector<std::string> found = Devices();
        Refuse(text, found.empty() ? "there is no such device, and no other /dev/video either"
                                   : "there is no such device; there is " + cli::WordList(found, "and"));
    }
    if (!std::filesystem::is_character_file(status)) Refuse(text, "is no device");
    LiveName name;
    name.kind = LiveName::Kind::Device;
    name.url = name.shown = text;
    name.inputFormat = name.formats = "video4linux2,v4l2";
    name.protocols = "file";
    return name;
}

bool IsSize(const std::string& text) {
    const std::size_t cross = text.find('x');
    const auto isNumber = [](std::string_view digits) {
        return !digits.empty() && digits.size() <= 5 &&
               std::ranges::all_of(digits, [](unsigned char digit) { return std::isdigit(digit) != 0; });
    };
    return cross != std::string::npos && isNumber(std::string_view(text).substr(0, cross)) &&
           isNumber(std::string_view(text).substr(cross + 1));
}

bool IsPlace(const std::string& text) {
    std::string asSize = text;
    std::ranges::replace(asSize, ',', 'x');
    return IsSize(asSize);
}

bool IsWindowId(const std::string& text) {
    const std::string_view digits = std::string_view(text).substr(text.starts_with("0x") ? 2 : 0);
    return !digits.empty() && digits.size() <= 10 &&
           std::ranges::all_of(digits, [](unsigned char digit) { return std::isxdigit(digit) != 0; });
}

// "size=640x480", "at=10,20" or "window=0x1a0000c".
void TakeScreenWord(LiveName& name, const std::string& word) {
    const std::size_t equals = word.find('=');
    const std::string key = word.substr(0, equals);
    const std::string value = equals == std::string::npos ? std::string() : word.substr(equals + 1);
    if (key == "size" && IsSize(value))
        name.size = value;
    else if (key == "at" && IsPlace(value))
        name.url += "+" + value;
    else if (key == "window" && IsWindowId(value))
        name.windowId = value;
    else if (key == "size" || key == "at" || key == "window")
        Refuse(name.shown, cli::Quoted(word) + " is none; such as size=640x480, at=10,20 or window=0x1a0000c");
    else
        Refuse(name.shown, "a screen has no " + cli::Quoted(key) + cli::NearestHint(key, {"size", "at", "window"}));
}

LiveName ParseScreen(const std::string& text) {
    const std::string rest = text.substr(screenPrefix.size());
    const std::size_t query = std::min(rest.find('?'), rest.size());
    LiveName name;
    name.kind = LiveName::Kind::Screen;
    name.shown = text;
    name.inputFormat = name.formats = "x11grab";
    name.protocols = "file";
    name.url = rest.substr(0, query);
    if (name.url.empty()) {
        const char* display = std::getenv("DISPLAY");
        if (display == nullptr || *display == '\0') Refuse(text, "there is no display; DISPLAY says where one is");
        name.url = display;
    }
    if (name.url.find(':') == std::string::npos)
        Refuse(text, cli::Quoted(name.url) + " is no display; such as screen::0");
    for (std::size_t begin = query; begin < rest.size();) {
        const std::size_t end = std::min(rest.find('&', begin + 1), rest.size());
        TakeScreenWord(name, rest.substr(begin + 1, end - begin - 1));
        begin = end;
    }
    return name;
}

}  // namespace

bool IsLiveName(const std::string& name) {
    return name.starts_with(screenPrefix) || name.starts_with(devicePrefix) || !SchemeOf(name).empty();
}

LiveName ParseLiveName(const std::string& name) {
    const auto isControl = [](unsigned char letter) { return letter < 0x20 || letter == 0x7f; };
    if (std::ranges::any_of(name, isControl)) throw cli::Error("a name of live pictures has a character that none has");
    if (name.starts_with(screenPrefix)) return ParseScreen(name);
    if (name.starts_with(devicePrefix)) return ParseDevice(name);
    return ParseAddress(name, SchemeOf(name));
}

}  // namespace kel
