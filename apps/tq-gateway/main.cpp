// tq-gateway: serves BACnet/WS for the BACnet/IP devices it finds.
//
//   tq-gateway --config FILE [--cert FILE --key FILE]
//   tq-gateway --hash-token TEXT
//   tq-gateway --help
#include "TQ_BACnet/Gateway/Gateway.h"
#include "TQ_BACnet/Gateway/Server.h"

#include <Poco/Exception.h>

#include <csignal>
#include <iostream>
#include <thread>

namespace {

const char* const kHelp = R"(usage: tq-gateway --config FILE [--cert FILE --key FILE]
       tq-gateway --hash-token TEXT
       tq-gateway --help

Serves BACnet/WS (/bacnetws/...) for the BACnet/IP devices found by Who-Is, and a page to
browse them at /. Every request needs "Authorization: Bearer TOKEN" with a configured token.

--config FILE      the configuration (JSON), e.g.
  {
    "listen":   { "address": "127.0.0.1", "port": 8080, "threads": 8, "maxQueued": 64,
                  "clientTimeoutMs": 5000, "maxBody": 65536, "maxPath": 2048, "maxHeaders": 40 },
    "tls":      { "certificate": "gateway.crt", "key": "gateway.key" },
    "bacnet":   { "interface": "127.0.0.1", "port": 47808, "broadcast": "", "bbmd": "10.0.0.1:47808",
                  "bbmdTtl": 60, "apduTimeoutMs": 1000, "retries": 1, "discoverMs": 1000,
                  "localDevice": 4194302 },
    "database": { "sqlite": "tq-gateway.db", "postgresql": "host=... dbname=...", "maxAgeMs": 5000 },
    "polling":  [ { "device": 101, "object": "analog-input,1", "property": "present-value",
                    "intervalMs": 2000, "cov": true } ],
    "cov":      { "enabled": true, "lifetime": 300, "confirmed": false },
    "tokens":   [ { "sha256": "<64 hex digits>", "rights": "read" },
                  { "sha256": "<64 hex digits>", "rights": "read-write" } ]
  }
  Only "tokens" is required; "postgresql", when given, is used instead of "sqlite".
  Present values and status flags on the polling list are kept fresh by COV subscriptions
  (lifetime in seconds, renewed at 80 %; "confirmed" asks for confirmed notifications) where
  the device takes them (their stored values then answer reads whatever "maxAgeMs" says), and
  polled where it refuses or stays silent; "cov": false on an entry, or "enabled": false for
  all, polls instead.
--cert, --key      HTTPS with this certificate and key (overrides "tls")
--hash-token TEXT  prints the sha256 to configure for the token TEXT
)";

volatile std::sig_atomic_t gStop = 0;
void onSignal(int) { gStop = 1; }

int usage(const std::string& why) {
    std::cerr << "tq-gateway: " << why << "\n(tq-gateway --help tells more)\n";
    return 2;
}

}  // namespace

int main(int argc, char** argv) {
    using namespace TQ::BACnet::Gateway;
    std::string configFile, cert, key;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg == "--help" || arg == "-h") {
            std::cout << kHelp;
            return 0;
        }
        if (i + 1 >= argc) return usage("missing value after " + arg);
        const std::string value = argv[++i];
        if (arg == "--config") {
            configFile = value;
        } else if (arg == "--cert") {
            cert = value;
        } else if (arg == "--key") {
            key = value;
        } else if (arg == "--hash-token") {
            std::cout << Config::hashToken(value) << "\n";
            return 0;
        } else {
            return usage("unknown option " + arg);
        }
    }
    if (configFile.empty()) return usage("--config FILE is required");
    if (cert.empty() != key.empty()) return usage("--cert and --key go together");
    try {
        Config config = Config::load(configFile);
        if (!cert.empty()) {
            config.tlsCertificate = cert;
            config.tlsKey = key;
        }
        Gateway gateway(config);
        Server server(gateway, config);
        std::signal(SIGINT, onSignal);
        std::signal(SIGTERM, onSignal);
        const auto devices = gateway.discover();
        std::cout << "tq-gateway: " << devices.size() << " device(s) found:";
        for (uint32_t d : devices) std::cout << " " << d;
        std::cout << "\ntq-gateway: serving " << (config.tlsCertificate.empty() ? "http" : "https") << "://"
                  << config.listenAddress << ":" << server.port() << "/" << std::endl;
        gateway.startPolling();
        server.start();
        while (!gStop) std::this_thread::sleep_for(std::chrono::milliseconds(100));
        std::cout << "tq-gateway: stopping" << std::endl;
        server.stop();
    } catch (const Poco::Exception& e) {
        std::cerr << "tq-gateway: " << e.displayText() << std::endl;
        return 1;
    } catch (const std::exception& e) {
        std::cerr << "tq-gateway: " << e.what() << std::endl;
        return 1;
    }
    return 0;
}
