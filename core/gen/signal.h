// Geometry signals: the names of the quantities that a shader reads from the scene.
#pragma once

#include <array>
#include <string_view>

#include "core/document/words.h"

namespace quillgen {

class Signal {
public:
    enum Kind : unsigned char {
        // signals of one input and a fixed expression
        P,
        Pcr,
        Pobj,
        N,
        Nv,
        I,
        objpos,
        vcol,
        twosided,
        T_ue,
        B_ue,
        campos,
        pdepth,
        tanfov,
        vsize,
        // signals that are composed of other signals or several inputs
        Nf,
        Nobj,
        Nl,
        Tl,
        Bl,
        Ng,
        vx,
        vy,
        vz,
        ox,
        oy,
        oz,
        bmin,
        bmax,
        generated,
        view,
        uv
    };

    // NOLINTNEXTLINE(google-explicit-constructor): a signal is written as a plain text
    consteval Signal(const char* word) : Signal(find(word), 0) {}
    static constexpr Signal uv_set(int index) { return {uv, index}; }

    [[nodiscard]] constexpr Kind kind() const { return kind_; }
    [[nodiscard]] constexpr int index() const { return index_; }  // of a UV set
    [[nodiscard]] constexpr bool operator==(const Signal&) const = default;

    static constexpr std::array<std::string_view, uv> kNames = {
        "P",      "Pcr",    "Pobj",   "N",     "Nv", "I",    "objpos", "vcol",      "twosided", "T_ue", "B_ue",
        "campos", "pdepth", "tanfov", "vsize", "Nf", "Nobj", "Nl",     "Tl",        "Bl",       "Ng",   "vx",
        "vy",     "vz",     "ox",     "oy",    "oz", "bmin", "bmax",   "generated", "view"};

private:
    constexpr Signal(Kind kind, int index) : kind_(kind), index_(index) {}
    static consteval Kind find(std::string_view word) {
        if (word == "uv" || word == "uv0") {
            return uv;
        }
        for (unsigned char i = 0; i < uv; ++i) {
            if (kNames[i] == word) {
                return static_cast<Kind>(i);
            }
        }
        throw "not a signal";
    }

    Kind kind_;
    int index_;
};

}  // namespace quillgen
