#include "tq_stack/npdu.h"

#include <cstring>

namespace {

// Proprietary network-layer messages carry a vendor identifier after the type.
constexpr uint8_t kFirstProprietaryMessage = 0x80;

bool routed(const BACNET_ADDRESS* a) {
    return a && a->net != 0;
}

int putAddress(uint8_t* npdu, int pos, const BACNET_ADDRESS* a) {
    if (npdu) {
        npdu[pos] = uint8_t(a->net >> 8);
        npdu[pos + 1] = uint8_t(a->net);
        npdu[pos + 2] = a->len;
        std::memcpy(npdu + pos + 3, a->adr, a->len);
    }
    return pos + 3 + a->len;
}

// Reads NET, LEN and ADR at pos; false when truncated or too long.
bool takeAddress(const uint8_t* npdu, uint32_t len, uint32_t* pos, BACNET_ADDRESS* out) {
    if (*pos + 3 > len) return false;
    BACNET_ADDRESS a{};
    a.net = uint16_t(npdu[*pos] << 8 | npdu[*pos + 1]);
    a.len = npdu[*pos + 2];
    *pos += 3;
    if (a.len > MAX_MAC_LEN || *pos + a.len > len) return false;
    std::memcpy(a.adr, npdu + *pos, a.len);
    *pos += a.len;
    *out = a;
    return true;
}

// Only the network part: the MAC belongs to the data link.
void copyNetwork(BACNET_ADDRESS* out, const BACNET_ADDRESS& in) {
    if (!out) return;
    out->net = in.net;
    out->len = in.len;
    std::memcpy(out->adr, in.adr, sizeof in.adr);
}

}  // namespace

int npdu_encode(uint8_t* npdu, const BACNET_ADDRESS* dest, const BACNET_ADDRESS* src,
                const BACNET_NPDU_DATA* data) {
    if (!data) return BACNET_STATUS_ERROR;
    if (routed(dest) && dest->len > MAX_MAC_LEN) return BACNET_STATUS_ERROR;
    if (routed(src) && (src->len == 0 || src->len > MAX_MAC_LEN || src->net == BACNET_BROADCAST_NETWORK))
        return BACNET_STATUS_ERROR;
    uint8_t control = uint8_t(data->priority & NPDU_CONTROL_PRIORITY);
    if (data->network_layer_message) control |= NPDU_CONTROL_NETWORK_MESSAGE;
    if (routed(dest)) control |= NPDU_CONTROL_DNET;
    if (routed(src)) control |= NPDU_CONTROL_SNET;
    if (data->data_expecting_reply) control |= NPDU_CONTROL_EXPECTING_REPLY;
    if (npdu) {
        npdu[0] = BACNET_PROTOCOL_VERSION;
        npdu[1] = control;
    }
    int pos = 2;
    if (routed(dest)) pos = putAddress(npdu, pos, dest);
    if (routed(src)) pos = putAddress(npdu, pos, src);
    if (routed(dest)) {
        if (npdu) npdu[pos] = data->hop_count;
        ++pos;
    }
    if (data->network_layer_message) {
        if (npdu) npdu[pos] = data->network_message_type;
        ++pos;
        if (data->network_message_type >= kFirstProprietaryMessage) {
            if (npdu) {
                npdu[pos] = uint8_t(data->vendor_id >> 8);
                npdu[pos + 1] = uint8_t(data->vendor_id);
            }
            pos += 2;
        }
    }
    return pos;
}

int npdu_decode(const uint8_t* npdu, uint32_t npdu_len, BACNET_ADDRESS* dest, BACNET_ADDRESS* src,
                BACNET_NPDU_DATA* data) {
    if (!npdu || npdu_len < 2 || npdu[0] != BACNET_PROTOCOL_VERSION) return BACNET_STATUS_ERROR;
    const uint8_t control = npdu[1];
    BACNET_NPDU_DATA d{};
    d.network_layer_message = (control & NPDU_CONTROL_NETWORK_MESSAGE) != 0;
    d.data_expecting_reply = (control & NPDU_CONTROL_EXPECTING_REPLY) != 0;
    d.priority = uint8_t(control & NPDU_CONTROL_PRIORITY);
    uint32_t pos = 2;
    BACNET_ADDRESS to{}, from{};
    if ((control & NPDU_CONTROL_DNET) && (!takeAddress(npdu, npdu_len, &pos, &to) || to.net == 0))
        return BACNET_STATUS_ERROR;
    if ((control & NPDU_CONTROL_SNET) &&
        (!takeAddress(npdu, npdu_len, &pos, &from) || from.net == 0 || from.net == BACNET_BROADCAST_NETWORK ||
         from.len == 0))
        return BACNET_STATUS_ERROR;
    if (control & NPDU_CONTROL_DNET) {
        if (pos >= npdu_len) return BACNET_STATUS_ERROR;
        d.hop_count = npdu[pos++];
    }
    if (d.network_layer_message) {
        if (pos >= npdu_len) return BACNET_STATUS_ERROR;
        d.network_message_type = npdu[pos++];
        if (d.network_message_type >= kFirstProprietaryMessage) {
            if (pos + 2 > npdu_len) return BACNET_STATUS_ERROR;
            d.vendor_id = uint16_t(npdu[pos] << 8 | npdu[pos + 1]);
            pos += 2;
        }
    }
    copyNetwork(dest, to);
    copyNetwork(src, from);
    if (data) *data = d;
    return int(pos);
}
