// Enumeration properties of nodes. Documents hold their items as identifiers, and the library's functions take them as
// integers.
#pragma once

#include <span>

#include "core/document/value.h"

namespace quillgen {

struct EnumItem {
    Text identifier;
    int number;
};

// The number of the property `key`, or of `fallback` where the properties lack it. KeyError for an identifier that is
// not among the items.
int enum_number(const Value& props, Word key, Text fallback, std::span<const EnumItem> items);

// Whether the property `key`, or `fallback` where the properties lack it, equals `identifier`.
inline bool property_is(const Value& props, Word key, Text fallback, Text identifier) {
    const Value property = props.get(key);
    return property.present() ? property.is(identifier) : fallback == identifier;
}

}  // namespace quillgen
