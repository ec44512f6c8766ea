#include "core/gen/format.h"

#include <charconv>

namespace quillgen {

Argument::Argument(int number) : text_(digits_, std::to_chars(digits_, digits_ + sizeof digits_, number).ptr) {}

void fill_format(Buffer& out, std::string_view format, const Argument* arguments) {
    std::size_t start = 0;
    for (std::size_t mark = format.find('$'); mark != std::string_view::npos; mark = format.find('$', start)) {
        const Placeholder placeholder = read_placeholder(format, mark);
        out.append(std::string_view(format.data() + start, mark - start), arguments[placeholder.index].text());
        start = placeholder.end;
    }
    out.append(std::string_view(format.data() + start, format.size() - start));
}

}  // namespace quillgen
