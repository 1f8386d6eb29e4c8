#pragma once

#include "TQ_BACnet/BACnetDataType.h"
#include "TQ_BACnet/Entity/BnDataTypeConstruct.h"
#include "TQ_BACnet/WS/Metadata.h"
#include "TQ_BACnet/WS/MetadataValue.h"
#include "TQ_Catalogue/Types.h"

#include "tq_stack/enums.h"

#include <Poco/DeflatingStream.h>
#include <Poco/HashMap.h>
#include <Poco/Mutex.h>
#include <Poco/Nullable.h>

#include <array>
#include <deque>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

struct BACnet_Application_Data_Value;

namespace TQ {
namespace BACnet {

class DataApplicationValue;

namespace WS {

/// The writer every value renders itself through. A value is described as a tree of markups
/// (base type, name, value text, flags, metadata); this class keeps the stack of markups still
/// open, the indentation and the (optionally compressed) output stream, and leaves the actual
/// syntax to a concrete writer (XML, JSON, plain text) through the `desc...` operations.
class MarkupFactory {
public:
    /// The kind of a markup; 0..12 are the BACnet application tags, so a primitive's tag is
    /// used as its base type directly. BT_MAX and above are invalid and never written. The
    /// numbers are the catalogue's markup kinds.
    enum BaseType : unsigned int {
        BT_NULL = Catalogue::Markup::Null,
        BT_BOOLEAN = Catalogue::Markup::Boolean,
        BT_UNSIGNED = Catalogue::Markup::Unsigned,
        BT_INTEGER = Catalogue::Markup::Integer,
        BT_REAL = Catalogue::Markup::Real,
        BT_DOUBLE = Catalogue::Markup::Double,
        BT_OCTET_STRING = Catalogue::Markup::OctetString,
        BT_STRING = Catalogue::Markup::String,
        BT_BIT_STRING = Catalogue::Markup::BitString,
        BT_ENUMERATED = Catalogue::Markup::Enumerated,
        BT_DATE = Catalogue::Markup::Date,
        BT_TIME = Catalogue::Markup::Time,
        BT_OBJECT_IDENTIFIER = Catalogue::Markup::ObjectIdentifier,
        BT_DATE_PATTERN = Catalogue::Markup::DatePattern,
        BT_DATE_TIME = Catalogue::Markup::DateTime,
        BT_DATE_TIME_PATTERN = Catalogue::Markup::DateTimePattern,
        BT_TIME_PATTERN = Catalogue::Markup::TimePattern,
        BT_STRING_SET = Catalogue::Markup::StringSet,
        BT_OBJECT = Catalogue::Markup::Object,
        BT_INTERFACE = Catalogue::Markup::Interface,
        BT_COMPOSITION = Catalogue::Markup::Composition,
        BT_LIST = Catalogue::Markup::List,
        BT_SEQUENCE = Catalogue::Markup::Sequence,
        BT_ARRAY = Catalogue::Markup::Array,
        BT_SEQUENCE_OF = Catalogue::Markup::SequenceOf,
        BT_CHOICE = Catalogue::Markup::Choice,
        BT_ANY = Catalogue::Markup::Any,
        BT_LINK = Catalogue::Markup::Link,
        BT_COLLECTION = Catalogue::Markup::Collection,
        BT_TAG = Catalogue::Markup::Tag,
        BT_OBJECT_IDENTIFIER_PATTERN = Catalogue::Markup::ObjectIdentifierPattern,
        BT_WEEK_N_DAY = Catalogue::Markup::WeekNDay,
        BT_NAMED_VALUES = Catalogue::Markup::NamedValues,
        BT_MEMBER_TYPE_DEFINITION = Catalogue::Markup::MemberTypeDefinition,
        BT_CHOICES = Catalogue::Markup::Choices,
        BT_NAMED_BITS = Catalogue::Markup::NamedBits,
        BT_BIT = Catalogue::Markup::Bit,
        BT_COMPOSITION_2 = Catalogue::Markup::Composition2,
        BT_MAX = Catalogue::Markup::Count
    };

    /// Markup flags handed to `markupNew` and the writers.
    static constexpr unsigned int MF_ROOT = 0x1;          ///< outermost element
    static constexpr unsigned int MF_COMPLETE = 0x2;      ///< no children, closed at once
    static constexpr unsigned int MF_OMIT_EMPTY = 0x4;    ///< no value when its text is empty
    static constexpr unsigned int MF_QUOTE = 0x20000000;  ///< quote every value
    static constexpr unsigned int MF_ARRAY = 0x40000000;  ///< open an array marker as well

    /// One entry of the open-markup stack. Array-marker entries are bookkeeping only: they close
    /// without output and do not count for indentation.
    struct OpenMarkup {
        OpenMarkup() = default;
        OpenMarkup(BaseType baseType, bool arrayMarker) : baseType(baseType), arrayMarker(arrayMarker) {}
        void set(BaseType type, bool marker) {
            baseType = type;
            arrayMarker = marker;
        }

        BaseType baseType = BT_NULL;
        bool arrayMarker = false;
    };

    /// The open markups, packed one byte each: inline for the depths documents have, so that
    /// making a writer allocates nothing; deeper ones on the heap.
    class OpenMarkupStack {
    public:
        bool empty() const { return _size == 0; }
        std::size_t size() const { return _size; }
        OpenMarkup back() const {
            const unsigned char packed = _size <= kInline ? _inline[_size - 1] : _spill.back();
            return OpenMarkup(static_cast<BaseType>(packed & 0x7Fu), (packed & 0x80u) != 0);
        }
        void emplace_back(BaseType baseType, bool arrayMarker) {
            const auto packed = static_cast<unsigned char>(baseType | (arrayMarker ? 0x80u : 0u));
            if (_size < kInline)
                _inline[_size] = packed;
            else
                _spill.push_back(packed);
            ++_size;
        }
        void pop_back() {
            if (_size > kInline) _spill.pop_back();
            --_size;
        }
        void clear() {
            _spill.clear();
            _size = 0;
        }

    private:
        static constexpr std::size_t kInline = 32;
        unsigned char _inline[kInline];
        std::vector<unsigned char> _spill;
        std::size_t _size = 0;
    };

    /// `compression` 0 (zlib, Poco::DeflatingStreamBuf::STREAM_ZLIB) or 1 (gzip, STREAM_GZIP)
    /// compresses everything written into `out`; any other value (the options' default -1
    /// included) writes to `out` directly. An int, not the Poco enumeration, so that -1 is no
    /// out-of-range enumeration value; the enumerators convert implicitly.
    MarkupFactory(std::ostream& out, bool pretty, bool useNames, int compression);
    /// Virtual so that a writer may be deleted through this base. Does not flush: only `flush`
    /// guarantees that a compressed response is complete.
    virtual ~MarkupFactory();

    MarkupFactory(const MarkupFactory&) = delete;
    MarkupFactory& operator=(const MarkupFactory&) = delete;

    // --- writer operations -------------------------------------------------------------------

    /// Abandons every open markup without writing anything.
    virtual void reset();
    virtual void embeddStart();
    virtual void embeddEnd();
    /// Writes raw text to the output.
    virtual void append(const std::string& text) = 0;
    virtual void descHeader();
    virtual bool allowArrays() const = 0;
    /// Writes the opening (or complete) form of one markup; returns the number of extra stack
    /// entries the writer needs (normally 0).
    virtual int descMarkup(BaseType baseType, const std::string& name, const std::string& value,
                           unsigned int flags, const std::vector<MetadataValue>* metadata) = 0;
    virtual void descCloseOpenMarkup(const std::string& baseTypeName, bool arrayMarker) = 0;
    /// The writer's short form of `markupPrimitive`: false when it has none.
    virtual bool descPrimitive(const DataApplicationValue& value, const std::string& name);
    /// The writer's short form of complete elements named by their numbers: how many of
    /// `values` it wrote, from the first on (0: every one goes through `markupNew`).
    virtual std::size_t descElements(const DataApplicationValue* values, std::size_t count,
                                     std::size_t firstNumber);
    /// Escapes `text` in place for the output format.
    virtual void descStringEncode(std::string& text) = 0;

    // --- writing -----------------------------------------------------------------------------

    void header();

    /// Writes one markup; an invalid base type writes nothing.
    void markupNew(BaseType baseType, const std::string& name, const std::string& value, unsigned int flags,
                   const std::vector<MetadataValue>* metadata);

    /// The general entry: builds the flags and the metadata list from the arguments and calls
    /// `markupNew`. Each metadata argument is attached only when non-empty (strings), set (bool)
    /// or positive (int). `dataType` and `level` are carried for the callers' sake only.
    /// `type` becomes a member type for lists, arrays and sequences-of, otherwise a type, except
    /// the gateway's own "947." types, which are not shown.
    void markup(BaseType baseType, const std::string& name, const std::string& value, bool complete,
                bool arrayMarker, BACnetDataType dataType, bool root, const std::string& comment = "",
                int error = 0, const std::string& errorText = "", const std::string& displayName = "",
                const std::string& type = "", bool truncated = false, const std::string& target = "",
                const std::string& href = "", const std::string& contextTag = "",
                const std::string& propertyIdentifier = "", const std::string& description = "",
                const std::string& units = "", bool omitEmptyValue = false, int level = 0);

    /// As above, named after the property (catalogue enumeration 51).
    void markup(BaseType baseType, BACNET_PROPERTY_ID propertyId, const std::string& value, bool complete,
                bool arrayMarker, BACnetDataType dataType, bool root, const std::string& comment = "",
                int error = 0, const std::string& errorText = "", const std::string& displayName = "",
                const std::string& type = "", bool truncated = false, const std::string& target = "",
                const std::string& href = "", const std::string& contextTag = "",
                const std::string& propertyIdentifier = "", const std::string& description = "",
                const std::string& units = "", bool omitEmptyValue = false, int level = 0);

    /// A single-valued primitive property of an object type, typed from its catalogue descriptor;
    /// writes nothing for any other property.
    void markup(BACNET_OBJECT_TYPE objectType, BACNET_PROPERTY_ID propertyId, const std::string& value,
                bool complete, bool arrayMarker, bool root, const std::string& comment = "", int error = 0,
                const std::string& errorText = "", const std::string& displayName = "",
                const std::string& type = "", bool truncated = false, const std::string& target = "",
                const std::string& href = "", const std::string& contextTag = "",
                const std::string& propertyIdentifier = "", const std::string& description = "",
                const std::string& units = "", bool omitEmptyValue = false, int level = 0);

    /// One complete primitive markup whose only metadata is its context tag (none when empty):
    /// what `markup` writes for those arguments, without its argument list.
    void markupValue(BaseType baseType, const std::string& name, const std::string& value, bool arrayMarker,
                     bool root, const std::string& contextTag);

    /// One complete primitive that is neither a root nor carries an array marker, through the
    /// writer's short form when it has one for the value and its settings (what `markupValue`
    /// would write, and counted the same); false, with nothing written, otherwise.
    bool markupPrimitive(const DataApplicationValue& value, const std::string& name);

    /// Opens a markup whose children follow (a list, an array, a sequence), without metadata:
    /// what `markup` writes with an empty value and nothing else given, without its argument list.
    void markupOpen(BaseType baseType, const std::string& name, bool arrayMarker, bool root);

    /// The elements of an array or list of primitives, named "1", "2", ... from `firstNumber`:
    /// each as `DataApplicationValue::markup` writes it, numbers straight from the values
    /// where the writer can.
    void markupElements(const DataApplicationValue* values, std::size_t count, BACnetDataType dataType,
                        bool bitsAsBooleans, std::size_t firstNumber = 1);

    /// Closes the innermost real markup, and the array markers above it.
    void closeOpenMarkup();
    void closeOpenMarkup(const OpenMarkup& openMarkup);
    void closeAllOpenMarkups();

    /// Flushes the output; when compressing also ends the compressed stream (writes its trailer),
    /// after which nothing more can be written.
    void flush();
    void stringEncode(std::string& text);

    // --- rendering from the type catalogue ----------------------------------------------------
    // A constructed value arrives as a flat run of decoded primitives (opening and closing tags
    // as pseudo values 17 and 18); these walk the type's catalogue definition over the run,
    // advancing the cursor over what they render. A null current value ends the run. Nothing is
    // read past it, and nothing throws for a type the catalogue lacks: that renders as an "Any"
    // markup with the value "truncated" and lastErrorCode 200.

    using DataTypeAndName = Entity::BnDataTypeConstruct::DataTypeAndName;
    /// The walk's cursor over a run of the codec's values (a chain of DataApplicationValue
    /// qualifies: its links point at the same base).
    using ValueCursor = const BACnet_Application_Data_Value**;

    static constexpr int ERROR_UNKNOWN_TYPE = 200;
    static constexpr int ERROR_RENDERING = 300;

    /// Renders one value of `type` named `name`; `contextNr` imposes a context tag (null: the
    /// catalogue's). False when the run does not match the type; lastErrorCode tells why.
    bool markup2(BACnetDataType type, DataApplicationValue** cursor, const std::string& name, bool root,
                 const Poco::Nullable<unsigned char>& contextNr);
    bool markup2(BACnetDataType type, ValueCursor cursor, const std::string& name, bool root,
                 const Poco::Nullable<unsigned char>& contextNr);
    /// Renders one member; `checkContext` compares its context tag with the value's,
    /// `renderMismatch` shows a value of the wrong tag rather than leaving it.
    bool markup3(const DataTypeAndName& member, ValueCursor cursor, bool root, bool checkContext,
                 bool renderMismatch);
    /// A sequence fails at its first missing mandatory member; a choice (`isChoice`) succeeds at
    /// its first matching alternative.
    bool markupSequenceInternal(const std::vector<DataTypeAndName>& members, ValueCursor cursor,
                                bool isChoice);
    bool markupChoiceInternal(const std::vector<DataTypeAndName>& members, ValueCursor cursor) {
        return markupSequenceInternal(members, cursor, true);
    }
    /// Elements "1", "2", ... of `elementType` up to the closing tag or the end of the run.
    bool markupSequenceOfInternal(BACnetDataType elementType, ValueCursor cursor,
                                  const Poco::Nullable<std::string>& elementName);
    bool markupPrimitiveInternal(const DataTypeAndName& member, ValueCursor cursor, bool root);

    /// The name of an enumerated value or bit (with useNames), else the number.
    void markupEnumOrBitStringValue(BACnetDataType type, int value, std::string& result) const;
    /// The bn_adm_definition name of `value` of `type` in `column` (context_tag, value, ...);
    /// one query caches the names of the eleven neighbouring values. The number when none.
    void dbGetBnAdmDefName(BACnetDataType type, int value, std::string& result, std::string column,
                           int level);
    void dbGetBnTypeContextName(BACnetDataType type, int contextNr, std::string& result);
    static uint64_t getBnDataTypeValueNameKey(BACnetDataType type, int value);

    // --- metadata ----------------------------------------------------------------------------

    unsigned int getMetadata() const { return _metadata.getCategories(); }
    const Metadata& getMetadata2() const { return _metadata; }
    bool isMetadata(Metadata::METADATA_CATEGORY category) const { return _metadata.isCategory(category); }
    void setMetaData(Metadata::METADATA_CATEGORY category, bool on) { _metadata.setCategory(category, on); }
    void setMetaData(const Metadata& metadata) { _metadata = metadata; }

    // --- state -------------------------------------------------------------------------------

    bool getUseNames() const { return _useNames; }
    void setUseNames(bool useNames) { _useNames = useNames; }
    bool getPretty() const { return _pretty; }
    void setPretty(bool pretty) { _pretty = pretty; }
    bool getQuoteValues() const { return _quoteValues; }
    void setQuoteValues(bool quoteValues) { _quoteValues = quoteValues; }
    bool isCompressing() const { return _compressing; }
    int getLastErrorCode() const { return _lastErrorCode; }
    const std::string& getLastErrorText() const { return _lastErrorText; }
    void setLastError(int code, const std::string& text) {
        _lastErrorCode = code;
        _lastErrorText = text;
    }
    /// Entries on the open-markup stack, array markers included, and the markers alone.
    std::size_t getOpenMarkupCount() const { return _openMarkups.size(); }
    /// Markups written so far (invalid base types not counted).
    std::size_t getMarkupCount() const { return _markupCount; }
    int getArrayMarkerCount() const { return _arrayMarkers; }
    /// The stream writers print to (the compressing one when compressing).
    std::ostream& getStream() { return _out; }

    // --- helpers -----------------------------------------------------------------------------

    /// The base type's name; empty for an invalid one.
    static const std::string& getBaseTypeName(BaseType baseType) {
        return baseType < BT_MAX ? _bts[baseType] : _noBaseTypeName;
    }
    /// Whether the value can be written as a bare number: Boolean to Double, and an Enumerated
    /// given as a number.
    static bool isNumeric(BaseType baseType, const std::string& value);
    /// The first index of an array walk: 1 for "none" (0 or 0xFFFFFFFF), else the index.
    static unsigned int initArrayIdx(unsigned int arrayIndex);
    /// Empty for 0, else the index in decimal.
    static std::string arrayIndexAsString(unsigned int arrayIndex);
    /// List, Array or SequenceOf: the kinds whose type metadata names their members.
    static bool isCollection(BaseType baseType);
    /// The categories shown by default for a markup of this base type.
    static Metadata getMetadataFromBaseType(BaseType baseType);
    /// False for the constructed kinds, whose content is their children.
    bool shouldValueBeVisibleForBaseType(BaseType baseType) const;

    /// Indentation around a markup; `opening` is false when closing.
    void formatBefore(bool opening) {
        if (_pretty) indent(opening);
    }
    void formatAfter() {
        if (_pretty) endLine();
    }

protected:
    /// Writers print through these: straight into the stream's buffer, without a stream's
    /// per-call bookkeeping. Nothing is written once `flush` has ended a compressed stream.
    void write(const char* text, std::size_t length) {
        if (std::streambuf* buffer = _ended ? nullptr : _out.rdbuf())
            buffer->sputn(text, static_cast<std::streamsize>(length));
    }
    void write(const std::string& text) { write(text.data(), text.size()); }
    void write(char c) {
        if (std::streambuf* buffer = _ended ? nullptr : _out.rdbuf()) buffer->sputc(c);
    }

    Metadata _metadata;
    bool _compressing = false;
    /// Present only when compressing; writes into the caller's stream.
    std::unique_ptr<Poco::DeflatingOutputStream> _deflater;
    /// What the writers print to: over the caller's buffer, or the deflater's.
    /// The caller's stream, or the deflater; a reference, so that making a writer costs no
    /// stream of its own.
    std::ostream& _out;
    /// Set once `flush` has ended a compressed stream: nothing more is written.
    bool _ended = false;
    int _lastErrorCode = 0;
    std::string _lastErrorText;
    bool _pretty;
    bool _useNames;
    OpenMarkupStack _openMarkups;
    int _arrayMarkers = 0;
    bool _quoteValues = false;
    /// For the JSON writer: whether the next member needs no separating comma.
    bool _first = true;

private:
    void indent(bool opening);
    void endLine();
    void popOpenMarkup();
    bool markupUnknownType(BACnetDataType type, const std::string& name, bool root);
    bool markupMismatch(const DataTypeAndName& member, ValueCursor cursor, unsigned int expected,
                        bool renderMismatch);
    bool markupAbstractRun(const DataTypeAndName& member, ValueCursor cursor);
    bool markupConstructed(const DataTypeAndName& member, const Entity::BnDataTypeConstruct& type,
                           unsigned int kind, ValueCursor cursor, bool root);
    void renderValue(const BACnet_Application_Data_Value& value, const std::string& name, BACnetDataType type,
                     bool root, int level);

    /// Set while the run being walked is a chain of DataApplicationValue, whose values render
    /// as they are; values of the codec's own chain are copied first.
    bool _runOfApplicationValues = false;
    std::size_t _markupCount = 0;
    /// Reused for every markup's metadata, so that rendering does not allocate per markup.
    std::vector<MetadataValue> _metadataScratch;

    static Poco::HashMap<uint64_t, std::string> _bnDataTypeValueName;
    static Poco::FastMutex _mutexBnDataTypeValueName;

    static const std::array<std::string, BT_MAX> _bts;
    static const std::string _noBaseTypeName;
};

}  // namespace WS
}  // namespace BACnet
}  // namespace TQ
