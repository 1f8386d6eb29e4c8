#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace TQ {
namespace BACnet {
namespace Gateway {

/// One entry of the polling list: a property kept fresh in the stored tree.
struct PollItem {
    uint32_t device = 0;
    std::string object;    ///< "analog-input,1"
    std::string property;  ///< "present-value" or its number
    unsigned intervalMs = 10000;
    /// Kept fresh by a COV subscription where the device takes one (present-value and
    /// status-flags only; other properties are always polled).
    bool cov = true;
};

/// Change-of-value subscriptions for the polling list: subscribed with this lifetime, renewed
/// when 80 % of it has passed; a device that refuses or does not answer is polled instead and
/// asked again after one lifetime. Cancelled when the gateway stops.
struct CovOptions {
    bool enabled = true;
    unsigned lifetimeS = 300;
    bool confirmed = false;  ///< ask for confirmed notifications (acknowledged by the gateway)
};

/// An access token, kept only as the SHA-256 of its text (lower-case hexadecimal).
struct TokenEntry {
    std::string sha256;
    bool write = false;  ///< read and write; else read only
};

/// Everything the gateway is told, from one JSON file. Unknown keys are refused, so that a
/// misspelt key does not silently leave its default in force.
struct Config {
    // HTTP side
    std::string listenAddress = "127.0.0.1";
    uint16_t listenPort = 8080;
    std::string tlsCertificate;  ///< both set: HTTPS
    std::string tlsKey;
    unsigned threads = 8;
    unsigned maxQueued = 64;       ///< connections waiting for a worker; more are refused
    unsigned clientTimeoutMs = 5000;  ///< a client that sends nothing for this long is dropped
    std::size_t maxBody = 64 * 1024;
    std::size_t maxPath = 2048;
    unsigned maxHeaders = 40;

    // BACnet/IP side
    std::string interface = "127.0.0.1";
    uint16_t udpPort = 47808;
    std::string broadcast;
    std::string bbmd;  ///< "address:port": register as a foreign device there
    unsigned bbmdTtl = 60;
    unsigned apduTimeoutMs = 1000;
    unsigned retries = 1;
    unsigned discoverMs = 1000;
    uint32_t localDevice = 4194302;  ///< the device ".this" and ".blt" paths name

    // Storage
    std::string sqliteFile = "tq-gateway.db";
    std::string postgresql;  ///< a libpq connection string: used instead of the file when set
    unsigned maxAgeMs = 5000;  ///< a stored value younger than this answers a read

    std::vector<PollItem> polling;
    CovOptions cov;
    std::vector<TokenEntry> tokens;

    /// Reads and checks a file; Poco::DataFormatException naming the file and the key at fault.
    static Config load(const std::string& path);
    /// The same from the JSON text (`source` names it in messages).
    static Config parse(const std::string& text, const std::string& source);
    /// The hash a token is configured by.
    static std::string hashToken(const std::string& token);
};

}  // namespace Gateway
}  // namespace BACnet
}  // namespace TQ
