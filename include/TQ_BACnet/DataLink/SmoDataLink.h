#pragma once

namespace TQ {
namespace BACnet {
namespace DataLink {

/// Common base of the data-link layers of the library.
class SmoDataLink {
public:
    SmoDataLink();
    ~SmoDataLink();
};

}  // namespace DataLink
}  // namespace BACnet
}  // namespace TQ
