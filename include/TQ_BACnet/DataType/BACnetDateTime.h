#pragma once

#include "TQ_BACnet/DataType/BACnetComplex.h"
#include "TQ_BACnet/DataType/Date.h"
#include "TQ_BACnet/DataType/Time.h"
#include "tq_stack/values.h"

#include <Poco/LocalDateTime.h>
#include <Poco/Timestamp.h>

#include <cstdint>
#include <string>

namespace TQ {
namespace BACnet {

class DataPropertyInObject0;

namespace DataType {

/// BACnetDateTime ::= SEQUENCE { date Date, time Time }, both application tagged. The stored
/// date and time are local time; the conversions to and from Poco and C time types say so.
///
/// Same layout as the codec's date-time first, so `*this` can be handed to the codec directly.
class BACnetDateTime : public BACnet_DateTime, public BACnetComplex {
public:
    static constexpr BACnetDataType DATA_TYPE = static_cast<BACnetDataType>(1026);

    /// Year 0, month 0, day 0, 00:00:00.00 (not the wildcard): the value a fresh property holds.
    BACnetDateTime();
    BACnetDateTime(const BACnet_DateTime& value);
    BACnetDateTime(const BACnet_Date& date, const BACnet_Time& time);
    /// From decoded primitives: `v` must be a date, optionally followed by a time; without the
    /// time it is 00:00:00.00. `next`, when given, receives the primitive after those taken.
    /// When `v` is not a date nothing is taken, the value stays as the default constructor makes
    /// it and `next` is not written.
    BACnetDateTime(const DataPropertyInObject0& descriptor, const DataApplicationValue& v,
                   const DataApplicationValue** next);
    BACnetDateTime(const BACnetDateTime&) = default;
    BACnetDateTime& operator=(const BACnetDateTime&) = default;
    BACnetDateTime& operator=(const BACnet_DateTime& value);
    ~BACnetDateTime() override;

    /// Date then time, application tagged: 10 bytes (none written for a null buffer).
    int encode(uint8_t* apdu) const override;
    using BACnetComplex::decode;
    using BACnetComplex::decodeContext;
    /// Bytes consumed, or negative with the value unchanged.
    int decode(const uint8_t* apdu, unsigned length) override;
    /// Bytes consumed including both tags, or -1 when a tag is missing or the value is broken,
    /// as every constructed value reports it; the value is unchanged on failure.
    int decodeContext(const uint8_t* apdu, unsigned length, uint8_t tag) override;
    /// The hexadecimal text of the encoding, as every constructed value stores itself.
    void getString(std::string& out) const override;
    bool setString(const std::string& text) override;
    void getBACnetPrimitives(std::vector<DataApplicationValue>& out) const override;
    BACnetDataType getBACnetDataType() const override { return DATA_TYPE; }
    /// One complete DateTime markup in ISO 8601 with the local time zone; a value that names no
    /// moment (unspecified or impossible fields) shows as its date and time texts instead.
    void markup(WS::MarkupFactory& factory, const std::string& name, bool arrayMarker) const override;

    Date getDate() const { return Date(date); }
    Time getTime() const { return Time(time); }
    void setDate(const BACnet_Date& value) { date = value; }
    void setTime(const BACnet_Time& value) { time = value; }

    /// The local date-time as a moment; the weekday takes no part.
    static Poco::Timestamp getTimestamp(const BACnet_DateTime& value);
    Poco::Timestamp getTimestamp() const;
    /// Poco asserts on fields out of its range, unspecified (255) ones included.
    void getLocalDateTime(Poco::LocalDateTime& local) const;
    /// Hundredths truncated from the milliseconds; the weekday follows the date (Sunday 7).
    void setLocalDateTime(const Poco::LocalDateTime& local);
    void setTimestamp(Poco::Timestamp ts);
    /// The local date-time of a moment, weekday and hundredths included.
    static BACnet_DateTime fromTimestamp(const Poco::Timestamp& moment);
    /// The moment a local date-time names; false for unspecified or impossible fields.
    /// Unspecified hundredths only blur the moment, so they count as 0.
    static bool toTimestamp(const BACnet_DateTime& value, Poco::Timestamp& out);
    /// Rounded down to a whole hundredth of a second, the finest a date-time holds (towards the
    /// past for moments before 1970 too).
    static Poco::Timestamp toHundredths(const Poco::Timestamp& moment);
    /// Seconds since the epoch through the C library's local time; hundredths are dropped.
    long get() const;
    void set(long seconds);
    /// Reads the human text form "date time" of the conversions; false for a text that does
    /// not read as one.
    bool setString2(const std::string& text);

    /// Every field of date and time, the weekday included, as the encoding would tell them apart.
    bool operator==(const BACnetDateTime& other) const;
    bool operator!=(const BACnetDateTime& other) const { return !(*this == other); }
    /// Chronological order by date then time (the weekday takes no part); wildcards order as
    /// their numbers.
    bool operator<(const BACnetDateTime& other) const;
};

}  // namespace DataType
}  // namespace BACnet
}  // namespace TQ
