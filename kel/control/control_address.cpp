#include "kel/control/control_address.h"

#include <fcntl.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <system_error>

#include "cli/error.h"
#include "cli/nearest_name.h"
#include "kel/workspace/openable_files.h"

namespace kel {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t tokenLength = 32;

bool IsToken(std::string_view text) {
    const auto isHex = [](char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f'); };
    return text.size() == tokenLength && std::ranges::all_of(text, isHex);
}

int PortOf(std::string_view text, std::string_view whole) {
    int port = -1;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), port);
    if (error != std::errc() || end != text.data() + text.size() || port < 0 || port > 65535)
        throw cli::Error(cli::Quoted(whole) + " is no port, 0 to 65535, nor ADDRESS:PORT");
    return port;
}

// Beside the list of recent files; empty: the account has no place for it.
fs::path TokenFile(int port) {
    const fs::path recent = RecentFilesPlace();
    return recent.empty() ? fs::path() : recent.parent_path() / ("control-" + std::to_string(port));
}

class Descriptor {
public:
    explicit Descriptor(int handle) : m_handle(handle) {}
    ~Descriptor() {
        if (m_handle >= 0) close(m_handle);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    Descriptor(Descriptor&&) = delete;
    Descriptor& operator=(Descriptor&&) = delete;
    [[nodiscard]] int Get() const { return m_handle; }

private:
    int m_handle;
};

}  // namespace

ControlAddress ParseDoorAddress(std::string_view text) {
    ControlAddress address;
    const std::size_t colon = text.rfind(':');
    if (colon == 0) throw cli::Error(cli::Quoted(text) + " has no address before its port");
    if (colon != std::string_view::npos) address.host = text.substr(0, colon);
    address.port = PortOf(colon == std::string_view::npos ? text : text.substr(colon + 1), text);
    return address;
}

ControlAddress ParseControlAddress(std::string_view text) {
    constexpr std::string_view scheme = "http://";
    constexpr std::string_view tokenKey = "/?token=";
    std::string_view rest = text;
    if (rest.starts_with(scheme)) rest.remove_prefix(scheme.size());
    std::string_view token;
    if (const std::size_t at = rest.find(tokenKey); at != std::string_view::npos) {
        token = rest.substr(at + tokenKey.size());
        rest = rest.substr(0, at);
    } else if (rest.ends_with('/')) {
        rest.remove_suffix(1);
    }
    ControlAddress address = ParseDoorAddress(rest);
    if (address.port == 0) throw cli::Error(cli::Quoted(text) + " is no port of a window");
    address.token = token;
    return address;
}

std::string ControlUrl(const ControlAddress& address) {
    return "http://" + address.host + ":" + std::to_string(address.port) + "/?token=" + address.token;
}

bool IsLoopback(std::string_view host) { return host == "localhost" || host.starts_with("127."); }

std::string NewControlToken() {
    std::array<unsigned char, tokenLength / 2> bytes{};
    if (getrandom(bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size()))
        throw cli::Error("this machine gives no random numbers");
    constexpr std::string_view digits = "0123456789abcdef";
    std::string token;
    for (const unsigned char byte : bytes) {
        token += digits[byte >> 4U];
        token += digits[byte & 15U];
    }
    return token;
}

bool SameToken(std::string_view left, std::string_view right) {
    if (left.size() != right.size()) return false;
    unsigned differences = 0;
    for (std::size_t i = 0; i < left.size(); ++i)
        differences |= static_cast<unsigned char>(left[i]) ^ static_cast<unsigned char>(right[i]);
    return differences == 0;
}

// A file of somebody else's, or one that others can read, is none.
std::string KeptToken(int port) {
    const fs::path file = TokenFile(port);
    if (file.empty()) return {};
    const Descriptor opened(open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    struct stat status {};
    if (opened.Get() < 0 || fstat(opened.Get(), &status) != 0) return {};
    if (!S_ISREG(status.st_mode) || status.st_uid != getuid() || (status.st_mode & 077U) != 0) return {};
    std::array<char, tokenLength> bytes{};
    if (read(opened.Get(), bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size())) return {};
    std::string token(bytes.begin(), bytes.end());
    return IsToken(token) ? token : std::string();
}

void KeepToken(int port, const std::string& token) {
    const fs::path file = TokenFile(port);
    if (file.empty() || KeptToken(port) == token) return;
    std::error_code ignored;
    fs::create_directories(file.parent_path(), ignored);
    fs::remove(file, ignored);
    const Descriptor made(open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0600));
    if (made.Get() < 0) return;
    if (write(made.Get(), token.data(), token.size()) != static_cast<ssize_t>(token.size())) fs::remove(file, ignored);
}

void ForgetToken(int port) {
    std::error_code ignored;
    if (const fs::path file = TokenFile(port); !file.empty()) fs::remove(file, ignored);
}

}  // namespace kel
