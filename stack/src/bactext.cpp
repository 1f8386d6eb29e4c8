#include "tq_stack/bactext.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <string>
#include <vector>

#include "tq_stack/enums.h"

namespace {

struct Entry {
    uint32_t number;
    const char* enumerator;
};

#define TQ_STACK_ENTRY(name, value) {value, #name},
const Entry kObjectTypes[] = {TQ_STACK_OBJECT_TYPES(TQ_STACK_ENTRY)};
const Entry kProperties[] = {TQ_STACK_PROPERTY_IDS(TQ_STACK_ENTRY)};
const Entry kErrorClasses[] = {TQ_STACK_ERROR_CLASSES(TQ_STACK_ENTRY)};
const Entry kErrorCodes[] = {TQ_STACK_ERROR_CODES(TQ_STACK_ENTRY)};
const Entry kAbortReasons[] = {TQ_STACK_ABORT_REASONS(TQ_STACK_ENTRY)};
const Entry kRejectReasons[] = {TQ_STACK_REJECT_REASONS(TQ_STACK_ENTRY)};
#undef TQ_STACK_ENTRY

// The names of one enumeration, made once from its enumerators: the prefix is dropped, the
// rest lower-cased with "_" as "-". The lists are in ascending order, so lookups bisect.
class NameTable {
public:
    template <size_t N>
    NameTable(const Entry (&entries)[N], size_t prefixLength, uint32_t proprietaryFirst,
              uint32_t proprietaryLast, const char* proprietaryText, const char* unknownText)
        : _proprietaryFirst(proprietaryFirst),
          _proprietaryLast(proprietaryLast),
          _proprietaryText(proprietaryText),
          _unknownText(unknownText) {
        _numbers.reserve(N);
        _names.reserve(N);
        for (const Entry& e : entries) {
            std::string name(e.enumerator + prefixLength);
            for (char& c : name) c = c == '_' ? '-' : char(std::tolower(static_cast<unsigned char>(c)));
            _numbers.push_back(e.number);
            _names.push_back(std::move(name));
        }
    }

    const char* find(uint32_t number) const {
        auto it = std::lower_bound(_numbers.begin(), _numbers.end(), number);
        if (it == _numbers.end() || *it != number) return nullptr;
        return _names[size_t(it - _numbers.begin())].c_str();
    }

    const char* name(uint32_t number) const {
        if (const char* found = find(number)) return found;
        return number >= _proprietaryFirst && number <= _proprietaryLast ? _proprietaryText : _unknownText;
    }

    bool index(const char* name, unsigned* number) const {
        if (!name) return false;
        for (size_t i = 0; i < _names.size(); ++i) {
            if (_names[i] == name) {
                if (number) *number = _numbers[i];
                return true;
            }
        }
        return false;
    }

private:
    std::vector<uint32_t> _numbers;
    std::vector<std::string> _names;
    uint32_t _proprietaryFirst;
    uint32_t _proprietaryLast;
    const char* _proprietaryText;
    const char* _unknownText;
};

const NameTable& objectTypes() {
    static const NameTable table(kObjectTypes, std::strlen("OBJECT_"), OBJECT_PROPRIETARY_MIN,
                                 OBJECT_PROPRIETARY_MAX, "proprietary-object-type", "unknown-object-type");
    return table;
}

const NameTable& properties() {
    static const NameTable table(kProperties, std::strlen("PROP_"), PROP_PROPRIETARY_RANGE_MIN,
                                 PROP_PROPRIETARY_RANGE_MAX, "proprietary-property", "unknown-property");
    return table;
}

const NameTable& errorClasses() {
    static const NameTable table(kErrorClasses, std::strlen("ERROR_CLASS_"), ERROR_CLASS_PROPRIETARY_FIRST,
                                 ERROR_CLASS_PROPRIETARY_LAST, "proprietary-error-class",
                                 "unknown-error-class");
    return table;
}

const NameTable& errorCodes() {
    static const NameTable table(kErrorCodes, std::strlen("ERROR_CODE_"), ERROR_CODE_PROPRIETARY_FIRST,
                                 ERROR_CODE_PROPRIETARY_LAST, "proprietary-error-code", "unknown-error-code");
    return table;
}

const NameTable& abortReasons() {
    static const NameTable table(kAbortReasons, std::strlen("ABORT_REASON_"), ABORT_REASON_PROPRIETARY_FIRST,
                                 ABORT_REASON_PROPRIETARY_LAST, "proprietary-abort-reason",
                                 "unknown-abort-reason");
    return table;
}

const NameTable& rejectReasons() {
    static const NameTable table(kRejectReasons, std::strlen("REJECT_REASON_"),
                                 REJECT_REASON_PROPRIETARY_FIRST, REJECT_REASON_PROPRIETARY_LAST,
                                 "proprietary-reject-reason", "unknown-reject-reason");
    return table;
}

// Names the standard's ASN.1 gives, indexed by number.
const char* const kApplicationTags[] = {"NULL",
                                        "BOOLEAN",
                                        "Unsigned",
                                        "INTEGER",
                                        "REAL",
                                        "Double",
                                        "OCTET STRING",
                                        "CharacterString",
                                        "BIT STRING",
                                        "ENUMERATED",
                                        "Date",
                                        "Time",
                                        "BACnetObjectIdentifier"};

// Service names in the standard's hyphenated form, like every other name table here. The
// withdrawn choices (read-property-conditional, authenticate, request-key) stay unnamed so
// that their numbers read as unknown rather than as services a device could still offer.
const char* const kConfirmedServices[] = {"acknowledge-alarm",
                                          "confirmed-cov-notification",
                                          "confirmed-event-notification",
                                          "get-alarm-summary",
                                          "get-enrollment-summary",
                                          "subscribe-cov",
                                          "atomic-read-file",
                                          "atomic-write-file",
                                          "add-list-element",
                                          "remove-list-element",
                                          "create-object",
                                          "delete-object",
                                          "read-property",
                                          nullptr,
                                          "read-property-multiple",
                                          "write-property",
                                          "write-property-multiple",
                                          "device-communication-control",
                                          "confirmed-private-transfer",
                                          "confirmed-text-message",
                                          "reinitialize-device",
                                          "vt-open",
                                          "vt-close",
                                          "vt-data",
                                          nullptr,
                                          nullptr,
                                          "read-range",
                                          "life-safety-operation",
                                          "subscribe-cov-property",
                                          "get-event-information",
                                          "subscribe-cov-property-multiple",
                                          "confirmed-cov-notification-multiple",
                                          "confirmed-audit-notification",
                                          "audit-log-query"};
static_assert(sizeof kConfirmedServices / sizeof *kConfirmedServices == MAX_BACNET_CONFIRMED_SERVICE,
              "one entry per confirmed service");

const char* const kUnconfirmedServices[] = {"i-am",
                                            "i-have",
                                            "unconfirmed-cov-notification",
                                            "unconfirmed-event-notification",
                                            "unconfirmed-private-transfer",
                                            "unconfirmed-text-message",
                                            "time-synchronization",
                                            "who-has",
                                            "who-is",
                                            "utc-time-synchronization",
                                            "write-group",
                                            "unconfirmed-cov-notification-multiple",
                                            "unconfirmed-audit-notification",
                                            "who-am-i",
                                            "you-are"};
static_assert(sizeof kUnconfirmedServices / sizeof *kUnconfirmedServices == MAX_BACNET_UNCONFIRMED_SERVICE,
              "one entry per unconfirmed service");

template <size_t N>
const char* indexed(const char* const (&names)[N], unsigned index, const char* fallback) {
    return index < N && names[index] ? names[index] : fallback;
}

const char* orFallback(const char* found, const char* fallback) {
    return found ? found : fallback;
}

}  // namespace

const char* bactext_application_tag_name(unsigned index) {
    return indexed(kApplicationTags, index, "unknown-application-tag");
}
const char* bactext_object_type_name(unsigned index) {
    return objectTypes().name(index);
}
const char* bactext_property_name(unsigned index) {
    return properties().name(index);
}
const char* bactext_error_class_name(unsigned index) {
    return errorClasses().name(index);
}
const char* bactext_error_code_name(unsigned index) {
    return errorCodes().name(index);
}
const char* bactext_abort_reason_name(unsigned index) {
    return abortReasons().name(index);
}
const char* bactext_reject_reason_name(unsigned index) {
    return rejectReasons().name(index);
}
const char* bactext_confirmed_service_name(unsigned index) {
    return indexed(kConfirmedServices, index, "unknown-confirmed-service");
}
const char* bactext_unconfirmed_service_name(unsigned index) {
    return indexed(kUnconfirmedServices, index, "unknown-unconfirmed-service");
}

const char* bactext_application_tag_name_default(unsigned index, const char* fallback) {
    return indexed(kApplicationTags, index, fallback);
}
const char* bactext_object_type_name_default(unsigned index, const char* fallback) {
    return orFallback(objectTypes().find(index), fallback);
}
const char* bactext_property_name_default(unsigned index, const char* fallback) {
    return orFallback(properties().find(index), fallback);
}
const char* bactext_error_class_name_default(unsigned index, const char* fallback) {
    return orFallback(errorClasses().find(index), fallback);
}
const char* bactext_error_code_name_default(unsigned index, const char* fallback) {
    return orFallback(errorCodes().find(index), fallback);
}
const char* bactext_abort_reason_name_default(unsigned index, const char* fallback) {
    return orFallback(abortReasons().find(index), fallback);
}
const char* bactext_reject_reason_name_default(unsigned index, const char* fallback) {
    return orFallback(rejectReasons().find(index), fallback);
}
const char* bactext_confirmed_service_name_default(unsigned index, const char* fallback) {
    return indexed(kConfirmedServices, index, fallback);
}
const char* bactext_unconfirmed_service_name_default(unsigned index, const char* fallback) {
    return indexed(kUnconfirmedServices, index, fallback);
}

bool bactext_object_type_index(const char* name, unsigned* index) {
    return objectTypes().index(name, index);
}
bool bactext_property_index(const char* name, unsigned* index) {
    return properties().index(name, index);
}
bool bactext_confirmed_service_index(const char* name, unsigned* index) {
    if (!name) return false;
    for (unsigned i = 0; i < MAX_BACNET_CONFIRMED_SERVICE; ++i) {
        if (kConfirmedServices[i] && std::strcmp(kConfirmedServices[i], name) == 0) {
            if (index) *index = i;
            return true;
        }
    }
    return false;
}
