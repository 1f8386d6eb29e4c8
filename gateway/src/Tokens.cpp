#include "TQ_BACnet/Gateway/Tokens.h"

#include <Poco/String.h>

namespace TQ {
namespace BACnet {
namespace Gateway {

Tokens::Tokens(const std::vector<TokenEntry>& entries) {
    for (const TokenEntry& e : entries) _hashes[e.sha256] = _hashes[e.sha256] || e.write;
}

Tokens::Access Tokens::check(const std::string& authorization) const {
    static const std::string scheme = "bearer ";
    if (authorization.size() <= scheme.size() ||
        Poco::icompare(authorization.substr(0, scheme.size()), scheme) != 0)
        return Access::Missing;
    const std::string token = Poco::trim(authorization.substr(scheme.size()));
    if (token.empty()) return Access::Missing;
    const auto it = _hashes.find(Config::hashToken(token));
    if (it == _hashes.end()) return Access::Unknown;
    return it->second ? Access::ReadWrite : Access::Read;
}

}  // namespace Gateway
}  // namespace BACnet
}  // namespace TQ
