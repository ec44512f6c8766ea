// The types of sockets, and the three HLSL types that they map to.
#pragma once

#include <string_view>

namespace quillgen {

struct SocketType {
    enum Kind : unsigned char { value, integer, boolean, vector, rgba, shader, rotation, unknown };
    Kind kind = unknown;
    std::string_view name = {};  // as in documents

    constexpr bool operator==(const SocketType& other) const { return kind == other.kind; }
};

inline constexpr SocketType VALUE{SocketType::value, "VALUE"};
inline constexpr SocketType INT{SocketType::integer, "INT"};
inline constexpr SocketType BOOLEAN{SocketType::boolean, "BOOLEAN"};
inline constexpr SocketType VECTOR{SocketType::vector, "VECTOR"};
inline constexpr SocketType RGBA{SocketType::rgba, "RGBA"};
inline constexpr SocketType SHADER{SocketType::shader, "SHADER"};
inline constexpr SocketType ROTATION{SocketType::rotation, "ROTATION"};

inline constexpr SocketType kSocketTypes[] = {VALUE, INT, BOOLEAN, VECTOR, RGBA, SHADER, ROTATION};

// The HLSL type of each kind. An unknown type counts as a float.
inline constexpr std::string_view HL[] = {"float", "float", "float", "float3", "float3", "closure", "float3", "float"};

inline constexpr std::string_view hlsl(const SocketType& type) { return HL[type.kind]; }
inline constexpr bool is_closure(const SocketType& type) { return type == SHADER; }
inline constexpr bool is_float3(const SocketType& type) { return type == VECTOR || type == RGBA || type == ROTATION; }
// The types whose unlinked sockets hold a value that can become a parameter. ROTATION is not among them: an unlinked
// rotation reads as 0.0.
inline constexpr bool is_value_type(const SocketType& type) { return type.kind <= SocketType::rgba; }

inline constexpr bool have_same_hlsl(const SocketType& a, const SocketType& b) {
    return is_float3(a) == is_float3(b) && is_closure(a) == is_closure(b);
}

// The HLSL for the value of a shader socket: the name of the closure struct, and the expression of an empty closure.
struct ClosureText {
    std::string_view type;
    std::string_view none;
};

}  // namespace quillgen
