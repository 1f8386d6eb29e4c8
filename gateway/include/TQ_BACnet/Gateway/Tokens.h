#pragma once

#include "TQ_BACnet/Gateway/Config.h"

#include <string>
#include <unordered_map>

namespace TQ {
namespace BACnet {
namespace Gateway {

/// The bearer tokens the gateway accepts, held only as hashes.
class Tokens {
public:
    enum class Access { Missing, Unknown, Read, ReadWrite };

    explicit Tokens(const std::vector<TokenEntry>& entries);
    /// What the value of an Authorization header grants ("Bearer TOKEN"; an empty header or
    /// another scheme is Missing).
    Access check(const std::string& authorization) const;

private:
    std::unordered_map<std::string, bool> _hashes;  // hash -> may write
};

}  // namespace Gateway
}  // namespace BACnet
}  // namespace TQ
