// Checks of a value about to be written to a property. On failure the error class and code
// (when the pointers are given) receive the reason and the result is false.
#pragma once

#include <cstdint>

#include "tq_stack/enums.h"
#include "tq_stack/values.h"

// The value's tag must be expected_tag, else property / invalid-data-type.
bool WPValidateArgType(const BACNET_APPLICATION_DATA_VALUE* value, uint8_t expected_tag,
                       BACNET_ERROR_CLASS* error_class, BACNET_ERROR_CODE* error_code);

// A character string of at most max_length bytes: another tag gives property /
// invalid-data-type, an empty string when empty_allowed is false property / value-out-of-range,
// a longer string property / value-too-long. A negative max_length means no limit.
bool WPValidateString(const BACNET_APPLICATION_DATA_VALUE* value, int max_length, bool empty_allowed,
                      BACNET_ERROR_CLASS* error_class, BACNET_ERROR_CODE* error_code);
