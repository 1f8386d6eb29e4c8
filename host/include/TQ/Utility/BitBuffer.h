#pragma once

#include "TQ/Utility/OctetBuffer.h"

#include <string>

namespace TQ {
namespace Utility {

/// Bytes plus the number of bits in use. Bit 0 is the most significant bit of the first byte,
/// the order in which BACnet transmits bit strings.
class BitBuffer : public OctetBuffer {
public:
    BitBuffer() noexcept = default;
    /// `bitsUsed` cleared bits.
    explicit BitBuffer(unsigned bitsUsed);
    /// A copy of `bytes` with `bitsUsed` bits in use; the bytes are extended with zeros or cut
    /// to fit the bit count.
    BitBuffer(const OctetBuffer& bytes, unsigned bitsUsed);

    unsigned getBitsUsed() const noexcept { return _bitsUsed; }
    /// Sets the bit count and sizes the bytes to hold it: added bits read as zero, and bits
    /// beyond the count are cleared so that equal bit strings have equal bytes.
    void setBitsUsed(unsigned bitsUsed);

    /// Both fail the assertion "bit < _bitsUsed" for a bit outside the count.
    bool getBit(unsigned bit) const;
    void setBit(unsigned bit, bool value = true);

    /// One '1' or '0' per bit in use, from bit 0 ("101").
    std::string getBitsString() const;
    /// One "true" or "false" per bit in use, from bit 0, separated by "," ("true,false,true");
    /// the form in which BACnet bit strings are exchanged as text. No bits give an empty text.
    std::string getString() const;
    /// Reads either form above (blanks around list items are ignored) and replaces the bits.
    /// Returns false, leaving the bits unchanged, for any other text.
    bool setString(const std::string& text);

    bool operator==(const BitBuffer& other) const noexcept;
    bool operator!=(const BitBuffer& other) const noexcept { return !(*this == other); }

private:
    unsigned _bitsUsed = 0;
};

}  // namespace Utility
}  // namespace TQ
