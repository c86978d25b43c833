// Registered functions over strings as plain runs of bytes: masks, concatenation, byte-set search,
// comparison, filling, wiping, random bytes, ASCII tests, byte-order marks and whole-string
// conversion.
#pragma once

#include "sdk/host_types.h"

namespace zel::adapters {

REALstring StringANDZEL(REALstring a, REALstring b) noexcept;
REALstring StringORZEL(REALstring a, REALstring b) noexcept;
REALstring StringXORZEL(REALstring data, REALstring xorMask, RBInteger maskOffset) noexcept;
REALstring StringXOR2ZEL(REALstring data, REALstring xorMask, RBInteger maskOffset) noexcept;

REALstring ConcatBinaryStringsZEL_6Strings(REALstring a, REALstring b, REALstring c, REALstring d,
                                           REALstring e, REALstring f) noexcept;
REALstring ConcatBinaryStringsZEL_5Strings(REALstring a, REALstring b, REALstring c, REALstring d,
                                           REALstring e) noexcept;
REALstring ConcatBinaryStringsZEL_4Strings(REALstring a, REALstring b, REALstring c,
                                           REALstring d) noexcept;
REALstring ConcatBinaryStringsZEL_3Strings(REALstring a, REALstring b, REALstring c) noexcept;
REALstring ConcatBinaryStringsZEL_2Strings(REALstring a, REALstring b) noexcept;

RBInteger InStrBytesZEL(REALstring target, REALstring find) noexcept;
RBInteger InStrByteRangeZEL_1Range(REALstring target, RBInteger start, RBInteger end) noexcept;
RBInteger InStrByteRangeZEL_2Ranges(REALstring target, RBInteger start, RBInteger end,
                                    RBInteger start2, RBInteger end2) noexcept;
RBInteger InStrByteRangeZEL_3Ranges(REALstring target, RBInteger start, RBInteger end,
                                    RBInteger start2, RBInteger end2, RBInteger start3,
                                    RBInteger end3) noexcept;
RBInteger InStrByteRangeZEL_Find1Range(REALstring target, REALstring find, RBInteger start,
                                       RBInteger end) noexcept;
RBInteger InStrByteRangeZEL_Find2Ranges(REALstring target, REALstring find, RBInteger start,
                                        RBInteger end, RBInteger start2, RBInteger end2) noexcept;
RBInteger InStrByteRangeZEL_Find3Ranges(REALstring target, REALstring find, RBInteger start,
                                        RBInteger end, RBInteger start2, RBInteger end2,
                                        RBInteger start3, RBInteger end3) noexcept;
RBInteger StrCompBytesZEL(REALstring a, REALstring b) noexcept;

REALstring CreateStringZEL(RBInteger length, REALstring content) noexcept;
RBBoolean ClearStringContentZEL(REALstring s) noexcept;
REALstring RandomBytesStringZEL(RBInteger length, RBBoolean ascii) noexcept;

RBBoolean IsASCIIStringZEL(REALstring s) noexcept;
RBBoolean IsASCIIStringZEL_Mode(REALstring s, RBInteger mode) noexcept;
REALstring ReplaceNonPrintableCharactersZEL(REALstring s, RBInteger replaceValue) noexcept;

RBInteger DetectUnicodeMarkersZEL(REALstring s) noexcept;
REALstring GetUnicodeMarkersZEL(RBInteger kind) noexcept;
REALstring UnicodeStringZEL(REALstring s) noexcept;
REALstring NativeStringZEL(REALstring s) noexcept;

}  // namespace zel::adapters
