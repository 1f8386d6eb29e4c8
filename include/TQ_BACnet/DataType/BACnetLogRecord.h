#pragma once

#include "TQ_BACnet/DataType/BACnetComplex.h"
#include "tq_stack/values.h"

#include <Poco/Timestamp.h>

#include <cstdint>
#include <cstring>
#include <string>

namespace TQ {
namespace BACnet {

class DataPropertyInObject0;
class ValueContainer;

namespace DataType {

class ANY;

/// One entry of a trend log's buffer (BACnetLogRecord, data type 1054): when it was taken, the
/// log datum (one choice of eleven) and, optionally, the status flags.
///
/// Bit strings held here (log status, bit-string datum, status flags) keep bit 0 in the least
/// significant bit of their first byte; the wire and the rest of the library keep bit 0 in the
/// most significant bit. The record turns them over where it meets either, so the compact
/// in-memory form stays independent of how the value arrived.
class BACnetLogRecord : public BACnetComplex {
public:
    /// The context tags of the log datum's choices, plus the "nothing logged" marker.
    enum Choice : uint8_t {
        LOG_STATUS = 0,
        BOOLEAN_VALUE = 1,
        REAL_VALUE = 2,
        ENUM_VALUE = 3,
        UNSIGNED_VALUE = 4,
        SIGNED_VALUE = 5,
        BITSTRING_VALUE = 6,
        NULL_VALUE = 7,
        FAILURE = 8,
        TIME_CHANGE = 9,
        ANY_VALUE = 10,
        NO_VALUE = 127
    };

    /// Bit 7 of the status byte: the status flags are present.
    static constexpr uint8_t STATUS_FLAGS_PRESENT = 0x80;
    /// The datum's bit string holds at most this many bytes.
    static constexpr unsigned DATUM_BITSTRING_BYTES = 4;

    /// How a datum choice renders: the factory base type and the element name.
    struct LogDatumDef {
        unsigned type;
        const char* name;
    };
    /// Indexed by choice (0 to 10).
    static const LogDatumDef logDatumDefs[ANY_VALUE + 1];

    /// The log datum in five bytes, read according to the record's choice. Numbers are kept in
    /// host byte order in bytes 0 to 3; a bit string keeps its count byte (see `BitString`) in
    /// byte 4.
    class Datum {
    public:
        Datum() = default;

        void clear() { *this = Datum(); }
        const uint8_t* getBytes() const { return _bytes; }

        bool getBoolean() const { return _bytes[0] != 0; }
        void setBoolean(bool value);
        float getReal() const;
        void setReal(float value);
        uint32_t getUnsigned() const;
        void setUnsigned(uint32_t value);
        int32_t getSigned() const;
        void setSigned(int32_t value);
        uint32_t getEnumerated() const { return getUnsigned(); }
        void setEnumerated(uint32_t value) { setUnsigned(value); }
        /// The three log-status bits (log-disabled, buffer-purged, log-interrupted in bits 0 to 2).
        uint8_t getLogStatus() const { return _bytes[0] & 0x07; }
        void setLogStatus(uint8_t bits);

        /// The error word: class in the high, code in the low 16 bits.
        void setError(uint16_t errorClass, uint16_t errorCode);
        void setErrorClass(uint16_t errorClass);
        void setErrorCode(uint16_t errorCode);
        uint16_t getErrorClass() const { return static_cast<uint16_t>(getUnsigned() >> 16); }
        uint16_t getErrorCode() const { return static_cast<uint16_t>(getUnsigned() & 0xFFFFu); }

        /// Copies at most four of the `count` bytes at `bytes` (bit 0 in the least significant
        /// bit) and records `length` bits in use, at most what the copied bytes hold.
        void setBitString(const uint8_t* bytes, uint8_t count, uint8_t length);

        bool operator==(const Datum& other) const;
        bool operator!=(const Datum& other) const { return !(*this == other); }

    private:
        // The 32-bit choices share the first four bytes, stored in host order.
        template <class T>
        T load() const {
            T value;
            std::memcpy(&value, _bytes, sizeof value);
            return value;
        }
        template <class T>
        void store(T value) {
            clear();
            std::memcpy(_bytes, &value, sizeof value);
        }

        uint8_t _bytes[5] = {0, 0, 0, 0, 0};
    };

    /// The bit string of a datum: a count byte (bytes used in the high nibble, unused bits of
    /// the last byte in the low nibble) and four data bytes, bit i in byte i / 8 under mask
    /// 1 << (i % 8).
    class BitString {
    public:
        BitString() = default;
        /// The four data bytes and the count byte of a datum's five bytes.
        explicit BitString(const uint8_t* datum);
        BitString(const BitString&) = default;
        BitString& operator=(const BitString&) = default;
        virtual ~BitString();

        uint8_t getBytesUsed() const { return static_cast<uint8_t>(_count >> 4); }
        uint8_t getBitsNotUsed() const { return static_cast<uint8_t>(_count & 0x0F); }
        /// Bytes used * 8 - unused bits; 0 for a count byte that claims fewer bits than none.
        unsigned getBitsUsed() const;
        /// Bytes = n / 8 + 1, unused = 8 - n % 8 (a multiple of 8 takes one more byte with all
        /// its bits unused). False, unchanged, when the bytes would reach 16.
        bool setBitsUsed(unsigned n);
        /// "true,false,..." (case and blanks around items ignored): one bit per item, set when
        /// the item is "true". False, unchanged, for more items than the four bytes hold.
        bool setBits(const std::string& text);

        uint8_t getCount() const { return _count; }
        const uint8_t* getBytes() const { return _bytes; }
        /// False for a bit beyond the four bytes.
        bool getBit(unsigned bit) const;

    private:
        uint8_t _count = 0;
        uint8_t _bytes[DATUM_BITSTRING_BYTES] = {0, 0, 0, 0};
    };

    /// Now (rounded down to the hundredth), nothing logged, no status flags.
    BACnetLogRecord();
    /// From the decoded primitives of one record starting at `v`: date, optional time, the
    /// datum and optional status flags, with or without the opening and closing pseudo tags of
    /// a context-guided decode. `*next` (when given) receives the first primitive not consumed.
    /// Poco::DataFormatException when the primitives are not a log record; Poco's assertion
    /// exception for a failure datum whose class or code is not enumerated or unsigned.
    BACnetLogRecord(const DataPropertyInObject0& descriptor, const DataApplicationValue& v,
                    const DataApplicationValue** next);
    BACnetLogRecord(const BACnetLogRecord&) = default;
    BACnetLogRecord& operator=(const BACnetLogRecord&) = default;
    ~BACnetLogRecord() override;

    const Poco::Timestamp& getTimestamp() const { return _timestamp; }
    /// Stores `timestamp` rounded down to a hundredth of a second and returns what was stored.
    Poco::Timestamp setTimestamp(Poco::Timestamp timestamp);

    uint8_t getChoice() const { return _choice; }
    const Datum& getDatum() const { return _datum; }
    /// Poco::InvalidArgumentException for a choice that is neither 0 to 10 nor NO_VALUE.
    void setDatum(uint8_t choice, const Datum& datum);
    void setReal(float value);

    bool hasStatusFlags() const { return (_statusFlags & STATUS_FLAGS_PRESENT) != 0; }
    /// The status byte: STATUS_FLAGS_PRESENT plus the four flags (in-alarm, fault, overridden,
    /// out-of-service in bits 0 to 3), or 0 when absent.
    uint8_t getStatusFlags() const { return _statusFlags; }
    /// The four flags in bits 0 to 3 (higher bits are ignored); marks them present.
    void setStatusFlags(uint8_t flags);
    void clearStatusFlags() { _statusFlags = 0; }

    /// Without `convert` only real and time-change data give their value; with it booleans,
    /// enumerated, unsigned and signed data convert too. Poco::BadCastException
    /// "BACnetLogRecord::getReal()" for anything else.
    float getReal(bool convert) const;

    /// True when a was taken before b: the order of a log.
    static bool compare(const BACnetLogRecord& a, const BACnetLogRecord& b);

    /// Set choice and datum from a logged property value; false (record unchanged) for a value
    /// a log record cannot hold.
    bool assignValue(const ANY& value);
    bool assignAppValue(const DataApplicationValue& value);
    bool assignValue(const ValueContainer& value);

    int encode(uint8_t* apdu) const override;
    using BACnetComplex::decode;
    using BACnetComplex::decodeContext;
    /// The length consumed; -997 without opening tag [1], -998 without closing tag [1], -999 for
    /// an any-value datum, another negative value for malformed or truncated bytes.
    int decode(const uint8_t* apdu, unsigned length) override;

    /// The timestamp as a local date-time, in the hexadecimal text of its encoding.
    void getDateTimeString(std::string& out) const;
    /// The datum's text; `useNames` and `bitsAsBooleans` as for primitive values.
    void getValueString(std::string& out, bool useNames, bool bitsAsBooleans) const;
    /// The four status flags as bit text; empty when absent.
    void getStatusFlagsString(std::string& out) const;
    /// Date-time, " ", value and, with status flags, " status:" and their text.
    void getString(std::string& out) const override;
    BACnetDataType getBACnetDataType() const override { return BACNET_DT_LOG_RECORD; }
    /// [0] { date, time }, [1] { the datum by its choice }, [2] the status flags when present:
    /// the chain a guided decode of the encoding gives, which the primitive constructor reads.
    void getBACnetPrimitives(std::vector<DataApplicationValue>& out) const override;
    /// Walks the catalogue's definition of the type over the value's primitives.
    void markup(WS::MarkupFactory& factory, const std::string& name, bool arrayMarker) const override;

    bool operator==(const BACnetLogRecord& other) const;
    bool operator!=(const BACnetLogRecord& other) const { return !(*this == other); }

private:
    /// Bit strings here keep bit 0 in the least significant bit, the wire in the most.
    static uint8_t mirror(uint8_t octet);
    /// Choice and datum of a primitive of application tag `tag`; false for a tag a log record
    /// cannot hold.
    bool assignPrimitive(const BACnet_Application_Data_Value& value);
    int encodeDatum(uint8_t* apdu) const;
    int decodeDatum(const uint8_t* apdu, unsigned length);

    Poco::Timestamp _timestamp;
    Datum _datum;
    uint8_t _choice = NO_VALUE;
    uint8_t _statusFlags = 0;
};

}  // namespace DataType
}  // namespace BACnet
}  // namespace TQ
