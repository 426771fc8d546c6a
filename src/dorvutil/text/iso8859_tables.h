#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "dorvutil/text/encoding.h"

/// The characters of the bytes 0xA0 to 0xFF in the supported parts of ISO/IEC 8859.
namespace dorvutil {

inline constexpr std::uint32_t kIsoFirstByte = 0xA0;

using IsoHalf = std::array<char16_t, 96>;  // 0: the part leaves the byte undefined

/// A constant range of code points in a table: consecutive bytes stand for consecutive characters.
struct IsoRun {
    std::uint32_t firstByte;
    std::uint32_t lastByte;
    char16_t first;
};

template <std::size_t N>
constexpr void PutIsoRuns(IsoHalf& half, const IsoRun (&runs)[N]) {
    for (const IsoRun& run : runs) {
        for (std::uint32_t byte = run.firstByte; byte <= run.lastByte; ++byte) {
            half[byte - kIsoFirstByte] = static_cast<char16_t>(run.first + (byte - run.firstByte));
        }
    }
}

constexpr IsoHalf IsoHalfOf(std::u16string_view characters) {
    IsoHalf half{};
    for (std::size_t i = 0; i < half.size(); ++i) half[i] = characters[i];
    return half;
}

constexpr IsoHalf MakeIso1() {
    IsoHalf half{};
    PutIsoRuns(half, {{0xA0, 0xFF, 0xA0}});
    return half;
}

constexpr IsoHalf MakeIso5() {
    IsoHalf half{};
    PutIsoRuns(half, {{0xA0, 0xA0, 0xA0},
                      {0xA1, 0xAC, 0x401},
                      {0xAD, 0xAD, 0xAD},
                      {0xAE, 0xEF, 0x40E},
                      {0xF0, 0xF0, 0x2116},
                      {0xF1, 0xFC, 0x451},
                      {0xFD, 0xFD, 0xA7},
                      {0xFE, 0xFF, 0x45E}});
    return half;
}

constexpr IsoHalf MakeIso6() {
    IsoHalf half{};
    PutIsoRuns(half, {{0xA0, 0xA0, 0xA0},
                      {0xA4, 0xA4, 0xA4},
                      {0xAC, 0xAC, 0x60C},
                      {0xAD, 0xAD, 0xAD},
                      {0xBB, 0xBB, 0x61B},
                      {0xBF, 0xBF, 0x61F},
                      {0xC1, 0xDA, 0x621},
                      {0xE0, 0xF2, 0x640}});
    return half;
}

constexpr IsoHalf MakeIso7() {
    IsoHalf half{};
    PutIsoRuns(half, {{0xA0, 0xA0, 0xA0},
                      {0xA1, 0xA2, 0x2018},
                      {0xA3, 0xA3, 0xA3},
                      {0xA4, 0xA4, 0x20AC},
                      {0xA5, 0xA5, 0x20AF},
                      {0xA6, 0xA9, 0xA6},
                      {0xAA, 0xAA, 0x37A},
                      {0xAB, 0xAD, 0xAB},
                      {0xAF, 0xAF, 0x2015},
                      {0xB0, 0xB3, 0xB0},
                      {0xB4, 0xB6, 0x384},
                      {0xB7, 0xB7, 0xB7},
                      {0xB8, 0xBA, 0x388},
                      {0xBB, 0xBB, 0xBB},
                      {0xBC, 0xBC, 0x38C},
                      {0xBD, 0xBD, 0xBD},
                      {0xBE, 0xD1, 0x38E},
                      {0xD3, 0xFE, 0x3A3}});
    return half;
}

/// ISO/IEC 8859-1 with six Icelandic letters replaced by Turkish ones.
constexpr IsoHalf MakeIso9() {
    IsoHalf half = MakeIso1();
    PutIsoRuns(half, {{0xD0, 0xD0, 0x11E},
                      {0xDD, 0xDD, 0x130},
                      {0xDE, 0xDE, 0x15E},
                      {0xF0, 0xF0, 0x11F},
                      {0xFD, 0xFD, 0x131},
                      {0xFE, 0xFE, 0x15F}});
    return half;
}

inline constexpr IsoHalf kIso1 = MakeIso1();
inline constexpr IsoHalf kIso2 = IsoHalfOf(
    u"\u00A0Ą˘Ł¤ĽŚ§¨ŠŞŤŹ\u00ADŽŻ°ą˛ł´ľśˇ¸šşťź˝žż"
    u"ŔÁÂĂÄĹĆÇČÉĘËĚÍÎĎĐŃŇÓÔŐÖ×ŘŮÚŰÜÝŢßŕáâăäĺćçčéęëěíîďđńňóôőö÷řůúűüýţ˙");
inline constexpr IsoHalf kIso5 = MakeIso5();
inline constexpr IsoHalf kIso6 = MakeIso6();
inline constexpr IsoHalf kIso7 = MakeIso7();
inline constexpr IsoHalf kIso9 = MakeIso9();
inline constexpr IsoHalf kIso13 = IsoHalfOf(
    u"\u00A0”¢£¤„¦§Ø©Ŗ«¬\u00AD®Æ°±²³“µ¶·ø¹ŗ»¼½¾æ"
    u"ĄĮĀĆÄÅĘĒČÉŹĖĢĶĪĻŠŃŅÓŌÕÖ×ŲŁŚŪÜŻŽßąįāćäåęēčéźėģķīļšńņóōõö÷ųłśūüżž’");

}  // namespace dorvutil
