#pragma once

namespace TQ {
namespace BACnet {

/// The library's version text, "major.minor.patch".
const char* version();

}  // namespace BACnet
}  // namespace TQ
