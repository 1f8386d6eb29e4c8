// Names of protocol numbers, never NULL.
//
// Object types, properties, error classes and codes, abort and reject reasons and services use
// the standard's lower-case hyphenated words ("analog-input", "present-value", "property",
// "unknown-property", "read-property", "i-am", "who-is"). Application tags use the type names
// of the standard's ASN.1 ("NULL", "BOOLEAN", "Unsigned", "INTEGER", "REAL", "Double",
// "OCTET STRING", "CharacterString", "BIT STRING", "ENUMERATED", "Date", "Time",
// "BACnetObjectIdentifier").
//
// Numbers without a name give "proprietary-..." inside a proprietary range and "unknown-..."
// otherwise (e.g. "unknown-error-code"); the _default variants return the caller's fallback
// instead, for callers that show nothing for an unnamed number.
#pragma once

#include <cstdint>

const char* bactext_application_tag_name(unsigned index);
const char* bactext_object_type_name(unsigned index);
const char* bactext_property_name(unsigned index);
const char* bactext_error_class_name(unsigned index);
const char* bactext_error_code_name(unsigned index);
const char* bactext_abort_reason_name(unsigned index);
const char* bactext_reject_reason_name(unsigned index);
const char* bactext_confirmed_service_name(unsigned index);
const char* bactext_unconfirmed_service_name(unsigned index);

const char* bactext_application_tag_name_default(unsigned index, const char* fallback);
const char* bactext_object_type_name_default(unsigned index, const char* fallback);
const char* bactext_property_name_default(unsigned index, const char* fallback);
const char* bactext_error_class_name_default(unsigned index, const char* fallback);
const char* bactext_error_code_name_default(unsigned index, const char* fallback);
const char* bactext_abort_reason_name_default(unsigned index, const char* fallback);
const char* bactext_reject_reason_name_default(unsigned index, const char* fallback);
const char* bactext_confirmed_service_name_default(unsigned index, const char* fallback);
const char* bactext_unconfirmed_service_name_default(unsigned index, const char* fallback);

// Reverse lookups by exact name; false when the name is unknown.
bool bactext_object_type_index(const char* name, unsigned* index);
bool bactext_property_index(const char* name, unsigned* index);
bool bactext_confirmed_service_index(const char* name, unsigned* index);
