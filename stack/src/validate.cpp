#include "tq_stack/validate.h"

#include "tq_stack/strings.h"

namespace {

bool fail(BACNET_ERROR_CLASS* errorClass, BACNET_ERROR_CODE* errorCode, BACNET_ERROR_CODE code) {
    if (errorClass) *errorClass = ERROR_CLASS_PROPERTY;
    if (errorCode) *errorCode = code;
    return false;
}

}  // namespace

bool WPValidateArgType(const BACNET_APPLICATION_DATA_VALUE* value, uint8_t expected_tag,
                       BACNET_ERROR_CLASS* error_class, BACNET_ERROR_CODE* error_code) {
    if (!value || value->tag != expected_tag)
        return fail(error_class, error_code, ERROR_CODE_INVALID_DATA_TYPE);
    return true;
}

bool WPValidateString(const BACNET_APPLICATION_DATA_VALUE* value, int max_length, bool empty_allowed,
                      BACNET_ERROR_CLASS* error_class, BACNET_ERROR_CODE* error_code) {
    if (!WPValidateArgType(value, BACNET_APPLICATION_TAG_CHARACTER_STRING, error_class, error_code))
        return false;
    const size_t length = characterstring_length(&value->type.Character_String);
    if (length == 0 && !empty_allowed) return fail(error_class, error_code, ERROR_CODE_VALUE_OUT_OF_RANGE);
    if (max_length >= 0 && length > size_t(max_length))
        return fail(error_class, error_code, ERROR_CODE_VALUE_TOO_LONG);
    return true;
}
