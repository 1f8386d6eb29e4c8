// I-Am: I-Am-Request ::= SEQUENCE { iAmDeviceIdentifier BACnetObjectIdentifier,
//     maxAPDULengthAccepted Unsigned, segmentationSupported BACnetSegmentation, vendorID Unsigned16 }
// all application tagged.
#pragma once

#include <cstdint>

// The whole unconfirmed request. device_id is the device instance (not a packed object
// identifier); an instance above BACNET_MAX_INSTANCE or a segmentation above SEGMENTATION_NONE
// is BACNET_STATUS_ERROR. A NULL apdu returns the length.
int iam_encode_apdu(uint8_t* apdu, uint32_t device_id, unsigned max_apdu, int segmentation,
                    uint16_t vendor_id);

// The service data after the 2-octet header. Any output pointer may be NULL. The identifier
// must name a device, the segmentation be 0..3 and the vendor fit 16 bits; trailing bytes are an
// error. Returns the bytes consumed or BACNET_STATUS_ERROR (outputs unchanged).
int iam_decode_service_request(const uint8_t* apdu, uint32_t apdu_len, uint32_t* device_id,
                               unsigned* max_apdu, int* segmentation, uint16_t* vendor_id);
