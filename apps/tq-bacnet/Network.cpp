#include "Network.h"

#include <Poco/Net/IPAddress.h>
#include <Poco/NumberFormatter.h>

#include <arpa/inet.h>

#include <cstring>

namespace TQ {
namespace Apps {

using namespace BACnet::Net;

namespace {

constexpr long kDefaultPort = 47808;

/// "A.B.C.D[:PORT]" to a 6-octet B/IP MAC; false when it is no such text.
bool parseEndpoint(const std::string& text, uint8_t mac[6]) {
    const size_t colon = text.find(':');
    in_addr address{};
    if (inet_pton(AF_INET, text.substr(0, colon).c_str(), &address) != 1) return false;
    const long port = colon == std::string::npos ? kDefaultPort : parseNumber(text.substr(colon + 1), 1, 65535, "port");
    const uint16_t netPort = htons(static_cast<uint16_t>(port));
    std::memcpy(mac, &address.s_addr, 4);
    std::memcpy(mac + 4, &netPort, 2);
    return true;
}

PortOptions portOptions(const Args& args) {
    PortOptions options;
    options.interface = args.get("interface");
    options.udpPort = static_cast<uint16_t>(args.getNumber("port", kDefaultPort, 1, 65535));
    options.broadcast = args.get("broadcast");
    return options;
}

ClientOptions clientOptions(const Args& args) {
    ClientOptions options;
    options.apduTimeoutMs = static_cast<unsigned>(args.getNumber("timeout", 3, 1, 600) * 1000);
    options.retries = static_cast<unsigned>(args.getNumber("retries", 3, 0, 10));
    return options;
}

}  // namespace

Network::Network(const Args& args)
    : _socket(portOptions(args)),
      _link(_socket, "tq-bacnet"),
      _client(_link, clientOptions(args)),
      _operations(_client, static_cast<unsigned>(args.getNumber("timeout", 3, 1, 600) * 1000)),
      _bindMs(static_cast<unsigned>(args.getNumber("timeout", 3, 1, 600) * 1000)),
      _waitMs(static_cast<unsigned>(args.getNumber("wait", 3, 0, 3600) * 1000)) {
    if (args.has("bbmd")) {
        uint8_t bbmd[6];
        if (!parseEndpoint(args.get("bbmd"), bbmd)) throw UsageError("--bbmd is HOST:PORT, not \"" + args.get("bbmd") + "\"");
        _link.registerForeignDevice(bbmd, static_cast<uint16_t>(args.getNumber("ttl", 60, 1, 65535)));
        // Foreign devices reach the site only once the BBMD has taken the registration.
        Received ignored;
        for (int waited = 0; _link.registration() == Link::Registration::Pending && waited < 3000; waited += 100) {
            _link.receive(ignored, 100);
        }
        if (_link.registration() != Link::Registration::Registered) {
            throw InputError("the BBMD at " + args.get("bbmd") + " did not accept the registration");
        }
    }
}

void Network::bind(const Target& device) {
    if (device.byAddress) return;
    BACNET_ADDRESS address;
    if (_client.addressOf(device.instance, address)) return;
    const auto instance = static_cast<int32_t>(device.instance);
    _operations.whoIs(_bindMs, instance, instance);
    if (!_client.addressOf(device.instance, address)) {
        throw TimeoutError("device " + std::to_string(device.instance) + " did not answer Who-Is");
    }
}

Target parseDevice(const std::string& text) {
    if (!text.empty() && text.find_first_not_of("0123456789") == std::string::npos) {
        return Target::device(static_cast<uint32_t>(parseNumber(text, 0, 4194302, "device instance")));
    }
    BACNET_ADDRESS address{};
    if (!parseEndpoint(text, address.mac)) {
        throw InputError("a device is an instance number or an address A.B.C.D[:PORT], not \"" + text + "\"");
    }
    address.mac_len = 6;
    return Target::at(address);
}

std::string addressText(const BACNET_ADDRESS& address) {
    std::string text;
    if (address.net != 0) {
        text = std::to_string(address.net) + ":";
        for (unsigned i = 0; i < address.len; ++i) text += Poco::NumberFormatter::formatHex(address.adr[i], 2);
        text += " via ";
    }
    if (address.mac_len == 6) {
        char ip[INET_ADDRSTRLEN] = {};
        inet_ntop(AF_INET, address.mac, ip, sizeof ip);
        uint16_t port = 0;
        std::memcpy(&port, address.mac + 4, 2);
        return text + ip + ":" + std::to_string(ntohs(port));
    }
    for (unsigned i = 0; i < address.mac_len; ++i) text += Poco::NumberFormatter::formatHex(address.mac[i], 2);
    return text;
}

void check(const Outcome& outcome, const std::string& what) {
    if (outcome.ok()) return;
    if (outcome.kind == Outcome::Timeout) throw TimeoutError(what + ": no answer in time");
    throw InputError(what + ": " + outcome.describe());
}

}  // namespace Apps
}  // namespace TQ
