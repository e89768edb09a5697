#pragma once
// The colour of ARGB32 voxels and of the stream format: alpha, red, green, blue in memory.
// Every operation is that of XColour32T. On a stream a colour has no class word: it is the
// four bytes alpha, red, green, blue, written by XWriteARGB32 through XStream::WriteARGB32.

#include <type_traits>

#include "XColour32T.h"
#include "XStream.h"

class XARGB32Colour : public XColour32T<XARGB32Colour, 0, 1, 2, 3>
{
public:
    using XColour32T::XColour32T;

    static const XARGB32Colour kWhite;
    static const XARGB32Colour kLightGrey;
    static const XARGB32Colour kMidGrey;
    static const XARGB32Colour kDarkGrey;
    static const XARGB32Colour kBlack;
    static const XARGB32Colour kPink;
    static const XARGB32Colour kRed;
    static const XARGB32Colour kDarkRed;
    static const XARGB32Colour kOrange;
    static const XARGB32Colour kYellow;
    static const XARGB32Colour kLightGreen;
    static const XARGB32Colour kGreen;
    static const XARGB32Colour kDarkGreen;
    static const XARGB32Colour kLightBlue;
    static const XARGB32Colour kBlue;
    static const XARGB32Colour kDarkBlue;
    static const XARGB32Colour kLCDBacklight;
    static const XARGB32Colour kFineDividerLine;
};

static_assert(sizeof(XARGB32Colour) == 4 && std::is_trivially_copyable_v<XARGB32Colour>,
              "an ARGB32 colour is four plain bytes");

inline constexpr XARGB32Colour XARGB32Colour::kWhite{0xff, 0xff, 0xff, 0xff};
inline constexpr XARGB32Colour XARGB32Colour::kLightGrey{0xff, 0xdd, 0xdd, 0xdd};
inline constexpr XARGB32Colour XARGB32Colour::kMidGrey{0xff, 0x88, 0x88, 0x88};
inline constexpr XARGB32Colour XARGB32Colour::kDarkGrey{0xff, 0x33, 0x33, 0x33};
inline constexpr XARGB32Colour XARGB32Colour::kBlack{0xff, 0x00, 0x00, 0x00};
inline constexpr XARGB32Colour XARGB32Colour::kPink{0xff, 0xff, 0x80, 0x80};
inline constexpr XARGB32Colour XARGB32Colour::kRed{0xff, 0xff, 0x00, 0x00};
inline constexpr XARGB32Colour XARGB32Colour::kDarkRed{0xff, 0x80, 0x00, 0x00};
inline constexpr XARGB32Colour XARGB32Colour::kOrange{0xff, 0xff, 0x7f, 0x00};
inline constexpr XARGB32Colour XARGB32Colour::kYellow{0xff, 0xff, 0xff, 0x00};
inline constexpr XARGB32Colour XARGB32Colour::kLightGreen{0xff, 0x80, 0xff, 0x80};
inline constexpr XARGB32Colour XARGB32Colour::kGreen{0xff, 0x00, 0xff, 0x00};
inline constexpr XARGB32Colour XARGB32Colour::kDarkGreen{0xff, 0x00, 0x80, 0x00};
inline constexpr XARGB32Colour XARGB32Colour::kLightBlue{0xff, 0x80, 0x80, 0xff};
inline constexpr XARGB32Colour XARGB32Colour::kBlue{0xff, 0x00, 0x00, 0xff};
inline constexpr XARGB32Colour XARGB32Colour::kDarkBlue{0xff, 0x00, 0x00, 0x80};
inline constexpr XARGB32Colour XARGB32Colour::kLCDBacklight{0xff, 0xc0, 0xff, 0x00};
inline constexpr XARGB32Colour XARGB32Colour::kFineDividerLine{0xff, 0xd8, 0xd8, 0xd8};

// A colour on a stream: the bytes alpha, red, green, blue whatever the stream's byte order.
void XWriteARGB32(XStream & aStream, const XARGB32Colour & aColour);
XARGB32Colour XReadARGB32(XStream & aStream);
