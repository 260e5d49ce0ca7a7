#include "kel/video/host_lookup.h"

#include <netdb.h>
#include <poll.h>
#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <memory>
#include <thread>

namespace kel {
namespace {

std::vector<std::string> NumbersOf(const std::string& host, int flags) {
    addrinfo hints{};
    hints.ai_socktype = SOCK_DGRAM;  // each place once
    hints.ai_flags = flags;
    addrinfo* found = nullptr;
    if (getaddrinfo(host.c_str(), nullptr, &hints, &found) != 0) return {};
    const std::unique_ptr<addrinfo, void (*)(addrinfo*)> owned(found, freeaddrinfo);
    std::vector<std::string> numbers;
    for (const addrinfo* each = found; each != nullptr; each = each->ai_next) {
        std::array<char, NI_MAXHOST> text{};
        if (getnameinfo(each->ai_addr, each->ai_addrlen, text.data(), text.size(), nullptr, 0, NI_NUMERICHOST) == 0)
            numbers.emplace_back(text.data());
    }
    return numbers;
}

// Asked by a thread of its own, which nobody need wait for.
struct HostQuestion {
    std::string host;
    std::vector<std::string> numbers;  // once it is answered
    StopSignal isAnswered;
};

}  // namespace

std::vector<std::string> LookUpHost(const std::string& host, const StopSignal& stopped) {
    if (auto numbers = NumbersOf(host, AI_NUMERICHOST); !numbers.empty()) return numbers;
    const auto question = std::make_shared<HostQuestion>();
    question->host = host;
    std::thread([question] {
        question->numbers = NumbersOf(question->host, 0);
        question->isAnswered.Raise();
    }).detach();
    std::array<pollfd, 2> waiting{{{question->isAnswered.Handle(), POLLIN, 0}, {stopped.Handle(), POLLIN, 0}}};
    int ready = 0;
    do ready = poll(waiting.data(), waiting.size(), -1);
    while (ready < 0 && errno == EINTR);
    if (ready < 0 || stopped.IsRaised() || !question->isAnswered.IsRaised()) return {};
    return question->numbers;
}

}  // namespace kel
