#pragma once

#include "TQ_BACnet/DataType/BACnetLogRecord.h"

#include <Poco/LocalDateTime.h>
#include <Poco/Timestamp.h>

#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

namespace TQLogTest {

/// "0E A4 7C" as bytes.
inline std::vector<uint8_t> hex(const std::string& text) {
    std::istringstream in(text);
    std::vector<uint8_t> bytes;
    unsigned byte;
    while (in >> std::hex >> byte) bytes.push_back(static_cast<uint8_t>(byte));
    return bytes;
}

/// The moment at which the local clock reads 2024-03-07 (a Thursday) 08:30:00.25, whatever
/// the machine's time zone: the wire form of every record taken then is fixed.
inline Poco::Timestamp thursdayMorning() {
    return Poco::LocalDateTime(2024, 3, 7, 8, 30, 0, 250, 0).utc().timestamp();
}

/// [0] { Date 2024-03-07 Thursday, Time 08:30:00.25 }
const char* const TIMESTAMP_BYTES = "0E A4 7C 03 07 04 B4 08 1E 00 19 0F";

inline std::vector<uint8_t> encoded(const TQ::BACnet::DataType::BACnetLogRecord& record) {
    uint8_t buffer[MAX_APDU];
    const int len = record.encode(buffer);
    return len < 0 ? std::vector<uint8_t>() : std::vector<uint8_t>(buffer, buffer + len);
}

}  // namespace TQLogTest
