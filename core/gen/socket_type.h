// The types of sockets, and the three HLSL words that they come down to.
#pragma once

#include <cstdint>
#include <string_view>

namespace quillgen {

struct SocketType {
    enum Kind : unsigned char { value, integer, boolean, vector, rgba, shader, rotation, unknown };
    Kind kind = unknown;
    std::uint32_t word = 0;  // of an unknown type that the document has written: among those of the generator, from 1

    constexpr bool operator==(const SocketType& other) const { return kind == other.kind; }
};

inline constexpr SocketType VALUE{SocketType::value};
inline constexpr SocketType INT{SocketType::integer};
inline constexpr SocketType BOOLEAN{SocketType::boolean};
inline constexpr SocketType VECTOR{SocketType::vector};
inline constexpr SocketType RGBA{SocketType::rgba};
inline constexpr SocketType SHADER{SocketType::shader};
inline constexpr SocketType ROTATION{SocketType::rotation};

// The HLSL type word of each kind, and what the words come to as numbers, which are compared faster; an unknown type
// counts as a float.
inline constexpr std::string_view HL[] = {"float", "float", "float", "float3", "float3", "closure", "float3", "float"};
enum class Shape : unsigned char { scalar, float3, closure };
inline constexpr Shape kShapes[] = {Shape::scalar, Shape::scalar,  Shape::scalar, Shape::float3,
                                    Shape::float3, Shape::closure, Shape::float3, Shape::scalar};

inline constexpr std::string_view hlsl(SocketType type) { return HL[type.kind]; }
inline constexpr Shape shape(SocketType type) { return kShapes[type.kind]; }
inline constexpr bool is_closure(SocketType type) { return shape(type) == Shape::closure; }
inline constexpr bool is_float3(SocketType type) { return shape(type) == Shape::float3; }
// The types whose unlinked sockets hold a value that can become a parameter. ROTATION is not among
// them: an unlinked rotation reads as 0.0.
inline constexpr bool is_value_type(SocketType type) { return type.kind <= SocketType::rgba; }

}  // namespace quillgen
