#include <dlfcn.h>
#include <doctest/doctest.h>
#include <netdb.h>

#include <condition_variable>
#include <mutex>
#include <string_view>

#include "kel/outputs/tcp_output.h"
#include "kel/outputs/udp_output.h"
#include "kel/video/host_lookup.h"
#include "kel/video/srt_output.h"
#include "tests/cli/thrown.h"
#include "tests/kel/live/watched_source.h"

// Who is asked where a host is may never answer. The test program's getaddrinfo stands for all of the libraries'.

namespace kel {
namespace {

constexpr std::string_view silentHost = "never.answers";
constexpr std::string_view lateHost = "answers.late";  // asked likewise, and is this machine

// Those that ask for the silent host wait here until the test lets them go.
class SilentServer {
public:
    void Ask() {
        std::unique_lock lock(m_mutex);
        ++m_asking;
        m_changed.notify_all();
        m_changed.wait(lock, [this] { return !m_isSilent; });
        --m_asking;
        m_changed.notify_all();
    }
    void BeSilent() {
        const std::lock_guard lock(m_mutex);
        m_isSilent = true;
    }
    void AwaitQuestion() {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [this] { return m_asking > 0; });
    }
    // Answers all, and waits until they are gone.
    void Answer() {
        std::unique_lock lock(m_mutex);
        m_isSilent = false;
        m_changed.notify_all();
        m_changed.wait(lock, [this] { return m_asking == 0; });
    }
    [[nodiscard]] bool IsAsked() {
        const std::lock_guard lock(m_mutex);
        return m_asking > 0;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    int m_asking = 0;
    bool m_isSilent = false;
};

SilentServer& TheServer() {
    static SilentServer& server = *new SilentServer;  // threads may still ask when the program ends
    return server;
}

}  // namespace

TEST_CASE("A source and an output end while the question where their host is goes unanswered") {
    const std::string host(silentHost);
    SUBCASE("a source by TCP") {
        TheServer().BeSilent();
        const LiveSource source(ParseLiveName("tcp://" + host + ":9000"));
        TheServer().AwaitQuestion();
    }
    SUBCASE("a source by SRT") {
        TheServer().BeSilent();
        const LiveSource source(ParseLiveName("srt://" + host + ":9000"));
        TheServer().AwaitQuestion();
    }
    SUBCASE("an output by SRT") {
        TheServer().BeSilent();
        SrtOutput output(SrtSettings{host, 9000, false, {}, {}, {}});
        std::thread waiting([&] { CHECK_FALSE(output.WaitForReader()); });
        TheServer().AwaitQuestion();
        output.Stop();
        waiting.join();
    }
    // It has ended, and the question stands.
    CHECK(TheServer().IsAsked());
    TheServer().Answer();
}

TEST_CASE("A program begins although nobody says where its outputs' hosts are") {
    const std::string host(lateHost);
    const testing::BoundPort reader(SOCK_DGRAM);
    TheServer().BeSilent();
    // Side by side, since each waits for a moment. Where nobody can listen yet, no reader could be told a port.
    std::string tcp;
    std::string srt;
    std::thread first([&] { tcp = cli::testing::Thrown([&] { const TcpOutput output(host, 9000); }); });
    std::thread second([&] {
        srt = cli::testing::Thrown([&] { const SrtOutput output(SrtSettings{host, 9000, true, {}, {}, {}}); });
    });
    UdpOutput output(host, reader.Number(), 1);
    first.join();
    second.join();
    CHECK(TheServer().IsAsked());
    CHECK_EQ(tcp, "tcp://answers.late:9000: cannot be listened at: nobody answers where that is");
    CHECK_EQ(srt, "srt://answers.late:9000: cannot be listened at: nobody answers where that is");
    CHECK_EQ(output.Address(), "udp://answers.late:" + std::to_string(reader.Number()));

    std::thread waiting([&] { CHECK(output.WaitForReader()); });
    TheServer().Answer();
    waiting.join();
    const std::uint8_t sent = 7;
    CHECK(output.Send({&sent, 1}));
    std::uint8_t come = 0;
    CHECK_EQ(recv(reader.Socket(), &come, 1, 0), 1);
    CHECK_EQ(come, sent);
}

TEST_CASE("An output to a host that is nowhere is refused") {
    const std::string tooLong(64, 'x');  // a name's parts have up to 63 letters, so nobody is asked
    CHECK(cli::testing::Thrown([&] {
              const UdpOutput output(tooLong, 5000, 1);
          }).starts_with("udp://" + tooLong + ":5000: there is no such place: "));
    CHECK(cli::testing::Thrown([&] {
              const TcpOutput output(tooLong, 0);
          }).starts_with("tcp://" + tooLong + ":0: there is no such place: "));
}

TEST_CASE("Where a host is is told in numbers, and one that is nowhere has none") {
    const StopSignal never;
    CHECK_EQ(LookUpHost("127.0.0.1", never), std::vector<std::string>{"127.0.0.1"});
    CHECK_EQ(LookUpHost("::1", never), std::vector<std::string>{"::1"});
    const std::vector<std::string> local = LookUpHost("localhost", never);
    CHECK(std::ranges::find(local, "127.0.0.1") != local.end());
    CHECK(LookUpHost("no such host", never).empty());
}

}  // namespace kel

#pragma GCC visibility push(default)
extern "C" int getaddrinfo(const char* host, const char* service, const addrinfo* hints, addrinfo** found) {
    const bool asksServers = hints == nullptr || (hints->ai_flags & AI_NUMERICHOST) == 0;
    const bool isLate = host != nullptr && host == kel::lateHost;
    if (isLate || (host != nullptr && host == kel::silentHost)) {
        if (asksServers) kel::TheServer().Ask();
        if (!isLate || !asksServers) return EAI_NONAME;
        host = "127.0.0.1";
    }
    using Lookup = int (*)(const char*, const char*, const addrinfo*, addrinfo**);
    static const auto real = reinterpret_cast<Lookup>(dlsym(RTLD_NEXT, "getaddrinfo"));
    return real(host, service, hints, found);
}
#pragma GCC visibility pop
