#include "kel/video/srt_output.h"

#include <sys/socket.h>

#include <cerrno>
#include <cstdlib>
#include <system_error>

#include "cli/error.h"
#include "kel/video/av_objects.h"
#include "kel/video/host_lookup.h"
#include "kel/video/socket_address.h"
#include "kel/video/socket_handle.h"

namespace kel {
namespace {

class SrtOptions {
public:
    SrtOptions() = default;
    ~SrtOptions() { av_dict_free(&m_dictionary); }
    SrtOptions(const SrtOptions&) = delete;
    SrtOptions& operator=(const SrtOptions&) = delete;
    SrtOptions(SrtOptions&&) = delete;
    SrtOptions& operator=(SrtOptions&&) = delete;

    void Set(const char* name, const std::string& value) {
        if (!value.empty()) av_dict_set(&m_dictionary, name, value.c_str(), 0);
    }
    [[nodiscard]] AVDictionary** Get() { return &m_dictionary; }

private:
    AVDictionary* m_dictionary = nullptr;
};

int IsStopped(void* signal) { return static_cast<const StopSignal*>(signal)->IsRaised() ? 1 : 0; }

std::string MicrosecondsOf(const std::string& milliseconds) {
    return milliseconds.empty() ? std::string() : std::to_string(std::atoi(milliseconds.c_str()) * 1000);
}

// The library tells only once it listens, on its own thread, that somebody else does; SRT is UDP, so this tells before.
void RequireFreePort(const SrtSettings& settings, const std::string& address) {
    const SocketAddress place = PlaceToListenAt(settings.host, settings.port, address);
    const SocketHandle handle(socket(place.place.ss_family, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    if (handle.Get() < 0 || bind(handle.Get(), place.Get(), place.size) != 0)
        throw cli::Error(address, {}, "cannot be listened at: " + std::generic_category().message(errno));
}

}  // namespace

struct SrtOutput::Connection {
    AVIOContext* context = nullptr;

    Connection() = default;
    ~Connection() { avio_closep(&context); }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    Connection(Connection&&) = delete;
    Connection& operator=(Connection&&) = delete;
};

SrtOutput::SrtOutput(SrtSettings settings) : m_settings(std::move(settings)) {
    SilenceAv();
    if (m_settings.isListener) RequireFreePort(m_settings, Address());
}

SrtOutput::~SrtOutput() = default;

std::string SrtOutput::AddressOf(const std::string& host) const {
    const bool isSix = host.find(':') != std::string::npos;
    return "srt://" + (isSix ? "[" + host + "]" : host) + ":" + std::to_string(m_settings.port);
}

std::string SrtOutput::Address() const { return AddressOf(m_settings.host); }

bool SrtOutput::Connect(const std::string& host) {
    const AVIOInterruptCB interrupt{IsStopped, const_cast<StopSignal*>(&Stopped())};
    SrtOptions options;
    options.Set("mode", m_settings.isListener ? "listener" : "caller");
    options.Set("latency", MicrosecondsOf(m_settings.latency));
    options.Set("passphrase", m_settings.passphrase);
    options.Set("streamid", m_settings.streamId);
    options.Set("pkt_size", std::to_string(datagramBytes));
    auto connection = std::make_unique<Connection>();
    if (avio_open2(&connection->context, AddressOf(host).c_str(), AVIO_FLAG_WRITE, &interrupt, options.Get()) < 0)
        return false;
    m_connection = std::move(connection);
    return true;
}

// The library's own question where the host is cannot be ended, so it gets the answer.
bool SrtOutput::WaitForReader() {
    for (;;) {
        for (const std::string& host : LookUpHost(m_settings.host, Stopped()))
            if (Connect(host)) return true;
        if (Stopped().WaitFor(retryMilliseconds)) return false;
    }
}

bool SrtOutput::Send(std::span<const std::uint8_t> bytes) {
    AVIOContext* context = m_connection->context;
    avio_write(context, bytes.data(), static_cast<int>(bytes.size()));
    avio_flush(context);
    return context->error >= 0;
}

void SrtOutput::Leave() { m_connection.reset(); }

}  // namespace kel
