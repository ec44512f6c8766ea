#include "core/gen/format.h"

namespace quillgen {

void fill(std::string& out, std::string_view format, std::span<const Argument> arguments) {
    std::size_t start = 0;
    for (;;) {
        const std::size_t at = format.find('$', start);
        if (at == std::string_view::npos) {
            out.append(format.substr(start));
            return;
        }
        out.append(format.substr(start, at - start));
        const Placeholder placeholder = read_placeholder(format, at);
        out.append(arguments[placeholder.index].text());
        start = placeholder.end;
    }
}

}  // namespace quillgen
