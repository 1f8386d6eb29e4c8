#include "TQ_BACnet/WS/MarkupFactory.h"

namespace TQ {
namespace BACnet {
namespace WS {

void MarkupFactory::reset() {
    _openMarkups.clear();
    _arrayMarkers = 0;
}

void MarkupFactory::popOpenMarkup() {
    if (_openMarkups.back().arrayMarker) --_arrayMarkers;
    _openMarkups.pop_back();
}

void MarkupFactory::closeOpenMarkup() {
    while (!_openMarkups.empty()) {
        const OpenMarkup top = _openMarkups.back();
        closeOpenMarkup(top);
        popOpenMarkup();
        if (!top.arrayMarker) break;
    }
}

void MarkupFactory::closeOpenMarkup(const OpenMarkup& openMarkup) {
    if (openMarkup.baseType >= BT_MAX) return;
    // Array markers are bookkeeping: the writer is told, but no line of its own is laid out.
    if (openMarkup.arrayMarker) {
        descCloseOpenMarkup(getBaseTypeName(openMarkup.baseType), true);
        return;
    }
    formatBefore(false);
    descCloseOpenMarkup(getBaseTypeName(openMarkup.baseType), false);
    formatAfter();
}

void MarkupFactory::closeAllOpenMarkups() {
    while (!_openMarkups.empty()) closeOpenMarkup();
}

void MarkupFactory::indent(bool opening) {
    std::size_t depth = _openMarkups.size() - static_cast<std::size_t>(_arrayMarkers);
    // When closing, the entry being closed is still on the stack.
    if (!opening && depth > 0) --depth;
    for (std::size_t i = 0; i < depth; ++i) _out.put('\t');
}

void MarkupFactory::endLine() {
    _out.put('\n');
    _out.flush();
}

}  // namespace WS
}  // namespace BACnet
}  // namespace TQ
