#include "TQ_BACnet/Gateway/Config.h"

#include <Poco/DigestEngine.h>
#include <Poco/Exception.h>
#include <Poco/FileStream.h>
#include <Poco/JSON/Parser.h>
#include <Poco/SHA2Engine.h>
#include <Poco/StreamCopier.h>
#include <Poco/String.h>

#include <functional>
#include <map>
#include <set>

namespace TQ {
namespace BACnet {
namespace Gateway {

using Poco::JSON::Array;
using Poco::JSON::Object;

namespace {

// Reads one JSON object's members, each by a handler; what has no handler is an error.
class Section {
public:
    Section(const Object::Ptr& object, std::string where, const std::string& source)
        : _object(object), _where(std::move(where)), _source(source) {}

    [[noreturn]] void fail(const std::string& key, const std::string& what) const {
        throw Poco::DataFormatException(_source + ": \"" + _where + key + "\": " + what);
    }
    Poco::Dynamic::Var get(const std::string& key) const { return _object->get(key); }
    bool has(const std::string& key) const { return _object->has(key); }

    std::string text(const std::string& key) const {
        const auto v = get(key);
        if (!v.isString()) fail(key, "expected a text");
        return v.toString();
    }
    uint64_t number(const std::string& key, uint64_t low, uint64_t high) const {
        const auto v = get(key);
        if (!v.isInteger() || v.isEmpty()) fail(key, "expected a whole number");
        const int64_t n = v.convert<int64_t>();
        if (n < int64_t(low) || uint64_t(n) > high)
            fail(key, "expected " + std::to_string(low) + " to " + std::to_string(high) + ", not " +
                          std::to_string(n));
        return uint64_t(n);
    }
    bool flag(const std::string& key) const {
        const auto v = get(key);
        if (!v.isBoolean()) fail(key, "expected true or false");
        return v.convert<bool>();
    }
    Object::Ptr object(const std::string& key) const {
        Object::Ptr o = _object->getObject(key);
        if (!o) fail(key, "expected an object { ... }");
        return o;
    }
    Array::Ptr array(const std::string& key) const {
        Array::Ptr a = _object->getArray(key);
        if (!a) fail(key, "expected a list [ ... ]");
        return a;
    }
    void each(const std::map<std::string, std::function<void(const std::string&)>>& handlers) const {
        for (const auto& member : *_object) {
            const auto h = handlers.find(member.first);
            if (h == handlers.end()) fail(member.first, "unknown key");
            h->second(member.first);
        }
    }
    const std::string& where() const { return _where; }

private:
    Object::Ptr _object;
    std::string _where;
    const std::string& _source;
};

bool isHex(const std::string& s) {
    for (char c : s)
        if (!std::isxdigit(static_cast<unsigned char>(c))) return false;
    return true;
}

}  // namespace

std::string Config::hashToken(const std::string& token) {
    Poco::SHA2Engine sha(Poco::SHA2Engine::SHA_256);
    sha.update(token);
    return Poco::DigestEngine::digestToHex(sha.digest());
}

Config Config::load(const std::string& path) {
    std::string text;
    try {
        Poco::FileInputStream in(path);
        Poco::StreamCopier::copyToString(in, text);
    } catch (const Poco::Exception& e) {
        throw Poco::DataFormatException(path + ": cannot be read (" + e.message() + ")");
    }
    return parse(text, path);
}

Config Config::parse(const std::string& text, const std::string& source) {
    Object::Ptr root;
    try {
        root = Poco::JSON::Parser().parse(text).extract<Object::Ptr>();
    } catch (const Poco::Exception& e) {
        throw Poco::DataFormatException(source + ": not a JSON object (" + e.displayText() + ")");
    } catch (const std::exception&) {
        throw Poco::DataFormatException(source + ": not a JSON object");
    }
    Config c;
    const Section top(root, "", source);
    top.each({
        {"listen",
         [&](const std::string& k) {
             const Section s(top.object(k), "listen.", source);
             s.each({
                 {"address", [&](const std::string& key) { c.listenAddress = s.text(key); }},
                 {"port", [&](const std::string& key) { c.listenPort = uint16_t(s.number(key, 0, 65535)); }},
                 {"threads", [&](const std::string& key) { c.threads = unsigned(s.number(key, 1, 256)); }},
                 {"maxQueued", [&](const std::string& key) { c.maxQueued = unsigned(s.number(key, 1, 10000)); }},
                 {"clientTimeoutMs",
                  [&](const std::string& key) { c.clientTimeoutMs = unsigned(s.number(key, 100, 600000)); }},
                 {"maxBody", [&](const std::string& key) { c.maxBody = s.number(key, 16, 1 << 20); }},
                 {"maxPath", [&](const std::string& key) { c.maxPath = s.number(key, 16, 65536); }},
                 {"maxHeaders", [&](const std::string& key) { c.maxHeaders = unsigned(s.number(key, 4, 100)); }},
             });
         }},
        {"tls",
         [&](const std::string& k) {
             const Section s(top.object(k), "tls.", source);
             s.each({
                 {"certificate", [&](const std::string& key) { c.tlsCertificate = s.text(key); }},
                 {"key", [&](const std::string& key) { c.tlsKey = s.text(key); }},
             });
             if (c.tlsCertificate.empty() != c.tlsKey.empty())
                 s.fail("", "give both \"certificate\" and \"key\", or neither");
         }},
        {"bacnet",
         [&](const std::string& k) {
             const Section s(top.object(k), "bacnet.", source);
             s.each({
                 {"interface", [&](const std::string& key) { c.interface = s.text(key); }},
                 {"port", [&](const std::string& key) { c.udpPort = uint16_t(s.number(key, 1, 65535)); }},
                 {"broadcast", [&](const std::string& key) { c.broadcast = s.text(key); }},
                 {"bbmd", [&](const std::string& key) { c.bbmd = s.text(key); }},
                 {"bbmdTtl", [&](const std::string& key) { c.bbmdTtl = unsigned(s.number(key, 1, 65535)); }},
                 {"apduTimeoutMs",
                  [&](const std::string& key) { c.apduTimeoutMs = unsigned(s.number(key, 50, 60000)); }},
                 {"retries", [&](const std::string& key) { c.retries = unsigned(s.number(key, 0, 10)); }},
                 {"discoverMs", [&](const std::string& key) { c.discoverMs = unsigned(s.number(key, 50, 60000)); }},
                 {"localDevice",
                  [&](const std::string& key) { c.localDevice = uint32_t(s.number(key, 0, 4194303)); }},
             });
         }},
        {"database",
         [&](const std::string& k) {
             const Section s(top.object(k), "database.", source);
             s.each({
                 {"sqlite", [&](const std::string& key) { c.sqliteFile = s.text(key); }},
                 {"postgresql", [&](const std::string& key) { c.postgresql = s.text(key); }},
                 {"maxAgeMs", [&](const std::string& key) { c.maxAgeMs = unsigned(s.number(key, 0, 86400000)); }},
             });
         }},
        {"polling",
         [&](const std::string& k) {
             const Array::Ptr list = top.array(k);
             for (unsigned i = 0; i < list->size(); ++i) {
                 const Object::Ptr o = list->getObject(i);
                 if (!o) top.fail(k + "[" + std::to_string(i) + "]", "expected an object");
                 const Section s(o, "polling[" + std::to_string(i) + "].", source);
                 PollItem item;
                 s.each({
                     {"device", [&](const std::string& key) { item.device = uint32_t(s.number(key, 0, 4194302)); }},
                     {"object", [&](const std::string& key) { item.object = s.text(key); }},
                     {"property", [&](const std::string& key) { item.property = s.text(key); }},
                     {"intervalMs",
                      [&](const std::string& key) { item.intervalMs = unsigned(s.number(key, 100, 86400000)); }},
                     {"cov", [&](const std::string& key) { item.cov = s.flag(key); }},
                 });
                 if (item.object.empty() || item.property.empty()) s.fail("", "needs \"object\" and \"property\"");
                 c.polling.push_back(item);
             }
         }},
        {"cov",
         [&](const std::string& k) {
             const Section s(top.object(k), "cov.", source);
             s.each({
                 {"enabled", [&](const std::string& key) { c.cov.enabled = s.flag(key); }},
                 {"lifetime", [&](const std::string& key) { c.cov.lifetimeS = unsigned(s.number(key, 1, 86400)); }},
                 {"confirmed", [&](const std::string& key) { c.cov.confirmed = s.flag(key); }},
             });
         }},
        {"tokens",
         [&](const std::string& k) {
             const Array::Ptr list = top.array(k);
             for (unsigned i = 0; i < list->size(); ++i) {
                 const Object::Ptr o = list->getObject(i);
                 if (!o) top.fail(k + "[" + std::to_string(i) + "]", "expected an object");
                 const Section s(o, "tokens[" + std::to_string(i) + "].", source);
                 TokenEntry token;
                 s.each({
                     {"sha256",
                      [&](const std::string& key) {
                          token.sha256 = Poco::toLower(s.text(key));
                          if (token.sha256.size() != 64 || !isHex(token.sha256))
                              s.fail(key, "expected 64 hexadecimal digits (tq-gateway --hash-token TEXT)");
                      }},
                     {"rights",
                      [&](const std::string& key) {
                          const std::string r = s.text(key);
                          if (r != "read" && r != "read-write") s.fail(key, "expected \"read\" or \"read-write\"");
                          token.write = r == "read-write";
                      }},
                 });
                 if (token.sha256.empty()) s.fail("", "needs \"sha256\"");
                 c.tokens.push_back(token);
             }
         }},
    });
    if (c.tokens.empty()) top.fail("tokens", "at least one token is needed: nothing is served without one");
    return c;
}

}  // namespace Gateway
}  // namespace BACnet
}  // namespace TQ
