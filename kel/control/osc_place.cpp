#include "kel/control/osc_place.h"

#include <arpa/inet.h>

#include "cli/error.h"

namespace kel {

sockaddr_in OscPlaceOf(const ControlAddress& address) {
    sockaddr_in place{};
    place.sin_family = AF_INET;
    place.sin_port = htons(static_cast<std::uint16_t>(address.port));
    const std::string host = address.host == "localhost" ? "127.0.0.1" : address.host;
    if (inet_pton(AF_INET, host.c_str(), &place.sin_addr) != 1)
        throw cli::Error(address.host + ": is no address such as 192.168.1.7");
    return place;
}

}  // namespace kel
