#include "core/gen/properties.h"

namespace quillgen {

int enum_number(const Value& props, Word key, Text fallback, std::span<const EnumItem> items) {
    const Value property = props.get(key);
    for (const EnumItem& item : items) {
        if (property.present() ? property.is(item.identifier) : item.identifier == fallback) {
            return item.number;
        }
    }
    property.check_hashable();
    raise_key_error(property.object());
}

}  // namespace quillgen
