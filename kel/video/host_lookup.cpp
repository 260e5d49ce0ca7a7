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

constexpr int soon = 2000;  // milliseconds

HostAnswer AnswerFor(const std::string& host, int flags) {
    addrinfo hints{};
    hints.ai_socktype = SOCK_DGRAM;  // each place once
    hints.ai_flags = flags;
    addrinfo* found = nullptr;
    if (const int failure = getaddrinfo(host.c_str(), nullptr, &hints, &found); failure != 0)
        return {true, {}, gai_strerror(failure)};
    const std::unique_ptr<addrinfo, void (*)(addrinfo*)> owned(found, freeaddrinfo);
    HostAnswer answer{true, {}, "it has no address"};
    for (const addrinfo* each = found; each != nullptr; each = each->ai_next) {
        std::array<char, NI_MAXHOST> text{};
        if (getnameinfo(each->ai_addr, each->ai_addrlen, text.data(), text.size(), nullptr, 0, NI_NUMERICHOST) == 0)
            answer.numbers.emplace_back(text.data());
    }
    return answer;
}

// Asked by a thread of its own, which nobody need wait for.
struct HostQuestion {
    std::string host;
    HostAnswer answer;  // once it is answered
    StopSignal isAnswered;
};

std::shared_ptr<const HostQuestion> Ask(const std::string& host) {
    auto question = std::make_shared<HostQuestion>();
    question->host = host;
    std::thread([question] {
        question->answer = AnswerFor(question->host, 0);
        question->isAnswered.Raise();
    }).detach();
    return question;
}

}  // namespace

std::vector<std::string> LookUpHost(const std::string& host, const StopSignal& stopped) {
    if (auto here = AnswerFor(host, AI_NUMERICHOST); !here.numbers.empty()) return here.numbers;
    const auto question = Ask(host);
    std::array<pollfd, 2> waiting{{{question->isAnswered.Handle(), POLLIN, 0}, {stopped.Handle(), POLLIN, 0}}};
    int ready = 0;
    do ready = poll(waiting.data(), waiting.size(), -1);
    while (ready < 0 && errno == EINTR);
    if (ready < 0 || stopped.IsRaised() || !question->isAnswered.IsRaised()) return {};
    return question->answer.numbers;
}

HostAnswer LookUpHostSoon(const std::string& host) {
    if (auto here = AnswerFor(host, AI_NUMERICHOST); !here.numbers.empty()) return here;
    const auto question = Ask(host);
    return question->isAnswered.WaitFor(soon) ? question->answer : HostAnswer();
}

}  // namespace kel
